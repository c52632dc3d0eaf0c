// Documents that are recognised and then refused, each for its reason; and some that look as if they
// should be, and are not.
#include <gmock/gmock.h>

#include "tests/gltf/GltfBuilder.h"
#include "tests/gltf/GltfReading.h"

namespace gltf_tests {
namespace {

using testing::HasSubstr;
using testing::Not;

// A sound document: a node with a mesh of one indexed triangle with normals.
GltfBuilder sound()
{
    GltfBuilder builder;
    Json primitive = builder.triangle();
    primitive["indices"] = builder.addValues<std::uint16_t>({0, 1, 2}, "SCALAR");
    builder.addNode({{"mesh", builder.addMesh(primitive)}, {"name", "a"}});
    return builder;
}

struct JsonCase {
    const char* name;
    void (*spoil)(Json& json);
    const char* reason;  // Null: it opens.
};
const JsonCase kJson[] = {
    {"nothing_spoilt", [](Json&) {}, nullptr},
    // asset
    {"no_asset", [](Json& j) { j.erase("asset"); }, "asset.version is missing"},
    {"no_version", [](Json& j) { j["asset"] = Json::object(); }, "asset.version is missing"},
    {"version_one", [](Json& j) { j["asset"]["version"] = "1.0"; }, "only glTF 2"},
    {"version_three", [](Json& j) { j["asset"]["version"] = "3.0"; }, "only glTF 2"},
    {"version_two_and_a_half", [](Json& j) { j["asset"]["version"] = "2.5"; }, nullptr},
    {"a_version_that_is_none", [](Json& j) { j["asset"]["version"] = "two"; }, "is no version"},
    {"a_version_with_a_tail", [](Json& j) { j["asset"]["version"] = "2.0x"; }, "is no version"},
    {"a_version_that_is_a_number", [](Json& j) { j["asset"]["version"] = 2.0; }, "asset.version"},
    {"minimum_version_two", [](Json& j) { j["asset"]["minVersion"] = "2.0"; }, nullptr},
    {"minimum_version_beyond_two", [](Json& j) { j["asset"]["minVersion"] = "2.1"; }, "minVersion"},
    // extensions
    {"an_unknown_required_extension",
     [](Json& j) { j["extensionsRequired"] = {"KHR_draco_mesh_compression"}; },
     "KHR_draco_mesh_compression"},
    {"an_unknown_one_among_known_ones",
     [](Json& j) {
         j["extensionsRequired"] = {"KHR_mesh_quantization", "EXT_secret"};
     },
     "EXT_secret"},
    {"known_required_extensions",
     [](Json& j) {
         j["extensionsRequired"] = {"KHR_lights_punctual",        "KHR_materials_emissive_strength",
                                    "KHR_materials_unlit",        "KHR_materials_pbrSpecularGlossiness",
                                    "KHR_materials_transmission", "KHR_mesh_quantization",
                                    "KHR_texture_transform"};
     },
     nullptr},
    {"an_unknown_extension_that_is_only_used", [](Json& j) { j["extensionsUsed"] = {"EXT_secret"}; },
     nullptr},
    // references
    {"a_scene_that_is_not_there", [](Json& j) { j["scene"] = 1; }, "scene 1 of 1"},
    {"a_node_that_is_not_there", [](Json& j) { j["scenes"][0]["nodes"] = {7}; }, "node 7 of 1"},
    {"a_child_that_is_not_there", [](Json& j) { j["nodes"][0]["children"] = {1}; }, "node 1 of 1"},
    {"a_mesh_that_is_not_there", [](Json& j) { j["nodes"][0]["mesh"] = 1; }, "mesh 1 of 1"},
    {"a_camera_that_is_not_there", [](Json& j) { j["nodes"][0]["camera"] = 0; }, "camera 0 of 0"},
    {"a_light_that_is_not_there",
     [](Json& j) { j["nodes"][0]["extensions"]["KHR_lights_punctual"]["light"] = 0; }, "light 0 of 0"},
    {"a_material_that_is_not_there", [](Json& j) { j["meshes"][0]["primitives"][0]["material"] = 0; },
     "material 0 of 0"},
    {"a_position_that_is_not_there",
     [](Json& j) { j["meshes"][0]["primitives"][0]["attributes"]["POSITION"] = 9; }, "accessor 9"},
    {"a_normal_that_is_not_there",
     [](Json& j) { j["meshes"][0]["primitives"][0]["attributes"]["NORMAL"] = 9; }, "accessor 9"},
    {"texture_coordinates_that_are_not_there",
     [](Json& j) { j["meshes"][0]["primitives"][0]["attributes"]["TEXCOORD_7"] = 9; }, "accessor 9"},
    {"indices_that_are_not_there", [](Json& j) { j["meshes"][0]["primitives"][0]["indices"] = 9; },
     "accessor 9"},
    {"a_view_that_is_not_there", [](Json& j) { j["accessors"][0]["bufferView"] = 9; }, "buffer view 9"},
    {"a_buffer_that_is_not_there", [](Json& j) { j["bufferViews"][0]["buffer"] = 1; }, "buffer 1 of 1"},
    {"a_view_without_a_buffer", [](Json& j) { j["bufferViews"][0].erase("buffer"); }, "names no buffer"},
    {"a_texture_that_is_not_there",
     [](Json& j) { j["materials"][0]["pbrMetallicRoughness"]["baseColorTexture"]["index"] = 0; },
     "texture 0 of 0"},
    {"an_image_that_is_not_there",
     [](Json& j) {
         j["textures"] = {{{"source", 0}}};
     },
     "image 0 of 0"},
    {"a_view_of_an_image_that_is_not_there",
     [](Json& j) {
         j["images"] = {{{"bufferView", 9}}};
     },
     "buffer view 9"},
    {"a_negative_reference", [](Json& j) { j["nodes"][0]["mesh"] = -1; }, "no whole number"},
    {"a_broken_reference", [](Json& j) { j["nodes"][0]["mesh"] = 0.5; }, "no whole number"},
    {"a_reference_beyond_31_bits", [](Json& j) { j["nodes"][0]["mesh"] = 2147483648u; }, "out of range"},
    {"a_reference_written_as_a_real", [](Json& j) { j["nodes"][0]["mesh"] = 0.0; }, nullptr},
    // the tree
    {"a_node_below_itself", [](Json& j) { j["nodes"][0]["children"] = {0}; }, "cycle"},
    {"a_cycle_beside_the_scene",
     [](Json& j) {
         j["nodes"].push_back({{"children", {2}}});
         j["nodes"].push_back({{"children", {1}}});
     },
     "cycle"},
    {"a_node_with_two_parents",
     [](Json& j) {
         j["nodes"].push_back({{"children", {3}}});
         j["nodes"].push_back({{"children", {3}}});
         j["nodes"].push_back(Json::object());
     },
     "nodes[3] has two parents"},
    {"a_child_twice",
     [](Json& j) {
         j["nodes"].push_back({{"children", {2, 2}}});
         j["nodes"].push_back(Json::object());
     },
     "nodes[2] has two parents"},
    {"a_scene_that_names_a_node_twice",
     [](Json& j) {
         j["scenes"][0]["nodes"] = {0, 0};
     },
     "twice"},
    {"a_scene_that_names_a_node_below_another",
     [](Json& j) {
         j["nodes"].push_back({{"children", {0}}});
     },
     "hangs under another"},
    // placements
    {"a_matrix_of_nine", [](Json& j) { j["nodes"][0]["matrix"] = std::vector<int>(9, 1); }, "too few"},
    {"a_matrix_of_seventeen", [](Json& j) { j["nodes"][0]["matrix"] = std::vector<int>(17, 1); },
     "too many"},
    {"a_matrix_that_projects",
     [](Json& j) { j["nodes"][0]["matrix"] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, -1, 0, 0, 0, 0}; },
     "not affine"},
    {"a_matrix_of_words", [](Json& j) { j["nodes"][0]["matrix"] = std::vector<const char*>(16, "NaN"); },
     "nodes[0].matrix"},
    {"a_rotation_of_three",
     [](Json& j) {
         j["nodes"][0]["rotation"] = {0, 0, 1};
     },
     "too few"},
    {"places_that_overflow_when_multiplied",
     [](Json& j) {
         j["nodes"][0]["children"] = {1};
         j["nodes"][0]["scale"] = {1e300, 1, 1};
         j["nodes"].push_back({{"mesh", 0}, {"scale", {1e300, 1, 1}}});
     },
     "not finite"},
    // data
    {"an_accessor_of_no_type", [](Json& j) { j["accessors"][0].erase("type"); }, "no known type"},
    {"an_accessor_of_an_unknown_type", [](Json& j) { j["accessors"][0]["type"] = "VEC5"; },
     "no known type"},
    {"an_accessor_of_an_unknown_component", [](Json& j) { j["accessors"][0]["componentType"] = 5124; },
     "no known type"},
    {"an_accessor_longer_than_its_view", [](Json& j) { j["accessors"][0]["count"] = 4; }, "reaches out"},
    {"an_accessor_that_begins_behind_its_view", [](Json& j) { j["accessors"][0]["byteOffset"] = 37; },
     "reaches out"},
    {"an_accessor_that_ends_behind_its_view", [](Json& j) { j["accessors"][0]["byteOffset"] = 1; },
     "reaches out"},
    {"an_offset_that_wraps_round", [](Json& j) { j["accessors"][0]["byteOffset"] = 18446744073709551615u; },
     "reaches out"},
    {"a_count_that_wraps_round", [](Json& j) { j["accessors"][0]["count"] = 1537228672809129302u; },
     "more elements"},
    {"a_stride_that_wraps_round", [](Json& j) { j["bufferViews"][0]["byteStride"] = 9223372036854775808u; },
     "reaches out"},
    {"four_gigabytes_of_zeros",
     [](Json& j) {
         j["accessors"][0] = {{"componentType", kFloat32}, {"count", 358000000}, {"type", "VEC3"}};
     },
     "more elements"},
    {"a_view_longer_than_its_buffer", [](Json& j) { j["bufferViews"][0]["byteLength"] = 1000; },
     "reaches out"},
    {"a_view_that_begins_behind_its_buffer", [](Json& j) { j["bufferViews"][0]["byteOffset"] = 1000; },
     "reaches out"},
    {"a_view_whose_end_wraps_round",
     [](Json& j) { j["bufferViews"][0]["byteLength"] = 18446744073709551615u; }, "reaches out"},
    {"a_view_that_nothing_uses",
     [](Json& j) {
         j["bufferViews"].push_back({{"buffer", 0}, {"byteLength", 1000}});
     },
     "bufferViews[3]"},
    {"a_buffer_longer_than_its_bytes",
     [](Json& j) {
         j["buffers"] = {{{"byteLength", 1000}}};
     },
     "bytes of 1000"},
    {"a_buffer_without_bytes",
     [](Json& j) {
         j["buffers"] = {{{"byteLength", 80}}, {{"byteLength", 4}}};
     },
     "buffers[1] has 0 bytes of 4"},
    {"positions_that_are_no_vectors", [](Json& j) { j["accessors"][0]["type"] = "SCALAR"; },
     "type that its use"},
    {"normals_of_another_count", [](Json& j) { j["accessors"][1]["count"] = 2; },
     "2 elements for 3 vertices"},
    {"indices_of_floats",
     [](Json& j) {
         j["accessors"][2]["componentType"] = kFloat32;
         j["accessors"][2]["count"] = 1;
     },
     "no list of indices"},
    {"indices_with_a_sign", [](Json& j) { j["accessors"][2]["componentType"] = kInt16; },
     "no list of indices"},
    {"indices_that_are_vectors",
     [](Json& j) {
         j["accessors"][2]["type"] = "VEC3";
         j["accessors"][2]["count"] = 1;
     },
     "type that its use"},
    {"indices_behind_the_vertices",
     [](Json& j) {
         j["accessors"][0]["count"] = 2;
         j["accessors"][1]["count"] = 2;
     },
     "index 2 names none of 2 vertices"},
    {"a_mode_that_is_none", [](Json& j) { j["meshes"][0]["primitives"][0]["mode"] = 7; }, "mode 7"},
    {"sparse_values_without_a_view",
     [](Json& j) {
         j["accessors"][0]["sparse"] = {{"count", 1},
                                        {"indices", {{"bufferView", 2}, {"componentType", kUint16}}}};
     },
     "sparse is not complete"},
    {"sparse_indices_with_a_sign",
     [](Json& j) {
         j["accessors"][0]["sparse"] = {{"count", 1},
                                        {"indices", {{"bufferView", 2}, {"componentType", kInt16}}},
                                        {"values", {{"bufferView", 0}}}};
     },
     "sparse is not complete"},
    {"more_sparse_values_than_elements",
     [](Json& j) {
         j["accessors"][0]["sparse"] = {{"count", 4},
                                        {"indices", {{"bufferView", 0}, {"componentType", kUint8}}},
                                        {"values", {{"bufferView", 0}}}};
     },
     "more elements than the accessor"},
    {"sparse_values_behind_their_view",
     [](Json& j) {
         j["accessors"][0]["sparse"] = {{"count", 2},
                                        {"indices", {{"bufferView", 2}, {"componentType", kUint16}}},
                                        {"values", {{"bufferView", 0}, {"byteOffset", 13}}}};
     },
     "reaches out"},
    {"a_sparse_index_behind_the_elements",
     [](Json& j) {
         j["accessors"][0]["count"] = 2;
         j["accessors"][1]["count"] = 2;
         j["accessors"][0]["sparse"] = {
             {"count", 1},
             {"indices", {{"bufferView", 2}, {"byteOffset", 4}, {"componentType", kUint16}}},
             {"values", {{"bufferView", 0}}}};
     },
     "names element 2 of 2"},
    // shapes
    {"nodes_that_are_no_list", [](Json& j) { j["nodes"] = Json::object(); }, "nodes"},
    {"a_node_that_is_no_object", [](Json& j) { j["nodes"] = {1}; }, "nodes[0]"},
    {"a_name_that_is_a_number", [](Json& j) { j["nodes"][0]["name"] = 5; }, "nodes[0].name"},
    {"primitives_that_are_no_list", [](Json& j) { j["meshes"][0]["primitives"] = Json::object(); },
     "meshes[0].primitives"},
    {"what_nobody_asks_for_may_be_anything",
     [](Json& j) {
         j["extras"] = {{"nodes", 5}};
         j["nodes"][0]["extras"] = {1, {{"a", {}}}};
         j["animations"] = 7;
     },
     nullptr},
};

class Rejection : public testing::TestWithParam<JsonCase> {};

TEST_P(Rejection, IsForAReasonOfOneLine)
{
    GltfBuilder builder = sound();
    builder.json["buffers"] = {{{"byteLength", builder.bytes.size()}}};
    GetParam().spoil(builder.json);
    const auto outcome = readBytes(builder.glb());
    if (!GetParam().reason) {
        EXPECT_EQ(outcome.kind, ovdl::ReadOutcome::kRead) << outcome.reason;
        EXPECT_NE(outcome.document, nullptr);
        return;
    }
    EXPECT_EQ(outcome.kind, ovdl::ReadOutcome::kRejected);
    EXPECT_EQ(outcome.document, nullptr);
    EXPECT_THAT(outcome.reason, HasSubstr(GetParam().reason));
    EXPECT_THAT(outcome.reason, Not(HasSubstr("\n")));
}
INSTANTIATE_TEST_SUITE_P(Json, Rejection, testing::ValuesIn(kJson),
                         [](const auto& row) { return row.param.name; });

// ---------------------------------------------------------------------------------- the container

struct BytesCase {
    const char* name;
    std::string (*make)();
    const char* reason;
};
std::string patched(std::size_t offset, std::size_t value)
{
    std::string glb = sound().glb();
    glb.replace(offset, 4, GltfBuilder::word(value));
    return glb;
}
const BytesCase kBytes[] = {
    {"the_magic_alone", [] { return std::string("glTF"); }, "ends within its header"},
    {"a_header_alone", [] { return "glTF" + GltfBuilder::word(2) + GltfBuilder::word(12); },
     "header of a chunk"},
    {"a_container_of_version_one", [] { return patched(4, 1); }, "version 1"},
    {"a_length_behind_the_end", [] { return patched(8, 100000); }, "cut short"},
    {"a_length_within_the_header", [] { return patched(8, 11); }, "states a length"},
    {"a_length_within_a_chunk", [] { return patched(8, 40); }, "reaches behind the end"},
    {"a_chunk_of_four_gigabytes", [] { return patched(12, 0xFFFFFFFF); }, "reaches behind the end"},
    {"a_first_chunk_of_another_kind", [] { return patched(16, 0x004E4942); }, "not the JSON one"},
    {"an_empty_json_chunk",
     [] { return "glTF" + GltfBuilder::word(2) + GltfBuilder::word(20) + GltfBuilder::word(0) + "JSON"; },
     "JSON"},
};

class RejectedBytes : public testing::TestWithParam<BytesCase> {};

TEST_P(RejectedBytes, HaveAReason)
{
    const auto outcome = readBytes(GetParam().make());
    EXPECT_EQ(outcome.kind, ovdl::ReadOutcome::kRejected);
    EXPECT_THAT(outcome.reason, HasSubstr(GetParam().reason));
}
INSTANTIATE_TEST_SUITE_P(Rows, RejectedBytes, testing::ValuesIn(kBytes),
                         [](const auto& row) { return row.param.name; });

struct TextCase {
    const char* name;
    const char* text;
    const char* reason;
};
const TextCase kTexts[] = {
    {"an_open_object", R"({"asset":{"version":"2.0"})", "JSON"},
    {"an_open_text", R"({"asset":{"version":"2.0)", "JSON"},
    {"something_behind_the_end", R"({"asset":{"version":"2.0"}} {})", "JSON"},
    {"a_missing_comma", R"({"asset":{"version":"2.0"} "nodes":[]})", "JSON"},
    {"a_number_without_end", R"({"asset":{"version":"2.0"},"nodes":[{"translation":[0,0,1e999]}]})",
     "nodes[0]"},
    {"a_number_that_is_none", R"({"asset":{"version":"2.0"},"nodes":[{"translation":[0,0,NaN]}]})",
     "nodes[0]"},
    {"bytes_that_are_no_utf8", "{\"asset\":{\"version\":\"2.0\"},\"nodes\":[{\"name\":\"\xFF\"}]}", "JSON"},
    {"a_buffer_outside_the_folder",
     R"({"asset":{"version":"2.0"},"buffers":[{"byteLength":1,"uri":"../a.bin"}]})",
     "below the document's folder"},
    {"a_buffer_on_the_web",
     R"({"asset":{"version":"2.0"},"buffers":[{"byteLength":1,"uri":"http://a/b"}]})",
     "below the document's folder"},
    {"a_buffer_that_is_missing",
     R"({"asset":{"version":"2.0"},"buffers":[{"byteLength":1,"uri":"none.bin"}]})",
     "cannot be opened: none.bin"},
    {"a_buffer_that_is_a_folder", R"({"asset":{"version":"2.0"},"buffers":[{"byteLength":1,"uri":"."}]})",
     "cannot be opened"},
    {"a_buffer_that_is_too_short",
     R"({"asset":{"version":"2.0"},"buffers":[{"byteLength":5,"uri":"four.bin"}]})", "4 bytes of 5"},
    {"a_buffer_with_a_broken_data_uri",
     R"({"asset":{"version":"2.0"},"buffers":[{"byteLength":1,"uri":"data:;base64,*"}]})",
     "broken data URI"},
    {"a_buffer_with_a_short_data_uri",
     R"({"asset":{"version":"2.0"},"buffers":[{"byteLength":4,"uri":"data:;base64,YWJj"}]})",
     "3 bytes of 4"},
    {"a_buffer_without_a_uri", R"({"asset":{"version":"2.0"},"buffers":[{"byteLength":4}]})",
     "0 bytes of 4"},
};

class RejectedTexts : public testing::TestWithParam<TextCase> {};

TEST_P(RejectedTexts, HaveAReason)
{
    const Folder folder;
    folder.write("four.bin", "abcd");
    const auto outcome = read(folder.write("a.gltf", GetParam().text));
    EXPECT_EQ(outcome.kind, ovdl::ReadOutcome::kRejected);
    EXPECT_THAT(outcome.reason, HasSubstr(GetParam().reason));
}
INSTANTIATE_TEST_SUITE_P(Rows, RejectedTexts, testing::ValuesIn(kTexts),
                         [](const auto& row) { return row.param.name; });

TEST(RejectedText, ThatNamesAFileWithLineBreaksStillHasAReasonOfOneLine)
{
    const Folder folder;
    const auto outcome = read(folder.write(
        "a.gltf", R"({"asset":{"version":"2.0"},"buffers":[{"byteLength":1,"uri":"a\nb\u0007.bin"}]})"));
    EXPECT_EQ(outcome.kind, ovdl::ReadOutcome::kRejected);
    EXPECT_TRUE(std::none_of(outcome.reason.begin(), outcome.reason.end(),
                             [](unsigned char c) { return c < 0x20; }));
}

TEST(Rejected, IsAFileThatIsGone)
{
    const Folder folder;
    const auto outcome = read(folder.path("none.glb"));
    EXPECT_EQ(outcome.kind, ovdl::ReadOutcome::kRejected);
    EXPECT_THAT(outcome.reason, HasSubstr("cannot be opened"));
}

TEST(Rejected, IsNotADocumentWhoseImageIsMissing)
{
    GltfBuilder builder = sound();
    builder.add("images", {{"uri", "missing.png"}});
    builder.add("textures", {{"source", 0}});
    EXPECT_EQ(readBytes(builder.glb()).kind, ovdl::ReadOutcome::kRead);
}

}  // namespace
}  // namespace gltf_tests
