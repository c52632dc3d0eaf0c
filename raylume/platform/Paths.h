// From the texts of documents and records, which keep "\" exactly as built, to the file system.
#pragma once

#include <string>

#include "raylume/platform/Export.h"

namespace platform {

/// The native path (UTF-8 on this system) that a text means. Every open, probe, list, make and
/// delete goes through it.
///
/// "\" separates like "/". A drive letter ("c:\...") is looked up in the folder that RAYLUME_DRIVES
/// names, as an entry "c:"; "." and ".." behind it are taken out by the text alone, and ".." in a
/// drive's root is that root, so that such a text never leads out of its drive. Each component is taken by
/// its exact name first and, where there is no such entry, by the first entry in byte order that equals it
/// without case; from the first component that has neither on, the rest stays as written. Never fails; an
/// empty text gives an empty path.
PLATFORM_API std::string nativePath(const std::wstring& text);

}  // namespace platform
