#include "raylume/platform/UserFolders.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <optional>
#include <string>

#include "tests/platform/ScopedEnvironment.h"
#include "tests/platform/TemporaryFolder.h"

namespace {

std::optional<std::wstring> folderFor(const std::optional<std::string>& data,
                                      const std::optional<std::string>& home)
{
    const ScopedVariable dataVariable("XDG_DATA_HOME", data);
    const ScopedVariable homeVariable("HOME", home);
    return platform::applicationDataFolder();
}

class ApplicationData : public testing::Test {
protected:
    TemporaryFolder folder_;
};

TEST_F(ApplicationData, IsWhatTheVariableSaysWithoutTrailingSeparator)
{
    EXPECT_EQ(folderFor(folder_ / "data//", folder_.path()), folder_.wide() + L"/data");
    EXPECT_TRUE(std::filesystem::is_directory(folder_ / "data"));
}

TEST_F(ApplicationData, LiesInTheHomeOtherwiseAndIsMade)
{
    EXPECT_EQ(folderFor(std::nullopt, folder_.path()), folder_.wide() + L"/.local/share");
    EXPECT_TRUE(std::filesystem::is_directory(folder_ / ".local/share"));
    EXPECT_EQ(folderFor("", folder_.path()), folder_.wide() + L"/.local/share");
}

TEST_F(ApplicationData, IgnoresARelativeVariable)
{
    EXPECT_EQ(folderFor("data", folder_.path()), folder_.wide() + L"/.local/share");
    EXPECT_EQ(folderFor(std::nullopt, "home"), std::nullopt);
}

TEST_F(ApplicationData, IsNothingWithoutAHome)
{
    EXPECT_EQ(folderFor(std::nullopt, std::nullopt), std::nullopt);
    EXPECT_EQ(folderFor(std::nullopt, ""), std::nullopt);
}

TEST_F(ApplicationData, IsNamedEvenIfItCannotBeMade)
{
    folder_.write("file", "");
    EXPECT_EQ(folderFor(folder_ / "file/data", std::nullopt), folder_.wide() + L"/file/data");
}

}  // namespace
