#include "raylume/platform/NumberText.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <string>

#include "tests/platform/ScopedEnvironment.h"
#include "tests/platform/TemporaryFolder.h"

using namespace std::string_literals;

namespace {

struct NumberCase {
    const char* name;
    std::wstring text;
    double value;
};

const NumberCase kNumberCases[] = {
    {"whole", L"42", 42.0},
    {"with_a_point", L"0.1", 0.1},
    {"negative", L"-2.5", -2.5},
    {"with_a_plus", L"+7", 7.0},
    {"with_an_exponent", L"1.5e3", 1500.0},
    {"behind_white_space", L" \t\n\v\f\r3", 3.0},
    {"a_comma_ends_it", L"1,5", 1.0},
    {"the_longest_counts", L"12abc", 12.0},
    {"an_exponent_without_digits_does_not_count", L"5ex", 5.0},
    {"begins_with_the_point", L".5", 0.5},
    {"ends_with_the_point", L"5.", 5.0},
    {"a_zero_ends_it", L"1\0002"s, 1.0},
    {"another_alphabet_ends_it", L"1\u0661", 1.0},
    {"too_large_is_infinite", L"1e999", std::numeric_limits<double>::infinity()},
    {"too_small_is_zero", L"1e-999", 0.0},
    {"all_digits_count", L"3.14159265358979323846264338327950288", 3.14159265358979323846},
};

class Number : public testing::TestWithParam<NumberCase> {};

TEST_P(Number, IsScanned)
{
    double value = -1.0;
    EXPECT_TRUE(platform::scanReal(GetParam().text, value));
    EXPECT_EQ(value, GetParam().value);
}

INSTANTIATE_TEST_SUITE_P(Rows, Number, testing::ValuesIn(kNumberCases),
                         [](const auto& row) { return row.param.name; });

TEST(NoNumber, LeavesTheValueAlone)
{
    for (const wchar_t* text : {L"", L" ", L"abc", L"-", L".", L"e5", L"\u0661", L",5", L"\u00A05"}) {
        double value = 17.0;
        EXPECT_FALSE(platform::scanReal(text, value));
        EXPECT_EQ(value, 17.0);
    }
}

TEST(NumberLocale, IsNeitherUsedNorChanged)
{
    const TemporaryFolder folder;
    const std::string build = "localedef -i de_DE -f UTF-8 '" + (folder / "de_DE.UTF-8") + "'";
    ASSERT_EQ(std::system(build.c_str()), 0) << "the sources of locales are missing";
    const ScopedVariable locales("LOCPATH", folder.path());
    const std::string before = std::setlocale(LC_ALL, nullptr);
    ASSERT_STREQ(std::setlocale(LC_NUMERIC, "de_DE.UTF-8"), "de_DE.UTF-8");
    ASSERT_STREQ(std::localeconv()->decimal_point, ",");
    double value = 0.0;
    EXPECT_TRUE(platform::scanReal(L"1.5", value));
    EXPECT_EQ(value, 1.5);
    EXPECT_TRUE(platform::scanReal(L"2,5", value));
    EXPECT_EQ(value, 2.0);
    EXPECT_STREQ(std::setlocale(LC_NUMERIC, nullptr), "de_DE.UTF-8");
    std::setlocale(LC_ALL, before.c_str());
}

}  // namespace
