#pragma once

#include <optional>
#include <ostream>

#include "raylume/scene/dlModel.h"

namespace tool {

/// How many levels below the root are shown; nothing for all.
using DepthLimit = std::optional<int>;

/// The component tree, subassemblies and instances in document order. A subassembly at the limit is
/// shown with what it holds in numbers. Any depth of tree works; indentation stops growing at level
/// 40, from where on the level is written.
void writeTreeText(const dlModel& model, DepthLimit limit, std::ostream& out);

/// The same as nested objects, written as one goes and so without recursion.
void writeTreeJson(const dlModel& model, DepthLimit limit, std::ostream& out);

}  // namespace tool
