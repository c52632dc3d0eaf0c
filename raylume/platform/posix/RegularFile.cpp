#include "raylume/platform/posix/RegularFile.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <utility>

#include "raylume/platform/Paths.h"
#include "raylume/platform/posix/Handles.h"

namespace platform {

namespace {

class RegularFile final : public ImageSource {
public:
    RegularFile(FileHandle file, std::uint64_t size) : file_(std::move(file)), size_(size) {}

    std::uint64_t size() const override { return size_; }

    std::size_t readAt(std::uint64_t offset, void* buffer, std::size_t size) override
    {
        if (offset >= size_) {
            return 0;
        }
        const auto wanted = static_cast<std::size_t>(std::min<std::uint64_t>(size, size_ - offset));
        std::size_t total = 0;
        while (total < wanted) {
            const ssize_t count = pread(file_.number(), static_cast<char*>(buffer) + total, wanted - total,
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
    FileHandle file_;
    std::uint64_t size_;
};

}  // namespace

std::shared_ptr<ImageSource> openRegularFile(const std::wstring& path)
{
    if (path.empty()) {
        return nullptr;
    }
    struct stat status;
    FileHandle file = openRegular(nativePath(path), status);
    if (!file.isOpen()) {
        return nullptr;
    }
    return std::make_shared<RegularFile>(std::move(file), static_cast<std::uint64_t>(status.st_size));
}

}  // namespace platform
