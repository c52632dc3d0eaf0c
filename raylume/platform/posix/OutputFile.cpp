#include "raylume/platform/OutputFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdint>
#include <utility>

#include "raylume/platform/Paths.h"
#include "raylume/platform/posix/Handles.h"

namespace platform {

namespace {

class PosixOutputFile final : public OutputFile {
public:
    explicit PosixOutputFile(FileHandle file) : file_(std::move(file)) {}

    bool write(const void* bytes, std::size_t size) override
    {
        if (size > UINT64_MAX - written_ || !mayHold(written_ + size)) {
            return false;
        }
        written_ += size;
        return writeAll(file_.number(), {static_cast<const char*>(bytes), size});
    }

    bool setLength(std::uint64_t length) override
    {
        return mayHold(length) && ftruncate(file_.number(), static_cast<off_t>(length)) == 0;
    }

private:
    FileHandle file_;
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
    FileHandle file(native.empty() ? -1 : open(native.c_str(), kFlags, 0666));
    if (!file.isOpen() || !isEmptiedRegularFile(file.number())) {
        return nullptr;
    }
    return std::make_unique<PosixOutputFile>(std::move(file));
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
