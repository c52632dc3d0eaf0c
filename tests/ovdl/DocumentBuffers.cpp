#include "tests/ovdl/DocumentBuffers.h"

#include <set>
#include <stdexcept>

#include "reader/formats/ovdl/Decoder.h"

namespace ovdl_tests {
namespace {

template <class T, std::size_t N, class Struct>
std::unique_ptr<Struct> filled(T first)
{
    T numbers[N];
    for (std::size_t i = 0; i < N; ++i)
        numbers[i] = first + static_cast<T>(i);
    return std::make_unique<Struct>(flatbuffers::span<const T, N>(numbers));
}

void require(bool holds, const char* what)
{
    if (!holds)
        throw std::logic_error(what);
}

// What is read here is summed up, so that no compiler leaves the reading out.
class Walk {
public:
    void take(const uoTempPartTessData_c& part)
    {
        if (!parts_.insert(&part).second)
            return;
        for (long long i = 0; i < part.bodies.count; ++i)
            if (uoTempBodyTessData_c* body = part.bodies.at(i))
                take(*body);
        for (const auto& [config, visual] : part.modelVizProps)
            take(visual);
        for (const auto& [config, decals] : part.decalsByConfig)
            take(decals);
    }

    void take(const uoTempAssemblySHDDataArray_c& components)
    {
        for (long long i = 0; i < components.count; ++i) {
            const uoTempAssemblySHDData_c* component = components.at(i);
            if (!component)
                continue;
            sum_ += component->xform.e0 + component->xform.scale;
            texts_ += component->name.size() + component->configName.size();
            take(component->vizProps);
            take(component->decals);
            if (component->tessData)
                take(*component->tessData);
        }
    }

    void take(OVDLDocument& document)
    {
        sum_ += document.viewXform.e0 + document.viewPoint[0] + document.viewScale;
        for (long long i = 0; document.lightData && i < document.lightData->count; ++i)
            if (const moLight_c* light = document.lightData->at(i))
                take(*light);
        if (document.sceneHolder && document.sceneHolder->sceneData)
            take(*document.sceneHolder->sceneData);
    }

    long long vertices() const { return vertices_; }
    double sum() const { return sum_ + static_cast<double>(texts_); }

private:
    void take(uoTempBodyTessData_c& body)
    {
        if (!bodies_.insert(&body).second)
            return;
        for (long long i = 0; i < body.faces.count; ++i)
            if (uoTempFaceTessData_c* face = body.faces.at(i))
                take(*face);
        for (const auto& [config, visual] : body.bodyVizProps)
            take(visual);
        for (const auto& [config, info] : body.bodyPropInfos)
            sum_ += info ? info->shown : 0;
    }

    void take(const uoTempFaceTessData_c& face)
    {
        if (!faces_.insert(&face).second)
            return;
        require(face.stripCount >= 0 && face.stripCount <= face.stripLengths.count, "strips");
        long long vertices = 0;
        for (std::int32_t strip = 0; strip < face.stripCount; ++strip) {
            require(face.stripLengths.data[strip] >= 0, "strip length");
            vertices += face.stripLengths.data[strip];
        }
        require(3 * vertices <= face.points.count && 3 * vertices <= face.normals.count, "vertices");
        require(face.hasUVs == 0 || 2 * vertices <= face.uvs.count, "texture coordinates");
        for (const auto* view : {&face.points, &face.normals, &face.uvs})
            for (long long i = 0; i < view->count; ++i)
                sum_ += view->data[i] > 0 ? 1 : 0;
        for (const auto& [config, visual] : face.faceVizProps)
            take(visual);
        sum_ += static_cast<double>(face.vizPropModes.size());
        vertices_ += vertices;
    }

    void take(const uoMaterialTextureProperties& texture)
    {
        sum_ += texture.scale[1] + texture.ranges[1][1] + texture.directions[1][2];
        texts_ += texture.filename.size();
    }

    void take(const uoMaterialProperties& material)
    {
        texts_ += material.idName.size() + material.userName.size();
        if (material.textureProperties)
            take(*material.textureProperties);
        if (material.rvAppearance)
            texts_ += material.rvAppearance->filename.size() + material.rvAppearance->shaderName.size();
    }

    void take(const moVisualProperties_c* visual)
    {
        if (!visual)
            return;
        texts_ += visual->visualName.size() + visual->materialFileName.size();
        if (visual->materialProps)
            take(*visual->materialProps);
    }

    void take(const std::list<uoDecalProperties*>& decals)
    {
        for (const uoDecalProperties* decal : decals) {
            if (!decal)
                continue;
            take(decal->textureProperties);
            take(decal->materialProperties);
            for (const uoDecalFaceMapping& mapping : decal->faceMappings)
                sum_ += mapping.transU;
            for (const std::uint32_t colour : decal->colorMask)
                sum_ += colour;
        }
    }

    void take(const moLight_c& light)
    {
        sum_ += static_cast<double>(light.getLightType());
        sum_ += light.sourceVectorC[2];
    }

    void take(pwSceneData_c& scene)
    {
        sum_ += scene.getBackgroundColor2().b;
        for (const auto& [index, name] : scene.backgroundImages)
            texts_ += name.size();
        for (const auto& [index, wall] : scene.walls)
            sum_ += wall ? wall->reflectFlag : 0;
    }

    std::set<const void*> parts_;
    std::set<const void*> bodies_;
    std::set<const void*> faces_;
    long long vertices_ = 0;
    std::size_t texts_ = 0;
    double sum_ = 0;
};

fb::RenderAppearanceT renderAppearance(Draft& draft)
{
    fb::RenderAppearanceT made;
    made.uDirection = filled<float, 3, fb::Float3>(1);
    made.vDirection = filled<float, 3, fb::Float3>(4);
    made.origin = filled<float, 3, fb::Float3>(7);
    made.surfaceFinish = 10;
    made.decalValue = 11;
    made.colorRef = 12;
    made.index = 13;
    made.mappingType = 14;
    made.flags = 15;
    made.secondColorRef = 16;
    made.decalAmbient = 17;
    made.decalDiffuse = 18;
    made.decalSpecular = 19;
    made.shininess = 20;
    made.unitLevel = 21;
    made.levelA = 22;
    made.levelB = 23;
    made.luminous = 24;
    made.levelC = 25;
    made.levelD = 26;
    made.mappingScalar = 27;
    made.weight = 28;
    made.lfpFilename = draft.text("a.lfp");
    made.bumpTextureFilename = draft.text("bump.png");
    made.filename = draft.text("c.p2m");
    made.shaderName = draft.text("shader");
    made.dimpleFileNumber = 29;
    made.knurlFileNumber = 30;
    return made;
}

void addAppearances(Draft& draft)
{
    fb::DocumentT& document = draft.document;
    fb::TextureT texture;
    texture.scale = filled<double, 2, fb::Double2>(2);
    texture.ranges = filled<double, 4, fb::Double4>(3);
    texture.hasRanges = true;
    texture.directions = filled<double, 6, fb::Double6>(10);
    texture.hasDirections = true;
    texture.angle = 45;
    texture.transX = 1.5;
    texture.transY = 2.5;
    texture.filename = draft.text("wood.png");
    document.textures.push_back(std::make_unique<fb::TextureT>(texture));
    document.renderAppearances.push_back(std::make_unique<fb::RenderAppearanceT>(renderAppearance(draft)));
    fb::MaterialT material;
    material.ambient = 0.1;
    material.diffuse = 0.2;
    material.specular = 0.3;
    material.shininess = 0.4;
    material.transparency = 0.5;
    material.emission = 0.6;
    material.textureProperties = 0;
    material.rvAppearance = 0;
    material.idName = draft.text("id");
    material.userName = draft.text("user \xC3\xA4");
    document.materials.push_back(std::make_unique<fb::MaterialT>(material));
    fb::VisualPropertiesT visual;
    visual.activeFlag = 1;
    visual.materialProps = 0;
    visual.inheritFlag = 2;
    visual.visualFlag = 3;
    visual.visualName = draft.text("visual");
    visual.colorRef = 0x123456;
    visual.materialFileName = draft.text("m.mat");
    document.visuals.push_back(std::make_unique<fb::VisualPropertiesT>(visual));
}

void addDecal(Draft& draft)
{
    fb::DocumentT& document = draft.document;
    document.faceMappings.emplace_back(7, 1.0f, 2.0f, 3.0f, 4.0f, 5.0f, 6.0f, 1);
    document.faceMappings.emplace_back(8, 7.0f, 8.0f, 9.0f, 10.0f, 11.0f, 12.0f, 0);
    fb::DecalT decal;
    decal.maskFileName = draft.text("mask.bmp");
    decal.maskInvert = 1;
    decal.mappingScalar = 2.5f;
    decal.useUnderlyingAppearance = 1;
    decal.mappingKind = 4;
    decal.textureProperties = 0;
    decal.decalId = 99;
    decal.faceMappings = std::make_unique<fb::Range>(0, 2);
    decal.materialProperties = 0;
    decal.projectionOffsetU = 0.25f;
    decal.projectionOffsetV = 0.75f;
    decal.origin = filled<float, 3, fb::Float3>(5);
    decal.colorMask = {0xFF, 0xFF00};
    document.decals.push_back(std::make_unique<fb::DecalT>(decal));
}

void addLightsAndScene(Draft& draft)
{
    fb::DocumentT& document = draft.document;
    for (const std::int32_t type : {2, 3, 4, 6}) {
        fb::LightT light;
        light.lightType = type;
        light.sourceStamp = 0x7FF8000000000001u;
        light.sourceVectorA = filled<double, 3, fb::Double3>(type);
        light.lightIndex = type;
        document.lights.push_back(std::make_unique<fb::LightT>(light));
    }
    document.walls.emplace_back(5);
    fb::SceneDataT data;
    data.backgroundKind = 3;
    data.backgroundColor1 = filled<double, 3, fb::Double3>(1);
    data.backgroundColor2 = filled<double, 3, fb::Double3>(4);
    data.backgroundImageKeys = {0, -3};
    data.backgroundImages = {draft.text("front.png"), 0};
    data.backgroundEnvImageKeys = {2};
    data.backgroundEnvImages = {draft.text("env.hdr")};
    data.sceneFileName = draft.text("scene.p2s");
    data.walls = {0, 0, 4, -1};
    document.sceneData.push_back(std::make_unique<fb::SceneDataT>(data));
    fb::SceneT scene;
    scene.floorOrientation = 2;
    scene.sceneData = 0;
    scene.floorPoint = filled<double, 3, fb::Double3>(1);
    scene.floorVector = filled<double, 3, fb::Double3>(4);
    document.scenes.push_back(std::make_unique<fb::SceneT>(scene));
}

void addGeometry(Draft& draft)
{
    fb::TessellationT& first = draft.addTessellation(2);
    fb::TessellationT& second = *draft.tessellations[0][1];
    addFace(first, 4, true, 7);
    addFace(second, 3, false, 8);
    first.faceVizProps.emplace_back(0, 0);
    first.faceVizProps.emplace_back(-1, -1);
    first.vizPropModes.emplace_back(0, 2);
    editFace(first, 0, [](FaceFields& face) {
        face.faceVizProps = {0, 2};
        face.vizPropModes = {0, 1};
    });
    fb::BodyT& body = addBody(first, {0, -1, 1});
    body.flag = 1;
    body.level = 3;
    body.bodyVizProps = {0, 0, 1, -1};
    body.bodyPropInfos = {0, 0, 1, 1};
    first.bodies.push_back(-1);
    first.propInfos.emplace_back(1);
    first.propInfos.emplace_back(0);
    first.modelVizProps = {0, 0, 1, 0};
    first.decalsByConfig = {0, 2, 0, -1, 1, 0};
    fb::TessellationT& other = draft.addTessellation();
    addBody(other, {addFace(other, 5)});
}

}  // namespace

Draft everything()
{
    Draft draft;
    addAppearances(draft);
    addDecal(draft);
    addLightsAndScene(draft);
    addGeometry(draft);
    fb::ComponentT& a = draft.addComponent("a-1@top", 0);
    const double numbers[] = {0, 1, 0, -1, 0, 0, 0, 0, 1};
    const double places[] = {10, 20, 30};
    a.xform = std::make_unique<fb::Xform>(flatbuffers::span<const double, 9>(numbers),
                                          flatbuffers::span<const double, 3>(places), 2.0);
    a.vizProps = 0;
    a.configName = draft.text("Default");
    a.decals = {0, -1, 0};
    draft.addComponent("sub-1@top/b-1@sub", 1).visible = 0;
    fb::ConfigurationT configuration;
    configuration.name = draft.text("Other");
    configuration.components = {1, -1, 0};
    draft.document.configurations.push_back(std::make_unique<fb::ConfigurationT>(configuration));
    fb::AssemblyT& assembly = draft.assembly();
    assembly.lightData = {0, 1, -1, 2, 3};
    assembly.sceneHolder = 0;
    assembly.viewPoint = filled<double, 3, fb::Double3>(1);
    assembly.viewScale = 0.5;
    assembly.extras = 15;
    assembly.components = {0, 1};
    return draft;
}

ovdl::ReadOutcome decode(const Buffers& buffers, Context& context)
{
    return ovdl::decodeDocument(std::make_unique<MemoryStreams>(buffers), context);
}

ovdl::ReadOutcome decode(const Buffers& buffers)
{
    Context context;
    return decode(buffers, context);
}

long long walk(ovdl::ReadDocument& document)
{
    Walk walk;
    require(document.part() || document.assembly(), "no document");
    if (OVDLPartDocument* part = document.part()) {
        walk.take(*part);
        if (part->tessData)
            walk.take(*part->tessData);
    }
    if (OVDLAssemblyDocument* assembly = document.assembly()) {
        walk.take(*assembly);
        walk.take(assembly->components);
    }
    const auto contents = dynamic_cast<ovdl::DecodedDocument&>(document).contents();
    for (const auto& [name, components] : contents.configurations) {
        require(document.configuration(name) == components, "configuration");
        walk.take(*components);
    }
    require(walk.sum() != 1e300, "sum");
    return walk.vertices();
}

}  // namespace ovdl_tests
