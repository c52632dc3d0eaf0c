#include "reader/formats/gltf/Uris.h"

#include <gmock/gmock.h>

namespace gltf_tests {
namespace {

using ovdl::gltf::dataUriBytes;
using ovdl::gltf::isDataUri;
using ovdl::gltf::relativePath;

struct PathCase {
    const char* name;
    std::string uri;
    const wchar_t* path;  // Null: none.
};
const PathCase kPaths[] = {
    {"a_plain_name", "a.bin", L"a.bin"},
    {"a_name_below", "data/a.bin", L"data/a.bin"},
    {"a_blank", "a b.bin", L"a b.bin"},
    {"an_escaped_blank", "a%20b.bin", L"a b.bin"},
    {"escapes_in_both_letter_cases", "%c3%B6.bin", L"\xF6.bin"},
    {"a_name_that_begins_with_dots", "..a/b..c/...", L"..a/b..c/..."},
    {"the_folder_itself_in_between", "./a/./b", L"./a/./b"},
    {"an_empty_reference", "", nullptr},
    {"a_parent", "../a.bin", nullptr},
    {"a_parent_alone", "..", nullptr},
    {"a_parent_in_the_middle", "a/../b", nullptr},
    {"a_parent_at_the_end", "a/..", nullptr},
    {"an_escaped_parent", "%2e%2E/a.bin", nullptr},
    {"an_escaped_separator", "..%2Fa.bin", nullptr},
    {"an_absolute_path", "/etc/hosts", nullptr},
    {"an_escaped_absolute_path", "%2Fetc/hosts", nullptr},
    {"a_network_path", "//host/a.bin", nullptr},
    {"a_folder", "a/", nullptr},
    {"a_scheme", "file:///a.bin", nullptr},
    {"a_web_address", "http://example.com/a.bin", nullptr},
    {"a_drive", "c:a.bin", nullptr},
    {"an_escaped_drive", "c%3Aa.bin", nullptr},
    {"a_backslash", "..\\a.bin", nullptr},
    {"a_backslash_below", "a\\b.bin", nullptr},
    {"an_escaped_backslash", "..%5Ca.bin", nullptr},
    {"an_escaped_zero", "a%00.bin", nullptr},
    {"an_escape_cut_short", "a%2", nullptr},
    {"an_escape_that_is_none", "a%zz", nullptr},
    {"bytes_that_are_no_utf8", "%FF.bin", nullptr},
};

class RelativePaths : public testing::TestWithParam<PathCase> {};

TEST_P(RelativePaths, StayBelowTheFolder)
{
    const auto path = relativePath(GetParam().uri);
    ASSERT_EQ(path.has_value(), GetParam().path != nullptr);
    if (path) {
        EXPECT_EQ(*path, GetParam().path);
    }
}
INSTANTIATE_TEST_SUITE_P(Rows, RelativePaths, testing::ValuesIn(kPaths),
                         [](const auto& row) { return row.param.name; });

struct DataCase {
    const char* name;
    const char* uri;
    const char* bytes;  // Null: broken.
};
const DataCase kData[] = {
    {"three_bytes", "data:;base64,YWJj", "abc"},
    {"two_bytes", "data:;base64,YWI=", "ab"},
    {"one_byte", "data:;base64,YQ==", "a"},
    {"one_byte_without_filling", "data:;base64,YQ", "a"},
    {"nothing", "data:;base64,", ""},
    {"a_type", "data:image/png;base64,YWJj", "abc"},
    {"escaped_digits", "data:;base64,YWJ%6A", "abc"},
    {"plain_text", "data:,a%62c", "abc"},
    {"no_comma", "data:;base64", nullptr},
    {"a_digit_that_is_none", "data:;base64,YW*j", nullptr},
    {"one_digit_too_many", "data:;base64,YWJjY", nullptr},
    {"a_broken_escape", "data:,a%6", nullptr},
    {"another_scheme", "date:,abc", nullptr},
};

class DataUris : public testing::TestWithParam<DataCase> {};

TEST_P(DataUris, GiveTheirBytes)
{
    const auto bytes = dataUriBytes(GetParam().uri);
    ASSERT_EQ(bytes.has_value(), GetParam().bytes != nullptr);
    if (bytes) {
        EXPECT_EQ(std::string(bytes->begin(), bytes->end()), GetParam().bytes);
    }
}
INSTANTIATE_TEST_SUITE_P(Rows, DataUris, testing::ValuesIn(kData),
                         [](const auto& row) { return row.param.name; });

TEST(DataUri, IsToldByItsScheme)
{
    EXPECT_TRUE(isDataUri("data:,"));
    EXPECT_FALSE(isDataUri("data"));
    EXPECT_FALSE(isDataUri("a/data:"));
}

}  // namespace
}  // namespace gltf_tests
