// From punctual lights to the document's lights, and on to what the translation makes of them.
#include <gmock/gmock.h>

#include <bit>
#include <cmath>

#include "tests/gltf/GltfBuilder.h"
#include "tests/gltf/GltfReading.h"

namespace gltf_tests {
namespace {

using testing::DoubleNear;
using testing::ElementsAre;
using testing::Pointwise;

GltfBuilder withLights(const std::vector<Json>& lights, const Json& placement = Json::object())
{
    GltfBuilder builder;
    for (std::size_t i = 0; i < lights.size(); ++i) {
        builder.json["extensions"]["KHR_lights_punctual"]["lights"].push_back(lights[i]);
        Json node = placement;
        node["extensions"]["KHR_lights_punctual"]["light"] = i;
        builder.addNode(node);
    }
    return builder;
}

const moLight_c& light(const ovdl::ReadOutcome& outcome, long long index = 0)
{
    return *outcome.document->assembly()->lightData->at(index);
}

std::vector<double> vectorOf(const double* values)
{
    return {values, values + 3};
}

// Turned by a quarter about y, so that its -z looks along -x, and moved.
const Json kPlacement = {{"rotation", {0, 0.70710678118654752, 0, 0.70710678118654752}},
                         {"translation", {1, 2, 3}},
                         {"scale", {2, 2, 2}}};

TEST(Lights, AreNoneWithoutAny)
{
    GltfBuilder builder;
    builder.addNode(Json::object());
    EXPECT_EQ(readBytes(builder.glb()).document->assembly()->lightData, nullptr);
}

TEST(Lights, HaveTheirTypesAndNumbers)
{
    const auto outcome =
        readBytes(withLights({{{"type", "point"}}, {{"type", "directional"}}, {{"type", "spot"}}}).glb());
    ASSERT_EQ(outcome.kind, ovdl::ReadOutcome::kRead) << outcome.reason;
    ASSERT_EQ(outcome.document->assembly()->lightData->count, 3);
    EXPECT_EQ(light(outcome, 0).getLightType(), LIGHT_POSITIONED);
    EXPECT_EQ(light(outcome, 1).getLightType(), LIGHT_DIRECTIONAL);
    EXPECT_EQ(light(outcome, 2).getLightType(), LIGHT_AIMED);
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(light(outcome, i).lightIndex, i);
        EXPECT_EQ(light(outcome, i).sourceEnabled, 1);
        EXPECT_EQ(light(outcome, i).packedColour, 0x00FFFFFFu);
        EXPECT_EQ(light(outcome, i).sourceFactorA, 1.0);
    }
}

TEST(Lights, TakeOverColourIntensityAndRange)
{
    const auto outcome = readBytes(
        withLights({{{"type", "point"}, {"color", {1, 0.5, 0}}, {"intensity", 20.5}, {"range", 7}}}).glb());
    EXPECT_EQ(light(outcome).packedColour, 0x000080FFu);
    EXPECT_EQ(light(outcome).sourceFactorA, 20.5);
    EXPECT_EQ(light(outcome).sourceFactorB, 1.0);
    EXPECT_EQ(light(outcome).sourceFactorC, 1.0);
    EXPECT_EQ(light(outcome).sourceValueF, 7.0);
}

TEST(Lights, ThatArePositionedStandAtTheirNode)
{
    const auto outcome = readBytes(withLights({{{"type", "point"}}}, kPlacement).glb());
    EXPECT_THAT(vectorOf(light(outcome).sourceVectorB), ElementsAre(1, 2, 3));
}

TEST(Lights, ThatAreDirectionalPointBackAtWhereTheyComeFrom)
{
    const auto outcome = readBytes(withLights({{{"type", "directional"}}}, kPlacement).glb());
    EXPECT_THAT(vectorOf(light(outcome).sourceVectorB),
                Pointwise(DoubleNear(1e-12), std::vector<double>{1, 0, 0}));
}

TEST(Lights, ThatAreAimedLookAlongTheirNode)
{
    const Json spot = {{"type", "spot"}, {"spot", {{"innerConeAngle", 0.25}, {"outerConeAngle", 0.5}}}};
    const auto outcome = readBytes(withLights({spot}, kPlacement).glb());
    const moLight_c& aimed = light(outcome);
    EXPECT_THAT(vectorOf(aimed.sourceVectorB), ElementsAre(1, 2, 3));
    EXPECT_THAT(vectorOf(aimed.sourceVectorC), Pointwise(DoubleNear(1e-12), std::vector<double>{0, 2, 3}));
    EXPECT_THAT(vectorOf(aimed.sourceVectorA), Pointwise(DoubleNear(1e-12), std::vector<double>{-1, 0, 0}));
    EXPECT_EQ(aimed.sourceShapeB, 1.0);
    EXPECT_EQ(std::bit_cast<double>(aimed.sourceStamp), 0.5);
}

TEST(Lights, ThatAreAimedHaveTheFormatsOwnConeIfTheySayNone)
{
    const auto outcome = readBytes(withLights({{{"type", "spot"}}}).glb());
    EXPECT_DOUBLE_EQ(light(outcome).sourceShapeB, 1.5707963267948966);
    EXPECT_EQ(std::bit_cast<double>(light(outcome).sourceStamp), 0.0);
}

TEST(Lights, AreTurnedByTheNodesAbove)
{
    GltfBuilder builder;
    builder.json["extensions"]["KHR_lights_punctual"]["lights"] = {{{"type", "point"}}};
    Json below = {{"translation", {1, 0, 0}}};
    below["extensions"]["KHR_lights_punctual"]["light"] = 0;
    const int child = builder.addNode(below, false);
    builder.addNode({{"children", {child}}, {"scale", {3, 3, 3}}, {"translation", {0, 0, 5}}});
    const auto outcome = readBytes(builder.glb());
    EXPECT_THAT(vectorOf(light(outcome).sourceVectorB), ElementsAre(3, 0, 5));
}

TEST(Lights, OfAnUnknownKindAreLeftOut)
{
    const auto outcome = readBytes(withLights({{{"type", "area"}}, {{"type", "point"}}}).glb());
    ASSERT_EQ(outcome.document->assembly()->lightData->count, 1);
    EXPECT_EQ(light(outcome).getLightType(), LIGHT_POSITIONED);
}

TEST(Lights, OfOneRecordMayStandAtSeveralNodes)
{
    GltfBuilder builder = withLights({{{"type", "point"}}});
    Json second = {{"translation", {4, 0, 0}}};
    second["extensions"]["KHR_lights_punctual"]["light"] = 0;
    builder.addNode(second);
    const auto outcome = readBytes(builder.glb());
    ASSERT_EQ(outcome.document->assembly()->lightData->count, 2);
    EXPECT_THAT(vectorOf(light(outcome, 1).sourceVectorB), ElementsAre(4, 0, 0));
}

TEST(Lights, OfAPartDocumentBelongToThePart)
{
    GltfBuilder builder = withLights({{{"type", "point"}}});
    builder.addNode({{"mesh", builder.triangleMesh()}});
    const auto outcome = readBytes(builder.glb());
    ASSERT_NE(outcome.document->part(), nullptr);
    ASSERT_NE(outcome.document->part()->lightData, nullptr);
    EXPECT_EQ(outcome.document->part()->lightData->count, 1);
}

TEST(Lights, MayBeMoreThanTheModelHolds)
{
    const auto outcome = readBytes(withLights(std::vector<Json>(150, {{"type", "point"}})).glb());
    EXPECT_EQ(outcome.document->assembly()->lightData->count, 150);
}

}  // namespace
}  // namespace gltf_tests
