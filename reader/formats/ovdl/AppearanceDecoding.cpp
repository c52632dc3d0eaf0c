// Textures, materials, visual properties and decals.
#include <algorithm>

#include "reader/formats/ovdl/Decoding.h"
#include "reader/formats/ovdl/FixedArrays.h"

namespace ovdl::decoding {
namespace {

void fillTexture(const fb::Texture& from, uoMaterialTextureProperties& to, Decoding& decoding)
{
    copyArray(from.scale(), to.scale);
    copyArray(from.ranges(), to.ranges);
    to.hasRanges = from.hasRanges();
    copyArray(from.directions(), to.directions);
    to.hasDirections = from.hasDirections();
    to.angle = from.angle();
    to.transX = from.transX();
    to.transY = from.transY();
    to.filename = decoding.text(from.filename());
}

void fillMappingFrame(const fb::RenderAppearance& from, uoRVAppearanceProperties& to)
{
    copyArray(from.uDirection(), to.uDirection);
    copyArray(from.vDirection(), to.vDirection);
    copyArray(from.origin(), to.origin);
    to.mappingType = from.mappingType();
    to.mappingScalar = from.mappingScalar();
}

void fillColours(const fb::RenderAppearance& from, uoRVAppearanceProperties& to)
{
    to.colorRef = from.colorRef();
    to.secondColorRef = from.secondColorRef();
    to.decalAmbient = from.decalAmbient();
    to.decalDiffuse = from.decalDiffuse();
    to.decalSpecular = from.decalSpecular();
}

void fillLevels(const fb::RenderAppearance& from, uoRVAppearanceProperties& to)
{
    to.shininess = from.shininess();
    to.unitLevel = from.unitLevel();
    to.levelA = from.levelA();
    to.levelB = from.levelB();
    to.luminous = from.luminous();
    to.levelC = from.levelC();
    to.levelD = from.levelD();
    to.weight = from.weight();
}

void fillFiles(const fb::RenderAppearance& from, uoRVAppearanceProperties& to, Decoding& decoding)
{
    to.lfpFilename = decoding.text(from.lfpFilename());
    to.bumpTextureFilename = decoding.text(from.bumpTextureFilename());
    to.filename = decoding.text(from.filename());
    to.shaderName = decoding.text(from.shaderName());
    to.dimpleFileNumber = from.dimpleFileNumber();
    to.knurlFileNumber = from.knurlFileNumber();
}

void fillRenderAppearance(const fb::RenderAppearance& from, uoRVAppearanceProperties& to,
                          Decoding& decoding)
{
    fillMappingFrame(from, to);
    fillColours(from, to);
    fillLevels(from, to);
    fillFiles(from, to, decoding);
    to.surfaceFinish = from.surfaceFinish();
    to.decalValue = from.decalValue();
    to.index = from.index();
    to.flags = from.flags();
}

void fillMaterial(const fb::Material& from, uoMaterialProperties& to, Decoding& decoding)
{
    to.ambient = from.ambient();
    to.diffuse = from.diffuse();
    to.specular = from.specular();
    to.shininess = from.shininess();
    to.transparency = from.transparency();
    to.emission = from.emission();
    to.textureProperties = refer(decoding.objects.textures, from.textureProperties(), "textures");
    to.rvAppearance = refer(decoding.objects.renderAppearances, from.rvAppearance(), "renderAppearances");
    to.idName = decoding.text(from.idName());
    to.userName = decoding.text(from.userName());
}

void fillVisual(const fb::VisualProperties& from, moVisualProperties_c& to, Decoding& decoding)
{
    to.activeFlag = from.activeFlag();
    to.materialProps = refer(decoding.objects.materials, from.materialProps(), "materials");
    to.inheritFlag = from.inheritFlag();
    to.visualFlag = from.visualFlag();
    to.visualName = decoding.text(from.visualName());
    to.colorRef = from.colorRef();
    to.materialFileName = decoding.text(from.materialFileName());
}

uoDecalFaceMapping faceMapping(const fb::FaceMapping& from)
{
    uoDecalFaceMapping to;
    to.faceId = from.faceId();
    to.transU = from.transU();
    to.transV = from.transV();
    to.angleUV = from.angleUV();
    to.angle = from.angle();
    to.transX = from.transX();
    to.transY = from.transY();
    to.mirrored = from.mirrored();
    return to;
}

void fillFaceMappings(const fb::Decal& from, uoDecalProperties& to, Decoding& decoding)
{
    if (!from.faceMappings())
        return;
    const auto mappings =
        slice(*from.faceMappings(), structs(decoding.document.faceMappings()), "faceMappings");
    decoding.budget.charge(mappings.size(), sizeof(uoDecalFaceMapping) + kNode);
    for (const fb::FaceMapping& mapping : mappings) {
        decoding.steps.tick();
        to.faceMappings.push_back(faceMapping(mapping));
    }
}

void fillColourMask(const fb::Decal& from, uoDecalProperties& to, Decoding& decoding)
{
    const auto colours = values(from.colorMask());
    decoding.budget.charge(colours.size(), sizeof(std::uint32_t) + kNode);
    to.colorMask.assign(colours.begin(), colours.end());
}

// These two are held by value, so that their texts are copied.
void fillCopies(const fb::Decal& from, uoDecalProperties& to, Decoding& decoding)
{
    const auto* texture = refer(decoding.objects.textures, from.textureProperties(), "textures");
    if (texture) {
        decoding.budget.charge(texture->filename.size(), sizeof(wchar_t));
        to.textureProperties = *texture;
    }
    const auto* material = refer(decoding.objects.materials, from.materialProperties(), "materials");
    if (material) {
        decoding.budget.charge(material->idName.size() + material->userName.size(), sizeof(wchar_t));
        to.materialProperties = *material;
    }
}

void fillDecal(const fb::Decal& from, uoDecalProperties& to, Decoding& decoding)
{
    to.maskFileName = decoding.text(from.maskFileName());
    to.maskInvert = from.maskInvert();
    to.mappingScalar = from.mappingScalar();
    to.useUnderlyingAppearance = from.useUnderlyingAppearance();
    to.mappingKind = from.mappingKind();
    to.decalId = from.decalId();
    to.projectionOffsetU = from.projectionOffsetU();
    to.projectionOffsetV = from.projectionOffsetV();
    copyArray(from.origin(), to.origin);
    fillCopies(from, to, decoding);
    fillFaceMappings(from, to, decoding);
    fillColourMask(from, to, decoding);
}

}  // namespace

void decodeAppearances(Decoding& decoding)
{
    const fb::Document& document = decoding.document;
    DecodedObjects& objects = decoding.objects;
    decodeRecords(document.textures(), objects.textures, decoding, fillTexture);
    decodeRecords(document.renderAppearances(), objects.renderAppearances, decoding, fillRenderAppearance);
    decodeRecords(document.materials(), objects.materials, decoding, fillMaterial);
    decodeRecords(document.visuals(), objects.visuals, decoding, fillVisual);
    decodeRecords(document.decals(), objects.decals, decoding, fillDecal);
}

}  // namespace ovdl::decoding
