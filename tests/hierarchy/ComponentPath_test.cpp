#include "raylume/hierarchy/ComponentPath.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vector>

namespace {

struct PathCase {
    const char* name;
    std::string path;
    std::vector<std::string> tokens;
    std::string parent, last;
};

const PathCase kPaths[] = {
    {"empty", "", {}, "", ""},
    {"one_token", "a", {"a"}, "", "a"},
    {"two_tokens", "a/b", {"a", "b"}, "a/", "b"},
    {"three_tokens", "a/b/c", {"a", "b", "c"}, "a/b/", "c"},
    {"leading_separator", "/a", {"a"}, "/", "a"},
    {"trailing_separator", "a/", {"a"}, "", "a"},
    {"runs_of_separators", "//a///b//", {"a", "b"}, "//a///", "b"},
    {"only_separators", "///", {}, "", ""},
    {"backslash_is_no_separator", "a\\b/c", {"a\\b", "c"}, "a\\b/", "c"},
};

class ComponentPath : public testing::TestWithParam<PathCase> {};

TEST_P(ComponentPath, IsCutIntoTokens)
{
    hierarchy::PathTokens tokens(GetParam().path);
    std::vector<std::string> found;
    for (std::string_view token; tokens.next(token);) {
        found.emplace_back(token);
    }
    EXPECT_EQ(found, GetParam().tokens);
}

TEST_P(ComponentPath, IsCutBeforeItsLastToken)
{
    EXPECT_EQ(hierarchy::parentPath(GetParam().path), GetParam().parent);
    EXPECT_EQ(hierarchy::lastToken(GetParam().path), GetParam().last);
}

INSTANTIATE_TEST_SUITE_P(Rows, ComponentPath, testing::ValuesIn(kPaths),
                         [](const auto& row) { return row.param.name; });

TEST(ComponentPathText, EndsAtAZeroCharacter)
{
    EXPECT_EQ(hierarchy::textOf(std::string("a/b\0c", 5)), "a/b");
}

struct TokenCase {
    const char* name;
    const char* token;
    const char* shortName;
    const char* owner;
};

const TokenCase kTokens[] = {
    {"usual_form", "bracket-3@top", "bracket", "top"},
    {"minus_in_the_name_stays", "left-hand-bracket-3@top", "left-hand-bracket", "top"},
    {"no_owner", "bracket-3", "", ""},
    {"no_occurrence", "bracket@top", "", "top"},
    {"minus_behind_the_owner_mark_does_not_count", "bracket@top-3", "", "top-3"},
    {"first_owner_mark_counts", "a-1@b@c", "a", "b@c"},
    {"second_minus_in_the_owner", "a-1@b-2@c", "a", "b-2@c"},
    {"nothing_before_the_minus", "-1@top", "", "top"},
    {"empty_owner", "a-1@", "a", ""},
    {"only_the_mark", "@", "", ""},
    {"empty", "", "", ""},
    {"plain_word", "root", "", ""},
};

class ComponentToken : public testing::TestWithParam<TokenCase> {};

TEST_P(ComponentToken, HasAShortNameAndAnOwner)
{
    EXPECT_EQ(hierarchy::shortName(GetParam().token), GetParam().shortName);
    EXPECT_EQ(hierarchy::owner(GetParam().token), GetParam().owner);
}

INSTANTIATE_TEST_SUITE_P(Rows, ComponentToken, testing::ValuesIn(kTokens),
                         [](const auto& row) { return row.param.name; });

}  // namespace
