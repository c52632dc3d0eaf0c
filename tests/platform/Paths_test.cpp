#include "raylume/platform/Paths.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>
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

TEST_F(NativePath, TakesTheDriveOfTheExactName)
{
    folder_.makeFolder("c:/Here");
    folder_.makeFolder("C:/There");
    const ScopedVariable variable("RAYLUME_DRIVES", folder_.path());
    EXPECT_EQ(platform::nativePath(L"C:\\THERE"), folder_ / "C:/There");
    EXPECT_EQ(platform::nativePath(L"c:\\HERE"), folder_ / "c:/Here");
    EXPECT_EQ(platform::nativePath(L"C:\\here"), folder_ / "C:/here");
}

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

TEST_F(NativePath, SeesWhatWasMadeRightBefore)
{
    EXPECT_EQ(below(L"\\A.TXT"), "/A.TXT");
    folder_.write("a.txt", "");
    EXPECT_EQ(below(L"\\A.TXT"), "/a.txt");
    std::filesystem::rename(folder_ / "a.txt", folder_ / "a.TXT");
    EXPECT_EQ(below(L"\\A.TXT"), "/a.TXT");
    std::filesystem::remove(folder_ / "a.TXT");
    EXPECT_EQ(below(L"\\A.TXT"), "/A.TXT");
}

TEST_F(NativePath, LeadsANewFileToTheEntryThatIsThere)
{
    folder_.makeFolder("Images");
    folder_.write("Images/Oak.bmp", "old");
    std::ofstream(platform::nativePath(folder_.wide() + L"\\IMAGES\\OAK.BMP")) << "new";
    EXPECT_EQ(readFile(folder_ / "Images/Oak.bmp"), "new");
    EXPECT_FALSE(std::filesystem::exists(folder_ / "IMAGES"));
}

// Probes.

class PathProbe : public NativePath {
protected:
    bool matches(const std::wstring& text) const { return platform::pathMatches(folder_.wide() + text); }
};

TEST_F(PathProbe, OfNothingFails)
{
    EXPECT_FALSE(platform::pathMatches(L""));
    EXPECT_FALSE(platform::pathMatches(L"\0a"s));
}

TEST_F(PathProbe, FindsFilesAndFoldersWithoutCase)
{
    folder_.makeFolder("Folder");
    folder_.write("Folder/File.txt", "");
    EXPECT_TRUE(matches(L""));
    EXPECT_TRUE(matches(L"\\folder"));
    EXPECT_TRUE(matches(L"\\FOLDER/file.TXT"));
    EXPECT_TRUE(matches(L"\\Folder\\File.txt\0\\"s));
    EXPECT_FALSE(matches(L"\\Folder\\Other.txt"));
    EXPECT_FALSE(matches(L"\\Other\\File.txt"));
    EXPECT_FALSE(matches(L"\\Folder\\File.txt\\x"));
}

TEST_F(PathProbe, FailsWithASeparatorAtTheEnd)
{
    folder_.makeFolder("Folder");
    folder_.write("File", "");
    for (const wchar_t* text : {L"\\Folder\\", L"\\Folder/", L"\\File\\", L"\\", L"\\Folder\\*\\"}) {
        EXPECT_FALSE(matches(text)) << testing::PrintToString(text);
    }
    EXPECT_FALSE(platform::pathMatches(L"\\"));
    EXPECT_FALSE(platform::pathMatches(L"C:\\"));
}

TEST_F(PathProbe, DoesNotTakeALinkThatLeadsNowhere)
{
    folder_.write("File", "");
    std::filesystem::create_symlink("nowhere", folder_ / "Dangling");
    std::filesystem::create_symlink("File", folder_ / "Good");
    EXPECT_FALSE(matches(L"\\Dangling"));
    EXPECT_FALSE(matches(L"\\DANGLING"));
    EXPECT_FALSE(matches(L"\\dang*"));
    EXPECT_TRUE(matches(L"\\Good"));
    EXPECT_TRUE(matches(L"\\GOOD"));
    EXPECT_TRUE(matches(L"\\goo?"));
}

TEST_F(PathProbe, DoesNotWaitForAPipe)
{
    ASSERT_EQ(mkfifo((folder_ / "pipe").c_str(), 0600), 0);
    EXPECT_TRUE(matches(L"\\PIPE"));
    EXPECT_FALSE(matches(L"\\pipe\\*"));
}

TEST_F(PathProbe, FindsNothingByItsPatternInAnEmptyFolderButTheFolderItself)
{
    folder_.makeFolder("Empty");
    EXPECT_TRUE(matches(L"\\empty\\*"));
    EXPECT_TRUE(matches(L"\\Empty\\*.*"));
    EXPECT_FALSE(matches(L"\\Empty\\*.jpg"));
    EXPECT_FALSE(matches(L"\\Missing\\*"));
}

TEST_F(PathProbe, TakesWildcardsInTheLastComponentOnly)
{
    folder_.makeFolder("Folder");
    folder_.write("Folder/File.txt", "");
    EXPECT_TRUE(matches(L"\\folder\\f*"));
    EXPECT_FALSE(matches(L"\\fold*\\File.txt"));
    EXPECT_FALSE(matches(L"\\?older\\File.txt"));
    folder_.makeFolder("F*");
    folder_.write("F*/x", "");
    EXPECT_TRUE(matches(L"\\f*\\X"));
}

TEST_F(PathProbe, TakesWildcardsInTheCurrentFolderAndOnADrive)
{
    const auto old = std::filesystem::current_path();
    folder_.makeFolder("c:");
    folder_.write("c:/File.txt", "");
    folder_.write("here.txt", "");
    std::filesystem::current_path(folder_.path());
    EXPECT_TRUE(platform::pathMatches(L"HERE.*"));
    EXPECT_FALSE(platform::pathMatches(L"there.*"));
    const ScopedVariable variable("RAYLUME_DRIVES", folder_.path());
    EXPECT_TRUE(platform::pathMatches(L"C:\\f*.txt"));
    EXPECT_TRUE(platform::pathMatches(L"C:f*.txt"));
    EXPECT_FALSE(platform::pathMatches(L"D:\\f*.txt"));
    std::filesystem::current_path(old);
}

struct PatternCase {
    const char* name;
    std::wstring pattern;
    const char* file;
    bool matches;
};

const PatternCase kPatternCases[] = {
    {"star", L"*", "a.txt", true},
    {"star_and_ending", L"*.txt", "A.TXT", true},
    {"star_takes_points", L"*.txt", "a.b.txt", true},
    {"star_and_another_ending", L"*.txt", "a.txt.bak", false},
    {"stem_and_star", L"a.*", "a.txt", true},
    {"stem_and_star_without_an_ending", L"a.*", "a", true},
    {"another_stem_and_star", L"b.*", "a.txt", false},
    {"stars_without_an_ending", L"*.*", "a", true},
    {"no_ending", L"*.", "a", true},
    {"no_ending_with_one", L"*.", "a.txt", false},
    {"star_in_the_middle", L"a*z", "abcz", true},
    {"star_of_nothing", L"a*z", "az", true},
    {"star_and_more_behind", L"a*z", "azb", false},
    {"two_stars", L"*a*b*", "xaxxbx", true},
    {"two_stars_in_the_other_order", L"*b*a", "ab", false},
    {"star_goes_back", L"*aab", "aaaab", true},
    {"question", L"?.txt", "a.txt", true},
    {"question_of_two", L"?.txt", "ab.txt", false},
    {"question_of_nothing_before_a_point", L"a?.txt", "a.txt", true},
    {"question_of_nothing_at_the_end", L"a??", "a", true},
    {"question_of_nothing_in_the_middle", L"a?b", "ab", false},
    {"question_is_no_point", L"a?txt", "a.txt", false},
    {"question_in_the_ending", L"a.t?t", "a.tXt", true},
    {"ending_of_questions_without_one", L"a.???", "a", true},
    {"beyond_ascii", L"\u00D6?.txt", "\xC3\xB6\xC3\xA4.txt", true},
    {"a_name_with_a_question_mark", L"a?.txt", "a?.txt", true},
    {"longer_than_names", std::wstring(300, L'*'), "a", false},
    {"much_longer_than_names", L"*" + std::wstring(1'000'000, L'?'), "a", false},
    {"as_long_as_names", std::wstring(255, L'*'), "a", true},
};

class NamePatterns : public testing::TestWithParam<PatternCase> {};

TEST_P(NamePatterns, AreMatchedInTheOldManner)
{
    const TemporaryFolder folder;
    folder.write(GetParam().file, "");
    EXPECT_EQ(platform::pathMatches(folder.wide() + L"\\" + GetParam().pattern), GetParam().matches);
}

INSTANTIATE_TEST_SUITE_P(Rows, NamePatterns, testing::ValuesIn(kPatternCases),
                         [](const auto& row) { return row.param.name; });

}  // namespace
