#include "reader/formats/gltf/NumberText.h"

#include <gmock/gmock.h>
#include <rapidcheck/gtest.h>

#include <bit>
#include <charconv>
#include <cmath>
#include <string>
#include <vector>

namespace gltf_tests {
namespace {

using ovdl::gltf::NumberList;

struct Outcome {
    std::vector<double> numbers;
    bool isBroken = false;
};

Outcome readList(const std::string& text)
{
    NumberList list(text);
    Outcome outcome;
    for (double number = 0; list.next(number);)
        outcome.numbers.push_back(number);
    outcome.isBroken = list.isBroken();
    return outcome;
}

struct ListCase {
    const char* name;
    const char* text;
    std::vector<double> numbers;
    bool isBroken;
};
const ListCase kLists[] = {
    {"nothing", "[]", {}, false},
    {"nothing_between_blanks", "[ \t\r\n]", {}, false},
    {"whole_numbers", "[1,-2,0]", {1, -2, 0}, false},
    {"blanks_everywhere", "[ 1 ,\n2\t, 3 ]", {1, 2, 3}, false},
    {"fractions", "[0.5,-0.25,12.125]", {0.5, -0.25, 12.125}, false},
    {"exponents", "[1e3,-2.5E-2,1e+2,0e0]", {1000, -0.025, 100, 0}, false},
    {"a_tenth_to_the_last_digit", "[0.1000000000000000055511151231257827]", {0.1}, false},
    {"more_digits_than_fit_a_word",
     "[123456789012345678901234567890]",
     {123456789012345678901234567890.0},
     false},
    {"sixteen_digits", "[0.1234567890123456]", {0.1234567890123456}, false},
    {"halfway_cases",
     "[9007199254740993,9007199254740995]",
     {9007199254740992.0, 9007199254740996.0},
     false},
    {"the_smallest_double", "[4.9406564584124654e-324]", {4.9406564584124654e-324}, false},
    {"a_number_too_large", "[1e309]", {}, true},
    {"a_number_too_small_to_hold", "[1e-400,0.5]", {0, 0.5}, false},
    {"a_missing_comma", "[1 2]", {1}, true},
    {"a_comma_too_many", "[1,,2]", {1}, true},
    {"a_comma_at_the_end", "[1,]", {1}, true},
    {"a_comma_at_the_beginning", "[,1]", {}, true},
    {"a_leading_zero", "[01]", {}, true},
    {"a_leading_zero_behind_a_sign", "[-012]", {}, true},
    {"a_plus", "[+1]", {}, true},
    {"a_sign_alone", "[-]", {}, true},
    {"a_point_without_digits_before", "[.5]", {}, true},
    {"a_point_without_digits_behind", "[5.]", {}, true},
    {"an_exponent_without_digits", "[1e]", {}, true},
    {"an_exponent_with_a_sign_alone", "[1e+]", {}, true},
    {"words", "[NaN]", {}, true},
    {"infinity", "[-Infinity]", {}, true},
    {"a_text", "[\"1\"]", {}, true},
    {"a_list_in_a_list", "[[1]]", {}, true},
    {"no_end", "[1", {1}, true},
    {"an_end_behind_a_comma", "[1,", {1}, true},
    {"no_list", "1", {}, true},
    {"no_text", "", {}, true},
};

class NumberLists : public testing::TestWithParam<ListCase> {};

TEST_P(NumberLists, AreReadAsJsonHasThem)
{
    const Outcome outcome = readList(GetParam().text);
    EXPECT_EQ(outcome.isBroken, GetParam().isBroken);
    EXPECT_EQ(outcome.numbers, GetParam().numbers);
}
INSTANTIATE_TEST_SUITE_P(Rows, NumberLists, testing::ValuesIn(kLists),
                         [](const auto& row) { return row.param.name; });

TEST(NumberList, KeepsTheSignOfZero)
{
    const Outcome outcome = readList("[-0,-0.0,0]");
    ASSERT_EQ(outcome.numbers.size(), 3u);
    EXPECT_TRUE(std::signbit(outcome.numbers[0]));
    EXPECT_TRUE(std::signbit(outcome.numbers[1]));
    EXPECT_FALSE(std::signbit(outcome.numbers[2]));
}

// Every double that is written in its shortest form, or in a longer one, comes back bit for bit.
RC_GTEST_PROP(NumberProperties, DoublesComeBackBitForBit, ())
{
    const double number = std::bit_cast<double>(*rc::gen::arbitrary<std::uint64_t>());
    RC_PRE(std::isfinite(number));
    for (const int digits : {0, 17, 25}) {
        char text[512];
        const auto written = digits == 0 ? std::to_chars(text, text + sizeof(text), number)
                                         : std::to_chars(text, text + sizeof(text), number,
                                                         std::chars_format::scientific, digits);
        const Outcome outcome = readList("[" + std::string(text, written.ptr) + "]");
        RC_ASSERT(outcome.numbers.size() == 1u);
        RC_ASSERT(std::bit_cast<std::uint64_t>(outcome.numbers[0]) == std::bit_cast<std::uint64_t>(number));
    }
}

// The short way of reading against the library's.
RC_GTEST_PROP(NumberProperties, ShortDecimalsAreRoundedRight, ())
{
    const auto digits = *rc::gen::inRange<std::int64_t>(0, 1000000000000000);
    const int fraction = *rc::gen::inRange(0, 15);
    std::string text = std::to_string(digits);
    if (fraction > 0) {
        text.insert(0, static_cast<std::size_t>(std::max(0, fraction + 1 - static_cast<int>(text.size()))),
                    '0');
        text.insert(text.size() - static_cast<std::size_t>(fraction), ".");
    }
    double expected = 0;
    std::from_chars(text.data(), text.data() + text.size(), expected);
    const Outcome outcome = readList("[" + text + "]");
    RC_ASSERT(outcome.numbers == std::vector<double>{expected});
}

}  // namespace
}  // namespace gltf_tests
