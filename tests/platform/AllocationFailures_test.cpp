// A program of its own, since it puts a failing operator new in the place of the usual one.
#include <gtest/gtest.h>

#include <cstdlib>
#include <new>
#include <string>

#include "raylume/platform/Text.h"
#include "raylume/platform/UserSettings.h"
#include "tests/platform/ScopedCodePage.h"
#include "tests/platform/ScopedEnvironment.h"
#include "tests/platform/TemporaryFolder.h"

namespace {

// Below zero nothing fails.
long g_successes = -1;
bool g_failed = false;

void* allocate(std::size_t size)
{
    if (g_successes >= 0 && g_successes-- == 0) {
        g_failed = true;
        throw std::bad_alloc();
    }
    void* const block = std::malloc(size ? size : 1);
    if (!block) {
        throw std::bad_alloc();
    }
    return block;
}

}  // namespace

void* operator new(std::size_t size)
{
    return allocate(size);
}

void* operator new[](std::size_t size)
{
    return allocate(size);
}

void operator delete(void* block) noexcept
{
    std::free(block);
}

void operator delete(void* block, std::size_t) noexcept
{
    std::free(block);
}

void operator delete[](void* block) noexcept
{
    std::free(block);
}

void operator delete[](void* block, std::size_t) noexcept
{
    std::free(block);
}

namespace {

constexpr long kMostAllocations = 10000;

enum class Outcome { kRight, kWrong, kBadAlloc };

// Runs a call, which tells whether it was right, with one allocation of it failing.
template <class Call>
Outcome withFailure(long successes, Call call)
{
    g_failed = false;
    g_successes = successes;
    Outcome outcome = Outcome::kBadAlloc;
    try {
        outcome = call() ? Outcome::kRight : Outcome::kWrong;
    } catch (const std::bad_alloc&) {
    }
    g_successes = -1;
    return outcome;
}

bool readsTheSetting()
{
    const auto key = platform::SettingsKey::openCurrentUser(L"Software\\A");
    const auto value = key ? key->query(L"a value with a long name", 1024) : platform::SettingValue{};
    return value.found && platform::settingText(value) == L"a text of some characters";
}

TEST(AllocationFailure, InSettingsIsReportedAndLeavesTheNextCallRight)
{
    const TemporaryFolder folder;
    const ScopedVariable variable("RAYLUME_REGISTRY", folder / "settings.reg");
    folder.write("settings.reg",
                 "[HKEY_CURRENT_USER\\Software\\A]\n"
                 "\"a value with a long name\"=\"a text of some characters\"\n");
    ASSERT_TRUE(readsTheSetting());
    long failures = 0;
    do {
        ASSERT_LT(failures, kMostAllocations);
        const Outcome outcome = withFailure(failures, readsTheSetting);
        ASSERT_NE(outcome, Outcome::kWrong) << failures;
        ASSERT_TRUE(readsTheSetting()) << failures;
        ++failures;
    } while (g_failed);
    EXPECT_GT(failures, 10);
}

// The control shows whether the code page was described to its end.
bool widensInTheCodePage()
{
    return platform::setAnsiCodePage(932) && platform::widen("\x93\xFA\x1A") == L"\u65E5\x1A" &&
           platform::narrow(L"\u672C\x1C") == "\x96\x7B\x1C";
}

constexpr int kNothingFailed = 10;
constexpr int kFailedAndRightLater = 11;
constexpr int kWrong = 12;

// Pages are looked up once for a process, so each failure needs a process of its own.
[[noreturn]] void widenWithFailure(long successes)
{
    const Outcome outcome = withFailure(successes, widensInTheCodePage);
    if (outcome == Outcome::kWrong || !widensInTheCodePage()) {
        std::_Exit(kWrong);
    }
    std::_Exit(g_failed ? kFailedAndRightLater : kNothingFailed);
}

bool endedWell(int status)
{
    return testing::ExitedWithCode(kNothingFailed)(status) ||
           testing::ExitedWithCode(kFailedAndRightLater)(status);
}

TEST(AllocationFailure, InACodePageIsReportedAndLeavesTheNextCallRight)
{
    long failures = 0;
    bool failed = true;
    const auto endedAndNoted = [&failed](int status) {
        failed = testing::ExitedWithCode(kFailedAndRightLater)(status);
        return endedWell(status);
    };
    while (failed) {
        ASSERT_LT(failures, kMostAllocations);
        ASSERT_EXIT(widenWithFailure(failures), endedAndNoted, "") << failures;
        ++failures;
    }
    EXPECT_GT(failures, 10);
}

}  // namespace
