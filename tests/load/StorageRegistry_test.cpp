#include "raylume/load/StorageRegistry.h"

#include "tests/load/LoadFixture.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class StorageRegistry : public LoadFixture {};

TEST_F(StorageRegistry, OrdersPathsWithoutCase)
{
    const PathLess less;
    EXPECT_FALSE(less(L"C:\\A.DOC", L"c:\\a.doc"));
    EXPECT_FALSE(less(L"c:\\a.doc", L"C:\\A.DOC"));
    EXPECT_TRUE(less(L"A", L"b"));
    EXPECT_TRUE(less(L"a", L"B"));
    EXPECT_FALSE(less(L"B", L"a"));
    EXPECT_TRUE(less(L"a", L"aa"));
    EXPECT_FALSE(less(L"\x00C9tude", L"\x00E9tude"));
    EXPECT_FALSE(less(L"\x00E9tude", L"\x00C9tude"));
}

TEST_F(StorageRegistry, MakesAStructuredStorageForReading)
{
    suFileStorage* storage = getRegisteredStorage(L"a.doc", false);
    ASSERT_NE(storage, nullptr);
    EXPECT_NE(dynamic_cast<suStructuredStorage*>(storage), nullptr);
    EXPECT_THAT(lines(), ElementsAre("suStructuredStorage(a.doc,0,null,null,0,1)",
                                     "suStructuredStorage::isOpen(a.doc)"));
    EXPECT_EQ(g_storageRegistry.at(L"a.doc"), storage);
}

TEST_F(StorageRegistry, HandsOnThatItIsForWriting)
{
    getRegisteredStorage(L"a.doc", true);
    EXPECT_EQ(recorder().count("suStructuredStorage(a.doc,1,null,null,0,1)"), 1u);
}

TEST_F(StorageRegistry, GivesTheSameStorageAgainWhateverTheCaseOfThePath)
{
    suFileStorage* storage = getRegisteredStorage(L"a.doc", false);
    EXPECT_EQ(getRegisteredStorage(L"A.Doc", true), storage);
    EXPECT_EQ(recorder().countBeginning("suStructuredStorage("), 1u);
    EXPECT_EQ(g_storageRegistry.size(), 1u);
}

TEST_F(StorageRegistry, KeepsAStorageThatDoesNotOpenAndGivesNull)
{
    answers().structuredStorageOpen = false;
    EXPECT_EQ(getRegisteredStorage(L"a.doc", false), nullptr);
    ASSERT_EQ(g_storageRegistry.size(), 1u);
    EXPECT_NE(g_storageRegistry.begin()->second, nullptr);
    EXPECT_EQ(recorder().countBeginning("~suStructuredStorage"), 0u);
}

TEST_F(StorageRegistry, ReplacesAStaleEntryWithoutDeletingIt)
{
    answers().structuredStorageOpen = false;
    getRegisteredStorage(L"a.doc", false);
    const std::unique_ptr<suFileStorage> orphan(g_storageRegistry.begin()->second);
    answers().structuredStorageOpen = true;
    suFileStorage* fresh = getRegisteredStorage(L"A.DOC", false);
    ASSERT_NE(fresh, nullptr);
    EXPECT_NE(fresh, orphan.get());
    EXPECT_EQ(g_storageRegistry.size(), 1u);
    EXPECT_EQ(g_storageRegistry.begin()->second, fresh);
    EXPECT_EQ(recorder().countBeginning("~suStructuredStorage"), 0u);
    EXPECT_EQ(orphan->isOpen(), 0);  // Still alive.
}

TEST_F(StorageRegistry, MakesAStorageForAnEntryWithoutOne)
{
    g_storageRegistry[L"a.doc"] = nullptr;
    suFileStorage* storage = getRegisteredStorage(L"a.doc", false);
    ASSERT_NE(storage, nullptr);
    EXPECT_EQ(g_storageRegistry.at(L"a.doc"), storage);
}

TEST_F(StorageRegistry, DropsAnEntryInAnyCase)
{
    getRegisteredStorage(L"a.doc", false);
    dropRegisteredStorage(L"A.DOC");
    EXPECT_EQ(recorder().count("~suStructuredStorage(a.doc)"), 1u);
    EXPECT_TRUE(g_storageRegistry.empty());
}

TEST_F(StorageRegistry, DropsAnEntryWithoutAStorage)
{
    g_storageRegistry[L"a.doc"] = nullptr;
    dropRegisteredStorage(L"a.doc");
    EXPECT_TRUE(g_storageRegistry.empty());
}

TEST_F(StorageRegistry, DropsNothingForAnUnknownPath)
{
    getRegisteredStorage(L"a.doc", false);
    recorder().reset();
    dropRegisteredStorage(L"b.doc");
    EXPECT_THAT(lines(), IsEmpty());
    EXPECT_EQ(g_storageRegistry.size(), 1u);
}

}  // namespace
