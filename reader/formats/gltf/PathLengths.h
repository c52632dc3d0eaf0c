// What the component paths of a scene come to, before any of them is made.
#pragma once

#include <cstdint>

#include "reader/formats/gltf/Budget.h"
#include "reader/formats/gltf/NodeTree.h"

namespace ovdl::gltf {

/// Adds up the paths of the components, and those of the nodes above them, which stand in the model's
/// tree once each. Raises Refusal when either is out of proportion. Numbers of siblings count as one
/// digit here, so a little more may come of it.
void checkPathLengths(const Records& records, const NodeTree& tree, std::size_t stemLength,
                      const Budget& budget);

}  // namespace ovdl::gltf
