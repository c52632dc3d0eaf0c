// A glTF 2.0 file while it is being put together, and its binary form
// (https://www.khronos.org/gltf/).
#pragma once

#include <cstdint>
#include <optional>
#include <ostream>
#include <set>
#include <string>
#include <vector>

#include "tools/Values.h"

namespace tool {

/// What a glTF file cannot hold.
struct ExportNotes {
    long long trianglesWithoutPlace = 0;  ///< Left out: a coordinate is infinite or no number.
    long long instancesWithoutPlace = 0;  ///< Without a mesh: the placement is infinite or no number.
    long long lightsWithoutPlace = 0;     ///< Left out: a position or a direction is no finite number.
    long long lightsOfOtherTypes = 0;     ///< Left out: glTF has no such light.
    /// Keys whose placement is sheared, whose numbers are not finite, or whose time is that of the key
    /// before; all keys of an instance that is itself sheared or without a place.
    long long placementKeysLeftOut = 0;
    long long imagesMissing = 0;         ///< Left out: they are nowhere where the search looks.
    long long imagesUnreadable = 0;      ///< Left out: there is a file, but no image that can be read.
    long long imagesEmbedded = 0;        ///< Left out: they lie in the document and are no PNG or JPEG.
    long long texturesWithoutPlace = 0;  ///< Left out: their surfaces have no texture coordinates.
    long long decalsWithoutPlace = 0;    ///< Left out: no mapping, or one without finite numbers.
    long long decalsBesideFaces = 0;     ///< Left out: the image lies beside its face.
};

/// A model in the form of a glTF file. Holds a copy of all geometry.
///
/// Units: metres, in the model's axes.
struct GltfDocument {
    std::string json;
    std::vector<float> positions;
    std::vector<float> normals;
    std::vector<float> uvs;
    std::vector<float> samples;  ///< Of animations: times and values.
    std::vector<std::uint32_t> indices;
    std::vector<std::vector<unsigned char>> images;  ///< Whole files, each of a length that 4 divides.
    ExportNotes notes;
};

/// A JSON array that is kept as text: the objects of a large model would take many times its room.
class JsonList {
public:
    /// Gives the element's index.
    int add(const Json& element);
    int count() const { return count_; }
    std::string text() const { return "[" + text_ + "]"; }

private:
    std::string text_;
    int count_ = 0;
};

/// Collects what a file consists of; the lists are written in this order, those that stay empty not
/// at all (the format forbids empty lists).
class GltfFile {
public:
    // In this order in the buffer.
    enum View { kPositions, kNormals, kUvs, kSamples, kIndices };

    /// `values` become the elements of a new accessor of that type ("SCALAR", "VEC3", ...). `bounds` has
    /// its "min" and "max", or nothing.
    int addFloats(View view, const char* type, const std::vector<float>& values,
                  const Json& bounds = Json::object());
    int addIndices(const std::vector<std::uint32_t>& values);

    /// `bytes` is a whole file of that media type. Gives the image's index.
    int addImage(std::vector<unsigned char> bytes, const char* mediaType);

    void useExtension(const char* name) { extensions_.insert(name); }

    /// The whole file, its one scene with these root nodes. Nothing can be added afterwards.
    GltfDocument finish(const Json& scene);

    JsonList nodes;
    JsonList meshes;
    JsonList materials;
    JsonList samplers;
    JsonList textures;
    JsonList lights;
    JsonList animations;
    ExportNotes notes;

private:
    std::vector<float>& floatsOf(View view);
    int addAccessor(View view, const char* type, int componentType, std::size_t count, std::uint64_t offset,
                    const Json& bounds);
    int viewIndex(View view);
    std::uint64_t byteCount(View view) const;
    std::uint64_t byteOffset(View view) const;
    std::string viewsText() const;
    std::string imagesText() const;
    void addExtensions(std::string& text) const;
    std::string wholeJson(const Json& scene) const;

    GltfDocument document_;
    struct Image {
        std::size_t length;
        const char* mediaType;
    };

    JsonList accessors_;
    std::vector<View> views_;    // as they were first used; images have theirs behind these
    std::vector<Image> images_;  // beside their bytes in the document
    std::set<std::string> extensions_;
};

/// The number of bytes that writeGlb writes.
std::uint64_t glbSize(const GltfDocument& document);
/// What a binary glTF file can hold: its lengths have 32 bits.
inline constexpr std::uint64_t kLargestGlb = 0xFFFFFFFFu;

/// Writes the document as a binary file (.glb); glbSize() must not be above kLargestGlb. Failures
/// are left in the state of the stream.
void writeGlb(const GltfDocument& document, std::ostream& out);

}  // namespace tool
