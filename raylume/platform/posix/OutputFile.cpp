#include "raylume/platform/OutputFile.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <limits>

#include "raylume/platform/Paths.h"

namespace platform {

namespace {

// Past it the system ends the process by a signal, before the call can fail.
std::uint64_t longestFile()
{
    struct rlimit limit;
    const std::uint64_t longest = std::numeric_limits<off_t>::max();
    if (getrlimit(RLIMIT_FSIZE, &limit) != 0 || limit.rlim_cur == RLIM_INFINITY) {
        return longest;
    }
    return std::min<std::uint64_t>(limit.rlim_cur, longest);
}

class PosixOutputFile final : public OutputFile {
public:
    explicit PosixOutputFile(int number) : number_(number) {}
    ~PosixOutputFile() override { close(number_); }

    bool write(const void* bytes, std::size_t size) override
    {
        const char* next = static_cast<const char*>(bytes);
        if (size > longestFile() - std::min(longestFile(), written_)) {
            return false;
        }
        while (size > 0) {
            const ssize_t count = writeOnce(next, size);
            if (count <= 0) {
                return false;
            }
            next += count;
            size -= static_cast<std::size_t>(count);
            written_ += static_cast<std::uint64_t>(count);
        }
        return true;
    }

    bool setLength(std::uint64_t length) override
    {
        return length <= longestFile() && ftruncate(number_, static_cast<off_t>(length)) == 0;
    }

private:
    ssize_t writeOnce(const char* bytes, std::size_t size)
    {
        constexpr std::size_t kLimit = std::size_t{1} << 30;
        ssize_t count;
        do {
            count = ::write(number_, bytes, std::min(size, kLimit));
        } while (count < 0 && errno == EINTR);
        return count;
    }

    int number_;
    std::uint64_t written_ = 0;
};

// Not emptied by the open itself, which would reach a device before anyone saw that it is one.
bool isEmptiedRegularFile(int number)
{
    struct stat status;
    return fstat(number, &status) == 0 && S_ISREG(status.st_mode) && ftruncate(number, 0) == 0;
}

}  // namespace

OutputFile::OutputFile() = default;
OutputFile::~OutputFile() = default;

std::unique_ptr<OutputFile> OutputFile::create(const std::wstring& path)
{
    constexpr int kFlags = O_WRONLY | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC | O_NOCTTY;
    const std::string native = nativePath(path);
    const int number = native.empty() ? -1 : open(native.c_str(), kFlags, 0666);
    if (number < 0) {
        return nullptr;
    }
    auto file = std::make_unique<PosixOutputFile>(number);
    return isEmptiedRegularFile(number) ? std::move(file) : nullptr;
}

std::optional<std::uint64_t> fileLength(const std::wstring& path)
{
    struct stat status;
    if (path.empty() || stat(nativePath(path).c_str(), &status) != 0 || !S_ISREG(status.st_mode)) {
        return std::nullopt;
    }
    return static_cast<std::uint64_t>(status.st_size);
}

}  // namespace platform
