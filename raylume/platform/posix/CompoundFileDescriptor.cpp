#include "raylume/platform/posix/CompoundFileDescriptor.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>

namespace platform::compound {

Descriptor::~Descriptor()
{
    if (number_ >= 0)
        close(number_);
}

bool OpenFile::read(std::uint64_t offset, void* buffer, std::size_t count) const
{
    if (offset > size_ || count > size_ - offset)
        return false;
    constexpr std::size_t kLimit = std::size_t{1} << 30;
    auto* to = static_cast<char*>(buffer);
    while (count > 0) {
        const ssize_t got =
            pread(descriptor_.number(), to, std::min(count, kLimit), static_cast<off_t>(offset));
        if (got < 0 && errno == EINTR)
            continue;
        if (got <= 0)
            return false;
        to += got;
        offset += static_cast<std::uint64_t>(got);
        count -= static_cast<std::size_t>(got);
    }
    return true;
}

HResult resultOfErrno(int error)
{
    switch (error) {
    case ENOENT:
        return kStorageNotFound;
    case ENOTDIR:
    case ELOOP:
    case ENAMETOOLONG:
        return kStoragePathNotFound;
    case EACCES:
    case EPERM:
    case EROFS:
    case EISDIR:
    case ETXTBSY:
        return kStorageAccessDenied;
    case EMFILE:
    case ENFILE:
        return kStorageTooManyFiles;
    case ENOMEM:
        return kStorageOutOfMemory;
    case ENOSPC:
    case EDQUOT:
    case EFBIG:
        return kStorageMediumFull;
    case EEXIST:
        return kStorageExists;
    default:
        return kStorageWriteFault;
    }
}

}  // namespace platform::compound
