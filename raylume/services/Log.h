// The library's one log.
#pragma once

#include "raylume/platform/Export.h"

/// Formats like printf, cuts at 4093 characters, takes trailing white space off, ends the line with
/// CR LF and hands it to the debug output. A failing format logs nothing.
[[gnu::format(printf, 1, 2)]] DL_API void rlu_odprintf(const char* format, ...);

/// Empty: tests nothing.
DL_API void rlu_ASSERT(bool condition);
