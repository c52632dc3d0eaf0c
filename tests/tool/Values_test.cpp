#include "tools/Values.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

#include "raylume/platform/Text.h"

namespace {

struct FloatCase {
    const char* name;
    float value;
    const char* json;
    const char* text;
};
void PrintTo(const FloatCase& row, std::ostream* out)
{
    *out << row.name;
}
const FloatCase kFloats[] = {
    {"a_float_has_the_digits_that_tell_it_from_its_neighbours", 0.1f, "0.1", "0.1"},
    {"a_whole_number_is_a_real_number_in_json", 2.0f, "2.0", "2"},
    {"the_largest_float_is_written_out", std::numeric_limits<float>::max(), "3.4028235e+38",
     "3.4028235e+38"},
    {"the_smallest_float_is_written_out", std::numeric_limits<float>::denorm_min(), "1e-45", "1e-45"},
    {"minus_zero_keeps_its_sign", -0.0f, "-0.0", "-0"},
    {"infinity_is_a_text", std::numeric_limits<float>::infinity(), "\"Infinity\"", "Infinity"},
    {"minus_infinity_is_a_text", -std::numeric_limits<float>::infinity(), "\"-Infinity\"", "-Infinity"},
    {"no_number_is_a_text", std::numeric_limits<float>::quiet_NaN(), "\"NaN\"", "NaN"},
};
class Floats : public testing::TestWithParam<FloatCase> {};
TEST_P(Floats, AreShortAndExact)
{
    EXPECT_EQ(tool::floatValue(GetParam().value).dump(), GetParam().json);
    EXPECT_EQ(tool::floatText(GetParam().value), GetParam().text);
}
INSTANTIATE_TEST_SUITE_P(Rows, Floats, testing::ValuesIn(kFloats),
                         [](const auto& row) { return row.param.name; });

TEST(FloatValues, ReadBackAsTheSameBits)
{
    std::mt19937 random(7);
    for (int i = 0; i < 20000; ++i) {
        const auto value = std::bit_cast<float>(static_cast<std::uint32_t>(random()));
        if (!std::isfinite(value))
            continue;
        const auto back = nlohmann::json::parse(tool::floatValue(value).dump()).get<float>();
        ASSERT_EQ(std::bit_cast<std::uint32_t>(back), std::bit_cast<std::uint32_t>(value));
    }
}

TEST(BoxValue, IsNullWhileNoPointWasSeen)
{
    EXPECT_EQ(tool::boxValue(dlBBox()), tool::Json(nullptr));
}

TEST(BoxValue, HasBothCorners)
{
    dlBBox box;
    const float a[] = {1, -2, 0.1f};
    const float b[] = {-1, 4, 0.1f};
    box.addPoint(a);
    box.addPoint(b);
    EXPECT_EQ(tool::boxValue(box).dump(), R"({"min":[-1.0,-2.0,0.1],"max":[1.0,4.0,0.1]})");
}

TEST(Utf8, ReplacesBytesThatAreNoText)
{
    EXPECT_EQ(tool::utf8("a\xFFz"), "a\xEF\xBF\xBDz");
    EXPECT_EQ(tool::utf8("gr\xC3\xBC\xC3\x9F"), "gr\xC3\xBC\xC3\x9F");
}

TEST(Utf8, ReadsTheModelsTextInTheAnsiCodePage)
{
    const int before = platform::ansiCodePage();
    ASSERT_TRUE(platform::setAnsiCodePage(1252));
    EXPECT_EQ(tool::utf8("gr\xFC\xDF"), "gr\xC3\xBC\xC3\x9F");
    platform::setAnsiCodePage(before);
}

TEST(OneLine, HasNoLineEnds)
{
    EXPECT_EQ(tool::oneLine("a\r\nb\tc\x1B[1m"), "a  b c [1m");
}

TEST(Counted, UsesThePlural)
{
    EXPECT_EQ(tool::counted(1, "instance"), "1 instance");
    EXPECT_EQ(tool::counted(0, "instance"), "0 instances");
}

}  // namespace
