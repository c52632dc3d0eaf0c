#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "raylume/services/FolderProbes.h"
#include "raylume/services/Shell.h"
#include "tests/memory_platform/MemoryPlatform.h"

using memory_platform::machine;
using Paths = std::vector<std::wstring>;

namespace {

const Paths kAllThree = {L"U\\Lumenforge\\", L"U\\Lumenforge\\Presets\\",
                         L"U\\Lumenforge\\Presets\\Views\\"};

class UserFolder : public testing::Test {
protected:
    UserFolder()
    {
        memory_platform::reset();
        machine().applicationData = L"U";
    }

    std::wstring folder_ = L"before";
};

TEST_F(UserFolder, OfViewsIsMadeStepByStep)
{
    EXPECT_EQ(rlu_getRLCustomViewsFolder(&folder_), 1);
    EXPECT_EQ(folder_, L"U\\Lumenforge\\Presets\\Views\\");
    EXPECT_EQ(machine().makes, kAllThree);
}

TEST_F(UserFolder, OfViewsIsFoundOnALaterRun)
{
    rlu_getRLCustomViewsFolder(&folder_);
    folder_ = L"before";
    EXPECT_EQ(rlu_getRLCustomViewsFolder(&folder_), 1);
    EXPECT_EQ(folder_, L"U\\Lumenforge\\Presets\\Views\\");
}

TEST_F(UserFolder, OfViewsIsUntouchedWithoutApplicationData)
{
    machine().applicationData.reset();
    EXPECT_EQ(rlu_getRLCustomViewsFolder(&folder_), 0);
    EXPECT_EQ(folder_, L"before");
    EXPECT_TRUE(machine().makes.empty());
}

TEST_F(UserFolder, OfViewsIsUntouchedWhenTheFirstStepFails)
{
    machine().failingMake = 1;
    EXPECT_EQ(rlu_getRLCustomViewsFolder(&folder_), 0);
    EXPECT_EQ(folder_, L"before");
    EXPECT_EQ(machine().makes, Paths{kAllThree[0]});
}

TEST_F(UserFolder, OfViewsEndsAtPresetsWhenTheSecondStepFails)
{
    machine().failingMake = 2;
    EXPECT_EQ(rlu_getRLCustomViewsFolder(&folder_), 0);
    EXPECT_EQ(folder_, L"U\\Lumenforge\\Presets\\");
    EXPECT_EQ(machine().makes, (Paths{kAllThree[0], kAllThree[1]}));
}

TEST_F(UserFolder, OfViewsIsStoredWholeWhenTheThirdStepFails)
{
    machine().failingMake = 3;
    EXPECT_EQ(rlu_getRLCustomViewsFolder(&folder_), 0);
    EXPECT_EQ(folder_, L"U\\Lumenforge\\Presets\\Views\\");
}

TEST_F(UserFolder, OfTheRenderEngineIsStoredWhenItWasMade)
{
    getRenderEngineUserFolder(&folder_);
    EXPECT_EQ(folder_, L"U\\Lumenforge\\");
    EXPECT_EQ(machine().makes, Paths{kAllThree[0]});
}

TEST_F(UserFolder, OfTheRenderEngineIsStoredThoughItCouldNotBeMade)
{
    machine().failingMake = 1;
    getRenderEngineUserFolder(&folder_);
    EXPECT_EQ(folder_, L"U\\Lumenforge\\");
    EXPECT_TRUE(machine().entries.empty());
}

TEST_F(UserFolder, OfTheRenderEngineIsUntouchedWithoutApplicationData)
{
    machine().applicationData.reset();
    getRenderEngineUserFolder(&folder_);
    EXPECT_EQ(folder_, L"before");
    EXPECT_TRUE(machine().makes.empty());
}

TEST_F(UserFolder, WithoutADestinationNothingIsMade)
{
    EXPECT_EQ(rlu_getRLCustomViewsFolder(nullptr), 0);
    getRenderEngineUserFolder(nullptr);
    EXPECT_TRUE(machine().makes.empty());
}

}  // namespace
