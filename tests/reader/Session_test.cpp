#include <gmock/gmock.h>

#include <algorithm>
#include <new>
#include <stdexcept>
#include <type_traits>

#include "ReaderFixtures.h"

namespace {

using fixtures::Counted;
using fixtures::emptyAssembly;
using fixtures::emptyPart;
using fixtures::Prepared;
using fixtures::readInto;
using fixtures::RecordingCallbacks;
using fixtures::Registered;
using ovdl::PreparedDocument;
using testing::AllOf;
using testing::Each;
using testing::ElementsAre;
using testing::Ge;
using testing::IsEmpty;
using testing::Le;
using testing::Pair;

constexpr wchar_t kPath[] = L"prepared/session";

TEST(DocumentObject, IsEmptyAtFirst)
{
    CDispListsDoc document;
    std::wstring name = L"Default";
    EXPECT_EQ(document.partDocument, nullptr);
    EXPECT_EQ(document.assemblyDocument, nullptr);
    EXPECT_EQ(document.documentPath, L"");
    EXPECT_EQ(document.getTempDispListDataSHDArrayForConfig(name), nullptr);
    EXPECT_TRUE(document.getRefModelsMap().empty());
}

TEST(DocumentObject, CanBeDerivedFromAndLiveOnTheStack)
{
    struct Derived : CDispListsDoc {
        int added = 7;
    };
    const Prepared prepared(kPath, emptyPart);
    Derived document;
    EXPECT_EQ(readInto(document, kPath).result, OVXDLReader_Loaded);
    EXPECT_EQ(document.added, 7);
}

TEST(DocumentObject, KeepsTwoDocumentsApart)
{
    int alive = 0;
    const auto factory = [&alive] {
        auto made = emptyPart();
        made->own<Counted>(alive);
        return made;
    };
    const Prepared prepared(kPath, factory);
    auto one = std::make_unique<CDispListsDoc>();
    readInto(*one, kPath);
    CDispListsDoc two;
    EXPECT_EQ(alive, 1);
    readInto(two, kPath);
    EXPECT_EQ(alive, 2);
    EXPECT_NE(one->partDocument, two.partDocument);
    one.reset();
    EXPECT_EQ(alive, 1);
    EXPECT_FALSE(two.partDocument->isRejected());
}

TEST(ReadFile, HandsOutThePartThatWasRead)
{
    OVDLPartDocument* made = nullptr;
    const Prepared prepared(kPath, [&made] {
        auto document = emptyPart();
        made = document->part.get();
        return document;
    });
    CDispListsDoc document;
    const auto call = readInto(document, kPath);
    EXPECT_EQ(call.result, OVXDLReader_Loaded);
    EXPECT_EQ(call.version, 12000u);
    EXPECT_EQ(document.partDocument, made);
    EXPECT_EQ(document.assemblyDocument, nullptr);
    EXPECT_EQ(document.documentPath, kPath);
}

TEST(ReadFile, HandsOutTheAssemblyThatWasRead)
{
    OVDLAssemblyDocument* made = nullptr;
    const Prepared prepared(kPath, [&made] {
        auto document = emptyAssembly();
        made = document->assembly.get();
        return document;
    });
    CDispListsDoc document;
    EXPECT_EQ(readInto(document, kPath).result, OVXDLReader_Loaded);
    EXPECT_EQ(document.partDocument, nullptr);
    EXPECT_EQ(document.assemblyDocument, made);
}

TEST(ReadFile, HandsOutBothOrNeitherAsMade)
{
    const Prepared both(L"prepared/both", [] {
        auto document = emptyPart();
        document->assembly = std::make_unique<OVDLAssemblyDocument>();
        return document;
    });
    const Prepared neither(L"prepared/neither", [] { return std::make_unique<PreparedDocument>(); });
    CDispListsDoc document;
    EXPECT_EQ(readInto(document, L"prepared/both").result, OVXDLReader_Loaded);
    EXPECT_NE(document.partDocument, nullptr);
    EXPECT_NE(document.assemblyDocument, nullptr);
    EXPECT_EQ(readInto(document, L"prepared/neither").result, OVXDLReader_Loaded);
    EXPECT_EQ(document.partDocument, nullptr);
    EXPECT_EQ(document.assemblyDocument, nullptr);
}

TEST(ReadFile, FillsNothingForAnotherAccessText)
{
    int made = 0;
    const Prepared prepared(kPath, [&made] {
        ++made;
        return emptyPart();
    });
    RecordingCallbacks callbacks;
    const Registered registered(callbacks);
    for (const wchar_t* access :
         {L"", L"raylume-display-lis", L"raylume-display-list ", L"RAYLUME-DISPLAY-LIST"}) {
        CDispListsDoc document;
        unsigned long version = 77;
        EXPECT_EQ(document.ReadFile(access, kPath, version, true), OVXDLReader_NotOpened);
        EXPECT_EQ(version, 77u);
        EXPECT_EQ(document.partDocument, nullptr);
        EXPECT_EQ(document.documentPath, L"");
    }
    EXPECT_EQ(made, 0);
    EXPECT_THAT(callbacks.events, IsEmpty());
    EXPECT_NE(ovdl::lastReason(), "");
}

TEST(ReadFile, KeepsTheDocumentThatIsThereOnAnotherAccessText)
{
    const Prepared prepared(kPath, emptyPart);
    CDispListsDoc document;
    readInto(document, kPath);
    auto* part = document.partDocument;
    unsigned long version = 0;
    document.ReadFile(L"", L"prepared/other", version, true);
    EXPECT_EQ(document.partDocument, part);
    EXPECT_EQ(document.documentPath, kPath);
}

TEST(ReadFile, DoesNotCareForTheFlag)
{
    const Prepared prepared(kPath, emptyPart);
    CDispListsDoc document;
    unsigned long version = 0;
    EXPECT_EQ(document.ReadFile(kReaderAccess, kPath, version, false), OVXDLReader_Loaded);
    EXPECT_NE(document.partDocument, nullptr);
}

TEST(ReadFile, GivesNothingForAPathWithoutADocument)
{
    RecordingCallbacks callbacks;
    const Registered registered(callbacks);
    CDispListsDoc document;
    unsigned long version = 77;
    EXPECT_EQ(document.ReadFile(kReaderAccess, L"prepared/unknown", version, true), OVXDLReader_NotOpened);
    EXPECT_EQ(version, 77u);
    EXPECT_EQ(document.partDocument, nullptr);
    EXPECT_EQ(document.assemblyDocument, nullptr);
    EXPECT_EQ(document.documentPath, L"prepared/unknown");
    EXPECT_EQ(ovdl::lastReason(), "there is no such file");
    EXPECT_THAT(callbacks.events, IsEmpty());
}

TEST(ReadFile, ReplacesTheDocumentOfAnEarlierRead)
{
    int alive = 0;
    int mostAlive = 0;
    const Prepared prepared(kPath, [&] {
        auto document = emptyPart();
        document->own<Counted>(alive);
        mostAlive = std::max(mostAlive, alive);
        return document;
    });
    CDispListsDoc document;
    readInto(document, kPath);
    readInto(document, kPath);
    EXPECT_EQ(alive, 1);
    EXPECT_EQ(mostAlive, 1);
    readInto(document, L"prepared/unknown");
    EXPECT_EQ(alive, 0);
    EXPECT_EQ(document.partDocument, nullptr);
}

TEST(ReadFile, GivesOutTheVersionOfTheDocument)
{
    for (const std::uint32_t version : {0u, 3869u, 0x80000000u, 0xFFFFFFFFu}) {
        const Prepared prepared(kPath, [version] {
            auto document = emptyPart();
            document->version = version;
            return document;
        });
        CDispListsDoc document;
        EXPECT_EQ(readInto(document, kPath).version, version);
    }
}

TEST(ReadFile, GivesTheResultThatThePreparedDocumentAsksForAndTheDocumentToo)
{
    const Prepared prepared(kPath, [] {
        auto document = emptyPart();
        document->result = OVXDLReader_NotOpened;
        return document;
    });
    CDispListsDoc document;
    EXPECT_EQ(readInto(document, kPath).result, OVXDLReader_NotOpened);
    EXPECT_NE(document.partDocument, nullptr);
    EXPECT_EQ(ovdl::lastReason(), "");
}

TEST(ReadFile, LeavesAnEmptyObjectWhenMemoryRunsOut)
{
    const Prepared good(L"prepared/good", emptyPart);
    const Prepared prepared(kPath, []() -> std::unique_ptr<PreparedDocument> { throw std::bad_alloc(); });
    CDispListsDoc document;
    readInto(document, L"prepared/good");
    EXPECT_THROW(readInto(document, kPath), std::bad_alloc);
    EXPECT_EQ(document.partDocument, nullptr);
}

TEST(Configurations, AreFoundByTheirExactName)
{
    const Prepared prepared(kPath, [] {
        auto document = emptyAssembly();
        auto* component = document->own<uoTempAssemblySHDData_c>();
        document->configurations[L"Explosion"] =
            document->array<uoTempAssemblySHDData_c>({component, nullptr});
        document->configurations[L""] = {};
        return document;
    });
    CDispListsDoc document;
    readInto(document, kPath);
    const auto count = [&document](std::wstring name) -> long long {
        const auto* found = document.getTempDispListDataSHDArrayForConfig(name);
        return found ? found->count : -1;
    };
    EXPECT_EQ(count(L"Explosion"), 2);
    EXPECT_EQ(count(L""), 0);
    EXPECT_EQ(count(L"explosion"), -1);
    EXPECT_EQ(count(L"Explosion "), -1);
}

TEST(Configurations, LiveAsLongAsTheDocument)
{
    const Prepared prepared(kPath, [] {
        auto document = emptyAssembly();
        document->configurations[L"A"] = {};
        return document;
    });
    CDispListsDoc document;
    readInto(document, kPath);
    std::wstring name = L"A";
    auto* first = document.getTempDispListDataSHDArrayForConfig(name);
    EXPECT_NE(first, nullptr);
    EXPECT_EQ(document.getTempDispListDataSHDArrayForConfig(name), first);
    EXPECT_EQ(name, L"A");
    readInto(document, L"prepared/unknown");
    EXPECT_EQ(document.getTempDispListDataSHDArrayForConfig(name), nullptr);
}

class Reading : public testing::Test {
protected:
    fixtures::ReadCall read() { return readInto(document, kPath); }

    RecordingCallbacks callbacks;
    Registered registered{callbacks};
    CDispListsDoc document;
};

TEST_F(Reading, AsksForTheVersionOnceWithTheDocumentsFirstAndTheReadersSecond)
{
    const Prepared prepared(kPath, [] {
        auto made = emptyPart();
        made->version = 16490;
        return made;
    });
    read();
    EXPECT_THAT(callbacks.versions, ElementsAre(Pair(16490, 12000)));
    read();
    EXPECT_THAT(callbacks.versions, ElementsAre(Pair(16490, 12000), Pair(16490, 12000)));
}

TEST_F(Reading, AsksInThisOrder)
{
    const Prepared prepared(kPath, emptyPart);
    read();
    EXPECT_EQ(callbacks.events.front(), "progress");
    EXPECT_EQ(callbacks.events.back(), "progress");
    EXPECT_THAT(callbacks.events, testing::IsSupersetOf({"version", "cancel?"}));
}

TEST_F(Reading, TellsAProgressThatNeverFallsAndEndsWithOne)
{
    const Prepared prepared(kPath, emptyPart);
    read();
    EXPECT_THAT(callbacks.shares, Each(AllOf(Ge(0.0f), Le(1.0f))));
    EXPECT_TRUE(std::is_sorted(callbacks.shares.begin(), callbacks.shares.end()));
    EXPECT_EQ(callbacks.shares.back(), 1.0f);
}

TEST_F(Reading, RejectsADocumentWhoseVersionIsRefused)
{
    int alive = 0;
    const Prepared prepared(kPath, [&alive] {
        auto made = emptyPart();
        made->own<Counted>(alive);
        return made;
    });
    callbacks.accept = 0;
    EXPECT_EQ(read().result, OVXDLReader_Rejected);
    EXPECT_EQ(document.partDocument, nullptr);
    ASSERT_NE(document.assemblyDocument, nullptr);
    EXPECT_TRUE(document.assemblyDocument->isRejected());
    EXPECT_EQ(ovdl::lastReason(), "the document's version 12000 was refused");
    EXPECT_EQ(alive, 0);
}

TEST_F(Reading, LeavesAnEmptyAssemblyThatIsNotRejectedWhenCancelled)
{
    int alive = 0;
    const Prepared prepared(kPath, [&alive] {
        auto made = emptyPart();
        made->own<Counted>(alive);
        made->configurations[L"A"] = {};
        return made;
    });
    callbacks.cancel = 1;
    EXPECT_EQ(read().result, OVXDLReader_Cancelled);
    EXPECT_EQ(document.partDocument, nullptr);
    ASSERT_NE(document.assemblyDocument, nullptr);
    EXPECT_FALSE(document.assemblyDocument->isRejected());
    EXPECT_EQ(document.assemblyDocument->components.count, 0);
    std::wstring name = L"A";
    EXPECT_EQ(document.getTempDispListDataSHDArrayForConfig(name), nullptr);
    EXPECT_EQ(ovdl::lastReason(), "");
    EXPECT_EQ(alive, 0);
}

TEST_F(Reading, TellsTheVersionOfACancelledDocumentToo)
{
    const Prepared prepared(kPath, [] {
        auto made = emptyPart();
        made->version = 9000;
        return made;
    });
    callbacks.cancel = 1;
    EXPECT_EQ(read().version, 9000u);
    EXPECT_THAT(callbacks.versions, ElementsAre(Pair(9000, 12000)));
}

TEST_F(Reading, CallsNobodyAfterTheObjectIsUnregistered)
{
    const Prepared prepared(kPath, emptyPart);
    SetOVDL_Callbacks(nullptr);
    EXPECT_EQ(read().result, OVXDLReader_Loaded);
    EXPECT_THAT(callbacks.events, IsEmpty());
}

TEST_F(Reading, CallsTheObjectThatWasRegisteredLast)
{
    const Prepared prepared(kPath, emptyPart);
    RecordingCallbacks later;
    SetOVDL_Callbacks(&later);
    read();
    EXPECT_THAT(callbacks.events, IsEmpty());
    EXPECT_EQ(later.versions.size(), 1u);
}

TEST_F(Reading, RaisesWhatACallbackRaisedAndLeavesTheObjectEmpty)
{
    int alive = 0;
    const Prepared prepared(kPath, [&alive] {
        auto made = emptyPart();
        made->own<Counted>(alive);
        return made;
    });
    callbacks.onCancelQuestion = [] { throw std::logic_error("host"); };
    EXPECT_THROW(read(), std::logic_error);
    EXPECT_EQ(document.partDocument, nullptr);
    EXPECT_EQ(document.assemblyDocument, nullptr);
    EXPECT_EQ(alive, 0);
}

TEST_F(Reading, HandsOutARejectedDocumentMarkedAsSuch)
{
    const Prepared prepared(kPath, [] {
        auto made = emptyPart();
        made->assembly = std::make_unique<OVDLAssemblyDocument>();
        made->rejected = true;
        made->reason = "made to be refused";
        return made;
    });
    EXPECT_EQ(read().result, OVXDLReader_Rejected);
    ASSERT_NE(document.partDocument, nullptr);
    ASSERT_NE(document.assemblyDocument, nullptr);
    EXPECT_TRUE(document.partDocument->isRejected());
    EXPECT_TRUE(document.assemblyDocument->isRejected());
    EXPECT_EQ(ovdl::lastReason(), "made to be refused");
    EXPECT_EQ(callbacks.versions.size(), 1u);
}

TEST_F(Reading, LeavesADocumentAloneThatAnswersForItself)
{
    struct OfTwoMinds : OVDLPartDocument {
        bool isRejected() override { return false; }
    };
    const Prepared prepared(kPath, [] {
        auto made = std::make_unique<PreparedDocument>();
        made->part = std::make_unique<OfTwoMinds>();
        made->rejected = true;
        return made;
    });
    read();
    ASSERT_NE(document.partDocument, nullptr);
    EXPECT_FALSE(document.partDocument->isRejected());
    EXPECT_NE(ovdl::lastReason(), "");
}

TEST_F(Reading, ClearsTheReasonOnTheNextReadThatGoesWell)
{
    const Prepared prepared(kPath, emptyPart);
    readInto(document, L"prepared/unknown");
    EXPECT_NE(ovdl::lastReason(), "");
    read();
    EXPECT_EQ(ovdl::lastReason(), "");
}

class Handlers : public testing::Test {
protected:
    ~Handlers() override
    {
        ovdl::setProgressHandler(nullptr);
        ovdl::setCancelHandler(nullptr);
    }

    OVDL_Callbacks callbacks;
    std::vector<float> shares;
};

TEST_F(Handlers, GetTheProgressOfTheBaseObject)
{
    ovdl::setProgressHandler([this](float done) { shares.push_back(done); });
    callbacks.UpdateProgress(0.25f, 1, 4);
    callbacks.SetPercentCompleted(50.0f);
    EXPECT_THAT(shares, ElementsAre(0.25f, 0.5f));
}

TEST_F(Handlers, AnswerTheCancelQuestionOfTheBaseObject)
{
    EXPECT_EQ(callbacks.ShouldReadBeCancelled(), 0);
    ovdl::setCancelHandler([] { return true; });
    EXPECT_NE(callbacks.ShouldReadBeCancelled(), 0);
    ovdl::setCancelHandler([] { return false; });
    EXPECT_EQ(callbacks.ShouldReadBeCancelled(), 0);
}

TEST_F(Handlers, MayBeTakenAway)
{
    ovdl::setProgressHandler([this](float done) { shares.push_back(done); });
    ovdl::setCancelHandler([] { return true; });
    ovdl::setProgressHandler({});
    ovdl::setCancelHandler({});
    callbacks.UpdateProgress(0.5f, 1, 1);
    callbacks.SetPercentCompleted(50.0f);
    EXPECT_EQ(callbacks.ShouldReadBeCancelled(), 0);
    EXPECT_THAT(shares, IsEmpty());
}

TEST_F(Handlers, MayReplaceThemselves)
{
    const auto kept = std::make_shared<int>(5);
    ovdl::setProgressHandler([this, kept](float) {
        ovdl::setProgressHandler({});
        shares.push_back(static_cast<float>(*kept));
    });
    ovdl::setCancelHandler([kept] {
        ovdl::setCancelHandler({});
        return *kept == 5;
    });
    callbacks.UpdateProgress(0.5f, 1, 1);
    callbacks.UpdateProgress(0.5f, 1, 1);
    EXPECT_THAT(shares, ElementsAre(5.0f));
    EXPECT_NE(callbacks.ShouldReadBeCancelled(), 0);
    EXPECT_EQ(callbacks.ShouldReadBeCancelled(), 0);
    EXPECT_EQ(kept.use_count(), 1);
}

TEST_F(Handlers, AreCalledDuringAReadWithABaseObjectRegistered)
{
    const Prepared prepared(kPath, emptyPart);
    const Registered registered(callbacks);
    ovdl::setProgressHandler([this](float done) { shares.push_back(done); });
    CDispListsDoc document;
    readInto(document, kPath);
    EXPECT_THAT(shares, ElementsAre(0.0f, 1.0f));
    ovdl::setCancelHandler([] { return true; });
    EXPECT_EQ(readInto(document, kPath).result, OVXDLReader_Cancelled);
}

TEST_F(Handlers, AreNotCalledWithoutARegisteredObject)
{
    const Prepared prepared(kPath, emptyPart);
    ovdl::setProgressHandler([this](float done) { shares.push_back(done); });
    ovdl::setCancelHandler([] { return true; });
    CDispListsDoc document;
    EXPECT_EQ(readInto(document, kPath).result, OVXDLReader_Loaded);
    EXPECT_THAT(shares, IsEmpty());
}

TEST_F(Handlers, AreNotNeededByTheOtherBaseOperations)
{
    CDispListsDoc document;
    auto* storage = suFileStorage::createStorage(L"x", 0, nullptr, nullptr, 0, 1, nullptr, nullptr);
    EXPECT_EQ(callbacks.CheckVersions(2, 1), 1);
    EXPECT_EQ(callbacks.CheckVersions(1, 2), 1);
    EXPECT_EQ(callbacks.GetJapaneseFontName(), L"");
    callbacks.LoadExtraDataFromStorage(*storage);
    EXPECT_EQ(storage->isOpen(), 0);
}

TEST(Formats, AreNamedWithThePreparedOnesFirst)
{
    ASSERT_FALSE(ovdl::formatNames().empty());
    EXPECT_EQ(ovdl::formatNames().front(), "prepared");
}

TEST(EmbeddedItems, AreAnEmptyContainerOfTheCallersForAnyPath)
{
    static_assert(std::has_virtual_destructor_v<OVDLOleDocumentContainer>);
    const Prepared prepared(kPath, emptyPart);
    for (const wchar_t* path : {kPath, L"prepared/unknown", L""}) {
        CList<CRectItem*, CRectItem*> items(10);
        const std::unique_ptr<OVDLOleDocumentContainer> container(restoreOleItems(path, items));
        EXPECT_NE(container, nullptr);
        EXPECT_EQ(items.GetCount(), 0);
    }
}

}  // namespace
