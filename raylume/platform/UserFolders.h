// Folders that belong to the user.
#pragma once

#include <optional>
#include <string>

#include "raylume/platform/Export.h"

namespace platform {

/// The folder for per-user application data, without a trailing separator: XDG_DATA_HOME, else
/// ~/.local/share, which is made if it is missing. Nothing when the user has no home.
PLATFORM_API std::optional<std::wstring> applicationDataFolder();

}  // namespace platform
