// Pages are looked up once for a process, so each failure has a process of its own.
#include <gtest/gtest.h>

#include <cstdlib>

#include "raylume/platform/Text.h"
#include "raylume/platform/posix/CodePage.h"
#include "tests/platform/FailingAllocations.h"

namespace {

constexpr long kMostAllocations = 10000;

constexpr int kNothingFailed = 10;
constexpr int kFailedAndRightLater = 11;
constexpr int kWrong = 12;

bool widensInTheCodePage()
{
    return platform::setAnsiCodePage(932) && platform::widen("\x93\xFA\x1A") == L"\u65E5\x1A" &&
           platform::narrow(L"\u672C\x1C") == "\x96\x7B\x1C";
}

// A page that was left half described would still convert, only slowly.
bool isDescribed(const platform::CodePage* page)
{
    return page && page->number == 932 && !page->isUtf8 && page->keepsAscii;
}

[[noreturn]] void widenWithFailure(long successes)
{
    const auto outcome = failing_allocations::callWithFailure(successes, widensInTheCodePage);
    if (outcome.isWrong || !widensInTheCodePage() || !isDescribed(platform::findCodePage(932))) {
        std::_Exit(kWrong);
    }
    std::_Exit(outcome.failed ? kFailedAndRightLater : kNothingFailed);
}

TEST(CodePageFailures, OfAllocationsAreReportedAndLeaveTheNextCallRight)
{
    bool failed = true;
    const auto endedWell = [&failed](int status) {
        failed = testing::ExitedWithCode(kFailedAndRightLater)(status);
        return failed || testing::ExitedWithCode(kNothingFailed)(status);
    };
    long failures = 0;
    for (; failed; ++failures) {
        ASSERT_LT(failures, kMostAllocations);
        ASSERT_EXIT(widenWithFailure(failures), endedWell, "") << failures;
    }
    EXPECT_GT(failures, 5);
}

}  // namespace
