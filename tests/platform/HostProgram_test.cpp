#include "raylume/platform/HostProgram.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "raylume/platform/Text.h"
#include "tests/platform/ScopedEnvironment.h"

namespace {

std::wstring runningProgram()
{
    return platform::fromUtf8(std::filesystem::read_symlink("/proc/self/exe").string());
}

TEST(HostProgram, IsTheRunningExecutable)
{
    const ScopedVariable variable("RAYLUME_HOST", std::nullopt);
    EXPECT_EQ(platform::hostProgramPath(4096), runningProgram());
}

TEST(HostProgram, IsCutOneShortOfTheBuffer)
{
    const ScopedVariable variable("RAYLUME_HOST", std::nullopt);
    EXPECT_EQ(platform::hostProgramPath(6), runningProgram().substr(0, 5));
    EXPECT_EQ(platform::hostProgramPath(1), L"");
    EXPECT_EQ(platform::hostProgramPath(0), L"");
}

TEST(HostProgram, IsWhatTheVariableSays)
{
    const ScopedVariable variable("RAYLUME_HOST", "C:\\CAD/bin\\h\xC3\xB6st.exe");
    EXPECT_EQ(platform::hostProgramPath(0x104), L"C:\\CAD/bin\\h\u00F6st.exe");
    EXPECT_EQ(platform::hostProgramPath(4), L"C:\\");
}

TEST(HostProgram, KeepsAsManyCharactersAsTheTwoCallersAskFor)
{
    const ScopedVariable variable("RAYLUME_HOST", "/" + std::string(600, 'x'));
    EXPECT_EQ(platform::hostProgramPath(0x104).size(), 259u);
    EXPECT_EQ(platform::hostProgramPath(0x200).size(), 511u);
}

TEST(HostProgram, IgnoresAnEmptyVariable)
{
    const ScopedVariable variable("RAYLUME_HOST", "");
    EXPECT_EQ(platform::hostProgramPath(4096), runningProgram());
}

}  // namespace
