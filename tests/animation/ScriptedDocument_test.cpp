// The walk over a document object that fails, refuses and throws where a real one seldom does.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <pthread.h>

#include <new>
#include <stdexcept>

#include "raylume/animation/AnimationDocument.h"
#include "raylume/platform/Errors.h"
#include "tests/animation/ScriptedXml.h"
#include "tests/animation/SideFile.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr XmlResult kFailure = 0x80004005u;

bool readScript(Script& script, AnimationTracks& tracks)
{
    ScriptedService service(script);
    const bool result = readAnimation(L"doc.glb", tracks, service);
    EXPECT_EQ(script.live, 0) << "something was not released";
    return result;
}

/// The code that the walk raises; 0 for none.
XmlResult codeOf(Script& script, AnimationTracks& tracks)
{
    ScriptedService service(script);
    try {
        readAnimationDocument(L"side.xml", tracks, service);
    } catch (const platform::ComError& error) {
        return error.code();
    }
    return 0;
}

std::function<XmlResult(const std::string&)> failingAt(const std::string& at, XmlResult result = kFailure)
{
    return [=](const std::string& call) { return call == at ? result : kXmlOk; };
}

Tag everything()
{
    return document({component("a", {visualTransform("0"), transform("0"), visualState("0", "1")}),
                     viewport({viewPoint("0"), camera("0")}), light({lightKey("0", 1, 2)})});
}

TEST(ScriptedWalk, AsksInOrder)
{
    Script script{.root = document({component("a"), viewport(), light()})};
    AnimationTracks tracks;
    EXPECT_TRUE(readScript(script, tracks));
    EXPECT_THAT(
        script.calls,
        ElementsAre("create", "load _rlAnimData.xml", "root", "list ROOT.ANIMATION", "length ANIMATION",
                    "item ANIMATION 0", "element ANIMATION", "list ANIMATION.COMPONENT", "length COMPONENT",
                    "item COMPONENT 0", "element COMPONENT", "attribute COMPONENT.Name",
                    "list COMPONENT.VisualTransform", "length VisualTransform", "list COMPONENT.Transform",
                    "length Transform", "list COMPONENT.VisualState", "length VisualState",
                    "list ANIMATION.VIEWPORT", "length VIEWPORT", "item VIEWPORT 0", "element VIEWPORT",
                    "list VIEWPORT.ViewPointTransform", "length ViewPointTransform",
                    "list VIEWPORT.CameraProperties", "length CameraProperties", "list ANIMATION.LIGHT",
                    "length LIGHT", "item LIGHT 0", "element LIGHT", "list LIGHT.LightProperties",
                    "length LightProperties"));
}

TEST(ScriptedWalk, AsksForAttributesInOrder)
{
    Script script{.root = everything()};
    AnimationTracks tracks;
    EXPECT_TRUE(readScript(script, tracks));
    EXPECT_THAT(
        script.callsBeginning("attribute VisualTransform."),
        ElementsAre("InterpolateMode", "Time", "Red", "Green", "Blue", "Transparency", "NullCompVizprop"));
    EXPECT_THAT(script.callsBeginning("attribute Transform."),
                ElementsAre("InterpolateMode", "Time", "m0", "m1", "m2", "m3", "m4", "m5", "m6", "m7", "m8",
                            "m9", "m10", "m11", "m12", "m13", "m14", "m15"));
    EXPECT_THAT(script.callsBeginning("attribute VisualState."),
                ElementsAre("InterpolateMode", "Time", "ComponentVisibility"));
    for (const char* name : {"attribute ViewPointTransform.", "attribute CameraProperties."}) {
        EXPECT_THAT(script.callsBeginning(name),
                    ElementsAre("Time", "InterpolateMode", "pos0", "pos1", "pos2", "mv0", "mv1", "mv2",
                                "mv3", "mv4", "mv5", "mv6", "mv7", "mv8", "mv9", "mv10", "mv11", "mv12",
                                "mv13", "mv14", "mv15", "FocalDistance", "FocalLength"));
    }
    EXPECT_THAT(script.callsBeginning("attribute LightProperties."),
                ElementsAre("Time", "InterpolateMode", "ID", "LightType", "EnabledInRL", "Red", "Green",
                            "Blue", "pos0", "pos1", "pos2", "rot0", "rot1", "rot2"));
}

struct LightOrderCase {
    const char* name;
    int type;
    std::vector<std::string> further;
};

class LightOrder : public testing::TestWithParam<LightOrderCase> {};

TEST_P(LightOrder, AsksOnlyForWhatTheTypeHas)
{
    Script script{.root = document({light({lightKey("0", 1, GetParam().type)})})};
    AnimationTracks tracks;
    EXPECT_TRUE(readScript(script, tracks));
    auto asked = script.callsBeginning("attribute LightProperties.");
    asked.erase(asked.begin(), asked.begin() + 8);
    EXPECT_EQ(asked, GetParam().further);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, LightOrder,
    testing::Values(LightOrderCase{"aimed", 2, {"pos0", "pos1", "pos2", "rot0", "rot1", "rot2"}},
                    LightOrderCase{"positioned", 3, {"pos0", "pos1", "pos2"}},
                    LightOrderCase{"directional", 4, {"pos0", "pos1", "pos2", "rot0", "rot1", "rot2"}},
                    LightOrderCase{"sun", 6, {"sunTime", "sunDay", "sunHaze"}},
                    LightOrderCase{"one", 1, {}}, LightOrderCase{"five", 5, {}},
                    LightOrderCase{"seven", 7, {}}, LightOrderCase{"negative", -1, {}},
                    LightOrderCase{"unknown", 99, {}}),
    [](const auto& row) { return row.param.name; });

// A conversion happens as each attribute is read: what stands behind a bad one is not asked for.
TEST(ScriptedWalk, StopsAtTheFirstBadAttribute)
{
    Script script{.root = document({component("a", {transform("x").with("InterpolateMode", "y")})})};
    AnimationTracks tracks;
    EXPECT_FALSE(readScript(script, tracks));
    EXPECT_THAT(script.callsBeginning("attribute Transform."), ElementsAre("InterpolateMode"));
}

TEST(ScriptedWalk, WithoutADocumentNothingIsReadAndNothingFails)
{
    Script script{.root = everything(), .canCreate = false};
    AnimationTracks tracks;
    EXPECT_TRUE(readScript(script, tracks));
    EXPECT_THAT(script.calls, ElementsAre("create"));
    EXPECT_THAT(tracks, IsEmpty());
}

TEST(ScriptedWalk, ALoadThatAnswersNoIsQuiet)
{
    Script script{.root = everything(), .isLoaded = false};
    AnimationTracks tracks;
    EXPECT_TRUE(readScript(script, tracks));
    EXPECT_THAT(script.calls, ElementsAre("create", "load _rlAnimData.xml"));
    EXPECT_THAT(tracks, IsEmpty());
}

// Also with a result that is no failure but not the usual one either.
TEST(ScriptedWalk, OtherResultsWithoutTheTopBitAreNoFailure)
{
    Script script{.root = everything(), .answer = [](const std::string&) { return XmlResult{1}; }};
    AnimationTracks tracks;
    EXPECT_TRUE(readScript(script, tracks));
    EXPECT_EQ(tracks.size(), 4u);
}

TEST(ScriptedWalk, ALoadThatFailsIsAnError)
{
    for (const bool isLoaded : {false, true}) {
        Script script{.root = everything(),
                      .isLoaded = isLoaded,
                      .answer = failingAt("load _rlAnimData.xml", 0x80070005u)};
        AnimationTracks tracks;
        EXPECT_FALSE(readScript(script, tracks));
        EXPECT_THAT(tracks, IsEmpty());
    }
}

class FailingCall : public testing::TestWithParam<const char*> {};

TEST_P(FailingCall, RaisesItsOwnCode)
{
    Script script{.root = everything(), .answer = failingAt(GetParam(), 0x80041234u)};
    AnimationTracks tracks;
    EXPECT_EQ(codeOf(script, tracks), 0x80041234u);
    EXPECT_EQ(script.calls.back(), GetParam()) << "the walk went on";
    EXPECT_EQ(script.live, 0);
}

INSTANTIATE_TEST_SUITE_P(
    Calls, FailingCall,
    testing::Values("load side.xml", "root", "list ROOT.ANIMATION", "length ANIMATION", "item ANIMATION 0",
                    "element ANIMATION", "list ANIMATION.COMPONENT", "length COMPONENT", "item COMPONENT 0",
                    "element COMPONENT", "attribute COMPONENT.Name", "list COMPONENT.VisualTransform",
                    "length VisualTransform", "item VisualTransform 0", "element VisualTransform",
                    "attribute VisualTransform.Red", "list COMPONENT.Transform", "item Transform 0",
                    "element Transform", "attribute Transform.m15", "list COMPONENT.VisualState",
                    "element VisualState", "attribute VisualState.ComponentVisibility",
                    "list ANIMATION.VIEWPORT", "item VIEWPORT 0", "element VIEWPORT",
                    "list VIEWPORT.ViewPointTransform", "attribute ViewPointTransform.FocalLength",
                    "list VIEWPORT.CameraProperties", "element CameraProperties", "list ANIMATION.LIGHT",
                    "element LIGHT", "list LIGHT.LightProperties", "length LightProperties",
                    "element LightProperties", "attribute LightProperties.rot2"));

class ThrowingCall : public testing::TestWithParam<const char*> {};

TEST_P(ThrowingCall, IsAnAnswerAndNothingEscapes)
{
    const std::string what = GetParam();
    Script script{.root = everything(), .answer = [&](const std::string& call) -> XmlResult {
                      if (call != "attribute Transform.m7") {
                          return kXmlOk;
                      }
                      if (what == "int") {
                          throw 7;
                      }
                      if (what == "bad_alloc") {
                          throw std::bad_alloc();
                      }
                      if (what == "runtime_error") {
                          throw std::runtime_error("x");
                      }
                      throw platform::ComError(platform::kErrorInvalidArgument);
                  }};
    AnimationTracks tracks;
    EXPECT_FALSE(readScript(script, tracks));
    EXPECT_THAT(tracks, IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(What, ThrowingCall,
                         testing::Values("int", "bad_alloc", "runtime_error", "com_error"));

TEST(ScriptedWalk, AThrowingCreationIsAnAnswerToo)
{
    Script script{.answer = [](const std::string&) -> XmlResult { throw std::bad_alloc(); }};
    AnimationTracks tracks;
    EXPECT_FALSE(readScript(script, tracks));
}

struct Cancelled {
    Script script;
    AnimationTracks tracks;
    bool returned = false;
};

void* readAndBeCancelled(void* state)
{
    auto& cancelled = *static_cast<Cancelled*>(state);
    ScriptedService service(cancelled.script);
    (void)readAnimation(L"doc.glb", cancelled.tracks, service);
    cancelled.returned = true;
    return nullptr;
}

TEST(ScriptedWalk, LetsACancelledThreadGo)
{
#if defined(__SANITIZE_ADDRESS__)
    // The unwinding of a cancelled thread runs no code of the sanitizer, which then finds its own marks on
    // the frames that are gone.
    GTEST_SKIP() << "the address sanitizer does not follow a cancelled thread";
#endif
    Cancelled cancelled;
    cancelled.script.root = everything();
    cancelled.script.answer = [](const std::string& call) {
        if (call == "attribute Transform.m7") {
            pthread_cancel(pthread_self());
            pthread_testcancel();
        }
        return kXmlOk;
    };
    pthread_t thread;
    ASSERT_EQ(pthread_create(&thread, nullptr, readAndBeCancelled, &cancelled), 0);
    void* result = nullptr;
    ASSERT_EQ(pthread_join(thread, &result), 0);
    EXPECT_EQ(result, PTHREAD_CANCELED);
    EXPECT_FALSE(cancelled.returned);
    EXPECT_EQ(cancelled.script.live, 0);
}

class RefusedElement : public testing::TestWithParam<const char*> {};

TEST_P(RefusedElement, IsSkippedWhenItIsNone)
{
    Script script{.root = everything(), .answer = failingAt(GetParam(), kXmlNoInterface)};
    AnimationTracks tracks;
    EXPECT_TRUE(readScript(script, tracks));
}

INSTANTIATE_TEST_SUITE_P(Calls, RefusedElement,
                         testing::Values("element ANIMATION", "element COMPONENT", "element Transform",
                                         "element VisualTransform", "element VisualState",
                                         "element VIEWPORT", "element ViewPointTransform",
                                         "element CameraProperties", "element LIGHT",
                                         "element LightProperties"));

TEST(ScriptedWalk, ARefusalOfAnotherCallIsNoSkip)
{
    for (const char* call :
         {"list ANIMATION.COMPONENT", "attribute Transform.m0", "root", "item LIGHT 0"}) {
        Script script{.root = everything(), .answer = failingAt(call, kXmlNoInterface)};
        AnimationTracks tracks;
        EXPECT_FALSE(readScript(script, tracks)) << call;
    }
}

TEST(ScriptedWalk, AbsentItemsAreSkippedAndTheOthersRead)
{
    Script script{.root = document(
                      {component("a", {transform("0"), transform("1"), transform("2")}), component("b")}),
                  .givesNull = [](const std::string& call) {
                      return call == "item Transform 1" || call == "item COMPONENT 1";
                  }};
    AnimationTracks tracks;
    EXPECT_TRUE(readScript(script, tracks));
    EXPECT_EQ(keysOf(tracks), (Names{L"a"}));
    EXPECT_EQ(keysOf(tracks[L"a"].transforms), (Times{0, 2}));
    EXPECT_THAT(script.callsBeginning("item Transform "), ElementsAre("0", "1", "2"));
}

TEST(ScriptedWalk, AbsentListsAreEmpty)
{
    for (const char* call :
         {"list ANIMATION.COMPONENT", "list ANIMATION.VIEWPORT", "list ANIMATION.LIGHT",
          "list COMPONENT.VisualTransform", "list COMPONENT.Transform", "list COMPONENT.VisualState",
          "list VIEWPORT.ViewPointTransform", "list VIEWPORT.CameraProperties",
          "list LIGHT.LightProperties", "list ROOT.ANIMATION"}) {
        Script script{.root = everything(),
                      .givesNull = [&](const std::string& asked) { return asked == call; }};
        AnimationTracks tracks;
        EXPECT_TRUE(readScript(script, tracks)) << call;
    }
}

TEST(ScriptedWalk, AnAbsentRootIsANullPointer)
{
    Script script{.root = everything(),
                  .givesNull = [](const std::string& call) { return call == "root"; }};
    AnimationTracks tracks;
    EXPECT_EQ(codeOf(script, tracks), platform::kErrorNullPointer);
}

TEST(ScriptedWalk, AnElementThatIsGivenAsNothingIsANullPointer)
{
    Script script{.root = everything(),
                  .givesNull = [](const std::string& call) { return call == "element COMPONENT"; }};
    AnimationTracks tracks;
    EXPECT_EQ(codeOf(script, tracks), platform::kErrorNullPointer);
}

// What counts for views and lights is the length of the list, not what came of it.
TEST(ScriptedWalk, RefusedKeysStillMakeEmptyEntries)
{
    Script script{.root = everything(), .answer = [](const std::string& call) {
                      const bool isKey = call == "element CameraProperties" ||
                                         call == "element LightProperties" ||
                                         call == "element ViewPointTransform";
                      return isKey ? kXmlNoInterface : kXmlOk;
                  }};
    AnimationTracks tracks;
    EXPECT_TRUE(readScript(script, tracks));
    EXPECT_EQ(keysOf(tracks), (Names{L"@CAMERA", L"@LIGHTS", L"@VIEWPORT", L"a"}));
    EXPECT_THAT(tracks[L"@CAMERA"].viewKeys, IsEmpty());
    EXPECT_THAT(tracks[L"@VIEWPORT"].viewKeys, IsEmpty());
    EXPECT_THAT(tracks[L"@LIGHTS"].lightTracks, IsEmpty());
}

TEST(ScriptedValues, OfTheWantedTypeAreTakenAsTheyAre)
{
    Script script{.root = document({component("a", {transform("no number")}),
                                    light({lightKey("0", 1, 6).with("sunTime", "no number")})}),
                  .value = [](const std::string& call, XmlValue& value) {
                      if (call == "attribute Transform.Time") {
                          value = {.type = XmlValue::Type::kReal, .real = 0.1};
                      } else if (call == "attribute Transform.InterpolateMode") {
                          value = {.type = XmlValue::Type::kInteger, .integer = -7};
                      } else if (call == "attribute LightProperties.sunTime") {
                          value = {.type = XmlValue::Type::kFloat, .single = 0.1f};
                      }
                  }};
    AnimationTracks tracks;
    EXPECT_TRUE(readScript(script, tracks));
    ASSERT_EQ(keysOf(tracks[L"a"].transforms), (Times{0.1}));
    EXPECT_EQ(tracks[L"a"].transforms[0.1].interpolateMode, -7);
    EXPECT_EQ(tracks[L"@LIGHTS"].lightTracks[1][0].sunTime, 0.1f);
}

TEST(ScriptedValues, OfAnotherTypeAreConverted)
{
    Script script{.root = document({component("a", {transform("no number")}),
                                    light({lightKey("0", 1, 6).with("sunTime", "no number")})}),
                  .value = [](const std::string& call, XmlValue& value) {
                      if (call == "attribute Transform.Time") {
                          value = {.type = XmlValue::Type::kInteger, .integer = 4};
                      } else if (call == "attribute Transform.InterpolateMode") {
                          value = {.type = XmlValue::Type::kReal, .real = 2.5};
                      } else if (call == "attribute LightProperties.sunTime") {
                          value = {.type = XmlValue::Type::kReal, .real = 0.1};
                      }
                  }};
    AnimationTracks tracks;
    EXPECT_TRUE(readScript(script, tracks));
    ASSERT_EQ(keysOf(tracks[L"a"].transforms), (Times{4}));
    EXPECT_EQ(tracks[L"a"].transforms[4].interpolateMode, 2);
    EXPECT_EQ(tracks[L"@LIGHTS"].lightTracks[1][0].sunTime, 0.1f);
}

struct BadValueCase {
    const char* name;
    const char* call;
    XmlValue value;
    XmlResult code;
};

class BadValue : public testing::TestWithParam<BadValueCase> {};

TEST_P(BadValue, Raises)
{
    Script script{.root = everything(), .value = [](const std::string& call, XmlValue& value) {
                      if (call == GetParam().call) {
                          value = GetParam().value;
                      }
                  }};
    AnimationTracks tracks;
    EXPECT_EQ(codeOf(script, tracks), GetParam().code);
}

using Type = XmlValue::Type;
INSTANTIATE_TEST_SUITE_P(
    Rows, BadValue,
    testing::Values(BadValueCase{"absent_real", "attribute Transform.m7", {}, 0x80020005u},
                    BadValueCase{"absent_integer", "attribute Transform.InterpolateMode", {}, 0x80020005u},
                    BadValueCase{"absent_time", "attribute CameraProperties.Time", {}, 0x80020005u},
                    BadValueCase{"real_beyond_integers",
                                 "attribute Transform.InterpolateMode",
                                 {.type = Type::kReal, .real = 3e9},
                                 0x8002000Au},
                    BadValueCase{"time_that_cannot_be_ordered",
                                 "attribute Transform.Time",
                                 {.type = Type::kReal, .real = std::numeric_limits<double>::quiet_NaN()},
                                 0x80020005u}),
    [](const auto& row) { return row.param.name; });

TEST(ScriptedValues, ANameThatIsNoTextIsEmpty)
{
    Script script{.root = document({component("a")}),
                  .value = [](const std::string& call, XmlValue& value) {
                      if (call == "attribute COMPONENT.Name") {
                          value = {.type = Type::kReal, .real = 3};
                      }
                  }};
    AnimationTracks tracks;
    EXPECT_TRUE(readScript(script, tracks));
    EXPECT_EQ(keysOf(tracks), (Names{L""}));
}

// 65,536 elements are free; the size of this document is 16 bytes, which give two more.
TEST(ScriptedBudget, CountsTrackElements)
{
    std::vector<Tag> keys(65538, visualState("0", "1"));
    Script script{.root = document({component("a", keys)}), .size = 16};
    AnimationTracks tracks;
    EXPECT_EQ(codeOf(script, tracks), 0u);
    EXPECT_EQ(keysOf(tracks), (Names{L"a"}));

    keys.push_back(visualState("0", "1"));
    Script tooMany{.root = document({component("b"), component("a", keys), component("c")}), .size = 23};
    tracks.clear();
    EXPECT_EQ(codeOf(tooMany, tracks), platform::kErrorOutOfMemory);
    EXPECT_EQ(keysOf(tracks), (Names{L"b"}));
    EXPECT_EQ(tooMany.live, 0);
}

}  // namespace
