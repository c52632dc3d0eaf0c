// Which files the format takes for its own, and what it tells while it reads.
#include <gmock/gmock.h>

#include "tests/gltf/GltfBuilder.h"
#include "tests/gltf/GltfReading.h"

namespace gltf_tests {
namespace {

using testing::AllOf;
using testing::Each;
using testing::ElementsAre;
using testing::Ge;
using testing::HasSubstr;
using testing::Le;

struct RecognitionCase {
    const char* name;
    std::string file;
    std::string content;
    bool recognised;
};
const RecognitionCase kRecognition[] = {
    {"binary_magic_under_its_own_ending", "a.glb", "glTF", true},
    {"binary_magic_under_any_ending", "a.bin", "glTF....", true},
    {"binary_magic_without_an_ending", "a", "glTF", true},
    {"half_a_magic_is_none", "a.glb", "glT", false},
    {"magic_in_other_letters_is_none", "a.glb", "GLTF", false},
    {"json_under_the_text_ending", "a.gltf", "{", true},
    {"json_under_the_text_ending_in_capitals", "A.GLTF", "{}", true},
    {"json_behind_blanks", "a.gltf", " \t\r\n {}", true},
    {"json_behind_many_blanks", "a.gltf", std::string(10000, ' ') + "{}", true},
    {"json_behind_a_mark", "a.gltf", "\xEF\xBB\xBF {}", true},
    {"json_under_another_ending", "a.json", "{\"asset\":{\"version\":\"2.0\"}}", false},
    {"json_under_no_ending", "gltf", "{}", false},
    {"a_list_is_no_document", "a.gltf", "[]", false},
    {"an_empty_file_is_no_document", "a.gltf", "", false},
    {"blanks_alone_are_no_document", "a.gltf", "   ", false},
    {"a_document_of_the_readers_own_format", "a.gltf", "{\"ovdl\":1}", false},
    {"a_document_of_the_readers_own_format_behind_blanks", "a.gltf", "\n{\n \"ovdl\" : 1}", false},
    {"a_key_that_begins_like_the_readers_own", "a.gltf", "{\"ovdlx\":1}", true},
    {"the_readers_own_key_in_second_place", "a.gltf", "{\"a\":1,\"ovdl\":1}", true},
};

class Recognition : public testing::TestWithParam<RecognitionCase> {};

TEST_P(Recognition, GoesByContent)
{
    const Folder folder;
    std::string reason;
    EXPECT_EQ(ovdl::makeGltfFormat()->recognises(folder.write(GetParam().file, GetParam().content), reason),
              GetParam().recognised);
}
INSTANTIATE_TEST_SUITE_P(Rows, Recognition, testing::ValuesIn(kRecognition),
                         [](const auto& row) { return row.param.name; });

TEST(GltfFormat, DoesNotRecogniseWhatIsNotThere)
{
    const Folder folder;
    std::string reason;
    EXPECT_FALSE(ovdl::makeGltfFormat()->recognises(folder.path("none.gltf"), reason));
    EXPECT_FALSE(ovdl::makeGltfFormat()->recognises(folder.path(""), reason));
    EXPECT_FALSE(ovdl::makeGltfFormat()->recognises(L"", reason));
}

TEST(GltfFormat, HasAName)
{
    EXPECT_STREQ(ovdl::makeGltfFormat()->name(), "glTF 2.0");
}

TEST(GltfFormat, TellsTheForeignVersionOnce)
{
    const Folder folder;
    GltfBuilder builder;
    builder.addNode({{"mesh", builder.triangleMesh()}});
    Context context;
    const auto outcome = read(folder.write("a.glb", builder.glb()), context);
    EXPECT_EQ(outcome.kind, ovdl::ReadOutcome::kRead);
    EXPECT_THAT(context.versions, ElementsAre(12000ul));
    EXPECT_EQ(outcome.document->result(), OVXDLReader_Loaded);
    EXPECT_EQ(outcome.document->configuration(L""), nullptr);
}

TEST(GltfFormat, IsRejectedWhenTheVersionIsRefused)
{
    const Folder folder;
    GltfBuilder builder;
    builder.addNode({{"mesh", builder.triangleMesh()}});
    Context context;
    context.acceptsVersion = false;
    const auto outcome = read(folder.write("a.glb", builder.glb()), context);
    EXPECT_EQ(outcome.kind, ovdl::ReadOutcome::kRejected);
    EXPECT_FALSE(outcome.reason.empty());
}

// Several meshes of several primitives, and more nodes than one step takes.
GltfBuilder lengthy()
{
    GltfBuilder builder;
    for (int i = 0; i < 5; ++i) {
        Json mesh = {{"primitives", {builder.triangle(), builder.triangle()}}};
        builder.addNode({{"mesh", builder.add("meshes", mesh)}});
    }
    for (int i = 0; i < 10000; ++i)
        builder.addNode(Json::object());
    return builder;
}

TEST(GltfFormat, ReportsProgressThatNeverFalls)
{
    const Folder folder;
    Context context;
    ASSERT_EQ(read(folder.write("a.glb", lengthy().glb()), context).kind, ovdl::ReadOutcome::kRead);
    EXPECT_GE(context.progressed.size(), 12u);
    EXPECT_TRUE(std::is_sorted(context.progressed.begin(), context.progressed.end()));
    EXPECT_THAT(context.progressed, Each(AllOf(Ge(0.0f), Le(1.0f))));
    EXPECT_FLOAT_EQ(context.progressed.back(), 1.0f);
}

TEST(GltfFormat, CanBeCancelledAtEveryQuestion)
{
    const Folder folder;
    const std::wstring path = folder.write("a.glb", lengthy().glb());
    Context whole;
    ASSERT_EQ(read(path, whole).kind, ovdl::ReadOutcome::kRead);
    ASSERT_GE(whole.questions, 12) << "one a primitive and one every few thousand nodes";
    for (long after = 0; after < whole.questions; ++after) {
        Context context;
        context.cancelAfter = after;
        const auto outcome = read(path, context);
        EXPECT_EQ(outcome.kind, ovdl::ReadOutcome::kCancelled);
        EXPECT_EQ(outcome.document, nullptr);
        EXPECT_EQ(context.questions, after + 1) << "asked again after the answer was yes";
    }
}

struct ContainerCase {
    const char* name;
    std::string (*write)(const GltfBuilder& builder, const Folder& folder);
    const char* file;
};
const ContainerCase kContainers[] = {
    {"binary", [](const GltfBuilder& b, const Folder&) { return b.glb(); }, "a.glb"},
    {"data_uri", [](const GltfBuilder& b, const Folder&) { return b.gltfEmbedded(); }, "a.gltf"},
    {"data_uri_behind_a_mark",
     [](const GltfBuilder& b, const Folder&) { return "\xEF\xBB\xBF" + b.gltfEmbedded(); }, "a.gltf"},
    {"data_uri_without_a_type",
     [](const GltfBuilder& b, const Folder&) {
         return b.gltf("data:;base64," + GltfBuilder::base64(b.bytes));
     },
     "a.gltf"},
    {"data_uri_with_percent_signs",
     [](const GltfBuilder& b, const Folder&) {
         std::string uri = "data:application/gltf-buffer,";
         for (const unsigned char c : b.bytes)
             for (const int part : {'%' - 0, 0, 1})
                 uri += part == '%' ? '%' : "0123456789abcdef"[part == 0 ? c >> 4 : c & 15];
         return b.gltf(uri);
     },
     "a.gltf"},
    {"file_beside",
     [](const GltfBuilder& b, const Folder& f) {
         f.write("a.bin", b.bytes);
         return b.gltf("a.bin");
     },
     "a.gltf"},
    {"file_in_a_folder_below",
     [](const GltfBuilder& b, const Folder& f) {
         f.write("data/deep/a.bin", b.bytes);
         return b.gltf("data/./deep/a.bin");
     },
     "a.gltf"},
    {"file_with_blanks_and_letters_beyond_ascii",
     [](const GltfBuilder& b, const Folder& f) {
         f.write("gr\xC3\xB6\xC3\x9F e.bin", b.bytes);
         return b.gltf("gr%C3%B6%c3%9f%20e.bin");
     },
     "a.gltf"},
    {"file_longer_than_stated",
     [](const GltfBuilder& b, const Folder& f) {
         f.write("a.bin", b.bytes + "more");
         return b.gltf("a.bin");
     },
     "a.gltf"},
    {"binary_with_bytes_behind_its_end",
     [](const GltfBuilder& b, const Folder&) { return b.glb() + "rest"; }, "a.glb"},
    {"binary_with_a_third_chunk",
     [](const GltfBuilder& b, const Folder&) {
         std::string glb = b.glb() + GltfBuilder::word(4) + "XYZ abcd";
         glb.replace(8, 4, GltfBuilder::word(glb.size()));
         return glb;
     },
     "a.glb"},
};

class Containers : public testing::TestWithParam<ContainerCase> {};

TEST_P(Containers, GiveTheSameTriangle)
{
    const Folder folder;
    GltfBuilder builder;
    builder.addNode({{"mesh", builder.triangleMesh()}});
    const auto outcome = read(folder.write(GetParam().file, GetParam().write(builder, folder)));
    ASSERT_EQ(outcome.kind, ovdl::ReadOutcome::kRead) << outcome.reason;
    const uoTempFaceTessData_c& face = firstFace(*outcome.document);
    const std::multiset<Triangle> expected = {
        Triangle{Vertex{0, 0, 0, 0, 0, 1}, Vertex{1, 0, 0, 0, 0, 1}, Vertex{0, 1, 0, 0, 0, 1}}};
    EXPECT_EQ(trianglesOf(face), expected);
}
INSTANTIATE_TEST_SUITE_P(Rows, Containers, testing::ValuesIn(kContainers),
                         [](const auto& row) { return row.param.name; });

}  // namespace
}  // namespace gltf_tests
