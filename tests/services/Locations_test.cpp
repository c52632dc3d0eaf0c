#include "raylume/services/Locations.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "raylume/services/HostPaths.h"
#include "tests/platform/ScopedCodePage.h"
#include "tests/platform/ScopedEnvironment.h"
#include "tests/platform/TemporaryFolder.h"

namespace {

struct StripCase {
    const char* name;
    const wchar_t* path;
    const wchar_t* stripped;
};

const StripCase kStripCases[] = {
    {"backslashes", L"A\\B\\host.exe", L"A\\B"},
    {"slashes", L"/a/b/host", L"/a/b"},
    {"slash_last", L"A\\B/host.exe", L"A\\B"},
    {"backslash_last", L"A/B\\host.exe", L"A/B"},
    {"no_separator", L"host.exe", L"host.exe"},
    {"nothing", L"", L""},
    {"separator_alone", L"\\", L""},
    {"separator_first", L"/host", L""},
    {"separator_at_the_end", L"A\\B\\", L"A\\B"},
    {"run_of_separators", L"A\\\\B", L"A\\"},
    {"drive", L"C:\\host.exe", L"C:"},
};

class Strip : public testing::TestWithParam<StripCase> {};

TEST_P(Strip, DropsTheLastComponent)
{
    EXPECT_EQ(stripLastPathComponent(GetParam().path), GetParam().stripped);
}

INSTANTIATE_TEST_SUITE_P(Rows, Strip, testing::ValuesIn(kStripCases),
                         [](const auto& row) { return row.param.name; });

class Locations : public testing::Test {
protected:
    Locations() { g_dataDir.clear(); }
    ~Locations() override { g_dataDir.clear(); }

    TemporaryFolder folder_;
    ScopedVariable host_{"RAYLUME_HOST", folder_ / "host/app/bin/host"};
};

TEST_F(Locations, RootLiesTwoLevelsAboveTheExecutable)
{
    EXPECT_EQ(getHostInstallRoot(), folder_.wide() + L"/host/app");
    const ScopedVariable mixed("RAYLUME_HOST", "A\\B/C\\host.exe");
    EXPECT_EQ(getHostInstallRoot(), L"A\\B");
}

TEST_F(Locations, RootComesFromTheRunningExecutable)
{
    const ScopedVariable none("RAYLUME_HOST", std::nullopt);
    const auto program = std::filesystem::read_symlink("/proc/self/exe");
    EXPECT_EQ(getHostInstallRoot(), platform::fromUtf8(program.parent_path().parent_path().string()));
}

TEST_F(Locations, RootIsCutFromTheFirst259Characters)
{
    const ScopedVariable host("RAYLUME_HOST", "/a/b/" + std::string(300, 'x') + "/host");
    EXPECT_EQ(getHostInstallRoot(), L"/a");
}

TEST_F(Locations, DataFolderIsJoinedLiterally)
{
    folder_.makeFolder("host/app/Data");
    EXPECT_EQ(rlu_getDataDir(), folder_.wide() + L"/host/app\\Data");
}

TEST_F(Locations, DataFolderIsFoundWithoutCase)
{
    folder_.makeFolder("host/app/data");
    EXPECT_EQ(rlu_getDataDir(), folder_.wide() + L"/host/app\\Data");
}

TEST_F(Locations, DataFolderMayBeSharedTwoLevelsHigher)
{
    folder_.makeFolder("orvwrk/DATA");
    EXPECT_EQ(rlu_getDataDir(), folder_.wide() + L"\\orvwrk\\DATA");
}

TEST_F(Locations, DataFolderIsFinalEvenWhenItGoes)
{
    folder_.makeFolder("host/app/Data");
    const std::wstring first = rlu_getDataDir();
    std::filesystem::remove(folder_ / "host/app/Data");
    folder_.makeFolder("orvwrk/DATA");
    EXPECT_EQ(rlu_getDataDir(), first);
}

TEST_F(Locations, MissingDataFolderIsLookedForAgain)
{
    EXPECT_EQ(rlu_getDataDir(), L"");
    EXPECT_EQ(g_dataDir, L"");
    folder_.makeFolder("orvwrk/DATA");
    EXPECT_EQ(rlu_getDataDir(), folder_.wide() + L"\\orvwrk\\DATA");
}

TEST_F(Locations, DataFolderBeyondTheCodePageIsNotSeen)
{
    folder_.makeFolder("\xE6\x97\xA5/Data");
    const ScopedVariable host("RAYLUME_HOST", folder_ / "\xE6\x97\xA5/bin/host");
    {
        const ScopedCodePage page(1252);
        EXPECT_EQ(rlu_getDataDir(), L"");
    }
    const ScopedCodePage page(932);
    EXPECT_EQ(rlu_getDataDir(), folder_.wide() + L"/\u65E5\\Data");
}

TEST_F(Locations, HostIsAlwaysTheOne)
{
    EXPECT_TRUE(rlu_isMeridian5App());
}

TEST_F(Locations, RecordsMeanNativePaths)
{
    folder_.makeFolder("Images");
    EXPECT_EQ(rlu_nativePath(folder_.wide() + L"\\images\\Oak.jpg"), folder_ / "Images/Oak.jpg");
}

}  // namespace
