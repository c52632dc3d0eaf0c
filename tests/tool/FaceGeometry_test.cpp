#include "tools/FaceGeometry.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "Models.h"

namespace {

using tool_test::FaceData;

constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinity = std::numeric_limits<float>::infinity();

tool::FaceGeometry triangulated(const FaceData& data)
{
    dlFace face;
    tool_test::fillFace(data, face);
    return tool::triangulate(face);
}

// n vertices on two lines, as a strip has them, all with one normal.
FaceData zigzag(int n, std::array<float, 3> normal = {0, 0, 1})
{
    FaceData data;
    for (int i = 0; i < n; ++i) {
        const float vertex[] = {float(i / 2), float(i % 2), 0, normal[0], normal[1], normal[2]};
        data.vertices.insert(data.vertices.end(), vertex, vertex + 6);
    }
    data.stripLengths = {n};
    return data;
}

std::array<double, 3> areaVector(const tool::FaceGeometry& g, std::size_t triangle)
{
    const float* p[3];
    for (int i = 0; i < 3; ++i)
        p[i] = &g.positions[3 * g.indices[3 * triangle + i]];
    double u[3];
    double v[3];
    for (int i = 0; i < 3; ++i) {
        u[i] = double(p[1][i]) - p[0][i];
        v[i] = double(p[2][i]) - p[0][i];
    }
    return {u[1] * v[2] - u[2] * v[1], u[2] * v[0] - u[0] * v[2], u[0] * v[1] - u[1] * v[0]};
}

TEST(Triangulate, WindsEveryTriangleAsTheFirst)
{
    const auto geometry = triangulated(zigzag(9));
    ASSERT_EQ(geometry.indices.size(), 3u * 7);
    EXPECT_EQ(geometry.vertexCount(), 9u);
    const bool firstUp = areaVector(geometry, 0)[2] > 0;
    for (std::size_t i = 0; i < 7; ++i)
        EXPECT_EQ(areaVector(geometry, i)[2] > 0, firstUp) << i;
}

TEST(Triangulate, StartsEachStripAnew)
{
    FaceData data = zigzag(5);
    const FaceData second = zigzag(4);
    data.vertices.insert(data.vertices.end(), second.vertices.begin(), second.vertices.end());
    data.stripLengths.push_back(4);
    const auto geometry = triangulated(data);
    ASSERT_EQ(geometry.indices.size(), 3u * 5);
    // The second strip repeats vertices of the first: they are shared.
    EXPECT_EQ(geometry.vertexCount(), 5u);
    const std::vector<std::uint32_t> indices = {0, 1, 2, 2, 1, 3, 2, 3, 4, 0, 1, 2, 2, 1, 3};
    EXPECT_EQ(geometry.indices, indices);
}

TEST(Triangulate, KeepsVerticesApartThatDifferInOneBit)
{
    FaceData data = zigzag(3);
    FaceData second = zigzag(3);
    second.vertices[0] = -0.0f;
    data.vertices.insert(data.vertices.end(), second.vertices.begin(), second.vertices.end());
    data.stripLengths.push_back(3);
    EXPECT_EQ(triangulated(data).vertexCount(), 4u);
}

TEST(Triangulate, KeepsVerticesApartThatDifferInTextureCoordinates)
{
    FaceData data = zigzag(3);
    data.vertices.insert(data.vertices.end(), data.vertices.begin(), data.vertices.end());
    data.stripLengths.push_back(3);
    data.uvs = {0, 0, 0, 0, 0, 0, 0, 0, 0.5f, 0, 0, 0};
    const auto geometry = triangulated(data);
    EXPECT_EQ(geometry.vertexCount(), 4u);
    ASSERT_EQ(geometry.uvs.size(), 8u);
    EXPECT_EQ(geometry.uvs[6], 0.5f);
}

TEST(Triangulate, DropsJointsButNotThinTriangles)
{
    FaceData joint = zigzag(6);
    // The third vertex twice: two triangles of the strip have no area and name it twice.
    std::copy_n(joint.vertices.begin() + 12, 6, joint.vertices.begin() + 18);
    EXPECT_EQ(triangulated(joint).indices.size(), 3u * 2);
    FaceData thin = zigzag(3);
    thin.vertices[13] = 0;  // the third vertex on the line of the first
    thin.vertices[12] = 0;
    thin.vertices[17] = -1;  // where the first is, with another normal
    EXPECT_EQ(triangulated(thin).indices.size(), 3u);
}

struct NormalCase {
    const char* name;
    std::array<float, 3> given;
    std::array<float, 3> exported;
};
void PrintTo(const NormalCase& row, std::ostream* out)
{
    *out << row.name;
}
const NormalCase kNormals[] = {
    {"a_unit_normal_keeps_its_bits", {0.6f, 0, 0.8f}, {0.6f, 0, 0.8f}},
    {"almost_unit_length_keeps_its_bits", {0, 0, 1.000009f}, {0, 0, 1.000009f}},
    {"a_long_normal_becomes_unit", {0, -5, 0}, {0, -1, 0}},
    {"a_short_normal_becomes_unit", {0, 0.5f, 0}, {0, 1, 0}},
    {"the_smallest_normal_becomes_unit", {1e-45f, 0, 0}, {1, 0, 0}},
    {"the_largest_normal_becomes_unit", {3e38f, 0, 0}, {1, 0, 0}},
    {"a_zero_normal_becomes_the_triangles", {0, 0, 0}, {0, 0, -1}},
    {"a_normal_with_a_nan_becomes_the_triangles", {1, kNaN, 0}, {0, 0, -1}},
    {"an_infinite_normal_becomes_the_triangles", {kInfinity, 0, 0}, {0, 0, -1}},
};
class Normals : public testing::TestWithParam<NormalCase> {};
TEST_P(Normals, ComeOutOfUnitLength)
{
    const auto geometry = triangulated(zigzag(3, GetParam().given));
    ASSERT_EQ(geometry.normals.size(), 9u);
    for (int i = 0; i < 9; ++i)
        EXPECT_EQ(geometry.normals[i], GetParam().exported[i % 3]) << i;
}
INSTANTIATE_TEST_SUITE_P(Rows, Normals, testing::ValuesIn(kNormals),
                         [](const auto& row) { return row.param.name; });

TEST(Triangulate, GivesEachTriangleItsOwnFlatNormal)
{
    FaceData roof = zigzag(4, {0, 0, 0});
    roof.vertices[20] = 1;  // lifts the last vertex out of the plane
    const auto geometry = triangulated(roof);
    ASSERT_EQ(geometry.indices.size(), 6u);
    EXPECT_EQ(geometry.vertexCount(), 6u);
    for (std::size_t triangle = 0; triangle < 2; ++triangle) {
        const auto area = areaVector(geometry, triangle);
        const double length = std::hypot(area[0], area[1], area[2]);
        for (int corner = 0; corner < 3; ++corner)
            for (int axis = 0; axis < 3; ++axis)
                EXPECT_EQ(geometry.normals[3 * geometry.indices[3 * triangle + corner] + axis],
                          float(area[axis] / length));
    }
}

TEST(Triangulate, GivesAFlatNormalToATriangleWithoutArea)
{
    FaceData line = zigzag(3, {0, 0, 0});
    line.vertices = {0, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0, 2, 0, 0, 0, 0, 0};
    const auto geometry = triangulated(line);
    EXPECT_EQ(geometry.indices.size(), 3u);
    EXPECT_EQ(geometry.normals, (std::vector<float>{0, 0, 1, 0, 0, 1, 0, 0, 1}));
}

TEST(Triangulate, LeavesOutTrianglesWithoutAPlace)
{
    for (const float bad : {kNaN, kInfinity, -kInfinity}) {
        FaceData data = zigzag(6);
        data.vertices[7] = bad;  // the second vertex, of two triangles of four
        const auto geometry = triangulated(data);
        EXPECT_EQ(geometry.trianglesWithoutPlace, 2);
        EXPECT_EQ(geometry.indices.size(), 3u * 2);
        for (const float value : geometry.positions)
            EXPECT_TRUE(std::isfinite(value));
    }
}

TEST(Triangulate, KeepsTheExtremesOfSinglePrecision)
{
    FaceData data = zigzag(3);
    data.vertices[0] = std::numeric_limits<float>::max();
    data.vertices[6] = std::numeric_limits<float>::lowest();
    const auto geometry = triangulated(data);
    EXPECT_EQ(geometry.positions[0], std::numeric_limits<float>::max());
    EXPECT_EQ(geometry.positions[3], std::numeric_limits<float>::lowest());
}

TEST(Triangulate, ReplacesTextureCoordinatesThatAreNoNumbers)
{
    FaceData data = zigzag(3);
    data.uvs = {kNaN, 1, 2, kInfinity, 3, 4};
    EXPECT_EQ(triangulated(data).uvs, (std::vector<float>{0, 1, 2, 0, 3, 4}));
}

TEST(Triangulate, GivesNothingForFacesWithoutTriangles)
{
    EXPECT_TRUE(triangulated({{}, {}, {}}).indices.empty());
    EXPECT_TRUE(triangulated(zigzag(2)).indices.empty());
    EXPECT_TRUE(triangulated(zigzag(2)).positions.empty());
    EXPECT_TRUE(tool::triangulate(dlFace()).indices.empty());
}

TEST(Triangulate, StopsAtTheEndOfTheVertices)
{
    dlFace face;
    tool_test::fillFace(zigzag(4), face);
    face.stripLengths[0] = std::numeric_limits<std::int32_t>::max();
    EXPECT_EQ(tool::triangulate(face).indices.size(), 6u);
    face.stripStarts[0] = -1;
    EXPECT_TRUE(tool::triangulate(face).indices.empty());
    face.stripStarts[0] = 100;
    face.stripLengths[0] = 5;
    EXPECT_TRUE(tool::triangulate(face).indices.empty());
    face.stripStarts[0] = 0;
    face.stripLengths[0] = -7;
    EXPECT_TRUE(tool::triangulate(face).indices.empty());
}

TEST(Triangulate, SharesTheVerticesOfALargeGrid)
{
    FaceData grid;
    const int size = 60;
    for (int row = 0; row < size; ++row) {
        for (int i = 0; i <= size; ++i)
            for (const int line : {row + 1, row}) {
                const float vertex[] = {float(i), float(line), 0, 0, 0, 1};
                grid.vertices.insert(grid.vertices.end(), vertex, vertex + 6);
            }
        grid.stripLengths.push_back(2 * (size + 1));
    }
    const auto geometry = triangulated(grid);
    EXPECT_EQ(geometry.vertexCount(), std::size_t((size + 1) * (size + 1)));
    EXPECT_EQ(geometry.indices.size(), std::size_t(3 * 2 * size * size));
}

}  // namespace
