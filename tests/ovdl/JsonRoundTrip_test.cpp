// Whatever a document holds comes back from JSON bit by bit, and whatever JSON says is survived.
#include <gtest/gtest.h>

#include <ovdl_schema/document_generated.h>
#include <chrono>

#include "reader/formats/ovdl/Refusal.h"
#include "tests/ovdl/JsonTools.h"

namespace {

using json_tests::MemoryStreams;

TEST(JsonRoundTrip, RandomDocumentsComeBackBitByBit)
{
    std::set<std::string> changed;
    for (unsigned seed = 0; seed < 200; ++seed) {
        std::mt19937 random(seed);
        MemoryStreams streams;
        json_tests::makeRandom(random, streams, changed);
        const std::string text = json_tests::toJson(streams);
        const auto again = ovdl::readJsonStreams(text);
        ASSERT_EQ(json_tests::meaning(*again), json_tests::meaning(streams)) << "seed " << seed << "\n"
                                                                             << text;
        ASSERT_EQ(json_tests::toJson(*again), text) << "seed " << seed;
    }
    EXPECT_EQ(changed, json_tests::allFields());
}

// The comparison above has to tell documents apart that differ anywhere.
TEST(JsonRoundTrip, MeaningsDifferWhereDocumentsDo)
{
    const std::string text = R"({"ovdl": 1, "document": {"lights": [{"sourceHaze": $}], "reason": "a"}})";
    const auto meaningWith = [&text](const std::string& value) {
        std::string filled = text;
        filled.replace(filled.find('$'), 1, value);
        return json_tests::meaning(*ovdl::readJsonStreams(filled));
    };
    EXPECT_EQ(meaningWith("1"), meaningWith("1.0"));
    EXPECT_NE(meaningWith("0"), meaningWith("-0"));
    EXPECT_NE(meaningWith("\"0x7ff8000000000000\""), meaningWith("\"0x7ff8000000000001\""));
}

std::string goodText()
{
    std::mt19937 random(7);
    std::set<std::string> changed;
    MemoryStreams streams;
    json_tests::makeRandom(random, streams, changed);
    return json_tests::toJson(streams);
}

// What is read is written again: a text that is taken for a document has to be one.
bool survives(const std::string& text)
{
    try {
        const auto streams = ovdl::readJsonStreams(text);
        json_tests::toJson(*streams);
        return true;
    } catch (const ovdl::Refusal& refusal) {
        EXPECT_EQ(std::string(refusal.what()).find('\n'), std::string::npos);
        return false;
    }
}

// Copies of their own, so that a step over the end is a step out of the memory.
TEST(JsonHostile, EveryPrefixIsRefused)
{
    const std::string text = goodText();
    ASSERT_GT(text.size(), 5000u);
    ASSERT_TRUE(survives(text));
    std::size_t accepted = 0;
    for (std::size_t length = 0; length + 1 < text.size(); ++length) {
        const std::vector<char> cut(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(length));
        try {
            ovdl::readJsonStreams({cut.data(), cut.size()});
            ++accepted;
        } catch (const ovdl::Refusal&) {
        }
    }
    EXPECT_EQ(accepted, 0u);
}

TEST(JsonHostile, EveryFlippedByteIsSurvived)
{
    const std::string text = goodText().substr(0, 20000);
    const std::string good = goodText();
    std::size_t refused = 0;
    for (std::size_t at = 0; at < text.size(); at += 3)
        for (const unsigned char flip : {0x01, 0x10, 0x80, 0xFF}) {
            std::string damaged = good;
            damaged[at] = static_cast<char>(damaged[at] ^ flip);
            refused += !survives(damaged);
        }
    EXPECT_GT(refused, text.size() / 3);
}

std::string repeated(const std::string& start, const std::string& text, std::size_t count,
                     const std::string& end)
{
    std::string result = start;
    result.reserve(start.size() + count * text.size() + end.size());
    for (std::size_t i = 0; i < count; ++i)
        result += text;
    return result + end;
}

struct LargeCase {
    const char* name;
    const char* start;
    const char* element;
    const char* end;
    bool isRead;
};
const LargeCase kLarge[] = {
    {"brackets", "", "[", "", false},
    {"braces", "{\"ovdl\":1,\"document\":", "{\"part\":", "", false},
    {"brackets_of_tessellations", "{\"ovdl\":1,\"tessellations\":", "[", "", false},
    {"empty_lights", "{\"ovdl\":1,\"document\":{\"lights\":[{}", ",{}", "]}}", true},
    {"empty_faces", "{\"ovdl\":1,\"document\":{},\"tessellations\":[{\"faces\":[{}", ",{}", "]}]}", false},
    {"empty_tessellations", "{\"ovdl\":1,\"document\":{},\"tessellations\":[{}", ",{}", "]}", true},
    {"tessellations_without_a_piece", "{\"ovdl\":1,\"document\":{},\"tessellations\":[[]", ",[]", "]}",
     true},
    {"digits", "{\"ovdl\":1,\"document\":{\"lights\":[{\"sourceHaze\":1.", "0123456789", "}]}}", true},
    {"digits_of_a_whole_number", "{\"ovdl\":1,\"document\":{\"lights\":[{\"lightIndex\":1", "0123456789",
     "}]}}", false},
    {"a_text", "{\"ovdl\":1,\"document\":{\"reason\":\"", "\\u0041\xC3\xA9", "\"}}", true},
    {"blanks", "{\"ovdl\":1,\"document\":{", "\n  ", "}}", true},
    {"a_key", "{\"ovdl\":1,\"document\":{\"", "kkkkkkkk", "\":1}}", false},
};
std::uint64_t sizeOfPieces(ovdl::DocumentStreams& streams)
{
    const auto* entries =
        flatbuffers::GetRoot<ovdl::fb::Document>(streams.document().data())->tessellations();
    std::uint64_t size = 0;
    for (std::uint32_t number = 0; entries && number < entries->size(); ++number)
        if (entries->Get(number)->pieces() != 0)
            size += streams.tessellation(number, 0, 1).size();
    return size;
}

class JsonLarge : public testing::TestWithParam<LargeCase> {};

// In the measure of its size: a million elements take a moment and a few bytes for each of theirs.
TEST_P(JsonLarge, TakeTimeAndMemoryInTheMeasureOfTheirSize)
{
    const std::string text = repeated(GetParam().start, GetParam().element, 1000000, GetParam().end);
    const auto start = std::chrono::steady_clock::now();
    bool isRead = false;
    std::uint64_t size = 0;
    try {
        const auto streams = ovdl::readJsonStreams(text);
        size = streams->document().size() + sizeOfPieces(*streams);
        isRead = true;
    } catch (const ovdl::Refusal&) {
    }
    const std::chrono::duration<double> passed = std::chrono::steady_clock::now() - start;
    EXPECT_EQ(isRead, GetParam().isRead);
    EXPECT_LT(size, 12 * text.size());
    EXPECT_LT(passed.count(), 20.0);
}
INSTANTIATE_TEST_SUITE_P(Rows, JsonLarge, testing::ValuesIn(kLarge),
                         [](const auto& row) { return row.param.name; });

// Each of them with another list of fields, of which a builder would keep every one to compare.
TEST(JsonHostile, RecordsOfManyShapesTakeNoLongerThanOthers)
{
    static const char* const kKeys[] = {
        "surfaceFinish",  "decalValue", "colorRef",      "index",  "mappingType",  "flags",
        "secondColorRef", "shininess",  "unitLevel",     "levelA", "levelB",       "luminous",
        "levelC",         "levelD",     "mappingScalar", "weight", "decalAmbient", "decalDiffuse"};
    std::string text = "{\"ovdl\":1,\"document\":{\"renderAppearances\":[{}";
    for (unsigned shape = 1; shape < 1u << 17; shape += 2) {
        text += ",{";
        for (unsigned bit = 0; bit < 18; ++bit)
            if (shape >> bit & 1)
                text.append(text.back() == '{' ? "\"" : ",\"").append(kKeys[bit]).append("\":1");
        text += "}";
    }
    text += "]}}";
    const auto start = std::chrono::steady_clock::now();
    const auto streams = ovdl::readJsonStreams(text);
    const std::chrono::duration<double> passed = std::chrono::steady_clock::now() - start;
    EXPECT_LT(streams->document().size(), text.size());
    EXPECT_LT(passed.count(), 20.0);
}

}  // namespace
