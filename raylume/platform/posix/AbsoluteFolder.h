// Folders that variables of the environment name.
#pragma once

#include <optional>
#include <string>

namespace platform {

/// The folder that a variable names, without trailing separators. Nothing when the variable is unset
/// or empty, or when its path is relative: by the rules for folders of the user such a one counts as
/// unset, and what it means would hang on where the host happens to be.
std::optional<std::wstring> absoluteFolder(const char* variable);

}  // namespace platform
