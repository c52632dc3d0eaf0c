#include "reader/formats/strips/Strips.h"

#include <gmock/gmock.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <array>
#include <random>
#include <set>

#include "reader/formats/strips/StripGrowing.h"

namespace gltf_tests {
namespace {

using ovdl::StripGrower;
using ovdl::StripIds;
using ovdl::Stripifier;
using ovdl::TriangleList;

using Ids = std::vector<std::uint32_t>;
using IdTriangle = std::array<std::uint32_t, 3>;

IdTriangle turned(IdTriangle triangle)
{
    std::rotate(triangle.begin(), std::min_element(triangle.begin(), triangle.end()), triangle.end());
    return triangle;
}

std::multiset<IdTriangle> trianglesOfList(const Ids& list)
{
    std::multiset<IdTriangle> result;
    for (std::size_t i = 0; i + 3 <= list.size(); i += 3)
        result.insert(turned({list[i], list[i + 1], list[i + 2]}));
    return result;
}

std::multiset<IdTriangle> trianglesOfStrips(const StripIds& strips)
{
    std::multiset<IdTriangle> result;
    const std::uint32_t* ids = strips.ids;
    for (std::size_t strip = 0; strip < strips.stripCount; ++strip) {
        for (std::int32_t i = 0; i + 2 < strips.lengths[strip]; ++i)
            result.insert(turned({ids[i + i % 2], ids[i + 1 - i % 2], ids[i + 2]}));
        ids += strips.lengths[strip];
    }
    return result;
}

TriangleList listOf(const Ids& ids)
{
    TriangleList result;
    result.indices = ids.data();
    result.triangleCount = ids.size() / 3;
    result.idCount = ids.empty() ? 0 : *std::max_element(ids.begin(), ids.end()) + 1;
    return result;
}

// A grid of squares, cut in two in every way in which a program may write it.
struct GridKind {
    bool otherDiagonal;
    bool otherTriangleFirst;
    bool clockwise;
    bool byColumns;
    bool idsByColumns;
    bool snake;
    int firstTurn;
    int secondTurn;
};

Ids grid(int columns, int rows, const GridKind& kind)
{
    const auto id = [&](int x, int y) {
        return static_cast<std::uint32_t>(kind.idsByColumns ? x * (rows + 1) + y : y * (columns + 1) + x);
    };
    Ids list;
    const auto put = [&](IdTriangle triangle, int turn) {
        if (kind.clockwise)
            std::swap(triangle[1], triangle[2]);
        std::rotate(triangle.begin(), triangle.begin() + turn, triangle.end());
        list.insert(list.end(), triangle.begin(), triangle.end());
    };
    const int outer = kind.byColumns ? columns : rows;
    const int inner = kind.byColumns ? rows : columns;
    for (int o = 0; o < outer; ++o)
        for (int k = 0; k < inner; ++k) {
            const int i = kind.snake && o % 2 != 0 ? inner - 1 - k : k;
            const int x = kind.byColumns ? o : i;
            const int y = kind.byColumns ? i : o;
            const std::uint32_t a = id(x, y);
            const std::uint32_t b = id(x + 1, y);
            const std::uint32_t c = id(x, y + 1);
            const std::uint32_t d = id(x + 1, y + 1);
            IdTriangle first = {a, b, c};
            IdTriangle second = {b, d, c};
            if (kind.otherDiagonal) {
                first = {a, b, d};
                second = {a, d, c};
            }
            if (kind.otherTriangleFirst)
                std::swap(first, second);
            put(first, kind.firstTurn);
            put(second, kind.secondTurn);
        }
    return list;
}

std::vector<GridKind> allKinds()
{
    std::vector<GridKind> kinds;
    for (unsigned bits = 0; bits < 64; ++bits)
        for (int turns = 0; turns < 9; ++turns)
            kinds.push_back({(bits & 1) != 0, (bits & 2) != 0, (bits & 4) != 0, (bits & 8) != 0,
                             (bits & 16) != 0, (bits & 32) != 0, turns % 3, turns / 3});
    return kinds;
}

struct GridSize {
    int columns;
    int rows;
};

class Grids : public testing::TestWithParam<GridSize> {};

TEST_P(Grids, TakeAtMostSixFifthsOfAnIdATriangle)
{
    Stripifier stripifier;
    for (const GridKind& kind : allKinds()) {
        const Ids list = grid(GetParam().columns, GetParam().rows, kind);
        const StripIds strips = stripifier.make(listOf(list));
        ASSERT_EQ(trianglesOfStrips(strips), trianglesOfList(list));
        EXPECT_LE(strips.idCount * 5, list.size() / 3 * 6);
    }
}
INSTANTIATE_TEST_SUITE_P(Sizes, Grids,
                         testing::Values(GridSize{5, 5}, GridSize{6, 9}, GridSize{10, 10}, GridSize{31, 17},
                                         GridSize{2, 60}, GridSize{60, 2}, GridSize{1, 40},
                                         GridSize{33, 30}),
                         [](const auto& size) {
                             return std::to_string(size.param.columns) + "x" +
                                    std::to_string(size.param.rows);
                         });

TEST(Strips, OfAGridInNoOrderAtAllAreStillLong)
{
    Ids list = grid(60, 50, {});
    std::vector<IdTriangle> triangles;
    for (std::size_t i = 0; i < list.size(); i += 3)
        triangles.push_back({list[i], list[i + 1], list[i + 2]});
    std::shuffle(triangles.begin(), triangles.end(), std::mt19937(7));
    Ids shuffled;
    for (const IdTriangle& triangle : triangles)
        shuffled.insert(shuffled.end(), triangle.begin(), triangle.end());
    Stripifier stripifier;
    const StripIds strips = stripifier.make(listOf(shuffled));
    EXPECT_EQ(trianglesOfStrips(strips), trianglesOfList(list));
    EXPECT_LE(strips.idCount * 5, list.size() / 3 * 6);
}

TEST(Strips, OfNothingAreNone)
{
    Stripifier stripifier;
    const StripIds strips = stripifier.make({});
    EXPECT_EQ(strips.idCount, 0u);
    EXPECT_EQ(strips.stripCount, 0u);
}

TEST(Strips, OfOneTriangleAreThatOne)
{
    Stripifier stripifier;
    const Ids list = {2, 0, 1};
    const StripIds strips = stripifier.make(listOf(list));
    EXPECT_EQ(trianglesOfStrips(strips), trianglesOfList(list));
    EXPECT_EQ(strips.idCount, 3u);
}

TEST(Strips, OfAFanOfManyTrianglesComeInAReasonableTime)
{
    Ids list;
    for (std::uint32_t i = 1; i <= 200000; ++i)
        list.insert(list.end(), {0, i, i + 1});
    Stripifier stripifier;
    EXPECT_EQ(trianglesOfStrips(stripifier.make(listOf(list))).size(), 200000u);
    StripGrower grower;
    Ids ids(list.size());
    std::vector<std::int32_t> lengths(list.size() / 3);
    grower.grow(list.data(), list.size() / 3, 200002, ids.data(), lengths.data());
    EXPECT_GE(grower.stripCount(), 1u);
}

// Few ids make meshes with every kind of edge: open, shared by two, by many, and by triangles that turn
// both ways.
Ids anyList()
{
    const auto idCount = *rc::gen::inRange<std::uint32_t>(3, 40);
    const auto raw = *rc::gen::container<std::vector<IdTriangle>>(rc::gen::map(
        rc::gen::container<std::array<std::uint32_t, 3>>(rc::gen::inRange<std::uint32_t>(0, idCount)),
        [](const IdTriangle& triangle) { return triangle; }));
    Ids list;
    for (const IdTriangle& t : raw)
        if (t[0] != t[1] && t[1] != t[2] && t[0] != t[2])
            list.insert(list.end(), t.begin(), t.end());
    return list;
}

RC_GTEST_PROP(StripProperties, TheLibrarysWayKeepsEveryTriangleAndItsWinding, ())
{
    const Ids list = anyList();
    Stripifier stripifier;
    RC_ASSERT(trianglesOfStrips(stripifier.make(listOf(list))) == trianglesOfList(list));
}

RC_GTEST_PROP(StripProperties, GrowingKeepsEveryTriangleAndItsWinding, ())
{
    const Ids list = anyList();
    StripGrower grower;
    Ids ids(list.size());
    std::vector<std::int32_t> lengths(list.size() / 3);
    grower.grow(list.data(), list.size() / 3, listOf(list).idCount, ids.data(), lengths.data());
    StripIds strips;
    strips.ids = ids.data();
    strips.idCount = grower.idCount();
    strips.lengths = lengths.data();
    strips.stripCount = grower.stripCount();
    RC_ASSERT(trianglesOfStrips(strips) == trianglesOfList(list));
}

}  // namespace
}  // namespace gltf_tests
