#include <gmock/gmock.h>

#include <sys/stat.h>

#include <filesystem>
#include <iterator>

#include "ReaderFixtures.h"
#include "TemporaryFolder.h"
#include "raylume/platform/Reference.h"
#include "reader/DocumentHeader.h"

namespace {

using fixtures::emptyPart;
using fixtures::Prepared;
using fixtures::readInto;
using fixtures::TemporaryFolder;

constexpr wchar_t kPath[] = L"prepared/storage";

suFileStorage* create(const std::wstring& path)
{
    return suFileStorage::createStorage(path, 0, nullptr, nullptr, 0, 1, nullptr, nullptr);
}

long openFiles()
{
    const std::filesystem::directory_iterator files("/proc/self/fd");
    return std::distance(begin(files), end(files));
}

TEST(CreateStorage, NeverGivesNull)
{
    CDispListsDoc document;
    for (const wchar_t* path : {L"", L"/", L"no such file", L"a\\b", kPath})
        EXPECT_NE(create(path), nullptr) << path;
}

TEST(CreateStorage, GivesAnObjectOfItsOwnEachTime)
{
    CDispListsDoc document;
    EXPECT_NE(create(kPath), create(kPath));
}

TEST(CreateStorage, IsOpenForADocumentThatAFormatRecognises)
{
    const Prepared prepared(kPath, emptyPart);
    CDispListsDoc document;
    EXPECT_NE(create(kPath)->isOpen(), 0);
    EXPECT_EQ(ovdl::lastReason(), "");
}

TEST(CreateStorage, IsNotOpenForAnythingElse)
{
    const TemporaryFolder folder;
    const auto file = folder.write("plain.txt", "text");
    CDispListsDoc document;
    EXPECT_EQ(create(L"")->isOpen(), 0);
    EXPECT_EQ(create((folder.path() / "no such file").wstring())->isOpen(), 0);
    EXPECT_EQ(ovdl::lastReason(), "there is no such file");
    EXPECT_EQ(create(folder.path().wstring())->isOpen(), 0);
    EXPECT_EQ(ovdl::lastReason(), "a folder is no document");
    EXPECT_EQ(create(L"/dev/zero")->isOpen(), 0);
    EXPECT_EQ(create(file.wstring())->isOpen(), 0);
    EXPECT_EQ(ovdl::lastReason(), "no format of this reader recognises the file");
}

TEST(CreateStorage, DoesNotWaitForAPipe)
{
    const TemporaryFolder folder;
    const auto pipe = folder.path() / "pipe.glb";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    CDispListsDoc document;
    EXPECT_EQ(create(pipe.wstring())->isOpen(), 0);
}

TEST(CreateStorage, TellsTheVersionsOfAnyFile)
{
    const TemporaryFolder folder;
    CDispListsDoc document;
    for (const auto& path :
         {folder.path(), folder.path() / "no such file", folder.write("a.txt", "text")}) {
        EXPECT_EQ(create(path.wstring())->loadVersion(), 10000u);
        EXPECT_EQ(create(path.wstring())->loadDLVersion(), 0u);
    }
}

TEST(CreateStorage, HoldsNoFileOnceItWasAsked)
{
    const TemporaryFolder folder;
    const auto file = folder.write("empty.gltf", "{\"asset\":{\"version\":\"2.0\"}}");
    CDispListsDoc document;
    create(file.wstring())->isOpen();
    const long before = openFiles();
    create(file.wstring())->isOpen();
    create(file.wstring());
    EXPECT_EQ(openFiles(), before);
}

TEST(CreateStorage, MakesNoFile)
{
    const TemporaryFolder folder;
    const auto file = folder.path() / "new";
    CDispListsDoc document;
    auto* storage =
        suFileStorage::createStorage(file.wstring(), 1, nullptr, nullptr, 0, 1, nullptr, nullptr);
    EXPECT_EQ(storage->isOpen(), 0);
    EXPECT_FALSE(std::filesystem::exists(file));
}

TEST(CreateStorage, TellsThatAProbeIsNoStructuredStorage)
{
    CDispListsDoc document;
    auto type = suStorageType_structured;
    suFileStorage::createStorage(kPath, 0, nullptr, nullptr, 0, 1, nullptr, &type);
    EXPECT_EQ(type, suStorageType_none);
}

TEST(CreateStorage, LastsUntilTheNextDocumentObject)
{
    const Prepared prepared(kPath, emptyPart);
    auto document = std::make_unique<CDispListsDoc>();
    auto* storage = create(kPath);
    for (int i = 0; i < 1000; ++i)
        create(kPath);
    EXPECT_NE(storage->isOpen(), 0);
    readInto(*document, kPath);
    document.reset();
    EXPECT_NE(storage->isOpen(), 0);
}

TEST(CreateStorage, HasNoStoragesInside)
{
    const Prepared prepared(kPath, emptyPart);
    CDispListsDoc document;
    auto* storage = create(kPath);
    ASSERT_NE(storage->isOpen(), 0);
    EXPECT_FALSE(storage->openSubStorage(L"ThirdPtyStore", 0, 0, 0));
    EXPECT_FALSE(storage->openSubStorage(L"ThirdPtyStore", 1, 0, 0));
    EXPECT_EQ(storage->subStorageInterface(), nullptr);
    EXPECT_EQ(storage->secondInterface(), nullptr);
    storage->endOpen();
    EXPECT_EQ(storage->getUncompressedStreamSize(), 0u);
    EXPECT_EQ(storage->loadVersion(), 10000u);
    EXPECT_EQ(storage->loadDLVersion(), 0u);
}

TEST(StructuredStorage, BelongsToWhoeverMakesIt)
{
    const Prepared prepared(kPath, emptyPart);
    auto storage = std::make_unique<suStructuredStorage>(kPath, 0, nullptr, nullptr, 0, 1);
    // A document object ends the life of probes only.
    const CDispListsDoc document;
    EXPECT_NE(storage->isOpen(), 0);
    const std::unique_ptr<suFileStorage> base = std::move(storage);
    EXPECT_NE(base->isOpen(), 0);
}

TEST(StructuredStorage, IsNotOpenForAPathWithoutADocument)
{
    const suStructuredStorage storage(L"prepared/unknown", 1, nullptr, nullptr, 0, 1);
    EXPECT_EQ(storage.isOpen(), 0);
    EXPECT_EQ(ovdl::lastReason(), "there is no such file");
}

TEST(StructuredStorage, HasNoStoragesInside)
{
    const Prepared prepared(kPath, emptyPart);
    suStructuredStorage storage(kPath, 0, nullptr, nullptr, 0, 1);
    EXPECT_FALSE(storage.openSubStorage(L"ThirdPtyStore", 0, 0, 0));
    EXPECT_EQ(storage.subStorageInterface(), nullptr);
    EXPECT_EQ(storage.secondInterface(), nullptr);
    storage.endOpen();
    EXPECT_EQ(storage.getUncompressedStreamSize(), 0u);
    EXPECT_EQ(storage.loadVersion(), 10000u);
    EXPECT_EQ(storage.loadDLVersion(), 0u);
}

// Compound files.

using Root = platform::Reference<IStorage>;

class CompoundDocument : public testing::Test {
protected:
    explicit CompoundDocument(bool withHeader = true)
    {
        Root root = make();
        if (withHeader) {
            EXPECT_EQ(ovdl::writeHeader(*root.get(), {1, 12345, 678}), 0);
        }
        platform::Reference<IStorage> store;
        platform::Reference<IStorage> inner;
        EXPECT_EQ(root->CreateStorage(L"ThirdPtyStore", kModeReadWrite, store.out()), 0);
        EXPECT_EQ(store->CreateStorage(L"Raylume", kModeReadWrite, inner.out()), 0);
    }

    Root make()
    {
        Root root;
        EXPECT_EQ(platform::createCompoundFile(path, true, root.out()), 0);
        return root;
    }

    const TemporaryFolder folder;
    const std::wstring path = (folder.path() / "a.doc").wstring();
};

TEST_F(CompoundDocument, IsOpenWhicheverProgramMadeIt)
{
    const suStructuredStorage storage(path, 0, nullptr, nullptr, 0, 1);
    EXPECT_NE(storage.isOpen(), 0);
    EXPECT_EQ(ovdl::lastReason(), "");
    make();
    EXPECT_NE(suStructuredStorage(path, 0, nullptr, nullptr, 0, 1).isOpen(), 0);
}

TEST_F(CompoundDocument, TellsItsVersions)
{
    const suStructuredStorage storage(path, 0, nullptr, nullptr, 0, 1);
    EXPECT_EQ(storage.loadVersion(), 12345u);
    EXPECT_EQ(storage.loadDLVersion(), 678u);
    EXPECT_EQ(storage.getUncompressedStreamSize(), 0u);
}

TEST_F(CompoundDocument, HandsOutASubStorageWithAReferenceOfTheCallers)
{
    auto storage = std::make_unique<suStructuredStorage>(path, 0, nullptr, nullptr, 0, 1);
    EXPECT_EQ(storage->subStorageInterface(), nullptr);
    ASSERT_TRUE(storage->openSubStorage(L"thirdPTYstore", 0, 0, 0));
    IStorage* store = storage->subStorageInterface();
    ASSERT_NE(store, nullptr);
    EXPECT_EQ(storage->secondInterface(), nullptr);
    storage->endOpen();
    EXPECT_EQ(storage->subStorageInterface(), nullptr);
    storage.reset();
    platform::Reference<IStorage> inner;
    EXPECT_EQ(store->OpenStorage(L"Raylume", kModeRead, inner.out()), 0);
    EXPECT_EQ(store->Release(), 0u);
}

TEST_F(CompoundDocument, DoesNotMakeASubStorageThatIsMissing)
{
    make();
    suStructuredStorage storage(path, 1, nullptr, nullptr, 0, 1);
    ASSERT_NE(storage.isOpen(), 0);
    for (const int forWrite : {0, 1}) {
        EXPECT_FALSE(storage.openSubStorage(L"ThirdPtyStore", forWrite, 0, 0));
        EXPECT_EQ(storage.subStorageInterface(), nullptr);
        EXPECT_FALSE(storage.openSubStorage(L"", forWrite, 0, 0));
    }
}

TEST_F(CompoundDocument, ForgetsASubStorageWhenAnotherIsNotFound)
{
    suStructuredStorage storage(path, 0, nullptr, nullptr, 0, 1);
    ASSERT_TRUE(storage.openSubStorage(L"ThirdPtyStore", 0, 0, 0));
    EXPECT_FALSE(storage.openSubStorage(L"missing", 0, 0, 0));
    EXPECT_EQ(storage.subStorageInterface(), nullptr);
}

TEST_F(CompoundDocument, IsWrittenThroughASubStorageOpenedForThat)
{
    {
        suStructuredStorage reading(path, 0, nullptr, nullptr, 0, 1);
        EXPECT_FALSE(reading.openSubStorage(L"ThirdPtyStore", 1, 0, 0));
    }
    suStructuredStorage storage(path, 1, nullptr, nullptr, 0, 1);
    ASSERT_TRUE(storage.openSubStorage(L"ThirdPtyStore", 0, 0, 0));
    IStorage* store = storage.subStorageInterface();
    EXPECT_EQ(store->DestroyElement(L"Raylume"), kStorageAccessDenied);
    store->Release();
    ASSERT_TRUE(storage.openSubStorage(L"ThirdPtyStore", 1, 0, 0));
    store = storage.subStorageInterface();
    EXPECT_EQ(store->DestroyElement(L"Raylume"), 0);
    EXPECT_EQ(store->Commit(0), 0);
    store->Release();
    suStructuredStorage seen(path, 0, nullptr, nullptr, 0, 1);
    ASSERT_TRUE(seen.openSubStorage(L"ThirdPtyStore", 0, 0, 0));
    platform::Reference<IStorage> inner;
    store = seen.subStorageInterface();
    EXPECT_EQ(store->OpenStorage(L"Raylume", kModeRead, inner.out()), kStorageNotFound);
    store->Release();
    EXPECT_EQ(seen.loadVersion(), 12345u);
}

TEST_F(CompoundDocument, IsClosedWhenItIsDamagedOrMayNotBeWritten)
{
    const auto cut = folder.write("cut.doc", "\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1");
    const suStructuredStorage damaged(cut.wstring(), 0, nullptr, nullptr, 0, 1);
    EXPECT_EQ(damaged.isOpen(), 0);
    EXPECT_EQ(ovdl::lastReason(), "the compound file is damaged");
    const suStructuredStorage device(L"/dev/full", 1, nullptr, nullptr, 0, 1);
    EXPECT_EQ(device.isOpen(), 0);
    EXPECT_EQ(ovdl::lastReason(), "the file may not be written");
}

TEST_F(CompoundDocument, WithoutADocumentIsOpenedAndRejected)
{
    CDispListsDoc document;
    EXPECT_NE(create(path)->isOpen(), 0);
    const auto read = readInto(document, path);
    EXPECT_EQ(read.result, OVXDLReader_Rejected);
    EXPECT_EQ(read.version, 12345u);
    ASSERT_NE(document.assemblyDocument, nullptr);
    EXPECT_TRUE(document.assemblyDocument->isRejected());
    EXPECT_EQ(ovdl::lastReason(), "a compound file without a document that this reader knows");
    const auto cut = folder.write("cut.doc", "\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1");
    EXPECT_EQ(readInto(document, cut.wstring()).result, OVXDLReader_Rejected);
    EXPECT_EQ(ovdl::lastReason(), "the compound file cannot be read (0x80030109)");
}

struct HeaderCase {
    const char* name;
    std::string bytes;
    unsigned long version;
    unsigned long dlVersion;
};
const HeaderCase kHeaders[] = {
    {"whole", std::string("\x01\0\0\0\x04\x03\x02\x01\xFF\xFE\xFD\xFC", 12), 0x01020304, 0xFCFDFEFF},
    {"with_more_behind", std::string("\x02\0\0\0\x01\0\0\0\x02\0\0\0more", 16), 1, 2},
    {"without_a_display_list_version", std::string("\x01\0\0\0\x07\0\0\0\0\0\0\0", 12), 7, 0},
    {"one_byte_short", std::string("\x01\0\0\0\x04\x03\x02\x01\xFF\xFE\xFD", 11), 10000, 0},
    {"empty", "", 10000, 0},
    {"of_another_program", "a header of words", 10000, 0},
    {"of_version_zero", std::string("\0\0\0\0\x07\0\0\0\x07\0\0\0", 12), 10000, 0},
};

class Header : public CompoundDocument, public testing::WithParamInterface<HeaderCase> {
protected:
    Header() : CompoundDocument(false) {}
};

TEST_P(Header, TellsTheVersions)
{
    {
        Root root = make();
        platform::Reference<IStream> stream;
        ASSERT_EQ(root->CreateStream(L"Header", kModeReadWrite, stream.out()), 0);
        const auto size = static_cast<std::uint32_t>(GetParam().bytes.size());
        ASSERT_EQ(stream->Write(GetParam().bytes.data(), size, nullptr), 0);
    }
    const suStructuredStorage storage(path, 0, nullptr, nullptr, 0, 1);
    EXPECT_NE(storage.isOpen(), 0);
    EXPECT_EQ(storage.loadVersion(), GetParam().version);
    EXPECT_EQ(storage.loadDLVersion(), GetParam().dlVersion);
    CDispListsDoc document;
    const long before = openFiles();
    const suFileStorage* probe = create(path);
    EXPECT_EQ(probe->loadVersion(), GetParam().version);
    EXPECT_EQ(probe->loadDLVersion(), GetParam().dlVersion);
    EXPECT_EQ(openFiles(), before);
}

INSTANTIATE_TEST_SUITE_P(Rows, Header, testing::ValuesIn(kHeaders),
                         [](const auto& row) { return row.param.name; });

TEST_F(Header, ThatIsMissingLeavesTheVersionsOfAnyFile)
{
    const suStructuredStorage storage(path, 0, nullptr, nullptr, 0, 1);
    EXPECT_NE(storage.isOpen(), 0);
    EXPECT_EQ(storage.loadVersion(), 10000u);
    EXPECT_EQ(storage.loadDLVersion(), 0u);
}

TEST_F(Header, IsWrittenAndReplaced)
{
    Root root = make();
    for (const std::uint32_t version : {1u, 0xFFFFFFFFu}) {
        ASSERT_EQ(ovdl::writeHeader(*root.get(), {1, version, version / 2}), 0);
        const auto header = ovdl::readHeader(*root.get());
        ASSERT_TRUE(header);
        EXPECT_EQ(header->formatVersion, 1u);
        EXPECT_EQ(header->documentVersion, version);
        EXPECT_EQ(header->displayListVersion, version / 2);
    }
}

TEST(RestoreRecords, TakesAnOpenStorageAndNoOther)
{
    const Prepared prepared(kPath, emptyPart);
    CDispListsDoc document;
    suStructuredStorage open(kPath, 0, nullptr, nullptr, 0, 1);
    suStructuredStorage closed(L"prepared/unknown", 0, nullptr, nullptr, 0, 1);
    EXPECT_TRUE(document.iRestoreVersionHistory(open));
    EXPECT_TRUE(document.iRestoreConfigManager(open));
    EXPECT_FALSE(document.iRestoreVersionHistory(closed));
    EXPECT_FALSE(document.iRestoreConfigManager(closed));
    EXPECT_EQ(document.partDocument, nullptr);
}

}  // namespace
