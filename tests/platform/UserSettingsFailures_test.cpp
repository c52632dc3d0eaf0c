#include <gtest/gtest.h>

#include <string>

#include "raylume/platform/UserSettings.h"
#include "tests/platform/FailingAllocations.h"
#include "tests/platform/ScopedEnvironment.h"
#include "tests/platform/TemporaryFolder.h"

namespace {

constexpr long kMostAllocations = 10000;

bool readsTheSetting()
{
    const auto key = platform::SettingsKey::openCurrentUser(L"Software\\A");
    const auto value = key ? key->query(L"a value with a long name", 1024) : platform::SettingValue{};
    return value.found && platform::settingText(value) == L"a text of some characters";
}

TEST(SettingsFailures, OfAllocationsAreReportedAndLeaveTheNextCallRight)
{
    const TemporaryFolder folder;
    const ScopedVariable variable("RAYLUME_REGISTRY", folder / "settings.reg");
    folder.write("settings.reg",
                 "[HKEY_CURRENT_USER\\Software\\A]\n"
                 "\"a value with a long name\"=\"a text of some characters\"\n");
    ASSERT_TRUE(readsTheSetting());
    long failures = 0;
    for (bool failed = true; failed; ++failures) {
        ASSERT_LT(failures, kMostAllocations);
        const auto outcome = failing_allocations::callWithFailure(failures, readsTheSetting);
        ASSERT_FALSE(outcome.isWrong) << failures;
        ASSERT_TRUE(readsTheSetting()) << failures;
        failed = outcome.failed;
    }
    EXPECT_GT(failures, 10);
}

}  // namespace
