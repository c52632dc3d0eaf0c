// The environment of the process.
#pragma once

#include <optional>
#include <string>

#include "raylume/platform/Export.h"

namespace platform {

/// The value of a variable: looked up by its exact name, then by the name in capitals (names are
/// caseless on the system that the texts come from). An empty value counts as unset, at each step.
/// The value is read as UTF-8; invalid bytes become U+FFFD.
PLATFORM_API std::optional<std::wstring> environmentVariable(const std::string& name);

/// "temp", then "TEMP", then "tmp", then "TMP": the folder for temporary files, as the variable has
/// it. Nothing when all are unset: there is no default, the host sets one.
PLATFORM_API std::optional<std::wstring> temporaryFolderVariable();

/// The number of this process.
PLATFORM_API int processId();

}  // namespace platform
