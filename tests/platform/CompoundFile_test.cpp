#include <gmock/gmock.h>

#include "CompoundFileTools.h"
#include "TemporaryFolder.h"

namespace {

using namespace compound_tests;

struct SizeCase {
    const char* name;
    std::size_t size;
};
const SizeCase kSizes[] = {
    {"empty", 0},
    {"one_byte", 1},
    {"one_small_sector", 64},
    {"last_size_in_small_sectors", 4095},
    {"first_size_in_large_sectors", 4096},
    {"one_byte_into_a_sector", 4097},
    {"a_megabyte", 1 << 20},
    {"beyond_the_table_sectors_of_the_header", 8 << 20},
};

class StreamSizes : public testing::TestWithParam<SizeCase> {};

TEST_P(StreamSizes, ComeBackFromTheFile)
{
    const TemporaryFolder folder;
    const std::string bytes = pattern(GetParam().size);
    {
        const Storage root = createFile(folder / "a.doc");
        put(*root.get(), L"Data", bytes);
    }
    EXPECT_TRUE(bytesOf(*openFile(folder / "a.doc").get(), L"Data") == bytes);
}

TEST_P(StreamSizes, ComeBackFromAStorageInAStorage)
{
    const TemporaryFolder folder;
    const std::string bytes = pattern(GetParam().size);
    {
        const Storage root = createFile(folder / "a.doc");
        const Storage outer = createIn(*root.get(), L"ThirdPtyStore");
        const Storage inner = createIn(*outer.get(), L"Raylume");
        put(*inner.get(), L"ShaderData", bytes);
    }
    const Storage root = openFile(folder / "a.doc");
    const Storage outer = openIn(*root.get(), L"ThirdPtyStore");
    const Storage inner = openIn(*outer.get(), L"Raylume");
    EXPECT_TRUE(bytesOf(*inner.get(), L"ShaderData") == bytes);
}

TEST_P(StreamSizes, SurviveARewriteForSomethingElse)
{
    const TemporaryFolder folder;
    const std::string bytes = pattern(GetParam().size);
    {
        const Storage root = createFile(folder / "a.doc");
        put(*root.get(), L"Data", bytes);
    }
    put(*openFile(folder / "a.doc", true).get(), L"Other", "x");
    const Storage root = openFile(folder / "a.doc");
    EXPECT_TRUE(bytesOf(*root.get(), L"Data") == bytes);
    EXPECT_EQ(bytesOf(*root.get(), L"Other"), "x");
}

INSTANTIATE_TEST_SUITE_P(Rows, StreamSizes, testing::ValuesIn(kSizes),
                         [](const auto& row) { return row.param.name; });

}  // namespace
