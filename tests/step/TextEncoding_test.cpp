#include "reader/formats/step/import/TextEncoding.h"

#include <gmock/gmock.h>

#include "tests/platform/TemporaryFolder.h"

namespace step_tests {
namespace {

struct TextCase {
    const char* name;
    std::string text;
    bool isUtf8;
};

const TextCase kTexts[] = {
    {"nothing", "", true},
    {"ascii", "ISO-10303-21;\n", true},
    {"two_three_and_four_bytes", "\xC3\xBC \xE9\x83\xA8 \xF0\x9F\x94\xA9", true},
    {"one_across_two_blocks", std::string(65535, ' ') + "\xC3\xBC", true},
    {"a_western_letter", "Schl\xFCssel", false},
    {"a_western_letter_before_another_sequence", "\xE4\xC3\xBC", false},
    {"a_western_letter_in_the_second_block", std::string(70000, ' ') + "\xFC", false},
    {"half_a_character_at_the_end", "x\xC3", false},
    {"a_longer_way_than_needed", "\xC0\xAF", false},
    {"a_longer_way_of_three_bytes", "\xE0\x80\xAF", false},
    {"half_a_pair", "\xED\xA0\x80", false},
    {"beyond_the_last_character", "\xF4\x90\x80\x80", false},
    {"a_byte_that_begins_nothing", "\x80", false},
};

class TextEncoding : public testing::TestWithParam<TextCase> {};
TEST_P(TextEncoding, IsToldByAllOfTheFile)
{
    const TemporaryFolder folder;
    EXPECT_EQ(ovdl::step::isUtf8File(folder.write("text", GetParam().text)), GetParam().isUtf8);
}
INSTANTIATE_TEST_SUITE_P(Rows, TextEncoding, testing::ValuesIn(kTexts),
                         [](const auto& row) { return row.param.name; });

TEST(TextEncodingOfNoFile, IsNoneForAFileThatIsGone)
{
    const TemporaryFolder folder;
    EXPECT_FALSE(ovdl::step::isUtf8File(folder / "missing"));
}

}  // namespace
}  // namespace step_tests
