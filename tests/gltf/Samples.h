// A document with something of everything, for tests and fuzzing.
#pragma once

#include "tests/gltf/GltfBuilder.h"

namespace gltf_tests {

// Sparse, strided and normalised accessors, a light, a camera, a texture and nested nodes.
inline GltfBuilder everything()
{
    GltfBuilder b;
    const std::vector<float> strided = {0, 0, 0, 9, 1, 0, 0, 9, 0, 1, 0, 9, 1, 1, 0, 9, 2, 1, 1};
    const int positions =
        b.addAccessor(b.addView(strided.data(), strided.size() * 4, 16), kFloat32, 5, "VEC3");
    const int normals =
        b.addValues<std::int8_t>({0, 0, 127, 0, 0, 127, 0, 0, 127, 0, 0, 127, 0, 127, 0}, "VEC3");
    b.json["accessors"][normals]["normalized"] = true;
    const int uvs = b.addValues<std::uint16_t>({0, 0, 65535, 0, 0, 65535, 65535, 65535, 1, 2}, "VEC2");
    b.json["accessors"][uvs]["normalized"] = true;
    const std::vector<std::uint16_t> places = {1, 4};
    const std::vector<float> values = {1, 0, 0.5f, 2, 1, 3};
    const int sparse = b.addAccessor(b.json["accessors"][positions]["bufferView"], kFloat32, 5, "VEC3");
    b.json["accessors"][sparse]["sparse"] = {
        {"count", 2},
        {"indices", {{"bufferView", b.addView(places.data(), 4)}, {"componentType", kUint16}}},
        {"values", {{"bufferView", b.addView(values.data(), 24)}}}};
    const int list = b.addValues<std::uint16_t>({0, 1, 2, 2, 1, 3, 3, 1, 4}, "SCALAR");
    const int strip = b.addValues<std::uint8_t>({0, 1, 2, 3, 4}, "SCALAR");
    const int fan = b.addValues<std::uint32_t>({0, 1, 3, 2}, "SCALAR");
    b.add("images", {{"uri", "wood%20grain.png"}});
    b.add("textures", {{"source", 0}});
    Json wood = {{"name", "wood"}, {"alphaMode", "BLEND"}, {"emissiveFactor", {0, 0.5, 0}}};
    wood["pbrMetallicRoughness"] = {{"baseColorFactor", {0.5, 0.25, 0.125, 0.5}},
                                    {"baseColorTexture", {{"index", 0}, {"texCoord", 0}}},
                                    {"metallicFactor", 0.5},
                                    {"roughnessFactor", 0.25}};
    b.add("materials", wood);
    b.add("cameras", {{"type", "perspective"}, {"perspective", {{"yfov", 1}, {"znear", 0.5}}}});
    b.json["extensions"]["KHR_lights_punctual"]["lights"] = {
        {{"type", "spot"}, {"color", {1, 0.5, 0}}, {"spot", {{"outerConeAngle", 0.5}}}}};
    b.json["extensionsRequired"] = {"KHR_lights_punctual"};
    const Json attributes = {{"POSITION", positions}, {"NORMAL", normals}, {"TEXCOORD_0", uvs}};
    const Json primitives = {{{"attributes", attributes}, {"indices", list}, {"material", 0}},
                             {{"attributes", {{"POSITION", sparse}}}, {"indices", strip}, {"mode", 5}},
                             {{"attributes", attributes}, {"indices", fan}, {"mode", 6}},
                             {{"attributes", {{"POSITION", positions}}}, {"mode", 0}}};
    b.add("meshes", {{"name", "mesh/1"}, {"primitives", primitives}});
    Json lamp = {{"name", "lamp"}, {"rotation", {0, 0, 0.6, 0.8}}};
    lamp["extensions"]["KHR_lights_punctual"]["light"] = 0;
    b.add("nodes", lamp);
    b.add("nodes", {{"name", "eye"}, {"camera", 0}, {"translation", {1, 2, 3}}});
    b.add("nodes", {{"mesh", 0}, {"children", {0, 1}}, {"scale", {1, 2, 1}}});
    b.add("nodes",
          {{"mesh", 0}, {"name", "leaf"}, {"matrix", {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 5, 6, 7, 1}}});
    b.add("nodes", {{"name", "root"}, {"children", {2, 3}}});
    b.json["scenes"] = {{{"nodes", {4}}}};
    b.json["scene"] = 0;
    return b;
}

}  // namespace gltf_tests
