#include "tools/GltfFile.h"

#include <algorithm>
#include <bit>
#include <string_view>
#include <utility>

namespace tool {
namespace {

// The values that glTF has from the graphics interface.
constexpr int kFloat = 5126;
constexpr int kUnsignedInt = 5125;
constexpr int kArrayBuffer = 34962;
constexpr int kElementArrayBuffer = 34963;

std::size_t componentsOf(std::string_view type)
{
    return type == "SCALAR" ? 1 : static_cast<std::size_t>(type.back() - '0');
}

// Only what a graphics card reads as vertices or indices has a target, and only vertices a stride.
void addUse(GltfFile::View view, Json& json)
{
    switch (view) {
    case GltfFile::kPositions:
    case GltfFile::kNormals:
        json["byteStride"] = 12;
        json["target"] = kArrayBuffer;
        break;
    case GltfFile::kUvs:
        json["byteStride"] = 8;
        json["target"] = kArrayBuffer;
        break;
    case GltfFile::kIndices:
        json["target"] = kElementArrayBuffer;
        break;
    case GltfFile::kSamples:
        break;
    }
}

void addList(const char* name, const JsonList& list, std::string& text)
{
    if (list.count() > 0)
        text += std::string(",\"") + name + "\":" + list.text();
}

std::uint64_t binarySize(const GltfDocument& document)
{
    std::uint64_t size = 4 * (std::uint64_t(document.positions.size()) + document.normals.size() +
                              document.uvs.size() + document.samples.size() + document.indices.size());
    for (const auto& image : document.images)
        size += image.size();
    return size;
}

std::uint64_t paddedTo4(std::uint64_t size)
{
    return (size + 3) / 4 * 4;
}

void write32(std::uint64_t value, std::ostream& out)
{
    const char bytes[4] = {static_cast<char>(value), static_cast<char>(value >> 8),
                           static_cast<char>(value >> 16), static_cast<char>(value >> 24)};
    out.write(bytes, 4);
}

template <class Number>
void writeNumbers(const std::vector<Number>& numbers, std::ostream& out)
{
    static_assert(std::endian::native == std::endian::little, "the file's numbers are little-endian");
    out.write(reinterpret_cast<const char*>(numbers.data()),
              static_cast<std::streamsize>(numbers.size() * sizeof(Number)));
}

}  // namespace

int JsonList::add(const Json& element)
{
    text_ += count_ ? "," : "";
    text_ += element.dump();
    return count_++;
}

int GltfFile::addFloats(View view, const char* type, const std::vector<float>& values, const Json& bounds)
{
    std::vector<float>& all = floatsOf(view);
    const std::uint64_t offset = all.size() * sizeof(float);
    all.insert(all.end(), values.begin(), values.end());
    return addAccessor(view, type, kFloat, values.size() / componentsOf(type), offset, bounds);
}

int GltfFile::addIndices(const std::vector<std::uint32_t>& values)
{
    const std::uint64_t offset = document_.indices.size() * sizeof(std::uint32_t);
    document_.indices.insert(document_.indices.end(), values.begin(), values.end());
    return addAccessor(kIndices, "SCALAR", kUnsignedInt, values.size(), offset, Json::object());
}

int GltfFile::addImage(std::vector<unsigned char> bytes, const char* mediaType)
{
    images_.push_back({bytes.size(), mediaType});
    bytes.resize(paddedTo4(bytes.size()));
    document_.images.push_back(std::move(bytes));
    return static_cast<int>(images_.size()) - 1;
}

std::vector<float>& GltfFile::floatsOf(View view)
{
    switch (view) {
    case kPositions:
        return document_.positions;
    case kNormals:
        return document_.normals;
    case kUvs:
        return document_.uvs;
    default:
        return document_.samples;
    }
}

int GltfFile::addAccessor(View view, const char* type, int componentType, std::size_t count,
                          std::uint64_t offset, const Json& bounds)
{
    Json accessor{{"bufferView", viewIndex(view)},
                  {"byteOffset", offset},
                  {"componentType", componentType},
                  {"count", count},
                  {"type", type}};
    accessor.update(bounds);
    return accessors_.add(accessor);
}

// Views are numbered as they are first used: one without bytes must not be written.
int GltfFile::viewIndex(View view)
{
    const auto found = std::find(views_.begin(), views_.end(), view);
    if (found != views_.end())
        return static_cast<int>(found - views_.begin());
    views_.push_back(view);
    return static_cast<int>(views_.size()) - 1;
}

std::uint64_t GltfFile::byteCount(View view) const
{
    if (view == kIndices)
        return document_.indices.size() * sizeof(std::uint32_t);
    return const_cast<GltfFile*>(this)->floatsOf(view).size() * sizeof(float);
}

std::uint64_t GltfFile::byteOffset(View view) const
{
    std::uint64_t offset = 0;
    for (int before = 0; before < view; ++before)
        offset += byteCount(static_cast<View>(before));
    return offset;
}

std::string GltfFile::viewsText() const
{
    JsonList list;
    for (const View view : views_) {
        Json json{{"buffer", 0}, {"byteOffset", byteOffset(view)}, {"byteLength", byteCount(view)}};
        addUse(view, json);
        list.add(json);
    }
    std::uint64_t offset = byteOffset(kIndices) + byteCount(kIndices);
    for (std::size_t i = 0; i < images_.size(); ++i) {
        list.add({{"buffer", 0}, {"byteOffset", offset}, {"byteLength", images_[i].length}});
        offset += document_.images[i].size();
    }
    return list.text();
}

std::string GltfFile::imagesText() const
{
    JsonList list;
    for (std::size_t i = 0; i < images_.size(); ++i)
        list.add({{"mimeType", images_[i].mediaType}, {"bufferView", views_.size() + i}});
    return list.text();
}

void GltfFile::addExtensions(std::string& text) const
{
    if (!extensions_.empty())
        text += ",\"extensionsUsed\":" + Json(extensions_).dump();
    if (lights.count() > 0)
        text += R"(,"extensions":{"KHR_lights_punctual":{"lights":)" + lights.text() + "}}";
}

std::string GltfFile::wholeJson(const Json& scene) const
{
    std::string text = R"({"asset":{"version":"2.0","generator":"raylume-dl )" RAYLUME_VERSION R"("})";
    addExtensions(text);
    text += R"(,"scene":0,"scenes":[)" + scene.dump() + "]";
    addList("nodes", nodes, text);
    addList("meshes", meshes, text);
    addList("materials", materials, text);
    addList("samplers", samplers, text);
    addList("textures", textures, text);
    if (!images_.empty())
        text += ",\"images\":" + imagesText();
    addList("animations", animations, text);
    addList("accessors", accessors_, text);
    if (!views_.empty() || !images_.empty()) {
        text += R"(,"bufferViews":)" + viewsText();
        text += R"(,"buffers":[{"byteLength":)" + std::to_string(binarySize(document_)) + "}]";
    }
    return text + "}";
}

GltfDocument GltfFile::finish(const Json& scene)
{
    document_.json = wholeJson(scene);
    document_.notes = notes;
    return std::move(document_);
}

std::uint64_t glbSize(const GltfDocument& document)
{
    const std::uint64_t binary = binarySize(document);
    return 12 + 8 + paddedTo4(document.json.size()) + (binary ? 8 + binary : 0);
}

void writeGlb(const GltfDocument& document, std::ostream& out)
{
    const std::uint64_t jsonSize = paddedTo4(document.json.size());
    out.write("glTF", 4);
    write32(2, out);
    write32(glbSize(document), out);
    write32(jsonSize, out);
    out.write("JSON", 4);
    out << document.json << std::string(jsonSize - document.json.size(), ' ');
    if (const std::uint64_t binary = binarySize(document)) {
        write32(binary, out);
        out.write("BIN\0", 4);
        writeNumbers(document.positions, out);
        writeNumbers(document.normals, out);
        writeNumbers(document.uvs, out);
        writeNumbers(document.samples, out);
        writeNumbers(document.indices, out);
        for (const auto& image : document.images)
            out.write(reinterpret_cast<const char*>(image.data()),
                      static_cast<std::streamsize>(image.size()));
    }
}

}  // namespace tool
