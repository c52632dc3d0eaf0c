// Compound files that are mapped into memory, so that streams can be used where they lie.
#pragma once

#include <cstddef>
#include <memory>

#include "raylume/platform/CompoundFile.h"
#include "raylume/platform/Export.h"
#include "raylume/platform/Files.h"

namespace platform {

/// Opens the compound file that `file` holds, for reading, and stores its root storage, with one reference,
/// in `root`; null when that fails. The storage and the bytes of its streams keep the file mapped.
///
/// Errors: kStorageExists (no compound file), kStorageCorrupt, kStorageTooLarge, kStorageInvalidPointer,
///   kStorageOutOfMemory.
PLATFORM_API HResult openMappedCompoundFile(std::shared_ptr<const MappedFile> file, IStorage** root);

/// All bytes of a stream: a part of the mapped file, or a copy. Either stays for as long as it is held,
/// whatever becomes of the storage.
struct StreamBytes {
    std::shared_ptr<const unsigned char> data;
    std::size_t size = 0;
};

/// Gives the bytes of a stream of that name. They are where they lie in the file when the file is mapped and
/// the stream lies there in one piece, which takes no time; otherwise they are copied. Either way they begin
/// at an address that is a multiple of 8.
///
/// Errors: those of IStorage::OpenStream, kStorageReadFault, kStorageOutOfMemory, and kNotImplemented for a
///   storage that is not of this library.
PLATFORM_API HResult streamBytes(IStorage& storage, const wchar_t* name, StreamBytes& bytes);

}  // namespace platform
