#include "reader/formats/gltf/NumberText.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <random>
#include <string>
#include <vector>

namespace {

using ovdl::gltf::NumberList;

struct Read {
    std::vector<double> numbers;
    bool isBroken = false;
};

Read read(const std::string& text)
{
    NumberList list(text);
    Read result;
    for (double number = 0; list.next(number);)
        result.numbers.push_back(number);
    result.isBroken = list.isBroken();
    return result;
}

std::uint64_t bitsOf(double number)
{
    std::uint64_t bits;
    std::memcpy(&bits, &number, sizeof bits);
    return bits;
}

struct NumberCase {
    const char* name;
    const char* text;
};

class JsonNumber : public testing::TestWithParam<NumberCase> {};

TEST_P(JsonNumber, IsRoundedLikeTheStandardLibrary)
{
    const Read result = read("[" + std::string(GetParam().text) + "]");
    ASSERT_FALSE(result.isBroken);
    ASSERT_EQ(result.numbers.size(), 1u);
    EXPECT_EQ(bitsOf(result.numbers[0]), bitsOf(std::strtod(GetParam().text, nullptr)));
}

const NumberCase kNumbers[] = {
    {"zero", "0"},
    {"minus_zero", "-0"},
    {"a_whole_number", "-17"},
    {"a_fraction", "0.1"},
    {"fifteen_digits", "0.123456789012345"},
    {"sixteen_digits", "0.1234567890123456"},
    {"seventeen_digits", "9007199254740993"},
    {"an_exponent", "1.5e-3"},
    {"a_capital_exponent_with_a_sign", "2E+10"},
    {"the_largest", "1.7976931348623157e308"},
    {"the_smallest", "5e-324"},
    {"too_small_to_hold", "1e-400"},
    {"too_small_and_negative", "-1e-400"},
    {"many_zeros", "0.00000000000000000000000000000000000000001"},
};
INSTANTIATE_TEST_SUITE_P(Rows, JsonNumber, testing::ValuesIn(kNumbers),
                         [](const auto& row) { return row.param.name; });

class NoJsonNumbers : public testing::TestWithParam<NumberCase> {};

TEST_P(NoJsonNumbers, BreakTheList)
{
    EXPECT_TRUE(read(GetParam().text).isBroken);
}

const NumberCase kBroken[] = {
    {"no_list", "1"},        {"an_open_list", "[1"},   {"a_leading_zero", "[01]"},
    {"a_plus", "[+1]"},      {"a_bare_point", "[.5]"}, {"a_trailing_point", "[5.]"},
    {"no_exponent", "[1e]"}, {"a_text", "[\"1\"]"},    {"a_trailing_comma", "[1,]"},
    {"no_comma", "[1 2]"},   {"a_name", "[NaN]"},      {"too_large", "[1e400]"},
    {"nothing", ""},
};
INSTANTIATE_TEST_SUITE_P(Rows, NoJsonNumbers, testing::ValuesIn(kBroken),
                         [](const auto& row) { return row.param.name; });

TEST(JsonNumbers, ComeInTheirOrderWithBlanksBetween)
{
    const Read result = read(" [ 1 ,\n2.5,\t-3e1 ]");
    EXPECT_FALSE(result.isBroken);
    EXPECT_EQ(result.numbers, (std::vector<double>{1, 2.5, -30}));
    EXPECT_TRUE(read("[]").numbers.empty());
    EXPECT_FALSE(read("[ ]").isBroken);
}

TEST(JsonNumbers, OfAnyLengthAreRoundedLikeTheStandardLibrary)
{
    std::mt19937 random(1);
    for (int round = 0; round < 20000; ++round) {
        std::string text = random() % 2 ? "-" : "";
        text += std::to_string(random() % 1000);
        if (random() % 4 != 0) {
            text += '.';
            for (unsigned digits = 1 + random() % 18; digits != 0; --digits)
                text += static_cast<char>('0' + random() % 10);
        }
        if (random() % 5 == 0)
            text += "e" + std::to_string(static_cast<int>(random() % 40) - 20);
        const Read result = read("[" + text + "]");
        ASSERT_EQ(result.numbers.size(), 1u) << text;
        ASSERT_EQ(bitsOf(result.numbers[0]), bitsOf(std::strtod(text.c_str(), nullptr))) << text;
    }
}

}  // namespace
