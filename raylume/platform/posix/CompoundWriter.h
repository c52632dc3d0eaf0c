// From a tree to a complete new file in the place of the old one.
#pragma once

#include <cstddef>
#include <memory>
#include <string>

#include "raylume/platform/posix/CompoundTree.h"

namespace platform::compound {

/// Writes trees to the file of that native path, which no symbolic link is part of.
///
/// The new file is built without a name in the same folder (with a hidden one where the file system
/// cannot), flushed to the disk and renamed over the old one, whose permissions it takes. So whenever
/// the process ends, the path leads to the old or to the new file, and both are whole.
std::unique_ptr<TreeWriter> makeFileWriter(std::string path, std::size_t sectorSize);

/// Writes trees into an open file, in the place of all that it holds. The file stays the caller's.
std::unique_ptr<TreeWriter> makeHandleWriter(int number, std::size_t sectorSize);

}  // namespace platform::compound
