#include "raylume/scene/FieldOrder.h"

#include <gtest/gtest.h>

#include "tests/scene/AppearanceFields.h"

namespace {

struct ToleranceCase {
    const char* name;
    float a, b;
    bool same;
};

const ToleranceCase kTolerance[] = {
    {"equal_numbers", 0.5f, 0.5f, true},
    {"zeros_of_either_sign", 0.0f, -0.0f, true},
    {"the_float_of_the_tolerance_from_zero", 0.0f, 1e-5f, true},
    {"the_next_float_up_from_zero", 0.0f, std::nextafter(1e-5f, 1.0f), false},
    {"the_float_of_the_tolerance_below_zero", 0.0f, -1e-5f, true},
    {"the_next_float_down_below_zero", 0.0f, -std::nextafter(1e-5f, 1.0f), false},
    {"half_the_tolerance", 0.0f, 5e-6f, true},
    {"twice_the_tolerance", 0.0f, 2e-5f, false},
    {"neighbours_below_128", std::nextafter(128.0f, 0.0f),
     std::nextafter(std::nextafter(128.0f, 0.0f), 0.0f), true},
    {"neighbours_from_128_up", 128.0f, std::nextafter(128.0f, 200.0f), false},
    {"an_infinity_and_itself", kInfinity, kInfinity, false},
    {"two_infinities", kInfinity, -kInfinity, false},
    {"an_infinity_and_a_number", kInfinity, 1.0f, false},
    {"a_nan_and_a_number", kNaN, 1.0f, false},
    {"a_nan_and_itself", kNaN, kNaN, false},
};

class Tolerance : public testing::TestWithParam<ToleranceCase> {};

TEST_P(Tolerance, IsAbsoluteAndStrictAndInSinglePrecision)
{
    const auto& [name, a, b, same] = GetParam();
    EXPECT_EQ(scene::sameWithinTolerance(a, b), same);
    EXPECT_EQ(scene::sameWithinTolerance(b, a), same);
}

INSTANTIATE_TEST_SUITE_P(Rows, Tolerance, testing::ValuesIn(kTolerance),
                         [](const auto& row) { return row.param.name; });

TEST(FieldOrder, UndecidedIsNotBefore)
{
    EXPECT_FALSE(scene::FieldOrder().value(1, 1).real(0.0f, 0.0f).aBeforeB());
}

TEST(FieldOrder, FirstDifferenceDecidesAndTheRestIsNotAsked)
{
    bool asked = false;
    const auto differs = [&] { return asked = true; };
    EXPECT_TRUE(scene::FieldOrder().value(1, 2).step(differs, [] { return false; }).aBeforeB());
    EXPECT_FALSE(asked);
}

TEST(FieldOrder, NarrowTextsCompareAsUnsignedBytes)
{
    EXPECT_TRUE(scene::FieldOrder().value(std::string("z"), std::string("\xE9")).aBeforeB());
    EXPECT_TRUE(scene::FieldOrder().value(std::string("ab"), std::string("abc")).aBeforeB());
    EXPECT_FALSE(scene::FieldOrder().value(std::string("abc"), std::string("ab")).aBeforeB());
}

}  // namespace
