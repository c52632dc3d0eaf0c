// A file that can be read at any place. A file that another program cuts short while it is read gives
// fewer bytes, where a mapped one would end the process.
#pragma once

#include <memory>
#include <string>

#include "raylume/platform/images/ImageSource.h"

namespace platform {

/// Null when the file is missing, is not regular (a pipe or device would keep the caller waiting) or
/// cannot be read.
std::shared_ptr<ImageSource> openRegularFile(const std::wstring& path);

}  // namespace platform
