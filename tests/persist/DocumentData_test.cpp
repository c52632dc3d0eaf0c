// The settings of a document, with the recording reader and a document in memory.
#include <gmock/gmock.h>

#include <memory>
#include <stdexcept>

#include "raylume/load/StorageRegistry.h"
#include "raylume/persist/RLData.h"
#include "raylume/platform/Errors.h"
#include "tests/load/FakeStorages.h"
#include "tests/persist/StreamBuilder.h"
#include "tests/persist/ViewsFolder.h"
#include "tests/platform/ScopedCodePage.h"

namespace {

using namespace fakes;
using namespace persist_tests;
using testing::ElementsAre;
using testing::IsEmpty;

class DocumentData : public testing::Test {
protected:
    DocumentData()
    {
        recorder().reset();
        document.settings.bytes = sampleStream(10).get();
    }
    ~DocumentData() override
    {
        while (!g_storageRegistry.empty())
            dropRegisteredStorage(g_storageRegistry.begin()->first);
        recorder().reset();
    }

    static recording::Recorder& recorder() { return recording::Recorder::get(); }

    void registerFile(const std::wstring& path = L"a.doc")
    {
        g_storageRegistry[path] = new FakeFile(document.answers);
        recorder().reset();
    }

    static std::unique_ptr<RLData> read(const char* path = "a.doc")
    {
        return std::unique_ptr<RLData>(RLData::ReadRaylumeData(path));
    }

    int causeOfRead()
    {
        try {
            read();
            return 0;
        } catch (const platform::ArchiveError& error) {
            EXPECT_EQ(error.fileName(), L"a.doc");
            return error.cause();
        }
    }

    ViewsFolder views;
    Document document;
};

TEST_F(DocumentData, AreReadInTheOrderOfTheSteps)
{
    document.answers.second = &document.second;
    registerFile();
    const auto data = read();
    ASSERT_NE(data, nullptr);
    EXPECT_EQ(data->getStorageVersion(), 10u);
    EXPECT_EQ(data->getMaskMaterials().size(), 2u);
    ASSERT_TRUE(data->hasSceneData());
    EXPECT_EQ(data->getSceneData()->getFloorType(), "reflect");
    EXPECT_THAT(recorder().lines(),
                ElementsAre("CDispListsDoc()", "file.isOpen", "file.isOpen", "file.loadVersion",
                            "file.loadDLVersion", "iRestoreVersionHistory", "iRestoreConfigManager",
                            "file.openSubStorage(ThirdPtyStore,0,0,0)", "file.subStorageInterface",
                            "file.secondInterface", "second.AddRef", "file.endOpen",
                            "third.OpenStorage(Raylume,10)", "raylume.OpenStream(ShaderData,10)",
                            "settings.Release", "third.Commit", "third.Release", "second.Commit",
                            "second.Release", "~file", "raylume.Release", "~CDispListsDoc"));
    EXPECT_EQ(document.references(), 0u);
    EXPECT_THAT(g_storageRegistry, IsEmpty());
}

TEST_F(DocumentData, OfEveryVersionAreRead)
{
    for (std::uint32_t version = 0; version <= 11; ++version) {
        for (const Form form : {Form::kNarrow, Form::kWide}) {
            document.settings.bytes =
                sampleStream(version, form, std::vector<View>{{"C:\\a.view", "VIEW"}}).get();
            registerFile();
            const auto data = read();
            ASSERT_NE(data, nullptr);
            EXPECT_EQ(data->getStorageVersion(), version);
            EXPECT_EQ(data->getMaskMaterials().back().getMaterialName(), "material2");
            EXPECT_EQ(data->hasCameraData(), version > 2);
            EXPECT_EQ(data->hasSceneData(), version >= 5);
        }
    }
}

TEST_F(DocumentData, DoNotDependOnWhatTheRestoresGive)
{
    registerFile();
    recorder().answers.restoreResult = false;
    const auto data = read();
    ASSERT_NE(data, nullptr);
    EXPECT_EQ(data->getStorageVersion(), 10u);
    EXPECT_EQ(recorder().count("iRestoreConfigManager"), 1u);
}

TEST_F(DocumentData, OfADocumentThatDoesNotOpenAreNull)
{
    recorder().answers.structuredStorageOpen = false;
    EXPECT_EQ(read(), nullptr);
    EXPECT_EQ(recorder().count("~suStructuredStorage(a.doc)"), 1u);
    EXPECT_THAT(g_storageRegistry, IsEmpty());
}

TEST_F(DocumentData, OfAVersionOutsideTheRangeAreNull)
{
    for (const unsigned long version : {628ul, 16001ul}) {
        document.answers.version = version;
        registerFile();
        EXPECT_EQ(read(), nullptr);
        EXPECT_THAT(g_storageRegistry, IsEmpty());
    }
}

TEST_F(DocumentData, WithoutThirdPartiesAreNull)
{
    document.answers.thirdParty = nullptr;
    registerFile();
    EXPECT_EQ(read(), nullptr);
    EXPECT_EQ(recorder().count("~file"), 1u);
}

TEST_F(DocumentData, WithoutTheAddinsStorageAreNull)
{
    document.third.storages.clear();
    registerFile();
    EXPECT_EQ(read(), nullptr);
    EXPECT_EQ(recorder().count("~file"), 1u);
    EXPECT_EQ(document.references(), 0u);
    EXPECT_EQ(recorder().countBeginning("third.C"), 0u);  // Neither committed nor anything made.
}

TEST_F(DocumentData, WithoutTheStreamAreNullAndLeaveTheClosingToTheSession)
{
    document.raylume.streams.clear();
    registerFile();
    EXPECT_EQ(read(), nullptr);
    EXPECT_EQ(recorder().count("~file"), 1u);
    EXPECT_EQ(recorder().countBeginning("third.Commit"), 0u);
    EXPECT_EQ(document.references(), 0u);
}

TEST_F(DocumentData, OfAnEmptyStreamAreADamagedOneAndNotAbsent)
{
    document.settings.bytes.clear();
    registerFile();
    EXPECT_EQ(causeOfRead(), 3);
}

TEST_F(DocumentData, CutShortRaiseAndKeepTheDocumentOpen)
{
    document.settings.bytes.resize(100);
    registerFile();
    EXPECT_EQ(causeOfRead(), 3);
    ASSERT_EQ(g_storageRegistry.size(), 1u);
    EXPECT_EQ(recorder().count("~file"), 0u);
    EXPECT_EQ(document.references(), 0u);
    document.settings.bytes = sampleStream(10).get();
    const auto data = read();
    ASSERT_NE(data, nullptr);
    EXPECT_EQ(recorder().countBeginning("suStructuredStorage("), 0u);  // The open one served again.
    EXPECT_THAT(g_storageRegistry, IsEmpty());
}

TEST_F(DocumentData, ThatCannotBeReadToTheirEndRaiseToo)
{
    document.settings.readResult = static_cast<HResult>(0x8003001Eu);
    registerFile();
    EXPECT_EQ(causeOfRead(), 3);
}

TEST_F(DocumentData, LeaveViewsBehindThatWereUnpackedBeforeTheFailure)
{
    Bytes bytes;
    bytes.u32(10).u32(0);
    addEnvironment(bytes, 10);
    bytes.flag(true);
    addCamera(bytes, 10, std::vector<View>{{"C:\\a.view", "VIEW"}});
    document.settings.bytes = bytes.get();
    registerFile();
    EXPECT_EQ(causeOfRead(), 3);
    EXPECT_EQ(readFile(views / "a.view"), "VIEW");
}

TEST_F(DocumentData, LetOutWhatTheVersionRaises)
{
    document.answers.onVersion = [] { throw std::runtime_error("unreadable"); };
    registerFile();
    EXPECT_THROW(read(), std::runtime_error);
}

TEST_F(DocumentData, AreFoundByAPathInTheCodePage)
{
    const ScopedCodePage page(1252);
    ASSERT_TRUE(page.isSet());
    registerFile(L"\u20AC.doc");
    EXPECT_NE(read("\x80.doc"), nullptr);
}

TEST_F(DocumentData, OfNoPathAreNull)
{
    EXPECT_EQ(read(nullptr), nullptr);
    EXPECT_FALSE(RLData::OVFileExists(nullptr));
}

TEST_F(DocumentData, ExistWhenTheStorageOpensWhateverItHolds)
{
    EXPECT_TRUE(RLData::OVFileExists("a.doc"));
    EXPECT_THAT(recorder().lines(),
                ElementsAre("suStructuredStorage(a.doc,0,null,null,0,1)",
                            "suStructuredStorage::isOpen(a.doc)", "~suStructuredStorage(a.doc)"));
    recorder().answers.structuredStorageOpen = false;
    EXPECT_FALSE(RLData::OVFileExists("a.doc"));
    EXPECT_THAT(g_storageRegistry, IsEmpty());
}

TEST_F(DocumentData, ExistWhateverTheVersion)
{
    document.answers.version = 1;
    document.answers.thirdParty = nullptr;
    registerFile();
    EXPECT_TRUE(RLData::OVFileExists("a.doc"));
    EXPECT_THAT(recorder().lines(), ElementsAre("file.isOpen", "~file"));
}

}  // namespace
