#include <gtest/gtest.h>

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

}  // namespace
