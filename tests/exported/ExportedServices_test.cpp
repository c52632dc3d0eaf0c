// The functions that need no document, through the shared library alone.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>

#include "raylume/services/Locations.h"
#include "raylume/services/Log.h"
#include "raylume/services/Shell.h"
#include "raylume/services/Text.h"
#include "tests/platform/ScopedEnvironment.h"
#include "tests/platform/TemporaryFolder.h"

namespace {

class ExportedServices : public testing::Test {
protected:
    TemporaryFolder folder_;
};

// 0 when the folder is found and stays, whatever becomes of it later.
int findDataFolder(const TemporaryFolder& folder)
{
    const ScopedVariable host("RAYLUME_HOST", folder / "app/bin/host");
    const std::wstring expected = folder.wide() + L"/app\\Data";
    if (!rlu_getDataDir().empty()) {
        return 1;
    }
    folder.makeFolder("app/Data");
    if (rlu_getDataDir() != expected) {
        return 2;
    }
    std::filesystem::remove(folder / "app/Data");
    return rlu_getDataDir() == expected ? 0 : 3;
}

// In a process of its own, since a folder that was found is final.
TEST_F(ExportedServices, FindTheDataFolder)
{
    EXPECT_EXIT(std::_Exit(findDataFolder(folder_)), testing::ExitedWithCode(0), "");
}

TEST_F(ExportedServices, MakeTheFolderOfViews)
{
    const ScopedVariable data("XDG_DATA_HOME", folder_.path());
    std::wstring folder;
    EXPECT_EQ(rlu_getRLCustomViewsFolder(&folder), 1);
    EXPECT_EQ(folder, folder_.wide() + L"\\Lumenforge\\Presets\\Views\\");
    EXPECT_TRUE(std::filesystem::is_directory(folder_ / "Lumenforge/Presets/Views"));
}

TEST_F(ExportedServices, ReadTheRepairSwitchAnew)
{
    const ScopedVariable registry("RAYLUME_REGISTRY", folder_ / "settings.reg");
    const std::string key = "[HKEY_CURRENT_USER\\Software\\Orvane\\Orvane 2013\\Raylume]\n";
    EXPECT_FALSE(rlu_useDefaultShaderForCorruptR2M());
    folder_.write("settings.reg", key + "\"Repair Custom Appearance\"=dword:00000001\n");
    EXPECT_TRUE(rlu_useDefaultShaderForCorruptR2M());
    folder_.write("settings.reg", key + "\"Repair Custom Appearance\"=dword:00000000\n");
    EXPECT_FALSE(rlu_useDefaultShaderForCorruptR2M());
}

TEST_F(ExportedServices, KnowTheHost)
{
    EXPECT_TRUE(rlu_isMeridian5App());
}

TEST_F(ExportedServices, ConvertTexts)
{
    EXPECT_EQ(rlu_WStringToString(L"h\u00F6he"), "h\xC3\xB6he");
    const std::unique_ptr<wchar_t[]> wide(rlu_CharStarToWideChar("h\xC3\xB6he"));
    ASSERT_NE(wide, nullptr);
    EXPECT_STREQ(wide.get(), L"h\u00F6he");
    EXPECT_EQ(rlu_CharStarToWideChar(nullptr), nullptr);
    EXPECT_EQ(rlu_makeLowerCaseString("H\xC3\x96HE"), "h\xC3\xB6he");
    EXPECT_EQ(rlu_makeLowerCaseString(nullptr), "");
}

int convertInAnotherCodePage()
{
    const std::unique_ptr<wchar_t[]> wide(rlu_CharStarToWideChar("\xD6"));
    const bool isRight = rlu_WStringToString(L"\u00F6\u65E5") == "\xF6?" &&
                         wide.get() == std::wstring(L"\u00D6") && rlu_makeLowerCaseString("\xD6") == "\xF6";
    return isRight ? 0 : 1;
}

// The variable counts before the first conversion of a process only.
TEST_F(ExportedServices, ConvertTextsInTheCodePageOfTheEnvironment)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const ScopedVariable page("RAYLUME_ANSI_CODEPAGE", "1252");
    EXPECT_EXIT(std::_Exit(convertInAnotherCodePage()), testing::ExitedWithCode(0), "");
}

TEST_F(ExportedServices, LogToTheFileThatTheEnvironmentNames)
{
    const ScopedVariable output("RAYLUME_DEBUG_OUTPUT", folder_ / "log.txt");
    rlu_odprintf("%d of %s \n", 3, "five");
    rlu_odprintf("more");
    rlu_ASSERT(false);
    rlu_ASSERT(true);
    EXPECT_EQ(readFile(folder_ / "log.txt"), "3 of five\r\nmore\r\n");
}

TEST_F(ExportedServices, GiveNativePaths)
{
    folder_.makeFolder("Images");
    EXPECT_EQ(rlu_nativePath(folder_.wide() + L"\\images\\Oak.jpg"), folder_ / "Images/Oak.jpg");
    folder_.makeFolder("drives/c:/Work");
    const ScopedVariable drives("RAYLUME_DRIVES", folder_ / "drives");
    EXPECT_EQ(rlu_nativePath(L"C:\\..\\WORK"), folder_ / "drives/c:/Work");
}

}  // namespace
