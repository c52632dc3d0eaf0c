// Listing, deleting and removing, by the texts that documents use (Paths.h).
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
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
/// listed. An entry whose status cannot be had, such as a link to nothing, is neither folder nor file.
PLATFORM_API std::vector<FolderEntry> folderEntries(const std::wstring& folder);

/// The names of what a path means: those in its folder that match its last component, in which "*" and "?"
/// stand for any characters as in pathMatches() (Paths.h); "*" finds "." and ".." too. Without either of
/// them the one name at the path, as the folder has it. Empty when there is nothing, for an empty text and
/// behind a trailing separator.
PLATFORM_API std::vector<std::wstring> matchingNames(const std::wstring& path);

/// Deletes a file, or a link itself; never a folder. False when that failed.
PLATFORM_API bool deleteFile(const std::wstring& path);

/// Removes an empty folder; never a link to one. False when that failed.
PLATFORM_API bool removeFolder(const std::wstring& path);

// A folder of the user's own: one that is a real folder, no link to one, and belongs to the user whom
// this process runs for. The operations below refuse any other, so that whoever shares the folder above it
// can not lead them elsewhere.

/// Deletes all that such a folder holds but folders, following no link. What cannot be deleted stays.
PLATFORM_API void deleteFilesInOwnFolder(const std::wstring& folder);

/// What changes when anything is made, deleted or renamed in a folder.
struct FolderState {
    std::uint64_t device = 0;
    std::uint64_t node = 0;
    std::int64_t seconds = 0;
    std::int64_t nanoseconds = 0;

    bool operator==(const FolderState&) const = default;
};

/// Nothing when there is no such folder.
PLATFORM_API std::optional<FolderState> ownFolderState(const std::wstring& folder);

enum class SaveFile { kSaved, kNameTaken, kFailed };
enum class IfTaken { kLeave, kReplace };

/// Writes the pieces, one behind the other, as a file of such a folder, for its owner alone to read. It
/// appears complete or not at all. After a success `state`, if given, gets the folder's state, if the state
/// will be another one after every change from then on (the clock of a file system may stand still between
/// two changes). A change by somebody else while this call runs may be part of it.
PLATFORM_API SaveFile saveInOwnFolder(const std::wstring& folder, const std::wstring& name,
                                      std::span<const std::span<const unsigned char>> pieces,
                                      IfTaken ifTaken, std::optional<FolderState>* state);

}  // namespace platform
