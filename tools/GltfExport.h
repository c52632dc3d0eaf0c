// The loaded model as glTF 2.0 (https://www.khronos.org/gltf/).
#pragma once

#include <functional>
#include <stdexcept>

#include "raylume/scene/dlModel.h"
#include "tools/GltfFile.h"
#include "tools/ImageSearch.h"

namespace tool {

struct ExportCancelled : std::runtime_error {
    ExportCancelled() : std::runtime_error("cancelled") {}
};

/// The component tree becomes the node tree: a subassembly is a node without a placement, an
/// instance a node with the instance's placement in the model, followed by a second node where
/// translation, rotation and scale cannot make it. A part becomes one mesh with one primitive a
/// face (a part without a triangle as a line without length), and one more mesh over the same geometry
/// for each appearance that an instance lays over the whole part. Lights become nodes behind the tree, and
/// placement tracks an animation of the instances' nodes. Base colour images and decals are written as far
/// as `images` finds them, a decal as one more primitive of what it covers of its face. Cameras, scenes and
/// bump images are not written.
///
/// Raises ExportCancelled when `cancelled` says so, which is asked before each part and each decal.
GltfDocument exportModel(const dlModel& model, ImageSearch& images, const std::function<bool()>& cancelled);
/// The same with images searched as for a document without a folder.
GltfDocument exportModel(const dlModel& model, const std::function<bool()>& cancelled);

}  // namespace tool
