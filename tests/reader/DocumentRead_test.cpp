#include "reader/DocumentRead.h"

#include <gmock/gmock.h>

#include <cmath>
#include <limits>
#include <new>
#include <stdexcept>

#include "ReaderFixtures.h"
#include "ScriptedFormats.h"

namespace {

using fixtures::RecordingCallbacks;
using fixtures::Registered;
using ovdl::ReadContext;
using ovdl::ReadOutcome;
using scripted::goodOutcome;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

class DocumentRead : public testing::Test {
protected:
    ovdl::DocumentReadResult read() { return ovdl::readDocument(format, L"x"); }

    void expectEmptyAssembly(const ovdl::DocumentReadResult& result, bool rejected)
    {
        ASSERT_NE(result.document, nullptr);
        EXPECT_EQ(result.document->part(), nullptr);
        ASSERT_NE(result.document->assembly(), nullptr);
        EXPECT_EQ(result.document->assembly()->isRejected(), rejected);
        EXPECT_EQ(result.document->assembly()->components.count, 0);
        EXPECT_EQ(result.document->configuration(L"Default"), nullptr);
    }

    scripted::Format format;
    RecordingCallbacks callbacks;
    Registered registered{callbacks};
};

ReadOutcome outcomeOf(ReadOutcome::Kind kind, std::string reason = {})
{
    ReadOutcome outcome;
    outcome.kind = kind;
    outcome.reason = std::move(reason);
    return outcome;
}

TEST_F(DocumentRead, HandsOutTheDocumentOfTheFormat)
{
    ovdl::ReadDocument* made = nullptr;
    format.onRead = [&](ReadContext&) {
        auto outcome = goodOutcome();
        made = outcome.document.get();
        return outcome;
    };
    const auto result = read();
    EXPECT_EQ(result.result, OVXDLReader_Loaded);
    EXPECT_EQ(result.document.get(), made);
    EXPECT_EQ(result.reason, "");
}

TEST_F(DocumentRead, GivesTheResultThatTheDocumentAsksFor)
{
    format.onRead = [](ReadContext&) {
        auto document = std::make_unique<scripted::Document>();
        document->given = OVXDLReader_NotOpened;
        ReadOutcome outcome;
        outcome.document = std::move(document);
        return outcome;
    };
    EXPECT_EQ(read().result, OVXDLReader_NotOpened);
}

TEST_F(DocumentRead, AsksForTheVersionThatTheFormatTells)
{
    format.onRead = [](ReadContext& context) {
        EXPECT_TRUE(context.acceptVersion(9000));
        return goodOutcome();
    };
    EXPECT_EQ(read().version, 9000u);
    EXPECT_THAT(callbacks.versions, ElementsAre(Pair(9000, 12000)));
}

TEST_F(DocumentRead, AsksForTheForeignVersionWhenTheFormatTellsNone)
{
    EXPECT_EQ(read().version, 12000u);
    EXPECT_THAT(callbacks.versions, ElementsAre(Pair(12000, 12000)));
}

TEST_F(DocumentRead, AsksForTheVersionOnlyOnceAndKeepsTheFirstAnswer)
{
    callbacks.accept = 0;
    format.onRead = [](ReadContext& context) {
        EXPECT_FALSE(context.acceptVersion(7));
        EXPECT_FALSE(context.acceptVersion(8));
        return goodOutcome();
    };
    EXPECT_EQ(read().version, 7u);
    EXPECT_THAT(callbacks.versions, ElementsAre(Pair(7, 12000)));
}

TEST_F(DocumentRead, AsksForTheVersionOfRejectedAndCancelledReadsToo)
{
    format.onRead = [](ReadContext&) { return outcomeOf(ReadOutcome::kRejected, "broken"); };
    read();
    format.onRead = [](ReadContext&) { return outcomeOf(ReadOutcome::kCancelled); };
    read();
    EXPECT_THAT(callbacks.versions, ElementsAre(Pair(12000, 12000), Pair(12000, 12000)));
}

TEST_F(DocumentRead, CutsVersionsTo32BitsAndHandsThemOverAsSignedNumbers)
{
    format.onRead = [](ReadContext& context) {
        context.acceptVersion(0xFFFFFFFFul);
        return goodOutcome();
    };
    EXPECT_EQ(read().version, 0xFFFFFFFFu);
    EXPECT_THAT(callbacks.versions, ElementsAre(Pair(-1, 12000)));
}

TEST_F(DocumentRead, RejectsADocumentWhoseVersionIsRefusedWhateverTheFormatMadeOfIt)
{
    callbacks.accept = 0;
    format.onRead = [](ReadContext& context) {
        context.acceptVersion(13000);
        return goodOutcome();
    };
    const auto result = read();
    EXPECT_EQ(result.result, OVXDLReader_Rejected);
    expectEmptyAssembly(result, true);
    EXPECT_EQ(result.reason, "the document's version 13000 was refused");
}

TEST_F(DocumentRead, RejectsADocumentWhoseVersionIsRefusedAfterTheFormatIsDone)
{
    callbacks.accept = 0;
    const auto result = read();
    EXPECT_EQ(result.result, OVXDLReader_Rejected);
    expectEmptyAssembly(result, true);
}

TEST_F(DocumentRead, TakesAnyOtherAnswerThanZeroForConsent)
{
    callbacks.accept = -1;
    EXPECT_EQ(read().result, OVXDLReader_Loaded);
}

TEST_F(DocumentRead, TellsAProgressThatNeverFallsAndEndsWithOne)
{
    format.onRead = [](ReadContext& context) {
        for (float share : {0.25f, 0.5f, 0.125f, 0.5f, 0.75f})
            context.progress(share);
        return goodOutcome();
    };
    read();
    EXPECT_THAT(callbacks.shares, ElementsAre(0.0f, 0.25f, 0.5f, 0.75f, 1.0f));
}

TEST_F(DocumentRead, KeepsProgressBetweenZeroAndOne)
{
    format.onRead = [](ReadContext& context) {
        for (float share : {-1.0f, std::nanf(""), 7.0f, std::numeric_limits<float>::infinity()})
            context.progress(share);
        return goodOutcome();
    };
    read();
    EXPECT_THAT(callbacks.shares, ElementsAre(0.0f, 1.0f));
}

TEST_F(DocumentRead, DoesNotTellTheEndOfAReadThatDidNotReachIt)
{
    format.onRead = [](ReadContext&) { return outcomeOf(ReadOutcome::kRejected, "broken"); };
    read();
    format.onRead = [](ReadContext&) { return outcomeOf(ReadOutcome::kCancelled); };
    read();
    EXPECT_THAT(callbacks.shares, ElementsAre(0.0f, 0.0f));
}

TEST_F(DocumentRead, LeavesAnEmptyAssemblyThatIsNotRejectedWhenCancelled)
{
    callbacks.cancel = 1;
    format.onRead = [](ReadContext& context) {
        EXPECT_TRUE(context.cancelled());
        return outcomeOf(ReadOutcome::kCancelled);
    };
    const auto result = read();
    EXPECT_EQ(result.result, OVXDLReader_Cancelled);
    expectEmptyAssembly(result, false);
    EXPECT_EQ(result.reason, "");
}

TEST_F(DocumentRead, AsksForCancellationEvenIfTheFormatDoesNot)
{
    callbacks.cancel = 1;
    const auto result = read();
    EXPECT_EQ(callbacks.cancelQuestions, 1);
    EXPECT_EQ(result.result, OVXDLReader_Cancelled);
    expectEmptyAssembly(result, false);
}

TEST_F(DocumentRead, RemembersThatItWasCancelled)
{
    callbacks.cancel = 1;
    format.onRead = [this](ReadContext& context) {
        EXPECT_TRUE(context.cancelled());
        callbacks.cancel = 0;
        EXPECT_TRUE(context.cancelled());
        return goodOutcome();
    };
    EXPECT_EQ(read().result, OVXDLReader_Cancelled);
    EXPECT_EQ(callbacks.cancelQuestions, 1);
}

TEST_F(DocumentRead, DoesNotAskForCancellationOfARejectedDocument)
{
    callbacks.cancel = 1;
    format.onRead = [](ReadContext&) { return outcomeOf(ReadOutcome::kRejected, "broken"); };
    EXPECT_EQ(read().result, OVXDLReader_Rejected);
    EXPECT_EQ(callbacks.cancelQuestions, 0);
}

TEST_F(DocumentRead, AsksAndTellsNothingWithoutACallbackObject)
{
    SetOVDL_Callbacks(nullptr);
    format.onRead = [](ReadContext& context) {
        EXPECT_TRUE(context.acceptVersion(9000));
        EXPECT_FALSE(context.cancelled());
        context.progress(0.5f);
        return goodOutcome();
    };
    const auto result = read();
    EXPECT_EQ(result.result, OVXDLReader_Loaded);
    EXPECT_EQ(result.version, 9000u);
    EXPECT_THAT(callbacks.events, IsEmpty());
}

TEST_F(DocumentRead, LeavesACallbackObjectAloneThatUnregisteredItself)
{
    callbacks.onProgress = [] { SetOVDL_Callbacks(nullptr); };
    EXPECT_EQ(read().result, OVXDLReader_Loaded);
    EXPECT_THAT(callbacks.events, ElementsAre("progress"));
}

TEST_F(DocumentRead, HandsOutTheDocumentOfARejectionThatHasOne)
{
    format.onRead = [](ReadContext&) {
        auto outcome = goodOutcome();
        outcome.kind = ReadOutcome::kRejected;
        outcome.reason = "by request";
        outcome.document->assembly()->viewScale = 4.0;
        return outcome;
    };
    const auto result = read();
    EXPECT_EQ(result.result, OVXDLReader_Rejected);
    EXPECT_EQ(result.document->assembly()->viewScale, 4.0);
    EXPECT_EQ(result.reason, "by request");
}

TEST_F(DocumentRead, HasAReasonForEveryRejection)
{
    format.onRead = [](ReadContext&) { return outcomeOf(ReadOutcome::kRejected); };
    const auto result = read();
    expectEmptyAssembly(result, true);
    EXPECT_EQ(result.reason, "the document was rejected");
}

TEST_F(DocumentRead, RejectsAReadWithoutADocument)
{
    format.onRead = [](ReadContext&) { return ReadOutcome(); };
    const auto result = read();
    EXPECT_EQ(result.result, OVXDLReader_Rejected);
    expectEmptyAssembly(result, true);
    EXPECT_EQ(result.reason, "the format gave no document");
}

TEST_F(DocumentRead, TurnsAnExceptionOfTheFormatIntoARejectedDocument)
{
    format.onRead = [](ReadContext& context) -> ReadOutcome {
        context.acceptVersion(9000);
        throw std::runtime_error("lost the thread");
    };
    const auto result = read();
    EXPECT_EQ(result.result, OVXDLReader_Rejected);
    expectEmptyAssembly(result, true);
    EXPECT_EQ(result.reason, "scripted: lost the thread");
    EXPECT_EQ(result.version, 9000u);
}

TEST_F(DocumentRead, TurnsAnExceptionOfNoKnownTypeIntoARejectedDocument)
{
    format.onRead = [](ReadContext&) -> ReadOutcome { throw 5; };
    const auto result = read();
    EXPECT_EQ(result.result, OVXDLReader_Rejected);
    EXPECT_EQ(result.reason, "scripted: failed without saying why");
}

TEST_F(DocumentRead, LetsOutOfMemoryThrough)
{
    format.onRead = [](ReadContext&) -> ReadOutcome { throw std::bad_alloc(); };
    EXPECT_THROW(read(), std::bad_alloc);
}

struct Raiser {
    const char* name;
    std::function<void()> RecordingCallbacks::*where;
};

const Raiser kRaisers[] = {
    {"version_question", &RecordingCallbacks::onCheckVersions},
    {"progress", &RecordingCallbacks::onProgress},
    {"cancel_question", &RecordingCallbacks::onCancelQuestion},
};

class DocumentReadRaising : public DocumentRead, public testing::WithParamInterface<Raiser> {};

TEST_P(DocumentReadRaising, StopsTheFormatAndRaisesWhatTheCallbackRaised)
{
    callbacks.*(GetParam().where) = [] { throw std::logic_error("host"); };
    bool stopped = false;
    format.onRead = [&stopped](ReadContext& context) {
        try {
            context.progress(0.5f);
            const bool accepted = context.acceptVersion(9000);
            stopped = context.cancelled() || !accepted;
        } catch (...) {
            ADD_FAILURE() << "the format saw the exception";
        }
        return goodOutcome();
    };
    EXPECT_THROW(read(), std::logic_error);
    EXPECT_TRUE(stopped);
}

INSTANTIATE_TEST_SUITE_P(Rows, DocumentReadRaising, testing::ValuesIn(kRaisers),
                         [](const auto& row) { return row.param.name; });

TEST_F(DocumentRead, AsksNothingMoreAfterACallbackRaised)
{
    callbacks.onProgress = [] { throw std::logic_error("host"); };
    EXPECT_THROW(read(), std::logic_error);
    EXPECT_THAT(callbacks.events, ElementsAre("progress"));
}

}  // namespace
