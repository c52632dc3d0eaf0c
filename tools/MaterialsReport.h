#pragma once

#include <functional>
#include <ostream>

#include "raylume/scene/dlModel.h"
#include "tools/ImageSearch.h"

namespace tool {

/// Every appearance of the model: those of instances, parts, bodies and faces, and their decals.
/// Equal ones are one entry with its uses by level; appearances are equal when every number and
/// name is (the library's own comparison looks away from textures and has a tolerance). Entries
/// stand in the order of their first use: instances as in the document, below each its part the
/// first time it comes, with its bodies and faces. Images are looked for by the library's own search, and
/// decoded, which takes its time: `cancelled` is asked before each, and std::runtime_error("cancelled")
/// raised when it says so.
void writeMaterialsText(dlModel& model, ImageSearch& images, const std::function<bool()>& cancelled,
                        std::ostream& out);
void writeMaterialsJson(dlModel& model, ImageSearch& images, const std::function<bool()>& cancelled,
                        std::ostream& out);

}  // namespace tool
