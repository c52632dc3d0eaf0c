// JSON as a document that is opened, and as one that objects are written to.
#include <gtest/gtest.h>

#include "raylume/platform/Text.h"
#include "reader/formats/ovdl/Decoder.h"
#include "reader/formats/ovdl/Encoder.h"
#include "tests/ovdl/JsonTools.h"
#include "tests/platform/TemporaryFolder.h"

namespace {

struct Context : public ovdl::ReadContext {
    bool accepts = true;
    bool isCancelled = false;
    std::vector<unsigned long> versions;

    bool acceptVersion(unsigned long version) override
    {
        versions.push_back(version);
        return accepts;
    }
    void progress(float) override {}
    bool cancelled() override { return isCancelled; }
};

constexpr const char* kTriangle = R"({
 "ovdl": 1, "documentVersion": 12345,
 "document": {
  "visuals": [{"activeFlag": 1, "visualName": "red"}],
  "lights": [{"lightType": 3, "sourceHaze": -0.0}],
  "part": {"lightData": [0], "tessData": 0, "viewPoint": [1, 2, 3]}
 },
 "tessellations": [
  {"bodies": [0], "bodyRecords": [{"faces": [0], "level": 2}], "modelVizProps": [0, 0],
   "faces": [{"stripCount": 1, "faceId": 7, "stripLengths": [3],
              "points": [0, 0, 0, 1, 0, 0, 0, 1, 0], "normals": [0, 0, 1, 0, 0, 1, 0, 0, 1],
              "faceVizProps": [{"config": 0, "value": 0}]}]}
 ]
})";

ovdl::ReadOutcome read(const std::string& text, Context& context)
{
    const TemporaryFolder folder;
    return ovdl::makeOvdlJsonFormat()->read(platform::fromUtf8(folder.write("a.json", text)), context);
}

// A key may be anything, a reason is one line of UTF-8.
TEST(JsonFormat, ReasonsAreTrueTextInOneLine)
{
    Context context;
    const auto outcome = read("{\"ovdl\":1,\"\\ud800\\n\":1}", context);
    EXPECT_EQ(outcome.kind, ovdl::ReadOutcome::kRejected);
    EXPECT_NE(outcome.reason.find("\xEF\xBF\xBD"), std::string::npos) << outcome.reason;
    EXPECT_EQ(platform::toUtf8(platform::fromUtf8(outcome.reason)), outcome.reason);
    EXPECT_EQ(outcome.reason.find('\n'), std::string::npos);
}

struct RecognitionCase {
    const char* name;
    const char* file;
    std::string content;
    bool recognised;
};
const RecognitionCase kRecognition[] = {
    {"the_key_under_any_ending", "a.json", "{\"ovdl\":1}", true},
    {"the_key_under_the_ending_of_another_format", "a.gltf", "{\"ovdl\":1}", true},
    {"the_key_without_an_ending", "a", "{\"ovdl\":1}", true},
    {"a_broken_text_that_begins_with_the_key", "a.json", "{\"ovdl\"", true},
    {"the_key_behind_many_blanks", "a.json", std::string(100000, '\n') + "{ \"ovdl\"", true},
    {"the_key_behind_a_mark", "a.json", "\xEF\xBB\xBF{\"ovdl\"", true},
    {"another_key_first", "a.ovdl.json", "{\"asset\":1,\"ovdl\":1}", false},
    {"nothing", "a.json", "", false},
};
class JsonRecognition : public testing::TestWithParam<RecognitionCase> {};
TEST_P(JsonRecognition, GoesByContent)
{
    const TemporaryFolder folder;
    std::string reason;
    EXPECT_EQ(ovdl::makeOvdlJsonFormat()->recognises(
                  platform::fromUtf8(folder.write(GetParam().file, GetParam().content)), reason),
              GetParam().recognised);
    EXPECT_EQ(reason, "");
}
INSTANTIATE_TEST_SUITE_P(Rows, JsonRecognition, testing::ValuesIn(kRecognition),
                         [](const auto& row) { return row.param.name; });

TEST(JsonFormat, AMissingFileIsNotRecognisedAndRejected)
{
    const TemporaryFolder folder;
    const std::wstring path = platform::fromUtf8(folder / "none.json");
    std::string reason;
    EXPECT_FALSE(ovdl::makeOvdlJsonFormat()->recognises(path, reason));
    Context context;
    const auto outcome = ovdl::makeOvdlJsonFormat()->read(path, context);
    EXPECT_EQ(outcome.kind, ovdl::ReadOutcome::kRejected);
    EXPECT_EQ(outcome.reason, "the file cannot be opened");
}

TEST(JsonFormat, ReadsAPart)
{
    Context context;
    const auto outcome = read(kTriangle, context);
    ASSERT_EQ(outcome.kind, ovdl::ReadOutcome::kRead) << outcome.reason;
    EXPECT_EQ(context.versions, std::vector<unsigned long>{12345});
    OVDLPartDocument* part = outcome.document->part();
    ASSERT_NE(part, nullptr);
    EXPECT_EQ(outcome.document->assembly(), nullptr);
    EXPECT_EQ(part->viewPoint[2], 3.0);
    EXPECT_TRUE(std::signbit(part->lightData->at(0)->sourceHaze));
    EXPECT_EQ(part->tessData->getModelVizProp(0)->visualName, L"red");
    const uoTempBodyTessData_c& body = *part->tessData->bodies.at(0);
    EXPECT_EQ(body.level, 2);
    EXPECT_EQ(body.faces.at(0)->faceId, 7);
    EXPECT_EQ(body.faces.at(0)->points.data[3], 1.0f);
    EXPECT_EQ(body.faces.at(0)->getFaceVizProp(0), part->tessData->getModelVizProp(0));
}

TEST(JsonFormat, RejectsWithTheLine)
{
    Context context;
    std::string text = kTriangle;
    text.replace(text.find("lightType"), 9, "lightKind");
    const auto outcome = read(text, context);
    EXPECT_EQ(outcome.kind, ovdl::ReadOutcome::kRejected);
    EXPECT_EQ(outcome.reason, "line 5, column 15: there is no key \"lightKind\" in Light");
    EXPECT_EQ(outcome.document, nullptr);
}

// Well-formed, but not a document that can be used.
TEST(JsonFormat, RejectsNumbersThatMakeNoSense)
{
    Context context;
    std::string text = kTriangle;
    text.replace(text.find("\"stripLengths\": [3]"), 19, "\"stripLengths\": [4]");
    const auto outcome = read(text, context);
    EXPECT_EQ(outcome.kind, ovdl::ReadOutcome::kRejected);
    EXPECT_EQ(outcome.reason, "the strips of a face need more vertices than it has");
}

TEST(JsonFormat, AsksTheHostForItsVersionAndForCancellation)
{
    Context refusing;
    refusing.accepts = false;
    EXPECT_EQ(read(kTriangle, refusing).kind, ovdl::ReadOutcome::kRejected);
    Context cancelling;
    cancelling.isCancelled = true;
    EXPECT_EQ(read(kTriangle, cancelling).kind, ovdl::ReadOutcome::kCancelled);
}

// Long before the end of the text, which is broken.
TEST(JsonFormat, AsksForCancellationWhileItReadsTheText)
{
    std::string text = "{\"ovdl\": 1, \"document\": {\"lights\": [{}";
    for (int i = 0; i < 100000; ++i)
        text += ",{}";
    Context context;
    EXPECT_EQ(read(text, context).kind, ovdl::ReadOutcome::kRejected);
    context.isCancelled = true;
    EXPECT_EQ(read(text, context).kind, ovdl::ReadOutcome::kCancelled);
    EXPECT_TRUE(context.versions.empty());
}

// The way of a document through `convert`, there and back.
TEST(JsonFormat, ObjectsComeBackByteForByte)
{
    Context context;
    const auto first = ovdl::decodeDocument(ovdl::readJsonStreams(kTriangle), context);
    ASSERT_EQ(first.kind, ovdl::ReadOutcome::kRead) << first.reason;
    const auto contents = dynamic_cast<ovdl::DecodedDocument&>(*first.document).contents();
    json_tests::MemoryStreams direct;
    ovdl::encodeDocument(contents, direct);
    std::string text;
    const auto sink = ovdl::makeJsonSink([&text](std::string_view piece) { text += piece; });
    ovdl::encodeDocument(contents, *sink);
    sink->finish();
    const auto second = ovdl::decodeDocument(ovdl::readJsonStreams(text), context);
    ASSERT_EQ(second.kind, ovdl::ReadOutcome::kRead) << second.reason;
    json_tests::MemoryStreams byText;
    ovdl::encodeDocument(dynamic_cast<ovdl::DecodedDocument&>(*second.document).contents(), byText);
    EXPECT_EQ(byText.documentBytes, direct.documentBytes);
    EXPECT_EQ(byText.tessellations, direct.tessellations);
    EXPECT_EQ(byText.headerRead.documentVersion, 12345u);
    EXPECT_EQ(json_tests::toJson(byText), text);
}

}  // namespace
