// Exported files: what the Khronos validator says of them, and what they are when they are loaded
// again.
#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <nlohmann/json.hpp>
#include <sstream>

#include "Documents.h"
#include "Folder.h"
#include "Models.h"
#include "Process.h"
#include "raylume/scene/dlDecal.h"
#include "reader/HostHandlers.h"
#include "tools/GltfExport.h"

namespace {

using nlohmann::json;
using testing::HasSubstr;
using tool_test::band;
using tool_test::DocumentBuilder;
using tool_test::FaceData;
using tool_test::Folder;
using tool_test::ModelBuilder;
using tool_test::Prepared;
using tool_test::Strip;
using tool_test::triangle;

constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr float kMax = std::numeric_limits<float>::max();

bool never()
{
    return false;
}

std::unique_ptr<dlModel> load(const std::string& path)
{
    std::unique_ptr<dlModel> model(dlModel::ReadModel(path.c_str()));
    if (!model || model->loadRejected)
        throw std::runtime_error(path + " gives no model: " + ovdl::lastReason());
    return model;
}

tool::GltfDocument exported(const dlModel& model, const std::string& path)
{
    tool::GltfDocument document = tool::exportModel(model, never);
    std::ofstream file(path, std::ios::binary);
    tool::writeGlb(document, file);
    file.close();
    EXPECT_EQ(std::filesystem::file_size(path), tool::glbSize(document));
    return document;
}

void expectValid(const std::string& path)
{
    tool_test::Program program;
    program.command = {RAYLUME_NODE, RAYLUME_VALIDATOR, path};
    const tool_test::Finished finished = tool_test::run(program);
    EXPECT_EQ(finished.exitStatus, 0) << finished.out << finished.err;
}

// ------------------------------------------------------------------------- comparing two models

using Point = std::array<float, 3>;
using Triangle = std::array<Point, 3>;

// Starts with the smallest corner and keeps the winding.
Triangle canonical(Triangle triangle)
{
    std::rotate(triangle.begin(), std::min_element(triangle.begin(), triangle.end()), triangle.end());
    return triangle;
}

void addFace(const dlFace& face, std::vector<Triangle>& triangles)
{
    for (std::int32_t s = 0; s < face.stripCount; ++s)
        for (std::int32_t i = 0; i + 2 < face.stripLengths[s]; ++i) {
            Triangle made;
            for (int corner = 0; corner < 3; ++corner) {
                const float* vertex = face.vertices + 6 * (face.stripStarts[s] + i + corner);
                made[corner] = {vertex[0], vertex[1], vertex[2]};
            }
            if (i % 2)
                std::swap(made[0], made[1]);
            if (made[0] != made[1] && made[1] != made[2] && made[0] != made[2])
                triangles.push_back(canonical(made));
        }
}

// In the part's own space, sorted.
std::vector<Triangle> trianglesOf(const dlPart& part)
{
    std::vector<Triangle> triangles;
    for (std::int32_t b = 0; b < part.bodyCount; ++b)
        for (std::int32_t f = 0; f < part.bodies[b].faceCount; ++f)
            addFace(part.bodies[b].faces[f], triangles);
    std::sort(triangles.begin(), triangles.end());
    return triangles;
}

long long triangleCountOf(const dlPart& part)
{
    long long count = 0;
    for (std::int32_t b = 0; b < part.bodyCount; ++b)
        for (std::int32_t f = 0; f < part.bodies[b].faceCount; ++f)
            count += part.bodies[b].faces[f].triangleCount;
    return count;
}

// Within the given share of the largest number.
void expectSameNumbers(const float* a, const float* b, int count, float tolerance)
{
    float largest = 0;
    for (int i = 0; i < count; ++i)
        largest = std::max(largest, std::abs(a[i]));
    for (int i = 0; i < count; ++i)
        EXPECT_NEAR(a[i], b[i], tolerance * largest) << i;
}

// `tolerance` is for placements and the box; geometry has to be the same to the bit.
void expectSameModel(dlModel& before, dlModel& after, float tolerance)
{
    ASSERT_EQ(before.instanceCount, after.instanceCount);
    for (std::int32_t i = 0; i < before.instanceCount; ++i) {
        expectSameNumbers(before.instances[i].xform.m, after.instances[i].xform.m, 16, tolerance);
        const auto triangles = trianglesOf(*after.instances[i].part);
        EXPECT_EQ(trianglesOf(*before.instances[i].part), triangles) << i;
        EXPECT_EQ(triangleCountOf(*after.instances[i].part), static_cast<long long>(triangles.size())) << i;
    }
    ASSERT_EQ(before.bbox.isSet(), after.bbox.isSet());
    expectSameNumbers(before.bbox.min, after.bbox.min, 3, tolerance);
    expectSameNumbers(before.bbox.max, after.bbox.max, 3, tolerance);
}

// ------------------------------------------------------------------------------- round trips

using Columns = std::array<double, 12>;

struct RoundTrip {
    const char* name;
    std::function<void(DocumentBuilder&)> fill;
    float tolerance;
};
void PrintTo(const RoundTrip& row, std::ostream* out)
{
    *out << row.name;
}

void onePlaced(DocumentBuilder& builder, const Columns& columns)
{
    auto* part = builder.simplePart({band(5, 0.25f)});
    auto* placed = builder.component(L"placed-1@t", part);
    builder.place(*placed, columns);
    builder.assembly({placed, builder.component(L"other-1@t", part)});
}

// A face of two strips that meet, normals of every kind.
void manyNormals(DocumentBuilder& builder)
{
    Strip strip = band(6);
    strip[0][5] = 5;
    strip[1][5] = 0;
    strip[2][3] = 1e-30f;
    strip[3] = {1, 1, 0, kNaN, 0, 1};
    strip[4][4] = kInfinity;
    builder.assembly({builder.component(L"a-1@t", builder.simplePart({strip, band(3, 1)})),
                      builder.component(L"b-1@t", builder.simplePart({band(2)}))});
}

void nested(DocumentBuilder& builder)
{
    auto* bolt = builder.simplePart({band(7)});
    auto* plate = builder.part({builder.body({builder.face({band(2)}), builder.face({band(3, 1)})}),
                                builder.body({builder.face({band(4, 2)})})});
    std::vector<uoTempAssemblySHDData_c*> components;
    for (const wchar_t* name : {L"frame-1@t/plate-1@frame", L"frame-1@t/row-1@frame/bolt-1@row",
                                L"frame-1@t/row-1@frame/bolt-2@row", L"frame-1@t/row-2@frame/bolt-1@row",
                                L"plate-1@t", L"frame-2@t/plate-1@frame"}) {
        const bool isBolt = std::wstring(name).find(L"bolt") != std::wstring::npos;
        components.push_back(builder.component(name, isBolt ? bolt : plate));
        const double offset = double(components.size()) / 3;
        builder.place(*components.back(), {0, 1, 0, -1, 0, 0, 0, 0, 1, offset, -offset, 0.1});
    }
    builder.assembly(components);
}

const RoundTrip kRoundTrips[] = {
    {"nested_subassemblies_with_shared_parts", nested, 0},
    {"a_rotation_keeps_its_bits",
     [](DocumentBuilder& b) {
         onePlaced(b, {0.6, 0.8, 0, -0.8, 0.6, 0, 0, 0, 1, 1, 2, 0.3});
     },
     0},
    {"a_mirror_keeps_its_bits",
     [](DocumentBuilder& b) {
         onePlaced(b, {-1, 0, 0, 0, 1, 0, 0, 0, 1, 0.1, 0.2, 0.3});
     },
     0},
    {"three_scales_keep_their_bits",
     [](DocumentBuilder& b) {
         onePlaced(b, {0, 0, 3, 0.1, 0, 0, 0, 7, 0, 0, 0, 0});
     },
     0},
    {"a_shear",
     [](DocumentBuilder& b) {
         onePlaced(b, {1, 0, 0, 0.5, 1, 0, 0.25, 0.125, 1, 1, 2, 3});
     },
     1e-6f},
    {"a_shear_that_mirrors",
     [](DocumentBuilder& b) {
         onePlaced(b, {1, 0, 0, 0.5, -1, 0, 0.25, 0.125, 1, 1, 2, 3});
     },
     1e-6f},
    {"a_flat_placement",
     [](DocumentBuilder& b) {
         onePlaced(b, {1, 0, 0, 0, 1, 0, 0, 0, 0, 1, 2, 3});
     },
     1e-6f},
    {"a_placement_onto_a_line",
     [](DocumentBuilder& b) {
         onePlaced(b, {1, 2, 3, 1, 2, 3, 1, 2, 3, 0, 0, 0});
     },
     1e-6f},
    {"a_placement_onto_a_point",
     [](DocumentBuilder& b) {
         onePlaced(b, {0, 0, 0, 0, 0, 0, 0, 0, 0, 4, 5, 6});
     },
     1e-6f},
    {"a_huge_scale",
     [](DocumentBuilder& b) {
         onePlaced(b, {1e20, 0, 0, 0, 0, 1e20, 0, -1e20, 0, 0, 0, 0});
     },
     1e-6f},
    {"a_tiny_scale",
     [](DocumentBuilder& b) {
         onePlaced(b, {1e-20, 0, 0, 0, 0, 1e-20, 0, -1e-20, 0, 0, 0, 0});
     },
     1e-6f},
    {"scales_far_apart",
     [](DocumentBuilder& b) {
         onePlaced(b, {1e-8, 0, 0, 0, 1, 0, 0, 0, 1e8, 1, 1, 1});
     },
     1e-6f},
    {"normals_of_every_kind", manyNormals, 0},
    {"joined_strips",
     [](DocumentBuilder& b) {
         Strip strip = band(4);
         const Strip second = band(3, 1);
         strip.push_back(strip.back());
         strip.push_back(second.front());
         strip.insert(strip.end(), second.begin(), second.end());
         b.assembly({b.component(L"a-1@t", b.simplePart({strip})),
                     b.component(L"b-1@t", b.simplePart({band(1)}))});
     },
     0},
    {"coordinates_of_every_size",
     [](DocumentBuilder& b) {
         Strip strip = band(3);
         strip[0][0] = -1e30f;
         strip[1][1] = 1e-40f;
         strip[2][2] = -0.0f;
         strip[3][2] = 3e37f;
         b.assembly({b.component(L"a-1@t", b.simplePart({strip})),
                     b.component(L"b-1@t", b.simplePart({band(1)}))});
     },
     0},
    {"parts_without_triangles",
     [](DocumentBuilder& b) {
         b.assembly({b.component(L"bodiless-1@t", b.part({})),
                     b.component(L"faceless-1@t", b.part({b.body({})})),
                     b.component(L"stripless-1@t", b.simplePart({})),
                     b.component(L"short-1@t", b.simplePart({{}, {}})),
                     b.component(L"whole-1@t", b.simplePart({band(2)}))});
     },
     0},
    {"a_part_document_without_triangles", [](DocumentBuilder& b) { b.partDocument(b.part({})); }, 0},
    {"a_part_document",
     [](DocumentBuilder& b) {
         b.partDocument(b.part({b.body({b.face({band(4)}), b.face({band(2, 1)})})}));
     },
     0},
};
class RoundTrips : public testing::TestWithParam<RoundTrip> {};
TEST_P(RoundTrips, GiveTheSameModelAgain)
{
    const Folder folder;
    const Prepared document("/prepared/t.asm", GetParam().fill);
    const auto before = load(document.path());
    exported(*before, folder / "t.glb");
    expectValid(folder / "t.glb");
    const auto after = load(folder / "t.glb");
    expectSameModel(*before, *after, GetParam().tolerance);
    EXPECT_EQ(before->isPartDocument, after->isPartDocument);
    const auto again = tool::exportModel(*after, never);
    std::ofstream file(folder / "again.glb", std::ios::binary);
    tool::writeGlb(again, file);
    file.close();
    expectValid(folder / "again.glb");
    expectSameModel(*before, *load(folder / "again.glb"), 2 * GetParam().tolerance);
}
INSTANTIATE_TEST_SUITE_P(Rows, RoundTrips, testing::ValuesIn(kRoundTrips),
                         [](const auto& row) { return row.param.name; });

TEST(RoundTrip, KeepsComponentPaths)
{
    const Folder folder;
    const Prepared document("/prepared/t.asm", nested);
    const auto before = load(document.path());
    exported(*before, folder / "t.glb");
    const auto after = load(folder / "t.glb");
    ASSERT_EQ(before->instanceCount, after->instanceCount);
    for (std::int32_t i = 0; i < before->instanceCount; ++i)
        EXPECT_EQ(before->instances[i].name, after->instances[i].name);
}

TEST(RoundTrip, KeepsSamples)
{
    for (const char* name : {"gearbox.gltf", "bracket.gltf"}) {
        const Folder folder;
        const auto before = load(std::string(RAYLUME_SAMPLES) + "/" + name);
        const std::string copy = folder / (std::string(name, std::strchr(name, '.')) + ".glb");
        exported(*before, copy);
        expectValid(copy);
        const auto after = load(copy);
        expectSameModel(*before, *after, 0);
        EXPECT_EQ(before->isPartDocument, after->isPartDocument);
        std::vector<dlPart*> partsBefore;
        std::vector<dlPart*> partsAfter;
        before->getAllDLParts(partsBefore);
        after->getAllDLParts(partsAfter);
        EXPECT_EQ(partsBefore.size(), partsAfter.size());
        for (std::int32_t i = 0; i < before->instanceCount; ++i)
            EXPECT_EQ(before->instances[i].name, after->instances[i].name);
    }
}

// ---------------------------------------------------------------------------------- odd models

/// Exports a model, holds the file against the validator, and gives its JSON.
json exportedJson(const dlModel& model, tool::ExportNotes* notes = nullptr)
{
    const Folder folder;
    const tool::GltfDocument document = exported(model, folder / "m.glb");
    expectValid(folder / "m.glb");
    if (notes)
        *notes = document.notes;
    return json::parse(document.json);
}

std::unique_ptr<dlModel> oneInstance(const FaceData& face, const std::string& name = "a-1@t")
{
    ModelBuilder builder;
    dlPart& part = builder.part({face});
    return ModelBuilder::withTree(builder.instance(name, &part).build());
}

TEST(Export, OfAnEmptyModelIsValid)
{
    const json made = exportedJson(*ModelBuilder::withTree(ModelBuilder().build()));
    EXPECT_FALSE(made.contains("nodes"));
    EXPECT_FALSE(made.contains("buffers"));
    exportedJson(dlModel());
}

TEST(Export, OfAPartWithoutTrianglesDrawsNothing)
{
    const json made = exportedJson(*oneInstance({{}, {}, {}}));
    EXPECT_EQ(made["nodes"][0]["name"], "a");
    EXPECT_EQ(made["nodes"][0]["mesh"], 0);
    EXPECT_EQ(made["meshes"][0]["primitives"][0]["mode"], 1);
    EXPECT_EQ(made["accessors"][0]["min"], made["accessors"][0]["max"]);
    EXPECT_EQ(made["accessors"].size(), 1u);
}

TEST(Export, CountsTrianglesWithoutAPlace)
{
    FaceData face = triangle();
    face.vertices.insert(face.vertices.end(), face.vertices.begin(), face.vertices.end());
    face.stripLengths.push_back(3);
    face.vertices[2] = kNaN;
    tool::ExportNotes notes;
    const json made = exportedJson(*oneInstance(face), &notes);
    EXPECT_EQ(notes.trianglesWithoutPlace, 1);
    EXPECT_EQ(made["accessors"].size(), 3u);
}

TEST(Export, KeepsInstancesWithoutAPlaceAsNodes)
{
    for (const float bad : {kNaN, kInfinity}) {
        auto model = oneInstance(triangle());
        model->instances[0].xform.m[13] = bad;
        tool::ExportNotes notes;
        const json made = exportedJson(*model, &notes);
        EXPECT_EQ(notes.instancesWithoutPlace, 1);
        EXPECT_EQ(made["nodes"][0]["extras"]["placement"], "not finite");
        EXPECT_FALSE(made["nodes"][0].contains("mesh"));
    }
}

TEST(Export, WritesNamesThatAreNoTextAsTextAllTheSame)
{
    auto model = oneInstance(triangle(), "s\xFF-1@t/a\xC3(\"\\\n-1@s");
    model->modelName = "\xFE.asm";
    model->instances[0].part->material.userName = "\xF0\x28";
    const json made = exportedJson(*model);
    EXPECT_EQ(made["nodes"][1]["name"], "s\xEF\xBF\xBD");
    EXPECT_EQ(made["nodes"][0]["name"], "a\xEF\xBF\xBD(\"\\\n");
}

TEST(Export, NamesNodesWithoutNumberAndOwner)
{
    EXPECT_EQ(exportedJson(*oneInstance(triangle(), "left-arm-12@t"))["nodes"][0]["name"], "left-arm");
    EXPECT_EQ(exportedJson(*oneInstance(triangle(), "plain"))["nodes"][0]["name"], "plain");
    EXPECT_FALSE(exportedJson(*oneInstance(triangle(), ""))["nodes"][0].contains("name"));
}

TEST(Export, MarksHiddenInstances)
{
    auto model = oneInstance(triangle());
    EXPECT_FALSE(exportedJson(*model)["nodes"][0].contains("extras"));
    model->instances[0].visible = 0;
    const json made = exportedJson(*model);
    EXPECT_EQ(made["nodes"][0]["extras"], json::parse(R"({"visible": 0})"));
    EXPECT_EQ(made["nodes"][0]["mesh"], 0);
}

TEST(Export, LeavesTheBottomRowOfAPlacementOut)
{
    auto model = oneInstance(triangle());
    float* m = model->instances[0].xform.m;
    m[3] = m[7] = kNaN;
    m[11] = 5;
    m[15] = 0;
    m[12] = 2;
    EXPECT_EQ(exportedJson(*model)["nodes"][0]["matrix"],
              json::parse("[1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 2, 0, 0, 1]"));
}

TEST(Export, OfExtremeCoordinatesIsValid)
{
    FaceData face = triangle();
    face.vertices[0] = kMax;
    face.vertices[6] = -kMax;
    face.vertices[13] = std::numeric_limits<float>::denorm_min();
    auto model = oneInstance(face);
    const json made = exportedJson(*model);
    EXPECT_EQ(made["accessors"][0]["max"][0], double(kMax));
    EXPECT_EQ(made["accessors"][0]["min"][0], -double(kMax));
    for (const float scale : {kMax, 1e-45f}) {
        model->instances[0].xform.m[0] = scale;
        model->instances[0].xform.m[4] = scale;
        exportedJson(*model);
    }
}

TEST(Export, WritesTheGeometryOfAPartOnce)
{
    ModelBuilder builder;
    dlPart& part = builder.part({triangle(), triangle()});
    for (int i = 0; i < 50; ++i)
        builder.instance("a-" + std::to_string(i) + "@t", &part);
    auto model = ModelBuilder::withTree(builder.build());
    for (int i = 0; i < 50; ++i)
        model->instances[i].xform.m[12] = float(i);
    const json made = exportedJson(*model);
    EXPECT_EQ(made["meshes"].size(), 1u);
    EXPECT_EQ(made["meshes"][0]["primitives"].size(), 2u);
    EXPECT_EQ(made["accessors"].size(), 6u);
    EXPECT_EQ(made["nodes"].size(), 50u);
}

TEST(Export, TakesTheNearestAppearance)
{
    auto model = oneInstance(triangle());
    dlInstance& instance = model->instances[0];
    dlBody& body = instance.part->bodies[0];
    const auto used = [&] {
        const json made = exportedJson(*model);
        const json& primitive = made["meshes"][0]["primitives"][0];
        return primitive.contains("material") ? made["materials"][primitive["material"].get<int>()]["name"]
                                              : json();
    };
    const auto named = [](const char* name) {
        auto* material = new dlMaterial;
        material->userName = name;
        return material;
    };
    EXPECT_EQ(used(), json());
    instance.part->material.userName = "part";
    EXPECT_EQ(used(), "part");
    body.material = named("body");
    EXPECT_EQ(used(), "body");
    body.faces[0].material = named("face");
    EXPECT_EQ(used(), "face");
    instance.material = named("instance");
    EXPECT_EQ(used(), "instance");
}

TEST(Export, SharesGeometryBetweenAppearancesOfOnePart)
{
    ModelBuilder builder;
    dlPart& part = builder.part({triangle()});
    for (const char* name : {"a-1@t", "a-2@t", "a-3@t", "a-4@t"})
        builder.instance(name, &part);
    auto model = ModelBuilder::withTree(builder.build());
    for (int i = 0; i < 3; ++i) {
        model->instances[i].material = new dlMaterial;
        model->instances[i].material->transparency = i < 2 ? 0.5f : 0.25f;
    }
    const json made = exportedJson(*model);
    EXPECT_EQ(made["meshes"].size(), 3u);
    EXPECT_EQ(made["materials"].size(), 2u);
    EXPECT_EQ(made["accessors"].size(), 3u);
    for (const json& mesh : made["meshes"])
        EXPECT_EQ(mesh["primitives"][0]["attributes"], made["meshes"][0]["primitives"][0]["attributes"]);
}

TEST(Export, OfStrangeMaterialsIsValid)
{
    for (const float value : {kNaN, kInfinity, -kInfinity, -1.0f, 1e30f}) {
        auto model = oneInstance(triangle());
        dlMaterial& material = model->instances[0].part->material;
        std::fill_n(material.color, 3, value);
        material.transparency = material.emission = material.shininess = material.specular = value;
        exportedJson(*model);
    }
}

TEST(Export, OfTextureCoordinatesIsValid)
{
    FaceData face = triangle();
    face.uvs = {0, 0, kNaN, -5, 1e30f, 1};
    const json made = exportedJson(*oneInstance(face));
    EXPECT_TRUE(made["meshes"][0]["primitives"][0]["attributes"].contains("TEXCOORD_0"));
}

TEST(Export, OfADeepTreeIsValid)
{
    std::string name;
    for (int i = 0; i < 600; ++i)
        name += "n-1@n/";
    const json made = exportedJson(*oneInstance(triangle(), name + "a-1@n"));
    EXPECT_EQ(made["nodes"].size(), 601u);
}

TEST(Export, DoesNotRecurse)
{
    auto model = oneInstance(triangle());
    dlAssemblyNode* node = model->assemblyRoot;
    for (int i = 0; i < 60000; ++i) {
        auto* child = new dlAssemblyNode;
        child->parent = node;
        child->instances = new dlInstance*[0];
        node->children["n"] = child;
        node = child;
    }
    const json made = json::parse(tool::exportModel(*model, never).json);
    EXPECT_EQ(made["nodes"].size(), 60001u);
}

TEST(Export, LeavesInstancesWithoutAPartOut)
{
    ModelBuilder builder;
    auto model = ModelBuilder::withTree(builder.instance("a-1@t", nullptr).build());
    exportedJson(*model);
}

TEST(Export, OfLightsAndPlacementTracksIsValid)
{
    auto model = oneInstance(triangle());
    model->lightCount = 6;
    for (int i = 0; i < 6; ++i) {
        dlLight& light = model->lights[i];
        light.lightType = i + 1;
        light.name = L"Light_" + std::to_wstring(i);
        light.shapeValue = 1.2f;
        light.valueD = 3;
        light.valueF = i;
        light.rotation[1] = 0.7f;
        light.enabled = i != 3;
    }
    auto& keys = model->animationTracks[L"a-1@t"].transforms;
    for (int i = 0; i < 3; ++i) {
        dlTransformKey& key = keys[i - 1.0];
        key.matrix[0] = key.matrix[5] = key.matrix[10] = key.matrix[15] = 1 + i;
        key.matrix[12] = i;
    }
    const json made = exportedJson(*model);
    EXPECT_EQ(made["extensions"]["KHR_lights_punctual"]["lights"].size(), 4u);
    EXPECT_EQ(made["animations"].size(), 1u);
}

TEST(Export, OfLightsComesBack)
{
    const Folder folder;
    auto model = oneInstance(triangle());
    model->lightCount = 1;
    model->lights[0].lightType = 2;
    model->lights[0].shapeValue = 1;
    model->lights[0].valueD = 0.5f;
    model->lights[0].rotation[0] = 0.6f;
    model->lights[0].position[1] = 4;
    exported(*model, folder / "m.glb");
    const auto after = load(folder / "m.glb");
    ASSERT_EQ(after->lightCount, 1);
    EXPECT_EQ(after->lights[0].lightType, 2);
    EXPECT_EQ(after->lights[0].position[1], 4.0f);
    EXPECT_FLOAT_EQ(after->lights[0].shapeValue, 1.0f);
    EXPECT_FLOAT_EQ(after->lights[0].valueD, 0.5f);
    EXPECT_NEAR(after->lights[0].rotation[0], 0.6f, 1e-6);
    EXPECT_NEAR(after->lights[0].rotation[1], 0, 1e-6);
}

TEST(Export, CanBeCancelledBeforeEachPart)
{
    ModelBuilder builder;
    for (const char* name : {"a-1@t", "b-1@t"})
        builder.instance(name, &builder.part({triangle()}));
    const auto model = ModelBuilder::withTree(builder.build());
    int asked = 0;
    EXPECT_THROW(tool::exportModel(*model, [&asked] { return ++asked == 2; }), tool::ExportCancelled);
    EXPECT_EQ(asked, 2);
}

TEST(Export, RandomModelsAreValidAndComeBack)
{
    unsigned state = 5;
    const auto random = [&state](int bound) {
        state = state * 1664525u + 1013904223u;
        return static_cast<int>((state >> 8) % static_cast<unsigned>(bound));
    };
    for (int round = 0; round < 12; ++round) {
        const Folder folder;
        const Prepared document("/prepared/random.asm", [&](DocumentBuilder& builder) {
            std::vector<uoTempPartTessData_c*> parts;
            for (int p = 0; p < 3; ++p) {
                std::vector<uoTempFaceTessData_c*> faces;
                for (int f = 0; f <= random(3); ++f)
                    faces.push_back(builder.face({band(1 + random(9), float(f)), band(1 + random(4), -1)}));
                parts.push_back(builder.part({builder.body(faces)}));
            }
            std::vector<uoTempAssemblySHDData_c*> components;
            for (int i = 0; i < 12; ++i) {
                components.push_back(
                    builder.component(L"c-" + std::to_wstring(i + 1) + L"@t", parts[random(3)]));
                Columns columns;
                for (double& value : columns)
                    value = (random(2001) - 1000) / 400.0;
                builder.place(*components.back(), columns);
            }
            builder.assembly(components);
        });
        const auto before = load(document.path());
        exported(*before, folder / "random.glb");
        expectValid(folder / "random.glb");
        expectSameModel(*before, *load(folder / "random.glb"), 2e-6f);
    }
}

}  // namespace
