// From meshes to shared tessellations.
#pragma once

#include "reader/formats/gltf/Faces.h"
#include "reader/formats/gltf/GltfDocument.h"
#include "reader/formats/gltf/NodeTree.h"
#include "reader/formats/gltf/Steps.h"

namespace ovdl::gltf {

/// Makes a tessellation without geometry for each mesh that the scene shows. A face for each
/// primitive that has triangles and positions; points and lines make none.
void makeParts(const Records& records, const NodeTree& tree, Budget& budget, GltfDocument& document);

/// Fills the tessellations, face by face. Raises Refusal and Cancellation.
void fillParts(const Records& records, Accessors& accessors, const DocumentPath& path, Budget& budget,
               Steps& steps, GltfDocument& document);

/// What filling the parts counts as in Steps.
std::uint64_t workOfParts(const Records& records, const NodeTree& tree);

}  // namespace ovdl::gltf
