#include "tools/DecalGeometry.h"

#include <gmock/gmock.h>

#include <cmath>
#include <limits>
#include <numbers>

namespace {

using testing::ElementsAre;
using testing::FloatNear;
using testing::Pointwise;
using tool::DecalProjection;
using tool::FaceGeometry;

constexpr double kPi = std::numbers::pi;

// A square from 0, 0 to 4, 4 in the plane z = 0.
FaceGeometry square()
{
    FaceGeometry face;
    face.positions = {0, 0, 0, 4, 0, 0, 4, 4, 0, 0, 4, 0};
    face.normals = {0, 0, 1, 0, 0, 1, 0, 0, 1, 0, 0, 1};
    face.indices = {0, 1, 2, 0, 2, 3};
    return face;
}

// An image of 2 by 1 whose corner lies at the origin of the plane.
dlTexture placed()
{
    dlTexture texture;
    texture.mappingType = 2;
    texture.uDirection[0] = 1;
    texture.vDirection[1] = 1;
    texture.scaleU = 0.5f;
    texture.scaleV = 1;
    return texture;
}

std::vector<double> coordinates(const dlTexture& texture, float x, float y, float z = 0)
{
    const auto projection = DecalProjection::of(texture);
    EXPECT_TRUE(projection);
    const float point[] = {x, y, z};
    std::vector<double> uv(2);
    projection->textureCoordinates(point, uv.data());
    return uv;
}

void expectAt(const std::vector<double>& uv, double u, double v)
{
    EXPECT_NEAR(uv[0], u, 1e-6);
    EXPECT_NEAR(uv[1], v, 1e-6);
}

TEST(DecalProjection, puts_the_lower_left_corner_at_the_origin)
{
    expectAt(coordinates(placed(), 0, 0), 0, 1);
    expectAt(coordinates(placed(), 2, 1), 1, 0);
    expectAt(coordinates(placed(), 1, 0.5f, 77), 0.5, 0.5);
}

TEST(DecalProjection, starts_from_the_origin_of_the_mapping)
{
    dlTexture texture = placed();
    texture.origin[0] = 3;
    texture.origin[1] = 5;
    expectAt(coordinates(texture, 3, 5), 0, 1);
}

TEST(DecalProjection, moves_the_image_against_the_translation)
{
    dlTexture texture = placed();
    texture.transU = 1;
    texture.transV = -2;
    expectAt(coordinates(texture, -1, 2), 0, 1);
}

TEST(DecalProjection, turns_the_image_by_the_angle)
{
    dlTexture texture = placed();
    texture.angle = static_cast<float>(kPi / 2);
    expectAt(coordinates(texture, 0, 2), 1, 1);
    expectAt(coordinates(texture, -1, 0), 0, 0);
}

TEST(DecalProjection, mirrors_the_image_in_its_place)
{
    dlTexture texture = placed();
    texture.scaleU = -0.5f;
    expectAt(coordinates(texture, 0, 0), 1, 1);
    expectAt(coordinates(texture, 2, 1), 0, 0);
}

TEST(DecalProjection, straightens_skewed_directions)
{
    dlTexture texture = placed();
    texture.uDirection[0] = 7;
    texture.vDirection[0] = 3;
    expectAt(coordinates(texture, 2, 1), 1, 0);
}

struct Unplaced {
    const char* name;
    void (*spoil)(dlTexture&);
};
const Unplaced kUnplaced[] = {
    {"without_a_mapping", [](dlTexture& t) { t.mappingType = 1; }},
    {"without_a_scale", [](dlTexture& t) { t.scaleU = 0; }},
    {"of_an_infinite_scale", [](dlTexture& t) { t.scaleV = std::numeric_limits<float>::infinity(); }},
    {"at_no_number", [](dlTexture& t) { t.transU = std::numeric_limits<float>::quiet_NaN(); }},
    {"with_one_direction", [](dlTexture& t) { t.vDirection[1] = 0; }},
    {"with_directions_along_one_line", [](dlTexture& t) { t.vDirection[0] = 1, t.vDirection[1] = 0; }},
    {"with_directions_that_are_no_numbers",
     [](dlTexture& t) { t.uDirection[2] = std::numeric_limits<float>::quiet_NaN(); }},
};
class UnplacedDecals : public testing::TestWithParam<Unplaced> {};
TEST_P(UnplacedDecals, HaveNoProjection)
{
    dlTexture texture = placed();
    ASSERT_TRUE(DecalProjection::of(texture, square()));
    GetParam().spoil(texture);
    EXPECT_FALSE(DecalProjection::of(texture, square()));
}
INSTANTIATE_TEST_SUITE_P(Rows, UnplacedDecals, testing::ValuesIn(kUnplaced),
                         [](const auto& row) { return row.param.name; });

TEST(DecalProjection, without_directions_takes_the_plane_of_the_face)
{
    dlTexture texture = placed();
    texture.uDirection[0] = texture.vDirection[1] = 0;
    FaceGeometry face = square();
    const auto at = [&](float x, float y, float z) {
        const float point[] = {x, y, z};
        std::vector<double> uv(2);
        DecalProjection::of(texture, face)->textureCoordinates(point, uv.data());
        return uv;
    };
    expectAt(at(2, 1, 0), 1, 0);
    // The side that the normals name counts, whichever way the triangles wind.
    std::swap(face.indices[1], face.indices[2]);
    expectAt(at(2, 1, 0), 1, 0);
    face.normals = {0, 0, -1, 0, 0, -1, 0, 0, -1, 0, 0, -1};
    expectAt(at(2, -1, 0), 1, 0);
    // Upright in the plane x = 0, seen from +x.
    face.positions = {0, 0, 0, 0, 4, 0, 0, 4, 4, 0, 0, 4};
    face.normals = {1, 0, 0, 1, 0, 0, 1, 0, 0, 1, 0, 0};
    expectAt(at(0, 2, 1), 1, 0);
}

double areaOf(const FaceGeometry& face)
{
    double sum = 0;
    for (std::size_t i = 0; i < face.indices.size(); i += 3) {
        const float* a = &face.positions[3 * face.indices[i]];
        const float* b = &face.positions[3 * face.indices[i + 1]];
        const float* c = &face.positions[3 * face.indices[i + 2]];
        sum += 0.5 * ((b[0] - a[0]) * (c[1] - a[1]) - (b[1] - a[1]) * (c[0] - a[0]));
    }
    return sum;
}

TEST(DecalGeometry, keeps_whole_triangles_that_the_image_covers)
{
    dlTexture texture = placed();
    texture.scaleU = texture.scaleV = 0.25f;
    const FaceGeometry face = square();
    const FaceGeometry made = tool::decalGeometry(face, *DecalProjection::of(texture), 0);
    EXPECT_EQ(made.positions, face.positions);
    EXPECT_EQ(made.normals, face.normals);
    EXPECT_EQ(made.indices, face.indices);
    EXPECT_THAT(made.uvs, ElementsAre(0, 1, 1, 1, 1, 0, 0, 0));
}

TEST(DecalGeometry, is_cut_to_the_image)
{
    const FaceGeometry made = tool::decalGeometry(square(), *DecalProjection::of(placed()), 0);
    EXPECT_NEAR(areaOf(made), 2, 1e-6) << "positive: the winding stays";
    ASSERT_EQ(made.uvs.size() / 2, made.vertexCount());
    for (std::size_t i = 0; i < made.vertexCount(); ++i) {
        EXPECT_GE(made.uvs[2 * i], 0);
        EXPECT_LE(made.uvs[2 * i], 1);
        EXPECT_NEAR(made.positions[3 * i], 2 * made.uvs[2 * i], 1e-6);
        EXPECT_NEAR(made.positions[3 * i + 1], 1 - made.uvs[2 * i + 1], 1e-6);
    }
}

TEST(DecalGeometry, is_empty_beside_the_face)
{
    dlTexture texture = placed();
    texture.origin[0] = -3;
    EXPECT_TRUE(tool::decalGeometry(square(), *DecalProjection::of(texture), 0).indices.empty());
}

TEST(DecalGeometry, is_lifted_along_the_normals)
{
    FaceGeometry face = square();
    for (std::size_t i = 0; i < 4; ++i)
        face.normals[3 * i + 2] = -1;
    dlTexture texture = placed();
    texture.scaleU = texture.scaleV = 0.25f;
    const FaceGeometry made = tool::decalGeometry(face, *DecalProjection::of(texture), 0.5f);
    for (std::size_t i = 0; i < 4; ++i)
        EXPECT_EQ(made.positions[3 * i + 2], -0.5f);
}

TEST(DecalLift, is_small_rises_with_the_layer_and_survives_rounding)
{
    FaceGeometry face = square();
    const float first = tool::decalLift(face, 0);
    EXPECT_GT(first, 0);
    EXPECT_LT(first, 0.001f * 4);
    EXPECT_FLOAT_EQ(tool::decalLift(face, 2), 3 * first);
    for (std::size_t i = 0; i < 4; ++i)
        face.positions[3 * i + 2] = 1e6f;
    EXPECT_NE(1e6f + tool::decalLift(face, 0), 1e6f);
    EXPECT_EQ(tool::decalLift({}, 0), 0);
}

TEST(DecalLift, stays_finite)
{
    FaceGeometry face = square();
    face.positions[0] = -std::numeric_limits<float>::max();
    face.positions[3] = std::numeric_limits<float>::max();
    EXPECT_TRUE(std::isfinite(tool::decalLift(face, 1000000)));
}

}  // namespace
