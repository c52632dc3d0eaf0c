// Files to write, by the texts that documents use (Paths.h).
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "raylume/platform/Export.h"

namespace platform {

/// A new or emptied regular file, opened for writing. Closed by the destructor.
class PLATFORM_API OutputFile {
public:
    /// Null when it cannot be made or written, and when the name is taken by anything but a regular file: a
    /// link is not followed, wherever it leads, and a pipe or a device is not opened. Never waits.
    static std::unique_ptr<OutputFile> create(const std::wstring& path);

    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;
    virtual ~OutputFile();

    /// Writes behind what was written before. False when not all of it could be written.
    virtual bool write(const void* bytes, std::size_t size) = 0;
    /// Makes the file that long. What was not written reads as zeros and takes no room on the disk, where
    /// the file system can do that. False when it is too long for the system or the user's limit.
    virtual bool setLength(std::uint64_t length) = 0;

protected:
    OutputFile();
};

/// A folder that many files are written to. It is resolved once, and read at most once, whereas every
/// OutputFile::create() of a new name may have to look through the whole folder.
///
/// What others make in it meanwhile is met by its exact name only.
class PLATFORM_API OutputFolder {
public:
    /// Null when there is no such folder. An empty path is the current folder.
    static std::unique_ptr<OutputFolder> open(const std::wstring& folder);

    OutputFolder(const OutputFolder&) = delete;
    OutputFolder& operator=(const OutputFolder&) = delete;
    virtual ~OutputFolder();

    /// As OutputFile::create() of that name in the folder. A name that is empty, "." or "..", or that has
    /// a separator or a NUL, is none: null.
    virtual std::unique_ptr<OutputFile> create(const std::wstring& name) = 0;

protected:
    OutputFolder();
};

/// The length in bytes of the regular file at a path, links followed; nothing for anything else.
PLATFORM_API std::optional<std::uint64_t> fileLength(const std::wstring& path);

}  // namespace platform
