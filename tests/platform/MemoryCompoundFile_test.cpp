// The machine in memory has compound files with the same views.
#include "CompoundFileTools.h"
#include "raylume/platform/CompoundCopy.h"
#include "tests/memory_platform/MemoryPlatform.h"

namespace {

using namespace compound_tests;
using memory_platform::machine;

class MemoryCompoundFile : public testing::Test {
protected:
    MemoryCompoundFile() { memory_platform::reset(); }
    ~MemoryCompoundFile() override { memory_platform::reset(); }
};

TEST_F(MemoryCompoundFile, IsFoundWhereItWasMade)
{
    EXPECT_RESULT(0x80030002, platform::openCompoundFile(L"c:\\a.doc", false, Storage().out()));
    put(*createFile("c:/a.doc").get(), L"Data", "bytes");
    EXPECT_EQ(bytesOf(*openFile("C:\\A.doc").get(), L"DATA"), "bytes");
    EXPECT_RESULT(0x80030050, platform::createCompoundFile(L"c:\\a.doc", false, Storage().out()));
    createFile("c:\\a.doc", true);
    EXPECT_EQ(bytesOf(*openFile("c:\\a.doc").get(), L"Data"), "no stream");
}

TEST_F(MemoryCompoundFile, IsSavedAtCommitAndAtTheLastRelease)
{
    {
        const Storage root = createFile("a");
        EXPECT_EQ(machine().compoundWrites, 1);
        put(*createIn(*root.get(), L"Inner").get(), L"Data", "first");
        EXPECT_RESULT(0x80030002, openFile("a")->OpenStorage(L"Inner", kReading, Storage().out()));
        EXPECT_RESULT(0, root->Commit(0));
        EXPECT_EQ(bytesOf(*openIn(*openFile("a").get(), L"Inner").get(), L"Data"), "first");
        put(*root.get(), L"More", "second");
    }
    EXPECT_EQ(machine().compoundWrites, 3);
    EXPECT_EQ(bytesOf(*openFile("a").get(), L"More"), "second");
}

TEST_F(MemoryCompoundFile, StaysAsItWasWhenWritingFails)
{
    put(*createFile("a").get(), L"Data", "old");
    machine().compoundWriteResult = kStorageMediumFull;
    {
        const Storage root = openFile("a", true);
        ASSERT_RESULT(0, root->DestroyElement(L"Data"));
        EXPECT_RESULT(0x80030070, root->Commit(0));
    }
    EXPECT_EQ(bytesOf(*openFile("a").get(), L"Data"), "old");
    EXPECT_RESULT(0x80030070, platform::createCompoundFile(L"b", false, Storage().out()));
}

TEST_F(MemoryCompoundFile, IsCopiedWithWhatStoragesSayOfThemselves)
{
    put(*createIn(*createFile("a").get(), L"Inner").get(), L"Data", "bytes");
    platform::compound::Element& inner = *machine().compoundFiles.at(L"a")->find(L"Inner");
    inner.classId = {1, 2, 3};
    inner.modified = 12345;
    {
        const Storage target = createFile("b");
        ASSERT_RESULT(0, platform::copyElement(*openFile("a").get(), L"Inner", *target.get()));
    }
    const auto copy = machine().compoundFiles.at(L"b")->find(L"Inner");
    ASSERT_NE(copy, nullptr);
    EXPECT_EQ(copy->classId, inner.classId);
    EXPECT_EQ(copy->modified, inner.modified);
    EXPECT_EQ(bytesOf(*openIn(*openFile("b").get(), L"Inner").get(), L"Data"), "bytes");
}

}  // namespace
