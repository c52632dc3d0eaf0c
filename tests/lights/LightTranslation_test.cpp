#include "raylume/lights/LightTranslation.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <iterator>
#include <limits>
#include <ostream>
#include <random>
#include <vector>

#include "raylume/load/ReaderMaths.h"
#include "raylume/platform/Errors.h"
#include "raylume/scene/dlModel.h"
#include "tests/platform/ScopedEnvironment.h"

namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr LIGHT_TYPE kOtherType = static_cast<LIGHT_TYPE>(5);
const LIGHT_TYPE kAllTypes[] = {LIGHT_AIMED, LIGHT_POSITIONED, LIGHT_DIRECTIONAL, LIGHT_SUN, kOtherType};

void set(double (&vector)[3], double x, double y, double z)
{
    vector[0] = x;
    vector[1] = y;
    vector[2] = z;
}

template <class T>
std::vector<T> list(const T (&vector)[3])
{
    return {vector[0], vector[1], vector[2]};
}

std::vector<float> floats(std::initializer_list<double> values)
{
    std::vector<float> narrowed;
    for (const double value : values) {
        narrowed.push_back(static_cast<float>(value));
    }
    return narrowed;
}

// A light in which no two fields hold the same, and no field its default.
moLight_c fullLight(LIGHT_TYPE type)
{
    moLight_c light;
    light.lightType = type;
    light.sourceEnabled = 0;
    light.sourceOptionA = 1;
    light.sourceOptionB = 1;
    light.sourceOptionC = 1;
    light.sourceFactorA = 0.1;
    light.sourceFactorB = 0.2;
    light.sourceFactorC = 0.3;
    light.sourceValueD = 0.4;
    light.sourceValueE = 0.5;
    light.sourceValueF = 0.6;
    light.sourceValueG = 0.7;
    light.sourceValueH = 0.8;
    light.sourceValueI = 0.9;
    light.sourceValueJ = 1.1;
    light.sourceHaze = 1.2;
    light.sourceStamp = std::bit_cast<std::uint64_t>(1.3);
    light.lightIndex = 14;
    light.packedColour = 0x00030201u;
    light.sourceShapeA = 1.5;
    light.sourceShapeB = 1.6;
    light.sourceLevelB = 17.9;
    light.sourceLevelC = 18.9;
    set(light.sourceVectorA, 0.1, 2.2, 3.3);
    set(light.sourceVectorB, 4.1, 5.2, 6.3);
    set(light.sourceVectorC, 7.1, 8.2, 9.3);
    return light;
}

struct Lights {
    explicit Lights(std::vector<moLight_c*> list) : pointers(std::move(list))
    {
        array.data = pointers.data();
        array.count = static_cast<long long>(pointers.size());
    }

    std::vector<moLight_c*> pointers;
    ovPointerArray<moLight_c> array;
};

dlLight translated(moLight_c source, ovScene_c* scene = nullptr)
{
    Lights lights({&source});
    const auto model = std::make_unique<dlModel>();
    translateLights(*model, &lights.array, scene);
    return model->lights[0];
}

// Rz . Ry . Rx applied to a vector.
std::vector<double> turned(const float (&angles)[3], std::vector<double> v)
{
    const auto turn = [&v](int a, int b, double angle) {
        const double c = std::cos(angle), s = std::sin(angle);
        const double va = v[a], vb = v[b];
        v[a] = c * va - s * vb;
        v[b] = s * va + c * vb;
    };
    turn(1, 2, angles[0]);
    turn(2, 0, angles[1]);
    turn(0, 1, angles[2]);
    return v;
}

TEST(LightTable, is_empty_without_a_list)
{
    dlModel model;
    model.lightCount = 7;
    translateLights(model, nullptr, nullptr);
    EXPECT_EQ(model.lightCount, 0);
}

TEST(LightTable, counts_a_null_entry_and_keeps_its_defaults)
{
    moLight_c first = fullLight(LIGHT_AIMED), last = fullLight(LIGHT_SUN);
    Lights lights({&first, nullptr, &last});
    dlModel model;
    translateLights(model, &lights.array, nullptr);
    EXPECT_EQ(model.lightCount, 3);
    EXPECT_EQ(model.lights[0].lightType, 2);
    EXPECT_EQ(model.lights[1].lightType, 4);
    EXPECT_TRUE(model.lights[1].enabled);
    EXPECT_EQ(model.lights[1].name, L"");
    EXPECT_EQ(model.lights[1].factorA, 1.0f);
    EXPECT_EQ(model.lights[2].lightType, 6);
}

TEST(LightTable, keeps_the_first_ninety_nine)
{
    std::vector<moLight_c> sources(120, fullLight(LIGHT_POSITIONED));
    std::vector<moLight_c*> pointers;
    for (moLight_c& source : sources) {
        source.lightIndex = static_cast<int>(pointers.size());
        pointers.push_back(&source);
    }
    Lights lights(pointers);
    dlModel model;
    translateLights(model, &lights.array, nullptr);
    EXPECT_EQ(model.lightCount, 99);
    EXPECT_EQ(model.lights[98].name, L"Light_98");
}

TEST(LightTable, passes_on_what_the_list_itself_refuses)
{
    ovPointerArray<moLight_c> lights;
    lights.count = 2;
    dlModel model;
    try {
        translateLights(model, &lights, nullptr);
        FAIL() << "nothing was raised";
    } catch (const platform::ComError& error) {
        EXPECT_EQ(static_cast<std::uint32_t>(error.code()), 0x80070057u);
    }
}

TEST(LightTable, of_a_negative_count_is_empty)
{
    ovPointerArray<moLight_c> lights;
    lights.count = -5;
    dlModel model;
    translateLights(model, &lights, nullptr);
    EXPECT_EQ(model.lightCount, 0);
}

class CommonFields : public testing::TestWithParam<LIGHT_TYPE> {};

TEST_P(CommonFields, are_taken_for_every_type)
{
    const dlLight light = translated(fullLight(GetParam()));
    EXPECT_EQ(light.lightType, GetParam());
    EXPECT_EQ(light.factorA, 0.1f);
    EXPECT_EQ(light.factorB, 0.2f);
    EXPECT_EQ(light.factorC, 0.3f);
    EXPECT_EQ(light.valueE, 0.5f);
    EXPECT_EQ(light.valueF, 0.6f);
    EXPECT_EQ(light.levelB, 17);
    EXPECT_EQ(light.name, L"Light_14");
    EXPECT_FALSE(light.enabled);
    EXPECT_TRUE(light.optionA);
    EXPECT_TRUE(light.optionB);
    EXPECT_EQ(list(light.colour), floats({1 / 255.0, 2 / 255.0, 3 / 255.0}));
}

INSTANTIATE_TEST_SUITE_P(Types, CommonFields, testing::ValuesIn(kAllTypes));

struct TypeCase {
    const char* name;
    LIGHT_TYPE type;
    std::vector<double> direction, position;
    double shapeValue, valueD, valueG, valueH, valueI, valueJ;
    bool optionC;
    int levelC;
};

void PrintTo(const TypeCase& row, std::ostream* out)
{
    *out << row.name;
}

const std::vector<double> kA = {0.1, 2.2, 3.3}, kB = {4.1, 5.2, 6.3};
const TypeCase kTypes[] = {
    {"aimed", LIGHT_AIMED, {0.1, 0.1, 0.1}, kB, 1.6, 1.3, 0.7, 0, 0, 1.1, true, 18},
    {"positioned", LIGHT_POSITIONED, kA, kB, 1.5, 0.4, 0, 0, 0.9, 0, true, 18},
    {"directional", LIGHT_DIRECTIONAL, kB, kB, 0, 0.4, 0, 0.8, 0, 0, false, 0},
    {"sun", LIGHT_SUN, kA, kA, 0, 0.4, 0, 0, 0, 0, false, 0},
    {"other", kOtherType, kA, kA, 0, 0.4, 0, 0, 0, 0, false, 0},
    {"type_zero", static_cast<LIGHT_TYPE>(0), kA, kA, 0, 0.4, 0, 0, 0, 0, false, 0},
    {"negative_type", static_cast<LIGHT_TYPE>(-1), kA, kA, 0, 0.4, 0, 0, 0, 0, false, 0},
};

class TypeFields : public testing::TestWithParam<TypeCase> {};

std::vector<float> floatsOf(const std::vector<double>& values)
{
    std::vector<float> narrowed;
    std::transform(values.begin(), values.end(), std::back_inserter(narrowed),
                   [](double value) { return static_cast<float>(value); });
    return narrowed;
}

TEST_P(TypeFields, take_what_belongs_to_the_type_and_nothing_else)
{
    const TypeCase& row = GetParam();
    const dlLight light = translated(fullLight(row.type));
    EXPECT_EQ(list(light.direction), floatsOf(row.direction));
    EXPECT_EQ(list(light.position), floatsOf(row.position));
    EXPECT_EQ(light.shapeValue, static_cast<float>(row.shapeValue));
    EXPECT_EQ(light.valueD, static_cast<float>(row.valueD));
    EXPECT_EQ(light.valueG, static_cast<float>(row.valueG));
    EXPECT_EQ(light.valueH, static_cast<float>(row.valueH));
    EXPECT_EQ(light.valueI, static_cast<float>(row.valueI));
    EXPECT_EQ(light.valueJ, static_cast<float>(row.valueJ));
    EXPECT_EQ(light.optionC, row.optionC);
    EXPECT_EQ(light.levelC, row.levelC);
    EXPECT_EQ(light.targetDistance != 0, row.type == LIGHT_AIMED);
    EXPECT_EQ(light.sunDay != 2012001.0f, row.type == LIGHT_SUN);
    EXPECT_EQ(light.sunHaze != 0, row.type == LIGHT_SUN);
    EXPECT_EQ(light.sunVector[0] != 0, row.type == LIGHT_SUN);
    const bool turns = row.type == LIGHT_AIMED || row.type == LIGHT_DIRECTIONAL || row.type == LIGHT_SUN;
    EXPECT_EQ(list(light.rotation) != std::vector<float>({0, 0, 0}), turns);
}

INSTANTIATE_TEST_SUITE_P(Rows, TypeFields, testing::ValuesIn(kTypes),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(LightColour, has_red_in_the_low_byte_and_ignores_the_top_one)
{
    moLight_c source;
    source.packedColour = 0xAAFF8000u;
    EXPECT_EQ(list(translated(source).colour), (std::vector<float>{0.0f, 128.0f / 255.0f, 1.0f}));
}

struct OptionCase {
    const char* name;
    std::int32_t source;
    bool enabled, option;
};

void PrintTo(const OptionCase& row, std::ostream* out)
{
    *out << row.name;
}

const OptionCase kOptions[] = {{"zero", 0, false, false},
                               {"one", 1, true, true},
                               {"two", 2, true, false},
                               {"minus_one", -1, true, false}};

class LightOptions : public testing::TestWithParam<OptionCase> {};

TEST_P(LightOptions, are_one_or_not_while_enabled_is_not_zero)
{
    moLight_c source = fullLight(LIGHT_AIMED);
    source.sourceEnabled = GetParam().source;
    source.sourceOptionA = source.sourceOptionB = source.sourceOptionC = GetParam().source;
    const dlLight light = translated(source);
    EXPECT_EQ(light.enabled, GetParam().enabled);
    EXPECT_EQ(light.optionA, GetParam().option);
    EXPECT_EQ(light.optionB, GetParam().option);
    EXPECT_EQ(light.optionC, GetParam().option);
}

INSTANTIATE_TEST_SUITE_P(Rows, LightOptions, testing::ValuesIn(kOptions),
                         [](const auto& row) { return std::string(row.param.name); });

struct LevelCase {
    const char* name;
    double source;
    std::int32_t level;
};

void PrintTo(const LevelCase& row, std::ostream* out)
{
    *out << row.name;
}

constexpr std::int32_t kNoLevel = std::numeric_limits<std::int32_t>::min();
const LevelCase kLevels[] = {
    {"goes_toward_zero_from_above", 2.9, 2},
    {"goes_toward_zero_from_below", -2.9, -2},
    {"keeps_the_greatest", 2147483647.9, 2147483647},
    {"keeps_the_least", -2147483648.9, kNoLevel},
    {"beyond_32_bits_above", 2147483648.0, kNoLevel},
    {"beyond_32_bits_below", -3e9, kNoLevel},
    {"infinite", std::numeric_limits<double>::infinity(), kNoLevel},
    {"no_number", std::numeric_limits<double>::quiet_NaN(), kNoLevel},
};

class LightLevels : public testing::TestWithParam<LevelCase> {};

TEST_P(LightLevels, are_truncated)
{
    moLight_c source = fullLight(LIGHT_POSITIONED);
    source.sourceLevelB = source.sourceLevelC = GetParam().source;
    const dlLight light = translated(source);
    EXPECT_EQ(light.levelB, GetParam().level);
    EXPECT_EQ(light.levelC, GetParam().level);
}

INSTANTIATE_TEST_SUITE_P(Rows, LightLevels, testing::ValuesIn(kLevels),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(LightName, prints_a_negative_index)
{
    moLight_c source;
    source.lightIndex = -3;
    EXPECT_EQ(translated(source).name, L"Light_-3");
}

TEST(AimedLight, measures_the_distance_between_rounded_points_in_double)
{
    moLight_c source = fullLight(LIGHT_AIMED);
    set(source.sourceVectorB, 0.1, 0.2, 0.3);
    set(source.sourceVectorC, 100.1, -7.7, 1e-3);
    const double x = static_cast<double>(100.1f) - 0.1f;
    const double y = static_cast<double>(-7.7f) - 0.2f;
    const double z = static_cast<double>(1e-3f) - 0.3f;
    EXPECT_EQ(translated(source).targetDistance, static_cast<float>(std::sqrt(x * x + y * y + z * z)));
}

TEST(AimedLight, at_its_own_target_does_not_turn)
{
    moLight_c source = fullLight(LIGHT_AIMED);
    set(source.sourceVectorC, 4.1, 5.2, 6.3);
    const dlLight light = translated(source);
    EXPECT_EQ(light.targetDistance, 0.0f);
    EXPECT_EQ(list(light.rotation), (std::vector<float>{0, 0, 0}));
}

TEST(DirectionalLight, along_its_reference_does_not_turn)
{
    moLight_c source = fullLight(LIGHT_DIRECTIONAL);
    set(source.sourceVectorB, 0, 0, 5);
    EXPECT_EQ(list(translated(source).rotation), (std::vector<float>{0, 0, 0}));
}

TEST(DirectionalLight, along_x_turns_by_a_right_angle)
{
    moLight_c source = fullLight(LIGHT_DIRECTIONAL);
    set(source.sourceVectorB, 1, 0, 0);
    const dlLight light = translated(source);
    EXPECT_NEAR(light.rotation[1], kPi / 2, 1e-6);
    const auto aimed = turned(light.rotation, {0, 0, 1});
    EXPECT_NEAR(aimed[0], 1, 1e-6);
}

class LightRotation : public testing::TestWithParam<LIGHT_TYPE> {};

TEST_P(LightRotation, turns_the_reference_onto_the_direction)
{
    std::mt19937 random(7);
    std::normal_distribution<double> normal;
    const double sign = GetParam() == LIGHT_AIMED ? -1 : 1;
    for (int round = 0; round < 500; ++round) {
        const double v[3] = {normal(random), normal(random), normal(random)};
        const double length = std::sqrt(v[0] * v[0] + v[1] * v[1] + v[2] * v[2]);
        moLight_c source;
        source.lightType = GetParam();
        set(source.sourceVectorC, v[0], v[1], v[2]);
        if (GetParam() != LIGHT_AIMED) {
            set(source.sourceVectorA, v[0], v[1], v[2]);
            set(source.sourceVectorB, v[0], v[1], v[2]);
        }
        const auto aimed = turned(translated(source).rotation, {0, 0, sign});
        for (int i = 0; i < 3; ++i) {
            EXPECT_NEAR(aimed[i], v[i] / length, 2e-6) << "round " << round;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Types, LightRotation, testing::Values(LIGHT_AIMED, LIGHT_DIRECTIONAL, LIGHT_SUN));

dlLight sunAt(std::int64_t time)
{
    moLight_c source = fullLight(LIGHT_SUN);
    source.sourceStamp = std::bit_cast<std::uint64_t>(time);
    return translated(source);
}

struct SunCase {
    const char* name;
    const char* zone;
    std::int64_t time;
    float day;
    double hours;
};

void PrintTo(const SunCase& row, std::ostream* out)
{
    *out << row.name;
}

constexpr std::int64_t kNewYear2021 = 1609459200;  // 2021-01-01T00:00:00Z
const SunCase kSuns[] = {
    {"utc", "UTC0", kNewYear2021, 2021001, 0},
    {"a_leap_year_ends_on_day_366", "UTC0", kNewYear2021 - 1, 2020366, 23 + 59 / 60.0},
    {"seconds_do_not_count", "UTC0", kNewYear2021 + 59, 2021001, 0},
    {"west_of_utc_the_year_is_still_the_old_one", "XXX5", kNewYear2021, 2020001, 19},
    {"east_of_utc_the_year_is_already_the_new_one", "XXX-9", kNewYear2021 - 3600, 2021366, 8},
    {"computed_in_double", "UTC0", kNewYear2021 + 71 * 60, 2021001, 1 + 11 / 60.0},
    {"half_hours", "XXX-5:30", kNewYear2021, 2021001, 5.5},
    {"the_first_second", "UTC0", 0, 1970001, 0},
    {"the_last_second", "UTC0", 32535215999, 3000365, 23 + 59 / 60.0},
    {"one_second_too_late", "UTC0", 32535216000, 0, -1 - 1 / 60.0},
    {"before_the_first_second", "UTC0", -1, 0, -1 - 1 / 60.0},
    {"far_too_late", "UTC0", std::numeric_limits<std::int64_t>::max(), 0, -1 - 1 / 60.0},
};

class SunTimes : public testing::TestWithParam<SunCase> {};

TEST_P(SunTimes, have_the_local_year_and_hour_and_the_day_of_utc)
{
    const ScopedVariable zone("TZ", GetParam().zone);
    const dlLight light = sunAt(GetParam().time);
    EXPECT_EQ(light.sunDay, GetParam().day);
    EXPECT_EQ(light.sunTime, static_cast<float>(GetParam().hours));
}

INSTANTIATE_TEST_SUITE_P(Rows, SunTimes, testing::ValuesIn(kSuns),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(Sun, reads_its_stamp_as_an_integer_and_an_aimed_light_as_a_double)
{
    const ScopedVariable zone("TZ", "UTC0");
    moLight_c source = fullLight(LIGHT_SUN);
    source.sourceStamp = std::bit_cast<std::uint64_t>(std::int64_t{kNewYear2021});
    EXPECT_EQ(translated(source).sunDay, 2021001.0f);
    EXPECT_EQ(translated(source).valueD, 0.4f);
    source.lightType = LIGHT_AIMED;
    EXPECT_EQ(translated(source).valueD, static_cast<float>(std::bit_cast<double>(source.sourceStamp)));
}

struct FloorScene : ovScene_c {
    FloorScene()
    {
        floorVector = mgVector_c(0, -1, 0);
        sceneData = &data;
    }

    pwSceneData_c data;
};

TEST(Sun, measures_north_from_minus_z_about_the_floor)
{
    moLight_c source = fullLight(LIGHT_SUN);
    set(source.sourceVectorB, 1, 0, 0);  // minus z cross x is minus y
    FloorScene scene;
    EXPECT_EQ(translated(source, &scene).northAngle, static_cast<float>(kPi / 2));
    scene.floorVector = mgVector_c(0, 1, 0);
    EXPECT_EQ(translated(source, &scene).northAngle, static_cast<float>(-kPi / 2));
}

TEST(Sun, takes_the_unrounded_vector_for_north)
{
    moLight_c source = fullLight(LIGHT_SUN);
    set(source.sourceVectorB, 1e-60, 0, -1e-60);
    FloorScene scene;
    EXPECT_EQ(translated(source, &scene).northAngle, static_cast<float>(kPi / 4));
}

TEST(Sun, has_no_floor_without_scene_data)
{
    moLight_c source = fullLight(LIGHT_SUN);
    set(source.sourceVectorB, 1, 0, 0);
    FloorScene scene;
    scene.floorVector = mgVector_c(0, 1, 0);
    scene.sceneData = nullptr;
    EXPECT_EQ(translated(source, &scene).northAngle, static_cast<float>(kPi / 2));
    EXPECT_EQ(translated(source).northAngle, static_cast<float>(kPi / 2));
}

TEST(Sun, takes_its_vector_and_ten_times_the_haze)
{
    moLight_c source = fullLight(LIGHT_SUN);
    source.sourceHaze = 0.0030000123;
    const dlLight light = translated(source);
    EXPECT_EQ(list(light.sunVector), floats({7.1, 8.2, 9.3}));
    EXPECT_EQ(light.sunHaze, static_cast<float>(0.0030000123 * 10.0));
    // 10 times this haze is another float when it is narrowed before it is multiplied.
    EXPECT_NE(light.sunHaze, static_cast<float>(0.0030000123) * 10.0f);
}

TEST(Sun, turns_by_its_position)
{
    moLight_c source = fullLight(LIGHT_SUN);
    set(source.sourceVectorA, 0, 1, 0);
    set(source.sourceVectorB, 1, 0, 0);
    const auto aimed = turned(translated(source).rotation, {0, 0, 1});
    EXPECT_NEAR(aimed[1], 1, 1e-6);
}

TEST(AimedLight, measures_between_points_as_stored)
{
    moLight_c source = fullLight(LIGHT_AIMED);
    set(source.sourceVectorB, 16777217, 0, 0);
    set(source.sourceVectorC, 16777220, 0, 0);
    EXPECT_EQ(translated(source).targetDistance, 4.0f);
    set(source.sourceVectorB, 16777220, 0, 0);
    set(source.sourceVectorC, 16777217, 0, 0);
    EXPECT_EQ(translated(source).targetDistance, 4.0f);
}

TEST(AimedLight, measures_in_double)
{
    moLight_c source = fullLight(LIGHT_AIMED);
    set(source.sourceVectorB, 0, 0, 0);
    set(source.sourceVectorC, 0, 0, 1e25);
    EXPECT_EQ(translated(source).targetDistance, 1e25f);
}

TEST(AimedLight, whose_target_is_its_place_once_rounded_does_not_turn)
{
    moLight_c source = fullLight(LIGHT_AIMED);
    set(source.sourceVectorB, 0, 0, 0);
    set(source.sourceVectorC, 1e-60, 1e-60, -1e-60);
    EXPECT_EQ(list(translated(source).rotation), (std::vector<float>{0, 0, 0}));
}

TEST(DirectionalLight, turns_by_its_position_as_stored)
{
    moLight_c source = fullLight(LIGHT_DIRECTIONAL);
    set(source.sourceVectorB, 1e-60, 1e-60, 1e-60);
    EXPECT_EQ(list(translated(source).rotation), (std::vector<float>{0, 0, 0}));
}

TEST(DirectionalLight, against_its_reference_does_not_turn)
{
    moLight_c source = fullLight(LIGHT_DIRECTIONAL);
    set(source.sourceVectorB, 0, 0, -5);
    EXPECT_EQ(list(translated(source).rotation), (std::vector<float>{0, 0, 0}));
}

}  // namespace
