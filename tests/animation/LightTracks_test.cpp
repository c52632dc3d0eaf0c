#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/animation/SideFile.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

using LightTracks = std::map<std::int32_t, std::map<double, dlLightKey>>;
using Ids = std::vector<std::int32_t>;

LightTracks lightsOf(std::vector<Tag> lights)
{
    return tracksOf(document(std::move(lights))).at(L"@LIGHTS").lightTracks;
}

TEST(LightTracks, HoldEveryFieldOfAnAimedLight)
{
    const AnimationTracks tracks =
        tracksOf(document({light({lightKey("1.5", 7, 2).with("EnabledInRL", "2")})}));
    EXPECT_EQ(keysOf(tracks), (Names{L"@LIGHTS"}));
    EXPECT_THAT(tracks.at(L"@LIGHTS").viewKeys, IsEmpty());
    const dlLightKey key = tracks.at(L"@LIGHTS").lightTracks.at(7).at(1.5);
    EXPECT_EQ(key.interpolateMode, 6);
    EXPECT_EQ(key.lightId, 7);
    EXPECT_EQ(key.lightType, 2);
    EXPECT_EQ(key.enabledInRL, 2);
    EXPECT_EQ(key.red, 0.1);
    EXPECT_EQ(key.green, 0.2);
    EXPECT_EQ(key.blue, 0.3);
    EXPECT_THAT(key.position, ElementsAre(10, 11, 12));
    EXPECT_THAT(key.rotation, ElementsAre(20, 21, 22));
    EXPECT_EQ(key.sunTime, 0);
    EXPECT_EQ(key.sunDay, 0);
    EXPECT_EQ(key.sunHaze, 0);
}

TEST(LightTracks, HoldWhatTheirTypeHas)
{
    const LightTracks lights = lightsOf({light({lightKey("0", 3, 3)}), light({lightKey("0", 4, 4)}),
                                         light({lightKey("0", 6, 6)}), light({lightKey("0", 1, 1)})});
    EXPECT_THAT(lights.at(3).at(0).position, ElementsAre(10, 11, 12));
    EXPECT_THAT(lights.at(3).at(0).rotation, ElementsAre(0, 0, 0));
    EXPECT_THAT(lights.at(4).at(0).position, ElementsAre(10, 11, 12));
    EXPECT_THAT(lights.at(4).at(0).rotation, ElementsAre(20, 21, 22));
    EXPECT_THAT(lights.at(6).at(0).position, ElementsAre(0, 0, 0));
    EXPECT_EQ(lights.at(6).at(0).sunTime, 0.5f);
    EXPECT_EQ(lights.at(6).at(0).sunDay, 1.5f);
    EXPECT_EQ(lights.at(6).at(0).sunHaze, 2.5f);
    EXPECT_THAT(lights.at(1).at(0).position, ElementsAre(0, 0, 0));
}

TEST(LightTracks, KeepTheSunInFloats)
{
    const Tag key =
        lightKey("0", 1, 6).with("sunTime", "0.1").with("sunDay", "16777217").with("sunHaze", "1e-50");
    const LightTracks lights = lightsOf({light({key})});
    EXPECT_EQ(lights.at(1).at(0).sunTime, 0.100000001f);
    EXPECT_EQ(lights.at(1).at(0).sunDay, 16777216.0f);
    EXPECT_EQ(lights.at(1).at(0).sunHaze, 0.0f);
    EXPECT_THAT(tracksUntilError(document({light({key.with("sunHaze", "1e39")})})), IsEmpty());
}

TEST(LightTracks, OfDifferentLightsStandSideBySide)
{
    const LightTracks lights = lightsOf(
        {light({lightKey("0", 3, 1)}), light({lightKey("0", -5, 1)}), light({lightKey("0", 0, 1)})});
    EXPECT_EQ(keysOf(lights), (Ids{-5, 0, 3}));
    EXPECT_EQ(lights.at(-5).at(0).lightId, -5);
}

TEST(LightTracks, OfOneLightAddUp)
{
    const LightTracks lights = lightsOf({light({lightKey("2", 1, 1), lightKey("0", 1, 1)}),
                                         light({lightKey("1", 1, 1)}), light({lightKey("3", 2, 1)})});
    EXPECT_EQ(keysOf(lights.at(1)), (Times{0, 1, 2}));
    EXPECT_EQ(keysOf(lights.at(2)), (Times{3}));
}

TEST(LightTracks, AddUpOverAnimations)
{
    const AnimationTracks tracks = tracksOf(tag(
        "ROOT", {animation({light({lightKey("0", 1, 1)})}), animation({light({lightKey("1", 1, 1)})})}));
    EXPECT_EQ(keysOf(tracks.at(L"@LIGHTS").lightTracks.at(1)), (Times{0, 1}));
}

TEST(LightTracks, ReplaceAKeyOfTheSameTimeInAllItsFields)
{
    const LightTracks lights = lightsOf({light({lightKey("0", 1, 2)}), light({bareLight("0", 1, 1)})});
    ASSERT_EQ(keysOf(lights.at(1)), (Times{0}));
    EXPECT_EQ(lights.at(1).at(0).lightType, 1);
    EXPECT_THAT(lights.at(1).at(0).position, ElementsAre(0, 0, 0));
    EXPECT_THAT(lights.at(1).at(0).rotation, ElementsAre(0, 0, 0));
}

TEST(LightTracks, KeepOtherMapsOfAComponentOfTheirName)
{
    const AnimationTracks tracks =
        tracksOf(document({component("@LIGHTS", {transform("0")}), light({lightKey("0", 1, 1)})}));
    EXPECT_EQ(tracks.at(L"@LIGHTS").transforms.size(), 1u);
    EXPECT_EQ(tracks.at(L"@LIGHTS").lightTracks.size(), 1u);
}

TEST(LightTracks, AreNotThereForALightWithoutKeys)
{
    EXPECT_THAT(tracksOf(document({light()})), IsEmpty());
    EXPECT_EQ(lightsOf({light({lightKey("0", 1, 1)}), light()}).size(), 1u);
}

TEST(LightTracks, CarryFieldsFromElementToElement)
{
    const LightTracks lights = lightsOf(
        {light({lightKey("0", 1, 4), bareLight("1", 1, 1), lightKey("2", 1, 6), bareLight("3", 1, 5),
                lightKey("4", 1, 3).with("pos0", "99"), bareLight("5", 1, -1), bareLight("6", 1, 99)})});
    const auto& track = lights.at(1);
    EXPECT_THAT(track.at(1).position, ElementsAre(10, 11, 12));
    EXPECT_THAT(track.at(1).rotation, ElementsAre(20, 21, 22));
    EXPECT_THAT(track.at(2).position, ElementsAre(10, 11, 12));
    EXPECT_THAT(track.at(2).rotation, ElementsAre(20, 21, 22));
    EXPECT_EQ(track.at(3).sunTime, 0.5f);
    EXPECT_EQ(track.at(3).sunDay, 1.5f);
    EXPECT_EQ(track.at(3).sunHaze, 2.5f);
    EXPECT_THAT(track.at(4).position, ElementsAre(99, 11, 12));
    EXPECT_THAT(track.at(4).rotation, ElementsAre(20, 21, 22));
    for (const double time : {5.0, 6.0}) {
        EXPECT_THAT(track.at(time).position, ElementsAre(99, 11, 12));
        EXPECT_THAT(track.at(time).rotation, ElementsAre(20, 21, 22));
        EXPECT_EQ(track.at(time).sunHaze, 2.5f);
    }
}

TEST(LightTracks, CarryByTheFileAndNotByLightOrTime)
{
    const LightTracks lights =
        lightsOf({light({lightKey("5", 1, 4), bareLight("3", 2, 1), lightKey("4", 1, 3).with("pos1", "50"),
                         bareLight("0", 1, 1)})});
    EXPECT_THAT(lights.at(2).at(3).position, ElementsAre(10, 11, 12));
    EXPECT_THAT(lights.at(1).at(0).position, ElementsAre(10, 50, 12));
    EXPECT_THAT(lights.at(1).at(5).position, ElementsAre(10, 11, 12));
}

TEST(LightTracks, DoNotCarryFromOneLightElementToTheNext)
{
    const LightTracks lights = lightsOf({light({lightKey("0", 1, 4)}), light({bareLight("1", 1, 1)})});
    EXPECT_THAT(lights.at(1).at(1).position, ElementsAre(0, 0, 0));
    EXPECT_THAT(lights.at(1).at(1).rotation, ElementsAre(0, 0, 0));
}

// The outer one meets the inner one's element with what it carries; then the inner one files it afresh.
TEST(LightTracks, OfANestedLightStartAfresh)
{
    const LightTracks lights = lightsOf({light({lightKey("0", 1, 4), light({bareLight("1", 1, 1)})})});
    EXPECT_THAT(lights.at(1).at(0).position, ElementsAre(10, 11, 12));
    EXPECT_THAT(lights.at(1).at(1).position, ElementsAre(0, 0, 0));
}

TEST(LightTracks, DoNotSeeWhatTheirTypeHasNot)
{
    const Tag odd = bareLight("0", 1, 1).with("pos0", "x").with("rot1", "").with("sunTime", "y");
    EXPECT_EQ(lightsOf({light({odd})}).size(), 1u);
    EXPECT_EQ(lightsOf({light({lightKey("0", 1, 3).with("rot1", "x")})}).size(), 1u);
    EXPECT_EQ(lightsOf({light({lightKey("0", 1, 6).with("pos0", "x")})}).size(), 1u);
}

TEST(LightTracks, NeedEveryAttributeOfTheirType)
{
    for (const int type : {1, 2, 3, 4, 6, 99}) {
        const Tag key = lightKey("0", 1, type);
        for (const auto& attribute : key.attributes) {
            SCOPED_TRACE(std::to_string(type) + " " + attribute.first);
            EXPECT_THAT(tracksUntilError(document({light({key.without(attribute.first)})})), IsEmpty());
        }
    }
}

TEST(LightTracks, OfAnElementWithAnErrorAreDroppedWhole)
{
    const AnimationTracks tracks =
        tracksUntilError(document({light({lightKey("0", 1, 2)}),
                                   light({lightKey("1", 1, 1), lightKey("0", 1, 1), lightKey("0", 2, 1),
                                          lightKey("2", 3, 2).without("rot1")}),
                                   light({lightKey("9", 9, 1)})}));
    const LightTracks& lights = tracks.at(L"@LIGHTS").lightTracks;
    EXPECT_EQ(keysOf(lights), (Ids{1}));
    EXPECT_EQ(keysOf(lights.at(1)), (Times{0}));
    EXPECT_EQ(lights.at(1).at(0).lightType, 2);
}

}  // namespace
