#include "raylume/services/PathText.h"

#include <gtest/gtest.h>

#include <string>

namespace {

struct SplitCase {
    const char* name;
    const wchar_t* path;
    const wchar_t* drive;
    const wchar_t* folder;
    const wchar_t* file;
    const wchar_t* extension;
};

const SplitCase kSplitCases[] = {
    {"all_parts", L"c:\\a\\b.c", L"c:", L"\\a\\", L"b", L".c"},
    {"other_separators", L"c:/a/b.c", L"c:", L"/a/", L"b", L".c"},
    {"mixed_separators", L"c:\\a/b.c", L"c:", L"\\a/", L"b", L".c"},
    {"trailing_separator", L"c:\\a\\b\\", L"c:", L"\\a\\b\\", L"", L""},
    {"no_trailing_separator", L"c:\\a\\b", L"c:", L"\\a\\", L"b", L""},
    {"relative", L"a\\b.c", L"", L"a\\", L"b", L".c"},
    {"relative_on_a_drive", L"c:b.c", L"c:", L"", L"b", L".c"},
    {"name_alone", L"b.c", L"", L"", L"b", L".c"},
    {"drive_alone", L"c:", L"c:", L"", L"", L""},
    {"root", L"\\", L"", L"\\", L"", L""},
    {"server", L"\\\\s\\d\\b.c", L"", L"\\\\s\\d\\", L"b", L".c"},
    {"empty", L"", L"", L"", L"", L""},
    {"two_points", L"b.c.d", L"", L"", L"b.c", L".d"},
    {"point_of_a_folder", L"a.b\\c", L"", L"a.b\\", L"c", L""},
    {"point_in_front", L"a\\.c", L"", L"a\\", L"", L".c"},
    {"point_at_the_end", L"b.", L"", L"", L"b", L"."},
    {"colon_elsewhere", L"ab:c", L"", L"", L"ab:c", L""},
    {"any_character_before_the_colon", L"1:\\a", L"1:", L"\\", L"a", L""},
    {"colon_behind_a_separator", L"\\:a", L"\\:", L"", L"a", L""},
};

class SplitPath : public testing::TestWithParam<SplitCase> {};

TEST_P(SplitPath, GivesTheParts)
{
    const auto& row = GetParam();
    const PathParts parts = splitPath(row.path);
    EXPECT_EQ(parts.drive, row.drive);
    EXPECT_EQ(parts.folder, row.folder);
    EXPECT_EQ(parts.name, row.file);
    EXPECT_EQ(parts.extension, row.extension);
    EXPECT_EQ(parts.drive + parts.folder + parts.name + parts.extension, row.path);
    EXPECT_EQ(driveAndFolder(row.path), std::wstring(row.drive) + row.folder);
}

INSTANTIATE_TEST_SUITE_P(Rows, SplitPath, testing::ValuesIn(kSplitCases),
                         [](const auto& row) { return row.param.name; });

TEST(PathText, EndsAtTheFirstZero)
{
    EXPECT_EQ(driveAndFolder(std::wstring(L"c:\\a\0\\b", 7)), L"c:\\");
}

TEST(PathText, GivesTheLastComponent)
{
    EXPECT_EQ(lastPathComponent(L"a\\b\\c"), L"c");
    EXPECT_EQ(lastPathComponent(L"a\\"), L"");
    EXPECT_EQ(lastPathComponent(L"\\c"), L"\\c");
    EXPECT_EQ(lastPathComponent(L"\\\\c"), L"c");
    EXPECT_EQ(lastPathComponent(L"a/c"), L"a/c");
    EXPECT_EQ(lastPathComponent(L""), L"");
}

TEST(PathText, TakesWhiteSpaceOff)
{
    EXPECT_EQ(withoutTrailingSpace(L" a b \t\r\n\v\f\u3000"), L" a b");
    EXPECT_EQ(withoutTrailingSpace(L" \u2003"), L"");
    EXPECT_EQ(withoutOuterSpace(L"\u00A0 a b\x85"), L"a b");
    EXPECT_EQ(withoutOuterSpace(L" \t"), L"");
    EXPECT_EQ(withoutOuterSpace(L"\u200Ba\u200B"), L"\u200Ba\u200B");
}

}  // namespace
