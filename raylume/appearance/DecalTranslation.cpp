#include "raylume/appearance/DecalTranslation.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <list>
#include <memory>
#include <numbers>
#include <set>
#include <utility>

#include "raylume/appearance/FaceIndex.h"
#include "raylume/appearance/ImageCentre.h"
#include "raylume/load/ReaderInterface.h"
#include "raylume/platform/Files.h"
#include "raylume/platform/Text.h"
#include "raylume/scene/dlDecal.h"
#include "raylume/scene/dlFace.h"
#include "raylume/scene/dlInstance.h"
#include "raylume/scene/dlPart.h"
#include "raylume/services/PathText.h"

namespace {

// Kinds of mapping that have rules of their own.
enum : std::uint8_t { kPlacedByRecord = 0, kOffsetWhenMirrored = 1 };

// Bits of the render appearance's flag word.
enum : std::uint32_t { kFlagA = 1u << 5, kFlagB = 1u << 6 };

constexpr std::uint32_t kNoMapping = 1;
// What is added to a marked placement, and from where on one counts as marked: values down to -1 do.
constexpr float kMark = 1000.0f;
constexpr float kMarkedFrom = 999.0f;

template <class Holder>
dlDecal& hang(std::unique_ptr<dlDecal> decal, Holder& holder)
{
    holder.addDecal(decal.get());
    return *decal.release();
}

// A decal finds its face by the id on an instance only; on a face it keeps none.
dlDecal& hangNewDecal(dlInstance* instance, dlFace& face, std::int32_t faceId)
{
    auto decal = std::make_unique<dlDecal>();
    if (!instance)
        return hang(std::move(decal), face);
    decal->setFaceId(faceId);
    return hang(std::move(decal), *instance);
}

// Two records with one face make two decals here.
void attachToInstance(uoDecalProperties& properties, dlInstance* instance, const FaceIndex& index,
                      const std::wstring& documentPath)
{
    const std::list<uoDecalFaceMapping> mappings = properties.faceMappings;
    for (const uoDecalFaceMapping& mapping : mappings) {
        if (dlFace* face = index.find(mapping.faceId))
            translateDecal(&hangNewDecal(instance, *face, mapping.faceId), &properties, &mapping,
                           documentPath);
    }
}

// The first record of a face counts, the others of the same decal are dropped.
void attachToFaces(uoDecalProperties& properties, const FaceIndex& index, const std::wstring& documentPath)
{
    const std::list<uoDecalFaceMapping> mappings = properties.faceMappings;
    std::set<std::int32_t> done;
    for (const uoDecalFaceMapping& mapping : mappings) {
        dlFace* face = index.find(mapping.faceId);
        if (face && done.insert(mapping.faceId).second)
            translateDecal(&hang(std::make_unique<dlDecal>(), *face), &properties, &mapping, documentPath);
    }
}

int effectiveConfiguration(const uoTempPartTessData_c& tessData, int configurationIndex)
{
    const bool isOnly = configurationIndex == -1 && tessData.decalsByConfig.size() == 1;
    return isOnly ? tessData.decalsByConfig.begin()->first : configurationIndex;
}

// Unlike the material of a surface, a decal has the shininess of its own material.
void fillLighting(dlDecal& decal, const uoMaterialProperties& source)
{
    decal.ambient = static_cast<float>(source.ambient);
    decal.diffuse = static_cast<float>(source.diffuse);
    decal.emission = static_cast<float>(source.emission);
    decal.shininess = static_cast<float>(source.shininess);
    decal.specular = static_cast<float>(source.specular);
    decal.transparency = static_cast<float>(source.transparency);
}

// No more than this: the emission in particular stays the material's, whatever rvLuminous says.
void fillRenderAppearance(dlDecal& decal, const uoRVAppearanceProperties& appearance)
{
    decal.rvDecalValue = appearance.decalValue;
    decal.ambient = appearance.decalAmbient;
    decal.diffuse = appearance.decalDiffuse;
    decal.specular = appearance.decalSpecular;
    decal.rvWeight = appearance.weight;
    decal.secondColorRef = appearance.secondColorRef;
    decal.rvFlagA = (appearance.flags & kFlagA) != 0;
    decal.rvFlagB = (appearance.flags & kFlagB) != 0;
    decal.rvLuminous = appearance.luminous;
}

void fillMaterial(dlDecal& decal, uoMaterialProperties& source)
{
    fillLighting(decal, source);
    decal.idName = platform::narrow(source.getIdName());
    if (source.rvAppearance)
        fillRenderAppearance(decal, *source.rvAppearance);
    decal.userName = "texture";
    decal.shaderName = "custom_texture";
}

// The document numbers the kinds in another order than the records do.
void fillMappingType(dlTexture& texture, std::uint8_t kind)
{
    constexpr std::uint32_t kTypes[] = {2, 4, 6, 5, 3};
    if (kind < std::size(kTypes))
        texture.mappingType = kTypes[kind];
}

void narrowInto(const double (&values)[3], float (&target)[3])
{
    std::transform(values, values + 3, target, [](double value) { return static_cast<float>(value); });
}

// Whether there are directions is asked of the first only. Readers expect to be asked for the ranges,
// though nothing comes of them.
void fillDirections(dlTexture& texture, uoMaterialTextureProperties& image)
{
    double u[3] = {0.0, 0.0, 0.0};
    double v[3] = {0.0, 0.0, 0.0};
    if (image.getTextureDir(0, u[0], u[1], u[2])) {
        image.getTextureDir(1, v[0], v[1], v[2]);
        narrowInto(u, texture.uDirection);
        narrowInto(v, texture.vDirection);
    }
    double from = 0.0;
    double to = 0.0;
    image.getTextureRanges(0, from, to);
    image.getTextureRanges(1, from, to);
}

void fillMapping(dlDecal& decal, const uoDecalProperties& properties, const uoDecalFaceMapping& mapping,
                 uoMaterialTextureProperties& image)
{
    fillMappingType(decal.texture, properties.mappingKind);
    std::copy_n(properties.origin, 3, decal.texture.origin);
    fillDirections(decal.texture, image);
    decal.texture.mappingScalar = properties.mappingScalar;
    decal.setTextureTransU(mapping.transU);
    decal.setTextureTransV(mapping.transV);
    decal.setTextureAngleUV(mapping.angleUV);
}

// How the image lies in the mapping; degrees and metres.
struct Placement {
    double angle;
    double transX;
    double transY;
    bool mirrored;
};

Placement placementOfDocument(uoMaterialTextureProperties& image, const uoDecalFaceMapping& mapping)
{
    const double angle = image.getTextureAngle();
    const double transX = image.getTextureTransX();
    return {angle, transX, image.getTextureTransY(), mapping.mirrored != 0};
}

// Exactly a whole turn stays, and more than two keep the rest.
double withoutOneTurn(double angle)
{
    return angle > 360.0 ? angle - 360.0 : angle;
}

// A mark in the first direction hides one in the second. A marked record's own placement and its
// `mirrored` do not count: the document's placement is mirrored instead.
Placement placementOfRecord(dlDecal& decal, const Placement& document, const uoDecalFaceMapping& mapping)
{
    const double turned = 360.0 - document.angle;
    if (mapping.transU >= kMarkedFrom) {
        decal.setTextureTransU(mapping.transU - kMark);
        return {turned, -document.transX, document.transY, true};
    }
    if (mapping.transV >= kMarkedFrom) {
        decal.setTextureTransV(mapping.transV - kMark);
        return {withoutOneTurn(turned + 180.0), document.transX, -document.transY, true};
    }
    return {mapping.angle, mapping.transX, mapping.transY, document.mirrored};
}

void fillPlacement(dlTexture& texture, const Placement& placement, uoMaterialTextureProperties& image)
{
    const double sign = placement.mirrored ? -1.0 : 1.0;
    texture.scaleU = static_cast<float>(sign / image.getTextureScale(0));
    texture.scaleV = static_cast<float>(1.0 / image.getTextureScale(1));
    texture.angle = static_cast<float>((360.0 - placement.angle) * std::numbers::pi / 180.0);
    texture.transU = static_cast<float>(placement.transX);
    texture.transV = static_cast<float>(placement.transY);
    texture.filename = image.getTextureFilename();
}

// By the angle just stored, but by the document's translation, whatever took its place above.
void fillCentre(dlTexture& texture, const uoDecalProperties& properties, const uoDecalFaceMapping& mapping,
                uoMaterialTextureProperties& image)
{
    double transX = image.getTextureTransX();
    double transY = image.getTextureTransY();
    if (mapping.mirrored != 0 && properties.mappingKind == kOffsetWhenMirrored) {
        transX += static_cast<double>(properties.projectionOffsetU);
        transY -= static_cast<double>(properties.projectionOffsetV);
    }
    placeImageCentre(texture, image, transX, transY);
}

void placeImage(dlDecal& decal, const uoDecalProperties& properties, const uoDecalFaceMapping& mapping,
                uoMaterialTextureProperties& image)
{
    Placement placement = placementOfDocument(image, mapping);
    if (properties.mappingKind == kPlacedByRecord)
        placement = placementOfRecord(decal, placement, mapping);
    fillPlacement(decal.texture, placement, image);
    fillCentre(decal.texture, properties, mapping, image);
}

// A mask that only a search would find does not count, while a folder of that name does.
bool maskFileExists(const std::wstring& name)
{
    return !name.empty() && platform::pathKind(name) != platform::PathKind::kNothing;
}

void bakeMask(dlDecal& decal, uoDecalProperties& properties, const std::wstring& documentPath)
{
    std::list<unsigned long> colours = properties.getColorMask();
    if (!colours.empty()) {
        decal.setColorMask(std::move(colours));
        decal.generateNewImageUsingMaskColors(driveAndFolder(documentPath));
    } else if (maskFileExists(properties.maskFileName)) {
        decal.generateNewImageUsingMaskFile(driveAndFolder(documentPath), properties.maskFileName,
                                            properties.maskInvert != 0);
    }
}

}  // namespace

void attachInstanceDecals(uoTempAssemblySHDData_c& component, dlInstance* instance, dlPart* part,
                          const std::wstring& documentPath)
{
    FaceIndices faces;
    attachInstanceDecals(component, instance, part, documentPath, faces);
}

void attachInstanceDecals(uoTempAssemblySHDData_c& component, dlInstance* instance, dlPart* part,
                          const std::wstring& documentPath, FaceIndices& faces)
{
    if (!part || component.decals.empty())
        return;
    const FaceIndex& index = faces.of(*part);
    for (uoDecalProperties* properties : component.decals) {
        if (properties)
            attachToInstance(*properties, instance, index, documentPath);
    }
}

void attachPartDecals(uoTempPartTessData_c& tessData, dlPart* part, const std::wstring& documentPath,
                      int configurationIndex)
{
    FaceIndices faces;
    attachPartDecals(tessData, part, documentPath, configurationIndex, faces);
}

void attachPartDecals(uoTempPartTessData_c& tessData, dlPart* part, const std::wstring& documentPath,
                      int configurationIndex, FaceIndices& faces)
{
    if (!part)
        return;
    const auto entry = tessData.decalsByConfig.find(effectiveConfiguration(tessData, configurationIndex));
    if (entry == tessData.decalsByConfig.end() || entry->second.empty())
        return;
    const FaceIndex& index = faces.of(*part);
    for (uoDecalProperties* properties : entry->second) {
        if (properties)
            attachToFaces(*properties, index, documentPath);
    }
}

void translateDecal(dlDecal* decal, uoDecalProperties* properties, const uoDecalFaceMapping* mapping,
                    const std::wstring& documentPath)
{
    if (!decal || !properties || !mapping)
        return;
    uoMaterialProperties material = properties->materialProperties;
    uoMaterialTextureProperties image = properties->textureProperties;
    fillMaterial(*decal, material);
    fillMapping(*decal, *properties, *mapping, image);
    if (decal->texture.mappingType != kNoMapping)
        placeImage(*decal, *properties, *mapping, image);
    bakeMask(*decal, *properties, documentPath);
    decal->setUODecalId(properties->decalId);
    decal->setUseUnderlyingAppearance(properties->useUnderlyingAppearance);
}
