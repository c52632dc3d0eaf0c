// Storages and streams of a compound file, as interfaces with counted references. The names and results are
// the published ones; the operations are those that documents need. Results are 32-bit, negative for a
// failure.
//
// Ownership: whoever is given an interface releases it. All storages and streams that come from one
//   openCompoundFile() or createCompoundFile() are views of one tree, which they keep alive: they may be
//   released in any order, and an edit shows in every view at once.
// Saving: Commit() on any writable storage, and the release of the last view, write the whole tree, with
//   the edits made through any view, into a new file that takes the old one's place when it is complete
//   and on the disk. Nothing is written when nothing was edited. A failed write is the result of
//   Commit(); the old file stays as it was and the edits stay in the tree. What fails in the last release
//   nobody hears of: commit before.
// Names: compared without case. A new name has 1 to 31 UTF-16 units, none of / \ : ! or zero, and is not
//   that of another element of the same storage.
// Limits: a stream has less than 4 GB, a storage at most 32768 elements, and storages nest at most 1000
//   deep; past that the result is kStorageTooLarge.
// Sharing: several views of one element may be open at once, whatever the modes ask for. Nothing here is
//   guarded against two threads in one tree; two trees never meet.
#pragma once

#include <cstdint>
#include <string>

#include "raylume/platform/Export.h"

using HResult = std::int32_t;

inline constexpr HResult kNotImplemented = static_cast<HResult>(0x80004001u);

// The published results.
inline constexpr HResult kStorageOk = 0;
inline constexpr HResult kStorageNotFound = static_cast<HResult>(0x80030002u);
inline constexpr HResult kStoragePathNotFound = static_cast<HResult>(0x80030003u);
inline constexpr HResult kStorageTooManyFiles = static_cast<HResult>(0x80030004u);
/// Writing through what was opened for reading, or what the system does not let this user touch.
inline constexpr HResult kStorageAccessDenied = static_cast<HResult>(0x80030005u);
inline constexpr HResult kStorageOutOfMemory = static_cast<HResult>(0x80030008u);
inline constexpr HResult kStorageInvalidPointer = static_cast<HResult>(0x80030009u);
inline constexpr HResult kStorageWriteFault = static_cast<HResult>(0x8003001Du);
inline constexpr HResult kStorageReadFault = static_cast<HResult>(0x8003001Eu);
/// There is an element or a file of that name; also a file that is no compound file at all.
inline constexpr HResult kStorageExists = static_cast<HResult>(0x80030050u);
inline constexpr HResult kStorageMediumFull = static_cast<HResult>(0x80030070u);
inline constexpr HResult kStorageInvalidName = static_cast<HResult>(0x800300FCu);
inline constexpr HResult kStorageInvalidFlag = static_cast<HResult>(0x800300FFu);
/// The element behind this view, or one above it, was destroyed.
inline constexpr HResult kStorageReverted = static_cast<HResult>(0x80030102u);
/// A damaged file, or a damaged element of one that otherwise can be read.
inline constexpr HResult kStorageCorrupt = static_cast<HResult>(0x80030109u);
inline constexpr HResult kStorageTooLarge = static_cast<HResult>(0x80030111u);

// Modes, combined by adding. What else the published interface has is accepted and means nothing here.
inline constexpr std::uint32_t kModeRead = 0x0000;
inline constexpr std::uint32_t kModeWrite = 0x0001;
inline constexpr std::uint32_t kModeReadWrite = 0x0002;
inline constexpr std::uint32_t kModeExclusive = 0x0010;
/// With CreateStorage and CreateStream: an element of that name makes room for the new one.
inline constexpr std::uint32_t kModeCreate = 0x1000;

class IUnknown {
public:
    /// One more reference; gives the new count.
    virtual std::uint32_t AddRef() = 0;
    /// One reference less; the last one destroys the object.
    virtual std::uint32_t Release() = 0;

protected:
    ~IUnknown() = default;
};

class IStream : public IUnknown {
public:
    /// Reads up to `size` bytes and stores their number in `read`, which may be null. At the end of the
    /// stream fewer than asked for, or 0, which is no failure.
    virtual HResult Read(void* buffer, std::uint32_t size, std::uint32_t* read) = 0;
    /// Writes `size` bytes and stores how many were taken in `written`, which may be null.
    virtual HResult Write(const void* buffer, std::uint32_t size, std::uint32_t* written) = 0;

protected:
    ~IStream() = default;
};

class IStorage : public IUnknown {
public:
    virtual HResult OpenStream(const wchar_t* name, std::uint32_t mode, IStream** stream) = 0;
    virtual HResult CreateStorage(const wchar_t* name, std::uint32_t mode, IStorage** storage) = 0;
    virtual HResult OpenStorage(const wchar_t* name, std::uint32_t mode, IStorage** storage) = 0;
    virtual HResult Commit(std::uint32_t flags) = 0;
    virtual HResult DestroyElement(const wchar_t* name) = 0;
    /// Only what writes documents needs it: an implementation that reads leaves it alone.
    virtual HResult CreateStream(const wchar_t*, std::uint32_t, IStream** stream)
    {
        *stream = nullptr;
        return kNotImplemented;
    }

protected:
    ~IStorage() = default;
};

namespace platform {

/// Opens a compound file and stores its root storage, with one reference, in `root`; null when that
/// fails. Only what the caller reads is held in memory.
///
/// Errors: kStorageNotFound (no such file), kStoragePathNotFound, kStorageAccessDenied (also for what is
///   no regular file, and a write-protected one with `writable`), kStorageExists (no compound file),
///   kStorageCorrupt, kStorageTooLarge, kStorageInvalidPointer, kStorageOutOfMemory.
PLATFORM_API HResult openCompoundFile(const std::wstring& path, bool writable, IStorage** root);

/// Makes an empty compound file with small sectors and stores its root storage, writable and with one
/// reference, in `root`; null when that fails. A file that is there already stays untouched: without
/// `replace` the result is kStorageExists, and with it the new tree takes the file's place at the first
/// Commit() or the last release. Otherwise the empty file is made at once.
PLATFORM_API HResult createCompoundFile(const std::wstring& path, bool replace, IStorage** root);

}  // namespace platform
