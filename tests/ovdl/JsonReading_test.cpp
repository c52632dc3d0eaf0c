// What people may write as JSON, and how they learn what is wrong.
#include "reader/formats/ovdl/JsonText.h"

#include <gmock/gmock.h>

#include <ovdl_schema/document_generated.h>
#include <bit>
#include <vector>

#include "reader/formats/ovdl/Refusal.h"
#include "tests/ovdl/JsonTools.h"

namespace {

namespace fb = ovdl::fb;

std::unique_ptr<ovdl::DocumentStreams> read(const std::string& text)
{
    return ovdl::readJsonStreams(text);
}

const fb::Document& documentOf(ovdl::DocumentStreams& streams)
{
    return *flatbuffers::GetRoot<fb::Document>(streams.document().data());
}

std::string with(const std::string& document)
{
    return "{\"ovdl\": 1, \"document\": " + document + "}";
}

// A document with one light that has one field.
std::string light(const std::string& field)
{
    return with("{\"lights\": [{" + field + "}]}");
}

std::string reasonFor(const std::string& text)
{
    try {
        read(text);
    } catch (const ovdl::Refusal& refusal) {
        return refusal.what();
    }
    return "it was read";
}

TEST(JsonReading, VersionsHaveDefaults)
{
    const auto streams = read(with("{}"));
    EXPECT_EQ(streams->header().formatVersion, 1u);
    EXPECT_EQ(streams->header().documentVersion, 12000u);
    EXPECT_EQ(streams->header().displayListVersion, 0u);
    const auto told =
        read("{\"ovdl\":1,\"displayListVersion\":4294967295,\"document\":{},\"documentVersion\":3}");
    EXPECT_EQ(told->header().documentVersion, 3u);
    EXPECT_EQ(told->header().displayListVersion, 0xFFFFFFFFu);
}

TEST(JsonReading, BuffersPassTheVerifierAndBeginOnEightBytes)
{
    const std::string text =
        "{\"ovdl\":1,\"document\":{\"lights\":[{},{\"sourceHaze\":1,\"lightType\":2}],\"part\":{}},"
        "\"tessellations\":[{\"bodyRecords\":[{}]}]}";
    const auto streams = read(text);
    const auto checks = [](ovdl::Bytes bytes, bool isDocument) {
        flatbuffers::Verifier::Options options;
        options.max_tables = static_cast<flatbuffers::uoffset_t>(bytes.size() / 8);
        flatbuffers::Verifier verifier(bytes.data(), bytes.size(), options);
        return reinterpret_cast<std::uintptr_t>(bytes.data()) % 8 == 0 &&
               (isDocument ? verifier.VerifyBuffer<fb::Document>(ovdl::kDocumentIdentifier)
                           : verifier.VerifyBuffer<fb::Tessellation>(ovdl::kTessellationIdentifier));
    };
    EXPECT_TRUE(checks(streams->document(), true));
    EXPECT_TRUE(checks(streams->tessellation(0, 0, 1), false));
    EXPECT_EQ(streams->size(), text.size());
}

TEST(JsonReading, NumbersGoStraightToTheirOwnType)
{
    // Halfway between two floats but for its last digit: by way of a double it would be rounded twice.
    const auto streams = read(with("{\"decals\":[{\"mappingScalar\":1.00000017881393432617187500001}]}"));
    EXPECT_EQ(std::bit_cast<std::uint32_t>(documentOf(*streams).decals()->Get(0)->mappingScalar()),
              0x3F800002u);
}

TEST(JsonReading, WhatIsTooSmallForAFloatIsZero)
{
    const auto streams =
        read(with("{\"decals\":[{\"mappingScalar\":-1e-46}, {\"mappingScalar\":1.4e-45}]}"));
    const auto& decals = *documentOf(*streams).decals();
    EXPECT_EQ(std::bit_cast<std::uint32_t>(decals.Get(0)->mappingScalar()), 0x80000000u);
    EXPECT_EQ(std::bit_cast<std::uint32_t>(decals.Get(1)->mappingScalar()), 1u);
}

// However they are written: digits and exponent together say how large a number is.
TEST(JsonReading, SmallAndLargeNumbersAreToldApart)
{
    const std::string zeros(400, '0');
    const std::vector<std::string> small = {"0." + zeros + "1", "0." + zeros + zeros + "1e+400", "1e-400",
                                            "1" + zeros + "e-800", "5.0E-324000"};
    for (const std::string& number : small) {
        const auto streams = read(light("\"sourceHaze\": " + number));
        EXPECT_EQ(documentOf(*streams).lights()->Get(0)->sourceHaze(), 0.0) << number;
    }
    const std::vector<std::string> large = {"1" + zeros,          "-1" + zeros,
                                            "1" + zeros + "e-50", "0." + zeros + "1e800",
                                            "0.1e+400",           "1e99999999999999999999"};
    for (const std::string& number : large)
        EXPECT_THAT(reasonFor(light("\"sourceHaze\": " + number)),
                    testing::HasSubstr("is beyond what \"sourceHaze\" can hold"))
            << number;
}

struct RealCase {
    const char* name;
    const char* json;
    std::uint64_t bits;
};
const RealCase kReals[] = {
    {"a_whole_number", "2", 0x4000000000000000},
    {"an_exponent", "5E-1", 0x3FE0000000000000},
    {"minus_zero", "-0", 0x8000000000000000},
    {"minus_zero_with_a_point", "-0.0e+7", 0x8000000000000000},
    {"less_than_the_smallest_is_zero", "1e-400", 0},
    {"less_than_the_smallest_keeps_its_sign", "-12.5E-400", 0x8000000000000000},
    {"less_than_half_of_the_smallest_is_zero", "2.4703282292062327e-324", 0},
    {"more_than_half_of_the_smallest_is_the_smallest", "2.4703282292062329e-324", 1},
    {"an_exponent_that_no_number_holds", "0.1e-99999999999999999999", 0},
    {"zero_times_anything", "0e99999999999999999999", 0},
    {"many_digits_and_an_exponent_that_takes_them_back", "1000000000000e-12", 0x3FF0000000000000},
    {"the_smallest", "4.9406564584124654e-324", 1},
    {"bits_of_a_nan", "\"0x7FF4000000000001\"", 0x7FF4000000000001},
    {"bits_of_any_number", "\"0x3fe0000000000000\"", 0x3FE0000000000000},
};
class JsonReals : public testing::TestWithParam<RealCase> {};
TEST_P(JsonReals, AreReadExactly)
{
    const auto streams = read(light("\"sourceHaze\": " + std::string(GetParam().json)));
    EXPECT_EQ(std::bit_cast<std::uint64_t>(documentOf(*streams).lights()->Get(0)->sourceHaze()),
              GetParam().bits);
}
INSTANTIATE_TEST_SUITE_P(Rows, JsonReals, testing::ValuesIn(kReals),
                         [](const auto& row) { return row.param.name; });

struct TextCase {
    const char* name;
    const char* json;
    const char* bytes;
};
const TextCase kTexts[] = {
    {"every_short_escape", R"("\"\\\/\b\f\n\r\t")", "\"\\/\b\f\n\r\t"},
    {"an_escaped_character", R"("\u00E9\u65e5")", "\xC3\xA9\xE6\x97\xA5"},
    {"an_escaped_pair_is_one_character", R"("\uD83D\uDE00")", "\xF0\x9F\x98\x80"},
    {"a_high_surrogate_before_another_escape", R"("\uD83D\u0041")",
     "\xED\xA0\xBD"
     "A"},
    {"a_high_surrogate_before_a_pair", R"("\uD83D\uD83D\uDE00")", "\xED\xA0\xBD\xF0\x9F\x98\x80"},
    {"a_low_surrogate", R"("\uDE00")", "\xED\xB8\x80"},
    {"the_last_character", "\"\xF4\x8F\xBF\xBF\"", "\xF4\x8F\xBF\xBF"},
    {"values_one_by_one", "[55357, 56832 , 65]",
     "\xED\xA0\xBD\xED\xB8\x80"
     "A"},
};
class JsonTexts : public testing::TestWithParam<TextCase> {};
TEST_P(JsonTexts, AreReadExactly)
{
    const auto streams = read(with("{\"reason\": " + std::string(GetParam().json) + "}"));
    const fb::Document& document = documentOf(*streams);
    ASSERT_EQ(document.reason(), 1u);
    EXPECT_EQ(document.texts()->Get(0)->str(), GetParam().bytes);
}
INSTANTIATE_TEST_SUITE_P(Rows, JsonTexts, testing::ValuesIn(kTexts),
                         [](const auto& row) { return row.param.name; });

TEST(JsonReading, ATextIsKeptOnce)
{
    const auto streams = read(with(R"({"reason": "b", "materials": [{"idName": "a"}, {"idName": "b"},
                                       {"idName": "", "userName": []}]})"));
    const fb::Document& document = documentOf(*streams);
    ASSERT_EQ(document.texts()->size(), 2u);
    EXPECT_EQ(document.reason(), 1u);
    EXPECT_EQ(document.materials()->Get(0)->idName(), 2u);
    EXPECT_EQ(document.materials()->Get(1)->idName(), 1u);
    EXPECT_EQ(document.materials()->Get(2)->idName(), 0u);
    EXPECT_EQ(document.materials()->Get(2)->userName(), 0u);
}

TEST(JsonReading, RunsAreJoined)
{
    const auto streams = read(R"({"ovdl": 1, "document": {}, "tessellations": [[
        {"faces": [{"points": [1, 2], "stripLengths": [3]}, {}, {"points": [4], "stripLengths": []}]},
        {"faces": [{"points": [5]}]}], [], {}]})");
    const fb::Document& document = documentOf(*streams);
    ASSERT_EQ(document.tessellations()->size(), 3u);
    EXPECT_EQ(document.tessellations()->Get(0)->pieces(), 2u);
    EXPECT_EQ(document.tessellations()->Get(1)->pieces(), 0u);
    EXPECT_EQ(document.tessellations()->Get(2)->pieces(), 1u);
    const auto* first = flatbuffers::GetRoot<fb::Tessellation>(streams->tessellation(0, 0, 2).data());
    ASSERT_EQ(first->points()->size(), 3u);
    EXPECT_EQ(first->points()->Get(2), 4.0f);
    EXPECT_EQ(first->faces()->Get(0)->points().count(), 2u);
    EXPECT_EQ(first->faces()->Get(1)->points().count(), 0u);
    EXPECT_EQ(first->faces()->Get(2)->points().first(), 2u);
    EXPECT_EQ(first->faces()->Get(2)->points().count(), 1u);
    EXPECT_EQ(first->faces()->Get(2)->stripLengths().count(), 0u);
    EXPECT_EQ(first->normals(), nullptr);
    const auto* second = flatbuffers::GetRoot<fb::Tessellation>(streams->tessellation(0, 1, 2).data());
    EXPECT_EQ(second->points()->Get(0), 5.0f);
    EXPECT_THROW(streams->tessellation(0, 2, 2), ovdl::Refusal);
    EXPECT_THROW(streams->tessellation(0, 0, 1), ovdl::Refusal);
    EXPECT_THROW(streams->tessellation(1, 0, 0), ovdl::Refusal);
    EXPECT_THROW(streams->tessellation(3, 0, 1), ovdl::Refusal);
}

TEST(JsonReading, NoneDiffersFromAnEmptyVector)
{
    const auto streams = read(with(R"({"part": {"lightData": []}, "assembly": {}})"));
    ASSERT_NE(documentOf(*streams).part()->lightData(), nullptr);
    EXPECT_EQ(documentOf(*streams).part()->lightData()->size(), 0u);
    EXPECT_EQ(documentOf(*streams).assembly()->lightData(), nullptr);
}

struct StartCase {
    const char* name;
    const char* start;
    bool isOurs;
};
const StartCase kStarts[] = {
    {"the_key_at_once", "{\"ovdl\":1}", true},
    {"nothing_but_the_key", "{\"ovdl\"", true},
    {"blanks_before_and_behind_the_brace", " \t\r\n{ \t\r\n\"ovdl\" : 1", true},
    {"a_byte_order_mark", "\xEF\xBB\xBF{\"ovdl\": 1}", true},
    {"another_key", "{\"asset\":{},\"ovdl\":1}", false},
    {"a_longer_key", "{\"ovdl2\":1}", false},
    {"a_shorter_key", "{\"ovd\":1}", false},
    {"an_array", "[\"ovdl\"]", false},
    {"a_text", "\"ovdl\"", false},
    {"an_end_in_the_key", "{\"ovd", false},
    {"nothing", "", false},
    {"blanks", "   ", false},
    {"half_a_mark", "\xEF\xBB{\"ovdl\"", false},
    {"other_blanks", "\f{\"ovdl\"", false},
};
class JsonStarts : public testing::TestWithParam<StartCase> {};
TEST_P(JsonStarts, AreTold)
{
    EXPECT_EQ(ovdl::startsLikeOurJson(GetParam().start), GetParam().isOurs);
}
INSTANTIATE_TEST_SUITE_P(Rows, JsonStarts, testing::ValuesIn(kStarts),
                         [](const auto& row) { return row.param.name; });

TEST(JsonReading, AByteOrderMarkIsSkipped)
{
    EXPECT_EQ(reasonFor("\xEF\xBB\xBF" + with("{}")), "it was read");
}

struct RefusedCase {
    const char* name;
    std::string json;
    const char* reason;
};
const RefusedCase kRefused[] = {
    {"an_unknown_key", "{\"ovdl\": 1,\n \"document\": {\n  \"lights\": [{},\n   {\"sorceHaze\": 1}]}}",
     "line 4, column 5: there is no key \"sorceHaze\" in Light"},
    {"an_unknown_key_in_front", "{\"ovdl\":1,\"documents\":{}}",
     "line 1, column 11: there is no key \"documents\" here"},
    {"a_key_that_is_not_shown", with("{\"texts\":[]}"),
     "line 1, column 26: there is no key \"texts\" in Document"},
    {"tessellations_within_the_document", with("{\"tessellations\":[]}"),
     "line 1, column 26: there is no key \"tessellations\" in Document"},
    {"a_vector_of_runs", "{\"ovdl\":1,\"document\":{},\"tessellations\":[{\"points\":[]}]}",
     "line 1, column 43: there is no key \"points\" in Tessellation"},
    {"a_long_key", with("{\"" + std::string(100, 'k') + "\":1}"),
     "line 1, column 26: there is no key \"kkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkk...\" in Document"},
    {"a_key_twice", light("\"sourceHaze\":1,\"sourceHaze\":1"),
     "line 1, column 53: the key \"sourceHaze\" stands twice in the same Light"},
    {"a_document_twice", "{\"ovdl\":1,\"document\":{},\"document\":{}}",
     "line 1, column 25: the key \"document\" stands here twice"},
    {"a_version_twice", "{\"ovdl\":1,\"documentVersion\":1,\"documentVersion\":1}",
     "line 1, column 31: the key \"documentVersion\" stands here twice"},
    {"tessellations_twice", "{\"ovdl\":1,\"tessellations\":[],\"tessellations\":[]}",
     "line 1, column 30: the key \"tessellations\" stands here twice"},
    {"the_format_twice", "{\"ovdl\":1,\"ovdl\":1}", "line 1, column 11: there is no key \"ovdl\" here"},
    {"no_document", "{\"ovdl\": 1}", "line 1, column 12: the key \"document\" is missing"},
    {"another_first_key", "{\"document\":{},\"ovdl\":1}",
     "line 1, column 2: the first key must be \"ovdl\""},
    {"a_later_format", "{\"ovdl\":2,\"document\":{}}",
     "line 1, column 9: version 2 of the format is unknown here"},
    {"format_zero", "{\"ovdl\":0,\"document\":{}}",
     "line 1, column 9: version 0 of the format is unknown here"},
    {"a_point_in_a_whole_number", light("\"lightIndex\": 1.0"),
     "line 1, column 52: \"lightIndex\" takes a whole number"},
    {"an_exponent_in_a_whole_number", light("\"lightIndex\": 1e1"),
     "line 1, column 52: \"lightIndex\" takes a whole number"},
    {"a_whole_number_too_large", light("\"lightIndex\": 2147483648"),
     "line 1, column 52: \"2147483648\" is beyond what \"lightIndex\" can hold"},
    {"a_byte_too_large", with("{\"decals\":[{\"mappingKind\":256}]}"),
     "line 1, column 51: \"256\" is beyond what \"mappingKind\" can hold"},
    {"a_negative_byte", with("{\"decals\":[{\"mappingKind\":-1}]}"),
     "line 1, column 51: \"mappingKind\" takes a whole number"},
    {"a_text_for_a_whole_number", light("\"lightIndex\": \"1\""),
     "line 1, column 52: \"lightIndex\" takes a whole number"},
    {"a_word_for_a_number", light("\"sourceHaze\": null"),
     "line 1, column 52: \"sourceHaze\" takes a number, or its bits as a text"},
    {"a_double_too_large", light("\"sourceHaze\": 1e309"),
     "line 1, column 52: \"1e309\" is beyond what \"sourceHaze\" can hold"},
    {"a_float_too_large", with("{\"decals\":[{\"mappingScalar\":1e39}]}"),
     "line 1, column 53: \"1e39\" is beyond what \"mappingScalar\" can hold"},
    {"bits_of_another_width", with("{\"decals\":[{\"mappingScalar\":\"0x7fc000000\"}]}"),
     "line 1, column 53: \"0x\" with 8 hexadecimal digits is missing"},
    {"too_few_bits", light("\"sourceStamp\": \"0x1234\""),
     "line 1, column 60: a hexadecimal digit is missing"},
    {"a_number_for_bits", light("\"sourceStamp\": 1"),
     "line 1, column 53: \"0x\" with 16 hexadecimal digits is missing"},
    {"a_number_for_a_word", with("{\"part\":{\"rejected\":1}}"),
     "line 1, column 45: true or false is missing"},
    {"a_number_for_a_text", with("{\"reason\":1}"), "line 1, column 35: \"reason\" takes a text"},
    {"a_value_beyond_all_texts", with("{\"reason\":[4294967296]}"),
     "line 1, column 36: \"4294967296\" is beyond what \"reason\" can hold"},
    {"a_negative_value_of_a_text", with("{\"reason\":[-1]}"),
     "line 1, column 36: \"reason\" takes a whole number"},
    {"a_number_for_a_vector", with("{\"lights\":1}"), "line 1, column 35: '[' is missing"},
    {"an_array_for_a_record", with("[]"), "line 1, column 25: '{' is missing"},
    {"too_many_elements", light("\"sourceVectorA\":[1,2,3,4]"),
     "line 1, column 60: there must be 3 numbers here"},
    {"too_few_elements", light("\"sourceVectorA\":[1,2]"),
     "line 1, column 58: there must be 3 numbers here"},
    {"half_a_transform", with("{\"part\":{\"viewXform\":{\"translation\":[1,2,3],\"scale\":1}}}"),
     "line 1, column 78: a whole Xform is needed: \"matrix\" is missing"},
    {"a_leading_zero", light("\"sourceHaze\": 01"),
     "line 1, column 52: a number begins with a zero too many"},
    {"a_plus", light("\"sourceHaze\": +1"),
     "line 1, column 52: \"sourceHaze\" takes a number, or its bits as a text"},
    {"a_point_without_digits", light("\"sourceHaze\": 1."), "line 1, column 54: a digit is missing"},
    {"a_lone_minus", light("\"sourceHaze\": -"), "line 1, column 53: a digit is missing"},
    {"an_exponent_without_digits", light("\"sourceHaze\": 1e+"), "line 1, column 55: a digit is missing"},
    {"a_comma_too_many", light("\"sourceHaze\": 1,"), "line 1, column 54: a key is missing"},
    {"a_comma_too_many_in_a_list", with("{\"lights\":[{},]}"), "line 1, column 39: '{' is missing"},
    {"no_colon", light("\"sourceHaze\" 1"), "line 1, column 51: ':' is missing"},
    {"an_unknown_escape", with("{\"reason\":\"\\x41\"}"), "line 1, column 36: there is no such escape"},
    {"a_broken_escape", with("{\"reason\":\"\\u00g0\"}"),
     "line 1, column 40: a hexadecimal digit is missing"},
    {"a_control_character", with("{\"reason\":\"a\nb\"}"),
     "line 1, column 37: a control character in a text has to be escaped"},
    {"a_byte_that_begins_nothing", with("{\"reason\":\"\x80\"}"),
     "line 1, column 36: the text is not UTF-8"},
    {"a_surrogate_as_bytes", with("{\"reason\":\"\xED\xA0\x80\"}"),
     "line 1, column 36: the text is not UTF-8"},
    {"a_character_that_is_too_long", with("{\"reason\":\"\xC0\x80\"}"),
     "line 1, column 36: the text is not UTF-8"},
    {"a_character_beyond_the_last", with("{\"reason\":\"\xF4\x90\x80\x80\"}"),
     "line 1, column 36: the text is not UTF-8"},
    {"something_behind_the_end", with("{}") + "\n{", "line 2, column 1: there is something behind the end"},
    {"a_zero_byte_behind_the_end", with("{}") + std::string(1, '\0'),
     "line 1, column 28: there is something behind the end"},
    {"a_comment", "{\"ovdl\":1, // one\n\"document\":{}}", "line 1, column 12: a key is missing"},
    {"an_end_in_a_text", "{\"ovdl\":1,\"docu", "line 1, column 16: the text ends too early"},
    {"an_end_in_an_escape", "{\"ovdl\":1,\"docu\\u00", "line 1, column 20: the text ends too early"},
    {"nothing_at_all", "", "line 1, column 1: the text ends too early"},
};
class JsonRefusals : public testing::TestWithParam<RefusedCase> {};
TEST_P(JsonRefusals, TellThePlace)
{
    EXPECT_EQ(reasonFor(GetParam().json), GetParam().reason);
}
INSTANTIATE_TEST_SUITE_P(Rows, JsonRefusals, testing::ValuesIn(kRefused),
                         [](const auto& row) { return row.param.name; });

}  // namespace
