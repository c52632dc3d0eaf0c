#include <gtest/gtest.h>

#include <algorithm>
#include <span>
#include <string>
#include <vector>

#include "raylume/services/TemporaryFiles.h"
#include "tests/memory_platform/MemoryPlatform.h"

using memory_platform::machine;
using Paths = std::vector<std::wstring>;

namespace {

class ProcessFolder : public testing::Test {
protected:
    ProcessFolder()
    {
        memory_platform::reset();
        machine().variables["temp"] = L"C:\\t";
        machine().processId = 1234;
    }
};

TEST_F(ProcessFolder, IsMadeOnceWhenItIsMissing)
{
    EXPECT_EQ(getProcessTempFolder(true), L"C:\\t\\rlx1234\\");
    EXPECT_EQ(getProcessTempFolder(true), L"C:\\t\\rlx1234\\");
    EXPECT_EQ(machine().makes, Paths{L"C:\\t\\rlx1234"});
}

TEST_F(ProcessFolder, IsNamedThoughItCouldNotBeMade)
{
    machine().failingMake = 1;
    EXPECT_EQ(getTemporaryFilePath(L"1.bmp", true), L"C:\\t\\rlx1234\\1.bmp");
    EXPECT_TRUE(machine().entries.empty());
}

TEST_F(ProcessFolder, IsNotMadeOverAFileOfItsName)
{
    machine().addFile(L"C:\\t\\rlx1234");
    EXPECT_EQ(getProcessTempFolder(true), L"C:\\t\\rlx1234\\");
    EXPECT_TRUE(machine().makes.empty());
}

TEST_F(ProcessFolder, IsNotAskedForWithoutTheFlag)
{
    EXPECT_EQ(getProcessTempFolder(false), L"C:\\t\\");
    EXPECT_TRUE(machine().probes.empty());
    EXPECT_TRUE(machine().makes.empty());
}

TEST_F(ProcessFolder, IsNothingWithoutTheVariable)
{
    machine().variables.clear();
    EXPECT_EQ(getProcessTempFolder(true), L"");
    EXPECT_EQ(getTemporaryFilePath(L"1.bmp", true), L"");
    EXPECT_TRUE(machine().makes.empty());
}

class BitmapNumbers : public ProcessFolder {
protected:
    static std::wstring save()
    {
        const unsigned char byte = 0;
        const std::span<const unsigned char> piece(&byte, 1);
        std::wstring path;
        saveNextTempBitmap({&piece, 1}, path);
        return path.substr(path.rfind(L'\\') + 1);
    }
    // Those that look for bitmaps, and not for the folder itself.
    static int listings()
    {
        return static_cast<int>(
            std::count(machine().listings.begin(), machine().listings.end(), L"C:\\t\\rlx1234\\*.bmp"));
    }
};

TEST_F(BitmapNumbers, AreLookedForOnceWhileNobodyElseComes)
{
    machine().addFolder(L"C:\\t\\rlx1234");
    machine().addFile(L"C:\\t\\rlx1234\\4.bmp");
    EXPECT_EQ(save(), L"5.bmp");
    EXPECT_EQ(save(), L"6.bmp");
    EXPECT_EQ(save(), L"7.bmp");
    EXPECT_EQ(listings(), 1);
}

TEST_F(BitmapNumbers, AreLookedForAgainWhenTheFolderHasChanged)
{
    save();
    machine().addFile(L"C:\\t\\rlx1234\\20.bmp");
    EXPECT_EQ(save(), L"21.bmp");
    EXPECT_EQ(save(), L"22.bmp");
    EXPECT_EQ(listings(), 2);
}

TEST_F(BitmapNumbers, AreLookedForEachTimeWhereTheStateCannotBeTold)
{
    machine().saveTellsState = false;
    save();
    save();
    EXPECT_EQ(save(), L"3.bmp");
    EXPECT_EQ(listings(), 3);
}

TEST_F(BitmapNumbers, AreLookedForAgainWhenANameIsTaken)
{
    save();
    // Of somebody who came while our own save told the state.
    machine().entries[L"c:\\t\\rlx1234\\2.bmp"] = platform::PathKind::kFile;
    machine().entries[L"c:\\t\\rlx1234\\9.bmp"] = platform::PathKind::kFile;
    EXPECT_EQ(save(), L"10.bmp");
    EXPECT_EQ(listings(), 2);
    EXPECT_EQ(save(), L"11.bmp");
    EXPECT_EQ(listings(), 2);
}

// The highest number there can be is taken and stays the next one.
TEST_F(BitmapNumbers, ThatCannotRiseAreWrittenOver)
{
    machine().addFolder(L"C:\\t\\rlx1234");
    machine().addFile(L"C:\\t\\rlx1234\\2147483647.bmp");
    EXPECT_EQ(save(), L"2147483647.bmp");
}

TEST_F(BitmapNumbers, StayAsTheyAreAfterAFailure)
{
    save();
    machine().saveOutcomes = {platform::SaveFile::kFailed, platform::SaveFile::kFailed};
    EXPECT_EQ(save(), L"2.bmp");
    EXPECT_EQ(save(), L"2.bmp");
    EXPECT_EQ(machine().entries.count(L"c:\\t\\rlx1234\\2.bmp"), 0u);
    EXPECT_EQ(save(), L"2.bmp");
    EXPECT_EQ(listings(), 1);
}

TEST_F(BitmapNumbers, AreFoundBelowTheRootToo)
{
    machine().variables["temp"] = L"/";
    EXPECT_TRUE(probeFolder(getProcessTempFolder(true)));
    EXPECT_EQ(save(), L"1.bmp");
    EXPECT_EQ(save(), L"2.bmp");
}

TEST(ProbedWebAddress, IsAskedForNowhere)
{
    memory_platform::reset();
    for (const wchar_t* const path : {L"HTTP://x", L"http://x\\", L"hTTps:*"}) {
        EXPECT_TRUE(probeFolder(path));
    }
    EXPECT_TRUE(machine().probes.empty());
    EXPECT_TRUE(machine().listings.empty());
    EXPECT_FALSE(probeFolder(L"ftp://x"));
    EXPECT_EQ(machine().listings, Paths{L"ftp://x"});
}

}  // namespace
