#include "raylume/services/Text.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "tests/platform/ScopedCodePage.h"

using namespace std::string_literals;

namespace {

std::wstring widened(const char* text)
{
    const std::unique_ptr<wchar_t[]> wide(rlu_CharStarToWideChar(text));
    return wide.get();
}

TEST(TextConversion, GoesThroughTheCodePage)
{
    const ScopedCodePage page(1252);
    EXPECT_EQ(rlu_WStringToString(L"h\u00F6he\u65E5"), "h\xF6he?");
    EXPECT_EQ(widened("h\xF6he"), L"h\u00F6he");
    const ScopedCodePage japanese(932);
    EXPECT_EQ(rlu_WStringToString(L"\u65E5\u672C"), "\x93\xFA\x96\x7B");
    EXPECT_EQ(widened("\x93\xFA\x96\x7B"), L"\u65E5\u672C");
}

TEST(TextConversion, KeepsZerosInsideWideText)
{
    EXPECT_EQ(rlu_WStringToString(L"a\0b"s), "a\0b"s);
}

TEST(TextConversion, OfEmptyTextIsEmpty)
{
    EXPECT_EQ(rlu_WStringToString(L""), "");
    EXPECT_EQ(widened(""), L"");
}

TEST(TextConversion, OfNullIsNull)
{
    EXPECT_EQ(rlu_CharStarToWideChar(nullptr), nullptr);
}

struct LowerCase {
    const char* name;
    int codePage;
    const char* text;
    const char* lower;
};

const LowerCase kLowerCases[] = {
    {"ascii", 65001, "Oak_01.JPG", "oak_01.jpg"},
    {"utf_8", 65001, "H\xC3\x96HE", "h\xC3\xB6he"},
    {"western", 1252, "H\xD6HE", "h\xF6he"},
    {"cyrillic", 1251, "\xC6", "\xE6"},
    {"trail_bytes_that_look_like_capitals", 932, "\x83\x41", "\x83\x41"},
    {"full_width", 932, "\x82\x60", "\x82\x81"},
    {"capital_i_is_never_turkish", 1254, "I\xDD", "ii"},
    {"empty", 1252, "", ""},
};

class MakeLowerCase : public testing::TestWithParam<LowerCase> {};

TEST_P(MakeLowerCase, LowersWholeCharacters)
{
    const ScopedCodePage page(GetParam().codePage);
    ASSERT_TRUE(page.isSet());
    EXPECT_EQ(rlu_makeLowerCaseString(GetParam().text), GetParam().lower);
}

INSTANTIATE_TEST_SUITE_P(Rows, MakeLowerCase, testing::ValuesIn(kLowerCases),
                         [](const auto& row) { return row.param.name; });

TEST(MakeLowerCaseOfNull, IsEmpty)
{
    EXPECT_EQ(rlu_makeLowerCaseString(nullptr), "");
}

}  // namespace
