// How each kind of field looks as JSON.
#include <gtest/gtest.h>

#include <ovdl_schema/document_generated.h>
#include <bit>
#include <limits>

#include "reader/formats/ovdl/Refusal.h"
#include "reader/formats/ovdl/TextEncoding.h"
#include "tests/ovdl/JsonTools.h"

namespace {

namespace fb = ovdl::fb;
using flatbuffers::FlatBufferBuilder;
using flatbuffers::Offset;
using json_tests::Buffer;
using json_tests::documentOf;
using json_tests::toJson;

constexpr const char* kHead =
    "{\"ovdl\": 1,\n \"documentVersion\": 12000,\n \"displayListVersion\": 0,\n \"document\": ";

std::string whole(const std::string& document)
{
    return kHead + document + "}\n";
}

std::string jsonOf(Buffer document)
{
    json_tests::MemoryStreams streams(std::move(document));
    return toJson(streams);
}

// A document with one light, which `fill` fills.
Buffer withLight(const std::function<void(fb::LightBuilder&)>& fill)
{
    return documentOf([&](FlatBufferBuilder& builder) {
        fb::LightBuilder light(builder);
        fill(light);
        const auto lights = builder.CreateVector(std::vector<Offset<fb::Light>>{light.Finish()});
        fb::DocumentBuilder document(builder);
        document.add_lights(lights);
        return document.Finish().o;
    });
}

Buffer withReason(std::uint32_t number, const std::vector<std::string>& texts)
{
    return documentOf([&](FlatBufferBuilder& builder) {
        const auto list = builder.CreateVectorOfStrings(texts);
        fb::DocumentBuilder document(builder);
        document.add_texts(list);
        document.add_reason(number);
        return document.Finish().o;
    });
}

TEST(JsonWriting, AnEmptyDocumentIsAnEmptyObject)
{
    EXPECT_EQ(jsonOf(documentOf([](FlatBufferBuilder& builder) { return fb::CreateDocument(builder).o; })),
              whole("{}"));
}

TEST(JsonWriting, VersionsStandInFront)
{
    json_tests::MemoryStreams streams(
        documentOf([](FlatBufferBuilder& b) { return fb::DocumentBuilder(b).Finish().o; }));
    streams.headerRead = {1, 4000000000u, 17};
    EXPECT_EQ(toJson(streams),
              "{\"ovdl\": 1,\n \"documentVersion\": 4000000000,\n \"displayListVersion\": 17,\n "
              "\"document\": {}}\n");
}

struct LightCase {
    const char* name;
    void (*fill)(fb::LightBuilder&);
    const char* json;
};
const LightCase kLights[] = {
    {"a_default_is_left_out", [](fb::LightBuilder& light) { light.add_lightType(4); }, "{}"},
    {"zero_that_is_no_default_is_written", [](fb::LightBuilder& light) { light.add_lightType(0); },
     "{\"lightType\": 0}"},
    {"minus_zero_differs_from_its_default", [](fb::LightBuilder& light) { light.add_sourceHaze(-0.0); },
     "{\"sourceHaze\": -0.0}"},
    {"the_shortest_digits_of_a_double", [](fb::LightBuilder& light) { light.add_sourceHaze(0.1); },
     "{\"sourceHaze\": 0.1}"},
    {"as_many_digits_as_it_takes", [](fb::LightBuilder& light) { light.add_sourceHaze(1.0 / 3); },
     "{\"sourceHaze\": 0.3333333333333333}"},
    {"the_smallest_double",
     [](fb::LightBuilder& light) { light.add_sourceHaze(std::numeric_limits<double>::denorm_min()); },
     "{\"sourceHaze\": 5e-324}"},
    {"the_largest_double",
     [](fb::LightBuilder& light) { light.add_sourceHaze(std::numeric_limits<double>::max()); },
     "{\"sourceHaze\": 1.7976931348623157e+308}"},
    {"infinity_is_its_bits",
     [](fb::LightBuilder& light) { light.add_sourceHaze(-std::numeric_limits<double>::infinity()); },
     "{\"sourceHaze\": \"0xfff0000000000000\"}"},
    {"a_nan_keeps_its_payload",
     [](fb::LightBuilder& light) { light.add_sourceHaze(std::bit_cast<double>(0x7FF8000000000123ull)); },
     "{\"sourceHaze\": \"0x7ff8000000000123\"}"},
    {"a_stamp_is_sixteen_digits", [](fb::LightBuilder& light) { light.add_sourceStamp(0x2A); },
     "{\"sourceStamp\": \"0x000000000000002a\"}"},
    {"the_largest_unsigned", [](fb::LightBuilder& light) { light.add_packedColour(0xFFFFFFFFu); },
     "{\"packedColour\": 4294967295}"},
    {"the_smallest_signed",
     [](fb::LightBuilder& light) { light.add_lightIndex(std::numeric_limits<std::int32_t>::min()); },
     "{\"lightIndex\": -2147483648}"},
    {"a_struct_of_one_array_is_an_array",
     [](fb::LightBuilder& light) {
         const double v[] = {1, -0.0, 2.5};
         const fb::Double3 vector{flatbuffers::make_span(v)};
         light.add_sourceVectorA(&vector);
     },
     "{\"sourceVectorA\": [1, -0.0, 2.5]}"},
    {"a_struct_of_zeros_is_no_absent_one",
     [](fb::LightBuilder& light) {
         const fb::Double3 vector;
         light.add_sourceVectorB(&vector);
     },
     "{\"sourceVectorB\": [0, 0, 0]}"},
    {"one_field_a_line_in_the_order_of_the_schema",
     [](fb::LightBuilder& light) {
         light.add_packedColour(3);
         light.add_lightType(6);
     },
     "{\"lightType\": 6,\n    \"packedColour\": 3}"},
};

class JsonOfLights : public testing::TestWithParam<LightCase> {};
TEST_P(JsonOfLights, IsAsPeopleWriteIt)
{
    EXPECT_EQ(jsonOf(withLight(GetParam().fill)),
              whole("{\"lights\": [\n   " + std::string(GetParam().json) + "]}"));
}
INSTANTIATE_TEST_SUITE_P(Rows, JsonOfLights, testing::ValuesIn(kLights),
                         [](const auto& row) { return row.param.name; });

struct TextCase {
    const char* name;
    std::vector<std::uint32_t> values;
    const char* json;
};
const TextCase kTexts[] = {
    {"plain", {'a', '/', 'b'}, "\"a/b\""},
    {"beyond_ascii_as_it_is", {0xE9, 0x65E5, 0x1F600}, "\"\xC3\xA9\xE6\x97\xA5\xF0\x9F\x98\x80\""},
    {"quotes_and_backslashes_escaped", {'"', '\\'}, "\"\\\"\\\\\""},
    {"control_characters_escaped", {'\n', '\t', 1, 0x7F, 0x85}, "\"\\n\\t\\u0001\\u007f\\u0085\""},
    {"a_zero_in_the_middle", {'a', 0, 'b'}, "\"a\\u0000b\""},
    {"what_nobody_sees_escaped", {0x2028, 0x2029, 0xFEFF}, "\"\\u2028\\u2029\\ufeff\""},
    {"an_unpaired_high_surrogate", {'a', 0xD800, 'b'}, "\"a\\ud800b\""},
    {"an_unpaired_low_surrogate", {0xDC00}, "\"\\udc00\""},
    {"surrogates_in_the_wrong_order", {0xDC00, 0xD800}, "\"\\udc00\\ud800\""},
    {"a_pair_of_surrogates_value_by_value", {'a', 0xD83D, 0xDE00}, "[97, 55357, 56832]"},
    {"values_beyond_unicode", {0x110000, 0xFFFFFFFFu}, "[1114112, 4294967295]"},
};

class JsonOfTexts : public testing::TestWithParam<TextCase> {};
TEST_P(JsonOfTexts, GivesTheSameTextAgain)
{
    std::wstring text;
    for (const std::uint32_t value : GetParam().values)
        text += static_cast<wchar_t>(value);
    const Buffer document = withReason(2, {"other", ovdl::encodeText(text)});
    const std::string json = jsonOf(document);
    EXPECT_EQ(json, whole("{\"reason\": " + std::string(GetParam().json) + "}"));
    const auto streams = ovdl::readJsonStreams(json);
    const auto* read = flatbuffers::GetRoot<fb::Document>(streams->document().data());
    ASSERT_EQ(read->reason(), 1u);
    EXPECT_EQ(read->texts()->Get(0)->str(), ovdl::encodeText(text));
}
INSTANTIATE_TEST_SUITE_P(Rows, JsonOfTexts, testing::ValuesIn(kTexts),
                         [](const auto& row) { return row.param.name; });

TEST(JsonWriting, VectorsOfTextsAreListsOfThem)
{
    const Buffer document = documentOf([](FlatBufferBuilder& builder) {
        const auto texts = builder.CreateVectorOfStrings({"a.bmp", "b.bmp"});
        const auto keys = builder.CreateVector(std::vector<std::int32_t>{3, -1, 0});
        const auto images = builder.CreateVector(std::vector<std::uint32_t>{2, 0, 1});
        fb::SceneDataBuilder scene(builder);
        scene.add_backgroundImageKeys(keys);
        scene.add_backgroundImages(images);
        const auto scenes = builder.CreateVector(std::vector<Offset<fb::SceneData>>{scene.Finish()});
        fb::DocumentBuilder result(builder);
        result.add_texts(texts);
        result.add_sceneData(scenes);
        return result.Finish().o;
    });
    EXPECT_EQ(jsonOf(document), whole("{\"sceneData\": [\n   {\"backgroundImageKeys\": [3, -1, 0],\n    "
                                      "\"backgroundImages\": [\"b.bmp\", \"\", \"a.bmp\"]}]}"));
}

// The list of lights of a part: none at all differs from none in it.
TEST(JsonWriting, AnEmptyVectorDiffersFromNone)
{
    const auto part = [](bool hasLights) {
        return documentOf([hasLights](FlatBufferBuilder& builder) {
            const auto none = builder.CreateVector(std::vector<std::int32_t>());
            fb::PartBuilder made(builder);
            if (hasLights)
                made.add_lightData(none);
            const auto offset = made.Finish();
            fb::DocumentBuilder document(builder);
            document.add_part(offset);
            return document.Finish().o;
        });
    };
    EXPECT_EQ(jsonOf(part(false)), whole("{\"part\": {}}"));
    EXPECT_EQ(jsonOf(part(true)), whole("{\"part\": {\"lightData\": []}}"));
}

TEST(JsonWriting, RunsStandWhereTheyAreUsed)
{
    const Buffer document = documentOf([](FlatBufferBuilder& builder) {
        const std::vector<fb::FaceMapping> mappings{
            {1, 0, 0, 0, 0, 0, 0, 0}, {2, 0.5f, 0, 0, 0, 0, -0.0f, 1}, {}};
        const auto list = builder.CreateVectorOfStructs(mappings);
        std::vector<Offset<fb::Decal>> decals;
        for (const fb::Range range : {fb::Range(1, 2), fb::Range(3, 0)}) {
            fb::DecalBuilder decal(builder);
            decal.add_faceMappings(&range);
            decals.push_back(decal.Finish());
        }
        decals.push_back(fb::DecalBuilder(builder).Finish());
        const auto all = builder.CreateVector(decals);
        fb::DocumentBuilder result(builder);
        result.add_faceMappings(list);
        result.add_decals(all);
        return result.Finish().o;
    });
    EXPECT_EQ(
        jsonOf(document),
        whole("{\"decals\": [\n   {\"faceMappings\": [{\"faceId\": 2, \"transU\": 0.5, \"transY\": -0.0, "
              "\"mirrored\": 1}, {}]},\n   {\"faceMappings\": []},\n   {}]}"));
}

// A matrix without a scale would be no transform, so all of it is there.
TEST(JsonWriting, TransformsAreWhole)
{
    const Buffer document = documentOf([](FlatBufferBuilder& builder) {
        const double matrix[9] = {1, 0, 0, 0, 1, 0, 0, 0, 1};
        const double translation[3] = {0, 0, 0};
        const fb::Xform xform(flatbuffers::make_span(matrix), flatbuffers::make_span(translation), 0);
        fb::PartBuilder part(builder);
        part.add_viewXform(&xform);
        const auto offset = part.Finish();
        fb::DocumentBuilder result(builder);
        result.add_part(offset);
        return result.Finish().o;
    });
    EXPECT_EQ(jsonOf(document),
              whole("{\"part\": {\"viewXform\": {\"matrix\": [1, 0, 0, 0, 1, 0, 0, 0, 1],\n    "
                    "\"translation\": [0, 0, 0],\n    \"scale\": 0}}}"));
}

Buffer tessellationOf(const std::vector<float>& points)
{
    FlatBufferBuilder builder;
    const fb::Face face(1, 0, 7, 8, {0, 1}, {0, static_cast<std::uint32_t>(points.size())}, {0, 0}, {0, 0},
                        {0, 1}, {0, 0});
    const auto faces = builder.CreateVectorOfStructs(std::vector<fb::Face>{face});
    const auto lengths = builder.CreateVector(std::vector<std::int32_t>{3});
    const auto values = builder.CreateVectorOfStructs(std::vector<fb::ConfigValue>{{0, 5}});
    const auto list = builder.CreateVector(points);
    fb::TessellationBuilder result(builder);
    result.add_faces(faces);
    result.add_stripLengths(lengths);
    result.add_points(list);
    result.add_faceVizProps(values);
    builder.Finish(result.Finish(), ovdl::kTessellationIdentifier);
    return {builder.GetBufferPointer(), builder.GetBufferPointer() + builder.GetSize()};
}

Buffer withTessellations(const std::vector<fb::TessellationEntry>& entries)
{
    return documentOf([&](FlatBufferBuilder& builder) {
        const auto list = builder.CreateVectorOfStructs(entries);
        fb::DocumentBuilder result(builder);
        result.add_tessellations(list);
        return result.Finish().o;
    });
}

TEST(JsonWriting, TessellationsFollowAsObjectsOrListsOfPieces)
{
    std::vector<fb::TessellationEntry> entries;
    for (const std::uint32_t pieces : {0u, 1u, 2u, 0u})
        entries.emplace_back(pieces);
    json_tests::MemoryStreams streams(withTessellations(entries));
    for (const auto& place : {std::pair{1u, 0u}, {2u, 0u}, {2u, 1u}})
        streams.tessellations[place] = tessellationOf({0.1f});
    const std::string face =
        "{\"stripCount\": 1,\n$ \"faceId\": 7,\n$ \"faceKey\": 8,\n$ \"stripLengths\": [3],\n$ \"points\": "
        "[0.1],\n$ \"faceVizProps\": [{\"value\": 5}]}]}";
    const auto piece = [&face](unsigned indent) {
        std::string text = "{\"faces\": [\n" + std::string(indent + 2, ' ') + face;
        for (std::size_t at; (at = text.find('$')) != std::string::npos;)
            text.replace(at, 1, indent + 2, ' ');
        return text;
    };
    EXPECT_EQ(toJson(streams), kHead + std::string("{},\n \"tessellations\": [\n  [],\n  ") + piece(2) +
                                   ",\n  [" + piece(3) + ",\n   " + piece(3) + "],\n  []]}\n");
}

TEST(JsonWriting, LongArraysAreWrapped)
{
    json_tests::MemoryStreams streams(withTessellations({fb::TessellationEntry(1)}));
    streams.tessellations[{0, 0}] = tessellationOf(std::vector<float>(200, -0.123456f));
    const std::string text = toJson(streams);
    std::size_t longest = 0;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = text.find('\n', at);
        longest = std::max(longest, end - at);
        at = end + 1;
    }
    EXPECT_LE(longest, 101u);
    EXPECT_GT(longest, 90u);
}

struct RefusedCase {
    const char* name;
    Buffer (*make)();
    const char* reason;
};
const RefusedCase kRefused[] = {
    {"a_text_beyond_the_last",
     [] {
         return withReason(3, {"a", "b"});
     },
     "a record refers to a text that is not there"},
    {"a_text_that_is_not_encoded_as_texts_are", [] { return withReason(1, {"\x80"}); },
     "a text of the document is not encoded as texts are"},
    {"a_run_beyond_the_end",
     [] {
         return documentOf([](FlatBufferBuilder& builder) {
             const auto list = builder.CreateVectorOfStructs(std::vector<fb::FaceMapping>(2));
             const fb::Range range(1, 2);
             fb::DecalBuilder decal(builder);
             decal.add_faceMappings(&range);
             const auto all = builder.CreateVector(std::vector<Offset<fb::Decal>>{decal.Finish()});
             fb::DocumentBuilder result(builder);
             result.add_faceMappings(list);
             result.add_decals(all);
             return result.Finish().o;
         });
     },
     "a run goes beyond the end of \"faceMappings\""},
    {"a_run_of_no_vector",
     [] {
         return documentOf([](FlatBufferBuilder& builder) {
             const fb::Range range(0xFFFFFFFFu, 1);
             fb::DecalBuilder decal(builder);
             decal.add_faceMappings(&range);
             const auto all = builder.CreateVector(std::vector<Offset<fb::Decal>>{decal.Finish()});
             fb::DocumentBuilder result(builder);
             result.add_decals(all);
             return result.Finish().o;
         });
     },
     "a run goes beyond the end of \"faceMappings\""},
    {"what_is_no_buffer", [] { return Buffer(64, 0xFF); }, "a buffer is damaged"},
    {"a_missing_tessellation", [] { return withTessellations({fb::TessellationEntry(1)}); },
     "a part of the document is missing"},
};

class JsonOfNonsense : public testing::TestWithParam<RefusedCase> {};
TEST_P(JsonOfNonsense, IsRefused)
{
    const Buffer document = GetParam().make();
    const auto sink = ovdl::makeJsonSink([](std::string_view) {});
    try {
        sink->document({1, 12000, 0}, document);
        sink->finish();
        ADD_FAILURE() << "it was written";
    } catch (const ovdl::Refusal& refusal) {
        EXPECT_STREQ(refusal.what(), GetParam().reason);
    }
}
INSTANTIATE_TEST_SUITE_P(Rows, JsonOfNonsense, testing::ValuesIn(kRefused),
                         [](const auto& row) { return row.param.name; });

TEST(JsonWriting, TessellationsComeInTheirOrder)
{
    const Buffer document = withTessellations({fb::TessellationEntry(1), fb::TessellationEntry(2)});
    const Buffer piece = tessellationOf({});
    const auto sink = ovdl::makeJsonSink([](std::string_view) {});
    EXPECT_THROW(sink->finish(), ovdl::Refusal);
    sink->document({1, 12000, 0}, document);
    EXPECT_THROW(sink->tessellation(1, 0, 2, piece), ovdl::Refusal);
    EXPECT_THROW(sink->tessellation(0, 0, 2, piece), ovdl::Refusal);
    EXPECT_THROW(sink->tessellation(0, 0, 1, document), ovdl::Refusal);
    sink->tessellation(0, 0, 1, piece);
    EXPECT_THROW(sink->tessellation(1, 1, 2, piece), ovdl::Refusal);
    sink->tessellation(1, 0, 2, piece);
    EXPECT_THROW(sink->finish(), ovdl::Refusal);
    sink->tessellation(1, 1, 2, piece);
    EXPECT_THROW(sink->tessellation(2, 0, 1, piece), ovdl::Refusal);
    sink->finish();
}

// Whoever takes the text says when it can take no more.
TEST(JsonWriting, AFailureOfTheOutputIsHandedOn)
{
    const auto sink = ovdl::makeJsonSink([](std::string_view) { ovdl::refuse("full"); });
    sink->document({1, 12000, 0}, withReason(0, {}));
    EXPECT_THROW(sink->finish(), ovdl::Refusal);
}

}  // namespace
