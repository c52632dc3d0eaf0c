// The animation tracks of a model, for people and for programs.
#pragma once

#include <cstddef>
#include <map>
#include <ostream>
#include <string>

#include "raylume/scene/dlModel.h"

namespace tool {

/// Keys of appearance that the side file has, by component (SideFile.h); a component that is missing has
/// those that were loaded.
using KeysInFile = std::map<std::wstring, std::size_t>;

/// Every track with its number of keys and its time span, how many keys of appearance were thinned out,
/// the component tracks whose names match no instance, and the instances without a track.
void writeAnimationText(const dlModel& model, const KeysInFile& inFile, std::ostream& out);

/// The same with every key.
void writeAnimationJson(const dlModel& model, const KeysInFile& inFile, std::ostream& out);

}  // namespace tool
