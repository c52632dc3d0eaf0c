// Numbers in texts, without ever touching the locale of the process.
#pragma once

#include <string>

#include "raylume/platform/Export.h"

namespace platform {

/// Scans a real number at the start of a text as "%lf" does in the "C" locale: leading white space
/// goes, the longest number counts, the rest is not looked at. False, with `value` untouched, when
/// no number stands there.
PLATFORM_API bool scanReal(const std::wstring& text, double& value);

}  // namespace platform
