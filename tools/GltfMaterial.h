// Appearances as glTF materials.
#pragma once

#include <nlohmann/json.hpp>

#include "raylume/scene/dlMaterial.h"

namespace tool {

/// The metallic-roughness material that comes nearest; the table is in docs/raylume-dl.md. A valid
/// glTF material whatever the numbers are.
nlohmann::ordered_json gltfMaterial(const dlMaterial& material);

/// The same for a decal: what is blended over the surface. Its image has the colours, so its own, which
/// nothing sets, plays no part.
nlohmann::ordered_json gltfDecalMaterial(const dlMaterial& decal);

/// True for an appearance that still has every default: nobody gave one.
bool isUnset(const dlMaterial& material);

}  // namespace tool
