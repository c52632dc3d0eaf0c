#include "raylume/scene/RotationAngles.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string>

namespace {

constexpr double kTiny = 1e-300;
constexpr double kJustAboveOne = 1.0000000000000002;
const double kNan = std::numeric_limits<double>::quiet_NaN();

std::uint64_t bitsOf(double value)
{
    std::uint64_t bits;
    std::memcpy(&bits, &value, sizeof bits);
    return bits;
}

// Every NaN is the same here; all else by its bits, so that the sign of a zero counts.
bool same(double a, double b)
{
    return std::isnan(a) ? std::isnan(b) : bitsOf(a) == bitsOf(b);
}

struct AngleCase {
    const char* name;
    double matrix[9];
    double angles[3];
};

const AngleCase kAngles[] = {
    {"identity_has_no_angles", {1, 0, 0, 0, 1, 0, 0, 0, 1}, {0.0, -0.0, 0.0}},
    {"general_case_takes_elements_6_7_8_3_and_0",
     {0.25, 9, 9, 0.5, 9, 9, 0.125, -0.75, 0.375},
     {std::atan2(-0.75, 0.375), -std::asin(0.125), std::atan2(0.5, 0.25)}},
    {"second_pair_is_enough_to_leave_the_general_case",
     {0.25, 0.5, -0.5, 0.125, 9, 0.75, 0.3, 0, 0},
     {-std::atan2(0.75, 0.0), std::asin(-0.5), -std::atan2(0.5, 0.25)}},
    {"first_pair_is_enough_to_leave_the_general_case",
     {0, 0.5, 0.5, 0, 9, 0.75, 0.3, 0.125, 0.25},
     {-std::atan2(0.75, 0.25), std::asin(0.5), -std::atan2(0.5, 0.0)}},
    {"both_of_a_pair_must_be_zero",
     {0, 9, 9, 1, 9, 9, 0.5, 0, 1},
     {std::atan2(0.0, 1.0), -std::asin(0.5), std::atan2(1.0, 0.0)}},
    {"negative_zero_is_zero",
     {-0.0, 0.5, 0.5, -0.0, 9, 0.75, 0.3, 0.125, 0.25},
     {-std::atan2(0.75, 0.25), std::asin(0.5), -std::atan2(0.5, -0.0)}},
    {"smallest_numbers_are_not_zero",
     {0, 9, 0.5, kTiny, 9, 9, 0.25, kTiny, 0},
     {std::atan2(kTiny, 0.0), -std::asin(0.25), std::atan2(kTiny, 0.0)}},
    {"third_case_by_the_first_pair", {0, 0, 0.25, 0, 9, 0.75, 0.5, 1, 1}, {0.0, std::asin(0.25), 0.0}},
    {"third_case_by_the_second_pair", {1, 1, -0.25, 1, 9, 0, 0.5, 0, 0}, {0.0, std::asin(-0.25), 0.0}},
    {"third_case_of_a_quarter_turn", {0, 0, 1, 0, 1, 0, -1, 0, 0}, {0.0, std::asin(1.0), 0.0}},
    {"third_case_just_above_one_stays_not_a_number",
     {0, 0, kJustAboveOne, 0, 1, 0, -1, 0, 0},
     {0.0, kNan, 0.0}},
    {"general_case_just_above_one_stays_not_a_number",
     {1, 0, 0, 0, 1, 0, kJustAboveOne, 0, 1},
     {0.0, kNan, 0.0}},
};

class RotationAngles : public testing::TestWithParam<AngleCase> {};

TEST_P(RotationAngles, ComeFromTheElements)
{
    double angles[3] = {7, 7, 7};
    scene::decomposeRotation(GetParam().matrix, angles[0], angles[1], angles[2]);
    for (int i = 0; i < 3; ++i)
        EXPECT_TRUE(same(angles[i], GetParam().angles[i]))
            << i << ": " << angles[i] << " is not " << GetParam().angles[i];
}

INSTANTIATE_TEST_SUITE_P(Rows, RotationAngles, testing::ValuesIn(kAngles),
                         [](const auto& row) { return std::string(row.param.name); });

}  // namespace
