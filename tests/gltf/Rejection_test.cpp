// Documents that are recognised and then refused, each for its reason; and some that look as if they
// should be, and are not.
#include <gmock/gmock.h>

#include <sstream>

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
    /// Changes, one a line: "/path = value" puts a value there, "- /path" takes one away.
    const char* changes;
    const char* reason;  // Null: it opens.
};
const JsonCase kJson[] = {
    {"nothing_spoilt", "", nullptr},
    // asset
    {"no_asset", "- /asset", "asset.version is missing"},
    {"no_version", "/asset = {}", "asset.version is missing"},
    {"version_one", R"(/asset/version = "1.0")", "only glTF 2"},
    {"version_three", R"(/asset/version = "3.0")", "only glTF 2"},
    {"version_two_and_a_half", R"(/asset/version = "2.5")", nullptr},
    {"a_version_that_is_none", R"(/asset/version = "two")", "is no version"},
    {"a_version_with_a_tail", R"(/asset/version = "2.0x")", "is no version"},
    {"a_version_without_a_minor", R"(/asset/version = "2")", "is no version"},
    {"a_version_that_is_a_number", "/asset/version = 2.0", "asset.version"},
    {"minimum_version_two", R"(/asset/minVersion = "2.0")", nullptr},
    {"minimum_version_beyond_two", R"(/asset/minVersion = "2.1")", "minVersion"},
    // extensions
    {"an_unknown_required_extension", R"(/extensionsRequired = ["KHR_draco_mesh_compression"])",
     "KHR_draco_mesh_compression"},
    {"an_unknown_one_among_known_ones", R"(/extensionsRequired = ["KHR_mesh_quantization", "EXT_secret"])",
     "EXT_secret"},
    {"known_required_extensions",
     R"(/extensionsRequired = ["KHR_lights_punctual", "KHR_materials_emissive_strength", "KHR_materials_unlit", "KHR_materials_pbrSpecularGlossiness", "KHR_materials_transmission", "KHR_mesh_quantization", "KHR_texture_transform"])",
     nullptr},
    {"an_unknown_extension_that_is_only_used", R"(/extensionsUsed = ["EXT_secret"])", nullptr},
    // references
    {"a_scene_that_is_not_there", "/scene = 1", "scene 1 of 1"},
    {"a_node_that_is_not_there", "/scenes/0/nodes = [7]", "node 7 of 1"},
    {"a_child_that_is_not_there", "/nodes/0/children = [1]", "node 1 of 1"},
    {"a_mesh_that_is_not_there", "/nodes/0/mesh = 1", "mesh 1 of 1"},
    {"a_camera_that_is_not_there", "/nodes/0/camera = 0", "camera 0 of 0"},
    {"a_light_that_is_not_there", R"(/nodes/0/extensions = {"KHR_lights_punctual": {"light": 0}})",
     "light 0 of 0"},
    {"a_material_that_is_not_there", "/meshes/0/primitives/0/material = 0", "material 0 of 0"},
    {"a_position_that_is_not_there", "/meshes/0/primitives/0/attributes/POSITION = 9", "accessor 9"},
    {"a_normal_that_is_not_there", "/meshes/0/primitives/0/attributes/NORMAL = 9", "accessor 9"},
    {"texture_coordinates_that_are_not_there", "/meshes/0/primitives/0/attributes/TEXCOORD_7 = 9",
     "accessor 9"},
    {"indices_that_are_not_there", "/meshes/0/primitives/0/indices = 9", "accessor 9"},
    {"a_view_that_is_not_there", "/accessors/0/bufferView = 9", "buffer view 9"},
    {"a_buffer_that_is_not_there", "/bufferViews/0/buffer = 1", "buffer 1 of 1"},
    {"a_view_without_a_buffer", "- /bufferViews/0/buffer", "names no buffer"},
    {"a_texture_that_is_not_there",
     R"(/materials = [{"pbrMetallicRoughness": {"baseColorTexture": {"index": 0}}}])", "texture 0 of 0"},
    {"an_image_that_is_not_there", R"(/textures = [{"source": 0}])", "image 0 of 0"},
    {"a_view_of_an_image_that_is_not_there", R"(/images = [{"bufferView": 9}])", "buffer view 9"},
    {"a_negative_reference", "/nodes/0/mesh = -1", "no whole number"},
    {"a_broken_reference", "/nodes/0/mesh = 0.5", "no whole number"},
    {"a_reference_beyond_31_bits", "/nodes/0/mesh = 2147483648", "out of range"},
    {"a_reference_written_as_a_real", "/nodes/0/mesh = 0.0", nullptr},
    // the tree
    {"a_node_below_itself", "/nodes/0/children = [0]", "cycle"},
    {"a_cycle_beside_the_scene", "/nodes/- = {\"children\": [2]}\n/nodes/- = {\"children\": [1]}", "cycle"},
    {"a_node_with_two_parents",
     "/nodes/- = {\"children\": [3]}\n/nodes/- = {\"children\": [3]}\n/nodes/- = {}",
     "nodes[3] has two parents"},
    {"a_child_twice", "/nodes/- = {\"children\": [2, 2]}\n/nodes/- = {}", "nodes[2] has two parents"},
    {"a_scene_that_names_a_node_twice", "/scenes/0/nodes = [0, 0]", "twice"},
    {"a_scene_that_names_a_node_below_another", R"(/nodes/- = {"children": [0]})", "hangs under another"},
    // placements
    {"a_matrix_of_nine", "/nodes/0/matrix = [1,0,0,0,1,0,0,0,1]", "too few"},
    {"a_matrix_of_seventeen", "/nodes/0/matrix = [1,0,0,0,0,1,0,0,0,0,1,0,0,0,0,1,1]", "too many"},
    {"a_matrix_that_projects", "/nodes/0/matrix = [1,0,0,0,0,1,0,0,0,0,1,-1,0,0,0,0]", "not affine"},
    {"a_matrix_of_words", R"(/nodes/0/matrix = ["NaN"])", "nodes[0].matrix"},
    {"a_rotation_of_three", "/nodes/0/rotation = [0,0,1]", "too few"},
    {"places_that_overflow_when_multiplied",
     "/nodes/0/children = [1]\n/nodes/0/scale = [1e300,1,1]\n/nodes/- = {\"mesh\": 0, \"scale\": "
     "[1e300,1,1]}",
     "not finite"},
    // data
    {"an_accessor_of_no_type", "- /accessors/0/type", "no known type"},
    {"an_accessor_of_an_unknown_type", R"(/accessors/0/type = "VEC5")", "no known type"},
    {"an_accessor_of_an_unknown_component", "/accessors/0/componentType = 5124", "no known type"},
    {"an_accessor_longer_than_its_view", "/accessors/0/count = 4", "reaches out"},
    {"an_accessor_that_begins_behind_its_view", "/accessors/0/byteOffset = 37", "reaches out"},
    {"an_accessor_that_ends_behind_its_view", "/accessors/0/byteOffset = 1", "reaches out"},
    {"an_offset_that_wraps_round", "/accessors/0/byteOffset = 18446744073709551615", "reaches out"},
    {"a_count_that_wraps_round", "/accessors/0/count = 1537228672809129302", "more elements"},
    {"a_stride_that_wraps_round", "/bufferViews/0/byteStride = 9223372036854775808", "reaches out"},
    {"four_gigabytes_of_zeros", "- /accessors/0/bufferView\n/accessors/0/count = 358000000",
     "more elements"},
    {"a_view_longer_than_its_buffer", "/bufferViews/0/byteLength = 1000", "reaches out"},
    {"a_view_that_begins_behind_its_buffer", "/bufferViews/0/byteOffset = 1000", "reaches out"},
    {"a_view_whose_end_wraps_round", "/bufferViews/0/byteLength = 18446744073709551615", "reaches out"},
    {"a_view_that_nothing_uses", R"(/bufferViews/- = {"buffer": 0, "byteLength": 1000})", "bufferViews[3]"},
    {"a_buffer_longer_than_its_bytes", R"(/buffers = [{"byteLength": 1000}])", "bytes of 1000"},
    {"a_buffer_without_bytes", R"(/buffers/- = {"byteLength": 4})", "buffers[1] has 0 bytes of 4"},
    {"positions_that_are_no_vectors", R"(/accessors/0/type = "SCALAR")", "type that its use"},
    {"normals_of_another_count", "/accessors/1/count = 2", "2 elements for 3 vertices"},
    {"indices_of_floats", "/accessors/2/componentType = 5126\n/accessors/2/count = 1",
     "no list of indices"},
    {"indices_with_a_sign", "/accessors/2/componentType = 5122", "no list of indices"},
    {"indices_that_are_vectors", "/accessors/2/type = \"VEC3\"\n/accessors/2/count = 1",
     "type that its use"},
    {"indices_behind_the_vertices", "/accessors/0/count = 2\n/accessors/1/count = 2",
     "index 2 names none of 2 vertices"},
    {"a_mode_that_is_none", "/meshes/0/primitives/0/mode = 7", "mode 7"},
    {"sparse_values_without_a_view",
     R"(/accessors/0/sparse = {"count": 1, "indices": {"bufferView": 2, "componentType": 5123}})",
     "sparse is not complete"},
    {"sparse_indices_with_a_sign",
     R"(/accessors/0/sparse = {"count": 1, "indices": {"bufferView": 2, "componentType": 5122}, "values": {"bufferView": 0}})",
     "sparse is not complete"},
    {"more_sparse_values_than_elements",
     R"(/accessors/0/sparse = {"count": 4, "indices": {"bufferView": 0, "componentType": 5121}, "values": {"bufferView": 0}})",
     "more elements than the accessor"},
    {"sparse_values_behind_their_view",
     R"(/accessors/0/sparse = {"count": 2, "indices": {"bufferView": 2, "componentType": 5123}, "values": {"bufferView": 0, "byteOffset": 13}})",
     "reaches out"},
    {"sparse_indices_behind_their_view",
     R"(/accessors/0/sparse = {"count": 3, "indices": {"bufferView": 2, "byteOffset": 1, "componentType": 5123}, "values": {"bufferView": 0}})",
     "reaches out"},
    {"a_sparse_index_behind_the_elements",
     "/accessors/0/count = 2\n/accessors/1/count = 2\n"
     R"(/accessors/0/sparse = {"count": 1, "indices": {"bufferView": 2, "byteOffset": 4, "componentType": 5123}, "values": {"bufferView": 0}})",
     "names element 2 of 2"},
    // shapes
    {"nodes_that_are_no_list", "/nodes = {}", "nodes"},
    {"a_node_that_is_no_object", "/nodes = [1]", "nodes[0]"},
    {"a_name_that_is_a_number", "/nodes/0/name = 5", "nodes[0].name"},
    {"primitives_that_are_no_list", "/meshes/0/primitives = {}", "meshes[0].primitives"},
    {"what_nobody_asks_for_may_be_anything",
     "/extras = {\"nodes\": 5}\n/nodes/0/extras = [1, {\"a\": {}}]\n/animations = 7", nullptr},
};

void change(Json& json, const std::string& changes)
{
    std::istringstream lines(changes);
    Json patch = Json::array();
    for (std::string line; std::getline(lines, line);) {
        if (line[0] == '-') {
            patch.push_back({{"op", "remove"}, {"path", line.substr(2)}});
            continue;
        }
        const std::size_t equals = line.find(" = ");
        patch.push_back({{"op", "add"},
                         {"path", line.substr(0, equals)},
                         {"value", Json::parse(line.substr(equals + 3))}});
    }
    json = json.patch(patch);
}

class Rejection : public testing::TestWithParam<JsonCase> {};

TEST_P(Rejection, IsForAReasonOfOneLine)
{
    GltfBuilder builder = sound();
    builder.json["buffers"] = {{{"byteLength", builder.bytes.size()}}};
    change(builder.json, GetParam().changes);
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
