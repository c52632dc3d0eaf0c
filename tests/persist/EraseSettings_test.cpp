// Settings taken out of real compound files, through the default reader.
#include <gmock/gmock.h>

#include <memory>

#include "raylume/load/ExtraData.h"
#include "raylume/load/StorageRegistry.h"
#include "raylume/persist/RLData.h"
#include "tests/persist/StreamBuilder.h"
#include "tests/persist/ViewsFolder.h"
#include "tests/platform/CompoundFileTools.h"
#include "tools/shaderdata/SettingsDocument.h"

namespace {

using namespace compound_tests;
using namespace persist_tests;

class EraseSettings : public testing::Test {
protected:
    void erase()
    {
        CDispListsDocRL session;
        eraseShaderData(session, path());
        closeRaylumeStorage(session);
        dropRegisteredStorage(path());
    }

    std::wstring path() const { return platform::fromUtf8(file); }
    bool hasSettings() const
    {
        return std::unique_ptr<RLData>(RLData::ReadRaylumeData(file.c_str())) != nullptr;
    }

    TemporaryFolder folder;
    ViewsFolder views;
    const std::string file = folder / "a.doc";
};

TEST_F(EraseSettings, TakesThemOutOfTheFileAndLeavesAllElse)
{
    {
        const Storage root = createFile(file);
        put(*root.get(), L"Contents", pattern(9000));
        const Storage third = createIn(*root.get(), L"ThirdPtyStore");
        put(*createIn(*third.get(), L"Other").get(), L"ShaderData", "of somebody else");
        put(*createIn(*third.get(), L"Raylume").get(), L"More", pattern(70, 2));
        ASSERT_RESULT(0, root->Commit(0));
    }
    shaderdata::putSettings(file, sampleStream(10).get());
    ASSERT_TRUE(hasSettings());
    erase();
    EXPECT_FALSE(hasSettings());
    const Storage root = openFile(file);
    EXPECT_TRUE(bytesOf(*root.get(), L"Contents") == pattern(9000));
    const Storage third = openIn(*root.get(), L"ThirdPtyStore");
    EXPECT_EQ(bytesOf(*openIn(*third.get(), L"Other").get(), L"ShaderData"), "of somebody else");
    const Storage addin = openIn(*third.get(), L"Raylume");
    EXPECT_TRUE(bytesOf(*addin.get(), L"More") == pattern(70, 2));
    EXPECT_EQ(bytesOf(*addin.get(), L"ShaderData"), "no stream");
}

TEST_F(EraseSettings, MakesTheAddinsStorageWhereItIsMissing)
{
    {
        const Storage root = createFile(file);
        put(*createIn(*root.get(), L"ThirdPtyStore").get(), L"Contents", "bytes");
        ASSERT_RESULT(0, root->Commit(0));
    }
    erase();
    const Storage third = openIn(*openFile(file).get(), L"ThirdPtyStore");
    EXPECT_EQ(bytesOf(*third.get(), L"Contents"), "bytes");
    EXPECT_TRUE(openIn(*third.get(), L"Raylume"));
    EXPECT_FALSE(hasSettings());
}

TEST_F(EraseSettings, LeavesAFileWithoutThirdPartiesUntouched)
{
    put(*createFile(file).get(), L"Contents", "bytes");
    const std::string before = readFile(file);
    erase();
    EXPECT_TRUE(readFile(file) == before);
}

}  // namespace
