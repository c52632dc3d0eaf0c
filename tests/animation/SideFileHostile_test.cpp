// Broken, cut, flipped and greedy side files.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <string>

#include "tests/animation/SideFile.h"

using namespace std::string_literals;
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
    AnimationTracks whole;
    ASSERT_TRUE(readSideFile(xml, whole));
    std::size_t most = 0;
    for (const auto& entry : whole) {
        most = std::max(most, keyCount(entry.second));
    }
    std::size_t quiet = 0;
    std::size_t errors = 0;
    for (std::size_t at = 0; at < xml.size(); ++at) {
        for (int bit = 0; bit < 8; ++bit) {
            std::string flipped = xml;
            flipped[at] = static_cast<char>(flipped[at] ^ (1 << bit));
            AnimationTracks tracks;
            const bool result = readSideFile(flipped, tracks);
            quiet += result && tracks.empty() ? 1 : 0;
            errors += result ? 0 : 1;
            for (const auto& [name, set] : tracks) {
                // One more: two keys that shared a time, or that the thinning took, may stand apart now.
                const auto found = whole.find(name);
                const std::size_t former = found == whole.end() ? most : keyCount(found->second);
                ASSERT_LE(keyCount(set), former + 1) << at << " " << bit;
            }
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

std::string behindTheLast(const std::string& text)
{
    return kGood.substr(0, kGood.size() - 4) + text + "</r>";
}

std::string declaring(const std::string& encoding)
{
    return "<?xml version='1.0' encoding='" + encoding + "'?>";
}

// What is wrong stands behind the last element of use, or would be an error if it were looked at.
INSTANTIATE_TEST_SUITE_P(
    Rows, BrokenFile,
    testing::Values(BrokenCase{"empty", ""}, BrokenCase{"blank", " \n"}, BrokenCase{"text", "hello"},
                    BrokenCase{"two_roots", kGood + "<r/>"},
                    BrokenCase{"text_behind_the_root", kGood + "x"},
                    BrokenCase{"open_root", kGood.substr(0, kGood.size() - 4)},
                    BrokenCase{"wrong_end", kGood.substr(0, kGood.size() - 2) + "s>"},
                    BrokenCase{"bad_byte_in_a_comment", kGood + "<!-- \xFF -->"},
                    BrokenCase{"open_comment", kGood + "<!-- "},
                    BrokenCase{"bad_number_and_two_roots", kBadNumber + "<r/>"},
                    BrokenCase{"zero_byte", kGood + std::string(1, '\0')},
                    BrokenCase{"external_identifier", "<!DOCTYPE r SYSTEM 'x.dtd'>" + kGood},
                    BrokenCase{"parameter_entity", "<!DOCTYPE r [<!ENTITY % p 'x'>]>" + kGood},
                    BrokenCase{"undeclared_prefix", behindTheLast("<p:x/>")},
                    BrokenCase{"colon_in_an_instruction", kGood + "<?p:i?>"},
                    BrokenCase{"version_1_1", "<?xml version='1.1'?>" + kGood},
                    BrokenCase{"undefined_entity", behindTheLast("&e;")},
                    BrokenCase{"utf7", declaring("UTF-7") + kGood},
                    BrokenCase{"bad_byte_of_shift_jis", declaring("Shift_JIS") + kGood + "<!-- \x82 -->"},
                    BrokenCase{"half_a_character", declaring("CESU-8") + kGood + "<!-- \xED\xA0\x80 -->"}),
    [](const auto& row) { return row.param.name; });

TEST(TableDocument, HasNoRootUnlessItIsLoaded)
{
    TableXmlService service([] { return std::make_unique<BytesInMemory>("<r><a></r>"); });
    const XmlPointer<XmlDocument> document = service.createDocument();
    XmlPointer<XmlElement> root;
    EXPECT_EQ(document->documentElement(root), kXmlOk);
    EXPECT_EQ(root, nullptr);
    bool isLoaded = true;
    std::uint64_t size = 0;
    EXPECT_EQ(document->load(L"", isLoaded, size), kXmlOk);
    EXPECT_FALSE(isLoaded);
    EXPECT_EQ(document->documentElement(root), kXmlOk);
    EXPECT_EQ(root, nullptr);
}

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

struct RepeatCase {
    const char* name;
    const char* holder;
    Tag key;
    const wchar_t* entry;
};

class RepeatedKeys : public testing::TestWithParam<RepeatCase> {};

// Elements inside of 1000 others count 1000 times, however they are met again.
TEST_P(RepeatedKeys, AreCountedExactly)
{
    constexpr std::size_t kHolders = 1000;
    constexpr std::size_t kKeys = 80;
    std::string open;
    std::string close;
    std::string keys;
    for (std::size_t i = 0; i < kHolders; ++i) {
        open += "<"s + GetParam().holder + ">";
        close += "</"s + GetParam().holder + ">";
    }
    for (std::size_t i = 0; i < kKeys; ++i) {
        keys += GetParam().key.text();
    }
    const std::string xml = "<r><ANIMATION>" + open + keys + close + "</ANIMATION></r>";
    const std::size_t sizeNeeded = (kHolders * kKeys - 65536) * 8;
    ASSERT_LT(xml.size(), sizeNeeded) << "the test needs more repeats";
    AnimationTracks tracks;
    EXPECT_TRUE(readSideFile(xml + std::string(sizeNeeded - xml.size(), ' '), tracks));
    tracks.clear();
    EXPECT_FALSE(readSideFile(xml + std::string(sizeNeeded - xml.size() - 1, ' '), tracks));
    EXPECT_EQ(keysOf(tracks), (Names{GetParam().entry}));
    EXPECT_EQ(keyCount(tracks), 1u) << "what was read before stays";
}

INSTANTIATE_TEST_SUITE_P(
    Rows, RepeatedKeys,
    testing::Values(RepeatCase{"lights", "LIGHT", lightKey("0", 1, 1), L"@LIGHTS"},
                    RepeatCase{"cameras", "VIEWPORT", camera("0"), L"@CAMERA"},
                    RepeatCase{"view_points", "VIEWPORT", viewPoint("0"), L"@VIEWPORT"},
                    RepeatCase{"appearances", "COMPONENT", visualTransform("0"), L""},
                    RepeatCase{"placements", "COMPONENT", transform("0"), L""},
                    RepeatCase{"visibilities", "COMPONENT", visualState("0", "1"), L""}),
    [](const auto& row) { return row.param.name; });

// As many containers as the file has bytes, and 65,536 more, may be met; nesting asks for their product.
TEST(SideFileBudget, CountsContainersExactly)
{
    constexpr std::size_t kAnimations = 400;
    constexpr std::size_t kComponents = 400;
    std::string xml = "<r>";
    for (std::size_t i = 0; i < kAnimations; ++i) {
        xml += "<ANIMATION>";
    }
    for (std::size_t i = 0; i < kComponents; ++i) {
        xml += "<COMPONENT/>";
    }
    for (std::size_t i = 0; i < kAnimations; ++i) {
        xml += "</ANIMATION>";
    }
    xml += "</r>";
    const std::size_t sizeNeeded = kAnimations * kComponents - 65536;
    ASSERT_LT(xml.size(), sizeNeeded) << "the test needs more repeats";
    AnimationTracks tracks;
    EXPECT_TRUE(readSideFile(xml + std::string(sizeNeeded - xml.size(), ' '), tracks));
    EXPECT_FALSE(readSideFile(xml + std::string(sizeNeeded - xml.size() - 1, ' '), tracks));
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
