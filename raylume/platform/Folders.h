// Listing, deleting and removing, by the texts that documents use (Paths.h).
#pragma once

#include <string>
#include <vector>

#include "raylume/platform/Export.h"

namespace platform {

struct FolderEntry {
    std::wstring name;
    bool isFolder = false;       ///< After links have been followed.
    bool isRegularFile = false;  ///< After links have been followed; a pipe or a device is neither.
};

/// The entries of a folder but "." and "..", in the order of their names' bytes. Empty when it cannot be
/// listed. An entry whose status cannot be had is left out.
PLATFORM_API std::vector<FolderEntry> folderEntries(const std::wstring& folder);

/// Deletes a file, or a link itself; never a folder. False when that failed.
PLATFORM_API bool deleteFile(const std::wstring& path);

/// Removes an empty folder; never a link to one. False when that failed.
PLATFORM_API bool removeFolder(const std::wstring& path);

}  // namespace platform
