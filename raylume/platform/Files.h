// Files and folders, by the texts that documents use (Paths.h turns them into native paths).
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "raylume/platform/Export.h"

namespace platform {

enum class PathKind { kNothing, kFile, kFolder };

/// What stands at a path. Anything that is no folder counts as a file. An empty text, and a path
/// that cannot be reached, is nothing.
PLATFORM_API PathKind pathKind(const std::wstring& path);

enum class MakeFolder { kMade, kExists, kFailed };

/// Makes one folder (not its parents). kExists also when a plain file has the name.
PLATFORM_API MakeFolder makeFolder(const std::wstring& path);

/// A regular file opened for reading, and nothing else: a folder, a pipe or a device does not open,
/// so that a name in a document can never make the host wait. Closed by the destructor.
class PLATFORM_API InputFile {
public:
    /// Null when the file is missing, is not regular or cannot be read.
    static std::unique_ptr<InputFile> open(const std::wstring& path);

    InputFile(const InputFile&) = delete;
    InputFile& operator=(const InputFile&) = delete;
    virtual ~InputFile();

    /// Reads up to `size` bytes and gives their number: 0 at the end and after an error.
    virtual std::size_t read(void* buffer, std::size_t size) = 0;

protected:
    InputFile();
};

/// A regular file mapped for reading. The bytes stay where they are for the life of the object; if
/// another program cuts the file short meanwhile, reading past its new end ends the process, as for
/// any mapped file.
class PLATFORM_API MappedFile {
public:
    /// Null when the file is missing, is not regular or cannot be mapped. An empty file maps to
    /// size 0.
    static std::unique_ptr<MappedFile> open(const std::wstring& path);

    MappedFile(const MappedFile&) = delete;
    MappedFile& operator=(const MappedFile&) = delete;
    ~MappedFile();

    const unsigned char* data() const { return data_; }
    std::size_t size() const { return size_; }

private:
    friend class AnonymousFile;
    static std::unique_ptr<MappedFile> ofHandle(int number, std::uint64_t size);
    MappedFile(const unsigned char* data, std::size_t size);

    const unsigned char* data_;
    std::size_t size_;
};

}  // namespace platform
