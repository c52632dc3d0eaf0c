#include "raylume/services/TemporaryFiles.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <string>

#include "tests/platform/ScopedEnvironment.h"
#include "tests/platform/TemporaryFolder.h"

namespace {

std::string processName()
{
    return "rlx" + std::to_string(getpid());
}

class TemporaryFiles : public testing::Test {
protected:
    std::wstring process() const
    {
        return folder_.wide() + L"\\" + platform::fromUtf8(processName()) + L"\\";
    }

    TemporaryFolder folder_;
    ScopedVariable temp_{"temp", folder_.path()};
    ScopedVariable capitalTemp_{"TEMP", std::nullopt};
    ScopedVariable tmp_{"tmp", "/other"};
    ScopedVariable capitalTmp_{"TMP", std::nullopt};
};

TEST_F(TemporaryFiles, LieInTheFolderOfTheVariable)
{
    EXPECT_EQ(getProcessTempFolder(false), folder_.wide() + L"\\");
    EXPECT_EQ(getTemporaryFilePath(L"LDRConfigName.txt", false), folder_.wide() + L"\\LDRConfigName.txt");
    EXPECT_TRUE(std::filesystem::is_empty(folder_.path()));
}

TEST_F(TemporaryFiles, LieInAFolderOfTheProcessThatIsMade)
{
    EXPECT_EQ(getProcessTempFolder(true), process());
    EXPECT_TRUE(std::filesystem::is_directory(folder_ / processName()));
    EXPECT_EQ(getTemporaryFilePath(L"1.bmp", true), process() + L"1.bmp");
}

TEST_F(TemporaryFiles, HaveAFolderAgainAfterItWent)
{
    getProcessTempFolder(true);
    std::filesystem::remove(folder_ / processName());
    EXPECT_EQ(getProcessTempFolder(true), process());
    EXPECT_TRUE(std::filesystem::is_directory(folder_ / processName()));
}

TEST_F(TemporaryFiles, KeepASeparatorThatTheVariableEndsIn)
{
    const ScopedVariable temp("temp", "C:\\t\\");
    EXPECT_EQ(getTemporaryFilePath(L"x", false), L"C:\\t\\\\x");
}

TEST_F(TemporaryFiles, TakeTheSecondVariableWithoutTheFirst)
{
    const ScopedVariable none("temp", std::nullopt);
    EXPECT_EQ(getProcessTempFolder(false), L"/other\\");
    const ScopedVariable empty("temp", "");
    EXPECT_EQ(getProcessTempFolder(false), L"/other\\");
}

TEST_F(TemporaryFiles, AreNowhereWithoutAVariable)
{
    const ScopedVariable noTemp("temp", std::nullopt);
    const ScopedVariable noTmp("tmp", std::nullopt);
    EXPECT_EQ(getProcessTempFolder(false), L"");
    EXPECT_EQ(getProcessTempFolder(true), L"");
    EXPECT_EQ(getTemporaryFilePath(L"1.bmp", true), L"");
}

TEST_F(TemporaryFiles, AreNamedThoughTheFolderCannotBeMade)
{
    const ScopedVariable temp("temp", folder_ / "no/such");
    EXPECT_EQ(getProcessTempFolder(true),
              folder_.wide() + L"/no/such\\" + platform::fromUtf8(processName()) + L"\\");
    EXPECT_TRUE(std::filesystem::is_empty(folder_.path()));
}

}  // namespace
