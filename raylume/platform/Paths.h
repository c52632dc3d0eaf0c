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
/// without case; from the first component that has neither on, the rest stays as written. So what is
/// made under the text of an entry that differs in case only is made in that entry's place. Never fails; an
/// empty text gives an empty path.
///
/// A path that exists as written costs one look at the file system. The listings that the search without
/// case needs are kept, within bounds, until their folder changes; threads may call at the same time.
PLATFORM_API std::string nativePath(const std::wstring& text);

/// Whether anything stands at the path that a text means: a folder as much as a file, but no link that
/// leads nowhere. "*" and "?" in the last component stand for any names, "." and ".." among them, so that
/// "folder\*" is true of an empty folder; in the old manner "*.*" is any name, "name.*" one without an
/// ending too, and "?" at the end of a name's stem or ending may stand for nothing. An empty text and one
/// that ends in a separator match nothing. Opens no files, so it never waits for one.
PLATFORM_API bool pathMatches(const std::wstring& text);

}  // namespace platform
