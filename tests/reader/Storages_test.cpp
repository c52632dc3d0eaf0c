#include <gmock/gmock.h>

#include <sys/stat.h>

#include <filesystem>
#include <iterator>

#include "ReaderFixtures.h"
#include "TemporaryFolder.h"

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
