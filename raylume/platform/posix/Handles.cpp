#include "raylume/platform/posix/Handles.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <limits>
#include <utility>

namespace platform {

int FileHandle::release()
{
    return std::exchange(number_, -1);
}

bool FileHandle::close()
{
    const int number = release();
    return number < 0 || ::close(number) == 0;
}

// Without O_NONBLOCK the open itself would wait for the other end of a pipe.
FileHandle openRegular(const std::string& native, struct stat& status)
{
    FileHandle file(open(native.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY));
    if (file.isOpen() && (fstat(file.number(), &status) != 0 || !S_ISREG(status.st_mode))) {
        return FileHandle(-1);
    }
    return file;
}

bool mayHold(std::uint64_t bytes)
{
    constexpr std::uint64_t kLongest = std::numeric_limits<off_t>::max();
    struct rlimit limit;
    if (getrlimit(RLIMIT_FSIZE, &limit) != 0 || limit.rlim_cur == RLIM_INFINITY) {
        return bytes <= kLongest;
    }
    return bytes <= std::min<std::uint64_t>(limit.rlim_cur, kLongest);
}

bool writeAll(int file, std::string_view bytes)
{
    constexpr std::size_t kLimit = std::size_t{1} << 30;
    while (!bytes.empty()) {
        const ssize_t count = write(file, bytes.data(), std::min(bytes.size(), kLimit));
        if (count > 0) {
            bytes.remove_prefix(static_cast<std::size_t>(count));
        } else if (count == 0 || errno != EINTR) {
            return false;
        }
    }
    return true;
}

}  // namespace platform
