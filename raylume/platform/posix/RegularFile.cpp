#include "raylume/platform/posix/RegularFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

#include "raylume/platform/Paths.h"

namespace platform {

namespace {

class RegularFile final : public ImageSource {
public:
    explicit RegularFile(const std::string& native)
        : number_(open(native.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY))
    {
        struct stat status;
        if (number_ >= 0 && fstat(number_, &status) == 0 && S_ISREG(status.st_mode)) {
            isRegular_ = true;
            size_ = static_cast<std::uint64_t>(status.st_size);
        }
    }
    RegularFile(const RegularFile&) = delete;
    RegularFile& operator=(const RegularFile&) = delete;
    ~RegularFile() override
    {
        if (number_ >= 0) {
            close(number_);
        }
    }

    bool isRegular() const { return isRegular_; }
    std::uint64_t size() const override { return size_; }

    std::size_t readAt(std::uint64_t offset, void* buffer, std::size_t size) override
    {
        if (offset >= size_) {
            return 0;
        }
        const auto wanted = static_cast<std::size_t>(std::min<std::uint64_t>(size, size_ - offset));
        std::size_t total = 0;
        while (total < wanted) {
            const ssize_t count = pread(number_, static_cast<char*>(buffer) + total, wanted - total,
                                        static_cast<off_t>(offset + total));
            if (count < 0 && errno == EINTR) {
                continue;
            }
            if (count <= 0) {
                break;
            }
            total += static_cast<std::size_t>(count);
        }
        return total;
    }

private:
    int number_;
    bool isRegular_ = false;
    std::uint64_t size_ = 0;
};

}  // namespace

std::shared_ptr<ImageSource> openRegularFile(const std::wstring& path)
{
    if (path.empty()) {
        return nullptr;
    }
    auto file = std::make_shared<RegularFile>(nativePath(path));
    return file->isRegular() ? std::move(file) : nullptr;
}

}  // namespace platform
