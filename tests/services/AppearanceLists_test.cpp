#include "raylume/services/AppearanceLists.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <list>
#include <string>

#include "raylume/services/IgnoredImages.h"
#include "tests/platform/ScopedCodePage.h"
#include "tests/platform/TemporaryFolder.h"

namespace {

using Names = std::list<std::wstring>;

struct ColourCase {
    const char* name;
    const char* bytes;
    std::uint32_t colour;
};

const ColourCase kColourCases[] = {
    {"value", "DEFAULT_COLOR\t255\n", 0x0000FF},
    {"last_line_without_an_end", "DEFAULT_COLOR\t65280", 0x00FF00},
    {"bytes_stay_in_place", "DEFAULT_COLOR\t1193046\n", 0x123456},
    {"no_such_key", "CUSTOM_DECAL_FOLDERS\t255\n", 0x7F7F7F},
    {"empty_file", "", 0x7F7F7F},
    {"first_of_two", "DEFAULT_COLOR\t1\nDEFAULT_COLOR\t2\n", 1},
    {"behind_other_lines", "k\tC:\\x\nno tab\n\nDEFAULT_COLOR\t3\n", 3},
    {"empty_value_is_skipped", "DEFAULT_COLOR\t\nDEFAULT_COLOR\t4\n", 4},
    {"empty_value_alone", "DEFAULT_COLOR\t\r\n", 0x7F7F7F},
    {"no_tab", "DEFAULT_COLOR 5\n", 0x7F7F7F},
    {"lower_case", "default_color\t5\n", 0x7F7F7F},
    {"blank_behind_the_key", "DEFAULT_COLOR \t5\n", 0x7F7F7F},
    {"no_number_ends_the_reading", "DEFAULT_COLOR\tred\nDEFAULT_COLOR\t6\n", 0x7F7F7F},
    {"blank_ends_the_reading", "DEFAULT_COLOR\t \nDEFAULT_COLOR\t6\n", 0x7F7F7F},
    {"sign_alone", "DEFAULT_COLOR\t-\n", 0x7F7F7F},
    {"two_signs", "DEFAULT_COLOR\t--1\n", 0x7F7F7F},
    {"blank_behind_the_sign", "DEFAULT_COLOR\t- 1\n", 0x7F7F7F},
    {"minus_one", "DEFAULT_COLOR\t-1\n", 0xFFFFFF},
    {"plus", "DEFAULT_COLOR\t+7\n", 7},
    {"top_byte_goes", "DEFAULT_COLOR\t16777216\n", 0},
    {"low_bytes_stay", "DEFAULT_COLOR\t16777217\n", 1},
    {"largest", "DEFAULT_COLOR\t2147483647\n", 0xFFFFFF},
    {"smallest", "DEFAULT_COLOR\t-2147483648\n", 0},
    {"above_32_bits", "DEFAULT_COLOR\t4294967303\n", 7},
    {"above_64_bits", "DEFAULT_COLOR\t99999999999999999999\n", 0xFFFFFF},
    {"below_64_bits", "DEFAULT_COLOR\t-99999999999999999999\n", 0},
    {"blanks_before", "DEFAULT_COLOR\t \t8\n", 8},
    {"text_behind", "DEFAULT_COLOR\t9.7 red\n", 9},
    {"hexadecimal_is_its_zero", "DEFAULT_COLOR\t0x10\n", 0},
    {"octal_is_decimal", "DEFAULT_COLOR\t010\n", 10},
    {"behind_the_mark_of_old", "k\tv\n\x1A\nDEFAULT_COLOR\t5\n", 0x7F7F7F},
    {"mark_within_the_number",
     "DEFAULT_COLOR\t1\x1A"
     "2\n",
     1},
};

class DefaultColour : public testing::TestWithParam<ColourCase> {
protected:
    TemporaryFolder folder_;
};

TEST_P(DefaultColour, IsRead)
{
    folder_.write("__ImageLocations__.txt", GetParam().bytes);
    EXPECT_EQ(rlu_GetDefaultAppearanceCol(folder_.wide() + L"\\"), GetParam().colour);
}

INSTANTIATE_TEST_SUITE_P(Rows, DefaultColour, testing::ValuesIn(kColourCases),
                         [](const auto& row) { return row.param.name; });

class AppearanceLists : public testing::Test {
protected:
    ~AppearanceLists() override { g_ignoredImages.clear(); }

    void populate(const std::string& bytes) const
    {
        folder_.write("__IgnoredImages__.txt", bytes);
        rlu_PopulateIgnoredMissingImagesList(folder_.path() + "\\");
    }

    TemporaryFolder folder_;
};

TEST_F(AppearanceLists, GiveGreyWithoutAFile)
{
    EXPECT_EQ(rlu_GetDefaultAppearanceCol(folder_.wide() + L"\\"), 0x7F7F7Fu);
    ASSERT_EQ(mkfifo((folder_ / "__ImageLocations__.txt").c_str(), 0600), 0);
    EXPECT_EQ(rlu_GetDefaultAppearanceCol(folder_.wide() + L"\\"), 0x7F7F7Fu);
}

TEST_F(AppearanceLists, JoinTheFolderAsItIs)
{
    folder_.write("x__ImageLocations__.txt", "DEFAULT_COLOR\t1\n");
    EXPECT_EQ(rlu_GetDefaultAppearanceCol(folder_.wide() + L"\\x"), 1u);
    folder_.write("x__IgnoredImages__.txt", "a\n");
    rlu_PopulateIgnoredMissingImagesList(folder_.path() + "\\x");
    EXPECT_EQ(g_ignoredImages, Names{L"a"});
}

TEST_F(AppearanceLists, ReadTheColourAgainEachTime)
{
    folder_.write("__ImageLocations__.txt", "DEFAULT_COLOR\t1\n");
    EXPECT_EQ(rlu_GetDefaultAppearanceCol(folder_.wide() + L"\\"), 1u);
    folder_.write("__ImageLocations__.txt", "DEFAULT_COLOR\t2\n");
    EXPECT_EQ(rlu_GetDefaultAppearanceCol(folder_.wide() + L"\\"), 2u);
}

TEST_F(AppearanceLists, HoldIgnoredNamesInLowerCaseAndInOrder)
{
    populate("MIXED.PNG\r\n  leading.bmp\r\ntrailing.bmp \t\r\nh\xC3\x96he.png\n");
    EXPECT_EQ(g_ignoredImages, (Names{L"mixed.png", L"leading.bmp", L"trailing.bmp", L"h\u00F6he.png"}));
}

TEST_F(AppearanceLists, HoldARepeatedNameOnce)
{
    populate("b.png\na.png\nB.png \na.png\n");
    EXPECT_EQ(g_ignoredImages, (Names{L"b.png", L"a.png"}));
}

TEST_F(AppearanceLists, KnowNamesWhateverTheirCase)
{
    populate("MIXED.PNG\n");
    EXPECT_TRUE(rlu_IsInIgnoredMissingImagesList(L"mixed.png"));
    EXPECT_TRUE(rlu_IsInIgnoredMissingImagesList(L"Mixed.Png"));
    EXPECT_FALSE(rlu_IsInIgnoredMissingImagesList(L"mixed"));
    EXPECT_FALSE(rlu_IsInIgnoredMissingImagesList(L"C:\\x\\mixed.png"));
    EXPECT_FALSE(rlu_IsInIgnoredMissingImagesList(L""));
}

TEST_F(AppearanceLists, TrimTheLineButNotTheQuery)
{
    populate("  a.png\n");
    EXPECT_TRUE(rlu_IsInIgnoredMissingImagesList(L"a.png"));
    EXPECT_FALSE(rlu_IsInIgnoredMissingImagesList(L"  a.png"));
    EXPECT_FALSE(rlu_IsInIgnoredMissingImagesList(L"a.png "));
}

TEST_F(AppearanceLists, HoldTheEmptyNameOfABlankLine)
{
    populate("a.png\n \t\n\n");
    EXPECT_EQ(g_ignoredImages, (Names{L"a.png", L""}));
    EXPECT_TRUE(rlu_IsInIgnoredMissingImagesList(L""));
}

TEST_F(AppearanceLists, HaveNoCommentsAndKeepTabsWithin)
{
    populate("# a\nb\tc\n");
    EXPECT_EQ(g_ignoredImages, (Names{L"# a", L"b\tc"}));
}

TEST_F(AppearanceLists, ReplaceWhatWasReadBefore)
{
    populate("a.png\n");
    populate("b.png\n");
    EXPECT_EQ(g_ignoredImages, Names{L"b.png"});
}

TEST_F(AppearanceLists, AreEmptiedByAFolderWithoutAFile)
{
    populate("a.png\n");
    rlu_PopulateIgnoredMissingImagesList(folder_.path() + "\\none\\");
    EXPECT_EQ(g_ignoredImages, Names{});
}

TEST_F(AppearanceLists, AreEmptiedByNoFolderAndNothingIsRead)
{
    populate("a.png\n");
    const auto before = std::filesystem::current_path();
    std::filesystem::current_path(folder_.path());
    rlu_PopulateIgnoredMissingImagesList("");
    std::filesystem::current_path(before);
    EXPECT_EQ(g_ignoredImages, Names{});
}

TEST_F(AppearanceLists, AreInTheCodePage)
{
    const ScopedCodePage page(1252);
    ASSERT_TRUE(page.isSet());
    folder_.makeFolder("h\xC3\xB6he");
    folder_.write("h\xC3\xB6he/__IgnoredImages__.txt", "\xD6.png\n");
    rlu_PopulateIgnoredMissingImagesList(folder_.path() + "\\h\xF6he\\");
    EXPECT_EQ(g_ignoredImages, Names{L"\u00F6.png"});
}

TEST_F(AppearanceLists, TakeALongListWithoutDelayAndWithinBounds)
{
    std::string bytes;
    for (int i = 0; i < 50'000; ++i) {
        bytes += "image" + std::to_string(i) + "\n";
    }
    populate(bytes);
    EXPECT_EQ(g_ignoredImages.size(), 50'000u);
    bytes.clear();
    for (int i = 0; i < 17; ++i) {
        bytes += std::to_string(i) + std::string(1 << 20, 'x') + "\n";
    }
    populate(bytes);
    EXPECT_EQ(g_ignoredImages.size(), 15u);
}

TEST_F(AppearanceLists, TakeEveryFlippedByte)
{
    const std::string bytes = "One.png\r\n\xC3\x96.bmp\n\nTwo.png";
    for (std::size_t i = 0; i < bytes.size() * 8; ++i) {
        std::string flipped = bytes;
        flipped[i / 8] = static_cast<char>(flipped[i / 8] ^ (1 << i % 8));
        populate(flipped);
        EXPECT_LE(g_ignoredImages.size(), 5u);
        for (const std::wstring& name : Names(g_ignoredImages)) {
            EXPECT_TRUE(rlu_IsInIgnoredMissingImagesList(name));
        }
        folder_.write("__ImageLocations__.txt", "DEFAULT_COLOR\t1\n" + flipped);
        EXPECT_EQ(rlu_GetDefaultAppearanceCol(folder_.wide() + L"\\"), 1u);
    }
}

}  // namespace
