// The animation tracks of a model, for people and for programs.
#pragma once

#include <ostream>

#include "raylume/scene/dlModel.h"

namespace tool {

/// Every track with its number of keys and its time span, the component tracks whose names match no
/// instance, and the instances without a track.
void writeAnimationText(const dlModel& model, std::ostream& out);

/// The same with every key.
void writeAnimationJson(const dlModel& model, std::ostream& out);

}  // namespace tool
