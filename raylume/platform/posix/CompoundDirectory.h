// The directory of a compound file, read with every length and link checked before libgsf sees the
// file.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "raylume/platform/CompoundFile.h"

namespace platform::compound {

/// The bytes of a file at any place.
class FileBytes {
public:
    virtual ~FileBytes() = default;
    virtual std::uint64_t size() const = 0;
    /// Reads exactly `count` bytes; false when they are not all there.
    virtual bool read(std::uint64_t offset, void* buffer, std::size_t count) const = 0;
    /// Where the bytes of a file stand that lies in memory as a whole; null for any other.
    virtual const unsigned char* inMemory() const { return nullptr; }
};

struct DirectoryEntry {
    std::wstring name;
    bool isStorage = false;
    std::array<std::uint8_t, 16> classId = {};
    /// In microseconds since 1970.
    std::optional<std::int64_t> modified;
    std::uint64_t size = 0;
    /// Where in the file a stream begins that lies in one piece.
    std::optional<std::uint64_t> place;
    /// A stream whose sectors are not all there, or are another's too.
    bool damaged = false;
    /// Places in Directory::entries.
    std::vector<std::size_t> children;
};

struct Directory {
    /// The root comes first, a storage before what is in it.
    std::vector<DirectoryEntry> entries;
    std::size_t sectorSize = 512;
    /// How many links lie between the root and the farthest entry: what a recursive reader needs of
    /// its stack.
    std::size_t farthest = 0;
    /// Where in the file the sizes of damaged streams stand, ascending; 8 bytes each.
    std::vector<std::uint64_t> damagedSizes;
};

/// Reads and checks header, allocation tables and directory. Whatever passes has no chain of sectors
/// that is needed to find an element and that ends nowhere, no element twice, and is within the limits
/// of this library.
///
/// Errors: kStorageExists (no compound file), kStorageCorrupt, kStorageTooLarge, kStorageReadFault.
HResult readDirectory(const FileBytes& file, Directory& directory);

}  // namespace platform::compound
