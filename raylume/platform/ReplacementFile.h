// Files that appear complete or not at all.
//
// The new file is built without a name in the folder of the old one (with a hidden one where the file
// system cannot), flushed to the disk and renamed over the old one, whose permissions it takes. A symbolic
// link stays, and what it points at is replaced. Whenever the process ends, the path leads to the old or to
// the new file, or to none if there was none.
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string>

#include "raylume/platform/CompoundFile.h"
#include "raylume/platform/Export.h"

namespace platform {

/// A file that is going to take the place of another. The destructor drops what was not put in its place.
class PLATFORM_API ReplacementFile {
public:
    /// Stores the file in `file`; null when that fails.
    ///
    /// Errors: kStoragePathNotFound (no such folder), kStorageAccessDenied (also for what is no regular
    ///   file, for a write-protected one, and for a folder that may not be written), others by what the
    ///   system says.
    static HResult create(const std::wstring& path, std::unique_ptr<ReplacementFile>& file);

    ReplacementFile(const ReplacementFile&) = delete;
    ReplacementFile& operator=(const ReplacementFile&) = delete;
    virtual ~ReplacementFile();

    /// Writes behind what was written before. Errors: kStorageMediumFull, kStorageWriteFault.
    virtual HResult write(const void* bytes, std::size_t size) = 0;
    /// Puts the file in its place, once, after every write went well. Errors: as write().
    virtual HResult commit() = 0;

protected:
    ReplacementFile();
};

/// The same for a compound file: `fill` is given the root of an empty tree in memory, which is written when
/// it comes back. It has no need to commit, and must not keep the root. What it raises goes through, and
/// nothing is written.
///
/// Errors: those of ReplacementFile and of IStorage::Commit. A path that cannot be replaced fails before
///   `fill` is called.
PLATFORM_API HResult replaceCompoundFile(const std::wstring& path,
                                         const std::function<void(IStorage& root)>& fill);

}  // namespace platform
