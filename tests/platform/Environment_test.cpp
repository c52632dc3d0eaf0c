#include "raylume/platform/Environment.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <optional>
#include <string>

#include "tests/platform/ScopedEnvironment.h"

namespace {

using Value = std::optional<std::string>;

struct VariableCase {
    const char* name;
    Value exact;
    Value capitals;
    std::optional<std::wstring> result;
};

const VariableCase kVariableCases[] = {
    {"exact_name_first", "a", "b", L"a"},
    {"capitals_next", std::nullopt, "b", L"b"},
    {"empty_counts_as_unset", "", "b", L"b"},
    {"both_empty", "", "", std::nullopt},
    {"both_unset", std::nullopt, std::nullopt, std::nullopt},
    {"utf_8", "\xC3\xB6", std::nullopt, L"\u00F6"},
    {"bad_bytes", "a\xFF", std::nullopt, L"a\uFFFD"},
};

class Variable : public testing::TestWithParam<VariableCase> {};

TEST_P(Variable, IsLookedUpWithoutCase)
{
    const ScopedVariable exact("raylume_Test_1", GetParam().exact);
    const ScopedVariable capitals("RAYLUME_TEST_1", GetParam().capitals);
    EXPECT_EQ(platform::environmentVariable("raylume_Test_1"), GetParam().result);
}

INSTANTIATE_TEST_SUITE_P(Rows, Variable, testing::ValuesIn(kVariableCases),
                         [](const auto& row) { return row.param.name; });

struct TemporaryCase {
    const char* name;
    Value values[4];  // temp, TEMP, tmp, TMP
    std::optional<std::wstring> result;
};

const TemporaryCase kTemporaryCases[] = {
    {"temp_before_all", {"a", "b", "c", "d"}, L"a"},
    {"temp_in_capitals_before_tmp", {{}, "b", "c", "d"}, L"b"},
    {"empty_temp_gives_way_to_its_capitals", {"", "b", "c", "d"}, L"b"},
    {"tmp_when_both_are_unset", {{}, {}, "c", "d"}, L"c"},
    {"tmp_when_both_are_empty", {"", "", "c", "d"}, L"c"},
    {"tmp_in_capitals_last", {{}, {}, {}, "d"}, L"d"},
    {"nothing_without_any", {{}, {}, {}, {}}, std::nullopt},
    {"nothing_when_all_are_empty", {"", "", "", ""}, std::nullopt},
    {"the_value_as_it_is", {"/t/", {}, {}, {}}, L"/t/"},
};

class TemporaryVariable : public testing::TestWithParam<TemporaryCase> {};

TEST_P(TemporaryVariable, TakesTheFirstOfFour)
{
    const ScopedVariable temp("temp", GetParam().values[0]);
    const ScopedVariable capitalTemp("TEMP", GetParam().values[1]);
    const ScopedVariable tmp("tmp", GetParam().values[2]);
    const ScopedVariable capitalTmp("TMP", GetParam().values[3]);
    EXPECT_EQ(platform::temporaryFolderVariable(), GetParam().result);
}

INSTANTIATE_TEST_SUITE_P(Rows, TemporaryVariable, testing::ValuesIn(kTemporaryCases),
                         [](const auto& row) { return row.param.name; });

TEST(Process, HasTheNumberOfThisOne)
{
    EXPECT_EQ(platform::processId(), static_cast<int>(getpid()));
}

}  // namespace
