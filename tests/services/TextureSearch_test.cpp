#include "raylume/services/TextureSearch.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <string>
#include <thread>

#include "raylume/platform/Paths.h"
#include "raylume/services/FolderLists.h"
#include "tests/platform/ScopedCodePage.h"
#include "tests/services/TextureMachine.h"

namespace {

class TextureSearch : public testing::Test {
protected:
    TextureMachine machine_;
};

// As stored, and by the file name.

TEST_F(TextureSearch, LeavesAPathThatExists)
{
    machine_.add("c:/gone/wood.jpg");
    machine_.add("d:/Data/images/textures/decals/wood.jpg");
    const auto outcome = search({L"C:\\gone\\wood.jpg", TextureImageDecal});
    EXPECT_NE(outcome.found, 0);
    EXPECT_EQ(outcome.result, L"C:\\gone\\wood.jpg");
    EXPECT_EQ(outcome.probes, Paths{L"C:\\gone\\wood.jpg"});
}

TEST_F(TextureSearch, TakesTheBareNameFromTheCurrentFolderBeforeTheDataFolder)
{
    machine_.add("wood.jpg");
    machine_.add("c:/docs/wood.jpg");
    const auto outcome = search({L"C:\\gone\\wood.jpg"});
    EXPECT_NE(outcome.found, 0);
    EXPECT_EQ(outcome.result, L"wood.jpg");
    EXPECT_EQ(outcome.probes, (Paths{L"C:\\gone\\wood.jpg", L"wood.jpg"}));
}

TEST_F(TextureSearch, TriesTheseForAMissingDecal)
{
    const auto outcome = search({L"C:\\gone\\Wood.JPG", TextureImageDecal});
    EXPECT_EQ(outcome.found, 0);
    EXPECT_EQ(outcome.probes,
              (Paths{L"C:\\gone\\Wood.JPG", L"Wood.JPG", L"D:\\Data\\images\\textures\\decals\\Wood.JPG",
                     L"C:\\docs\\Wood.JPG", L"C:\\Wood.JPG"}));
}

TEST_F(TextureSearch, TriesTheseForAMissingAppearance)
{
    const auto outcome = search({L"C:\\gone\\Wood.JPG"});
    EXPECT_EQ(outcome.found, 0);
    EXPECT_EQ(outcome.probes,
              (Paths{L"C:\\gone\\Wood.JPG", L"Wood.JPG", L"C:\\docs\\Wood.JPG", L"C:\\Wood.JPG"}));
}

TEST_F(TextureSearch, TriesTheseForAMissingScene)
{
    const auto outcome =
        search({L"D:\\DATA\\Images\\Wood.JPG", TextureImageScene, L"C:\\docs\\", L"C:\\scenes\\"});
    EXPECT_EQ(outcome.found, 0);
    EXPECT_EQ(outcome.probes,
              (Paths{L"D:\\DATA\\Images\\Wood.JPG", L"Wood.JPG", L"C:\\docs\\Wood.JPG", L"C:\\Wood.JPG",
                     L"C:\\scenes\\images\\wood.jpg", L"C:\\scenes\\Wood.JPG"}));
}

TEST_F(TextureSearch, DoesNotCutASeparatorInFront)
{
    const auto outcome = search({L"\\no such wood.jpg"});
    EXPECT_EQ(outcome.probes,
              (Paths{L"\\no such wood.jpg", L"C:\\docs\\\\no such wood.jpg", L"C:\\\\no such wood.jpg"}));
}

TEST_F(TextureSearch, KeepsTheSeparatorInFrontInTheLeafOnly)
{
    machine_.write("c:/docs/__ImageLocations__.txt", "k\tC:\\maps\n");
    const auto outcome = search({L"\\no such wood.jpg", TextureImageDecal});
    EXPECT_EQ(
        outcome.probes,
        (Paths{L"\\no such wood.jpg", L"D:\\Data\\images\\textures\\decals\\\\no such wood.jpg",
               L"C:\\docs\\no such wood.jpg", L"C:\\maps\\\\no such wood.jpg", L"C:\\\\no such wood.jpg"}));
}

TEST_F(TextureSearch, TakesTrailingSpaceOffWhatItCut)
{
    const auto outcome = search({L"C:\\gone \\wood.jpg \t\u00A0"});
    EXPECT_EQ(outcome.probes, (Paths{L"C:\\gone \\wood.jpg \t\u00A0", L"wood.jpg", L"C:\\docs\\wood.jpg",
                                     L"C:\\wood.jpg"}));
}

TEST_F(TextureSearch, KeepsTrailingSpaceInTheLeafOfABareName)
{
    const auto outcome = search({L"wood.jpg "});
    EXPECT_EQ(outcome.probes, (Paths{L"wood.jpg ", L"C:\\docs\\wood.jpg", L"C:\\wood.jpg "}));
}

TEST_F(TextureSearch, CutsAtNoOtherSeparator)
{
    const auto outcome = search({L"C:/gone/wood.jpg"});
    EXPECT_EQ(outcome.probes,
              (Paths{L"C:/gone/wood.jpg", L"C:\\docs\\C:/gone/wood.jpg", L"C:\\C:/gone/wood.jpg"}));
}

TEST_F(TextureSearch, OfNothingFindsNothing)
{
    const auto outcome = search({L""});
    EXPECT_EQ(outcome.found, 0);
    EXPECT_EQ(outcome.probes, (Paths{L"", L"C:\\docs\\", L"C:\\"}));
}

TEST_F(TextureSearch, OfAFolderFindsItButNotWithASeparatorBehindIt)
{
    EXPECT_NE(search({L"C:\\docs"}).found, 0);
    EXPECT_EQ(search({L"C:\\docs\\"}).found, 0);
    EXPECT_EQ(search({L"C:\\docs\\"}).probes, (Paths{L"C:\\docs\\", L"", L"C:\\docs\\", L"C:\\"}));
}

TEST_F(TextureSearch, HonoursWildcards)
{
    machine_.add("c:/docs/wood.jpg");
    EXPECT_EQ(search({L"C:\\gone\\w*.j?g"}).result, L"C:\\docs\\w*.j?g");
}

TEST_F(TextureSearch, FindsFilesWithoutCaseAndKeepsTheText)
{
    machine_.add("c:/Docs2/Wood.JPG");
    EXPECT_EQ(search({L"C:\\DOCS2\\wood.jpg"}).result, L"C:\\DOCS2\\wood.jpg");
}

// Below the data folder.

TEST_F(TextureSearch, TakesTheLeafOfADecalBelowTheDataFolder)
{
    machine_.add("d:/Data/images/textures/decals/Logo.png");
    const auto outcome = search({L"C:\\data\\images\\textures\\x\\Logo.png", TextureImageDecal});
    EXPECT_NE(outcome.found, 0);
    EXPECT_EQ(outcome.result, L"D:\\Data\\images\\textures\\decals\\Logo.png");
}

TEST_F(TextureSearch, TakesTheLowerCasedTailOfTheStoredPath)
{
    machine_.add("d:/Data/images/textures/wood/oak.jpg");
    for (const TextureImageType type : {TextureImageAppearance, TextureImageScene}) {
        const auto outcome = search({L"C:\\x\\Data\\Images\\Textures\\Wood\\Oak.jpg", type});
        EXPECT_NE(outcome.found, 0);
        EXPECT_EQ(outcome.result, L"D:\\Data\\images\\textures\\wood\\oak.jpg");
        EXPECT_EQ(outcome.probes, (Paths{L"C:\\x\\Data\\Images\\Textures\\Wood\\Oak.jpg", L"Oak.jpg",
                                         L"D:\\Data\\images\\textures\\wood\\oak.jpg"}));
    }
}

TEST_F(TextureSearch, GoesOnWithTheLowerCasedNameBesideTheDocumentOnly)
{
    machine_.write("c:/docs/__ImageLocations__.txt", "k\tC:\\maps\n");
    const auto outcome = search({L"C:\\x\\Data\\Images\\Textures\\Wood\\Oak.jpg"});
    EXPECT_EQ(outcome.probes, (Paths{L"C:\\x\\Data\\Images\\Textures\\Wood\\Oak.jpg", L"Oak.jpg",
                                     L"D:\\Data\\images\\textures\\wood\\oak.jpg", L"C:\\docs\\oak.jpg",
                                     L"C:\\maps\\Oak.jpg", L"C:\\Oak.jpg"}));
}

TEST_F(TextureSearch, TakesTheFirstOfTwoTails)
{
    const auto outcome = search({L"C:\\data\\images\\textures\\data\\images\\textures\\a.jpg"});
    ASSERT_GT(outcome.probes.size(), 2u);
    EXPECT_EQ(outcome.probes[2], L"D:\\Data\\images\\textures\\data\\images\\textures\\a.jpg");
}

TEST_F(TextureSearch, TakesNoTailWhereThePathBeginsWithIt)
{
    const auto outcome = search({L"\\data\\images\\textures\\data\\images\\textures\\no such.jpg"});
    EXPECT_EQ(outcome.probes, (Paths{L"\\data\\images\\textures\\data\\images\\textures\\no such.jpg",
                                     L"no such.jpg", L"C:\\docs\\no such.jpg", L"C:\\no such.jpg"}));
}

TEST_F(TextureSearch, PutsAPathFromTheTexturesOnBehindTheDataFolder)
{
    machine_.add("d:/Data/images/textures/a b.jpg");
    const auto outcome = search({L"\\Images\\Textures\\A b.jpg", TextureImageScene});
    EXPECT_EQ(outcome.result, L"D:\\Data\\images\\textures\\a b.jpg");
    EXPECT_EQ(outcome.probes,
              (Paths{L"\\Images\\Textures\\A b.jpg", L"A b.jpg", L"D:\\Data\\images\\textures\\a b.jpg"}));
}

TEST_F(TextureSearch, TakesNoTexturesInTheMiddle)
{
    const auto outcome = search({L"C:\\Images\\Textures\\a.jpg"});
    EXPECT_EQ(outcome.probes,
              (Paths{L"C:\\Images\\Textures\\a.jpg", L"a.jpg", L"C:\\docs\\a.jpg", L"C:\\a.jpg"}));
}

TEST_F(TextureSearch, WithoutADataFolderProbesTheRoot)
{
    const auto outcome = search({L"no such.jpg", TextureImageDecal, L"C:\\docs\\", L"", L""});
    ASSERT_GT(outcome.probes.size(), 1u);
    EXPECT_EQ(outcome.probes[1], L"\\images\\textures\\decals\\no such.jpg");
}

TEST_F(TextureSearch, OfAnUnknownTypeHasNoRoadOfItsOwn)
{
    machine_.write("c:/docs/__ImageLocations__.txt",
                   "k\tC:\\maps\nCUSTOM_DECAL_FOLDERS\tC:\\1\nCUSTOM_APPEARANCE_FOLDERS\tC:\\2\n"
                   "CUSTOM_SCENE_FOLDERS\tC:\\3\n");
    machine_.setUserFolders("\"Custom Apperance Folders\"=\"C:\\\\user\"\r\n");
    const auto outcome = search(
        {L"C:\\x\\data\\images\\textures\\a.pdf", TextureImageType(7), L"C:\\docs\\", L"C:\\scenes\\"});
    EXPECT_EQ(outcome.found, 0);
    EXPECT_EQ(outcome.probes, (Paths{L"C:\\x\\data\\images\\textures\\a.pdf", L"a.pdf", L"C:\\docs\\a.pdf",
                                     L"C:\\maps\\a.pdf", L"C:\\a.pdf"}));
}

// Beside the document.

TEST_F(TextureSearch, FindsAnImageBesideTheDocument)
{
    machine_.add("c:/docs/wood.jpg");
    const auto outcome = search({L"C:\\gone\\wood.jpg", TextureImageDecal});
    EXPECT_EQ(outcome.result, L"C:\\docs\\wood.jpg");
    EXPECT_EQ(outcome.probes.size(), 4u);
}

TEST_F(TextureSearch, LosesTheLastComponentOfAFolderWithoutASeparator)
{
    machine_.write("c:/docs/jobs__ImageLocations__.txt", "k\tC:\\maps\n");
    machine_.makeFolder("c:/docs/jobs");
    const auto outcome = search({L"C:\\gone\\wood.jpg", TextureImageAppearance, L"C:\\docs\\jobs"});
    EXPECT_EQ(outcome.probes, (Paths{L"C:\\gone\\wood.jpg", L"wood.jpg", L"C:\\docs\\wood.jpg",
                                     L"C:\\maps\\wood.jpg", L"C:\\wood.jpg"}));
}

TEST_F(TextureSearch, SplitsTheFolderAtTheOtherSeparatorToo)
{
    const auto outcome = search({L"C:\\gone\\wood.jpg", TextureImageAppearance, L"C:\\a/docs/x.glb"});
    EXPECT_EQ(outcome.probes, (Paths{L"C:\\gone\\wood.jpg", L"wood.jpg", L"C:\\a/docs/wood.jpg"}));
}

TEST_F(TextureSearch, WithoutAFolderTriesTheNameAgainAndReadsTheSideFileOfTheCurrentFolder)
{
    machine_.write("__ImageLocations__.txt", "k\tC:\\maps\n");
    const auto outcome = search({L"C:\\gone\\wood.jpg", TextureImageAppearance, L""});
    EXPECT_EQ(outcome.probes,
              (Paths{L"C:\\gone\\wood.jpg", L"wood.jpg", L"wood.jpg", L"C:\\maps\\wood.jpg"}));
}

// The parent folder.

struct ParentCase {
    const char* name;
    const wchar_t* folder;
    const wchar_t* probe;  // Null: none.
};

const ParentCase kParentCases[] = {
    {"two_down", L"C:\\a\\b\\", L"C:\\a\\x"},
    {"one_down", L"C:\\a\\", L"C:\\x"},
    {"root_of_a_drive", L"C:\\", nullptr},
    {"one_down_without_a_drive", L"\\a\\", nullptr},
    {"two_down_without_a_drive", L"\\a\\b\\", L"\\a\\x"},
    {"relative", L"a\\", nullptr},
    {"relative_two_down", L"a\\b\\", L"a\\x"},
    {"drive_alone", L"C:", nullptr},
    {"server", L"\\\\s\\d\\", L"\\\\s\\x"},
    {"server_alone", L"\\\\s\\", L"\\\\x"},
    {"other_separators", L"C:/a/b/", nullptr},
    {"without_a_trailing_separator", L"C:\\a\\b", L"C:\\x"},
};

class ParentFolder : public testing::TestWithParam<ParentCase> {
protected:
    TextureMachine machine_;
};

TEST_P(ParentFolder, IsTriedUnlessAtTheTop)
{
    const auto outcome = search({L"x", TextureImageAppearance, GetParam().folder});
    const bool isLast = !outcome.steps.empty() && outcome.steps.back() == TextureSearchStep::kParentFolder;
    EXPECT_EQ(isLast ? outcome.probes.back() : L"none", GetParam().probe ? GetParam().probe : L"none");
}

INSTANTIATE_TEST_SUITE_P(Rows, ParentFolder, testing::ValuesIn(kParentCases),
                         [](const auto& row) { return row.param.name; });

TEST_F(TextureSearch, FindsAnImageAboveTheDocument)
{
    machine_.add("c:/wood.jpg");
    EXPECT_EQ(search({L"C:\\gone\\wood.jpg"}).result, L"C:\\wood.jpg");
}

// The side file.

class SideFileSearch : public TextureSearch {
protected:
    void write(const std::string& lines) const { machine_.write("c:/docs/__ImageLocations__.txt", lines); }

    // The paths that only the side file brings, found or not.
    static Paths located(const Outcome& outcome)
    {
        Paths paths;
        for (std::size_t i = 0; i < outcome.probes.size(); ++i) {
            if (outcome.steps[i] == TextureSearchStep::kFirstLocation ||
                outcome.steps[i] == TextureSearchStep::kLocations) {
                paths.push_back(outcome.probes[i]);
            }
        }
        return paths;
    }

    Paths locatedFor(const std::string& lines, TextureImageType type = TextureImageAppearance) const
    {
        write(lines);
        return located(search({L"C:\\gone\\x", type}));
    }
};

TEST_F(SideFileSearch, ProbesTheFirstLineUnderAnyKeyAndForEveryType)
{
    for (int type = 0; type < 4; ++type) {
        EXPECT_EQ(locatedFor("any\tD:\\maps\nother\tD:\\more\n", TextureImageType(type)),
                  Paths{L"D:\\maps\\x"});
    }
}

TEST_F(SideFileSearch, FindsByTheFirstLine)
{
    machine_.add("d:/maps/x");
    write("any\tD:\\maps\nCUSTOM_APPEARANCE_FOLDERS\tD:\\maps\n");
    const auto outcome = search({L"C:\\gone\\x"});
    EXPECT_EQ(outcome.result, L"D:\\maps\\x");
    EXPECT_EQ(located(outcome), Paths{L"D:\\maps\\x"});
}

TEST_F(SideFileSearch, ProbesAListInTheFirstLineAsAWholeAndThenPieceByPiece)
{
    EXPECT_EQ(locatedFor("CUSTOM_APPEARANCE_FOLDERS\tC:\\A;C:\\B\n"),
              (Paths{L"C:\\A;C:\\B\\x", L"C:\\A\\x", L"C:\\B\\x"}));
}

struct KeyCase {
    const char* name;
    TextureImageType type;
    const char* key;
    bool isOwn;
};

const KeyCase kKeyCases[] = {
    {"decal", TextureImageDecal, "CUSTOM_DECAL_FOLDERS", true},
    {"appearance", TextureImageAppearance, "CUSTOM_APPEARANCE_FOLDERS", true},
    {"scene", TextureImageScene, "CUSTOM_SCENE_FOLDERS", true},
    {"decal_in_those_of_appearances", TextureImageDecal, "CUSTOM_APPEARANCE_FOLDERS", false},
    {"appearance_in_those_of_scenes", TextureImageAppearance, "CUSTOM_SCENE_FOLDERS", false},
    {"scene_in_those_of_decals", TextureImageScene, "CUSTOM_DECAL_FOLDERS", false},
    {"lower_case", TextureImageDecal, "custom_decal_folders", false},
    {"blank_behind_the_key", TextureImageDecal, "CUSTOM_DECAL_FOLDERS ", false},
    {"blank_before_the_key", TextureImageDecal, " CUSTOM_DECAL_FOLDERS", false},
    {"unknown_type", TextureImageType(9), "CUSTOM_DECAL_FOLDERS", false},
    {"empty_key", TextureImageDecal, "", false},
};

class SideFileKey : public testing::TestWithParam<KeyCase> {
protected:
    TextureMachine machine_;
};

TEST_P(SideFileKey, OpensTheFoldersOfItsTypeOnly)
{
    machine_.write("c:/docs/__ImageLocations__.txt",
                   std::string("first\tC:\\1\n") + GetParam().key + "\tD:\\maps\n");
    machine_.add("d:/maps/x");
    EXPECT_EQ(search({L"C:\\gone\\x", GetParam().type, L"C:\\docs\\"}).found != 0, GetParam().isOwn);
}

INSTANTIATE_TEST_SUITE_P(Rows, SideFileKey, testing::ValuesIn(kKeyCases),
                         [](const auto& row) { return row.param.name; });

TEST_F(SideFileSearch, SkipsLinesWithoutTabOrValue)
{
    EXPECT_EQ(locatedFor("no tab\n\nempty\t\n\tC:\\maps\n"), Paths{L"C:\\maps\\x"});
}

TEST_F(SideFileSearch, DoesNotTakeTheColourForTheFirstLine)
{
    EXPECT_EQ(locatedFor("DEFAULT_COLOR\t255\nany\tC:\\maps\n"), Paths{L"C:\\maps\\x"});
    EXPECT_EQ(locatedFor("default_color\t255\nany\tC:\\maps\n"), Paths{L"255\\x"});
}

TEST_F(SideFileSearch, KeepsFurtherTabsInTheValue)
{
    EXPECT_EQ(locatedFor("any\tC:\\a\tb \n"), Paths{L"C:\\a\tb \\x"});
}

TEST_F(SideFileSearch, EndsLinesAtBothKindsOfEnd)
{
    EXPECT_EQ(locatedFor("CUSTOM_APPEARANCE_FOLDERS\tC:\\1\r\nCUSTOM_APPEARANCE_FOLDERS\tC:\\2"),
              (Paths{L"C:\\1\\x", L"C:\\1\\x", L"C:\\2\\x"}));
}

TEST_F(SideFileSearch, EndsAtTheMarkOfOld)
{
    EXPECT_EQ(locatedFor("any\tC:\\1\x1A\nCUSTOM_APPEARANCE_FOLDERS\tC:\\2\n"), Paths{L"C:\\1\\x"});
}

TEST_F(SideFileSearch, StopsAtTheFirstHit)
{
    machine_.add("c:/2/x");
    write("a\tC:\\1\nCUSTOM_APPEARANCE_FOLDERS\tC:\\1;C:\\2;C:\\3\nCUSTOM_APPEARANCE_FOLDERS\tC:\\4\n");
    const auto outcome = search({L"C:\\gone\\x"});
    EXPECT_EQ(outcome.result, L"C:\\2\\x");
    EXPECT_EQ(located(outcome), (Paths{L"C:\\1\\x", L"C:\\1\\x", L"C:\\2\\x"}));
    EXPECT_EQ(outcome.probes.back(), L"C:\\2\\x");
}

TEST_F(SideFileSearch, GoesOnToTheNextListAfterAMiss)
{
    machine_.add("c:/3/x");
    write("CUSTOM_APPEARANCE_FOLDERS\tC:\\1\nk\tC:\\2\nCUSTOM_APPEARANCE_FOLDERS\tC:\\3\n");
    EXPECT_EQ(search({L"C:\\gone\\x"}).result, L"C:\\3\\x");
}

TEST_F(SideFileSearch, IsReadAgainEachTime)
{
    EXPECT_EQ(locatedFor("k\tC:\\1\n"), Paths{L"C:\\1\\x"});
    EXPECT_EQ(locatedFor("k\tC:\\2\n"), Paths{L"C:\\2\\x"});
}

TEST_F(SideFileSearch, IsInTheCodePage)
{
    const ScopedCodePage page(1252);
    ASSERT_TRUE(page.isSet());
    EXPECT_EQ(locatedFor("k\tC:\\h\xF6he\n"), Paths{L"C:\\h\u00F6he\\x"});
}

TEST_F(SideFileSearch, IsNoPipe)
{
    const std::string path = platform::nativePath(L"C:\\docs\\__ImageLocations__.txt");
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    EXPECT_EQ(located(search({L"C:\\gone\\x"})), Paths{});
}

// Not found: the candidate of the last step stays.

TEST_F(SideFileSearch, LeavesThePathOfTheLastLine)
{
    write("k\tC:\\1\nother\tC:\\2\n");
    EXPECT_EQ(search({L"C:\\gone\\x", TextureImageAppearance, L"C:\\docs\\"}).result, L"C:\\x");
    machine_.write("c:/__ImageLocations__.txt", "k\tC:\\1\nother\tC:\\2\nDEFAULT_COLOR\t1\n");
    EXPECT_EQ(search({L"C:\\gone\\x", TextureImageAppearance, L"C:\\"}).result, L"C:\\2\\x");
}

TEST_F(TextureSearch, LeavesThePathOfTheDataFolderWithoutASideFile)
{
    const auto outcome = search({L"C:\\gone\\x", TextureImageDecal, L"C:\\"});
    EXPECT_EQ(outcome.found, 0);
    EXPECT_EQ(outcome.result, L"D:\\Data\\images\\textures\\decals\\x");
    EXPECT_EQ(search({L"C:\\gone\\x", TextureImageAppearance, L"C:\\"}).result, L"x");
}

TEST_F(TextureSearch, WritesNoPathOfTheSceneUnlessFound)
{
    EXPECT_EQ(search({L"C:\\gone\\x", TextureImageScene, L"C:\\", L"C:\\s\\"}).result, L"x");
}

TEST_F(TextureSearch, WithoutPlaceForTheResultOrPathStillAnswers)
{
    machine_.add("here.bmp");
    EXPECT_NE(findFile(L"here.bmp", L"", L"", TextureImageDecal, nullptr, L""), 0);
    std::wstring result = L"before";
    EXPECT_EQ(findFile(nullptr, L"", L"", TextureImageScene, &result, L""), 0);
    EXPECT_EQ(result, L"");
}

// Scenes.

TEST_F(TextureSearch, TakesTheDataFolderFromThePathOfAScene)
{
    machine_.add("c:/scenes/images/sky.hdr");
    const auto outcome =
        search({L"D:\\DATA\\Images\\Sky.HDR", TextureImageScene, L"C:\\docs\\", L"C:\\scenes\\"});
    EXPECT_NE(outcome.found, 0);
    EXPECT_EQ(outcome.result, L"C:\\scenes\\images\\sky.hdr");
}

TEST_F(TextureSearch, TriesTheWholeLowerCasedPathOfASceneElsewhere)
{
    machine_.add("c:/scenes/Sky.HDR");
    const auto outcome = search({L"E:\\Gone\\Sky.HDR", TextureImageScene, L"C:\\docs\\", L"C:\\scenes\\"});
    EXPECT_EQ(outcome.result, L"C:\\scenes\\Sky.HDR");
    ASSERT_EQ(outcome.probes.size(), 6u);
    EXPECT_EQ(outcome.probes[4], L"C:\\scenes\\e:\\gone\\sky.hdr");
    EXPECT_EQ(outcome.probes[5], L"C:\\scenes\\Sky.HDR");
}

TEST_F(TextureSearch, JoinsTheSceneFolderAsItIs)
{
    const auto outcome = search({L"D:\\Data\\a.hdr", TextureImageScene, L"C:\\", L"C:\\scene.p2s"});
    ASSERT_EQ(outcome.probes.size(), 5u);
    EXPECT_EQ(outcome.probes[3], L"C:\\scene.p2sa.hdr");
    EXPECT_EQ(outcome.probes[4], L"C:\\scene.p2sa.hdr");
}

TEST_F(TextureSearch, LosesTheFirstCharacterOfASceneWithoutADataFolder)
{
    const auto outcome = search({L"E:\\A.hdr", TextureImageScene, L"C:\\", L"C:\\s\\", L""});
    ASSERT_EQ(outcome.probes.size(), 5u);
    EXPECT_EQ(outcome.probes[3], L"C:\\s\\:\\a.hdr");
}

TEST_F(TextureSearch, OfTheDataFolderItselfLeavesNoRelativePath)
{
    const auto outcome = search({L"D:\\Missing", TextureImageScene, L"C:\\", L"C:\\s\\", L"D:\\missing"});
    ASSERT_EQ(outcome.probes.size(), 5u);
    EXPECT_EQ(outcome.probes[3], L"C:\\s\\");
}

TEST_F(TextureSearch, TakesTheDataFolderFromAPathThatOnlyBeginsAlike)
{
    const auto outcome =
        search({L"D:\\Database\\A.hdr", TextureImageScene, L"C:\\", L"C:\\s\\", L"D:\\Data"});
    ASSERT_EQ(outcome.probes.size(), 5u);
    EXPECT_EQ(outcome.probes[3], L"C:\\s\\ase\\a.hdr");
}

TEST_F(TextureSearch, LeavesADataFolderInTheMiddleOfAPathOfAScene)
{
    const auto outcome =
        search({L"E:\\x\\D:\\Data\\a.hdr", TextureImageScene, L"C:\\", L"C:\\s\\", L"D:\\Data"});
    ASSERT_EQ(outcome.probes.size(), 5u);
    EXPECT_EQ(outcome.probes[3], L"C:\\s\\e:\\x\\d:\\data\\a.hdr");
}

TEST_F(TextureSearch, UsesTheSceneFolderForScenesOnly)
{
    machine_.add("c:/scenes/a.bmp");
    for (const TextureImageType type : {TextureImageDecal, TextureImageAppearance}) {
        EXPECT_EQ(search({L"E:\\a.bmp", type, L"C:\\docs\\", L"C:\\scenes\\"}).found, 0);
    }
    EXPECT_EQ(search({L"E:\\a.bmp", TextureImageScene, L"C:\\docs\\", L""}).found, 0);
}

// The folders of the user's settings.

TEST_F(TextureSearch, TriesTheUsersFoldersForAppearances)
{
    machine_.setUserFolders("\"Custom Apperance Folders\"=\"C:\\\\1;;C:\\\\2;C:\\\\3\"\r\n");
    machine_.add("c:/2/no such.jpg");
    const auto outcome = search({L"E:\\gone\\no such.jpg", TextureImageAppearance, L"C:\\"});
    EXPECT_NE(outcome.found, 0);
    EXPECT_EQ(outcome.result, L"C:\\2\\no such.jpg");
    EXPECT_EQ(outcome.probes, (Paths{L"E:\\gone\\no such.jpg", L"no such.jpg", L"C:\\no such.jpg",
                                     L"C:\\1\\no such.jpg", L"\\no such.jpg", L"C:\\2\\no such.jpg"}));
}

TEST_F(TextureSearch, LeavesThePathOfNoFolderOfTheUser)
{
    machine_.setUserFolders("\"Custom Apperance Folders\"=\"C:\\\\1\"\r\n");
    const auto outcome = search({L"C:\\gone\\x", TextureImageAppearance, L"C:\\"});
    EXPECT_EQ(outcome.found, 0);
    EXPECT_EQ(outcome.probes.back(), L"C:\\1\\x");
    EXPECT_EQ(outcome.result, L"x");
}

TEST_F(TextureSearch, TriesTheUsersFoldersForNothingElse)
{
    machine_.setUserFolders("\"Custom Apperance Folders\"=\"C:\\\\2\"\r\n");
    machine_.add("c:/2/a.jpg");
    EXPECT_EQ(search({L"E:\\a.jpg", TextureImageDecal}).found, 0);
    EXPECT_EQ(search({L"E:\\a.jpg", TextureImageScene, L"C:\\docs\\", L"C:\\s\\"}).found, 0);
}

TEST_F(TextureSearch, JoinsTheNumberedPiecesOfTheUsersFolders)
{
    machine_.setUserFolders(
        "\"Custom Apperance Folders0+\"=\"C:\\\\1;C:\\\\la\"\r\n"
        "\"Custom Apperance Folders1+\"=\"ter;C:\\\\3\"\r\n");
    machine_.add("c:/later/a.jpg");
    EXPECT_EQ(search({L"E:\\a.jpg"}).result, L"C:\\later\\a.jpg");
}

// Decals of unknown kinds.

struct ExtensionCase {
    const char* name;
    const char* file;  // In the current folder.
    const wchar_t* stored;
    bool isImage;
};

const ExtensionCase kExtensionCases[] = {
    {"jpeg", "a.jpeg", L"a.jpeg", true},
    {"jpg", "a.jpg", L"a.jpg", true},
    {"bmp", "a.bmp", L"a.bmp", true},
    {"png", "a.png", L"a.png", true},
    {"gif", "a.gif", L"a.gif", true},
    {"rgb", "a.rgb", L"a.rgb", true},
    {"tif", "a.tif", L"a.tif", true},
    {"targa", "a.targa", L"a.targa", true},
    {"tga", "a.tga", L"a.tga", true},
    {"wmf", "a.wmf", L"a.wmf", true},
    {"hdr", "a.hdr", L"a.hdr", true},
    {"mixed_case", "a.JpG", L"a.JpG", true},
    {"space_behind_it", "a.png \t", L"a.png \t", true},
    {"behind_the_last_point", "a.pdf.png", L"a.pdf.png", true},
    {"tiff_is_none", "a.tiff", L"a.tiff", false},
    {"pdf", "a.pdf", L"a.pdf", false},
    {"none", "a", L"a", false},
    {"point_at_the_end", "a.", L"a.", false},
    {"point_in_front_only", ".png", L".png", false},
    {"space_before_it", "a. png", L"a. png", false},
    {"letters_that_would_be_ascii_in_capitals",
     "a.t\xC4\xB1"
     "f",
     L"a.t\u0131f", false},
    {"point_of_a_folder", "b", L"C:\\x.png\\b", false},
    {"of_the_stored_path_as_a_whole", "png", L"C:\\x\\.png", true},
};

class DecalExtension : public testing::TestWithParam<ExtensionCase> {
protected:
    TextureMachine machine_;
};

TEST_P(DecalExtension, DecidesWhetherTheDefaultStandsIn)
{
    const std::wstring stored = GetParam().stored;
    machine_.add(GetParam().file);
    machine_.add(".png");
    const auto outcome = search({stored, TextureImageDecal});
    EXPECT_NE(outcome.found, 0);
    EXPECT_EQ(outcome.result == L"D:\\Data\\images\\textures\\decals\\decals.bmp", !GetParam().isImage);
    for (const auto& path : outcome.probes) {
        EXPECT_EQ(path.find(L"decals.bmp"), std::wstring::npos);
    }
    // An appearance keeps the path that was found, whatever its ending.
    EXPECT_EQ(search({stored, TextureImageAppearance}).result, stored.substr(stored.rfind(L'\\') + 1));
}

INSTANTIATE_TEST_SUITE_P(Rows, DecalExtension, testing::ValuesIn(kExtensionCases),
                         [](const auto& row) { return row.param.name; });

TEST_F(TextureSearch, LeavesAMissingDecalOfAnUnknownKindMissing)
{
    machine_.add("d:/Data/images/textures/decals/decals.bmp");
    EXPECT_EQ(search({L"C:\\gone\\a.pdf", TextureImageDecal}).found, 0);
}

TEST_F(TextureSearch, ReplacesADecalThatALaterStepFound)
{
    machine_.add("c:/a.pdf");
    EXPECT_EQ(search({L"E:\\gone\\a.pdf", TextureImageDecal}).result,
              L"D:\\Data\\images\\textures\\decals\\decals.bmp");
}

// The public entry.

TEST_F(TextureSearch, GivesTheStoredPathWhenNothingIsFound)
{
    EXPECT_EQ(rlu_getTextureFilename(L"C:\\gone\\x.png", "C:\\docs\\", TextureImageDecal, L""),
              "C:\\gone\\x.png");
}

TEST_F(TextureSearch, UsesTheHostsDataFolder)
{
    machine_.add("d:/Data/images/textures/decals/x.png");
    EXPECT_EQ(rlu_getTextureFilename(L"C:\\gone\\x.png", "C:\\docs\\", TextureImageDecal, L""),
              "D:\\Data\\images\\textures\\decals\\x.png");
}

TEST_F(TextureSearch, ReplacesTheTagByTheDataFolder)
{
    machine_.add("d:/Data/images/textures/a.png");
    EXPECT_EQ(rlu_getTextureFilename(L"<SystemTexture>\\images\\textures\\a.png", "C:\\docs\\",
                                     TextureImageAppearance, L""),
              "D:\\Data\\images\\textures\\a.png");
    EXPECT_EQ(rlu_getTextureFilename(L"<SystemTexture>\\gone.png", "C:\\docs\\", TextureImageScene, L""),
              "D:\\Data\\gone.png");
}

TEST_F(TextureSearch, TakesTheLengthOfTheTagFromTheFrontWhereverItStands)
{
    EXPECT_EQ(rlu_getTextureFilename(L"x<SystemTexture>\\a.png", "C:\\docs\\", TextureImageScene, L""),
              "D:\\Data>\\a.png");
    EXPECT_EQ(rlu_getTextureFilename(L"C:\\0123456789abcdef\\<SystemTexture>", "", TextureImageScene, L""),
              "D:\\Datacdef\\<SystemTexture>");
    EXPECT_EQ(rlu_getTextureFilename(L"<systemtexture>\\a.png", "", TextureImageScene, L""),
              "<systemtexture>\\a.png");
}

TEST_F(TextureSearch, TakesTheFolderInTheCodePageAndGivesThePathInIt)
{
    const ScopedCodePage page(1252);
    ASSERT_TRUE(page.isSet());
    machine_.add("c:/h\xC3\xB6he/x.png");
    EXPECT_EQ(rlu_getTextureFilename(L"C:\\gone\\x.png", "C:\\h\xF6he\\", TextureImageDecal, L""),
              "C:\\h\xF6he\\x.png");
}

TEST_F(TextureSearch, LosesInTheAnswerWhatTheCodePageLacks)
{
    const ScopedCodePage page(1252);
    ASSERT_TRUE(page.isSet());
    EXPECT_EQ(rlu_getTextureFilename(L"C:\\\u6728.png", "C:\\docs\\", TextureImageDecal, L""), "C:\\?.png");
}

TEST_F(TextureSearch, PassesTheSceneFolderOn)
{
    machine_.add("c:/scenes/sky.hdr");
    EXPECT_EQ(rlu_getTextureFilename(L"E:\\sky.hdr", "C:\\docs\\", TextureImageScene, L"C:\\scenes\\"),
              "C:\\scenes\\sky.hdr");
}

// Lists of folders.

struct ListCase {
    const char* name;
    const wchar_t* list;
    int found;
    const wchar_t* destination;
    const wchar_t* left;
};

const ListCase kListCases[] = {
    {"first", L"C:\\1;C:\\2;C:\\3", 1, L"C:\\1\\x", L"C:\\1;C:\\2;C:\\3"},
    {"behind_one_without_it", L"C:\\0;C:\\1;C:\\3", 1, L"C:\\1\\x", L"C:\\1;C:\\3"},
    {"last", L"C:\\0;C:\\1", 1, L"C:\\1\\x", L"C:\\1"},
    {"alone", L"C:\\1", 1, L"C:\\1\\x", L"C:\\1"},
    {"nowhere", L"C:\\0;C:\\3", 0, L"before", L""},
    {"empty", L"", 0, L"before", L""},
    {"only_separators", L";;", 0, L"before", L""},
    {"separator_at_the_end", L"C:\\0;", 0, L"before", L""},
    {"blanks_are_kept", L" C:\\1", 0, L"before", L""},
    {"separator_of_its_own", L"C:\\1\\", 1, L"C:\\1\\\\x", L"C:\\1\\"},
};

class FolderList : public testing::TestWithParam<ListCase> {
protected:
    TextureMachine machine_;
};

TEST_P(FolderList, IsTriedPieceByPiece)
{
    machine_.add("c:/1/x");
    machine_.add("c:/2/x");
    std::wstring list = GetParam().list;
    std::wstring destination = L"before";
    EXPECT_EQ(searchFolderList(list, L"x", destination) != 0, GetParam().found != 0);
    EXPECT_EQ(destination, GetParam().destination);
    EXPECT_EQ(list, GetParam().left);
}

INSTANTIATE_TEST_SUITE_P(Rows, FolderList, testing::ValuesIn(kListCases),
                         [](const auto& row) { return row.param.name; });

TEST_F(SideFileSearch, TriesTheRootForAnEmptyPieceButNotForAnEmptyRest)
{
    EXPECT_EQ(locatedFor("k\tC:\\1\nCUSTOM_APPEARANCE_FOLDERS\t;C:\\2;;\n"),
              (Paths{L"C:\\1\\x", L"\\x", L"C:\\2\\x", L"\\x"}));
}

TEST_F(TextureSearch, GoesThroughManyFolders)
{
    std::wstring list(100'000, L';');
    std::wstring destination;
    EXPECT_EQ(searchFolderList(list, L"no such file", destination), 0);
    EXPECT_EQ(list, L"");
}

TEST_F(TextureSearch, TriesNoFoldersForALeafLongerThanNames)
{
    std::wstring list(1'000'000, L';');
    std::wstring destination;
    EXPECT_EQ(searchFolderList(list, std::wstring(1'000'000, L'x'), destination), 0);
    EXPECT_EQ(list, L"");
}

// What is told of a search.

TEST_F(SideFileSearch, NamesTheStepOfEachPath)
{
    using Step = TextureSearchStep;
    machine_.setUserFolders("\"Custom Apperance Folders\"=\"C:\\\\user\"\r\n");
    write("CUSTOM_APPEARANCE_FOLDERS\tC:\\1\nCUSTOM_SCENE_FOLDERS\tC:\\2\n");
    const std::wstring stored = L"D:\\data\\images\\textures\\x";
    EXPECT_EQ(search({stored}).steps,
              (std::vector<Step>{Step::kStoredPath, Step::kFileName, Step::kDataFolder, Step::kSearchFolder,
                                 Step::kFirstLocation, Step::kLocations, Step::kParentFolder,
                                 Step::kUserFolders}));
    EXPECT_EQ(search({stored, TextureImageScene, L"C:\\docs\\", L"C:\\s\\"}).steps,
              (std::vector<Step>{Step::kStoredPath, Step::kFileName, Step::kDataFolder, Step::kSearchFolder,
                                 Step::kFirstLocation, Step::kLocations, Step::kParentFolder,
                                 Step::kSceneRelative, Step::kSceneFolder}));
}

TEST_F(TextureSearch, TellsAnObserverWhatTheDocumentSaidAndWhereItIs)
{
    machine_.add("c:/docs/a.png");
    const ObservedSearches observed;
    rlu_getTextureFilename(L"<SystemTexture>\\a.png", "C:\\docs\\", TextureImageDecal, L"");
    rlu_getTextureFilename(L"C:\\gone\\b.png", "C:\\docs\\", TextureImageScene, L"");
    ASSERT_EQ(observed.all.size(), 2u);
    EXPECT_EQ(observed.all[0].storedPath, L"<SystemTexture>\\a.png");
    EXPECT_EQ(observed.all[0].type, TextureImageDecal);
    EXPECT_TRUE(observed.all[0].found);
    EXPECT_EQ(observed.all[0].path, L"C:\\docs\\a.png");
    EXPECT_TRUE(observed.all[0].probes.back().found);
    EXPECT_FALSE(observed.all[0].probes.front().found);
    EXPECT_EQ(observed.all[0].probeCount, observed.all[0].probes.size());
    EXPECT_EQ(observed.all[1].type, TextureImageScene);
    EXPECT_FALSE(observed.all[1].found);
    EXPECT_EQ(observed.all[1].path, L"");
}

TEST_F(TextureSearch, TellsAnObserverOfTheDefaultDecalThatIsInNoProbe)
{
    machine_.add("a.pdf");
    const ObservedSearches observed;
    rlu_getTextureFilename(L"a.pdf", "C:\\docs\\", TextureImageDecal, L"");
    EXPECT_EQ(pathsOf(observed.all.at(0)), Paths{L"a.pdf"});
    EXPECT_EQ(observed.all.at(0).path, L"D:\\Data\\images\\textures\\decals\\decals.bmp");
}

TEST_F(SideFileSearch, CountsBeyondWhatItRecords)
{
    write("k\tC:\\1\nCUSTOM_DECAL_FOLDERS\t" + std::string(10'000, ';') + "\n");
    const ObservedSearches observed;
    rlu_getTextureFilename(L"C:\\gone\\x", "C:\\docs\\", TextureImageDecal, L"");
    EXPECT_EQ(observed.all.at(0).probes.size(), TextureSearchRecord::kMostProbes);
    EXPECT_EQ(observed.all.at(0).probeCount, 10'006u);
}

TEST_F(TextureSearch, ObservesOneThreadOnly)
{
    const ObservedSearches observed;
    std::thread([] { rlu_getTextureFilename(L"a", "", TextureImageDecal, L""); }).join();
    EXPECT_TRUE(observed.all.empty());
}

TEST_F(TextureSearch, TellsAnObserverNothingOfAListAlone)
{
    const ObservedSearches observed;
    std::wstring list = L"C:\\docs";
    std::wstring destination;
    searchFolderList(list, L"x", destination);
    EXPECT_TRUE(observed.all.empty());
}

TEST_F(TextureSearch, LosesTheObserverThatAnObserverSets)
{
    int calls = 0;
    int otherCalls = 0;
    const auto before = rlu_observeTextureSearches([&](const TextureSearchRecord&) {
        ++calls;
        rlu_observeTextureSearches([&](const TextureSearchRecord&) { ++otherCalls; });
    });
    rlu_getTextureFilename(L"a", "", TextureImageDecal, L"");
    rlu_getTextureFilename(L"a", "", TextureImageDecal, L"");
    rlu_observeTextureSearches(before);
    EXPECT_EQ(calls, 2);
    EXPECT_EQ(otherCalls, 0);
}

TEST_F(TextureSearch, LetsAnObserverSearch)
{
    int calls = 0;
    const auto before = rlu_observeTextureSearches([&](const TextureSearchRecord&) {
        ++calls;
        rlu_getTextureFilename(L"a", "", TextureImageDecal, L"");
    });
    rlu_getTextureFilename(L"a", "", TextureImageDecal, L"");
    rlu_getTextureFilename(L"a", "", TextureImageDecal, L"");
    rlu_observeTextureSearches(before);
    EXPECT_EQ(calls, 2);
}

}  // namespace
