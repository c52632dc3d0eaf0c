// glTF documents built in code.
#pragma once

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

namespace gltf_tests {

using Json = nlohmann::json;

inline constexpr int kInt8 = 5120;
inline constexpr int kUint8 = 5121;
inline constexpr int kInt16 = 5122;
inline constexpr int kUint16 = 5123;
inline constexpr int kUint32 = 5125;
inline constexpr int kFloat32 = 5126;

template <class T>
constexpr int componentTypeOf()
{
    if constexpr (std::is_same_v<T, std::int8_t>)
        return kInt8;
    else if constexpr (std::is_same_v<T, std::uint8_t>)
        return kUint8;
    else if constexpr (std::is_same_v<T, std::int16_t>)
        return kInt16;
    else if constexpr (std::is_same_v<T, std::uint16_t>)
        return kUint16;
    else if constexpr (std::is_same_v<T, std::uint32_t>)
        return kUint32;
    else
        return kFloat32;
}

inline int componentsOf(const std::string& type)
{
    return type == "SCALAR" ? 1 : type.back() - '0';
}

/// Collects the JSON and the bytes of one document. `json` is open to be changed by hand; buffer 0 is
/// added when the document is written.
class GltfBuilder {
public:
    GltfBuilder() { json["asset"] = {{"version", "2.0"}}; }

    Json json;
    std::string bytes;

    /// Puts an object at the end of one of the document's lists and gives its index.
    int add(const char* list, Json object)
    {
        json[list].push_back(std::move(object));
        return static_cast<int>(json[list].size()) - 1;
    }

    int addView(const void* data, std::size_t size, std::size_t stride = 0)
    {
        bytes.resize((bytes.size() + 3) / 4 * 4);
        Json view = {{"buffer", 0}, {"byteOffset", bytes.size()}, {"byteLength", size}};
        if (stride != 0)
            view["byteStride"] = stride;
        bytes.append(static_cast<const char*>(data), size);
        return add("bufferViews", std::move(view));
    }

    int addAccessor(int view, int componentType, std::size_t count, const std::string& type,
                    std::size_t offset = 0)
    {
        return add("accessors", {{"bufferView", view},
                                 {"byteOffset", offset},
                                 {"componentType", componentType},
                                 {"count", count},
                                 {"type", type}});
    }

    /// A view and an accessor of packed values.
    template <class T>
    int addValues(const std::vector<T>& values, const std::string& type)
    {
        const int view = addView(values.data(), values.size() * sizeof(T));
        return addAccessor(view, componentTypeOf<T>(), values.size() / componentsOf(type), type);
    }

    int addMesh(Json primitive, const std::string& name = {})
    {
        Json mesh = {{"primitives", Json::array({std::move(primitive)})}};
        if (!name.empty())
            mesh["name"] = name;
        return add("meshes", std::move(mesh));
    }

    /// A node; its index goes into the scene unless `inScene` is false.
    int addNode(Json node, bool inScene = true)
    {
        const int index = add("nodes", std::move(node));
        if (inScene) {
            json["scene"] = 0;
            json["scenes"][0]["nodes"].push_back(index);
        }
        return index;
    }

    /// One triangle with normals; gives the primitive.
    Json triangle()
    {
        const int positions = addValues<float>({0, 0, 0, 1, 0, 0, 0, 1, 0}, "VEC3");
        const int normals = addValues<float>({0, 0, 1, 0, 0, 1, 0, 0, 1}, "VEC3");
        return {{"attributes", {{"POSITION", positions}, {"NORMAL", normals}}}};
    }
    int triangleMesh(const std::string& name = {}) { return addMesh(triangle(), name); }

    /// The binary form.
    std::string glb() const
    {
        Json whole = json;
        std::string binary = bytes;
        binary.resize((binary.size() + 3) / 4 * 4);
        if (!bytes.empty() && !whole.contains("buffers"))
            whole["buffers"] = {{{"byteLength", bytes.size()}}};
        std::string text = whole.dump();
        text.resize((text.size() + 3) / 4 * 4, ' ');
        std::string result = "glTF" + word(2) + word(0) + word(text.size()) + "JSON" + text;
        if (!binary.empty())
            result += word(binary.size()) + std::string("BIN\0", 4) + binary;
        const std::string length = word(result.size());
        std::copy(length.begin(), length.end(), result.begin() + 8);
        return result;
    }

    /// The text form, with its bytes in a file of that name, or in a data URI.
    std::string gltf(const std::string& uri) const
    {
        Json whole = json;
        whole["buffers"] = {{{"byteLength", bytes.size()}, {"uri", uri}}};
        return whole.dump();
    }
    std::string gltfEmbedded() const
    {
        return gltf("data:application/octet-stream;base64," + base64(bytes));
    }

    static std::string word(std::size_t value)
    {
        std::string result;
        for (int i = 0; i < 4; ++i)
            result += static_cast<char>(value >> (8 * i) & 0xFF);
        return result;
    }

    static std::string base64(const std::string& data)
    {
        const std::string digits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
        std::string result;
        for (std::size_t i = 0; i < data.size(); i += 3) {
            unsigned bits = 0;
            for (std::size_t k = 0; k < 3; ++k)
                bits = bits << 8 | (i + k < data.size() ? static_cast<unsigned char>(data[i + k]) : 0u);
            for (std::size_t k = 0; k < 4; ++k)
                result += i + k > data.size() ? '=' : digits[bits >> (18 - 6 * k) & 63];
        }
        return result;
    }
};

}  // namespace gltf_tests
