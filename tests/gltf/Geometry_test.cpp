// From accessors and primitives to the strips of faces.
#include <gmock/gmock.h>
#include <rapidcheck/gtest.h>

#include <cmath>
#include <limits>

#include "tests/gltf/GltfBuilder.h"
#include "tests/gltf/GltfReading.h"

namespace gltf_tests {
namespace {

using Floats = std::vector<float>;
using Indices = std::vector<std::uint32_t>;

ovdl::ReadOutcome readPrimitive(GltfBuilder& builder, const Json& primitive)
{
    builder.addNode({{"mesh", builder.addMesh(primitive)}});
    return readBytes(builder.glb());
}

// ------------------------------------------------------------------------------------ accessors

// Four vertices on a square, each layout writing the same ones.
struct LayoutCase {
    const char* name;
    int (*write)(GltfBuilder& builder);
    Floats expected;
};
const Floats kSquare = {0, 0, 0, 1, 0, 0, 1, 1, 0, 0, 1, 0};

template <class T>
int packed(GltfBuilder& builder, const std::vector<T>& values, bool normalized)
{
    const int accessor = builder.addValues(values, "VEC3");
    builder.json["accessors"][accessor]["normalized"] = normalized;
    return accessor;
}

const LayoutCase kLayouts[] = {
    {"packed_floats", [](GltfBuilder& b) { return b.addValues<float>(kSquare, "VEC3"); }, kSquare},
    {"floats_behind_an_offset",
     [](GltfBuilder& b) {
         Floats values = {9, 9, 9};
         values.insert(values.end(), kSquare.begin(), kSquare.end());
         const int view = b.addView(values.data(), values.size() * sizeof(float));
         return b.addAccessor(view, kFloat32, 4, "VEC3", 12);
     },
     kSquare},
    {"floats_between_others",
     [](GltfBuilder& b) {
         Floats values;
         for (int i = 0; i < 4; ++i) {
             values.push_back(7);
             values.insert(values.end(), &kSquare[3 * i], &kSquare[3 * i] + 3);
             values.push_back(8);
         }
         const int view = b.addView(values.data(), values.size() * sizeof(float) - 4, 20);
         return b.addAccessor(view, kFloat32, 4, "VEC3", 4);
     },
     kSquare},
    {"floats_at_odd_bytes",
     [](GltfBuilder& b) {
         std::string bytes = "x";
         for (int i = 0; i < 4; ++i)
             bytes += std::string(reinterpret_cast<const char*>(&kSquare[3 * i]), 12) + "y";
         const int view = b.addView(bytes.data(), bytes.size(), 13);
         return b.addAccessor(view, kFloat32, 4, "VEC3", 1);
     },
     kSquare},
    {"signed_bytes",
     [](GltfBuilder& b) {
         return packed<std::int8_t>(b, {0, 0, 0, -5, 0, 0, 127, 1, 0, -128, 1, 0}, false);
     },
     {0, 0, 0, -5, 0, 0, 127, 1, 0, -128, 1, 0}},
    {"normalised_signed_bytes",
     [](GltfBuilder& b) {
         return packed<std::int8_t>(b, {0, 0, 0, -127, 0, 0, 127, 1, 0, -128, 1, 0}, true);
     },
     {0, 0, 0, -1, 0, 0, 1, 1 / 127.0f, 0, -1, 1 / 127.0f, 0}},
    {"unsigned_bytes",
     [](GltfBuilder& b) {
         return packed<std::uint8_t>(b, {0, 0, 0, 255, 0, 0, 128, 1, 0, 0, 1, 0}, false);
     },
     {0, 0, 0, 255, 0, 0, 128, 1, 0, 0, 1, 0}},
    {"normalised_unsigned_bytes",
     [](GltfBuilder& b) {
         return packed<std::uint8_t>(b, {0, 0, 0, 255, 0, 0, 128, 1, 0, 0, 1, 0}, true);
     },
     {0, 0, 0, 1, 0, 0, 128 / 255.0f, 1 / 255.0f, 0, 0, 1 / 255.0f, 0}},
    {"signed_shorts",
     [](GltfBuilder& b) {
         return packed<std::int16_t>(b, {0, 0, 0, -300, 0, 0, 300, 1, 0, 0, 1, 0}, false);
     },
     {0, 0, 0, -300, 0, 0, 300, 1, 0, 0, 1, 0}},
    {"normalised_signed_shorts",
     [](GltfBuilder& b) {
         return packed<std::int16_t>(b, {0, 0, 0, -32768, 0, 0, 32767, 1, 0, 0, 1, 0}, true);
     },
     {0, 0, 0, -1, 0, 0, 1, 1 / 32767.0f, 0, 0, 1 / 32767.0f, 0}},
    {"unsigned_shorts",
     [](GltfBuilder& b) {
         return packed<std::uint16_t>(b, {0, 0, 0, 65535, 0, 0, 300, 1, 0, 0, 1, 0}, false);
     },
     {0, 0, 0, 65535, 0, 0, 300, 1, 0, 0, 1, 0}},
    {"normalised_unsigned_shorts",
     [](GltfBuilder& b) {
         return packed<std::uint16_t>(b, {0, 0, 0, 65535, 0, 0, 300, 1, 0, 0, 1, 0}, true);
     },
     {0, 0, 0, 1, 0, 0, 300 / 65535.0f, 1 / 65535.0f, 0, 0, 1 / 65535.0f, 0}},
    {"unsigned_integers",
     [](GltfBuilder& b) {
         return packed<std::uint32_t>(b, {0, 0, 0, 70000, 0, 0, 1, 1, 0, 0, 1, 0}, false);
     },
     {0, 0, 0, 70000, 0, 0, 1, 1, 0, 0, 1, 0}},
    {"bytes_at_multiples_of_four",
     [](GltfBuilder& b) {
         const std::vector<std::uint8_t> values = {0, 0, 0, 9, 5, 0, 0, 9, 5, 5, 0, 9, 0, 5, 0};
         return b.addAccessor(b.addView(values.data(), values.size(), 4), kUint8, 4, "VEC3");
     },
     {0, 0, 0, 5, 0, 0, 5, 5, 0, 0, 5, 0}},
    {"sparse_over_floats",
     [](GltfBuilder& b) {
         Floats base = kSquare;
         base[3] = 99;
         const int accessor = b.addValues<float>(base, "VEC3");
         const std::vector<std::uint16_t> places = {1, 3};
         const Floats values = {1, 0, 0, 0, 1, 0};
         b.json["accessors"][accessor]["sparse"] = {
             {"count", 2},
             {"indices", {{"bufferView", b.addView(places.data(), 4)}, {"componentType", kUint16}}},
             {"values", {{"bufferView", b.addView(values.data(), 24)}}}};
         return accessor;
     },
     kSquare},
    {"sparse_over_nothing",
     [](GltfBuilder& b) {
         const std::vector<std::uint8_t> places = {0xFF, 1, 2, 3};
         const Floats values = {9, 1, 0, 0, 1, 1, 0, 0, 1, 0};
         Json sparse = {
             {"count", 3},
             {"indices",
              {{"bufferView", b.addView(places.data(), 4)}, {"byteOffset", 1}, {"componentType", kUint8}}},
             {"values", {{"bufferView", b.addView(values.data(), 40)}, {"byteOffset", 4}}}};
         return b.add("accessors",
                      {{"componentType", kFloat32}, {"count", 4}, {"type", "VEC3"}, {"sparse", sparse}});
     },
     kSquare},
    {"sparse_over_strided_normalised_bytes",
     [](GltfBuilder& b) {
         const std::vector<std::uint8_t> base = {0, 0, 0, 9, 0, 0, 0, 9, 255, 255, 0, 9, 0, 255, 0};
         const int accessor = b.addAccessor(b.addView(base.data(), base.size(), 4), kUint8, 4, "VEC3");
         const std::uint32_t place = 1;
         const std::vector<std::uint8_t> value = {255, 0, 0};
         b.json["accessors"][accessor]["normalized"] = true;
         b.json["accessors"][accessor]["sparse"] = {
             {"count", 1},
             {"indices", {{"bufferView", b.addView(&place, 4)}, {"componentType", kUint32}}},
             {"values", {{"bufferView", b.addView(value.data(), 3)}}}};
         return accessor;
     },
     kSquare},
};

class Layouts : public testing::TestWithParam<LayoutCase> {};

TEST_P(Layouts, GiveTheirPositions)
{
    GltfBuilder builder;
    const int positions = GetParam().write(builder);
    const int normals = builder.addValues<float>({0, 0, 1, 0, 0, 1, 0, 0, 1, 0, 0, 1}, "VEC3");
    const int indices = builder.addValues<std::uint8_t>({0, 1, 2, 2, 3, 0}, "SCALAR");
    const auto outcome = readPrimitive(
        builder, {{"attributes", {{"POSITION", positions}, {"NORMAL", normals}}}, {"indices", indices}});
    ASSERT_EQ(outcome.kind, ovdl::ReadOutcome::kRead) << outcome.reason;
    const Floats& e = GetParam().expected;
    const auto corner = [&](int i) { return Vertex{e[3 * i], e[3 * i + 1], e[3 * i + 2], 0, 0, 1}; };
    const std::multiset<Triangle> expected = {fromLowest(Triangle{corner(0), corner(1), corner(2)}),
                                              fromLowest(Triangle{corner(2), corner(3), corner(0)})};
    EXPECT_EQ(trianglesOf(firstFace(*outcome.document)), expected);
}
INSTANTIATE_TEST_SUITE_P(Rows, Layouts, testing::ValuesIn(kLayouts),
                         [](const auto& row) { return row.param.name; });

TEST(Accessors, WithoutBytesAreZero)
{
    GltfBuilder builder;
    const int positions =
        builder.add("accessors", {{"componentType", kFloat32}, {"count", 3}, {"type", "VEC3"}});
    const int normals = builder.addValues<float>({0, 0, 1, 0, 1, 0, 1, 0, 0}, "VEC3");
    const auto outcome =
        readPrimitive(builder, {{"attributes", {{"POSITION", positions}, {"NORMAL", normals}}}});
    ASSERT_EQ(outcome.kind, ovdl::ReadOutcome::kRead) << outcome.reason;
    const std::multiset<Triangle> expected = {
        fromLowest(Triangle{Vertex{0, 0, 0, 0, 0, 1}, Vertex{0, 0, 0, 0, 1, 0}, Vertex{0, 0, 0, 1, 0, 0}})};
    EXPECT_EQ(trianglesOf(firstFace(*outcome.document)), expected);
}

TEST(Accessors, OfNormalsAndTextureCoordinatesMayBeOfAnyKindToo)
{
    GltfBuilder builder;
    Json primitive = builder.triangle();
    const int normals = builder.addValues<std::int8_t>({0, 0, 127, 0, 0, 127, 0, 0, 127}, "VEC3");
    const int uvs = builder.addValues<std::uint16_t>({0, 0, 65535, 0, 0, 65535}, "VEC2");
    builder.json["accessors"][normals]["normalized"] = true;
    builder.json["accessors"][uvs]["normalized"] = true;
    primitive["attributes"]["NORMAL"] = normals;
    primitive["attributes"]["TEXCOORD_0"] = uvs;
    const auto outcome = readPrimitive(builder, primitive);
    ASSERT_EQ(outcome.kind, ovdl::ReadOutcome::kRead) << outcome.reason;
    const uoTempFaceTessData_c& face = firstFace(*outcome.document);
    EXPECT_EQ(face.hasUVs, 1);
    const std::multiset<Triangle> expected = {fromLowest(Triangle{
        Vertex{0, 0, 0, 0, 0, 1, 0, 0}, Vertex{1, 0, 0, 0, 0, 1, 1, 0}, Vertex{0, 1, 0, 0, 0, 1, 0, 1}})};
    EXPECT_EQ(trianglesOf(face), expected);
}

TEST(Accessors, NotANumberAndInfinityStayAsTheyAre)
{
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const float infinity = std::numeric_limits<float>::infinity();
    GltfBuilder builder;
    Json primitive = builder.triangle();
    primitive["attributes"]["POSITION"] =
        builder.addValues<float>({nan, 0, 0, infinity, 0, 0, 0, 1, 0}, "VEC3");
    const auto outcome = readPrimitive(builder, primitive);
    ASSERT_EQ(outcome.kind, ovdl::ReadOutcome::kRead) << outcome.reason;
    const uoTempFaceTessData_c& face = firstFace(*outcome.document);
    ASSERT_EQ(vertexCount(face), 3);
    EXPECT_EQ(std::count_if(face.points.data, face.points.data + 9, [](float f) { return std::isnan(f); }),
              1);
    EXPECT_EQ(std::count_if(face.points.data, face.points.data + 9, [](float f) { return std::isinf(f); }),
              1);
}

// ------------------------------------------------------------------------------------ primitives

// Six vertices, told apart by their x.
struct ModeCase {
    const char* name;
    int mode;
    std::vector<int> indices;  // Empty: none.
    std::vector<std::array<int, 3>> triangles;
};
const ModeCase kModes[] = {
    {"triangles", 4, {0, 1, 2, 3, 4, 5}, {{0, 1, 2}, {3, 4, 5}}},
    {"triangles_without_indices", 4, {}, {{0, 1, 2}, {3, 4, 5}}},
    {"triangles_and_a_rest", 4, {0, 1, 2, 3, 4}, {{0, 1, 2}}},
    {"a_strip", 5, {0, 1, 2, 3, 4}, {{0, 1, 2}, {1, 3, 2}, {2, 3, 4}}},
    {"a_strip_without_indices", 5, {}, {{0, 1, 2}, {1, 3, 2}, {2, 3, 4}, {3, 5, 4}}},
    {"a_strip_joined_by_degenerate_triangles", 5, {0, 1, 2, 2, 3, 3, 4, 5}, {{0, 1, 2}, {3, 5, 4}}},
    {"a_fan", 6, {0, 1, 2, 3, 4}, {{1, 2, 0}, {2, 3, 0}, {3, 4, 0}}},
    {"a_fan_without_indices", 6, {}, {{1, 2, 0}, {2, 3, 0}, {3, 4, 0}, {4, 5, 0}}},
    {"two_vertices_of_a_strip", 5, {0, 1}, {}},
    {"one_vertex_of_a_fan", 6, {0}, {}},
    {"triangles_that_repeat_an_index",
     4,
     {0, 1, 2, 1, 1, 2, 3, 4, 3, 5, 4, 4, 2, 3, 4, 5, 5, 5},
     {{0, 1, 2}, {2, 3, 4}}},
    {"nothing_but_triangles_that_repeat_an_index", 4, {0, 0, 1, 2, 3, 3}, {}},
    {"both_sides_of_a_triangle", 4, {0, 1, 2, 2, 1, 0}, {{0, 1, 2}, {2, 1, 0}}},
    {"a_triangle_twice", 4, {0, 1, 2, 1, 2, 0}, {{0, 1, 2}, {0, 1, 2}}},
    {"triangles_of_late_vertices", 4, {3, 4, 5}, {{3, 4, 5}}},
};

class Modes : public testing::TestWithParam<std::tuple<ModeCase, int>> {};

Vertex modeVertex(int index)
{
    const float x = static_cast<float>(index);
    return {x, x * x, 0, 0, 0, 1};
}

TEST_P(Modes, GiveTheirTriangles)
{
    const auto& [row, indexType] = GetParam();
    GltfBuilder builder;
    Floats positions;
    Floats normals;
    for (int i = 0; i < 6; ++i) {
        const Vertex vertex = modeVertex(i);
        positions.insert(positions.end(), vertex.begin(), vertex.begin() + 3);
        normals.insert(normals.end(), vertex.begin() + 3, vertex.end());
    }
    Json primitive = {{"mode", row.mode},
                      {"attributes",
                       {{"POSITION", builder.addValues(positions, "VEC3")},
                        {"NORMAL", builder.addValues(normals, "VEC3")}}}};
    if (!row.indices.empty()) {
        if (indexType == kUint8)
            primitive["indices"] = builder.addValues(
                std::vector<std::uint8_t>(row.indices.begin(), row.indices.end()), "SCALAR");
        else if (indexType == kUint16)
            primitive["indices"] = builder.addValues(
                std::vector<std::uint16_t>(row.indices.begin(), row.indices.end()), "SCALAR");
        else
            primitive["indices"] =
                builder.addValues(Indices(row.indices.begin(), row.indices.end()), "SCALAR");
    }
    const auto outcome = readPrimitive(builder, primitive);
    ASSERT_EQ(outcome.kind, ovdl::ReadOutcome::kRead) << outcome.reason;
    std::multiset<Triangle> expected;
    for (const auto& t : row.triangles)
        expected.insert(fromLowest(Triangle{modeVertex(t[0]), modeVertex(t[1]), modeVertex(t[2])}));
    const uoTempFaceTessData_c& face = firstFace(*outcome.document);
    EXPECT_EQ(trianglesOf(face), expected);
    EXPECT_EQ(triangleCount(face), static_cast<long>(row.triangles.size()));
}
INSTANTIATE_TEST_SUITE_P(
    Rows, Modes, testing::Combine(testing::ValuesIn(kModes), testing::Values(kUint8, kUint16, kUint32)),
    [](const auto& row) {
        return std::string(std::get<0>(row.param).name) + "_" + std::to_string(std::get<1>(row.param));
    });

TEST(Primitives, OfPointsAndLinesMakeNoFace)
{
    GltfBuilder builder;
    Json mesh = {{"primitives", Json::array()}};
    for (int mode = 0; mode <= 6; ++mode) {
        Json primitive = builder.triangle();
        primitive["mode"] = mode;
        mesh["primitives"].push_back(primitive);
    }
    builder.addNode({{"mesh", builder.add("meshes", mesh)}});
    const auto outcome = readBytes(builder.glb());
    const auto& faces = firstPart(*outcome.document).bodies.at(0)->faces;
    ASSERT_EQ(faces.count, 3);
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(faces.at(i)->faceId, i + 1) << "numbered without the ones left out";
        EXPECT_EQ(faces.at(i)->faceKey, 4 + i) << "the primitive";
    }
}

TEST(Primitives, WithoutPositionsMakeNoFace)
{
    GltfBuilder builder;
    Json primitive = builder.triangle();
    primitive["attributes"].erase("POSITION");
    const auto outcome = readPrimitive(builder, primitive);
    ASSERT_EQ(outcome.kind, ovdl::ReadOutcome::kRead);
    EXPECT_EQ(firstPart(*outcome.document).bodies.at(0)->faces.count, 0);
}

TEST(Primitives, OfAMeshAreTheFacesOfOneBody)
{
    GltfBuilder builder;
    Json mesh = {{"primitives", {builder.triangle(), builder.triangle()}}};
    builder.addNode({{"mesh", builder.add("meshes", mesh)}});
    const auto outcome = readBytes(builder.glb());
    uoTempPartTessData_c& part = firstPart(*outcome.document);
    ASSERT_EQ(part.getNumBodies(), 1);
    EXPECT_EQ(part.bodies.count, 1);
    EXPECT_TRUE(part.modelVizProps.empty());
    EXPECT_TRUE(part.decalsByConfig.empty());
    uoTempBodyTessData_c& body = *part.bodies.at(0);
    EXPECT_EQ(body.flag, 0);
    EXPECT_EQ(body.level, 100);
    EXPECT_EQ(body.getBodyVizProp(0), nullptr);
    EXPECT_EQ(body.getBodyPropInfo(0), nullptr);
    ASSERT_EQ(body.faces.count, 2);
    for (int i = 0; i < 2; ++i) {
        const uoTempFaceTessData_c& face = *body.faces.at(i);
        EXPECT_EQ(face.faceId, i + 1);
        EXPECT_EQ(face.stripCount, 1);
        EXPECT_EQ(face.stripLengths.count, 1);
        EXPECT_EQ(face.points.count, 9);
        EXPECT_EQ(face.normals.count, 9);
        EXPECT_EQ(face.hasUVs, 0);
        EXPECT_EQ(face.uvs.data, nullptr);
    }
}

TEST(Primitives, TakeTheTextureCoordinatesThatTheirMaterialUses)
{
    GltfBuilder builder;
    Json primitive = builder.triangle();
    primitive["attributes"]["TEXCOORD_0"] = builder.addValues<float>({0, 0, 0, 0, 0, 0}, "VEC2");
    primitive["attributes"]["TEXCOORD_1"] = builder.addValues<float>({1, 2, 3, 4, 5, 6}, "VEC2");
    builder.add("images", {{"uri", "a.png"}});
    builder.add("textures", {{"source", 0}});
    Json material;
    material["pbrMetallicRoughness"]["baseColorTexture"] = {{"index", 0}, {"texCoord", 1}};
    primitive["material"] = builder.add("materials", material);
    const auto outcome = readPrimitive(builder, primitive);
    const uoTempFaceTessData_c& face = firstFace(*outcome.document);
    ASSERT_EQ(face.uvs.count, 6);
    EXPECT_THAT(Floats(face.uvs.data, face.uvs.data + 6), testing::UnorderedElementsAre(1, 2, 3, 4, 5, 6));
}

TEST(Primitives, ThatShareOneLongVertexListAreReadInNoTime)
{
    GltfBuilder builder;
    const std::size_t count = 200000;
    Floats positions(3 * count);
    Floats normals(3 * count, 1.0f);
    for (std::size_t i = 0; i < count; ++i)
        positions[3 * i] = static_cast<float>(i);
    const Json attributes = {{"POSITION", builder.addValues(positions, "VEC3")},
                             {"NORMAL", builder.addValues(normals, "VEC3")}};
    Json mesh = {{"primitives", Json::array()}};
    // The last triangle of each three reaches over the whole list.
    for (std::uint32_t i = 0; i < 3000; ++i) {
        const std::uint32_t last = static_cast<std::uint32_t>(count) - 1;
        const Indices list = {i, i + 1, i % 3 == 0 ? last : i + 2};
        mesh["primitives"].push_back(
            {{"attributes", attributes}, {"indices", builder.addValues(list, "SCALAR")}});
    }
    builder.addNode({{"mesh", builder.add("meshes", mesh)}});
    const auto outcome = readBytes(builder.glb());
    ASSERT_EQ(outcome.kind, ovdl::ReadOutcome::kRead) << outcome.reason;
    const auto& faces = firstPart(*outcome.document).bodies.at(0)->faces;
    ASSERT_EQ(faces.count, 3000);
    const std::multiset<Triangle> expected = {fromLowest(
        Triangle{Vertex{3, 0, 0, 1, 1, 1}, Vertex{4, 0, 0, 1, 1, 1}, Vertex{199999, 0, 0, 1, 1, 1}})};
    EXPECT_EQ(trianglesOf(*faces.at(3)), expected);
}

// ---------------------------------------------------------------------------------- flat normals

TEST(FlatNormals, StandOnEachTriangle)
{
    GltfBuilder builder;
    // A roof: two triangles that share an edge and look two ways.
    const int positions = builder.addValues<float>({0, 0, 0, 2, 0, 0, 0, 2, 0, 0, 0, 5}, "VEC3");
    const int indices = builder.addValues<std::uint16_t>({0, 1, 2, 0, 3, 1}, "SCALAR");
    const auto outcome =
        readPrimitive(builder, {{"attributes", {{"POSITION", positions}}}, {"indices", indices}});
    ASSERT_EQ(outcome.kind, ovdl::ReadOutcome::kRead) << outcome.reason;
    const std::multiset<Triangle> expected = {
        fromLowest(Triangle{Vertex{0, 0, 0, 0, 0, 1}, Vertex{2, 0, 0, 0, 0, 1}, Vertex{0, 2, 0, 0, 0, 1}}),
        fromLowest(Triangle{Vertex{0, 0, 0, 0, 1, 0}, Vertex{0, 0, 5, 0, 1, 0}, Vertex{2, 0, 0, 0, 1, 0}})};
    EXPECT_EQ(trianglesOf(firstFace(*outcome.document)), expected);
}

TEST(FlatNormals, OfOnePlaneKeepItInOneStrip)
{
    GltfBuilder builder;
    const int positions = builder.addValues<float>({0, 0, 0, 2, 0, 0, 0, 2, 0, 2, 2, 0}, "VEC3");
    const int indices = builder.addValues<std::uint16_t>({0, 1, 2, 2, 1, 3}, "SCALAR");
    const auto outcome =
        readPrimitive(builder, {{"attributes", {{"POSITION", positions}}}, {"indices", indices}});
    const uoTempFaceTessData_c& face = firstFace(*outcome.document);
    EXPECT_EQ(face.stripCount, 1);
    EXPECT_EQ(vertexCount(face), 4);
}

TEST(FlatNormals, OfATriangleWithoutAreaAreZero)
{
    GltfBuilder builder;
    const int positions = builder.addValues<float>({0, 0, 0, 1, 0, 0, 2, 0, 0}, "VEC3");
    const auto outcome = readPrimitive(builder, {{"attributes", {{"POSITION", positions}}}});
    const uoTempFaceTessData_c& face = firstFace(*outcome.document);
    ASSERT_EQ(face.normals.count, 9);
    EXPECT_THAT(Floats(face.normals.data, face.normals.data + 9), testing::Each(0.0f));
}

TEST(FlatNormals, HaveUnitLengthHoweverSmallTheTriangle)
{
    GltfBuilder builder;
    const int positions = builder.addValues<float>({0, 0, 0, 1e-20f, 0, 0, 0, 0, 1e-20f}, "VEC3");
    const auto outcome = readPrimitive(builder, {{"attributes", {{"POSITION", positions}}}});
    const uoTempFaceTessData_c& face = firstFace(*outcome.document);
    ASSERT_EQ(face.normals.count, 9);
    EXPECT_EQ(face.normals.data[1], -1.0f);
}

TEST(FlatNormals, KeepTextureCoordinates)
{
    GltfBuilder builder;
    const int positions = builder.addValues<float>({0, 0, 0, 1, 0, 0, 0, 1, 0}, "VEC3");
    const int uvs = builder.addValues<float>({1, 2, 3, 4, 5, 6}, "VEC2");
    const auto outcome =
        readPrimitive(builder, {{"attributes", {{"POSITION", positions}, {"TEXCOORD_0", uvs}}}});
    const std::multiset<Triangle> expected = {fromLowest(Triangle{
        Vertex{0, 0, 0, 0, 0, 1, 1, 2}, Vertex{1, 0, 0, 0, 0, 1, 3, 4}, Vertex{0, 1, 0, 0, 0, 1, 5, 6}})};
    EXPECT_EQ(trianglesOf(firstFace(*outcome.document)), expected);
}

// --------------------------------------------------------------------------------------- welding

// Two triangles without indices, whose shared edge is written twice.
uoTempFaceTessData_c& square(GltfBuilder& builder, ovdl::ReadOutcome& outcome, float otherNormal,
                             float otherUv, float otherZero)
{
    const int positions =
        builder.addValues<float>({0, 0, 0, 1, 0, 0, 0, 1, 0, 1, 0, 0, 1, 1, 0, 0, 1, otherZero}, "VEC3");
    const int normals =
        builder.addValues<float>({0, 0, 1, 0, 0, 1, 0, 0, 1, 0, 0, otherNormal, 0, 0, 1, 0, 0, 1}, "VEC3");
    const int uvs = builder.addValues<float>({0, 0, 1, 0, 0, 1, 1, otherUv, 1, 1, 0, 1}, "VEC2");
    outcome = readPrimitive(
        builder, {{"attributes", {{"POSITION", positions}, {"NORMAL", normals}, {"TEXCOORD_0", uvs}}}});
    return firstFace(*outcome.document);
}

TEST(Welding, JoinsVerticesThatAreEqual)
{
    GltfBuilder builder;
    ovdl::ReadOutcome outcome;
    const uoTempFaceTessData_c& face = square(builder, outcome, 1, 0, 0.0f);
    EXPECT_EQ(face.stripCount, 1);
    EXPECT_EQ(vertexCount(face), 4);
    EXPECT_EQ(triangleCount(face), 2);
}

struct WeldCase {
    const char* name;
    float normal;
    float uv;
    float zero;
};
class NoWelding : public testing::TestWithParam<WeldCase> {};

TEST_P(NoWelding, OfVerticesThatDifferInABit)
{
    GltfBuilder builder;
    ovdl::ReadOutcome outcome;
    const uoTempFaceTessData_c& face =
        square(builder, outcome, GetParam().normal, GetParam().uv, GetParam().zero);
    EXPECT_EQ(vertexCount(face), 6);
    EXPECT_EQ(triangleCount(face), 2);
}
INSTANTIATE_TEST_SUITE_P(Rows, NoWelding,
                         testing::Values(WeldCase{"another_normal", 0.99999994f, 0, 0.0f},
                                         WeldCase{"other_texture_coordinates", 1, 1e-45f, 0.0f},
                                         WeldCase{"the_other_zero", 1, 0, -0.0f}),
                         [](const auto& row) { return row.param.name; });

TEST(Welding, DropsTrianglesThatThenRepeatAVertex)
{
    GltfBuilder builder;
    const int positions =
        builder.addValues<float>({0, 0, 0, 1, 0, 0, 0, 1, 0, 5, 5, 5, 5, 5, 5, 0, 1, 0}, "VEC3");
    const int normals = builder.addValues<float>(Floats(18, 1.0f), "VEC3");
    const auto outcome =
        readPrimitive(builder, {{"attributes", {{"POSITION", positions}, {"NORMAL", normals}}}});
    EXPECT_EQ(triangleCount(firstFace(*outcome.document)), 1);
}

// A grid whose list shares its vertices, with one triangle that has a vertex twice under two indices.
TEST(Welding, DropsSuchTrianglesInListsThatShareVerticesToo)
{
    GltfBuilder builder;
    Floats positions;
    const int side = 20;
    for (int y = 0; y <= side; ++y)
        for (int x = 0; x <= side; ++x)
            positions.insert(positions.end(), {static_cast<float>(x), static_cast<float>(y), 0});
    const auto twin = static_cast<std::uint32_t>(positions.size() / 3);
    positions.insert(positions.end(), {0, 0, 0});
    Indices list;
    for (std::uint32_t y = 0; y < side; ++y)
        for (std::uint32_t x = 0; x < side; ++x) {
            const std::uint32_t a = y * (side + 1) + x;
            const std::uint32_t c = a + side + 1;
            list.insert(list.end(), {a, a + 1, c, a + 1, c + 1, c});
        }
    list.insert(list.end(), {0, twin, 1});
    const int points = builder.addValues(positions, "VEC3");
    const int normals = builder.addValues(Floats(positions.size(), 0.5f), "VEC3");
    const auto outcome =
        readPrimitive(builder, {{"attributes", {{"POSITION", points}, {"NORMAL", normals}}},
                                {"indices", builder.addValues(list, "SCALAR")}});
    EXPECT_EQ(triangleCount(firstFace(*outcome.document)), 2 * side * side);
}

TEST(Strips, OfAGridStayBelowSixFifthsOfAVertexATriangle)
{
    for (const bool withNormals : {true, false}) {
        GltfBuilder builder;
        Floats positions;
        const int side = 30;
        for (int y = 0; y <= side; ++y)
            for (int x = 0; x <= side; ++x)
                positions.insert(positions.end(), {static_cast<float>(x), static_cast<float>(y), 0});
        Indices list;
        for (std::uint32_t y = 0; y < side; ++y)
            for (std::uint32_t x = 0; x < side; ++x) {
                const std::uint32_t a = y * (side + 1) + x;
                const std::uint32_t c = a + side + 1;
                list.insert(list.end(), {a, a + 1, c + 1, a, c + 1, c});
            }
        Json attributes = {{"POSITION", builder.addValues(positions, "VEC3")}};
        if (withNormals)
            attributes["NORMAL"] = builder.addValues(Floats(positions.size(), 0.5f), "VEC3");
        const auto outcome = readPrimitive(
            builder, {{"attributes", attributes}, {"indices", builder.addValues(list, "SCALAR")}});
        const uoTempFaceTessData_c& face = firstFace(*outcome.document);
        EXPECT_EQ(triangleCount(face), 2 * side * side);
        EXPECT_LE(vertexCount(face) * 5, triangleCount(face) * 6);
    }
}

// ------------------------------------------------------------------------------------ properties

// Any list over few vertices, in any of the three modes and index types.
RC_GTEST_PROP(GeometryProperties, StripsGiveBackTheTrianglesOfTheFile, ())
{
    const int vertexTotal = *rc::gen::inRange(3, 30);
    const int mode = *rc::gen::element(4, 5, 6);
    const auto indices =
        *rc::gen::container<std::vector<std::uint16_t>>(rc::gen::inRange<std::uint16_t>(0, vertexTotal));
    GltfBuilder builder;
    Floats positions;
    Floats normals;
    for (int i = 0; i < vertexTotal; ++i) {
        positions.insert(positions.end(), {static_cast<float>(i), static_cast<float>(i % 3), 1});
        normals.insert(normals.end(), {0, static_cast<float>(i), 1});
    }
    Json primitive = {{"mode", mode},
                      {"attributes",
                       {{"POSITION", builder.addValues(positions, "VEC3")},
                        {"NORMAL", builder.addValues(normals, "VEC3")}}}};
    if (!indices.empty())
        primitive["indices"] = builder.addValues(indices, "SCALAR");
    const auto outcome = readPrimitive(builder, primitive);
    RC_ASSERT(outcome.kind == ovdl::ReadOutcome::kRead);

    std::vector<int> list(indices.begin(), indices.end());
    for (int i = 0; indices.empty() && i < vertexTotal; ++i)
        list.push_back(i);
    std::multiset<Triangle> expected;
    const auto put = [&](int a, int b, int c) {
        const auto vertex = [&](int i) {
            return Vertex{positions[3 * i], positions[3 * i + 1], positions[3 * i + 2],
                          normals[3 * i],   normals[3 * i + 1],   normals[3 * i + 2]};
        };
        if (a != b && b != c && a != c)
            expected.insert(fromLowest(Triangle{vertex(a), vertex(b), vertex(c)}));
    };
    const int count = static_cast<int>(list.size());
    for (int i = 0; i + 2 < count; ++i) {
        if (mode == 4 && i % 3 == 0)
            put(list[i], list[i + 1], list[i + 2]);
        else if (mode == 5)
            put(list[i], list[i + 1 + i % 2], list[i + 2 - i % 2]);
        else if (mode == 6)
            put(list[i + 1], list[i + 2], list[0]);
    }
    RC_ASSERT(trianglesOf(firstFace(*outcome.document)) == expected);
}

}  // namespace
}  // namespace gltf_tests
