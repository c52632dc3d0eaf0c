// What the library says to people: one kind of warning box, and the debug output.
#pragma once

#include <functional>
#include <string>

#include "raylume/platform/Export.h"

namespace platform {

/// Shows a modal message box with the platform's default style and waits for it. The handler that a
/// host set takes its place; the default writes one line to standard error.
PLATFORM_API void showMessageBox(const std::wstring& text);
/// Replaces the message box; an empty handler brings the default back.
PLATFORM_API void setMessageBoxHandler(std::function<void(const std::wstring&)> handler);

/// Hands a text to the debug output. The handler that a host set takes its place; the default
/// appends to the file that RAYLUME_DEBUG_OUTPUT names, writes to standard error if that is "-",
/// and drops the text if it is unset.
PLATFORM_API void debugOutput(const std::wstring& text);
/// Replaces the debug output; an empty handler brings the default back.
PLATFORM_API void setDebugOutputHandler(std::function<void(const std::wstring&)> handler);

}  // namespace platform
