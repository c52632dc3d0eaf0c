#include <gtest/gtest.h>

#include <algorithm>
#include <list>
#include <string>
#include <vector>

#include "raylume/services/AppearanceLists.h"
#include "raylume/services/HostPaths.h"
#include "raylume/services/IgnoredImages.h"
#include "raylume/services/TextureSearch.h"
#include "tests/memory_platform/MemoryPlatform.h"

using memory_platform::machine;
using memory_platform::tidyPath;
using Paths = std::vector<std::wstring>;

namespace {

class TextureSearchFailures : public testing::Test {
protected:
    TextureSearchFailures()
    {
        memory_platform::reset();
        g_dataDir = L"D:\\Data";
    }
    ~TextureSearchFailures() override
    {
        g_dataDir.clear();
        g_ignoredImages.clear();
    }

    static void write(const std::wstring& path, const std::string& bytes)
    {
        machine().contents[tidyPath(path)] = bytes;
    }

    static Paths probesOf(const std::wstring& stored, TextureImageType type)
    {
        machine().probes.clear();
        std::wstring result;
        EXPECT_EQ(findFile(stored.c_str(), L"D:\\Data", L"C:\\docs\\", type, &result, L""), 0);
        return machine().probes;
    }
};

TEST_F(TextureSearchFailures, AskTheMachineForExactlyThesePaths)
{
    write(L"C:\\docs\\__ImageLocations__.txt", "any\tE:\\1\nCUSTOM_DECAL_FOLDERS\tE:\\2;E:\\3\n");
    EXPECT_EQ(probesOf(L"C:\\gone\\x.png", TextureImageDecal),
              (Paths{L"C:\\gone\\x.png", L"x.png", L"D:\\Data\\images\\textures\\decals\\x.png",
                     L"C:\\docs\\x.png", L"E:\\1\\x.png", L"E:\\2\\x.png", L"E:\\3\\x.png", L"C:\\x.png"}));
    EXPECT_EQ(machine().opens, Paths{L"C:\\docs\\__ImageLocations__.txt"});
}

TEST_F(TextureSearchFailures, DoNotOpenTheSideFileWhenAnEarlierStepFinds)
{
    machine().addFile(L"C:\\docs\\x.png");
    std::wstring result;
    EXPECT_NE(findFile(L"C:\\gone\\x.png", L"", L"C:\\docs\\", TextureImageScene, &result, L""), 0);
    EXPECT_EQ(machine().opens, Paths{});
}

TEST_F(TextureSearchFailures, ReadTheSideFileAnewForEachMissingImage)
{
    probesOf(L"a", TextureImageScene);
    probesOf(L"b", TextureImageScene);
    EXPECT_EQ(machine().opens.size(), 2u);
}

TEST_F(TextureSearchFailures, GoOnAfterASideFileThatBreaksOffAnywhere)
{
    const std::string bytes = "any\tE:\\1\r\nCUSTOM_DECAL_FOLDERS\tE:\\2;E:\\3\r\n";
    write(L"C:\\docs\\__ImageLocations__.txt", bytes);
    const Paths all = probesOf(L"C:\\gone\\x", TextureImageDecal);
    ASSERT_EQ(all.size(), 8u);
    for (std::size_t size = 0; size < bytes.size(); ++size) {
        machine().failingRead = size;
        const Paths some = probesOf(L"C:\\gone\\x", TextureImageDecal);
        ASSERT_GE(some.size(), 5u);
        ASSERT_LE(some.size(), all.size());
        EXPECT_EQ(some.back(), L"C:\\x");
        // All but what the broken line itself said.
        EXPECT_TRUE(std::equal(some.begin(), some.end() - 2, all.begin())) << size;
    }
}

TEST_F(TextureSearchFailures, KeepTheNamesReadBeforeAListBreaksOff)
{
    write(L"C:\\docs\\__IgnoredImages__.txt", "a.png\nb.png\n");
    machine().failingRead = 8;
    rlu_PopulateIgnoredMissingImagesList("C:\\docs\\");
    EXPECT_EQ(g_ignoredImages, (std::list<std::wstring>{L"a.png", L"b."}));
    machine().failingRead = 0;
    rlu_PopulateIgnoredMissingImagesList("C:\\docs\\");
    EXPECT_TRUE(g_ignoredImages.empty());
}

TEST_F(TextureSearchFailures, ReadNothingForNoFolder)
{
    rlu_PopulateIgnoredMissingImagesList("");
    EXPECT_EQ(machine().opens, Paths{});
}

TEST_F(TextureSearchFailures, DoNotAskForTheDefaultDecal)
{
    machine().addFile(L"C:\\x.tiff");
    EXPECT_EQ(rlu_getTextureFilename(L"C:\\x.tiff", "C:\\docs\\", TextureImageDecal, L""),
              "D:\\Data\\images\\textures\\decals\\decals.bmp");
    EXPECT_EQ(machine().probes, Paths{L"C:\\x.tiff"});
}

}  // namespace
