// A glTF document of squares with textures.
#pragma once

#include <cstring>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "Folder.h"

namespace tool_test {

/// One square for each material, side by side. `images` are references, as many as `materials` name.
/// Written as <stem>.gltf and <stem>.bin.
inline std::string writeTextured(const std::string& stem, const std::vector<std::string>& images,
                                 const nlohmann::json& materials, bool withCoordinates = true)
{
    using nlohmann::json;
    const float numbers[] = {0, 0, 0, 1, 0, 0, 0, 1, 0, 1, 1, 0, 0, 1, 1, 1, 0, 0, 1, 0};
    const std::uint16_t indices[] = {0, 1, 2, 2, 1, 3};
    std::string binary(sizeof numbers + sizeof indices, '\0');
    std::memcpy(binary.data(), numbers, sizeof numbers);
    std::memcpy(binary.data() + sizeof numbers, indices, sizeof indices);
    const std::string name = stem.substr(stem.rfind('/') + 1);
    json document = {{"asset", {{"version", "2.0"}}},
                     {"extensionsUsed", {"KHR_texture_transform"}},
                     {"scene", 0},
                     {"materials", materials},
                     {"buffers", {{{"uri", name + ".bin"}, {"byteLength", binary.size()}}}},
                     {"bufferViews",
                      {{{"buffer", 0}, {"byteLength", 48}},
                       {{"buffer", 0}, {"byteOffset", 48}, {"byteLength", 32}},
                       {{"buffer", 0}, {"byteOffset", 80}, {"byteLength", 12}}}},
                     {"accessors",
                      {{{"bufferView", 0},
                        {"componentType", 5126},
                        {"count", 4},
                        {"type", "VEC3"},
                        {"min", {0, 0, 0}},
                        {"max", {1, 1, 0}}},
                       {{"bufferView", 1}, {"componentType", 5126}, {"count", 4}, {"type", "VEC2"}},
                       {{"bufferView", 2}, {"componentType", 5123}, {"count", 6}, {"type", "SCALAR"}}}}};
    json attributes = {{"POSITION", 0}};
    if (withCoordinates)
        attributes["TEXCOORD_0"] = 1;
    for (std::size_t i = 0; i < materials.size(); ++i) {
        document["nodes"].push_back({{"mesh", i}, {"translation", {2 * i, 0, 0}}});
        document["scenes"][0]["nodes"].push_back(i);
        document["meshes"].push_back(
            {{"primitives", {{{"attributes", attributes}, {"indices", 2}, {"material", i}}}}});
    }
    for (std::size_t i = 0; i < images.size(); ++i) {
        document["images"].push_back({{"uri", images[i]}});
        document["textures"].push_back({{"source", i}});
    }
    writeFile(stem + ".bin", binary);
    writeFile(stem + ".gltf", document.dump());
    return stem + ".gltf";
}

/// A material that shows an image, as it lies or moved.
inline nlohmann::json textured(int texture, const nlohmann::json& transform = nlohmann::json())
{
    nlohmann::json info = {{"index", texture}};
    if (!transform.is_null())
        info["extensions"]["KHR_texture_transform"] = transform;
    return {{"pbrMetallicRoughness", {{"baseColorTexture", info}}}};
}

}  // namespace tool_test
