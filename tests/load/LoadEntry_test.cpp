#include "raylume/load/LoadEntry.h"

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <stdexcept>
#include <type_traits>

#include "tests/load/LoadFixture.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class LoadEntry : public LoadFixture {
protected:
    LoadEntry() { unsetenv("RAYLUME_REGRESSION_MODE"); }
    ~LoadEntry() override { unsetenv("RAYLUME_REGRESSION_MODE"); }

    void givePart()
    {
        partDocument.tessData = &triangle.part;
        answers().partDocument = &partDocument;
    }

    void giveAssembly()
    {
        assemblyDocument.components = components;
        answers().assemblyDocument = &assemblyDocument;
    }

    // An entry under the document's path, to see whether a load drops it.
    void registerStorage() { getRegisteredStorage(L"a.doc", false); }
    bool isStorageRegistered() { return g_storageRegistry.count(L"a.doc") != 0; }

    static std::size_t indexOf(const std::string& line)
    {
        return static_cast<std::size_t>(std::find(lines().begin(), lines().end(), line) - lines().begin());
    }

    build::TrianglePart triangle;
    build::Component component{L"bolt-1@a", &triangle.part};
    build::Components components{&component};
    OVDLPartDocument partDocument;
    OVDLAssemblyDocument assemblyDocument;
};

TEST_F(LoadEntry, RunsThePartRoadInItsOrder)
{
    givePart();
    const auto model = load();
    EXPECT_THAT(
        lines(),
        ElementsAre("CDispListsDoc()", "restoreOleItems(a.doc)",
                    "createStorage(a.doc,0,null,null,0,1,null,null)", "isOpen", "SetOVDL_Callbacks(object)",
                    "ReadFile(raylume-display-list,a.doc,true)", "SetOVDL_Callbacks(null)",
                    "isRejected(part)", "readAnimationXML(a.doc)", "translateLights", "getNumBodies()",
                    "getModelVizProp(0)", "getBodyPropInfo(0)", "getBodyVizProp(0)", "getFaceVizProp(0)",
                    "attachPartDecals(a.doc,0)", "SetOVDL_Callbacks(null)", "~container", "~CDispListsDoc",
                    "createAssemblyHierarchy", "updateSingletons", "updateFirstModelName(a.doc)"));
}

TEST_F(LoadEntry, RunsTheAssemblyRoadInItsOrder)
{
    giveAssembly();
    const auto model = load();
    EXPECT_THAT(
        lines(),
        ElementsAre(
            "CDispListsDoc()", "restoreOleItems(a.doc)", "createStorage(a.doc,0,null,null,0,1,null,null)",
            "isOpen", "SetOVDL_Callbacks(object)", "ReadFile(raylume-display-list,a.doc,true)",
            "SetOVDL_Callbacks(null)", "isRejected(assembly)", "readAnimationXML(a.doc)",
            "getTemporaryFilePath(LDRConfigName.txt,shared)", "getNumBodies()", "getModelVizProp(0)",
            "getBodyPropInfo(0)", "getBodyVizProp(0)", "getFaceVizProp(0)", "attachPartDecals(a.doc,0)",
            "attachInstanceDecals(bolt-1@a,a.doc)", "translateLights", "SetOVDL_Callbacks(null)",
            "~container", "~CDispListsDoc", "createAssemblyHierarchy", "updateSingletons"));
}

TEST_F(LoadEntry, EndsBeforeAnyCallbackWhenTheStorageIsNotOpen)
{
    givePart();
    registerStorage();
    recorder().reset();
    answers().storageOpen = false;
    EXPECT_EQ(load(), nullptr);
    EXPECT_THAT(lines(), ElementsAre("CDispListsDoc()", "restoreOleItems(a.doc)",
                                     "createStorage(a.doc,0,null,null,0,1,null,null)", "isOpen",
                                     "~container", "~CDispListsDoc"));
    EXPECT_TRUE(isStorageRegistered());
    EXPECT_THAT(messages, IsEmpty());
}

TEST_F(LoadEntry, RegistersTheCallbackForTheReadAlone)
{
    givePart();
    std::vector<bool> registeredAt;
    const auto look = [&] { registeredAt.push_back(recorder().registered != nullptr); };
    recorder().onCall("ReadFile", look);
    recorder().onCall("isRejected", look);
    recorder().onCall("getNumBodies", look);
    load();
    EXPECT_THAT(registeredAt, ElementsAre(true, false, false));
    EXPECT_EQ(recorder().countBeginning("SetOVDL_Callbacks"), 3u);
}

TEST_F(LoadEntry, NeverRegistersTheProbeOfTheStorage)
{
    givePart();
    bool anyRegistered = false;
    recorder().onCall("getNumBodies", [&] { anyRegistered = !g_storageRegistry.empty(); });
    load();
    EXPECT_FALSE(anyRegistered);
    EXPECT_EQ(recorder().count("isOpen"), 1u);
    EXPECT_EQ(recorder().countBeginning("suStructuredStorage"), 0u);
    EXPECT_EQ(recorder().probes.size(), 1u);
}

TEST_F(LoadEntry, DestroysTheReaderDocumentBeforeTheTree)
{
    giveAssembly();
    load();
    EXPECT_LT(indexOf("~container"), indexOf("~CDispListsDoc"));
    EXPECT_LT(indexOf("~CDispListsDoc"), indexOf("createAssemblyHierarchy"));
}

TEST_F(LoadEntry, ReadsTheAnimationIntoTheNewModelBeforeAnythingElse)
{
    giveAssembly();
    std::int32_t instancesThen = -1;
    std::size_t placementsThen = 1;
    standIns().onReadAnimation = [&](dlModel& model) {
        instancesThen = model.instanceCount;
        placementsThen = model.componentXforms.size();
        model.animationTracks[L"kept"];
    };
    standIns().animationResult = false;
    const auto model = load();
    ASSERT_NE(model, nullptr);
    EXPECT_EQ(standIns().animatedModel, model.get());
    EXPECT_EQ(instancesThen, 0);
    EXPECT_EQ(placementsThen, 0u);
    EXPECT_EQ(model->animationTracks.count(L"kept"), 1u);
    EXPECT_LT(indexOf("readAnimationXML(a.doc)"),
              indexOf("getTemporaryFilePath(LDRConfigName.txt,shared)"));
}

TEST_F(LoadEntry, LooksForTheConfigurationFileInAssembliesAlone)
{
    givePart();
    load();
    EXPECT_EQ(recorder().countBeginning("getTemporaryFilePath"), 0u);
}

TEST_F(LoadEntry, GivesNullForANullPath)
{
    EXPECT_EQ(dlModel::ReadModel(nullptr), nullptr);
    EXPECT_THAT(lines(), IsEmpty());
}

TEST_F(LoadEntry, IgnoresTheResultOfTheRead)
{
    givePart();
    for (const auto result : {OVXDLReader_NotOpened, OVXDLReader_Rejected, OVXDLReader_Cancelled}) {
        answers().result = result;
        const auto model = load();
        ASSERT_NE(model, nullptr);
        EXPECT_FALSE(model->loadRejected);
        EXPECT_EQ(model->instanceCount, 1);
    }
}

TEST_F(LoadEntry, PrefersThePartDocument)
{
    givePart();
    giveAssembly();
    const auto model = load();
    ASSERT_NE(model, nullptr);
    EXPECT_TRUE(model->isPartDocument);
    EXPECT_THAT(recorder().linesBeginning({"isRejected"}), ElementsAre("isRejected(part)"));
}

TEST_F(LoadEntry, DoesNotFallBackFromARejectedPartToTheAssembly)
{
    givePart();
    giveAssembly();
    partDocument.rejected = true;
    const auto model = load();
    ASSERT_NE(model, nullptr);
    EXPECT_TRUE(model->loadRejected);
    EXPECT_FALSE(model->isPartDocument);
    EXPECT_THAT(recorder().linesBeginning({"isRejected"}), ElementsAre("isRejected(part)"));
    EXPECT_EQ(recorder().countBeginning("attach"), 0u);
}

class Rejection : public LoadEntry {
protected:
    // What every rejected model is.
    void expectRejected(const dlModel* model)
    {
        ASSERT_NE(model, nullptr);
        EXPECT_TRUE(model->loadRejected);
        EXPECT_EQ(model->documentVersion, 0xFFFFFFFFu);
        EXPECT_FALSE(model->versionGatePassed);
        EXPECT_EQ(model->instances, nullptr);
        EXPECT_EQ(model->instanceCount, 0);
        EXPECT_EQ(model->modelName, "a.doc");
        EXPECT_TRUE(model->animationTracks.empty());
        EXPECT_TRUE(isStorageRegistered());
        EXPECT_EQ(recorder().countBeginning("readAnimationXML"), 0u);
        EXPECT_THAT(recorder().linesBeginning({"create", "update"}),
                    ElementsAre("createStorage(a.doc,0,null,null,0,1,null,null)", "createAssemblyHierarchy",
                                "updateSingletons"));
    }
};

struct RejectionCase {
    const char* name;
    bool part;
    bool assembly;
    bool terminate;
};

class RejectionRows : public Rejection, public testing::WithParamInterface<RejectionCase> {};

TEST_P(RejectionRows, GiveAnEmptyModelWithTheFlag)
{
    registerStorage();
    recorder().reset();
    answers().version = 9000;
    partDocument.rejected = assemblyDocument.rejected = true;
    if (GetParam().part)
        givePart();
    if (GetParam().assembly)
        giveAssembly();
    g_terminateLoad = GetParam().terminate;
    const auto model = load();
    expectRejected(model.get());
}

const RejectionCase kRejections[] = {
    {"a_read_that_leaves_no_document", false, false, false},
    {"a_rejected_part", true, false, false},
    {"a_rejected_assembly", false, true, false},
    {"a_rejected_part_although_the_load_was_cancelled", true, false, true},
    {"a_read_that_leaves_no_document_although_the_load_was_cancelled", false, false, true},
};
INSTANTIATE_TEST_SUITE_P(Rows, RejectionRows, testing::ValuesIn(kRejections),
                         [](const auto& row) { return row.param.name; });

struct GateCase {
    const char* name;
    unsigned long version;
    bool passes;
    std::uint32_t kept;
};

class VersionGate : public LoadEntry, public testing::WithParamInterface<GateCase> {};

TEST_P(VersionGate, OpensForPartsFromItsVersionOn)
{
    givePart();
    answers().version = GetParam().version;
    const auto model = load();
    ASSERT_NE(model, nullptr);
    EXPECT_EQ(model->versionGatePassed, GetParam().passes);
    EXPECT_EQ(model->documentVersion, GetParam().kept);
}

TEST_P(VersionGate, OpensForAssembliesFromItsVersionOn)
{
    giveAssembly();
    answers().version = GetParam().version;
    const auto model = load();
    ASSERT_NE(model, nullptr);
    EXPECT_EQ(model->versionGatePassed, GetParam().passes);
    EXPECT_EQ(model->documentVersion, GetParam().kept);
}

const GateCase kGates[] = {
    {"zero", 0, false, 0},
    {"one_below", 3869, false, 3869},
    {"exactly_at_it", 3870, true, 3870},
    {"top_bit_set", 0x80000000ul, true, 0x80000000u},
    {"all_bits_set", 0xFFFFFFFFul, true, 0xFFFFFFFFu},
};
INSTANTIATE_TEST_SUITE_P(Rows, VersionGate, testing::ValuesIn(kGates),
                         [](const auto& row) { return row.param.name; });

TEST_F(LoadEntry, StartsTheVersionAtZero)
{
    givePart();
    answers().givesVersion = false;
    const auto model = load();
    ASSERT_NE(model, nullptr);
    EXPECT_EQ(model->documentVersion, 0u);
    EXPECT_FALSE(model->versionGatePassed);
}

TEST_F(LoadEntry, CancelledDuringTheReadMakesNoModel)
{
    givePart();
    registerStorage();
    const int before = allocations::liveModels();
    recorder().onCall("ReadFile", [] { g_terminateLoad = true; });
    int during = before;
    recorder().onCall("~container", [&] { during = allocations::liveModels(); });
    EXPECT_EQ(load(), nullptr);
    EXPECT_FALSE(isStorageRegistered());
    EXPECT_EQ(during, before);
    EXPECT_EQ(recorder().countBeginning("readAnimationXML"), 0u);
    EXPECT_EQ(recorder().countBeginning("createAssemblyHierarchy"), 0u);
    EXPECT_EQ(recorder().countBeginning("updateSingletons"), 0u);
}

TEST_F(LoadEntry, CancelledDuringAPartTranslationRunsItToItsEnd)
{
    givePart();
    registerStorage();
    ovScene_c holder;
    pwSceneData_c data;
    holder.sceneData = &data;
    partDocument.sceneHolder = &holder;
    const int before = allocations::liveModels();
    int during = 0;
    recorder().onCall("translateLights", [&] {
        g_terminateLoad = true;
        during = allocations::liveModels();
    });
    EXPECT_EQ(load(), nullptr);
    EXPECT_EQ(during, before + 1);
    EXPECT_EQ(allocations::liveModels(), before);
    EXPECT_FALSE(isStorageRegistered());
    EXPECT_EQ(recorder().count("attachPartDecals(a.doc,0)"), 1u);
    EXPECT_EQ(recorder().count("translateScene(a.doc)"), 1u);
    EXPECT_EQ(recorder().countBeginning("createAssemblyHierarchy"), 0u);
}

TEST_F(LoadEntry, CancelledAtTheEndOfAnAssemblyStillGivesNull)
{
    giveAssembly();
    registerStorage();
    const int before = allocations::liveModels();
    recorder().onCall("translateLights", [] { g_terminateLoad = true; });
    EXPECT_EQ(load(), nullptr);
    EXPECT_EQ(allocations::liveModels(), before);
    EXPECT_FALSE(isStorageRegistered());
}

TEST_F(LoadEntry, DestroysACancelledModelBeforeTheStorageIsDropped)
{
    givePart();
    registerStorage();
    const int before = allocations::liveModels();
    int atDrop = -1;
    recorder().onCall("translateLights", [] { g_terminateLoad = true; });
    recorder().onCall("~suStructuredStorage", [&] { atDrop = allocations::liveModels(); });
    load();
    EXPECT_EQ(atDrop, before);
}

TEST_F(LoadEntry, SuccessDropsTheRegisteredStorage)
{
    givePart();
    getRegisteredStorage(L"A.DOC", false);
    EXPECT_NE(load(), nullptr);
    EXPECT_EQ(recorder().count("~suStructuredStorage(A.DOC)"), 1u);
    EXPECT_FALSE(isStorageRegistered());
}

TEST_F(LoadEntry, NeverWritesTheCancelFlag)
{
    givePart();
    g_terminateLoad = true;
    EXPECT_EQ(load(), nullptr);
    EXPECT_TRUE(g_terminateLoad);
    EXPECT_EQ(load(), nullptr);
    EXPECT_TRUE(g_terminateLoad);
    answers().partDocument = nullptr;
    EXPECT_NE(load(), nullptr);
    EXPECT_TRUE(g_terminateLoad);
}

struct FailureCase {
    const char* name;
    const char* at;
    bool container = true;  // Whether there is one at that moment.
};

class Failure : public LoadEntry, public testing::WithParamInterface<FailureCase> {};

TEST_P(Failure, LeavesWithEverythingUnwound)
{
    build::Components twice{&component, &component};
    assemblyDocument.components = twice;
    answers().assemblyDocument = &assemblyDocument;
    triangle.part.tellsOther = true;
    triangle.part.told = 1;
    registerStorage();
    recorder().onCall(GetParam().at, [] { platform::raiseInvalidArgument(); });
    const int before = allocations::liveModels();
    try {
        load();
        FAIL() << "nothing was raised";
    } catch (const platform::ComError& error) {
        EXPECT_EQ(error.code(), platform::kErrorInvalidArgument);
    }
    EXPECT_EQ(allocations::liveModels(), before);
    EXPECT_EQ(recorder().registered, nullptr);
    EXPECT_EQ(recorder().count("~container"), GetParam().container ? 1u : 0u);
    EXPECT_EQ(recorder().count("~CDispListsDoc"), 1u);
    EXPECT_TRUE(isStorageRegistered());
}

const FailureCase kFailures[] = {
    {"of_the_read", "ReadFile"},
    {"of_the_question_for_rejection", "isRejected"},
    {"of_the_animation", "readAnimationXML"},
    {"of_a_capture", "getBodyVizProp"},
    {"of_a_face", "getFaceVizProp"},
    {"of_the_decals_of_a_part", "attachPartDecals"},
    {"of_the_decals_of_an_instance", "attachInstanceDecals"},
    {"of_the_lights", "translateLights"},
    {"of_the_embedded_items", "restoreOleItems", false},
    {"of_the_storage", "createStorage"},
    {"of_the_question_whether_it_is_open", "isOpen"},
    {"of_the_acceptance_test", "getModelVizProp"},
};
INSTANTIATE_TEST_SUITE_P(Rows, Failure, testing::ValuesIn(kFailures),
                         [](const auto& row) { return row.param.name; });

TEST_F(LoadEntry, FreesTheModelWhenTheTailFails)
{
    giveAssembly();
    const int before = allocations::liveModels();
    recorder().onCall("createAssemblyHierarchy", [] { throw std::runtime_error("no tree"); });
    EXPECT_THROW(load(), std::runtime_error);
    EXPECT_EQ(allocations::liveModels(), before);
}

TEST_F(LoadEntry, RaisesInvalidArgumentForBodiesThatAreNotThere)
{
    giveAssembly();
    registerStorage();
    triangle.part.tellsOther = true;
    triangle.part.told = 2;
    const int before = allocations::liveModels();
    try {
        load();
        FAIL() << "nothing was raised";
    } catch (const platform::ComError& error) {
        EXPECT_EQ(error.code(), 0x80070057u);
    }
    EXPECT_EQ(allocations::liveModels(), before);
    EXPECT_TRUE(isStorageRegistered());
    EXPECT_EQ(recorder().count("~CDispListsDoc"), 1u);
    EXPECT_EQ(recorder().registered, nullptr);
}

// Every allocation of a load in turn: nothing may stay behind, and the next load must work.
class FailingAllocation : public LoadEntry {
protected:
    // True when the load got through before the allocation that was to fail.
    bool loadFailingAfter(long successes)
    {
        recorder().reset();
        giveDocument();
        const int before = allocations::liveModels();
        std::unique_ptr<dlModel> model;
        allocations::failAfter(successes);
        try {
            model = load();
        } catch (const std::bad_alloc&) {
        } catch (const platform::ComError& error) {
            EXPECT_EQ(error.code(), platform::kErrorOutOfMemory);
        }
        const bool failed = allocations::hasFailed();
        allocations::failAfter(-1);
        EXPECT_EQ(allocations::liveModels(), before + (model ? 1 : 0)) << successes;
        EXPECT_EQ(recorder().registered, nullptr) << successes;
        return !failed;
    }

    std::function<void()> giveDocument;
};

// The one copy whose failure has a code of its own: that of the access text, the first allocation
// after the callback was registered.
TEST_F(LoadEntry, TellsAFailingCopyOfTheAccessTextByItsCode)
{
    givePart();
    registerStorage();
    recorder().onCall("SetOVDL_Callbacks(object)", [] { allocations::failAfter(0); });
    const int before = allocations::liveModels();
    std::uint32_t code = 0;
    try {
        load();
    } catch (const platform::ComError& error) {
        code = error.code();
    }
    allocations::failAfter(-1);
    EXPECT_EQ(code, 0x8007000Eu);
    EXPECT_EQ(recorder().countBeginning("ReadFile"), 0u);
    EXPECT_EQ(allocations::liveModels(), before);
    EXPECT_EQ(recorder().registered, nullptr);
    EXPECT_EQ(recorder().count("~container"), 1u);
    EXPECT_EQ(recorder().count("~CDispListsDoc"), 1u);
    EXPECT_TRUE(isStorageRegistered());
}

TEST_F(LoadEntry, RaisesInvalidArgumentForAnArrayThatShrinksMeanwhile)
{
    build::Components twice{&component, &component};
    assemblyDocument.components = twice;
    answers().assemblyDocument = &assemblyDocument;
    registerStorage();
    recorder().onCall("getNumBodies", [this] { assemblyDocument.components.count = 1; });
    const int before = allocations::liveModels();
    EXPECT_THROW(load(), platform::ComError);
    EXPECT_EQ(allocations::liveModels(), before);
    EXPECT_EQ(recorder().registered, nullptr);
    EXPECT_TRUE(isStorageRegistered());
}

TEST_F(LoadEntry, RaisesInvalidArgumentForAnArrayWithoutData)
{
    assemblyDocument.components.count = 2;
    answers().assemblyDocument = &assemblyDocument;
    EXPECT_THROW(load(), platform::ComError);
}

TEST_F(LoadEntry, EmptiesTheEmbeddedItemsAfterTheRead)
{
    givePart();
    long long duringRead = -1;
    long long afterRead = -1;
    recorder().onCall("ReadFile", [&] { duringRead = recorder().items->GetCount(); });
    recorder().onCall("isRejected", [&] { afterRead = recorder().items->GetCount(); });
    load();
    EXPECT_EQ(duringRead, 1);
    EXPECT_EQ(afterRead, 0);
}

TEST_F(FailingAllocation, OfAPartLoadLeavesNothingBehind)
{
    giveDocument = [this] { givePart(); };
    long successes = 0;
    while (!loadFailingAfter(successes))
        ++successes;
    EXPECT_GT(successes, 20);
    EXPECT_NE(load(), nullptr);
}

TEST_F(FailingAllocation, OfAnAssemblyLoadLeavesNothingBehind)
{
    build::Visual visual(L"over", 1, 0);
    component.vizProps = &visual;
    triangle.face.faceVizProps[0] = triangle.body.bodyVizProps[0] = &visual;
    giveDocument = [this] { giveAssembly(); };
    long successes = 0;
    while (!loadFailingAfter(successes))
        ++successes;
    EXPECT_GT(successes, 20);
    EXPECT_NE(load(), nullptr);
}

struct NameCase {
    const char* name;
    const char* path;
    const char* modelName;
};

class ModelName : public LoadEntry, public testing::WithParamInterface<NameCase> {};

TEST_P(ModelName, IsWhatStandsBehindTheLaterSeparator)
{
    givePart();
    const auto model = load(GetParam().path);
    ASSERT_NE(model, nullptr);
    EXPECT_EQ(model->modelName, GetParam().modelName);
    EXPECT_EQ(recorder().count(std::string("updateFirstModelName(") + GetParam().modelName + ")"), 1u);
}

const NameCase kNames[] = {
    {"no_separator_gives_the_whole_path", "bolt.doc", "bolt.doc"},
    {"backslash", "c:\\parts\\bolt.doc", "bolt.doc"},
    {"slash", "/parts/bolt.doc", "bolt.doc"},
    {"slash_before_the_last_backslash", "c:/parts\\bolt.doc", "bolt.doc"},
    {"backslash_before_the_last_slash", "c:\\parts/bolt.doc", "bolt.doc"},
    {"trailing_backslash_gives_an_empty_name", "c:\\parts\\", ""},
    {"trailing_slash_gives_an_empty_name", "parts/", ""},
    {"empty_path", "", ""},
    {"dots_stay", "a.b/c.d.e", "c.d.e"},
    {"bytes_that_are_no_text_stay_as_given", "parts/b\xFFlt.doc", "b\xFFlt.doc"},
};
INSTANTIATE_TEST_SUITE_P(Rows, ModelName, testing::ValuesIn(kNames),
                         [](const auto& row) { return row.param.name; });

TEST_F(LoadEntry, SetsTheNameAfterTreeAndSingletons)
{
    givePart();
    std::string nameThen = "none";
    standIns().onHierarchy = [&](dlModel& model) { nameThen = model.modelName; };
    load();
    EXPECT_EQ(nameThen, "");
    EXPECT_LT(indexOf("createAssemblyHierarchy"), indexOf("updateSingletons"));
    EXPECT_LT(indexOf("updateSingletons"), indexOf("updateFirstModelName(a.doc)"));
}

TEST_F(LoadEntry, NamesNoFirstPartOfAnAssemblyOrARejectedModel)
{
    giveAssembly();
    load();
    partDocument.rejected = true;
    givePart();
    load();
    EXPECT_EQ(recorder().countBeginning("updateFirstModelName"), 0u);
}

TEST_F(LoadEntry, WidensThePathThroughTheAnsiCodePage)
{
    ASSERT_TRUE(platform::setAnsiCodePage(1252));
    givePart();
    const auto model = load("caf\xE9.doc");
    ASSERT_NE(model, nullptr);
    EXPECT_EQ(recorder().count("restoreOleItems(caf\xC3\xA9.doc)"), 1u);
    EXPECT_EQ(recorder().count("ReadFile(raylume-display-list,caf\xC3\xA9.doc,true)"), 1u);
    EXPECT_EQ(model->modelName, "caf\xE9.doc");
}

TEST_F(LoadEntry, MakesAModelForPlainDelete)
{
    givePart();
    const int before = allocations::liveModels();
    dlModel* model = dlModel::ReadModel("a.doc");
    EXPECT_EQ(allocations::liveModels(), before + 1);
    delete model;
    EXPECT_EQ(allocations::liveModels(), before);
}

constexpr wchar_t kWarning[] =
    L"PRJ 16490 :- Version in loader dlls need to be in synch with that in Orvane. Document may not be "
    L"loaded correctly in Raylume";

struct WarningCase {
    const char* name;
    int first;
    int second;
    bool meridian;
    const char* mode;  // Null: unset.
    std::size_t messages;
};

class VersionWarning : public LoadEntry, public testing::WithParamInterface<WarningCase> {};

TEST_P(VersionWarning, NeverRefusesTheDocument)
{
    const WarningCase& row = GetParam();
    standIns().meridian5App = row.meridian;
    if (row.mode)
        setenv("RAYLUME_REGRESSION_MODE", row.mode, 1);
    RL_OVDL_CallBacks callbacks;
    OVDL_Callbacks& seenByTheReader = callbacks;
    EXPECT_EQ(seenByTheReader.CheckVersions(row.first, row.second), 1);
    EXPECT_EQ(messages, std::vector<std::wstring>(row.messages, kWarning));
}

const WarningCase kWarnings[] = {
    {"a_newer_document_warns", 2, 1, true, nullptr, 1},
    {"equal_versions_do_not", 2, 2, true, nullptr, 0},
    {"an_older_document_does_not", 1, 2, true, nullptr, 0},
    {"negative_first_is_the_smaller", -1, 1, true, nullptr, 0},
    {"negative_second_is_the_smaller", 1, -1, true, nullptr, 1},
    {"another_host_stays_silent", 2, 1, false, nullptr, 0},
    {"regression_mode_ON_silences", 2, 1, true, "ON", 0},
    {"regression_mode_on_silences", 2, 1, true, "on", 0},
    {"regression_mode_with_a_blank_does_not", 2, 1, true, "ON ", 1},
    {"regression_mode_1_does_not", 2, 1, true, "1", 1},
    {"regression_mode_OFF_does_not", 2, 1, true, "OFF", 1},
    {"empty_regression_mode_does_not", 2, 1, true, "", 1},
};
INSTANTIATE_TEST_SUITE_P(Rows, VersionWarning, testing::ValuesIn(kWarnings),
                         [](const auto& row) { return row.param.name; });

TEST_F(LoadEntry, AnswersTheReaderDuringTheReadAndLoadsANewerDocumentAnyway)
{
    givePart();
    int answer = 0;
    recorder().onCall("ReadFile", [&] { answer = recorder().registered->CheckVersions(9, 8); });
    EXPECT_NE(load(), nullptr);
    EXPECT_EQ(answer, 1);
    EXPECT_EQ(messages, std::vector<std::wstring>(1, kWarning));
}

TEST_F(LoadEntry, LeavesTheOtherCallbacksToTheReader)
{
    RL_OVDL_CallBacks callbacks;
    OVDL_Callbacks& seenByTheReader = callbacks;
    suStructuredStorage storage(L"s", 0, nullptr, nullptr, 0, 1);
    recorder().reset();
    EXPECT_EQ(seenByTheReader.GetJapaneseFontName(), L"recorded font");
    seenByTheReader.LoadExtraDataFromStorage(storage);
    seenByTheReader.UpdateProgress(0.5f, 1, 2);
    EXPECT_EQ(seenByTheReader.ShouldReadBeCancelled(), 0);
    seenByTheReader.SetPercentCompleted(1.0f);
    EXPECT_THAT(
        lines(),
        ElementsAre("OVDL_Callbacks::GetJapaneseFontName", "OVDL_Callbacks::LoadExtraDataFromStorage",
                    "OVDL_Callbacks::UpdateProgress", "OVDL_Callbacks::ShouldReadBeCancelled",
                    "OVDL_Callbacks::SetPercentCompleted"));
}

TEST_F(LoadEntry, TheCallbackObjectUnregistersWhateverIsRegistered)
{
    {
        RL_OVDL_CallBacks callbacks;
        EXPECT_THAT(lines(), IsEmpty());
    }
    EXPECT_THAT(lines(), ElementsAre("SetOVDL_Callbacks(null)"));
}

TEST_F(LoadEntry, TheDocumentObjectStartsEmptyAndDeletesItsContainer)
{
    {
        CDispListsDocRL document;
        EXPECT_EQ(document.oleContainer, nullptr);
        EXPECT_EQ(document.thirdPartyStorage, nullptr);
        EXPECT_EQ(document.secondStorageInterface, nullptr);
        EXPECT_EQ(document.spareStorageInterface, nullptr);
        EXPECT_EQ(document.openStorageCount, 0);
        document.oleContainer = new OVDLOleDocumentContainer;
    }
    EXPECT_THAT(lines(), ElementsAre("CDispListsDoc()", "~container", "~CDispListsDoc"));
}

TEST_F(LoadEntry, TheDocumentObjectMayLackAContainer)
{
    {
        CDispListsDocRL document;
    }
    EXPECT_THAT(lines(), ElementsAre("CDispListsDoc()", "~CDispListsDoc"));
}

TEST_F(LoadEntry, NeverAsksForTheModelsThatADocumentRefersTo)
{
    giveAssembly();
    load();
    EXPECT_EQ(recorder().count("getRefModelsMap()"), 0u);
}

}  // namespace
