// Handles of the system that close themselves, and the ways to read and write that all files here share.
#pragma once

#include <dirent.h>
#include <sys/stat.h>

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace platform {

/// Owns the number of an open file; below 0 there is none.
class FileHandle {
public:
    explicit FileHandle(int number) : number_(number) {}
    FileHandle(FileHandle&& other) noexcept : number_(other.release()) {}
    FileHandle& operator=(FileHandle&&) = delete;
    ~FileHandle() { close(); }

    int number() const { return number_; }
    bool isOpen() const { return number_ >= 0; }
    /// Hands the number over to the caller.
    int release();
    /// False when the system had something to say against it: file systems of a network tell of a failed
    /// write only then.
    bool close();

private:
    int number_;
};

struct CloseFolder {
    void operator()(DIR* folder) const { closedir(folder); }
};
using OpenFolder = std::unique_ptr<DIR, CloseFolder>;

/// Opens a regular file for reading and gives its status; never waits, and opens nothing else.
FileHandle openRegular(const std::string& native, struct stat& status);

/// Whether a file may hold so many bytes. Past the limit of the process the system ends it by a signal,
/// before the call that writes could fail.
bool mayHold(std::uint64_t bytes);

/// False when they could not all be written. Asks nothing about the limit.
bool writeAll(int file, std::string_view bytes);

}  // namespace platform
