#include "reader/formats/gltf/Materials.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "raylume/platform/Text.h"
#include "reader/formats/gltf/Uris.h"

namespace ovdl::gltf {
namespace {

constexpr double kPi = 3.141592653589793;
// What any surface that is no metal reflects head-on.
constexpr double kDielectricSpecular = 0.04;
// As records have it that nobody filled.
constexpr double kAmbient = 0.5;

// Factors are linear; colours of the records are what a screen shows.
std::uint32_t screenByte(double linear)
{
    const double value = std::clamp(linear, 0.0, 1.0);
    const double encoded = value <= 0.0031308 ? 12.92 * value : 1.055 * std::pow(value, 1 / 2.4) - 0.055;
    return static_cast<std::uint32_t>(std::lround(255 * encoded));
}

std::uint32_t packedColour(const double* linear)
{
    return screenByte(linear[0]) | screenByte(linear[1]) << 8 | screenByte(linear[2]) << 16;
}

const std::array<double, 4>& colourOf(const MaterialRecord& record)
{
    return record.isSpecularGlossy ? record.diffuseColour : record.baseColour;
}

double transparencyOf(const MaterialRecord& record)
{
    const double alpha = std::clamp(colourOf(record)[3], 0.0, 1.0);
    const double passing = std::clamp(record.transmission, 0.0, 1.0);
    switch (record.alphaMode) {
    case AlphaMode::kBlend:
        return 1 - alpha * (1 - passing);
    case AlphaMode::kMask:
        return alpha < record.alphaCutoff ? 1 : passing;
    default:
        return passing;
    }
}

double emissionOf(const MaterialRecord& record)
{
    const double strongest = *std::max_element(record.emission.begin(), record.emission.end());
    return std::clamp(strongest * record.emissionStrength, 0.0, 1.0);
}

double shininessOf(const MaterialRecord& record)
{
    const double shininess = record.isSpecularGlossy ? record.glossiness : 1 - record.roughness;
    return record.unlit ? 0 : std::clamp(shininess, 0.0, 1.0);
}

// A rough surface spreads its highlight until none is left.
double specularOf(const MaterialRecord& record)
{
    if (record.unlit)
        return 0;
    const double metallic = std::clamp(record.metallic, 0.0, 1.0);
    const double headOn =
        record.isSpecularGlossy
            ? std::clamp(*std::max_element(record.specularColour.begin(), record.specularColour.end()), 0.0,
                         1.0)
            : kDielectricSpecular + (1 - kDielectricSpecular) * metallic;
    return headOn * shininessOf(record);
}

void fillVisual(const MaterialRecord& record, moVisualProperties_c& visual)
{
    visual.activeFlag = 1;
    visual.inheritFlag = 0;
    visual.visualName = platform::fromUtf8(record.name);
    visual.colorRef = packedColour(colourOf(record).data());
}

void fillMaterial(const MaterialRecord& record, uoMaterialProperties& material)
{
    material.idName = platform::fromUtf8(record.name);
    material.userName = material.idName;
    material.ambient = kAmbient;
    material.diffuse = 1;
    material.specular = specularOf(record);
    material.shininess = shininessOf(record);
    material.transparency = transparencyOf(record);
    material.emission = emissionOf(record);
}

void fillRender(const MaterialRecord& record, uoRVAppearanceProperties& render)
{
    render.mappingType = 1;
    render.uDirection[0] = 1;
    render.vDirection[1] = 1;
    render.mappingScalar = 1;
    render.index = -1;
    render.unitLevel = 1;
    render.colorRef = packedColour(colourOf(record).data());
    render.secondColorRef = 0x00FFFFFF;
    if (emissionOf(record) > 0)
        render.secondColorRef = packedColour(record.emission.data());
    render.shininess = static_cast<float>(shininessOf(record));
    render.luminous = static_cast<float>(emissionOf(record));
}

// The image is one unit wide and high, as the texture coordinates are, but for the document's own
// scaling; what would divide by zero stays one unit.
void fillTexture(const TextureUse& use, const std::wstring& name, uoMaterialTextureProperties& texture)
{
    for (int direction = 0; direction < 2; ++direction) {
        const double scale = use.scale[direction];
        texture.scale[direction] = scale != 0 ? 1 / scale : 1;
        texture.directions[direction][direction] = 1;
    }
    texture.hasDirections = true;
    texture.angle = use.rotation * 180 / kPi;
    texture.transX = use.offset[0];
    texture.transY = use.offset[1];
    texture.filename = name;
}

}  // namespace

const TextureUse& colourTexture(const MaterialRecord& record)
{
    return record.isSpecularGlossy ? record.diffuseTexture : record.baseTexture;
}

std::unique_ptr<Appearance> makeAppearance(const MaterialRecord& record, const std::wstring& name)
{
    auto result = std::make_unique<Appearance>();
    fillVisual(record, result->visual);
    fillMaterial(record, result->material);
    fillRender(record, result->render);
    result->visual.materialProps = &result->material;
    result->material.rvAppearance = &result->render;
    if (!name.empty()) {
        fillTexture(colourTexture(record), name, result->texture);
        result->material.textureProperties = &result->texture;
        result->render.mappingType = 0;
        result->render.filename = name;
        result->render.shaderName = L"texture";
    }
    return result;
}

std::wstring imageName(const Records& records, std::int32_t texture, const DocumentPath& path)
{
    const std::int32_t image =
        texture == kNone ? kNone : records.textures[static_cast<std::size_t>(texture)];
    if (image == kNone)
        return {};
    const ImageRecord& record = records.images[static_cast<std::size_t>(image)];
    if (!record.hasUri || isDataUri(record.uri))
        return path.path + L"#image" + std::to_wstring(image);
    const std::optional<std::wstring> relative = relativePath(record.uri);
    return relative ? path.folder + *relative : std::wstring();
}

}  // namespace ovdl::gltf
