#include "raylume/platform/Files.h"

#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <utility>

#include "raylume/platform/Paths.h"
#include "raylume/platform/posix/Handles.h"

namespace platform {

namespace {

class PosixInputFile final : public InputFile {
public:
    explicit PosixInputFile(FileHandle file) : file_(std::move(file)) {}

    std::size_t read(void* buffer, std::size_t size) override
    {
        std::size_t total = 0;
        while (total < size) {
            const ssize_t count = readOnce(static_cast<char*>(buffer) + total, size - total);
            if (count <= 0) {
                break;
            }
            total += static_cast<std::size_t>(count);
        }
        return total;
    }

private:
    ssize_t readOnce(char* buffer, std::size_t size)
    {
        constexpr std::size_t kLimit = std::size_t{1} << 30;
        ssize_t count;
        do {
            count = ::read(file_.number(), buffer, std::min(size, kLimit));
        } while (count < 0 && errno == EINTR);
        return count;
    }

    FileHandle file_;
};

}  // namespace

PathKind pathKind(const std::wstring& path)
{
    struct stat status;
    if (path.empty() || stat(nativePath(path).c_str(), &status) != 0) {
        return PathKind::kNothing;
    }
    return S_ISDIR(status.st_mode) ? PathKind::kFolder : PathKind::kFile;
}

// For the user alone: all folders made here hold a user's own files, some of them below a
// temporary folder that everyone shares.
MakeFolder makeFolder(const std::wstring& path)
{
    if (path.empty()) {
        return MakeFolder::kFailed;
    }
    if (mkdir(nativePath(path).c_str(), 0700) == 0) {
        return MakeFolder::kMade;
    }
    return errno == EEXIST ? MakeFolder::kExists : MakeFolder::kFailed;
}

InputFile::InputFile() = default;
InputFile::~InputFile() = default;

std::unique_ptr<InputFile> InputFile::open(const std::wstring& path)
{
    struct stat status;
    FileHandle file = openRegular(nativePath(path), status);
    return file.isOpen() ? std::make_unique<PosixInputFile>(std::move(file)) : nullptr;
}

MappedFile::MappedFile(const unsigned char* data, std::size_t size) : data_(data), size_(size)
{
}

MappedFile::~MappedFile()
{
    if (size_ > 0) {
        munmap(const_cast<unsigned char*>(data_), size_);
    }
}

std::unique_ptr<MappedFile> MappedFile::open(const std::wstring& path)
{
    struct stat status;
    const FileHandle file = openRegular(nativePath(path), status);
    return file.isOpen() ? ofHandle(file.number(), static_cast<std::uint64_t>(status.st_size)) : nullptr;
}

std::unique_ptr<MappedFile> MappedFile::ofHandle(int number, std::uint64_t length)
{
    static constexpr unsigned char kNoBytes[1] = {};
    const auto size = static_cast<std::size_t>(length);
    if (size == 0) {
        return std::unique_ptr<MappedFile>(new MappedFile(kNoBytes, 0));
    }
    void* const data = mmap(nullptr, size, PROT_READ, MAP_PRIVATE, number, 0);
    if (data == MAP_FAILED) {
        return nullptr;
    }
    // Readers of documents touch nearly all of a file, so reading ahead is never in vain.
    madvise(data, size, MADV_WILLNEED);
    return std::unique_ptr<MappedFile>(new MappedFile(static_cast<const unsigned char*>(data), size));
}

}  // namespace platform
