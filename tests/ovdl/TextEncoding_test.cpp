#include "reader/formats/ovdl/TextEncoding.h"

#include <gtest/gtest.h>

#include <string>

#include "reader/formats/ovdl/Refusal.h"

namespace {

using ovdl::decodeText;
using ovdl::encodeText;

struct ValueCase {
    const char* name;
    std::uint32_t value;
    std::string bytes;
};

const ValueCase kValues[] = {
    {"zero_is_a_byte", 0, std::string(1, '\0')},
    {"last_of_one_byte", 0x7F, "\x7F"},
    {"first_of_two_bytes", 0x80, "\xC2\x80"},
    {"last_of_two_bytes", 0x7FF, "\xDF\xBF"},
    {"first_of_three_bytes", 0x800, "\xE0\xA0\x80"},
    {"kana", 0x30A2, "\xE3\x82\xA2"},
    {"first_half_of_a_pair", 0xD800, "\xED\xA0\x80"},
    {"last_half_of_a_pair", 0xDFFF, "\xED\xBF\xBF"},
    {"last_of_three_bytes", 0xFFFF, "\xEF\xBF\xBF"},
    {"first_of_four_bytes", 0x10000, "\xF0\x90\x80\x80"},
    {"last_of_unicode", 0x10FFFF, "\xF4\x8F\xBF\xBF"},
    {"first_past_unicode", 0x110000, "\xF4\x90\x80\x80"},
    {"last_of_four_bytes", 0x1FFFFF, "\xF7\xBF\xBF\xBF"},
    {"first_of_five_bytes", 0x200000, "\xF8\x88\x80\x80\x80"},
    {"last_of_five_bytes", 0x3FFFFFF, "\xFB\xBF\xBF\xBF\xBF"},
    {"first_of_six_bytes", 0x4000000, "\xFC\x84\x80\x80\x80\x80"},
    {"last_of_six_bytes", 0x7FFFFFFF, "\xFD\xBF\xBF\xBF\xBF\xBF"},
    {"first_of_seven_bytes", 0x80000000, "\xFE\x82\x80\x80\x80\x80\x80"},
    {"last_of_seven_bytes", 0xFFFFFFFF, "\xFE\x83\xBF\xBF\xBF\xBF\xBF"},
};

class TextValue : public testing::TestWithParam<ValueCase> {};

TEST_P(TextValue, HasTheseBytesAndComesBack)
{
    const std::wstring text(1, static_cast<wchar_t>(GetParam().value));
    EXPECT_EQ(encodeText(text), GetParam().bytes);
    EXPECT_EQ(decodeText(GetParam().bytes), text);
}

TEST_P(TextValue, ComesBackAmongPlainCharacters)
{
    for (std::size_t before = 0; before < 18; ++before) {
        std::wstring text(before, L'a');
        text += static_cast<wchar_t>(GetParam().value);
        text += L"bcdefghijk";
        EXPECT_EQ(decodeText(encodeText(text)), text);
    }
}

TEST_P(TextValue, IsRefusedWithoutItsLastByte)
{
    const std::string& bytes = GetParam().bytes;
    const std::string rest = bytes.substr(0, bytes.size() - 1);
    if (rest.empty()) {
        EXPECT_EQ(decodeText(rest), L"");
        return;
    }
    EXPECT_THROW(decodeText(rest), ovdl::Refusal);
    EXPECT_THROW(decodeText(rest + "a"), ovdl::Refusal);
}

INSTANTIATE_TEST_SUITE_P(Rows, TextValue, testing::ValuesIn(kValues),
                         [](const auto& row) { return row.param.name; });

struct BrokenCase {
    const char* name;
    std::string bytes;
};

const BrokenCase kBroken[] = {
    {"a_byte_of_the_middle_first", "\x80"},
    {"the_byte_that_begins_nothing", "\xFF"},
    {"zero_in_two_bytes", std::string("\xC0\x80", 2)},
    {"two_bytes_too_long", "\xC1\xBF"},
    {"three_bytes_too_long", "\xE0\x9F\xBF"},
    {"four_bytes_too_long", "\xF0\x8F\xBF\xBF"},
    {"five_bytes_too_long", "\xF8\x87\xBF\xBF\xBF"},
    {"six_bytes_too_long", "\xFC\x83\xBF\xBF\xBF\xBF"},
    {"seven_bytes_too_long", "\xFE\x81\xBF\xBF\xBF\xBF\xBF"},
    {"seven_bytes_past_32_bits", "\xFE\x84\x80\x80\x80\x80\x80"},
    {"behind_plain_text", "abcdefgh\xFF"},
    {"inside_eight_plain_bytes", "abc\xFFgh  ab"},
};

class BrokenText : public testing::TestWithParam<BrokenCase> {};

TEST_P(BrokenText, IsRefused)
{
    EXPECT_THROW(decodeText(GetParam().bytes), ovdl::Refusal);
}

INSTANTIATE_TEST_SUITE_P(Rows, BrokenText, testing::ValuesIn(kBroken),
                         [](const auto& row) { return row.param.name; });

TEST(TextPair, OfTwoHalvesIsNotJoined)
{
    const std::wstring text = {static_cast<wchar_t>(0xD83D), static_cast<wchar_t>(0xDE00)};
    EXPECT_EQ(encodeText(text), "\xED\xA0\xBD\xED\xB8\x80");
    EXPECT_EQ(decodeText(encodeText(text)), text);
}

TEST(EveryByte, AloneIsACharacterOrRefused)
{
    for (int byte = 0; byte < 256; ++byte) {
        const std::string bytes(1, static_cast<char>(byte));
        if (byte < 0x80)
            EXPECT_EQ(decodeText(bytes), std::wstring(1, static_cast<wchar_t>(byte)));
        else
            EXPECT_THROW(decodeText(bytes), ovdl::Refusal);
    }
}

}  // namespace
