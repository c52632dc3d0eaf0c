#pragma once

#include <ostream>

#include "raylume/scene/dlModel.h"

namespace tool {

/// Every appearance of the model: those of instances, parts, bodies and faces, and their decals.
/// Equal ones are one entry with its uses by level; appearances are equal when every number and
/// name is (the library's own comparison looks away from textures and has a tolerance). Entries
/// stand in the order of their first use: instances as in the document, below each its part the
/// first time it comes, with its bodies and faces. Textures are looked up as plain paths, "\"
/// taken as "/".
void writeMaterialsText(dlModel& model, std::ostream& out);
void writeMaterialsJson(dlModel& model, std::ostream& out);

}  // namespace tool
