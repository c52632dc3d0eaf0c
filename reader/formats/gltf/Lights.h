// From punctual lights to the document's lights. The table is in docs/formats/gltf.md.
#pragma once

#include "raylume/load/ReaderInterface.h"
#include "reader/formats/gltf/Affine.h"
#include "reader/formats/gltf/Records.h"

namespace ovdl::gltf {

/// Fills `light` with the light of a node that stands at `world`. `index` numbers the document's
/// lights as they are met. False for a light of a kind that this reader does not know.
bool fillLight(const LightRecord& record, const Affine& world, std::int32_t index, moLight_c& light);

}  // namespace ovdl::gltf
