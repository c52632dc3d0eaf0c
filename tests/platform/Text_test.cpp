#include "raylume/platform/Text.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cstdlib>
#include <string>
#include <thread>

#include "tests/platform/ScopedCodePage.h"
#include "tests/platform/ScopedEnvironment.h"

using namespace std::string_literals;

namespace {

constexpr int kUtf8 = 65001;

struct NarrowCase {
    const char* name;
    int codePage;
    std::wstring text;
    std::string bytes;
};

const NarrowCase kNarrowCases[] = {
    {"ascii_in_utf_8", kUtf8, L"Part-1@top", "Part-1@top"},
    {"ascii_in_1252", 1252, L"Part-1@top", "Part-1@top"},
    {"nothing_stays_nothing", 1252, L"", ""},
    {"accents_in_utf_8", kUtf8, L"h\u00F6he", "h\xC3\xB6he"},
    {"accents_in_1252", 1252, L"h\u00F6he", "h\xF6he"},
    {"euro_sign_in_1252", 1252, L"\u20AC", "\x80"},
    {"unassigned_control_in_1252", 1252, L"\u0081", "\x81"},
    {"cyrillic_in_1251", 1251, L"\u0414\u0416", "\xC4\xC6"},
    {"thai_in_874", 874, L"\u0E01", "\xA1"},
    {"kanji_in_932", 932, L"\u65E5\u672C", "\x93\xFA\x96\x7B"},
    {"half_width_kana_in_932", 932, L"\uFF71", "\xB1"},
    {"kanji_with_a_backslash_byte_in_932", 932, L"\u8868", "\x95\x5C"},
    {"chinese_in_936", 936, L"\u4E2D", "\xD6\xD0"},
    {"korean_in_949", 949, L"\uD55C", "\xC7\xD1"},
    {"chinese_in_950", 950, L"\u4E2D", "\xA4\xA4"},
    {"latin_one_by_its_number", 28591, L"\u00E9", "\xE9"},
    {"missing_character_is_one_mark", 1252, L"a\u65E5b", "a?b"},
    {"missing_character_beyond_the_first_plane_is_two_marks", 1252, L"a\U0001F600b", "a??b"},
    {"missing_character_beyond_the_first_plane_is_two_marks_in_932", 932, L"\U0001F600", "??"},
    {"no_best_fit_for_full_width_letters", 1252, L"\uFF21", "?"},
    {"no_best_fit_for_an_accent", 1252, L"\u0101", "?"},
    {"no_best_fit_for_private_use", 932, L"\uF86F", "?"},
    {"characters_without_a_glyph_leave_a_mark", 1252, L"a\u200Db", "a?b"},
    {"a_mark_for_each_of_several", 1252, L"\u65E5\u672C", "??"},
    {"marks_do_not_disturb_double_bytes", 932, L"\u65E5\u00EA\u672C", "\x93\xFA?\x96\x7B"},
    {"zeros_are_kept_in_utf_8", kUtf8, L"a\0b"s, "a\0b"s},
    {"zeros_are_kept_in_1252", 1252, L"\u00E9\0b"s, "\xE9\0b"s},
    {"zeros_are_kept_in_932", 932, L"\u65E5\0\u672C"s, "\x93\xFA\0\x96\x7B"s},
    {"controls_stay_themselves_in_932", 932, L"\u65E5\x1A\x1C\x7F", "\x93\xFA\x1A\x1C\x7F"},
    {"controls_stay_themselves_in_437", 437, L"\u00E9\x1A\x1C\x7F", "\x82\x1A\x1C\x7F"},
    {"utf_8_of_one_to_four_bytes", kUtf8, L"\u007F\u0080\u07FF\u0800\uFFFF\U00010000\U0010FFFF",
     "\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80\xEF\xBF\xBF\xF0\x90\x80\x80\xF4\x8F\xBF\xBF"},
    {"lone_surrogate_in_utf_8",
     kUtf8,
     {L'a', static_cast<wchar_t>(0xD800), L'b'},
     "a\xEF\xBF\xBD"
     "b"},
    {"two_surrogates_are_no_pair_here",
     kUtf8,
     {static_cast<wchar_t>(0xD83D), static_cast<wchar_t>(0xDE00)},
     "\xEF\xBF\xBD\xEF\xBF\xBD"},
    {"lone_surrogate_in_1252", 1252, {L'a', static_cast<wchar_t>(0xDFFF), L'b'}, "a?b"},
    {"lone_surrogate_in_932", 932, {static_cast<wchar_t>(0xD800), L'\u65E5'}, "?\x93\xFA"},
    {"value_above_unicode_in_utf_8", kUtf8, {static_cast<wchar_t>(0x110000)}, "\xEF\xBF\xBD"},
    {"value_above_unicode_in_1252", 1252, {static_cast<wchar_t>(0x7FFFFFFF)}, "?"},
    {"negative_value_in_932", 932, {static_cast<wchar_t>(-1)}, "?"},
};

class Narrow : public testing::TestWithParam<NarrowCase> {};

TEST_P(Narrow, ConvertsThroughTheCodePage)
{
    const ScopedCodePage page(GetParam().codePage);
    ASSERT_TRUE(page.isSet());
    EXPECT_EQ(platform::narrow(GetParam().text), GetParam().bytes);
}

INSTANTIATE_TEST_SUITE_P(Rows, Narrow, testing::ValuesIn(kNarrowCases),
                         [](const auto& row) { return row.param.name; });

struct WidenCase {
    const char* name;
    int codePage;
    std::string bytes;
    std::wstring text;
};

const WidenCase kWidenCases[] = {
    {"ascii_in_932", 932, "Part-1\\@top", L"Part-1\\@top"},
    {"nothing_stays_nothing", 932, "", L""},
    {"accents_in_1252", 1252, "h\xF6he", L"h\u00F6he"},
    {"euro_sign_in_1252", 1252, "\x80", L"\u20AC"},
    {"kanji_in_932", 932, "\x93\xFA\x96\x7B", L"\u65E5\u672C"},
    {"backslash_byte_behind_a_lead_byte", 932, "\x95\x5C", L"\u8868"},
    {"controls_stay_themselves_in_932", 932, "\x93\xFA\x1A\x1C\x7F", L"\u65E5\x1A\x1C\x7F"},
    {"controls_stay_themselves_in_437", 437, "\x82\x1A\x1C\x7F", L"\u00E9\x1A\x1C\x7F"},
    {"zeros_are_kept_in_utf_8", kUtf8, "\xC3\xB6\0b"s, L"\u00F6\0b"s},
    {"zeros_are_kept_in_932", 932, "\x93\xFA\0b"s, L"\u65E5\0b"s},
    {"lead_byte_at_the_end_in_932", 932, "a\x93", L"a\uFFFD"},
    {"bad_trail_byte_in_932_is_read_again", 932, "\x93 a", L"\uFFFD a"},
    {"undefined_byte_in_932", 932, "a\xFF", L"a\uFFFD"},
    {"undefined_byte_in_1253", 1253, "a\xD2", L"a\uFFFD"},
    {"four_byte_character_in_54936", 54936, "\x94\x39\xFC\x36", L"\U0001F600"},
    {"utf_8_beyond_the_first_plane", kUtf8, "\xF0\x9F\x98\x80", L"\U0001F600"},
    {"utf_8_lone_trail_byte", kUtf8, "a\x80z", L"a\uFFFDz"},
    {"utf_8_cut_short", kUtf8, "a\xE2\x82", L"a\uFFFD"},
    {"utf_8_cut_by_ascii", kUtf8, "\xE2\x82z", L"\uFFFDz"},
    {"utf_8_overlong", kUtf8, "\xC0\xAF", L"\uFFFD\uFFFD"},
    {"utf_8_overlong_of_three", kUtf8, "\xE0\x80\xAF", L"\uFFFD\uFFFD\uFFFD"},
    {"utf_8_surrogate", kUtf8, "\xED\xA0\x80", L"\uFFFD\uFFFD\uFFFD"},
    {"utf_8_above_the_last_character", kUtf8, "\xF4\x90\x80\x80", L"\uFFFD\uFFFD\uFFFD\uFFFD"},
    {"utf_8_byte_that_never_stands", kUtf8, "\xFF\xFE", L"\uFFFD\uFFFD"},
    {"utf_8_good_parts_between_bad_ones", kUtf8, "\xF1\x80\x80\xE1\x80\xC2\x62\x80\x63",
     L"\uFFFD\uFFFD\uFFFD\x62\uFFFD\x63"},
};

class Widen : public testing::TestWithParam<WidenCase> {};

TEST_P(Widen, ConvertsThroughTheCodePage)
{
    const ScopedCodePage page(GetParam().codePage);
    ASSERT_TRUE(page.isSet());
    EXPECT_EQ(platform::widen(GetParam().bytes), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(Rows, Widen, testing::ValuesIn(kWidenCases),
                         [](const auto& row) { return row.param.name; });

const int kCodePages[] = {437,  850,  874,  932,  936,  949,  950,   1250,  1251,  1252,
                          1253, 1254, 1255, 1256, 1257, 1258, 28591, 28605, 54936, kUtf8};

class EveryCodePage : public testing::TestWithParam<int> {};

TEST_P(EveryCodePage, KeepsAsciiBothWays)
{
    const ScopedCodePage page(GetParam());
    ASSERT_TRUE(page.isSet());
    // The character behind them leads past the short cut that a text of ASCII alone takes.
    const std::wstring wideTail = platform::widen(platform::narrow(L"\u00D7\u0416"));
    for (char c = 0; c < 0x7F; ++c) {
        const std::wstring wide(1, static_cast<wchar_t>(c));
        EXPECT_EQ(platform::narrow(wide), std::string(1, c));
        EXPECT_EQ(platform::narrow(wide + wideTail), std::string(1, c) + platform::narrow(wideTail));
        EXPECT_EQ(platform::widen(std::string(1, c)), wide);
        EXPECT_EQ(platform::widen(std::string(1, c) + platform::narrow(wideTail)), wide + wideTail);
    }
}

TEST_P(EveryCodePage, LosesACharacterToMarksOrKeepsItExactly)
{
    const ScopedCodePage page(GetParam());
    ASSERT_TRUE(page.isSet());
    for (wchar_t c = 1; c < 0x11000; c += 1) {
        if (c == L'?' || (c >= 0xD800 && c <= 0xDFFF)) {
            continue;
        }
        const std::wstring text(1, c);
        const std::string bytes = platform::narrow(text);
        const bool isMark = bytes == (c > 0xFFFF ? "??" : "?");
        ASSERT_EQ(platform::fitsAnsiCodePage(text), !isMark) << std::hex << static_cast<int>(c);
        ASSERT_TRUE(isMark || platform::widen(bytes) == text) << std::hex << static_cast<int>(c);
    }
}

TEST_P(EveryCodePage, TakesAnyPairOfBytes)
{
    const ScopedCodePage page(GetParam());
    ASSERT_TRUE(page.isSet());
    for (int first = 0; first < 256; ++first) {
        for (int second = 0; second < 256; ++second) {
            const std::wstring text =
                platform::widen(std::string{static_cast<char>(first), static_cast<char>(second)});
            ASSERT_GE(text.size(), 1u);
            ASSERT_LE(text.size(), 2u);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Rows, EveryCodePage, testing::ValuesIn(kCodePages),
                         [](const auto& row) { return std::to_string(row.param); });

struct FitCase {
    const char* name;
    int codePage;
    std::wstring text;
    bool fits;
};

const FitCase kFitCases[] = {
    {"ascii_fits_everywhere", 932, L"C:\\a?b", true},
    {"accents_fit_1252", 1252, L"h\u00F6he", true},
    {"kanji_do_not_fit_1252", 1252, L"\u65E5", false},
    {"kanji_fit_932", 932, L"\u65E5", true},
    {"anything_fits_utf_8", kUtf8, L"\u65E5\U0001F600", true},
    {"replacement_character_fits_utf_8", kUtf8, L"\uFFFD", true},
    {"lone_surrogate_fits_nothing", kUtf8, {static_cast<wchar_t>(0xD800)}, false},
    {"value_above_unicode_fits_nothing", kUtf8, {static_cast<wchar_t>(0x110000)}, false},
    {"question_mark_beside_an_accent_fits", 1252, L"\u00E9?", true},
};

class Fit : public testing::TestWithParam<FitCase> {};

TEST_P(Fit, SaysWhetherNothingIsLost)
{
    const ScopedCodePage page(GetParam().codePage);
    EXPECT_EQ(platform::fitsAnsiCodePage(GetParam().text), GetParam().fits);
}

INSTANTIATE_TEST_SUITE_P(Rows, Fit, testing::ValuesIn(kFitCases),
                         [](const auto& row) { return row.param.name; });

TEST(CodePageSetting, IsUtf8AtFirst)
{
    EXPECT_EQ(platform::ansiCodePage(), kUtf8);
}

TEST(CodePageSetting, RefusesNumbersWithoutAConverterAndChangesNothing)
{
    const ScopedCodePage page(1252);
    for (const int number : {0, -1, 1, 3, 1200, 1201, 12000, 99999, 2147483647, -2147483647 - 1}) {
        EXPECT_FALSE(platform::setAnsiCodePage(number)) << number;
        EXPECT_EQ(platform::ansiCodePage(), 1252);
    }
}

TEST(CodePageSetting, ChangesBackAndForth)
{
    const ScopedCodePage restore(1252);
    for (int round = 0; round < 3; ++round) {
        ASSERT_TRUE(platform::setAnsiCodePage(1252));
        EXPECT_EQ(platform::widen("\xE9"), L"\u00E9");
        ASSERT_TRUE(platform::setAnsiCodePage(1251));
        EXPECT_EQ(platform::widen("\xE9"), L"\u0439");
    }
}

TEST(CodePageSetting, ConvertsLongTextsWhole)
{
    const ScopedCodePage page(932);
    const std::wstring text(100001, L'\u65E5');
    const std::string bytes = platform::narrow(text);
    EXPECT_EQ(bytes.size(), 200002u);
    EXPECT_EQ(platform::widen(bytes), text);
    EXPECT_EQ(platform::narrow(std::wstring(5000, L'\U0001F600')), std::string(10000, '?'));
}

// Such an object goes after the thread's own ones, and with them the converter that it kept.
class ConvertsInItsDestructor {
public:
    ~ConvertsInItsDestructor()
    {
        if (platform::widen("\x93\xFA") != L"\u65E5" || platform::narrow(L"\u672C") != "\x96\x7B") {
            std::_Exit(1);
        }
    }
};

void endWithAConversion()
{
    static const ConvertsInItsDestructor last;
    platform::setAnsiCodePage(932);
    std::exit(platform::narrow(L"\u65E5") == "\x93\xFA" ? 0 : 2);
}

TEST(CodePageSetting, HoldsWhileObjectsOfStaticLifeGo)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(endWithAConversion(), testing::ExitedWithCode(0), "");
}

TEST(CodePageSetting, HoldsInEachThread)
{
    const ScopedCodePage page(932);
    EXPECT_EQ(platform::widen("\x93\xFA"), L"\u65E5");
    std::wstring text;
    std::thread([&text] { text = platform::widen("\x96\x7B"); }).join();
    EXPECT_EQ(text, L"\u672C");
    EXPECT_EQ(platform::widen("\x93\xFA"), L"\u65E5");
}

// The variable counts before the first conversion only, so each row looks at a process of its own.
struct VariableCase {
    const char* name;
    const char* value;
    int codePage;
};

const VariableCase kVariableCases[] = {
    {"western", "1252", 1252},
    {"japanese", "932", 932},
    {"utf_8", "65001", kUtf8},
    {"unknown_number", "4711", kUtf8},
    {"no_number", "latin1", kUtf8},
    {"number_with_a_tail", "1252x", kUtf8},
    {"too_large", "99999999999", kUtf8},
    {"negative", "-1252", kUtf8},
    {"empty", "", kUtf8},
};

class CodePageVariable : public testing::TestWithParam<VariableCase> {};

TEST_P(CodePageVariable, SetsTheFirstCodePage)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const ScopedVariable variable("RAYLUME_ANSI_CODEPAGE", GetParam().value);
    EXPECT_EXIT(std::_Exit(platform::ansiCodePage() == GetParam().codePage ? 0 : 1),
                testing::ExitedWithCode(0), "");
}

INSTANTIATE_TEST_SUITE_P(Rows, CodePageVariable, testing::ValuesIn(kVariableCases),
                         [](const auto& row) { return row.param.name; });

TEST(Utf8, StaysUtf8InAnyCodePage)
{
    const ScopedCodePage page(1252);
    EXPECT_EQ(platform::toUtf8(L"\u65E5"), "\xE6\x97\xA5");
    EXPECT_EQ(platform::fromUtf8("\xE6\x97\xA5"), L"\u65E5");
    EXPECT_EQ(platform::fromUtf8("\xE9"), L"\uFFFD");
}

TEST(Utf8, BringsEveryCharacterBack)
{
    std::wstring all;
    for (wchar_t c = 0; c <= 0x10FFFF; c = c == 0xD7FF ? 0xE000 : c + 1) {
        all.push_back(c);
    }
    EXPECT_TRUE(platform::fromUtf8(platform::toUtf8(all)) == all);
}

struct LowerCase {
    const char* name;
    wchar_t character;
    wchar_t lower;
};

const LowerCase kLowerCases[] = {
    {"latin", L'A', L'a'},
    {"last_latin", L'Z', L'z'},
    {"before_the_capitals", L'@', L'@'},
    {"behind_the_capitals", L'[', L'['},
    {"capital_i_has_its_dot", L'I', L'i'},
    {"dotted_capital_i_is_plain", L'\u0130', L'i'},
    {"dotless_i_stays", L'\u0131', L'\u0131'},
    {"accented", L'\u00C4', L'\u00E4'},
    {"greek_sigma_is_never_final", L'\u03A3', L'\u03C3'},
    {"cyrillic", L'\u0416', L'\u0436'},
    {"sharp_s", L'\u1E9E', L'\u00DF'},
    {"kelvin_sign", L'\u212A', L'k'},
    {"full_width", L'\uFF21', L'\uFF41'},
    {"beyond_the_first_plane", L'\U00010400', L'\U00010428'},
    {"digit", L'1', L'1'},
    {"kanji", L'\u65E5', L'\u65E5'},
    {"surrogate", static_cast<wchar_t>(0xD800), static_cast<wchar_t>(0xD800)},
    {"above_unicode", static_cast<wchar_t>(0x110000), static_cast<wchar_t>(0x110000)},
    {"negative", static_cast<wchar_t>(-5), static_cast<wchar_t>(-5)},
};

class Lower : public testing::TestWithParam<LowerCase> {};

TEST_P(Lower, MapsOneToOne)
{
    EXPECT_EQ(platform::toLower(GetParam().character), GetParam().lower);
    EXPECT_EQ(platform::toLower(std::wstring_view(&GetParam().character, 1)),
              std::wstring(1, GetParam().lower));
}

INSTANTIATE_TEST_SUITE_P(Rows, Lower, testing::ValuesIn(kLowerCases),
                         [](const auto& row) { return row.param.name; });

struct CompareCase {
    const char* name;
    const wchar_t* a;
    const wchar_t* b;
    int sign;
};

const CompareCase kCompareCases[] = {
    {"equal_without_case", L"Render", L"rEnDeR", 0},
    {"equal_beyond_ascii", L"\u00C4\u0416", L"\u00E4\u0436", 0},
    {"prefix_comes_first", L"abc", L"ABCD", -1},
    {"longer_comes_later", L"ABCD", L"abc", 1},
    {"nothing_comes_first", L"", L"a", -1},
    {"both_empty", L"", L"", 0},
    {"underscore_lies_before_small_letters", L"_", L"A", -1},
    {"by_code_point", L"\uFFFD", L"\U00010000", -1},
};

class Compare : public testing::TestWithParam<CompareCase> {};

TEST_P(Compare, OrdersByLowerCasedCodePoints)
{
    const int result = platform::compareIgnoringCase(GetParam().a, GetParam().b);
    EXPECT_EQ((result > 0) - (result < 0), GetParam().sign);
}

INSTANTIATE_TEST_SUITE_P(Rows, Compare, testing::ValuesIn(kCompareCases),
                         [](const auto& row) { return row.param.name; });

}  // namespace
