#include "raylume/scene/dlBBox.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <type_traits>

namespace {

constexpr float kHighest = std::numeric_limits<float>::max();
constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();

dlBBox boxOf(float x0, float y0, float z0, float x1, float y1, float z1)
{
    dlBBox box;
    const float corners[2][3] = {{x0, y0, z0}, {x1, y1, z1}};
    box.addPoint(corners[0]);
    box.addPoint(corners[1]);
    return box;
}

std::uint32_t bitsOf(float value)
{
    return std::bit_cast<std::uint32_t>(value);
}

static_assert(std::is_copy_constructible_v<dlBBox> && std::is_move_constructible_v<dlBBox>);
static_assert(std::is_copy_assignable_v<dlBBox> && std::is_move_assignable_v<dlBBox>);
static_assert(sizeof(dlBBox) == 7 * sizeof(float));

TEST(BBox, NewBoxIsUnset)
{
    dlBBox box;
    for (int axis = 0; axis < 3; ++axis) {
        EXPECT_EQ(box.min[axis], kHighest);
        EXPECT_EQ(box.max[axis], -kHighest);
    }
    EXPECT_EQ(box.radius, -1.0f);
    EXPECT_EQ(box.isSet(), 0);
}

TEST(BBox, UnsetBoxHasInfiniteRadiusAndCachesIt)
{
    dlBBox box;
    EXPECT_EQ(box.getRadius(), kInfinity);
    EXPECT_EQ(box.radius, kInfinity);
    box.min[0] = box.min[1] = box.min[2] = 0;
    box.max[0] = box.max[1] = box.max[2] = 0;
    EXPECT_EQ(box.getRadius(), kInfinity);
}

TEST(BBox, UnsetBoxHasAHugeDiagonal)
{
    dlBBox box;
    EXPECT_EQ(box.getDiagonalLength(), 1.1787726265933931e+39);
}

TEST(BBox, FirstPointSetsBothCorners)
{
    dlBBox box;
    const float point[3] = {1, -2, 3};
    box.addPoint(point);
    for (int axis = 0; axis < 3; ++axis) {
        EXPECT_EQ(box.min[axis], point[axis]);
        EXPECT_EQ(box.max[axis], point[axis]);
    }
    EXPECT_EQ(box.isSet(), 1);
    EXPECT_EQ(box.getRadius(), 0.0f);
}

TEST(BBox, AxesGrowOnTheirOwn)
{
    dlBBox box = boxOf(0, 0, 0, 1, 1, 1);
    const float point[3] = {-1, 0.5f, 2};
    box.addPoint(point);
    EXPECT_EQ(box.min[0], -1);
    EXPECT_EQ(box.max[0], 1);
    EXPECT_EQ(box.min[1], 0);
    EXPECT_EQ(box.max[1], 1);
    EXPECT_EQ(box.min[2], 0);
    EXPECT_EQ(box.max[2], 2);
}

TEST(BBox, NaNMovesNoSideOfItsAxisOnly)
{
    dlBBox box = boxOf(0, 0, 0, 1, 1, 1);
    const float point[3] = {kNaN, 5, kNaN};
    box.addPoint(point);
    EXPECT_EQ(box.min[0], 0);
    EXPECT_EQ(box.max[0], 1);
    EXPECT_EQ(box.max[1], 5);
    EXPECT_EQ(box.max[2], 1);
}

TEST(BBox, FirstOfTwoEqualZerosStays)
{
    dlBBox box = boxOf(0.0f, -0.0f, 0.0f, -0.0f, 0.0f, 0.0f);
    EXPECT_FALSE(std::signbit(box.min[0]));
    EXPECT_TRUE(std::signbit(box.min[1]));
    EXPECT_TRUE(std::signbit(box.max[1]));
}

TEST(BBox, AddPointDropsTheRadiusEvenIfNothingMoves)
{
    dlBBox box = boxOf(-1, 0, 0, 1, 0, 0);
    EXPECT_EQ(box.getRadius(), 1.0f);
    const float inside[3] = {0, 0, 0};
    box.addPoint(inside);
    EXPECT_EQ(box.radius, -1.0f);
    const float outside[3] = {3, 0, 0};
    box.getRadius();
    box.addPoint(outside);
    EXPECT_EQ(box.getRadius(), 2.0f);
}

TEST(BBox, WrittenCornersDoNotRefreshTheRadius)
{
    dlBBox box = boxOf(-1, 0, 0, 1, 0, 0);
    box.getRadius();
    box.max[0] = 100;
    EXPECT_EQ(box.getRadius(), 1.0f);
}

struct CachedCase {
    const char* name;
    float radius;
    bool recomputed;
};

class CachedRadius : public testing::TestWithParam<CachedCase> {};

TEST_P(CachedRadius, IsRecomputedOnlyWhenNegative)
{
    dlBBox box = boxOf(-1, 0, 0, 1, 0, 0);
    box.radius = GetParam().radius;
    EXPECT_EQ(bitsOf(box.getRadius()), bitsOf(GetParam().recomputed ? 1.0f : GetParam().radius));
}

INSTANTIATE_TEST_SUITE_P(Rows, CachedRadius,
                         testing::Values(CachedCase{"zero_stays", 0.0f, false},
                                         CachedCase{"negative_zero_stays", -0.0f, false},
                                         CachedCase{"infinity_stays", kInfinity, false},
                                         CachedCase{"nan_stays", kNaN, false},
                                         CachedCase{"any_negative_is_recomputed", -0.5f, true}),
                         [](const auto& row) { return row.param.name; });

TEST(BBox, NaNRadiusIsCached)
{
    dlBBox box = boxOf(0, 0, 0, 1, 1, 1);
    box.max[1] = kNaN;
    EXPECT_TRUE(std::isnan(box.getRadius()));
    box.max[1] = 1;
    EXPECT_TRUE(std::isnan(box.getRadius()));
}

// Half extents of 1 + 2^-12: the power function rounds the square up from a tie, the product down,
// and three of them summed carry the difference through the square root.
TEST(BBox, RadiusSquaresWithThePowerFunction)
{
    const float side = 2.0f * 1.000244140625f;
    dlBBox box = boxOf(0, 0, 0, side, side, side);
    EXPECT_EQ(bitsOf(box.getRadius()), 0x3FDDC1B3u);
}

// z has to be added last: y + z first, x + z first and a sum in double precision all give 0x4400F9C1.
TEST(BBox, RadiusSumsYAndXBeforeZ)
{
    dlBBox box = boxOf(0, 0, 0, 2.0f * 1.1f, 2.0f * 1.1f, 2.0f * (469 * 1.1f));
    EXPECT_EQ(bitsOf(box.getRadius()), 0x4400F9C0u);
}

TEST(BBox, RadiusOverflowsBeforeHalving)
{
    dlBBox box = boxOf(-kHighest, 0, 0, kHighest, 0, 0);
    EXPECT_EQ(box.getRadius(), kInfinity);
}

TEST(BBox, DiagonalIsInDoublePrecisionAndNotCached)
{
    dlBBox box = boxOf(0, 0, 0, 1, 1, 1);
    EXPECT_EQ(box.getDiagonalLength(), std::sqrt(3.0));
    EXPECT_EQ(box.radius, -1.0f);
    box.max[0] = 0;
    EXPECT_EQ(box.getDiagonalLength(), std::sqrt(2.0));
}

class UnsetSide : public testing::TestWithParam<int> {};

TEST_P(UnsetSide, OneChangedSideMakesTheBoxSet)
{
    dlBBox box;
    float& side = GetParam() < 3 ? box.min[GetParam()] : box.max[GetParam() - 3];
    side = std::nextafter(side, 0.0f);
    EXPECT_EQ(box.isSet(), 1);
}

INSTANTIATE_TEST_SUITE_P(Sides, UnsetSide, testing::Range(0, 6));

TEST(BBox, CopiesCarryTheCachedRadius)
{
    dlBBox box = boxOf(0, 0, 0, 1, 2, 3);
    box.radius = 42;
    const dlBBox constructed(box);
    dlBBox assigned;
    assigned = box;
    dlBBox moved;
    moved = dlBBox(box);
    for (const dlBBox* copy :
         {&constructed, static_cast<const dlBBox*>(&assigned), static_cast<const dlBBox*>(&moved)}) {
        EXPECT_EQ(copy->radius, 42);
        EXPECT_EQ(copy->max[2], 3);
        EXPECT_EQ(copy->min[1], 0);
    }
}

}  // namespace
