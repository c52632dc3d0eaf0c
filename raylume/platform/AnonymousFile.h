// A file without a name that lives in memory, through which one process hands another what it made.
#pragma once

#include <cstdint>
#include <memory>

#include "raylume/platform/CompoundFile.h"
#include "raylume/platform/Export.h"
#include "raylume/platform/Files.h"

namespace platform {

/// Closed, and gone with its bytes, when the last process that holds it lets go.
class PLATFORM_API AnonymousFile {
public:
    /// A new, empty one. Null when the system has none to give.
    static std::unique_ptr<AnonymousFile> create();
    /// The one that a host handed to this process under that number (ChildProcess.h). Taken over; null when
    /// no file that can be written is open under it.
    static std::unique_ptr<AnonymousFile> inherited(int number);

    AnonymousFile(const AnonymousFile&) = delete;
    AnonymousFile& operator=(const AnonymousFile&) = delete;
    ~AnonymousFile();

    int number() const { return number_; }
    std::uint64_t size() const;

    /// Seals the file, so that nobody who still holds it can shrink it or change a byte, and maps it. The
    /// bytes stay when this object goes. Null when that is refused, as for a file that somebody has mapped
    /// for writing, and for an empty one.
    std::shared_ptr<const MappedFile> sealAndMap();

    /// Makes an empty compound file in it and stores its root storage, writable and with one reference, in
    /// `root`. Each Commit() writes the whole tree to the start of this file, which has to live as long as
    /// the storage. Results as of createCompoundFile().
    HResult createCompound(IStorage** root);

private:
    explicit AnonymousFile(int number);

    int number_;
};

}  // namespace platform
