// Lights as glTF nodes
// (https://github.com/KhronosGroup/glTF/tree/main/extensions/2.0/Khronos/KHR_lights_punctual).
#pragma once

#include <vector>

#include "raylume/scene/dlModel.h"
#include "tools/GltfFile.h"

namespace tool {

/// Adds a node for each light of the table: aimed lights as spots, positioned ones as points, directional
/// ones and the sun as directional lights. A light that is switched off has intensity 0. `roots` takes the
/// new nodes. What has no place or no counterpart is counted in the notes.
void addLights(const dlModel& model, GltfFile& file, std::vector<int>& roots);

}  // namespace tool
