#include "raylume/platform/Memory.h"

#include <gtest/gtest.h>

#include <cstring>
#include <memory>

namespace {

class HugePages : public testing::TestWithParam<std::size_t> {};

TEST_P(HugePages, LeaveTheBytesAndTheErrorNumberAlone)
{
    const std::size_t size = GetParam();
    const std::unique_ptr<unsigned char[]> block(new unsigned char[size + 2]);
    block[0] = 7;
    block[size + 1] = 9;
    errno = 0;
    platform::adviseHugePages(block.get() + 1, size);
    std::memset(block.get() + 1, 3, size);
    EXPECT_EQ(block[0], 7);
    EXPECT_EQ(block[size + 1], 9);
}

INSTANTIATE_TEST_SUITE_P(Rows, HugePages,
                         testing::Values(0, 1, 4096, (4 << 20) - 1, 4 << 20, (4 << 20) + 1, 64 << 20));

TEST(NoBlock, IsLeftAlone)
{
    EXPECT_NO_FATAL_FAILURE(platform::adviseHugePages(nullptr, 64 << 20));
}

}  // namespace
