#include "raylume/platform/OutputFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdint>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "raylume/platform/Paths.h"
#include "raylume/platform/Text.h"
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

std::unique_ptr<OutputFile> createIn(int folder, const std::string& path)
{
    constexpr int kFlags = O_WRONLY | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC | O_NOCTTY;
    FileHandle file(path.empty() ? -1 : openat(folder, path.c_str(), kFlags, 0666));
    if (!file.isOpen() || !isEmptiedRegularFile(file.number())) {
        return nullptr;
    }
    return std::make_unique<PosixOutputFile>(std::move(file));
}

// The listing of an open folder has a number of its own, which reading takes over.
OpenFolder listingOf(int folder)
{
    FileHandle own(openat(folder, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    OpenFolder listing(own.isOpen() ? fdopendir(own.number()) : nullptr);
    if (listing) {
        own.release();
    }
    return listing;
}

bool isSingleName(const std::wstring& name)
{
    constexpr std::wstring_view kNone(L"/\\\0", 3);
    return !name.empty() && name != L"." && name != L".." && name.find_first_of(kNone) == name.npos;
}

class PosixOutputFolder final : public OutputFolder {
public:
    explicit PosixOutputFolder(FileHandle folder) : folder_(std::move(folder)) {}

    std::unique_ptr<OutputFile> create(const std::wstring& name) override
    {
        if (!isSingleName(name)) {
            return nullptr;
        }
        const std::string native = entryFor(name);
        auto file = createIn(folder_.number(), native);
        if (file && isListed_) {
            names_.try_emplace(toLower(name), native);
        }
        return file;
    }

private:
    bool exists(const std::string& name) const
    {
        struct stat status;
        return fstatat(folder_.number(), name.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0;
    }

    // The entry of exactly that name, else the first in byte order that equals it without case.
    std::string entryFor(const std::wstring& name)
    {
        const std::string native = toUtf8(name);
        if (exists(native)) {
            return native;
        }
        if (!std::exchange(isListed_, true)) {
            list();
        }
        const auto found = names_.find(toLower(name));
        return found == names_.end() ? native : found->second;
    }

    void list()
    {
        const auto listing = listingOf(folder_.number());
        while (const dirent* const entry = listing ? readdir(listing.get()) : nullptr) {
            std::string name(entry->d_name);
            const auto [first, isNew] = names_.try_emplace(toLower(fromUtf8(name)), name);
            if (!isNew && name < first->second) {
                first->second = std::move(name);
            }
        }
    }

    FileHandle folder_;
    bool isListed_ = false;
    // The native names by their lower-cased form.
    std::unordered_map<std::wstring, std::string> names_;
};

}  // namespace

OutputFile::OutputFile() = default;
OutputFile::~OutputFile() = default;

std::unique_ptr<OutputFile> OutputFile::create(const std::wstring& path)
{
    return createIn(AT_FDCWD, nativePath(path));
}

OutputFolder::OutputFolder() = default;
OutputFolder::~OutputFolder() = default;

// Held for what is below it alone, so that a folder that may not be read can still be written to.
std::unique_ptr<OutputFolder> OutputFolder::open(const std::wstring& folder)
{
    const std::string native = nativePath(folder);
    FileHandle handle(::open(native.empty() ? "." : native.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
    return handle.isOpen() ? std::make_unique<PosixOutputFolder>(std::move(handle)) : nullptr;
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
