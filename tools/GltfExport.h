// The loaded model as glTF 2.0 (https://www.khronos.org/gltf/).
#pragma once

#include <cstdint>
#include <functional>
#include <ostream>
#include <stdexcept>
#include <string>
#include <vector>

#include "raylume/scene/dlModel.h"

namespace tool {

/// What a glTF file cannot hold.
struct ExportNotes {
    long long trianglesWithoutPlace = 0;  ///< Left out: a coordinate is infinite or no number.
    long long instancesWithoutPlace = 0;  ///< Without a mesh: the placement is infinite or no number.
};

/// A model in the form of a glTF file. Holds a copy of all geometry.
///
/// Units: metres, in the model's axes.
struct GltfDocument {
    std::string json;
    std::vector<float> positions;
    std::vector<float> normals;
    std::vector<float> uvs;
    std::vector<std::uint32_t> indices;
    ExportNotes notes;
};

struct ExportCancelled : std::runtime_error {
    ExportCancelled() : std::runtime_error("cancelled") {}
};

/// The component tree becomes the node tree: a subassembly is a node without a placement, an
/// instance a node with the instance's placement in the model, followed by a second node where
/// translation, rotation and scale cannot make it. A part becomes one mesh with one primitive a
/// face (a part without a triangle as a line without length), and one more mesh over the same geometry
/// for each appearance that an instance lays over the whole part. Lights, cameras and images are not
/// written.
///
/// Raises ExportCancelled when `cancelled` says so, which is asked before each part.
GltfDocument exportModel(const dlModel& model, const std::function<bool()>& cancelled);

/// The number of bytes that writeGlb writes.
std::uint64_t glbSize(const GltfDocument& document);
/// What a binary glTF file can hold: its lengths have 32 bits.
inline constexpr std::uint64_t kLargestGlb = 0xFFFFFFFFu;

/// Writes the document as a binary file (.glb); glbSize() must not be above kLargestGlb. Failures
/// are left in the state of the stream.
void writeGlb(const GltfDocument& document, std::ostream& out);

}  // namespace tool
