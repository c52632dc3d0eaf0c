#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>

#include "raylume/animation/TrackReaders.h"
#include "tests/animation/SideFile.h"

using testing::IsEmpty;

namespace {

dlAnimTrackSet tracksOfComponent(std::vector<Tag> keys)
{
    const AnimationTracks tracks = tracksOf(document({component("a", std::move(keys))}));
    EXPECT_EQ(keysOf(tracks), (Names{L"a"}));
    return tracks.at(L"a");
}

TEST(ComponentTracks, HoldEveryFieldOfAppearance)
{
    const dlAnimTrackSet tracks = tracksOfComponent({visualTransform("1.5")});
    const dlVisualTransformKey key = tracks.visualTransforms.at(1.5);
    EXPECT_EQ(key.interpolateMode, 2);
    EXPECT_EQ(key.red, 0.25);
    EXPECT_EQ(key.green, 0.5);
    EXPECT_EQ(key.blue, 0.75);
    EXPECT_EQ(key.transparency, 0.125);
    EXPECT_TRUE(key.nullVizprop);
    EXPECT_THAT(tracks.transforms, IsEmpty());
    EXPECT_THAT(tracks.visualStates, IsEmpty());
    EXPECT_THAT(tracks.viewKeys, IsEmpty());
    EXPECT_THAT(tracks.lightTracks, IsEmpty());
}

TEST(ComponentTracks, HoldMatricesInTheOrderOfTheFile)
{
    const dlAnimTrackSet tracks = tracksOfComponent({transform("-1", 100)});
    const dlTransformKey key = tracks.transforms.at(-1);
    EXPECT_EQ(key.interpolateMode, 3);
    for (int i = 0; i < 16; ++i) {
        EXPECT_EQ(key.matrix[i], 100 + i) << i;
    }
}

TEST(ComponentTracks, FindAttributesInAnyOrder)
{
    Tag key = transform("7", 0);
    std::sort(key.attributes.begin(), key.attributes.end());
    Tag reversed = transform("8", 0);
    std::reverse(reversed.attributes.begin(), reversed.attributes.end());
    const dlAnimTrackSet tracks = tracksOfComponent({key, reversed});
    for (const double time : {7.0, 8.0}) {
        for (int i = 0; i < 16; ++i) {
            EXPECT_EQ(tracks.transforms.at(time).matrix[i], i) << time << " " << i;
        }
    }
}

TEST(ComponentTracks, HoldVisibility)
{
    const dlAnimTrackSet tracks = tracksOfComponent({visualState("0", "0"), visualState("1", "-5")});
    EXPECT_EQ(tracks.visualStates.at(0).interpolateMode, 4);
    EXPECT_EQ(tracks.visualStates.at(0).componentVisibility, 0);
    EXPECT_EQ(tracks.visualStates.at(1).componentVisibility, -5);
}

TEST(ComponentTracks, KeepTheModeAsItWasRead)
{
    const dlAnimTrackSet tracks = tracksOfComponent({transform("0").with("InterpolateMode", "0"),
                                                     transform("1").with("InterpolateMode", "-3"),
                                                     visualState("0", "1").with("InterpolateMode", "0"),
                                                     visualTransform("0").with("InterpolateMode", "0")});
    EXPECT_EQ(tracks.transforms.at(0).interpolateMode, 0);
    EXPECT_EQ(tracks.transforms.at(1).interpolateMode, -3);
    EXPECT_EQ(tracks.visualStates.at(0).interpolateMode, 0);
    EXPECT_EQ(tracks.visualTransforms.at(0).interpolateMode, 0);
}

TEST(ComponentTracks, AreOrderedByTime)
{
    const dlAnimTrackSet tracks = tracksOfComponent(
        {transform("2"), transform("0"), transform("1"), transform("-1e3"), transform("10")});
    EXPECT_EQ(keysOf(tracks.transforms), (Times{-1000, 0, 1, 2, 10}));
}

TEST(ComponentTracks, KeepTheLastKeyOfATime)
{
    const dlAnimTrackSet tracks =
        tracksOfComponent({transform("0.5", 1), transform("5e-1", 2), transform("-0", 3), transform("0", 4),
                           visualState("1", "1"), visualState("1.0", "0"), visualTransform("1", "1", "0"),
                           visualTransform("1", "0.5", "0")});
    EXPECT_EQ(keysOf(tracks.transforms), (Times{0, 0.5}));
    EXPECT_EQ(tracks.transforms.at(0.5).matrix[0], 2);
    EXPECT_EQ(tracks.transforms.at(0).matrix[0], 4);
    EXPECT_EQ(tracks.visualStates.at(1).componentVisibility, 0);
    EXPECT_EQ(tracks.visualTransforms.at(1).red, 0.5);
}

TEST(ComponentTracks, WithoutElementsAreFiledEmpty)
{
    const dlAnimTrackSet tracks = tracksOfComponent({});
    EXPECT_THAT(tracks.visualTransforms, IsEmpty());
    EXPECT_THAT(tracks.transforms, IsEmpty());
    EXPECT_THAT(tracks.visualStates, IsEmpty());
}

struct NullCase {
    const char* name;
    const char* value;
    bool isNull;
};

class NullVizprop : public testing::TestWithParam<NullCase> {};

TEST_P(NullVizprop, IsAboveAThreshold)
{
    const dlAnimTrackSet tracks = tracksOfComponent({visualTransform("0", "0.5", GetParam().value)});
    EXPECT_EQ(tracks.visualTransforms.at(0).nullVizprop, GetParam().isNull);
}

INSTANTIATE_TEST_SUITE_P(Rows, NullVizprop,
                         testing::Values(NullCase{"threshold_itself", "0.99", false},
                                         NullCase{"just_above", "0.9900001", true},
                                         NullCase{"next_double_above", "0.99000000000000010", true},
                                         NullCase{"one", "1", true}, NullCase{"two", "2", true},
                                         NullCase{"zero", "0", false}, NullCase{"negative", "-1", false}),
                         [](const auto& row) { return row.param.name; });

TEST(NullVizprop, IsANumberAndNoWord)
{
    EXPECT_THAT(tracksUntilError(document({component("a", {visualTransform("0", "0.5", "true")})})),
                IsEmpty());
}

struct CollapseCase {
    const char* name;
    std::vector<Tag> keys;
    Times left;
};

class Collapse : public testing::TestWithParam<CollapseCase> {};

TEST_P(Collapse, LeavesTheKeysThatDiffer)
{
    EXPECT_EQ(keysOf(tracksOfComponent(GetParam().keys).visualTransforms), GetParam().left);
}

Tag coloured(const std::string& time, const std::string& red, const std::string& attribute = "Red")
{
    return visualTransform(time).with(attribute, red);
}

// The tolerance is 9.999999974752427e-07: a step of exactly 1e-6 from 0 is above it, though not
// above 0.000001.
INSTANTIATE_TEST_SUITE_P(
    Rows, Collapse,
    testing::Values(
        CollapseCase{"no_key", {}, {}}, CollapseCase{"one_key", {visualTransform("5")}, {5}},
        CollapseCase{"one_key_with_an_appearance", {visualTransform("5", "0.5", "0")}, {5}},
        CollapseCase{"constant", {visualTransform("0"), visualTransform("1"), visualTransform("2")}, {0}},
        CollapseCase{"within_tolerance",
                     {coloured("0", "0.25"), coloured("1", "0.2500005"), coloured("2", "0.250001")},
                     {0}},
        CollapseCase{"middle_key_stands_out",
                     {coloured("0", "0.25"), coloured("1", "0.75"), coloured("2", "0.25")},
                     {0, 1, 2}},
        CollapseCase{"slow_drift",
                     {coloured("0", "0"), coloured("1", "9e-7"), coloured("2", "18e-7"),
                      coloured("3", "27e-7"), coloured("4", "36e-7")},
                     {0}},
        CollapseCase{"step_after_a_drift",
                     {coloured("0", "0"), coloured("1", "9e-7"), coloured("2", "1"), coloured("3", "1")},
                     {0, 2}},
        CollapseCase{
            "tolerance_itself", {coloured("0", "0"), coloured("1", "9.999999974752427e-07")}, {0, 1}},
        CollapseCase{
            "just_below_the_tolerance", {coloured("0", "0"), coloured("1", "9.999999974752425e-07")}, {0}},
        CollapseCase{"between_the_float_and_the_double",
                     {coloured("0", "0"), coloured("1", "9.999999999e-07")},
                     {0, 1}},
        CollapseCase{
            "differences_are_doubles", {coloured("0", "100"), coloured("1", "100.000002")}, {0, 1}},
        CollapseCase{"negative_step", {coloured("0", "0.9"), coloured("1", "0.1")}, {0, 1}},
        CollapseCase{"green_counts", {visualTransform("0"), coloured("1", "0.6", "Green")}, {0, 1}},
        CollapseCase{"blue_counts", {visualTransform("0"), coloured("1", "0.8", "Blue")}, {0, 1}},
        CollapseCase{
            "transparency_counts", {visualTransform("0"), coloured("1", "0.2", "Transparency")}, {0, 1}},
        CollapseCase{"mode_does_not", {visualTransform("0"), coloured("1", "9", "InterpolateMode")}, {0}},
        CollapseCase{"one_appearance_keeps_all",
                     {visualTransform("0"), visualTransform("1"), visualTransform("2", "0.25", "0")},
                     {0, 1, 2}},
        CollapseCase{"first_appearance_keeps_all",
                     {visualTransform("0", "0.25", "0"), visualTransform("1"), visualTransform("2")},
                     {0, 1, 2}},
        CollapseCase{"goes_by_time_not_by_file",
                     {coloured("2", "1"), coloured("0", "1"), coloured("1", "0"), coloured("3", "1")},
                     {0, 1, 2}},
        CollapseCase{"replaced_appearance_keeps_nothing",
                     {visualTransform("0"), visualTransform("1", "0.25", "0"), visualTransform("1")},
                     {0}}),
    [](const auto& row) { return row.param.name; });

TEST(Collapse, IsForAppearanceOnly)
{
    const dlAnimTrackSet tracks =
        tracksOfComponent({transform("0"), transform("1"), transform("2"), visualState("0", "1"),
                           visualState("1", "1"), visualTransform("0"), visualTransform("1")});
    EXPECT_EQ(tracks.transforms.size(), 3u);
    EXPECT_EQ(tracks.visualStates.size(), 2u);
    EXPECT_EQ(tracks.visualTransforms.size(), 1u);
}

TEST(Collapse, LeavesTheFirstKeyAsItIs)
{
    const dlAnimTrackSet tracks =
        tracksOfComponent({coloured("1", "0.2500001"), coloured("0", "0.25").with("InterpolateMode", "9")});
    EXPECT_EQ(tracks.visualTransforms.at(0).red, 0.25);
    EXPECT_EQ(tracks.visualTransforms.at(0).interpolateMode, 9);
}

// The outer component's own collapse must not show in the inner one's keys, nor the other way round.
TEST(Collapse, IsByComponent)
{
    const AnimationTracks tracks = tracksOf(
        document({component("outer", {component("inner", {visualTransform("0"), visualTransform("1")}),
                                      visualTransform("2", "0.25", "0")})}));
    EXPECT_EQ(keysOf(tracks.at(L"outer").visualTransforms), (Times{0, 1, 2}));
    EXPECT_EQ(keysOf(tracks.at(L"inner").visualTransforms), (Times{0}));
}

}  // namespace
