#include <gtest/gtest.h>

#include <vector>

#include "raylume/platform/Text.h"
#include "raylume/scene/dlModel.h"

namespace {

dlModel& withAppearance(dlModel& model, const wchar_t* name, int keyCount)
{
    dlAnimTrackSet& tracks = model.animationTracks[name];
    for (int i = 0; i < keyCount; ++i) {
        tracks.visualTransforms[i].nullVizprop = true;
    }
    return model;
}

dlModel& withVisibility(dlModel& model, const wchar_t* name, const std::vector<int>& values)
{
    dlAnimTrackSet& tracks = model.animationTracks[name];
    double time = 0;
    for (const int value : values) {
        tracks.visualStates[time++].componentVisibility = value;
    }
    return model;
}

class EmptyTable : public testing::TestWithParam<const char*> {};

TEST_P(EmptyTable, AnswersFalse)
{
    dlModel model;
    EXPECT_FALSE(model.compHasAppearanceAnimation(GetParam()));
    EXPECT_FALSE(model.compVisibleInAnimation(GetParam()));
    EXPECT_TRUE(model.animationTracks.empty());
}

INSTANTIATE_TEST_SUITE_P(Names, EmptyTable, testing::Values("", "a-1@t", "@CAMERA", "\xFF"));

struct AppearanceCase {
    const char* name;
    int keyCount;
    bool animated;
};

class AppearanceAnimation : public testing::TestWithParam<AppearanceCase> {};

TEST_P(AppearanceAnimation, IsMoreThanOneSample)
{
    dlModel model;
    withAppearance(model, L"a", GetParam().keyCount);
    EXPECT_EQ(model.compHasAppearanceAnimation("a"), GetParam().animated);
    EXPECT_FALSE(model.compVisibleInAnimation("a"));
}

INSTANTIATE_TEST_SUITE_P(Rows, AppearanceAnimation,
                         testing::Values(AppearanceCase{"no_sample", 0, false},
                                         AppearanceCase{"one_sample_left_by_the_collapse", 1, false},
                                         AppearanceCase{"two_samples", 2, true}),
                         [](const auto& row) { return row.param.name; });

struct VisibilityCase {
    const char* name;
    std::vector<int> values;
    bool visible;
};

class VisibilityAnimation : public testing::TestWithParam<VisibilityCase> {};

TEST_P(VisibilityAnimation, NeedsTwoSamplesAndOneThatIsNotZero)
{
    dlModel model;
    withVisibility(model, L"a", GetParam().values);
    EXPECT_EQ(model.compVisibleInAnimation("a"), GetParam().visible);
    EXPECT_FALSE(model.compHasAppearanceAnimation("a"));
}

INSTANTIATE_TEST_SUITE_P(Rows, VisibilityAnimation,
                         testing::Values(VisibilityCase{"no_sample", {}, false},
                                         VisibilityCase{"one_visible_sample", {1}, false},
                                         VisibilityCase{"never_visible", {0, 0}, false},
                                         VisibilityCase{"visible_at_the_end", {0, 1}, true},
                                         VisibilityCase{"visible_at_the_start", {1, 0}, true},
                                         VisibilityCase{"visible_in_the_middle", {0, 0, 1, 0}, true},
                                         VisibilityCase{"any_other_number_is_visible", {0, -1}, true}),
                         [](const auto& row) { return row.param.name; });

TEST(AnimationQueries, NamesAreTakenExactly)
{
    dlModel model;
    withVisibility(withAppearance(model, L"Part-1@Top", 2), L"Part-1@Top", {0, 1});
    for (const char* name :
         {"part-1@top", "Part-1@Top ", " Part-1@Top", "Part-1@To", "Top/Part-1@Top", ""}) {
        EXPECT_FALSE(model.compHasAppearanceAnimation(name)) << name;
        EXPECT_FALSE(model.compVisibleInAnimation(name)) << name;
    }
    EXPECT_TRUE(model.compHasAppearanceAnimation("Part-1@Top"));
    EXPECT_TRUE(model.compVisibleInAnimation("Part-1@Top"));
}

TEST(AnimationQueries, UnknownNamesDoNotEnterTheTable)
{
    dlModel model;
    withAppearance(model, L"a", 2);
    EXPECT_FALSE(model.compHasAppearanceAnimation("b"));
    EXPECT_EQ(model.animationTracks.size(), 1u);
}

TEST(AnimationQueries, NamesAreWidenedWithTheCodePage)
{
    dlModel model;
    withAppearance(model, L"\u00E9", 2);
    EXPECT_TRUE(model.compHasAppearanceAnimation("\xC3\xA9"));
    EXPECT_FALSE(model.compHasAppearanceAnimation("\xE9"));
    ASSERT_TRUE(platform::setAnsiCodePage(1252));
    EXPECT_TRUE(model.compHasAppearanceAnimation("\xE9"));
    EXPECT_TRUE(platform::setAnsiCodePage(65001));
}

// Narrowed, such a name is "?", which is another component.
TEST(AnimationQueries, NamesOutsideTheCodePageAreNotFound)
{
    dlModel model;
    withAppearance(model, L"\u6F22", 2);
    ASSERT_TRUE(platform::setAnsiCodePage(1252));
    EXPECT_FALSE(model.compHasAppearanceAnimation(platform::narrow(L"\u6F22")));
    EXPECT_TRUE(platform::setAnsiCodePage(65001));
}

class GlobalTrack : public testing::TestWithParam<const wchar_t*> {};

TEST_P(GlobalTrack, HasNeitherAppearanceNorVisibility)
{
    dlModel model;
    dlAnimTrackSet& tracks = model.animationTracks[GetParam()];
    tracks.viewKeys[0];
    tracks.viewKeys[1];
    tracks.lightTracks[0][0];
    tracks.transforms[0];
    tracks.transforms[1];
    EXPECT_FALSE(model.compHasAppearanceAnimation(platform::narrow(GetParam())));
    EXPECT_FALSE(model.compVisibleInAnimation(platform::narrow(GetParam())));
}

INSTANTIATE_TEST_SUITE_P(Names, GlobalTrack, testing::Values(L"@CAMERA", L"@VIEWPORT", L"@LIGHTS"));

TEST(AnimationDocument, WithoutASideFileNothingIsRead)
{
    dlModel model;
    EXPECT_TRUE(model.readAnimationXML(L"no such folder/no such document.glb"));
    EXPECT_TRUE(model.animationTracks.empty());
}

}  // namespace
