#include "reader/formats/ovdl/DocumentBuffer.h"

#include <ovdl_schema/document_generated.h>

#include <algorithm>
#include <list>
#include <map>
#include <vector>

#include "reader/formats/ovdl/ReaderArrays.h"
#include "reader/formats/ovdl/TextEncoding.h"

namespace ovdl {
namespace {

using flatbuffers::Offset;
using flatbuffers::Vector;
using Integers = Offset<Vector<std::int32_t>>;

fb::Double3 threeOf(const double (&numbers)[3])
{
    return fb::Double3(flatbuffers::span<const double, 3>(numbers));
}

fb::Float3 threeOf(const float (&numbers)[3])
{
    return fb::Float3(flatbuffers::span<const float, 3>(numbers));
}

// The nine, three and one numbers stand one behind the other in the class, but through bases and members.
fb::Xform xformOf(const mgXform_c& x)
{
    const double matrix[] = {x.e0, x.e1, x.e2, x.e3, x.e4, x.e5, x.e6, x.e7, x.e8};
    const double translation[] = {x.translation.x, x.translation.y, x.translation.z};
    return {flatbuffers::span<const double, 9>(matrix), flatbuffers::span<const double, 3>(translation),
            x.scale};
}

fb::Double3 colourOf(const color& c)
{
    const double components[] = {c.r, c.g, c.b};
    return threeOf(components);
}

template <class Vector3>
fb::Double3 vectorOf(const Vector3& v)
{
    const double components[] = {v.x, v.y, v.z};
    return threeOf(components);
}

enum ExtrasBits : std::uint8_t { kBlock = 1, kRecord = 2, kFirst = 4, kSecond = 8 };

// What the pointers point at is nobody's: only which of them are null is kept.
std::uint8_t extrasOf(const OVDLExtrasBlock* block)
{
    if (!block)
        return 0;
    const OVDLExtrasRecord* record = block->record;
    if (!record)
        return kBlock;
    return static_cast<std::uint8_t>(kBlock | kRecord | (record->first ? kFirst : 0) |
                                     (record->second ? kSecond : 0));
}

class DocumentBuilder {
public:
    DocumentBuilder(const DocumentContents& contents, const Inventory& inventory, BufferBuilder& builder)
        : contents_(contents), in_(inventory), builder_(builder)
    {
    }

    Bytes build()
    {
        const auto textVector = texts();
        const auto textures = tables(in_.textures, &DocumentBuilder::texture);
        const auto appearances = tables(in_.renderAppearances, &DocumentBuilder::renderAppearance);
        const auto materials = tables(in_.materials, &DocumentBuilder::material);
        const auto visuals = tables(in_.visuals, &DocumentBuilder::visual);
        const auto mappings = faceMappings();
        const auto decals = tables(in_.decals, &DocumentBuilder::decal);
        const auto lights = tables(in_.lights, &DocumentBuilder::light);
        const auto wallVector = walls();
        const auto sceneData = tables(in_.sceneData, &DocumentBuilder::sceneDataOf);
        const auto scenes = tables(in_.scenes, &DocumentBuilder::scene);
        const auto entries = tessellations();
        const auto components = tables(in_.components, &DocumentBuilder::component);
        const auto configurationVector = configurations();
        const auto partTable = contents_.part ? part(*contents_.part) : 0;
        const auto assemblyTable = contents_.assembly ? assembly(*contents_.assembly) : 0;
        fb::DocumentBuilder table(newTable());
        table.add_texts(textVector);
        table.add_textures(textures);
        table.add_renderAppearances(appearances);
        table.add_materials(materials);
        table.add_visuals(visuals);
        table.add_faceMappings(mappings);
        table.add_decals(decals);
        table.add_lights(lights);
        table.add_walls(wallVector);
        table.add_sceneData(sceneData);
        table.add_scenes(scenes);
        table.add_tessellations(entries);
        table.add_components(components);
        table.add_configurations(configurationVector);
        table.add_part(partTable);
        table.add_assembly(assemblyTable);
        table.add_reason(in_.texts.of(in_.reason));
        return builder_.finish(table.Finish(), kDocumentIdentifier);
    }

private:
    flatbuffers::FlatBufferBuilder& newTable() { return builder_.room(BufferBuilder::kLargestTable); }

    template <class T>
    Offset<Vector<T>> vector(const std::vector<T>& elements)
    {
        return builder_.vector<T>(elements);
    }

    // One table for each object, in the order of their numbers.
    template <class T, class Table>
    Offset<Vector<Offset<Table>>> tables(const ObjectNumbers<T>& objects,
                                         Offset<Table> (DocumentBuilder::*write)(const T&))
    {
        std::vector<Offset<Table>> made;
        made.reserve(objects.objects().size());
        for (const T* object : objects.objects())
            made.push_back((this->*write)(*object));
        return vector(made);
    }

    template <class T, class Objects>
    static std::vector<std::int32_t> numbersOf(const Objects& objects, const ObjectNumbers<T>& numbers)
    {
        std::vector<std::int32_t> list;
        for (const T* object : objects)
            list.push_back(numbers.of(object));
        return list;
    }

    Offset<Vector<Offset<flatbuffers::String>>> texts()
    {
        std::vector<Offset<flatbuffers::String>> made;
        made.reserve(in_.texts.texts().size());
        for (const std::wstring_view text : in_.texts.texts()) {
            const std::string bytes = encodeText(text);
            made.push_back(builder_.room(BufferBuilder::vectorBytes(bytes.size(), 1)).CreateString(bytes));
        }
        return vector(made);
    }

    Offset<fb::Texture> texture(const uoMaterialTextureProperties& from)
    {
        const fb::Double2 scale(flatbuffers::span<const double, 2>(from.scale));
        const double fromTo[] = {from.ranges[0][0], from.ranges[0][1], from.ranges[1][0],
                                 from.ranges[1][1]};
        double axes[6];
        for (int i = 0; i < 6; ++i)
            axes[i] = from.directions[i / 3][i % 3];
        const fb::Double4 ranges(flatbuffers::span<const double, 4>{fromTo});
        const fb::Double6 directions(flatbuffers::span<const double, 6>{axes});
        fb::TextureBuilder to(newTable());
        to.add_scale(&scale);
        to.add_ranges(&ranges);
        to.add_hasRanges(from.hasRanges);
        to.add_directions(&directions);
        to.add_hasDirections(from.hasDirections);
        to.add_angle(from.angle);
        to.add_transX(from.transX);
        to.add_transY(from.transY);
        to.add_filename(in_.texts.of(from.filename));
        return to.Finish();
    }

    Offset<fb::RenderAppearance> renderAppearance(const uoRVAppearanceProperties& from)
    {
        const fb::Float3 uDirection = threeOf(from.uDirection);
        const fb::Float3 vDirection = threeOf(from.vDirection);
        const fb::Float3 origin = threeOf(from.origin);
        fb::RenderAppearanceBuilder to(newTable());
        to.add_uDirection(&uDirection);
        to.add_vDirection(&vDirection);
        to.add_origin(&origin);
        to.add_surfaceFinish(from.surfaceFinish);
        to.add_decalValue(from.decalValue);
        to.add_colorRef(from.colorRef);
        to.add_index(from.index);
        to.add_mappingType(from.mappingType);
        to.add_flags(from.flags);
        to.add_secondColorRef(from.secondColorRef);
        to.add_decalAmbient(from.decalAmbient);
        to.add_decalDiffuse(from.decalDiffuse);
        to.add_decalSpecular(from.decalSpecular);
        to.add_shininess(from.shininess);
        to.add_unitLevel(from.unitLevel);
        to.add_levelA(from.levelA);
        to.add_levelB(from.levelB);
        to.add_luminous(from.luminous);
        to.add_levelC(from.levelC);
        to.add_levelD(from.levelD);
        to.add_mappingScalar(from.mappingScalar);
        to.add_weight(from.weight);
        to.add_lfpFilename(in_.texts.of(from.lfpFilename));
        to.add_bumpTextureFilename(in_.texts.of(from.bumpTextureFilename));
        to.add_filename(in_.texts.of(from.filename));
        to.add_shaderName(in_.texts.of(from.shaderName));
        to.add_dimpleFileNumber(from.dimpleFileNumber);
        to.add_knurlFileNumber(from.knurlFileNumber);
        return to.Finish();
    }

    Offset<fb::Material> material(const uoMaterialProperties& from)
    {
        fb::MaterialBuilder to(newTable());
        to.add_ambient(from.ambient);
        to.add_diffuse(from.diffuse);
        to.add_specular(from.specular);
        to.add_shininess(from.shininess);
        to.add_transparency(from.transparency);
        to.add_emission(from.emission);
        to.add_textureProperties(in_.textures.of(from.textureProperties));
        to.add_rvAppearance(in_.renderAppearances.of(from.rvAppearance));
        to.add_idName(in_.texts.of(from.idName));
        to.add_userName(in_.texts.of(from.userName));
        return to.Finish();
    }

    Offset<fb::VisualProperties> visual(const moVisualProperties_c& from)
    {
        fb::VisualPropertiesBuilder to(newTable());
        to.add_activeFlag(from.activeFlag);
        to.add_materialProps(in_.materials.of(from.materialProps));
        to.add_inheritFlag(from.inheritFlag);
        to.add_visualFlag(from.visualFlag);
        to.add_visualName(in_.texts.of(from.visualName));
        to.add_colorRef(from.colorRef);
        to.add_materialFileName(in_.texts.of(from.materialFileName));
        return to.Finish();
    }

    Offset<Vector<const fb::FaceMapping*>> faceMappings()
    {
        std::vector<fb::FaceMapping> made;
        for (const uoDecalProperties* decal : in_.decals.objects())
            for (const uoDecalFaceMapping& from : decal->faceMappings)
                made.emplace_back(from.faceId, from.transU, from.transV, from.angleUV, from.angle,
                                  from.transX, from.transY, from.mirrored);
        return builder_.structs<fb::FaceMapping>(made);
    }

    // The mappings of all decals stand in one vector, in the order of the decals.
    fb::Range nextMappings(std::size_t count)
    {
        const fb::Range range(mappings_, static_cast<std::uint32_t>(count));
        mappings_ += range.count();
        return range;
    }

    Offset<fb::Decal> decal(const uoDecalProperties& from)
    {
        const auto colorMask =
            vector(std::vector<std::uint32_t>(from.colorMask.begin(), from.colorMask.end()));
        const fb::Range mappings = nextMappings(from.faceMappings.size());
        const fb::Float3 origin = threeOf(from.origin);
        fb::DecalBuilder to(newTable());
        to.add_maskFileName(in_.texts.of(from.maskFileName));
        to.add_maskInvert(from.maskInvert);
        to.add_mappingScalar(from.mappingScalar);
        to.add_useUnderlyingAppearance(from.useUnderlyingAppearance);
        to.add_mappingKind(from.mappingKind);
        to.add_textureProperties(in_.textures.of(&from.textureProperties));
        to.add_decalId(from.decalId);
        to.add_faceMappings(&mappings);
        to.add_materialProperties(in_.materials.of(&from.materialProperties));
        to.add_projectionOffsetU(from.projectionOffsetU);
        to.add_projectionOffsetV(from.projectionOffsetV);
        to.add_origin(&origin);
        to.add_colorMask(colorMask);
        return to.Finish();
    }

    Offset<fb::Light> light(const moLight_c& from)
    {
        const fb::Double3 vectorA = threeOf(from.sourceVectorA);
        const fb::Double3 vectorB = threeOf(from.sourceVectorB);
        const fb::Double3 vectorC = threeOf(from.sourceVectorC);
        fb::LightBuilder to(newTable());
        to.add_lightType(from.lightType);
        to.add_sourceEnabled(from.sourceEnabled);
        to.add_sourceOptionA(from.sourceOptionA);
        to.add_sourceOptionB(from.sourceOptionB);
        to.add_sourceOptionC(from.sourceOptionC);
        to.add_sourceFactorA(from.sourceFactorA);
        to.add_sourceFactorB(from.sourceFactorB);
        to.add_sourceFactorC(from.sourceFactorC);
        to.add_sourceHaze(from.sourceHaze);
        to.add_sourceValueD(from.sourceValueD);
        to.add_sourceValueE(from.sourceValueE);
        to.add_sourceValueF(from.sourceValueF);
        to.add_sourceValueG(from.sourceValueG);
        to.add_sourceValueH(from.sourceValueH);
        to.add_sourceValueI(from.sourceValueI);
        to.add_sourceValueJ(from.sourceValueJ);
        to.add_sourceStamp(from.sourceStamp);
        to.add_lightIndex(from.lightIndex);
        to.add_packedColour(from.packedColour);
        to.add_sourceVectorA(&vectorA);
        to.add_sourceVectorB(&vectorB);
        to.add_sourceVectorC(&vectorC);
        to.add_sourceShapeA(from.sourceShapeA);
        to.add_sourceShapeB(from.sourceShapeB);
        to.add_sourceLevelB(from.sourceLevelB);
        to.add_sourceLevelC(from.sourceLevelC);
        return to.Finish();
    }

    Offset<Vector<const fb::Wall*>> walls()
    {
        std::vector<fb::Wall> made;
        for (const pwWallInfo_c* wall : in_.walls.objects())
            made.emplace_back(wall->reflectFlag);
        return builder_.structs<fb::Wall>(made);
    }

    Integers keysOf(const std::map<int, std::wstring>& images)
    {
        std::vector<std::int32_t> keys;
        for (const auto& [key, image] : images)
            keys.push_back(key);
        return vector(keys);
    }

    Offset<Vector<std::uint32_t>> textsOf(const std::map<int, std::wstring>& images)
    {
        std::vector<std::uint32_t> numbers;
        for (const auto& [key, image] : images)
            numbers.push_back(in_.texts.of(image));
        return vector(numbers);
    }

    Integers wallPairs(const pwSceneData_c& from)
    {
        std::vector<std::int32_t> pairs;
        for (const auto& [key, wall] : from.walls)
            pairs.insert(pairs.end(), {key, in_.walls.of(wall)});
        return vector(pairs);
    }

    Offset<fb::SceneData> sceneDataOf(const pwSceneData_c& from)
    {
        const auto imageKeys = keysOf(from.backgroundImages);
        const auto images = textsOf(from.backgroundImages);
        const auto envImageKeys = keysOf(from.backgroundEnvImages);
        const auto envImages = textsOf(from.backgroundEnvImages);
        const auto wallNumbers = wallPairs(from);
        const fb::Double3 color1 = colourOf(from.backgroundColor1);
        const fb::Double3 color2 = colourOf(from.backgroundColor2);
        fb::SceneDataBuilder to(newTable());
        to.add_shadowFlag(from.shadowFlag);
        to.add_backgroundKind(from.backgroundKind);
        to.add_backgroundBrightnessValue(from.backgroundBrightnessValue);
        to.add_renderingBrightnessValue(from.renderingBrightnessValue);
        to.add_reflectivityValue(from.reflectivityValue);
        to.add_backgroundColor1(&color1);
        to.add_backgroundColor2(&color2);
        to.add_backgroundImageKeys(imageKeys);
        to.add_backgroundImages(images);
        to.add_backgroundEnvImageKeys(envImageKeys);
        to.add_backgroundEnvImages(envImages);
        to.add_sceneFileName(in_.texts.of(from.sceneFileName));
        to.add_walls(wallNumbers);
        return to.Finish();
    }

    Offset<fb::Scene> scene(const ovScene_c& from)
    {
        const fb::Double3 point = vectorOf(from.floorPoint);
        const fb::Double3 direction = vectorOf(from.floorVector);
        fb::SceneBuilder to(newTable());
        to.add_floorOrientation(from.floorOrientation);
        to.add_floorDirection(from.floorDirection);
        to.add_sceneData(in_.sceneData.of(from.sceneData));
        to.add_floorPoint(&point);
        to.add_floorVector(&direction);
        return to.Finish();
    }

    Offset<Vector<const fb::TessellationEntry*>> tessellations()
    {
        const std::vector<fb::TessellationEntry> entries(in_.tessellationPieces.begin(),
                                                         in_.tessellationPieces.end());
        return builder_.structs<fb::TessellationEntry>(entries);
    }

    Offset<fb::Component> component(const uoTempAssemblySHDData_c& from)
    {
        const Integers decals = vector(numbersOf(from.decals, in_.decals));
        const fb::Xform xform = xformOf(from.xform);
        fb::ComponentBuilder to(newTable());
        to.add_name(in_.texts.of(from.name));
        to.add_xform(&xform);
        to.add_vizProps(in_.visuals.of(from.vizProps));
        to.add_visible(from.visible);
        to.add_configName(in_.texts.of(from.configName));
        to.add_tessData(in_.tessellations.of(from.tessData));
        to.add_configIndex(from.configIndex);
        to.add_decals(decals);
        return to.Finish();
    }

    Offset<Vector<Offset<fb::Configuration>>> configurations()
    {
        std::vector<Offset<fb::Configuration>> made;
        for (const auto& [name, array] : contents_.configurations)
            if (array)
                made.push_back(configuration(name, *array));
        return vector(made);
    }

    Offset<fb::Configuration> configuration(const std::wstring& name,
                                            const uoTempAssemblySHDDataArray_c& array)
    {
        const Integers components = vector(numbersOf(elementsOf(array), in_.components));
        fb::ConfigurationBuilder to(newTable());
        to.add_name(in_.texts.of(name));
        to.add_components(components);
        return to.Finish();
    }

    // No array at all is told from an empty one.
    Integers lightNumbers(const OVDLDocument& from)
    {
        if (!from.lightData)
            return 0;
        const auto numbers = numbersOf(elementsOf(*from.lightData), in_.lights);
        return builder_.room(BufferBuilder::vectorBytes(numbers.size(), 4)).CreateVector(numbers);
    }

    template <class Builder>
    void addCommon(const OVDLDocument& from, const fb::Xform& viewXform, const fb::Double3& viewPoint,
                   Integers lights, Builder& to)
    {
        to.add_rejected(from.rejected);
        to.add_lightData(lights);
        to.add_sceneHolder(in_.scenes.of(from.sceneHolder));
        to.add_viewXform(&viewXform);
        to.add_viewPoint(&viewPoint);
        to.add_viewScale(from.viewScale);
    }

    Offset<fb::Part> part(const OVDLPartDocument& from)
    {
        const Integers lights = lightNumbers(from);
        const fb::Xform xform = xformOf(from.viewXform);
        fb::PartBuilder to(newTable());
        addCommon(from, xform, threeOf(from.viewPoint), lights, to);
        to.add_tessData(in_.tessellations.of(from.tessData));
        to.add_activeConfigIndex(from.activeConfigIndex);
        return to.Finish();
    }

    Offset<fb::Assembly> assembly(const OVDLAssemblyDocument& from)
    {
        const Integers lights = lightNumbers(from);
        const Integers components = vector(numbersOf(elementsOf(from.components), in_.components));
        const fb::Xform xform = xformOf(from.viewXform);
        fb::AssemblyBuilder to(newTable());
        addCommon(from, xform, threeOf(from.viewPoint), lights, to);
        to.add_extras(extrasOf(from.extrasBlock));
        to.add_components(components);
        return to.Finish();
    }

    const DocumentContents& contents_;
    const Inventory& in_;
    BufferBuilder& builder_;
    std::uint32_t mappings_ = 0;
};

}  // namespace

Bytes buildDocument(const DocumentContents& contents, const Inventory& inventory, BufferBuilder& builder)
{
    return DocumentBuilder(contents, inventory, builder).build();
}

}  // namespace ovdl
