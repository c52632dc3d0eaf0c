#include "raylume/scene/dlLight.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <utility>

namespace {

using testing::ElementsAre;

TEST(Light, Defaults)
{
    const dlLight light;
    EXPECT_EQ(light.lightType, 4);
    EXPECT_EQ(light.factorA, 1.0f);
    EXPECT_EQ(light.factorB, 1.0f);
    EXPECT_EQ(light.factorC, 1.0f);
    EXPECT_THAT(light.colour, ElementsAre(1.0f, 1.0f, 1.0f));
    EXPECT_THAT(light.position, ElementsAre(0.0f, 0.0f, 0.0f));
    EXPECT_THAT(light.direction, ElementsAre(0.0f, 0.0f, 1.0f));
    EXPECT_THAT(light.rotation, ElementsAre(0.0f, 0.0f, 0.0f));
    EXPECT_THAT(light.sunVector, ElementsAre(0.0f, 0.0f, 0.0f));
    EXPECT_TRUE(light.enabled);
    EXPECT_EQ(light.name, L"");
    EXPECT_EQ(light.sunDay, 2012001.0f);
    for (const float value : {light.valueD, light.valueE, light.shapeValue, light.valueF, light.valueG,
                              light.valueH, light.valueI, light.valueJ, light.targetDistance, light.sunTime,
                              light.northAngle, light.sunHaze}) {
        EXPECT_EQ(value, 0);
    }
    for (const bool option : {light.optionA, light.optionB, light.optionC}) {
        EXPECT_FALSE(option);
    }
    EXPECT_EQ(light.levelB, 0);
    EXPECT_EQ(light.levelC, 0);
}

constexpr float dlLight::*kFloats[] = {
    &dlLight::factorA, &dlLight::factorB,    &dlLight::factorC,    &dlLight::valueD,
    &dlLight::valueE,  &dlLight::shapeValue, &dlLight::valueF,     &dlLight::valueG,
    &dlLight::valueH,  &dlLight::valueI,     &dlLight::valueJ,     &dlLight::targetDistance,
    &dlLight::sunDay,  &dlLight::sunTime,    &dlLight::northAngle, &dlLight::sunHaze};
constexpr float (dlLight::*kVectors[])[3] = {&dlLight::colour, &dlLight::position, &dlLight::direction,
                                             &dlLight::rotation, &dlLight::sunVector};

void fill(dlLight& light)
{
    float value = 10;
    for (const auto field : kFloats) {
        light.*field = value++;
    }
    for (const auto vector : kVectors) {
        for (float& coordinate : light.*vector) {
            coordinate = value++;
        }
    }
    light.lightType = 6;
    light.enabled = false;
    light.name = L"a name that is too long to be kept in place";
    light.optionA = light.optionB = light.optionC = true;
    light.levelB = 7;
    light.levelC = 8;
}

void expectFilled(const dlLight& light)
{
    dlLight expected;
    fill(expected);
    for (const auto field : kFloats) {
        EXPECT_EQ(light.*field, expected.*field);
    }
    for (const auto vector : kVectors) {
        EXPECT_THAT(light.*vector, testing::ElementsAreArray(expected.*vector));
    }
    EXPECT_EQ(light.lightType, 6);
    EXPECT_FALSE(light.enabled);
    EXPECT_EQ(light.name, expected.name);
    EXPECT_TRUE(light.optionA && light.optionB && light.optionC);
    EXPECT_EQ(light.levelB, 7);
    EXPECT_EQ(light.levelC, 8);
}

TEST(Light, CopiesCarryEveryField)
{
    dlLight source;
    fill(source);
    expectFilled(dlLight(source));
    dlLight assigned;
    assigned = source;
    expectFilled(assigned);
    const dlLight& alias = assigned;
    assigned = alias;
    expectFilled(assigned);
}

TEST(Light, MoveConstructionLeavesTheSourceAsItWas)
{
    dlLight source;
    fill(source);
    const dlLight moved(std::move(source));
    expectFilled(moved);
    expectFilled(source);
}

TEST(Light, MoveAssignmentLeavesTheSourceAsItWas)
{
    dlLight source, moved;
    fill(source);
    moved = std::move(source);
    expectFilled(moved);
    expectFilled(source);
}

}  // namespace
