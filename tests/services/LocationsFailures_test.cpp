#include <gtest/gtest.h>

#include <string>

#include "raylume/services/HostPaths.h"
#include "raylume/services/Locations.h"
#include "tests/memory_platform/MemoryPlatform.h"

using memory_platform::machine;

namespace {

class DataFolder : public testing::Test {
protected:
    DataFolder()
    {
        memory_platform::reset();
        g_dataDir.clear();
    }
    ~DataFolder() override { g_dataDir.clear(); }
};

TEST_F(DataFolder, IsDataUnderTheRootAndNothingElseIsProbed)
{
    machine().executable = L"A\\B\\C\\host.exe";
    machine().addFolder(L"A\\B\\Data");
    machine().addFolder(L"orvwrk\\DATA");
    EXPECT_EQ(rlu_getDataDir(), L"A\\B\\Data");
    EXPECT_EQ(machine().probes, std::vector<std::wstring>{L"A\\B\\Data"});
    EXPECT_EQ(machine().executableBuffers, std::vector<std::size_t>{0x104});
}

TEST_F(DataFolder, IsFinalAndTheSecondCallAsksNothing)
{
    machine().executable = L"A\\B\\C\\host.exe";
    machine().addFolder(L"A\\B\\Data");
    EXPECT_EQ(rlu_getDataDir(), L"A\\B\\Data");
    memory_platform::reset();
    EXPECT_EQ(rlu_getDataDir(), L"A\\B\\Data");
    EXPECT_TRUE(machine().probes.empty());
    EXPECT_TRUE(machine().executableBuffers.empty());
}

TEST_F(DataFolder, LiesTwoLevelsAboveTheRootOtherwise)
{
    machine().executable = L"X\\Y\\A\\B\\C\\host.exe";
    machine().addFolder(L"X\\Y\\orvwrk\\DATA");
    EXPECT_EQ(rlu_getDataDir(), L"X\\Y\\orvwrk\\DATA");
    EXPECT_EQ(machine().probes, (std::vector<std::wstring>{L"X\\Y\\A\\B\\Data", L"X\\Y\\orvwrk\\DATA"}));
}

TEST_F(DataFolder, IsNoFile)
{
    machine().executable = L"X\\Y\\A\\B\\C\\host.exe";
    machine().addFile(L"X\\Y\\A\\B\\Data");
    machine().addFile(L"X\\Y\\orvwrk\\DATA");
    EXPECT_EQ(rlu_getDataDir(), L"");
}

TEST_F(DataFolder, IsLookedForAgainWhileItIsMissing)
{
    machine().executable = L"A\\B\\C\\host.exe";
    EXPECT_EQ(rlu_getDataDir(), L"");
    EXPECT_EQ(machine().probes.size(), 2u);
    EXPECT_EQ(rlu_getDataDir(), L"");
    EXPECT_EQ(machine().probes.size(), 4u);
    machine().addFolder(L"A\\B\\Data");
    EXPECT_EQ(rlu_getDataDir(), L"A\\B\\Data");
}

TEST_F(DataFolder, WithoutARootTheExecutableIsTestedAndNothingIsSet)
{
    machine().executable = L"/bin/host";
    machine().addFile(L"/bin/host");
    machine().addFolder(L"\\orvwrk\\DATA");
    EXPECT_EQ(rlu_getDataDir(), L"");
    EXPECT_EQ(machine().probes, std::vector<std::wstring>{L"/bin/host"});
    EXPECT_EQ(machine().executableBuffers, (std::vector<std::size_t>{0x104, 0x200}));
}

TEST_F(DataFolder, WithoutARootAFolderAsExecutableIsBelieved)
{
    machine().executable = L"/bin/host";
    machine().addFolder(L"/bin/host");
    EXPECT_EQ(rlu_getDataDir(), L"\\orvwrk\\DATA");
}

TEST_F(DataFolder, WithoutAnExecutableIsEmpty)
{
    machine().addFolder(L"\\Data");
    machine().addFolder(L"\\orvwrk\\DATA");
    EXPECT_EQ(rlu_getDataDir(), L"");
    EXPECT_EQ(machine().probes, std::vector<std::wstring>{L""});
}

// The 260th character is a separator: with it in, the root would lie one level lower.
TEST_F(DataFolder, PathsAreCutAtTheFirstBuffer)
{
    const std::wstring first259 = L"A\\B\\" + std::wstring(255, L'c');
    machine().executable = first259 + L"\\host.exe";
    EXPECT_EQ(getHostInstallRoot(), L"A");
    machine().executable = first259.substr(0, 258) + L"\\host.exe";
    EXPECT_EQ(getHostInstallRoot(), L"A\\B");
}

TEST_F(DataFolder, WithoutARootPathsAreCutAtTheSecondBuffer)
{
    machine().executable = L"\\" + std::wstring(600, L'x');
    machine().addFolder(L"\\" + std::wstring(510, L'x'));
    EXPECT_EQ(rlu_getDataDir(), L"\\orvwrk\\DATA");
    EXPECT_EQ(machine().probes, std::vector<std::wstring>{L"\\" + std::wstring(510, L'x')});
}

// The first buffer ends within the first component, so that there is no root, and the second holds
// the whole path.
TEST_F(DataFolder, WithoutARootLiesFourLevelsAboveTheExecutable)
{
    const std::wstring first = L"\\" + std::wstring(300, L'x');
    machine().executable = first + L"\\b\\c\\d\\host";
    machine().addFolder(machine().executable);
    EXPECT_EQ(rlu_getDataDir(), first + L"\\orvwrk\\DATA");
}

}  // namespace
