#include "raylume/services/Shell.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <string>

#include "raylume/services/FolderProbes.h"
#include "tests/platform/ScopedCodePage.h"
#include "tests/platform/ScopedEnvironment.h"
#include "tests/platform/TemporaryFolder.h"

namespace {

class Shell : public testing::Test {
protected:
    std::wstring wide(const std::wstring& name) const { return folder_.wide() + L"\\" + name; }

    TemporaryFolder folder_;
};

TEST_F(Shell, TellsFoldersFromFiles)
{
    folder_.makeFolder("Folder");
    folder_.write("File.txt", "");
    EXPECT_TRUE(isExistingDirectory(wide(L"Folder")));
    EXPECT_FALSE(isExistingFile(wide(L"Folder")));
    EXPECT_FALSE(isExistingDirectory(wide(L"File.txt")));
    EXPECT_TRUE(isExistingFile(wide(L"File.txt")));
    EXPECT_FALSE(isExistingDirectory(wide(L"Missing")));
    EXPECT_FALSE(isExistingFile(wide(L"Missing")));
    EXPECT_FALSE(isExistingDirectory(L""));
    EXPECT_FALSE(isExistingFile(L""));
}

TEST_F(Shell, FindsPathsWithoutCase)
{
    folder_.makeFolder("Folder/Below");
    EXPECT_TRUE(isExistingDirectory(wide(L"FOLDER\\below")));
}

TEST_F(Shell, TakesAPipeForAFileWithoutWaiting)
{
    ASSERT_EQ(mkfifo((folder_ / "pipe").c_str(), 0600), 0);
    EXPECT_TRUE(isExistingFile(wide(L"pipe")));
    EXPECT_FALSE(isExistingDirectory(wide(L"pipe")));
}

struct PageCase {
    const char* name;
    int codePage;
    bool sees;
};

const PageCase kPageCases[] = {{"utf_8", 65001, true}, {"japanese", 932, true}, {"western", 1252, false}};

class ShellCodePage : public testing::TestWithParam<PageCase> {};

TEST_P(ShellCodePage, DecidesWhatIsSeen)
{
    const TemporaryFolder folder;
    folder.makeFolder("\xE6\x97\xA5");
    folder.write("\xE6\x97\xA5.txt", "");
    // What the missing character would become must not be found in its place.
    folder.makeFolder("?");
    folder.write("?.txt", "");
    const ScopedCodePage page(GetParam().codePage);
    ASSERT_TRUE(page.isSet());
    EXPECT_EQ(isExistingDirectory(folder.wide() + L"\\\u65E5"), GetParam().sees);
    EXPECT_EQ(isExistingFile(folder.wide() + L"\\\u65E5.txt"), GetParam().sees);
}

INSTANTIATE_TEST_SUITE_P(Rows, ShellCodePage, testing::ValuesIn(kPageCases),
                         [](const auto& row) { return row.param.name; });

TEST_F(Shell, MakesTheFolderOfViewsAndFindsItAgain)
{
    const ScopedVariable data("XDG_DATA_HOME", folder_.path());
    for (int run = 0; run < 2; ++run) {
        std::wstring folder;
        EXPECT_EQ(rlu_getRLCustomViewsFolder(&folder), 1);
        EXPECT_EQ(folder, folder_.wide() + L"\\Lumenforge\\Presets\\Views\\");
        EXPECT_TRUE(std::filesystem::is_directory(folder_ / "Lumenforge/Presets/Views"));
    }
}

TEST_F(Shell, UsesAFolderOfViewsInOtherLetters)
{
    const ScopedVariable data("XDG_DATA_HOME", folder_.path());
    folder_.makeFolder("LUMENFORGE/presets");
    std::wstring folder;
    EXPECT_EQ(rlu_getRLCustomViewsFolder(&folder), 1);
    EXPECT_TRUE(std::filesystem::is_directory(folder_ / "LUMENFORGE/presets/Views"));
    EXPECT_FALSE(std::filesystem::exists(folder_ / "Lumenforge"));
}

// A file of that name counts as existing, so only the step below it fails.
TEST_F(Shell, StopsBelowAFileInTheWay)
{
    const ScopedVariable data("XDG_DATA_HOME", folder_.path());
    folder_.write("Lumenforge", "");
    std::wstring folder = L"before";
    EXPECT_EQ(rlu_getRLCustomViewsFolder(&folder), 0);
    EXPECT_EQ(folder, folder_.wide() + L"\\Lumenforge\\Presets\\");
}

TEST_F(Shell, MakesTheFolderOfTheRenderEngine)
{
    const ScopedVariable data("XDG_DATA_HOME", folder_.path());
    std::wstring folder;
    getRenderEngineUserFolder(&folder);
    EXPECT_EQ(folder, folder_.wide() + L"\\Lumenforge\\");
    EXPECT_TRUE(std::filesystem::is_directory(folder_ / "Lumenforge"));
}

TEST_F(Shell, LeavesTheDestinationAloneWithoutAHome)
{
    const ScopedVariable data("XDG_DATA_HOME", std::nullopt);
    const ScopedVariable home("HOME", std::nullopt);
    std::wstring folder = L"before";
    EXPECT_EQ(rlu_getRLCustomViewsFolder(&folder), 0);
    getRenderEngineUserFolder(&folder);
    EXPECT_EQ(folder, L"before");
}

}  // namespace
