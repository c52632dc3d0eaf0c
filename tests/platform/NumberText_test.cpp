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

struct RealCase {
    const char* name;
    std::string text;
    double value;
};

const RealCase kRealCases[] = {
    {"whole", "42", 42.0},
    {"with_a_point", "0.1", 0.1},
    {"with_a_plus", "+1", 1.0},
    {"negative", "-2.5", -2.5},
    {"behind_a_blank", " 1", 1.0},
    {"in_front_of_a_blank", "1 ", 1.0},
    {"among_blanks", "\t\n\r\v\f 1.5 \t", 1.5},
    {"begins_with_the_point", ".5", 0.5},
    {"ends_with_the_point", "5.", 5.0},
    {"negative_point_first", "-.5", -0.5},
    {"exponent", "1.5e3", 1500.0},
    {"large_exponent_sign", "1.5E+3", 1500.0},
    {"negative_exponent", "+15e-1", 1.5},
    {"grouped", "1,234.5", 1234.5},
    {"grouped_in_any_way", "1,5", 15.0},
    {"grouped_twice", "-1,234,567", -1234567.0},
    {"many_digits", "3.14159265358979323846264338327950288", 3.14159265358979323846},
    {"halfway_to_even", "9007199254740993", 9007199254740992.0},
    {"just_above_halfway", "9007199254740993.0000000000000000000000000000000000001", 9007199254740994.0},
    {"slow_to_round", "2.2250738585072011e-308", 2.2250738585072011e-308},
    {"smallest", "4.9406564584124654e-324", 4.9406564584124654e-324},
    {"largest", "1.7976931348623157e308", 1.7976931348623157e308},
    {"largest_as_it_rounds", "1.7976931348623158e308", 1.7976931348623157e308},
    {"too_small", "1e-400", 0.0},
    {"too_small_by_half", "2e-324", 0.0},
    {"too_small_below_zero", "-1e-400", 0.0},
    {"far_too_small", "1e-99999999999999999999999", 0.0},
    {"zero_with_a_large_exponent", "0e99999999999999999999999", 0.0},
    {"leading_zeros", "0000000000000000000000000000000000000001", 1.0},
    {"zeros_and_a_large_exponent", "0." + std::string(400, '0') + "1e401", 1.0},
    {"many_zeros_and_a_small_exponent", "1" + std::string(400, '0') + "e-400", 1.0},
    {"very_long", std::string(100000, '0') + "7." + std::string(100000, '0'), 7.0},
};

class Real : public testing::TestWithParam<RealCase> {};

TEST_P(Real, IsConverted)
{
    double value = -1.0;
    EXPECT_EQ(platform::convertReal(GetParam().text, {}, value), 0u);
    EXPECT_EQ(value, GetParam().value);
}

INSTANTIATE_TEST_SUITE_P(Rows, Real, testing::ValuesIn(kRealCases),
                         [](const auto& row) { return row.param.name; });

// One list for the three kinds: what is no number is none for any of them.
const char* const kNoNumbers[] = {"",        " ",     "abc",    "1.5abc",   "INF",  "inf",    "-inf",
                                  "NaN",     "nan",   "nan(1)", "infinity", "0x10", "0x1p3",  "+",
                                  "-",       ".",     "-.",     "e5",       "1e",   "1e+",    "1.2.3",
                                  "1 2",     "- 1",   "--1",    "+-1",      ",5",   "5,",     "1,,2",
                                  "1.2,3",   "1,.5",  "1e5.5",  "1e1,0",    "1d3",  "\u0661", "1\u0661",
                                  "\u00A05", "1\xFF", "\xFF",   "true",     "1f",   "1L",     "1_000"};

TEST(NoNumber, IsRefused)
{
    for (const char* text : kNoNumbers) {
        double real = 17;
        float single = 17;
        std::int32_t integer = 17;
        EXPECT_EQ(platform::convertReal(text, {}, real), 0x80020005u) << text;
        EXPECT_EQ(platform::convertFloat(text, {}, single), 0x80020005u) << text;
        EXPECT_EQ(platform::convertInteger(text, {}, integer), 0x80020005u) << text;
        EXPECT_EQ(real, 17);
        EXPECT_EQ(single, 17);
        EXPECT_EQ(integer, 17);
    }
    double real = 17;
    EXPECT_EQ(platform::convertReal(std::string_view("1\0", 2), {}, real), 0x80020005u);
}

TEST(OutOfRange, IsRefused)
{
    for (const char* text : {"1e400", "-1e400", "1.7976931348623159e308", "1e99999999999999999999999"}) {
        double real = 17;
        EXPECT_EQ(platform::convertReal(text, {}, real), 0x8002000Au) << text;
        EXPECT_EQ(real, 17);
    }
    for (const char* text : {"1e39", "-1e39", "3.4028236e38", "1e400"}) {
        float single = 17;
        EXPECT_EQ(platform::convertFloat(text, {}, single), 0x8002000Au) << text;
        EXPECT_EQ(single, 17);
    }
    for (const char* text : {"2147483648", "-2147483649", "2147483647.5", "-2147483648.51", "99999999999",
                             "1e10", "1e400", "4294967296", "18446744073709551617"}) {
        std::int32_t integer = 17;
        EXPECT_EQ(platform::convertInteger(text, {}, integer), 0x8002000Au) << text;
        EXPECT_EQ(integer, 17);
    }
}

TEST(Float, IsTheNearestToTheText)
{
    const struct {
        const char* text;
        float value;
    } rows[] = {{"0.1", 0.1f},
                {" +1.5 ", 1.5f},
                {"1,000.5", 1000.5f},
                {"3.4028235e38", std::numeric_limits<float>::max()},
                {"1e-50", 0.0f},
                {"-1e-400", 0.0f},
                {"1.401298464324817e-45", std::numeric_limits<float>::denorm_min()},
                // By way of a double this would round twice, to 1.
                {"1.000000059604644775390625000000000000001", 1.00000011920928955078125f}};
    for (const auto& row : rows) {
        float value = -1;
        EXPECT_EQ(platform::convertFloat(row.text, {}, value), 0u) << row.text;
        EXPECT_EQ(value, row.value) << row.text;
    }
}

struct IntegerCase {
    const char* name;
    std::string text;
    std::int32_t value;
};

const IntegerCase kIntegerCases[] = {
    {"whole", "42", 42},
    {"negative", "-7", -7},
    {"with_a_plus", "+7", 7},
    {"among_blanks", " 7\t", 7},
    {"leading_zeros", "0000000000007", 7},
    {"largest", "2147483647", 2147483647},
    {"smallest", "-2147483648", -2147483647 - 1},
    {"half_to_even_below", "2.5", 2},
    {"half_to_even_above", "3.5", 4},
    {"half_to_even_negative", "-2.5", -2},
    {"half_to_even_negative_odd", "-3.5", -4},
    {"half_to_zero", "0.5", 0},
    {"negative_half_to_zero", "-0.5", 0},
    {"one_and_a_half", "1.5", 2},
    {"half_with_zeros", "2.5000", 2},
    {"half_and_a_little", "2.5000000000000000000000000000000000001", 3},
    {"half_less_a_little", "3.4999999999999999999999999999999999999", 3},
    {"tenth_below_half", "0.05", 0},
    {"almost_one", "0.99", 1},
    {"ends_with_the_point", "5.", 5},
    {"begins_with_the_point", ".7", 1},
    {"exponent", "1e3", 1000},
    {"exponent_makes_it_whole", "1.25e2", 125},
    {"exponent_makes_a_half", "25e-1", 2},
    {"exponent_makes_it_small", "5e-2", 0},
    {"far_too_small", "1e-400", 0},
    {"zero_with_a_large_exponent", "0e999", 0},
    {"grouped", "1,234", 1234},
    {"rounds_to_the_largest", "2147483647.49", 2147483647},
    {"rounds_to_the_smallest", "-2147483648.5", -2147483647 - 1},
};

class Integer : public testing::TestWithParam<IntegerCase> {};

TEST_P(Integer, IsConverted)
{
    std::int32_t value = 99;
    EXPECT_EQ(platform::convertInteger(GetParam().text, {}, value), 0u);
    EXPECT_EQ(value, GetParam().value);
}

INSTANTIATE_TEST_SUITE_P(Rows, Integer, testing::ValuesIn(kIntegerCases),
                         [](const auto& row) { return row.param.name; });

TEST(IntegerOfAReal, IsRoundedToEven)
{
    const struct {
        double real;
        std::int32_t value;
    } rows[] = {{2.5, 2},
                {3.5, 4},
                {-2.5, -2},
                {-3.5, -4},
                {0.49999999999999994, 0},
                {-0.5, 0},
                {2147483647.4, 2147483647}};
    for (const auto& row : rows) {
        std::int32_t value = 99;
        EXPECT_EQ(platform::convertInteger(row.real, value), 0u);
        EXPECT_EQ(value, row.value) << row.real;
    }
    std::int32_t value = 17;
    EXPECT_EQ(platform::convertInteger(2147483647.5, value), 0x8002000Au);
    EXPECT_EQ(platform::convertInteger(-1e300, value), 0x8002000Au);
    EXPECT_EQ(platform::convertInteger(std::numeric_limits<double>::infinity(), value), 0x8002000Au);
    EXPECT_EQ(platform::convertInteger(std::numeric_limits<double>::quiet_NaN(), value), 0x80020005u);
    EXPECT_EQ(value, 17);
}

TEST(Separators, AreThoseThatAreGiven)
{
    const platform::NumberSeparators german{L',', L'.'};
    double real = 0;
    EXPECT_EQ(platform::convertReal("1.234,5", german, real), 0u);
    EXPECT_EQ(real, 1234.5);
    std::int32_t integer = 0;
    EXPECT_EQ(platform::convertInteger("2,5", german, integer), 0u);
    EXPECT_EQ(integer, 2);
    EXPECT_EQ(platform::convertInteger("2.5", german, integer), 0u);
    EXPECT_EQ(integer, 25);
    EXPECT_EQ(platform::convertReal("1,2.5", german, real), 0x80020005u);
    EXPECT_EQ(platform::convertReal("1,5", platform::NumberSeparators{L'.', 0}, real), 0x80020005u);
    // A decimal separator that is the grouping one, too, is the decimal one.
    EXPECT_EQ(platform::convertReal("1.5", platform::NumberSeparators{L'.', L'.'}, real), 0u);
    EXPECT_EQ(real, 1.5);
}

TEST(Separators, MayLieOutsideAscii)
{
    const platform::NumberSeparators persian{L'\u066B', L'\u066C'};
    double real = 0;
    EXPECT_EQ(platform::convertReal("1\u066C234\u066B5", persian, real), 0u);
    EXPECT_EQ(real, 1234.5);
    const platform::NumberSeparators french{L',', L'\u202F'};
    for (const char* text : {"1\u202F234,5", "1\u00A0234,5", "1 234,5"}) {
        EXPECT_EQ(platform::convertReal(text, french, real), 0u) << text;
        EXPECT_EQ(real, 1234.5);
    }
    EXPECT_EQ(platform::convertReal("1  234", french, real), 0x80020005u);
}

class NoLocale {
public:
    NoLocale()
        : all_("LC_ALL", std::nullopt), numeric_("LC_NUMERIC", std::nullopt), lang_("LANG", std::nullopt)
    {
    }

private:
    ScopedVariable all_;
    ScopedVariable numeric_;
    ScopedVariable lang_;
};

using Separated = platform::NumberSeparators;

TEST(UserSeparators, ComeFromTheFirstVariableThatIsSet)
{
    const NoLocale none;
    EXPECT_EQ(platform::numberSeparators(), (Separated{L'.', L','}));
    const ScopedVariable lang("LANG", "de_DE.UTF-8");
    EXPECT_EQ(platform::numberSeparators(), (Separated{L',', L'.'}));
    const ScopedVariable numeric("LC_NUMERIC", "en_US.UTF-8");
    EXPECT_EQ(platform::numberSeparators(), (Separated{L'.', L','}));
    const ScopedVariable all("LC_ALL", "fr_FR");
    EXPECT_EQ(platform::numberSeparators(), (Separated{L',', L'\u202F'}));
    const ScopedVariable empty("LC_ALL", "");
    EXPECT_EQ(platform::numberSeparators(), (Separated{L'.', L','}));
}

TEST(UserSeparators, OfNoCountryAreThePointAndTheComma)
{
    const NoLocale none;
    for (const char* name : {"C", "POSIX", "C.UTF-8", "xx_YY", "not a locale at all", "."}) {
        const ScopedVariable all("LC_ALL", name);
        EXPECT_EQ(platform::numberSeparators(), (Separated{L'.', L','})) << name;
    }
}

TEST(UserSeparators, GoWithPlainDigits)
{
    const NoLocale none;
    const ScopedVariable all("LC_ALL", "fa_IR.UTF-8");
    EXPECT_EQ(platform::numberSeparators(), (Separated{L'.', L','}));
}

TEST(UserSeparators, GiveWayToTheHosts)
{
    const NoLocale none;
    platform::setNumberSeparators(L'*', L'_');
    EXPECT_EQ(platform::numberSeparators(), (Separated{L'*', L'_'}));
    platform::resetNumberSeparators();
    EXPECT_EQ(platform::numberSeparators(), (Separated{L'.', L','}));
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
    EXPECT_EQ(platform::convertReal("0.5", {}, value), 0u);
    EXPECT_EQ(value, 0.5);
    float single = 0.0f;
    EXPECT_EQ(platform::convertFloat("0.25", {}, single), 0u);
    EXPECT_EQ(single, 0.25f);
    std::int32_t integer = 0;
    EXPECT_EQ(platform::convertInteger("2.5", {}, integer), 0u);
    EXPECT_EQ(integer, 2);
    EXPECT_STREQ(std::setlocale(LC_NUMERIC, nullptr), "de_DE.UTF-8");
    std::setlocale(LC_ALL, before.c_str());
}

}  // namespace
