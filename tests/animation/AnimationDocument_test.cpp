#include "raylume/animation/AnimationDocument.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <clocale>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "raylume/platform/NumberText.h"
#include "raylume/platform/Text.h"
#include "raylume/scene/dlModel.h"
#include "tests/animation/SideFile.h"
#include "tests/platform/ScopedEnvironment.h"
#include "tests/platform/TemporaryFolder.h"

using testing::IsEmpty;

namespace {

struct PathCase {
    const char* name;
    std::wstring document;
    std::wstring sideFile;
};

class SideFilePath : public testing::TestWithParam<PathCase> {};

TEST_P(SideFilePath, IsInTheFolderOfTheDocument)
{
    EXPECT_EQ(sideFilePath(GetParam().document), GetParam().sideFile);
}

const std::wstring kLongFolder = L"C:\\" + std::wstring(1000, L'x') + L"\\";

INSTANTIATE_TEST_SUITE_P(
    Rows, SideFilePath,
    testing::Values(PathCase{"part", L"C:\\a\\x.prt", L"C:\\a\\_rlAnimData.xml"},
                    PathCase{"assembly", L"C:\\a\\y.asm", L"C:\\a\\_rlAnimData.xml"},
                    PathCase{"mixed_separators", L"C:\\a/b.prt", L"C:\\a/_rlAnimData.xml"},
                    PathCase{"slash_before_backslash", L"/a\\b.prt", L"/a\\_rlAnimData.xml"},
                    PathCase{"name_alone", L"b.prt", L"_rlAnimData.xml"},
                    PathCase{"name_on_a_drive", L"C:b.prt", L"C:_rlAnimData.xml"},
                    PathCase{"folder_on_a_drive", L"C:a\\b.prt", L"C:a\\_rlAnimData.xml"},
                    PathCase{"root", L"/b.prt", L"/_rlAnimData.xml"},
                    PathCase{"doubled_separators", L"C:\\a\\\\b.prt", L"C:\\a\\\\_rlAnimData.xml"},
                    PathCase{"folder_alone", L"C:\\a\\", L"C:\\a\\_rlAnimData.xml"},
                    PathCase{"dots_in_the_folder", L"a.b\\..\\c.prt", L"a.b\\..\\_rlAnimData.xml"},
                    PathCase{"no_ending", L"a\\b", L"a\\_rlAnimData.xml"},
                    PathCase{"nothing", L"", L"_rlAnimData.xml"},
                    PathCase{"one_letter", L":", L"_rlAnimData.xml"},
                    PathCase{"ends_at_a_zero", std::wstring(L"a\\b\0c\\d", 7), L"a\\_rlAnimData.xml"},
                    PathCase{"long", kLongFolder + L"b.prt", kLongFolder + L"_rlAnimData.xml"}),
    [](const auto& row) { return row.param.name; });

TEST(AnimationFile, IsFoundBesideTheDocument)
{
    const TemporaryFolder folder;
    folder.write("_rlAnimData.xml", document({component("a", {transform("0")})}).text());
    for (const wchar_t* name : {L"/x.prt", L"\\y.asm", L"/"}) {
        dlModel model;
        EXPECT_TRUE(model.readAnimationXML(folder.wide() + name));
        EXPECT_EQ(keysOf(model.animationTracks), (Names{L"a"})) << name;
    }
}

TEST(AnimationFile, InAFolderWithAForeignNameIsFound)
{
    const TemporaryFolder folder;
    const std::string inner = folder.makeFolder("\u6F22\u5B57 \u00E9");
    folder.write("\u6F22\u5B57 \u00E9/_rlAnimData.xml", document({component("a")}).text());
    dlModel model;
    EXPECT_TRUE(model.readAnimationXML(platform::fromUtf8(inner) + L"\\x.prt"));
    EXPECT_EQ(model.animationTracks.size(), 1u);
}

TEST(AnimationFile, FarDownIsFound)
{
    const TemporaryFolder folder;
    std::string deep;
    for (int i = 0; i < 20; ++i) {
        deep += std::string(40, 'd') + "/";
    }
    folder.makeFolder(deep);
    folder.write(deep + "_rlAnimData.xml", document({component("a")}).text());
    dlModel model;
    EXPECT_TRUE(model.readAnimationXML(folder.wide() + L"/" + platform::fromUtf8(deep) + L"x.prt"));
    EXPECT_EQ(model.animationTracks.size(), 1u);
}

TEST(AnimationFile, ThatIsMissingIsNoError)
{
    const TemporaryFolder folder;
    dlModel model;
    EXPECT_TRUE(model.readAnimationXML(folder.wide() + L"/x.prt"));
    EXPECT_TRUE(model.readAnimationXML(folder.wide() + L"/none/x.prt"));
    EXPECT_THAT(model.animationTracks, IsEmpty());
}

// A pipe would make the load wait for a writer.
TEST(AnimationFile, ThatIsNoFileIsNotOpened)
{
    const TemporaryFolder folder;
    folder.makeFolder("a/_rlAnimData.xml");
    folder.makeFolder("b");
    ASSERT_EQ(std::system(("mkfifo '" + (folder / "b/_rlAnimData.xml") + "'").c_str()), 0);
    dlModel model;
    EXPECT_TRUE(model.readAnimationXML(folder.wide() + L"/a/x.prt"));
    EXPECT_TRUE(model.readAnimationXML(folder.wide() + L"/b/x.prt"));
    EXPECT_THAT(model.animationTracks, IsEmpty());
}

TEST(AnimationFile, IsLeftAsItIs)
{
    const TemporaryFolder folder;
    const std::string xml = document({component("a", {transform("0")})}).text();
    const std::string path = folder.write("_rlAnimData.xml", xml);
    dlModel model;
    EXPECT_TRUE(model.readAnimationXML(folder.wide() + L"/x.prt"));
    EXPECT_EQ(readFile(path), xml);
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.path()), {}), 1);
}

TEST(AnimationFile, WithAnErrorAnswersFalseAndKeepsTheRest)
{
    const TemporaryFolder folder;
    folder.write("_rlAnimData.xml",
                 document({component("a"), component("b", {transform("0").without("m3")})}).text());
    dlModel model;
    EXPECT_FALSE(model.readAnimationXML(folder.wide() + L"/x.prt"));
    EXPECT_EQ(keysOf(model.animationTracks), (Names{L"a"}));
}

TEST(AnimationWalk, RootMayHaveAnyNameButIsNoAnimationItself)
{
    const Tag content = component("a", {transform("0")});
    EXPECT_EQ(tracksOf(tag("ANIMATION", {content})).size(), 0u);
    EXPECT_EQ(tracksOf(tag("COMPONENT", {animation({content})})).size(), 1u);
    EXPECT_EQ(tracksOf(tag("x", {animation({content})})).size(), 1u);
    EXPECT_EQ(tracksOf(tag("ANIMATION", {animation({content})})).size(), 1u);
}

TEST(AnimationWalk, ElementsMayLieDeeperThanTheyNeedTo)
{
    const Tag key = tag("w", {tag("w", {transform("0")})});
    const Tag part = tag("w", {component("a", {key})});
    const AnimationTracks tracks =
        tracksOf(tag("r", {tag("r", {tag("r", {tag("r", {animation({part})})})})}));
    ASSERT_EQ(keysOf(tracks), (Names{L"a"}));
    EXPECT_EQ(tracks.at(L"a").transforms.size(), 1u);
}

TEST(AnimationWalk, NothingCountsOutsideOfItsParent)
{
    const AnimationTracks tracks =
        tracksOf(tag("ROOT", {component("out"), viewport({camera("0")}), light({lightKey("0", 1, 1)}),
                              animation({camera("0"), transform("0"), lightKey("0", 1, 1)})}));
    EXPECT_THAT(tracks, IsEmpty());
}

TEST(AnimationWalk, WithoutAnAnimationThereIsNothing)
{
    EXPECT_THAT(tracksOf(tag("ROOT")), IsEmpty());
    EXPECT_THAT(tracksOf(tag("ROOT", {component("a", {transform("0")})})), IsEmpty());
}

// Components, then viewports, then lights, whatever their order in the file: here by who replaces whom.
TEST(AnimationWalk, TakesThreePassesOverAnAnimation)
{
    const AnimationTracks tracks = tracksOf(
        document({light({lightKey("0", 1, 1)}), viewport({camera("0")}),
                  component("@CAMERA", {transform("0")}), component("@LIGHTS", {transform("0")})}));
    EXPECT_EQ(tracks.at(L"@CAMERA").viewKeys.size(), 1u);
    EXPECT_THAT(tracks.at(L"@CAMERA").transforms, IsEmpty());
    EXPECT_EQ(tracks.at(L"@LIGHTS").transforms.size(), 1u);
    EXPECT_EQ(tracks.at(L"@LIGHTS").lightTracks.size(), 1u);
}

TEST(AnimationWalk, SharesOneSpaceOfNames)
{
    const AnimationTracks tracks = tracksOf(
        tag("ROOT", {animation({viewport({camera("0"), viewPoint("0")}), light({lightKey("0", 1, 1)})}),
                     animation({component("@CAMERA"), component("@VIEWPORT", {transform("0")}),
                                component("@LIGHTS")})}));
    EXPECT_EQ(keysOf(tracks), (Names{L"@CAMERA", L"@LIGHTS", L"@VIEWPORT"}));
    EXPECT_THAT(tracks.at(L"@CAMERA").viewKeys, IsEmpty());
    EXPECT_THAT(tracks.at(L"@VIEWPORT").viewKeys, IsEmpty());
    EXPECT_EQ(tracks.at(L"@VIEWPORT").transforms.size(), 1u);
    EXPECT_THAT(tracks.at(L"@LIGHTS").lightTracks, IsEmpty());
}

TEST(AnimationWalk, ReadsNestedComponentsTwice)
{
    const AnimationTracks tracks = tracksOf(document({component(
        "outer", {transform("0", 10), component("inner", {transform("1", 20), transform("2", 30)}),
                  visualState("5", "1")})}));
    EXPECT_EQ(keysOf(tracks.at(L"outer").transforms), (Times{0, 1, 2}));
    EXPECT_EQ(keysOf(tracks.at(L"inner").transforms), (Times{1, 2}));
    EXPECT_EQ(tracks.at(L"outer").transforms.at(2).matrix[15], 45);
    EXPECT_EQ(tracks.at(L"inner").transforms.at(2).matrix[15], 45);
    EXPECT_EQ(tracks.at(L"inner").transforms.at(1).interpolateMode, 3);
    EXPECT_THAT(tracks.at(L"inner").visualStates, IsEmpty());
}

// The inner keys were met before, under an outer time that a later element replaces.
TEST(AnimationWalk, NestedComponentsKeepTheirOwnKeyOfATime)
{
    const AnimationTracks tracks = tracksOf(document({component(
        "outer", {component("x", {transform("0", 10), visualTransform("0", "1"), visualState("0", "7")}),
                  component("y", {transform("0", 20), visualTransform("0", "2"), visualState("0", "8")}),
                  transform("0", 30)})}));
    EXPECT_EQ(tracks.at(L"outer").transforms.at(0).matrix[0], 30);
    EXPECT_EQ(tracks.at(L"x").transforms.at(0).matrix[0], 10);
    EXPECT_EQ(tracks.at(L"y").transforms.at(0).matrix[0], 20);
    EXPECT_EQ(tracks.at(L"x").visualTransforms.at(0).red, 1);
    EXPECT_EQ(tracks.at(L"y").visualTransforms.at(0).red, 2);
    EXPECT_EQ(tracks.at(L"x").visualStates.at(0).componentVisibility, 7);
    EXPECT_EQ(tracks.at(L"y").visualStates.at(0).componentVisibility, 8);
}

TEST(AnimationWalk, ReadsANestedAnimationAgain)
{
    const Tag inner = animation({component("a", {transform("0", 1)}), light({lightKey("0", 1, 1)})});
    const Tag outer = animation({inner, component("a", {transform("1", 2)}),
                                 component("b", {transform("2")}), light({lightKey("0", 1, 3)})});
    const AnimationTracks tracks = tracksOf(tag("ROOT", {outer}));
    EXPECT_EQ(keysOf(tracks), (Names{L"@LIGHTS", L"a", L"b"}));
    // The inner one comes last, and its component replaces the one behind it in the file.
    EXPECT_EQ(keysOf(tracks.at(L"a").transforms), (Times{0}));
    EXPECT_EQ(tracks.at(L"a").transforms.at(0).matrix[0], 1);
    EXPECT_EQ(tracks.at(L"@LIGHTS").lightTracks.at(1).at(0).lightType, 1);
}

TEST(AnimationWalk, TheLastComponentOfANameReplacesTheFirst)
{
    const AnimationTracks tracks = tracksOf(
        document({component("a", {transform("0"), visualState("0", "1")}), component("a", {transform("1")}),
                  component("b", {transform("0")}), component("b")}));
    EXPECT_EQ(keysOf(tracks.at(L"a").transforms), (Times{1}));
    EXPECT_THAT(tracks.at(L"a").visualStates, IsEmpty());
    EXPECT_THAT(tracks.at(L"b").transforms, IsEmpty());
}

TEST(AnimationWalk, AnErrorEndsItAndLeavesWhatWasRead)
{
    const AnimationTracks tracks = tracksUntilError(tag(
        "ROOT",
        {animation({component("1", {transform("0")}), component("2", {visualState("0", "1")}),
                    component("3", {visualTransform("0"), transform("0").without("m7")}), component("4"),
                    component("5"), viewport({camera("0")}), light({lightKey("0", 1, 1)})}),
         animation({component("6")})}));
    EXPECT_EQ(keysOf(tracks), (Names{L"1", L"2"}));
    EXPECT_EQ(tracks.at(L"1").transforms.size(), 1u);
}

// The bad element of the inner one is met with the outer one already.
TEST(AnimationWalk, AnErrorOfANestedComponentFailsTheOuterOne)
{
    const AnimationTracks tracks = tracksUntilError(document(
        {component("a"), component("outer", {component("inner", {transform("0").without("Time")})})}));
    EXPECT_EQ(keysOf(tracks), (Names{L"a"}));
}

TEST(AnimationWalk, AnErrorLeavesAnEarlierEntryOfThatName)
{
    const AnimationTracks tracks = tracksUntilError(
        document({component("a", {transform("0")}), component("a", {transform("1").with("m0", "")})}));
    EXPECT_EQ(keysOf(tracks.at(L"a").transforms), (Times{0}));
}

TEST(AnimationNames, MissingAndEmptyAreTheSame)
{
    const AnimationTracks tracks = tracksOf(
        document({tag("COMPONENT", {transform("0")}), component("", {transform("1")}), component("a")}));
    EXPECT_EQ(keysOf(tracks), (Names{L"", L"a"}));
    EXPECT_EQ(keysOf(tracks.at(L"").transforms), (Times{1}));
}

TEST(AnimationNames, AreTakenAsTheyStand)
{
    const AnimationTracks tracks = tracksOf(
        document({component(" a "), component("A"), component("a"), component("Render##TOP##"),
                  component("\u00E9\u6F22\U0001F600"), component("&lt;&amp;&#65;"), component("a\tb"),
                  component("a&#9;b"), component("1.50"), tag("COMPONENT").with("name", "lower case")}));
    EXPECT_EQ(keysOf(tracks), (Names{L"", L" a ", L"1.50", L"<&A", L"A", L"Render##TOP##", L"a", L"a\tb",
                                     L"a b", L"\u00E9\u6F22\U0001F600"}));
}

TEST(AnimationNames, OfElementsAndAttributesAreCaseSensitive)
{
    Tag lower = component("a", {transform("0")});
    lower.children[0].name = "transform";
    EXPECT_THAT(tracksOf(document({lower})).at(L"a").transforms, IsEmpty());
    lower.name = "Component";
    EXPECT_THAT(tracksOf(document({lower})), IsEmpty());
    EXPECT_THAT(
        tracksUntilError(document({component("a", {transform("0").without("Time").with("time", "0")})})),
        IsEmpty());
}

TEST(AnimationNames, ComeWithTheirPrefix)
{
    AnimationTracks tracks;
    EXPECT_TRUE(readSideFile(R"(<r xmlns:p="u"><ANIMATION xmlns="v"><p:COMPONENT Name="a"/>)"
                             R"(<COMPONENT xmlns="u" Name="b" p:Name="c"/></ANIMATION></r>)",
                             tracks));
    EXPECT_EQ(keysOf(tracks), (Names{L"b"}));
}

TEST(AnimationAttributes, ThatNobodyAsksForMayHoldAnything)
{
    Tag key = transform("0").with("Extra", "x").with("InterpolateMode2", "");
    for (int i = 0; i < 16; ++i) {
        key = key.with("pz" + std::to_string(i), i % 2 ? "no number" : "");
    }
    const AnimationTracks tracks = tracksOf(document({component("a", {key}).with("Time", "x")}));
    EXPECT_EQ(tracks.at(L"a").transforms.size(), 1u);
}

struct ValueCase {
    const char* name;
    const char* attribute;
    const char* value;
};

class BadAttribute : public testing::TestWithParam<ValueCase> {};

TEST_P(BadAttribute, IsAnError)
{
    const Tag key = transform("0").with(GetParam().attribute, GetParam().value);
    EXPECT_THAT(tracksUntilError(document({component("a", {key})})), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(
    Rows, BadAttribute,
    testing::Values(ValueCase{"empty", "m0", ""}, ValueCase{"blank", "m0", " "},
                    ValueCase{"word", "m0", "abc"}, ValueCase{"number_and_word", "m0", "1.5abc"},
                    ValueCase{"infinity", "Time", "INF"}, ValueCase{"no_number", "Time", "NaN"},
                    ValueCase{"hexadecimal", "m0", "0x1p3"}, ValueCase{"too_large", "m0", "1e400"},
                    ValueCase{"integer_beyond_32_bits", "InterpolateMode", "2147483648"},
                    ValueCase{"integer_below_32_bits", "InterpolateMode", "-2147483649"},
                    ValueCase{"empty_integer", "InterpolateMode", ""}),
    [](const auto& row) { return row.param.name; });

TEST(AnimationAttributes, AreAllRequired)
{
    const Tag keys[] = {visualTransform("0"), transform("0"), visualState("0", "1")};
    for (const Tag& key : keys) {
        for (const auto& attribute : key.attributes) {
            SCOPED_TRACE(key.name + "." + attribute.first);
            EXPECT_THAT(tracksUntilError(document({component("a", {key.without(attribute.first)})})),
                        IsEmpty());
        }
    }
}

TEST(AnimationAttributes, TakeAllFormsOfNumbers)
{
    const Tag key =
        transform(" +1.5e1 ").with("InterpolateMode", "-2.5").with("m0", "1e-400").with("m1", ".5");
    const AnimationTracks tracks = tracksOf(document({component("a", {key})}));
    ASSERT_EQ(keysOf(tracks.at(L"a").transforms), (Times{15}));
    EXPECT_EQ(tracks.at(L"a").transforms.at(15).interpolateMode, -2);
    EXPECT_EQ(tracks.at(L"a").transforms.at(15).matrix[0], 0);
    EXPECT_EQ(tracks.at(L"a").transforms.at(15).matrix[1], 0.5);
}

// A separator of the user's is one for integers only.
TEST(AnimationLocale, CountsForIntegersOnly)
{
    const Tag root = document({component("a", {transform("0.5").with("InterpolateMode", "1.234,5")})});
    platform::setNumberSeparators(L',', L'.');
    const AnimationTracks tracks = tracksOf(root);
    platform::resetNumberSeparators();
    ASSERT_EQ(keysOf(tracks.at(L"a").transforms), (Times{0.5}));
    EXPECT_EQ(tracks.at(L"a").transforms.at(0.5).interpolateMode, 1234);
    platform::setNumberSeparators(L'.', L',');
    EXPECT_THAT(tracksUntilError(root), IsEmpty());
    platform::resetNumberSeparators();
}

TEST(AnimationLocale, OfTheUserCountsForIntegers)
{
    const ScopedVariable all("LC_ALL", "de_DE.UTF-8");
    const AnimationTracks tracks =
        tracksOf(document({component("a", {transform("0.5").with("InterpolateMode", "1.234,5")})}));
    EXPECT_EQ(tracks.at(L"a").transforms.at(0.5).interpolateMode, 1234);
}

TEST(AnimationLocale, OfTheProcessDoesNotCount)
{
    const TemporaryFolder folder;
    const std::string build = "localedef -i de_DE -f UTF-8 '" + (folder / "de_DE.UTF-8") + "'";
    ASSERT_EQ(std::system(build.c_str()), 0) << "the sources of locales are missing";
    const ScopedVariable locales("LOCPATH", folder.path());
    const std::string before = std::setlocale(LC_ALL, nullptr);
    ASSERT_STREQ(std::setlocale(LC_ALL, "de_DE.UTF-8"), "de_DE.UTF-8");
    const AnimationTracks tracks = tracksOf(
        document({component("a", {transform("0.5").with("m3", "1.25").with("InterpolateMode", "2.5")})}));
    std::setlocale(LC_ALL, before.c_str());
    ASSERT_EQ(keysOf(tracks.at(L"a").transforms), (Times{0.5}));
    EXPECT_EQ(tracks.at(L"a").transforms.at(0.5).matrix[3], 1.25);
    EXPECT_EQ(tracks.at(L"a").transforms.at(0.5).interpolateMode, 2);
}

TEST(AnimationTable, IsAddedToAndNotCleared)
{
    AnimationTracks tracks;
    EXPECT_TRUE(readSideFile(document({component("a", {transform("0")}), component("b", {transform("0")}),
                                       light({lightKey("0", 1, 1)})})
                                 .text(),
                             tracks));
    EXPECT_TRUE(readSideFile(
        document({component("b", {transform("1")}), component("c"), light({lightKey("1", 1, 1)})}).text(),
        tracks));
    EXPECT_EQ(keysOf(tracks), (Names{L"@LIGHTS", L"a", L"b", L"c"}));
    EXPECT_EQ(keysOf(tracks[L"a"].transforms), (Times{0}));
    EXPECT_EQ(keysOf(tracks[L"b"].transforms), (Times{1}));
    EXPECT_EQ(keysOf(tracks[L"@LIGHTS"].lightTracks.at(1)), (Times{0, 1}));

    EXPECT_FALSE(readSideFile(document({component("d"), component("a", {transform("x")})}).text(), tracks));
    EXPECT_EQ(keysOf(tracks), (Names{L"@LIGHTS", L"a", L"b", L"c", L"d"}));
    EXPECT_EQ(keysOf(tracks[L"a"].transforms), (Times{0}));
}

TEST(AnimationTable, IsEmptyInANewModelAndCopiedDeeply)
{
    dlModel model;
    EXPECT_THAT(model.animationTracks, IsEmpty());
    EXPECT_TRUE(
        readSideFile(document({component("a", {transform("0", 1)}), light({lightKey("0", 1, 1)})}).text(),
                     model.animationTracks));
    dlModel copy(model);
    dlModel assigned;
    assigned.animationTracks[L"goes"];
    assigned = model;
    EXPECT_EQ(keysOf(assigned.animationTracks), (Names{L"@LIGHTS", L"a"}));
    copy.animationTracks[L"a"].transforms[0].matrix[0] = 99;
    assigned.animationTracks[L"@LIGHTS"].lightTracks.clear();
    assigned.animationTracks.erase(L"a");
    EXPECT_EQ(model.animationTracks[L"a"].transforms[0].matrix[0], 1);
    EXPECT_EQ(model.animationTracks[L"@LIGHTS"].lightTracks.size(), 1u);
}

// In memory the mode is first, though some readers ask for the time first.
TEST(AnimationKeys, BeginWithTheMode)
{
    const auto offset = [](const auto& key, const auto& field) {
        return reinterpret_cast<const char*>(&field) - reinterpret_cast<const char*>(&key);
    };
    const dlVisualTransformKey visual;
    const dlTransformKey placement;
    const dlVisualStateKey state;
    const dlViewKey viewKey;
    const dlLightKey lightRecord;
    EXPECT_EQ(offset(visual, visual.interpolateMode), 0);
    EXPECT_EQ(offset(placement, placement.interpolateMode), 0);
    EXPECT_EQ(offset(state, state.interpolateMode), 0);
    EXPECT_EQ(offset(viewKey, viewKey.interpolateMode), 0);
    EXPECT_LT(offset(viewKey, viewKey.modelView), offset(viewKey, viewKey.position));
    EXPECT_EQ(offset(lightRecord, lightRecord.interpolateMode), 0);
    EXPECT_EQ(offset(lightRecord, lightRecord.lightId), 4);
}

// The questions over tracks that were read, not put there by hand.
TEST(AnimationQueriesOfAFile, SeeTheCollapsedTracks)
{
    dlModel model;
    EXPECT_TRUE(readSideFile(
        document({component("collapsed", {visualTransform("0"), visualTransform("1")}),
                  component("animated", {visualTransform("0"), visualTransform("1", "0.9")}),
                  component("kept", {visualTransform("0"), visualTransform("1", "0.25", "0")}),
                  component("hidden", {visualState("0", "0"), visualState("1", "0")}),
                  component("shown", {visualState("0", "0"), visualState("1", "1")}),
                  component("negative", {visualState("0", "-1"), visualState("1", "0")}),
                  component("once", {visualState("0", "1"), visualState("0", "1")}),
                  component("Render##TOP##", {visualTransform("0"), visualTransform("1", "0.9")}),
                  component("\u00E9", {visualTransform("0"), visualTransform("1", "0.9")}),
                  component("?", {visualTransform("0")}),
                  component("\u6F22", {visualTransform("0"), visualTransform("1", "0.9")}),
                  viewport({camera("0"), camera("1"), viewPoint("0"), viewPoint("1")}),
                  light({lightKey("0", 1, 1), lightKey("1", 1, 1)})})
            .text(),
        model.animationTracks));
    const std::size_t size = model.animationTracks.size();
    EXPECT_FALSE(model.compHasAppearanceAnimation("collapsed"));
    EXPECT_TRUE(model.compHasAppearanceAnimation("animated"));
    EXPECT_FALSE(model.compHasAppearanceAnimation("Animated"));
    EXPECT_FALSE(model.compHasAppearanceAnimation(" animated"));
    EXPECT_TRUE(model.compHasAppearanceAnimation("kept"));
    EXPECT_TRUE(model.compHasAppearanceAnimation("Render##TOP##"));
    EXPECT_FALSE(model.compHasAppearanceAnimation("Render"));
    EXPECT_FALSE(model.compVisibleInAnimation("hidden"));
    EXPECT_TRUE(model.compVisibleInAnimation("shown"));
    EXPECT_TRUE(model.compVisibleInAnimation("negative"));
    EXPECT_FALSE(model.compVisibleInAnimation("once"));
    for (const char* name : {"@CAMERA", "@VIEWPORT", "@LIGHTS", "unknown", ""}) {
        EXPECT_FALSE(model.compHasAppearanceAnimation(name)) << name;
        EXPECT_FALSE(model.compVisibleInAnimation(name)) << name;
    }
    ASSERT_TRUE(platform::setAnsiCodePage(1252));
    EXPECT_TRUE(model.compHasAppearanceAnimation("\xE9"));
    EXPECT_FALSE(model.compHasAppearanceAnimation(platform::narrow(L"\u6F22")));
    EXPECT_TRUE(platform::setAnsiCodePage(65001));
    EXPECT_EQ(model.animationTracks.size(), size);
}

}  // namespace
