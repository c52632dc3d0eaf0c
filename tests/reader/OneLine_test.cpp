#include <gtest/gtest.h>

#include <string>

#include "reader/HostHandlers.h"
#include "reader/HostState.h"

namespace {

struct LineCase {
    const char* name;
    std::string text;
    std::string line;
};

const LineCase kLines[] = {
    {"plain_text_stays", "unknown extension", "unknown extension"},
    {"an_empty_text_stays_empty", "", ""},
    {"line_feeds_become_spaces", "a\nb", "a b"},
    {"carriage_returns_and_tabs_become_spaces", "a\r\tb", "a  b"},
    {"zeros_become_spaces", std::string("a\0b", 3), "a b"},
    {"escapes_and_deletes_become_spaces", "a\x1B[31m\x7F!", "a [31m !"},
    {"upper_control_characters_become_spaces",
     "a\xC2\x85"
     "b\xC2\x9F"
     "c",
     "a b c"},
    {"line_and_paragraph_separators_become_spaces",
     "a\xE2\x80\xA8"
     "b\xE2\x80\xA9"
     "c",
     "a b c"},
    {"the_no_break_space_stays",
     "a\xC2\xA0"
     "b",
     "a\xC2\xA0"
     "b"},
    {"other_letters_stay", "Geh\xC3\xA4use \xE6\xA9\x9F \xF0\x9F\x94\xA9",
     "Geh\xC3\xA4use \xE6\xA9\x9F \xF0\x9F\x94\xA9"},
    {"invalid_bytes_become_replacement_characters",
     "a\xFF"
     "b",
     "a\xEF\xBF\xBD"
     "b"},
    {"blanks_at_the_ends_go", "\n  a b \n", "a b"},
    {"a_text_of_blanks_is_empty", " \n\t ", ""},
    {"500_characters_stay", std::string(500, 'x'), std::string(500, 'x')},
    {"longer_texts_are_cut", std::string(501, 'x'), std::string(497, 'x') + "..."},
    {"huge_texts_are_cut", std::string(1000000, 'x'), std::string(497, 'x') + "..."},
};

class OneLine : public testing::TestWithParam<LineCase> {};

TEST_P(OneLine, MakesOneLineOfUtf8)
{
    EXPECT_EQ(ovdl::oneLine(GetParam().text), GetParam().line);
}

TEST_P(OneLine, IsWhatTheHostGetsAsTheReason)
{
    ovdl::setLastReason(GetParam().text);
    EXPECT_EQ(ovdl::lastReason(), GetParam().line);
}

INSTANTIATE_TEST_SUITE_P(Rows, OneLine, testing::ValuesIn(kLines),
                         [](const auto& row) { return row.param.name; });

TEST(OneLineLength, CountsCharactersNotBytes)
{
    std::string text;
    for (int i = 0; i < 500; ++i)
        text += "\xF0\x9F\x94\xA9";
    EXPECT_EQ(ovdl::oneLine(text), text);
}

}  // namespace
