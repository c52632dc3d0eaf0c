// A stream of bytes in some encoding as one in UTF-8.
#pragma once

#include <cstddef>
#include <memory>
#include <string>

#include "raylume/platform/Files.h"

namespace platform {

/// The same bytes as UTF-8: a file that is read through a converter. Null when this machine has no
/// converter for the encoding, or when ASCII does not stand for itself in it.
///
/// Reading ends early, as at the end of the file, at a byte that has no meaning; `isBroken` (never
/// null, the caller's, read on while the stream is) then tells.
std::unique_ptr<InputFile> openAsUtf8(std::unique_ptr<InputFile> file, const std::string& encoding,
                                      bool* isBroken);

}  // namespace platform
