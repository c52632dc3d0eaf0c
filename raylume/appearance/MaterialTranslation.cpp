#include "raylume/appearance/MaterialTranslation.h"

#include <algorithm>
#include <cstdint>
#include <numbers>
#include <string>

#include "raylume/appearance/ImageCentre.h"
#include "raylume/appearance/SurfaceFinish.h"
#include "raylume/load/ReaderInterface.h"
#include "raylume/platform/Text.h"
#include "raylume/scene/dlMaterial.h"

namespace {

// Bits of the render appearance's flag word. The two level bits have opposite senses.
enum : std::uint32_t {
    kFlagA = 1u << 5,
    kFlagB = 1u << 6,
    kKeepLevelA = 1u << 9,
    kTakeLevelB = 1u << 10,
    kLfpAppearance = 1u << 11,
    kFlagC = 1u << 12,
    kFlagD = 1u << 14,
};

constexpr std::uint32_t kNoMapping = 1;

bool has(const uoRVAppearanceProperties& appearance, std::uint32_t flag)
{
    return (appearance.flags & flag) != 0;
}

void append(std::string& target, const std::wstring& text)
{
    target += platform::narrow(text);
}

void copy3(const float (&from)[3], float (&to)[3])
{
    std::copy_n(from, 3, to);
}

// The shininess of the material itself is not taken: only a render appearance sets that.
void fillLighting(dlMaterial& material, const uoMaterialProperties& source)
{
    material.ambient = static_cast<float>(source.ambient);
    material.diffuse = static_cast<float>(source.diffuse);
    material.transparency = static_cast<float>(source.transparency);
    material.specular = static_cast<float>(source.specular);
    material.emission = static_cast<float>(source.emission);
}

void fillNames(dlMaterial& material, uoMaterialProperties& source)
{
    append(material.idName, source.getIdName());
    append(material.userName, source.getUserName());
}

// The file name without folder and last extension; without any extension it has no base name. Only the
// backslash separates folders here.
std::wstring baseName(const std::wstring& path)
{
    const std::wstring leaf = path.substr(path.rfind(L'\\') + 1);  // npos + 1 is 0
    const std::size_t dot = leaf.rfind(L'.');
    return dot == std::wstring::npos ? std::wstring() : leaf.substr(0, dot);
}

// The base name follows the material's file name without a separator; consumers match that text.
void fillAppearanceName(dlMaterial& material, const moVisualProperties_c& visual,
                        uoRVAppearanceProperties* appearance)
{
    if (!appearance) {
        append(material.appearanceName, visual.materialFileName);
        return;
    }
    const std::wstring file = appearance->getFilename();
    const bool lfp = has(*appearance, kLfpAppearance);
    const bool whole = lfp && file.find(L".lfp") != std::wstring::npos;
    append(material.appearanceName, whole ? file : visual.materialFileName);
    if (!lfp)
        append(material.appearanceName, baseName(file));
}

// "texture" alone would name a shader of another meaning to consumers.
void fillShader(dlMaterial& material, uoRVAppearanceProperties& appearance)
{
    append(material.shaderName, appearance.getRVShaderName());
    if (material.shaderName == "texture")
        material.shaderName = "custom_texture";
}

void fillMapping(dlTexture& texture, const uoRVAppearanceProperties& appearance)
{
    texture.mappingType = appearance.mappingType;
    copy3(appearance.origin, texture.origin);
    copy3(appearance.uDirection, texture.uDirection);
    copy3(appearance.vDirection, texture.vDirection);
    texture.mappingScalar = appearance.mappingScalar;
}

void fillLevels(dlMaterial& material, const uoRVAppearanceProperties& appearance)
{
    material.rvWeight = appearance.weight;
    material.rvLuminous = appearance.luminous;
    material.emission = appearance.luminous;
    if (!has(appearance, kKeepLevelA))
        material.rvLevelA = appearance.levelA;
    if (has(appearance, kTakeLevelB))
        material.rvLevelB = appearance.levelB;
    material.rvUnitLevel = appearance.unitLevel;
    material.rvLevelC = appearance.levelC;
    material.rvLevelD = appearance.levelD;
    material.shininess = appearance.shininess;
}

void fillFlags(dlMaterial& material, const uoRVAppearanceProperties& appearance)
{
    material.rvFlagA = has(appearance, kFlagA);
    material.rvFlagB = has(appearance, kFlagB);
    material.rvFlagC = has(appearance, kFlagC);
    material.rvFlagD = has(appearance, kFlagD);
    material.lfpAppearance = has(appearance, kLfpAppearance);
}

void fillRenderAppearance(dlMaterial& material, uoRVAppearanceProperties& appearance)
{
    fillShader(material, appearance);
    fillMapping(material.texture, appearance);
    material.colorRef = appearance.colorRef;
    material.secondColorRef = appearance.secondColorRef;
    material.rvIndex = appearance.index;
    material.surfaceFinish = appearance.surfaceFinish;
    fillLevels(material, appearance);
    fillFlags(material, appearance);
    append(material.lfpFilename, appearance.getLFPFilename());
}

// The angle is not reduced, so an unrotated image has a whole turn. An image of no size gives an
// infinite scale.
void placeImage(dlTexture& texture, uoMaterialTextureProperties& image)
{
    texture.scaleU = static_cast<float>(1.0 / image.getTextureScale(0));
    texture.scaleV = static_cast<float>(1.0 / image.getTextureScale(1));
    texture.angle = static_cast<float>((360.0 - image.getTextureAngle()) * std::numbers::pi / 180.0);
    texture.transU = static_cast<float>(image.getTextureTransX());
    texture.transV = static_cast<float>(image.getTextureTransY());
    texture.filename += image.getTextureFilename();
    placeImageCentre(texture, image, image.getTextureTransX(), image.getTextureTransY());
}

// The finish has its bump image even when no image is mapped.
void fillTexture(dlMaterial& material, uoMaterialProperties& source)
{
    if (!source.textureProperties) {
        material.texture.mappingType = kNoMapping;
        return;
    }
    if (source.rvAppearance)
        append(material.bumpFilename, surfaceFinishBumpFile(material.surfaceFinish, source.rvAppearance));
    if (material.texture.mappingType != kNoMapping)
        placeImage(material.texture, *source.textureProperties);
}

// Red in the low byte. Divided, not multiplied by the reciprocal, which gives other bits.
void unpackColour(std::uint32_t packed, float (&colour)[3])
{
    for (int channel = 0; channel < 3; ++channel)
        colour[channel] = static_cast<float>((packed >> (8 * channel)) & 0xFFu) / 255.0f;
}

}  // namespace

void applyVisualProperties(dlMaterial& material, moVisualProperties_c& visual)
{
    uoMaterialProperties& source = *visual.materialProps;
    fillLighting(material, source);
    material.visualFlag = visual.visualFlag != 0;
    fillNames(material, source);
    fillAppearanceName(material, visual, source.rvAppearance);
    append(material.visualName, visual.visualName);
    material.colorRef = visual.colorRef;
    if (source.rvAppearance)
        fillRenderAppearance(material, *source.rvAppearance);
    fillTexture(material, source);
    unpackColour(visual.colorRef, material.color);
}
