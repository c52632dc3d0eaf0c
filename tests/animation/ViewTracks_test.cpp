#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/animation/SideFile.h"

using testing::IsEmpty;

namespace {

TEST(ViewTracks, HoldEveryField)
{
    const AnimationTracks tracks =
        tracksOf(document({viewport({camera("1.5", 10), viewPoint("2.5", 20)})}));
    EXPECT_EQ(keysOf(tracks), (Names{L"@CAMERA", L"@VIEWPORT"}));
    const struct {
        const wchar_t* name;
        double time;
        int first;
    } rows[] = {{L"@CAMERA", 1.5, 10}, {L"@VIEWPORT", 2.5, 20}};
    for (const auto& row : rows) {
        const dlViewKey key = tracks.at(row.name).viewKeys.at(row.time);
        EXPECT_EQ(key.interpolateMode, 5);
        EXPECT_EQ(key.position[0], row.first + 100);
        EXPECT_EQ(key.position[2], row.first + 102);
        EXPECT_EQ(key.focalDistance, row.first + 200);
        EXPECT_EQ(key.focalLength, row.first + 201);
        for (int i = 0; i < 16; ++i) {
            EXPECT_EQ(key.modelView[i], row.first + i) << i;
        }
    }
}

TEST(ViewTracks, HoldViewKeysOnly)
{
    const AnimationTracks tracks = tracksOf(document({viewport({camera("0"), viewPoint("0")})}));
    for (const auto& entry : tracks) {
        EXPECT_EQ(entry.second.viewKeys.size(), 1u);
        EXPECT_THAT(entry.second.transforms, IsEmpty());
        EXPECT_THAT(entry.second.visualTransforms, IsEmpty());
        EXPECT_THAT(entry.second.visualStates, IsEmpty());
        EXPECT_THAT(entry.second.lightTracks, IsEmpty());
    }
}

TEST(ViewTracks, AreFiledOnlyForTheTagsThatAreThere)
{
    EXPECT_EQ(keysOf(tracksOf(document({viewport({camera("0")})}))), (Names{L"@CAMERA"}));
    EXPECT_EQ(keysOf(tracksOf(document({viewport({viewPoint("0")})}))), (Names{L"@VIEWPORT"}));
    EXPECT_THAT(tracksOf(document({viewport()})), IsEmpty());
}

TEST(ViewTracks, AreReplacedAsAWhole)
{
    const AnimationTracks tracks =
        tracksOf(document({viewport({camera("0"), camera("1"), camera("2"), viewPoint("7")}),
                           viewport({camera("3"), camera("4")})}));
    EXPECT_EQ(keysOf(tracks.at(L"@CAMERA").viewKeys), (Times{3, 4}));
    EXPECT_EQ(keysOf(tracks.at(L"@VIEWPORT").viewKeys), (Times{7}));
}

TEST(ViewTracks, AreReplacedByALaterAnimationToo)
{
    const AnimationTracks tracks = tracksOf(tag(
        "ROOT", {animation({viewport({camera("0"), camera("1")})}), animation({viewport({camera("5")})})}));
    EXPECT_EQ(keysOf(tracks.at(L"@CAMERA").viewKeys), (Times{5}));
}

TEST(ViewTracks, StayWhenALaterViewportHasNone)
{
    const AnimationTracks tracks = tracksOf(document({viewport({camera("0")}), viewport()}));
    EXPECT_EQ(keysOf(tracks.at(L"@CAMERA").viewKeys), (Times{0}));
}

TEST(ViewTracks, TakeNothingOverFromAComponentOfTheirName)
{
    const AnimationTracks tracks = tracksOf(document(
        {component("@VIEWPORT", {transform("0"), visualState("0", "1")}), viewport({viewPoint("0")})}));
    EXPECT_THAT(tracks.at(L"@VIEWPORT").transforms, IsEmpty());
    EXPECT_THAT(tracks.at(L"@VIEWPORT").visualStates, IsEmpty());
    EXPECT_EQ(tracks.at(L"@VIEWPORT").viewKeys.size(), 1u);
}

TEST(ViewTracks, KeepTheLastKeyOfATimeAndOrderByTime)
{
    const AnimationTracks tracks =
        tracksOf(document({viewport({camera("2"), camera("0", 1), camera("1"), camera("0", 2)})}));
    EXPECT_EQ(keysOf(tracks.at(L"@CAMERA").viewKeys), (Times{0, 1, 2}));
    EXPECT_EQ(tracks.at(L"@CAMERA").viewKeys.at(0).modelView[0], 2);
}

TEST(ViewTracks, AreDroppedByABadKeyButNotTheOtherTag)
{
    const AnimationTracks tracks = tracksUntilError(
        document({viewport({camera("0"), viewPoint("0")}),
                  viewport({viewPoint("5"), camera("1"), camera("2"), camera("3").with("mv4", "x")})}));
    EXPECT_EQ(keysOf(tracks.at(L"@CAMERA").viewKeys), (Times{0}));
    EXPECT_EQ(keysOf(tracks.at(L"@VIEWPORT").viewKeys), (Times{5}));
}

TEST(ViewTracks, OfAFirstBadViewportAreNotThereAtAll)
{
    EXPECT_THAT(tracksUntilError(document({viewport({camera("0"), viewPoint("0").without("pos1")})})),
                IsEmpty());
}

TEST(ViewTracks, OfANestedViewportComeLast)
{
    const AnimationTracks tracks =
        tracksOf(document({viewport({camera("0"), viewport({camera("1", 7)}), camera("2")})}));
    EXPECT_EQ(keysOf(tracks.at(L"@CAMERA").viewKeys), (Times{1}));
}

TEST(ViewTracks, NeedEveryAttribute)
{
    for (const Tag& key : {camera("0"), viewPoint("0")}) {
        for (const auto& attribute : key.attributes) {
            SCOPED_TRACE(key.name + "." + attribute.first);
            EXPECT_THAT(tracksUntilError(document({viewport({key.without(attribute.first)})})), IsEmpty());
        }
    }
}

}  // namespace
