#include "raylume/platform/Paths.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "tests/platform/ScopedEnvironment.h"
#include "tests/platform/TemporaryFolder.h"

using namespace std::string_literals;

namespace {

class NativePath : public testing::Test {
protected:
    // The native path of a text below the folder, with that folder taken off again.
    std::string below(const std::wstring& text) const
    {
        const std::string native = platform::nativePath(folder_.wide() + text);
        EXPECT_EQ(native.substr(0, folder_.path().size()), folder_.path());
        return native.substr(folder_.path().size());
    }

    TemporaryFolder folder_;
    ScopedVariable noDrives_{"RAYLUME_DRIVES", std::nullopt};
};

TEST_F(NativePath, OfNothingIsNothing)
{
    EXPECT_EQ(platform::nativePath(L""), "");
}

TEST_F(NativePath, TakesBothSeparators)
{
    folder_.makeFolder("a/b");
    EXPECT_EQ(below(L"\\a/b\\new.txt"), "/a/b/new.txt");
}

TEST_F(NativePath, KeepsTheExactName)
{
    folder_.write("File.txt", "");
    folder_.write("FILE.txt", "");
    EXPECT_EQ(below(L"\\File.txt"), "/File.txt");
    EXPECT_EQ(below(L"\\FILE.txt"), "/FILE.txt");
}

TEST_F(NativePath, FindsEachComponentWithoutCase)
{
    folder_.makeFolder("Images/Textures");
    folder_.write("Images/Textures/Oak.JPG", "");
    EXPECT_EQ(below(L"\\images\\TEXTURES\\oak.jpg"), "/Images/Textures/Oak.JPG");
}

TEST_F(NativePath, FindsLettersBeyondAsciiWithoutCase)
{
    folder_.write("H\xC3\x96HE.txt", "");
    EXPECT_EQ(below(L"\\h\u00F6he.TXT"), "/H\xC3\x96HE.txt");
}

TEST_F(NativePath, SettlesATieByTheOrderOfBytes)
{
    for (const char* name : {"oak.jpg", "oAK.jpg", "OAk.jpg", "oaK.jpg"}) {
        folder_.write(name, "");
    }
    EXPECT_EQ(below(L"\\OAK.JPG"), "/OAk.jpg");
}

TEST_F(NativePath, TakesAnExactFolderEvenIfOnlyTheOtherHoldsTheRest)
{
    folder_.makeFolder("data");
    folder_.makeFolder("Data");
    folder_.write("Data/x", "");
    EXPECT_EQ(below(L"\\data\\x"), "/data/x");
    EXPECT_EQ(below(L"\\DATA\\X"), "/Data/x");
}

TEST_F(NativePath, LeavesTheRestFromTheFirstMissingComponentOn)
{
    folder_.makeFolder("Known/Below");
    EXPECT_EQ(below(L"\\known\\Missing\\BELOW"), "/Known/Missing/BELOW");
}

TEST_F(NativePath, KeepsSeparatorsAtTheEndAndInRuns)
{
    folder_.makeFolder("Folder");
    EXPECT_EQ(below(L"\\folder\\"), "/Folder/");
    EXPECT_EQ(below(L"\\\\folder\\\\new"), "//Folder//new");
}

TEST_F(NativePath, FindsADanglingLinkByItsName)
{
    std::filesystem::create_symlink("nowhere", folder_ / "Link");
    EXPECT_EQ(below(L"\\Link"), "/Link");
    EXPECT_EQ(below(L"\\LINK"), "/Link");
}

TEST_F(NativePath, OfARelativeTextIsRelative)
{
    const auto old = std::filesystem::current_path();
    folder_.makeFolder("Here");
    std::filesystem::current_path(folder_.path());
    EXPECT_EQ(platform::nativePath(L"here\\x"), "Here/x");
    EXPECT_EQ(platform::nativePath(L"."), ".");
    std::filesystem::current_path(old);
}

TEST_F(NativePath, EndsAtTheFirstZero)
{
    folder_.write("a.txt", "");
    EXPECT_EQ(below(L"\\a.txt\0.exe"s), "/a.txt");
}

TEST_F(NativePath, MeetsANameThatIsNoUtf8AsItWasRead)
{
    folder_.write("caf\xE9.txt", "");
    EXPECT_EQ(below(L"\\caf\uFFFD.txt"), "/caf\xE9.txt");
}

TEST_F(NativePath, OfAnOverlongTextStaysAsWritten)
{
    const std::wstring name(100000, L'x');
    EXPECT_EQ(below(L"\\" + name), "/" + std::string(100000, 'x'));
}

TEST_F(NativePath, OfAFileAsAFolderStaysAsWritten)
{
    folder_.write("File", "");
    EXPECT_EQ(below(L"\\file\\Below"), "/File/Below");
}

TEST_F(NativePath, LeavesADriveAloneWithoutAFolderOfDrives)
{
    EXPECT_EQ(platform::nativePath(L"q:\\No\\Such"), "q:/No/Such");
    EXPECT_EQ(platform::nativePath(L"q:\\..\\..\\No"), "q:/No");
    EXPECT_EQ(platform::nativePath(L"q:No\\..\\Such"), "q:/Such");
}

struct DriveCase {
    const char* name;
    const wchar_t* text;
    const char* native;
};

const DriveCase kDriveCases[] = {
    {"exact", L"c:\\Jobs\\part.glb", "/c:/Jobs/part.glb"},
    {"without_case", L"C:\\JOBS\\Part.GLB", "/c:/Jobs/part.glb"},
    {"other_separator", L"C:/jobs/part.glb", "/c:/Jobs/part.glb"},
    {"no_separator_behind_the_drive", L"C:jobs\\part.glb", "/c:/Jobs/part.glb"},
    {"the_drive_alone", L"C:", "/c:"},
    {"its_root", L"C:\\", "/c:/"},
    {"missing_below_the_drive", L"C:\\New\\x", "/c:/New/x"},
    {"unknown_drive", L"E:\\x", "/E:/x"},
    {"no_way_up_from_the_root", L"C:\\..\\..\\etc\\x", "/c:/etc/x"},
    {"no_way_up_without_a_separator", L"C:..\\JOBS", "/c:/Jobs"},
    {"no_way_up_from_below", L"C:\\Jobs\\..\\..\\..\\x", "/c:/x"},
    {"no_way_up_at_the_end", L"C:\\..", "/c:"},
    {"no_way_up_from_an_unknown_drive", L"E:\\..\\c:\\Jobs", "/E:/c:/Jobs"},
    {"no_way_up_past_single_points", L"C:\\Jobs\\.\\..\\..\\x", "/c:/x"},
    {"way_back_below_the_root", L"C:\\Missing\\..\\JOBS\\part.glb", "/c:/Jobs/part.glb"},
    {"single_points_go", L"C:\\.\\JOBS\\.\\part.glb", "/c:/Jobs/part.glb"},
    {"more_points_are_a_name", L"C:\\...\\..x", "/c:/.../..x"},
};

class DrivePath : public testing::TestWithParam<DriveCase> {};

TEST_P(DrivePath, LiesInTheFolderOfDrives)
{
    const TemporaryFolder drives;
    drives.makeFolder("c:/Jobs");
    drives.write("c:/Jobs/part.glb", "");
    const ScopedVariable variable("RAYLUME_DRIVES", drives.path());
    EXPECT_EQ(platform::nativePath(GetParam().text), drives.path() + GetParam().native);
}

INSTANTIATE_TEST_SUITE_P(Rows, DrivePath, testing::ValuesIn(kDriveCases),
                         [](const auto& row) { return row.param.name; });

// A link within a drive is the user's own doing, but a way back from it is one of the text.
TEST_F(NativePath, LeadsBackFromALinkByTheTextAlone)
{
    folder_.makeFolder("drives/c:/Here");
    folder_.makeFolder("elsewhere/below");
    std::filesystem::create_directory_symlink(folder_ / "elsewhere/below", folder_ / "drives/c:/Link");
    const ScopedVariable variable("RAYLUME_DRIVES", folder_ / "drives");
    EXPECT_EQ(platform::nativePath(L"C:\\link\\..\\here"), folder_ / "drives/c:/Here");
}

TEST_F(NativePath, IgnoresTheFolderOfDrivesForOtherTexts)
{
    const ScopedVariable variable("RAYLUME_DRIVES", "/no/such/drives");
    EXPECT_EQ(platform::nativePath(L"1:\\x"), "1:/x");
    EXPECT_EQ(platform::nativePath(L"cc:\\x"), "cc:/x");
    EXPECT_EQ(platform::nativePath(L"\\x:\\y"), "/x:/y");
}

}  // namespace
