// Reads documents through the format itself, and takes what comes back apart.
#pragma once

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <memory>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "raylume/platform/Text.h"
#include "reader/DocumentFormat.h"

namespace gltf_tests {

/// A folder of its own for each test, gone with it.
class Folder {
public:
    Folder()
    {
        static int count = 0;
        // In memory, where there is such a folder: some tests write thousands of files.
        const std::filesystem::path inMemory = "/dev/shm";
        const auto parent =
            std::filesystem::exists(inMemory) ? inMemory : std::filesystem::temp_directory_path();
        path_ =
            parent / ("raylume-gltf-" + std::to_string(processNumber()) + "-" + std::to_string(++count));
        std::filesystem::create_directories(path_);
    }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;
    ~Folder() { std::filesystem::remove_all(path_); }

    /// Writes a file and gives its path.
    std::wstring write(const std::string& name, const std::string& content) const
    {
        const std::filesystem::path file = path_ / std::filesystem::u8path(name);
        std::filesystem::create_directories(file.parent_path());
        std::ofstream(file, std::ios::binary) << content;
        return platform::fromUtf8(file.string());
    }
    std::wstring path(const std::string& name) const { return platform::fromUtf8((path_ / name).string()); }

private:
    // Tests of several processes run side by side.
    static unsigned processNumber()
    {
        static const unsigned number = std::random_device{}();
        return number;
    }

    std::filesystem::path path_;
};

/// What a read says while it goes on, and how it is told to stop.
class Context : public ovdl::ReadContext {
public:
    bool acceptVersion(unsigned long version) override
    {
        versions.push_back(version);
        return acceptsVersion;
    }
    void progress(float done) override { progressed.push_back(done); }
    bool cancelled() override { return ++questions > cancelAfter; }

    bool acceptsVersion = true;
    long cancelAfter = 1000000000;
    long questions = 0;
    std::vector<unsigned long> versions;
    std::vector<float> progressed;
};

inline ovdl::ReadOutcome read(const std::wstring& path, Context& context)
{
    return ovdl::makeGltfFormat()->read(path, context);
}
inline ovdl::ReadOutcome read(const std::wstring& path)
{
    Context context;
    return read(path, context);
}
/// Reads bytes as the document "model.glb" of a folder of their own.
inline ovdl::ReadOutcome readBytes(const std::string& bytes)
{
    const Folder folder;
    return read(folder.write("model.glb", bytes));
}

/// One vertex as its bits: position, normal and, if there are any, texture coordinates.
using Vertex = std::vector<float>;
using Triangle = std::array<Vertex, 3>;

inline Vertex vertexOf(const uoTempFaceTessData_c& face, long long index)
{
    Vertex result(face.points.data + 3 * index, face.points.data + 3 * index + 3);
    result.insert(result.end(), face.normals.data + 3 * index, face.normals.data + 3 * index + 3);
    if (face.hasUVs)
        result.insert(result.end(), face.uvs.data + 2 * index, face.uvs.data + 2 * index + 2);
    return result;
}

/// The same triangle, whichever corner it is written from; the winding stays.
template <class Corner>
std::array<Corner, 3> fromLowest(std::array<Corner, 3> triangle)
{
    const auto lowest = std::min_element(triangle.begin(), triangle.end());
    std::rotate(triangle.begin(), lowest, triangle.end());
    return triangle;
}

/// The triangles of a face's strips, sorted.
inline std::multiset<Triangle> trianglesOf(const uoTempFaceTessData_c& face)
{
    std::multiset<Triangle> result;
    long long first = 0;
    for (std::int32_t strip = 0; strip < face.stripCount; ++strip) {
        const std::int32_t length = face.stripLengths.data[strip];
        for (std::int32_t i = 0; i + 2 < length; ++i) {
            const long long at = first + i;
            const int odd = i % 2;
            result.insert(fromLowest(
                Triangle{vertexOf(face, at + odd), vertexOf(face, at + 1 - odd), vertexOf(face, at + 2)}));
        }
        first += length;
    }
    return result;
}

inline long triangleCount(const uoTempFaceTessData_c& face)
{
    long count = 0;
    for (std::int32_t strip = 0; strip < face.stripCount; ++strip)
        count += face.stripLengths.data[strip] - 2;
    return count;
}

inline long vertexCount(const uoTempFaceTessData_c& face)
{
    long count = 0;
    for (std::int32_t strip = 0; strip < face.stripCount; ++strip)
        count += face.stripLengths.data[strip];
    return count;
}

/// The tessellation of a document's first component, or of the part that it is.
inline uoTempPartTessData_c& firstPart(ovdl::ReadDocument& document)
{
    return document.part() ? *document.part()->tessData : *document.assembly()->components.at(0)->tessData;
}
inline uoTempFaceTessData_c& firstFace(ovdl::ReadDocument& document)
{
    return *firstPart(document).bodies.at(0)->faces.at(0);
}

/// The names of an assembly's components, in order.
inline std::vector<std::wstring> componentNames(ovdl::ReadDocument& document)
{
    std::vector<std::wstring> names;
    const auto& components = document.assembly()->components;
    for (long long i = 0; i < components.count; ++i)
        names.push_back(components.at(i)->name);
    return names;
}

inline std::vector<double> elementsOf(const mgXform_c& xform)
{
    std::vector<double> result(16);
    xform.getGLData(result.data());
    return result;
}

}  // namespace gltf_tests
