#include "tools/Placement.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>

namespace {

using tool::Quaternion;
using tool::Vector3;
using Matrix3 = std::array<Vector3, 3>;  // columns

dlXform xformOf(const std::array<float, 9>& columns, const std::array<float, 3>& translation = {0, 0, 0})
{
    dlXform xform;
    for (int i = 0; i < 9; ++i)
        xform.m[i / 3 * 4 + i % 3] = columns[i];
    std::copy(translation.begin(), translation.end(), xform.m + 12);
    return xform;
}

// As the glTF specification has it.
Vector3 turned(const Quaternion& q, const Vector3& v)
{
    const auto [x, y, z, w] = q;
    return {(1 - 2 * (y * y + z * z)) * v[0] + 2 * (x * y - z * w) * v[1] + 2 * (x * z + y * w) * v[2],
            2 * (x * y + z * w) * v[0] + (1 - 2 * (x * x + z * z)) * v[1] + 2 * (y * z - x * w) * v[2],
            2 * (x * z - y * w) * v[0] + 2 * (y * z + x * w) * v[1] + (1 - 2 * (x * x + y * y)) * v[2]};
}

Vector3 placed(const tool::PlacementParts& parts, Vector3 point)
{
    if (parts.inner)
        point = turned(*parts.inner, point);
    for (int i = 0; i < 3; ++i)
        point[i] *= parts.outer.scale[i];
    point = turned(parts.outer.rotation, point);
    for (int i = 0; i < 3; ++i)
        point[i] += parts.outer.translation[i];
    return point;
}

double lengthOf(const Quaternion& q)
{
    return std::sqrt(q[0] * q[0] + q[1] * q[1] + q[2] * q[2] + q[3] * q[3]);
}

// Every unit point must land where the placement puts it, within the given share of the largest
// element.
void expectSame(const tool::PlacementParts& parts, const dlXform& xform, double tolerance)
{
    float largest = 0;
    for (int i = 0; i < 12; ++i)
        largest = std::max(largest, i % 4 == 3 ? 0.0f : std::abs(xform.m[i]));
    for (int axis = 0; axis < 3; ++axis) {
        Vector3 point{0, 0, 0};
        point[axis] = 1;
        const Vector3 moved = placed(parts, point);
        for (int row = 0; row < 3; ++row)
            EXPECT_NEAR(moved[row], double(xform.m[4 * axis + row]) + xform.m[12 + row],
                        tolerance * largest + 1e-300)
                << "axis " << axis << " row " << row;
    }
    EXPECT_NEAR(lengthOf(parts.outer.rotation), 1, 1e-12);
    EXPECT_NEAR(lengthOf(parts.inner.value_or(Quaternion{0, 0, 0, 1})), 1, 1e-12);
}

struct PlacementCase {
    const char* name;
    std::array<float, 9> columns;
    bool needsTwoNodes;
};
void PrintTo(const PlacementCase& row, std::ostream* out)
{
    *out << row.name;
}
const PlacementCase kPlacements[] = {
    {"identity", {1, 0, 0, 0, 1, 0, 0, 0, 1}, false},
    {"quarter_turn_about_z", {0, 1, 0, -1, 0, 0, 0, 0, 1}, false},
    {"half_turn_about_x", {1, 0, 0, 0, -1, 0, 0, 0, -1}, false},
    {"half_turn_about_y", {-1, 0, 0, 0, 1, 0, 0, 0, -1}, false},
    {"half_turn_about_z", {-1, 0, 0, 0, -1, 0, 0, 0, 1}, false},
    {"mirror_in_x", {-1, 0, 0, 0, 1, 0, 0, 0, 1}, false},
    {"mirror_in_z", {1, 0, 0, 0, 1, 0, 0, 0, -1}, false},
    {"mirror_in_the_origin", {-1, 0, 0, 0, -1, 0, 0, 0, -1}, false},
    {"stretched_three_ways", {2, 0, 0, 0, 3, 0, 0, 0, 0.5f}, false},
    {"rotated_then_stretched_across_the_axes", {0.6f, 1.6f, 0, -0.8f, 1.2f, 0, 0, 0, 1}, true},
    {"sheared", {1, 0, 0, 0.5f, 1, 0, 0, 0, 1}, true},
    {"sheared_and_mirrored", {1, 0, 0, 0.5f, -1, 0, 0.2f, 0.1f, 1}, true},
    {"flattened", {1, 0, 0, 0, 1, 0, 0, 0, 0}, false},
    {"flattened_to_a_line", {0, 0, 0, 0, 2, 0, 0, 0, 0}, false},
    {"nothing_left", {0, 0, 0, 0, 0, 0, 0, 0, 0}, false},
    {"all_axes_the_same", {1, 2, 3, 1, 2, 3, 1, 2, 3}, true},
    {"two_axes_the_same", {1, 1, 0, 1, 1, 0, 0, 0, 1}, true},
    {"huge", {1e30f, 0, 0, 0, 1e30f, 1e30f, 0, 0, 1e30f}, true},
    {"tiny", {1e-30f, 0, 0, 0, 1e-30f, 1e-30f, 0, 0, 1e-30f}, true},
    {"smallest_and_largest", {1e-45f, 0, 0, 0, 3.4e38f, 0, 0, 0, 1}, false},
};
class Placements : public testing::TestWithParam<PlacementCase> {};
TEST_P(Placements, AreTakenApartWithoutLoss)
{
    const dlXform xform = xformOf(GetParam().columns);
    const tool::PlacementParts parts = tool::takeApart(xform);
    EXPECT_EQ(parts.inner.has_value(), GetParam().needsTwoNodes);
    expectSame(parts, xform, 1e-7);
}
INSTANTIATE_TEST_SUITE_P(Rows, Placements, testing::ValuesIn(kPlacements),
                         [](const auto& row) { return row.param.name; });

TEST(TakeApart, KeepsTheTranslation)
{
    const auto parts = tool::takeApart(xformOf({1, 0, 0, 0, 1, 0, 0, 0, 1}, {0.1f, -2, 3e20f}));
    EXPECT_EQ(parts.outer.translation, (Vector3{double(0.1f), -2, double(3e20f)}));
}

TEST(TakeApart, GivesOneNegativeScaleForAMirror)
{
    const auto parts = tool::takeApart(xformOf({1, 0, 0, 0, 1, 0, 0, 0, -1}));
    EXPECT_LT(parts.outer.scale[0] * parts.outer.scale[1] * parts.outer.scale[2], 0);
}

TEST(TakeApart, WorksForAnyMatrix)
{
    std::mt19937 random(11);
    std::uniform_real_distribution<float> element(-2, 2);
    for (int i = 0; i < 5000; ++i) {
        std::array<float, 9> columns;
        for (float& value : columns)
            value = element(random);
        const dlXform xform = xformOf(columns);
        const auto parts = tool::takeApart(xform);
        EXPECT_TRUE(parts.inner.has_value());
        expectSame(parts, xform, 1e-12);
    }
}

TEST(TakeApart, TakesRoundedRotationsForRotations)
{
    std::mt19937 random(12);
    std::normal_distribution<double> part;
    for (int i = 0; i < 5000; ++i) {
        Quaternion q{part(random), part(random), part(random), part(random)};
        const double length = lengthOf(q);
        for (double& value : q)
            value /= length;
        std::array<float, 9> columns;
        for (int axis = 0; axis < 3; ++axis) {
            Vector3 point{0, 0, 0};
            point[axis] = 0.7;
            const Vector3 moved = turned(q, point);
            for (int row = 0; row < 3; ++row)
                columns[3 * axis + row] = static_cast<float>(moved[row]);
        }
        const auto parts = tool::takeApart(xformOf(columns));
        EXPECT_FALSE(parts.inner.has_value());
        expectSame(parts, xformOf(columns), 1e-6);
    }
}

TEST(IsFinite, LooksAtTheNumbersThatPlaceAPoint)
{
    dlXform xform;
    xform.m[3] = xform.m[15] = std::numeric_limits<float>::quiet_NaN();
    EXPECT_TRUE(tool::isFinite(xform));
    for (const int i : {0, 6, 10, 12, 14}) {
        dlXform broken;
        broken.m[i] = std::numeric_limits<float>::infinity();
        EXPECT_FALSE(tool::isFinite(broken)) << i;
    }
}

TEST(IsIdentity, LooksAtTheNumbersThatPlaceAPoint)
{
    dlXform xform;
    xform.m[7] = 5;
    EXPECT_TRUE(tool::isIdentity(xform));
    xform.m[13] = 1e-30f;
    EXPECT_FALSE(tool::isIdentity(xform));
}

}  // namespace
