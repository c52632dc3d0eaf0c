// The program that loaded the library.
#pragma once

#include <cstddef>
#include <string>

#include "raylume/platform/Export.h"

namespace platform {

/// The path of the running executable, cut at `bufferCharacters` - 1 characters; empty when the
/// system does not tell. RAYLUME_HOST overrides it, for hosts that run in an interpreter.
PLATFORM_API std::wstring hostProgramPath(std::size_t bufferCharacters);

}  // namespace platform
