#include "raylume/platform/Interleave.h"

#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <vector>

namespace {

using platform::Extremes;

constexpr float kLargest = std::numeric_limits<float>::max();
constexpr Extremes kNone = {{kLargest, kLargest, kLargest}, {-kLargest, -kLargest, -kLargest}};

// Positions fall and rise on different axes, so that every one may be an extreme.
std::vector<float> positionsOf(std::size_t count)
{
    std::vector<float> positions;
    for (std::size_t vertex = 0; vertex < count; ++vertex) {
        const auto value = static_cast<float>(vertex);
        positions.insert(positions.end(), {value, -value, value * static_cast<float>(vertex % 7)});
    }
    return positions;
}

std::vector<float> normalsOf(std::size_t count)
{
    std::vector<float> normals;
    for (std::size_t vertex = 0; vertex < 3 * count; ++vertex)
        normals.push_back(0.5f - static_cast<float>(vertex));
    return normals;
}

void expectRecords(const float* records, const std::vector<float>& positions,
                   const std::vector<float>& normals)
{
    for (std::size_t vertex = 0; vertex < positions.size() / 3; ++vertex) {
        ASSERT_EQ(std::memcmp(records + 6 * vertex, positions.data() + 3 * vertex, 12), 0) << vertex;
        ASSERT_EQ(std::memcmp(records + 6 * vertex + 3, normals.data() + 3 * vertex, 12), 0) << vertex;
    }
}

struct BlockCase {
    const char* name;
    std::size_t vertices;
    std::size_t offset;  // Floats before the records: other than 0 or 4 is not aligned for streaming.
};

class Interleave : public testing::TestWithParam<BlockCase> {};

TEST_P(Interleave, FillsTheRecordsAndNothingElse)
{
    const auto [name, count, offset] = GetParam();
    const std::vector<float> positions = positionsOf(count);
    const std::vector<float> normals = normalsOf(count);
    std::vector<float> block(offset + 6 * count + 4, 77.0f);
    Extremes extremes = kNone;
    platform::interleave(positions.data(), normals.data(), count, block.data() + offset, extremes);
    expectRecords(block.data() + offset, positions, normals);
    for (std::size_t before = 0; before < offset; ++before)
        EXPECT_EQ(block[before], 77.0f);
    for (std::size_t behind = offset + 6 * count; behind < block.size(); ++behind)
        EXPECT_EQ(block[behind], 77.0f);
    const auto last = static_cast<float>(count - 1);
    EXPECT_EQ(extremes.min[0], count ? 0.0f : kLargest);
    EXPECT_EQ(extremes.max[0], count ? last : -kLargest);
    EXPECT_EQ(extremes.min[1], count ? -last : kLargest);
    EXPECT_EQ(extremes.max[1], count ? 0.0f : -kLargest);
}

const BlockCase kBlocks[] = {
    {"no_vertex", 0, 0},
    {"one_vertex", 1, 0},
    {"two_vertices", 2, 0},
    {"three_vertices", 3, 0},
    {"four_vertices", 4, 0},
    {"five_vertices_not_aligned", 5, 1},
    {"many_vertices", 1001, 0},
    {"a_large_block", 50000, 0},
    {"a_large_block_of_odd_size", 50001, 4},
    {"a_large_block_that_is_not_aligned", 50000, 1},
};
INSTANTIATE_TEST_SUITE_P(Blocks, Interleave, testing::ValuesIn(kBlocks),
                         [](const auto& row) { return row.param.name; });

TEST(InterleaveExtremes, GoOnFromWhatTheyAre)
{
    const std::vector<float> positions = positionsOf(9);
    const std::vector<float> normals = normalsOf(9);
    std::vector<float> records(54);
    Extremes extremes = {{-5.0f, -3.0f, 2.0f}, {5.0f, 3.0f, 100.0f}};
    platform::interleave(positions.data(), normals.data(), 9, records.data(), extremes);
    const Extremes expected = {{-5.0f, -8.0f, 0.0f}, {8.0f, 3.0f, 100.0f}};
    EXPECT_EQ(std::memcmp(&extremes, &expected, sizeof expected), 0);
}

TEST(InterleaveExtremes, KeepTheFirstOfTwoZerosAndNoNumberlessValue)
{
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const std::vector<float> positions = {0.0f, -0.0f, nan,  -0.0f, 0.0f,  nan,  0.0f, -0.0f, nan,
                                          0.0f, nan,   1.0f, nan,   -0.0f, 2.0f, nan,  0.0f,  nan};
    const std::vector<float> normals(positions.size());
    std::vector<float> records(2 * positions.size());
    Extremes extremes = kNone;
    platform::interleave(positions.data(), normals.data(), 6, records.data(), extremes);
    const Extremes expected = {{0.0f, -0.0f, 1.0f}, {0.0f, -0.0f, 2.0f}};
    EXPECT_EQ(std::memcmp(&extremes, &expected, sizeof expected), 0);
    expectRecords(records.data(), positions, normals);
}

}  // namespace
