// Elements of one compound file, copied into another.
#pragma once

#include "raylume/platform/CompoundFile.h"
#include "raylume/platform/Export.h"

namespace platform {

/// Copies the element of that name, with all that is below it, from one storage into another, where it
/// takes the place of an element of that name. The bytes are those at the time of the call. Class
/// identifiers and times of storages are copied too. The two may be storages of one tree, even one inside
/// the other.
///
/// Errors: kStorageNotFound, kStorageAccessDenied (`to` was opened for reading), kStorageInvalidName
///   (a name that a new element cannot have), kStorageReverted, kStorageTooLarge (too many elements, or
///   too deep), kStorageCorrupt and kStorageReadFault (a damaged stream), kStorageInvalidPointer,
///   kStorageOutOfMemory, kNotImplemented (a storage that is not of this library). After a failure `to`
///   is as it was.
PLATFORM_API HResult copyElement(IStorage& from, const wchar_t* name, IStorage& to);

}  // namespace platform
