// Broken, cut, flipped and greedy side files.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>

#include "tests/animation/SideFile.h"

using testing::IsEmpty;

namespace {

Tag goodFile()
{
    return tag(
        "ROOT",
        {animation({component("a", {visualTransform("0"), visualTransform("1", "0.5"), transform("0"),
                                    component("b", {visualState("0", "1"), visualState("1", "0")})}),
                    viewport({viewPoint("0"), camera("0")}),
                    light({lightKey("0", 1, 2), lightKey("1", 1, 6)})}),
         animation({component("c", {transform("0.25")})})});
}

TEST(SideFileHostile, EveryPrefixGivesNothing)
{
    const std::string xml = goodFile().text() + "\n";
    AnimationTracks whole;
    EXPECT_TRUE(readSideFile(xml, whole));
    EXPECT_EQ(whole.size(), 6u);
    for (std::size_t size = 0; size + 1 < xml.size(); ++size) {
        AnimationTracks tracks;
        ASSERT_TRUE(readSideFile(xml.substr(0, size), tracks)) << size;
        ASSERT_THAT(tracks, IsEmpty()) << size;
    }
}

TEST(SideFileHostile, EveryFlippedByteHasAnOutcome)
{
    const std::string xml = goodFile().text();
    std::size_t quiet = 0;
    std::size_t errors = 0;
    for (std::size_t at = 0; at < xml.size(); ++at) {
        for (const int bit : {0, 5, 7}) {
            std::string flipped = xml;
            flipped[at] = static_cast<char>(flipped[at] ^ (1 << bit));
            AnimationTracks tracks;
            const bool result = readSideFile(flipped, tracks);
            quiet += result && tracks.empty() ? 1 : 0;
            errors += result ? 0 : 1;
        }
    }
    EXPECT_GT(quiet, xml.size()) << "no flip broke the rules of XML";
    EXPECT_GT(errors, 50u) << "no flip broke a number or a name";
}

struct BrokenCase {
    const char* name;
    std::string xml;
};

class BrokenFile : public testing::TestWithParam<BrokenCase> {};

TEST_P(BrokenFile, FilesNothingAndIsNoError)
{
    AnimationTracks tracks;
    EXPECT_TRUE(readSideFile(GetParam().xml, tracks));
    EXPECT_THAT(tracks, IsEmpty());
}

const std::string kGood = "<r><ANIMATION><COMPONENT Name=\"a\"/></ANIMATION></r>";
const std::string kBadNumber =
    "<r><ANIMATION><COMPONENT Name=\"a\"><Transform Time=\"x\"/></COMPONENT></ANIMATION></r>";

// What is wrong stands behind the last element of use, or would be an error if it were looked at.
INSTANTIATE_TEST_SUITE_P(Rows, BrokenFile,
                         testing::Values(BrokenCase{"empty", ""}, BrokenCase{"blank", " \n"},
                                         BrokenCase{"text", "hello"},
                                         BrokenCase{"two_roots", kGood + "<r/>"},
                                         BrokenCase{"text_behind_the_root", kGood + "x"},
                                         BrokenCase{"open_root", kGood.substr(0, kGood.size() - 4)},
                                         BrokenCase{"wrong_end", kGood.substr(0, kGood.size() - 2) + "s>"},
                                         BrokenCase{"bad_byte_in_a_comment", kGood + "<!-- \xFF -->"},
                                         BrokenCase{"open_comment", kGood + "<!-- "},
                                         BrokenCase{"bad_number_and_two_roots", kBadNumber + "<r/>"},
                                         BrokenCase{"zero_byte", kGood + std::string(1, '\0')}),
                         [](const auto& row) { return row.param.name; });

// Each of n nested components of one key files those of all below it: n (n + 1) / 2 keys.
TEST(SideFileBudget, LetsDeepComponentsThrough)
{
    std::string open;
    std::string close;
    for (int i = 0; i < 300; ++i) {
        open +=
            "<COMPONENT Name=\"" + std::to_string(i) + "\">" + visualState(std::to_string(i), "1").text();
        close += "</COMPONENT>";
    }
    AnimationTracks tracks;
    EXPECT_TRUE(readSideFile("<r><ANIMATION>" + open + close + "</ANIMATION></r>", tracks));
    EXPECT_EQ(tracks.size(), 300u);
    EXPECT_EQ(tracks[L"0"].visualStates.size(), 300u);
    EXPECT_EQ(tracks[L"250"].visualStates.size(), 50u);
}

TEST(SideFileBudget, EndsNestedComponentsThatAskForTooMuch)
{
    std::string open;
    std::string close;
    for (int i = 0; i < 2000; ++i) {
        open +=
            "<COMPONENT Name=\"" + std::to_string(i) + "\">" + visualState(std::to_string(i), "1").text();
        close += "</COMPONENT>";
    }
    AnimationTracks tracks;
    EXPECT_FALSE(readSideFile("<r><ANIMATION>" + open + close + "</ANIMATION></r>", tracks));
    EXPECT_GT(tracks.size(), 30u) << "earlier entries stay";
    EXPECT_LT(tracks.size(), 100u);
    EXPECT_EQ(tracks[L"0"].visualStates.size(), 2000u);
}

// One light with a key around many without.
std::string manyLights(std::size_t count)
{
    std::string xml = "<r><ANIMATION><LIGHT>";
    for (std::size_t i = 0; i < count; ++i) {
        xml += "<LIGHT/>";
    }
    xml += lightKey("0", 1, 1).text();
    return xml + "</LIGHT></ANIMATION></r>";
}

TEST(SideFileBudget, IsCountedExactly)
{
    std::string keys;
    std::size_t count = 0;
    // One light element inside of 400 others counts 400 times.
    std::string open;
    std::string close;
    for (int i = 0; i < 400; ++i) {
        open += "<LIGHT>";
        close += "</LIGHT>";
    }
    const std::string key = lightKey("0", 1, 1).text();
    for (; count < 180; ++count) {
        keys += key;
    }
    const std::string xml = "<r><ANIMATION>" + open + keys + close + "</ANIMATION></r>";
    const std::size_t handed = 400 * count;
    const std::size_t sizeNeeded = (handed - 65536) * 8;
    ASSERT_LT(xml.size(), sizeNeeded) << "the test needs more repeats";
    AnimationTracks tracks;
    EXPECT_TRUE(readSideFile(xml + std::string(sizeNeeded - xml.size(), ' '), tracks));
    tracks.clear();
    EXPECT_FALSE(readSideFile(xml + std::string(sizeNeeded - xml.size() - 1, ' '), tracks));
    EXPECT_EQ(tracks[L"@LIGHTS"].lightTracks.size(), 1u) << "earlier lights stay";
}

// Elements that hold no keys cost time, too, when animations repeat them.
TEST(SideFileBudget, EndsNestedAnimationsThatAskForTooMuch)
{
    std::string xml = "<r>";
    for (int i = 0; i < 20000; ++i) {
        xml += "<ANIMATION>";
    }
    for (int i = 0; i < 20000; ++i) {
        xml += "<COMPONENT/>";
    }
    for (int i = 0; i < 20000; ++i) {
        xml += "</ANIMATION>";
    }
    AnimationTracks tracks;
    const auto start = std::chrono::steady_clock::now();
    EXPECT_FALSE(readSideFile(xml + "</r>", tracks));
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20));
    EXPECT_EQ(keysOf(tracks), (Names{L""}));
}

TEST(SideFileBudget, DoesNotCountWhatIsMetOnce)
{
    AnimationTracks tracks;
    EXPECT_TRUE(readSideFile(manyLights(80000), tracks));
    EXPECT_EQ(tracks[L"@LIGHTS"].lightTracks.size(), 1u);
    std::string xml = "<r><ANIMATION>";
    for (int i = 0; i < 80000; ++i) {
        xml += "<COMPONENT/>";
    }
    tracks.clear();
    EXPECT_TRUE(readSideFile(xml + "</ANIMATION></r>", tracks));
    EXPECT_EQ(tracks.size(), 1u);
}

TEST(SideFileHostile, NestingOfAMillionElementsIsRead)
{
    std::string xml = "<r><ANIMATION>";
    constexpr int kDepth = 1000000;
    for (int i = 0; i < kDepth; ++i) {
        xml += "<x>";
    }
    xml += component("a", {transform("0")}).text();
    for (int i = 0; i < kDepth; ++i) {
        xml += "</x>";
    }
    AnimationTracks tracks;
    EXPECT_TRUE(readSideFile(xml + "</ANIMATION></r>", tracks));
    EXPECT_EQ(tracks[L"a"].transforms.size(), 1u);
}

TEST(SideFileHostile, NestedComponentsByTheTenThousandsHaveAnOutcome)
{
    std::string xml = "<r><ANIMATION>";
    for (int i = 0; i < 50000; ++i) {
        xml += "<COMPONENT Name=\"a\">";
    }
    xml += transform("0").text();
    for (int i = 0; i < 50000; ++i) {
        xml += "</COMPONENT>";
    }
    AnimationTracks tracks;
    EXPECT_TRUE(readSideFile(xml + "</ANIMATION></r>", tracks));
    EXPECT_EQ(tracks[L"a"].transforms.size(), 1u);
}

// A few bytes of entities can stand for gigabytes.
TEST(SideFileHostile, GreedyEntitiesRunOutOfMemoryBeforeTheMachineDoes)
{
    std::string xml = "<!DOCTYPE r [<!ENTITY e \"" + std::string(60000, 'x') + "\">]><r><ANIMATION>";
    for (int i = 0; i < 1000; ++i) {
        xml += "<COMPONENT Name=\"&e;\"/>";
    }
    AnimationTracks tracks;
    EXPECT_FALSE(readSideFile(xml + "</ANIMATION></r>", tracks));
    EXPECT_THAT(tracks, IsEmpty());
}

TEST(SideFileHostile, EntitiesInProportionAreRead)
{
    AnimationTracks tracks;
    EXPECT_TRUE(
        readSideFile("<!DOCTYPE r [<!ENTITY e \"x&#233;\"><!ATTLIST COMPONENT Name CDATA \"d\">]>"
                     "<r><ANIMATION><COMPONENT Name=\"&e;y\"/><COMPONENT/></ANIMATION></r>",
                     tracks));
    EXPECT_EQ(keysOf(tracks), (Names{L"d", L"x\u00E9y"}));
}

}  // namespace
