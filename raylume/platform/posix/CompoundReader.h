// From a compound file to a tree whose streams are read through libgsf.
#pragma once

#include <memory>

#include "raylume/platform/posix/CompoundDirectory.h"
#include "raylume/platform/posix/CompoundTree.h"

namespace platform::compound {

/// Reads the directory of a file into a tree that holds the file.
///
/// Errors: as readDirectory(), and kStorageCorrupt for what libgsf does not take.
HResult readTree(const std::shared_ptr<const FileBytes>& file, ElementPtr& root, std::size_t& sectorSize);

}  // namespace platform::compound
