#include "raylume/platform/OutputFile.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <limits>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "raylume/platform/Paths.h"
#include "raylume/platform/Text.h"

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

std::unique_ptr<OutputFile> createIn(int folder, const std::string& path)
{
    constexpr int kFlags = O_WRONLY | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC | O_NOCTTY;
    const int number = path.empty() ? -1 : openat(folder, path.c_str(), kFlags, 0666);
    if (number < 0) {
        return nullptr;
    }
    auto file = std::make_unique<PosixOutputFile>(number);
    return isEmptiedRegularFile(number) ? std::move(file) : nullptr;
}

struct CloseFolder {
    void operator()(DIR* folder) const { closedir(folder); }
};

// The listing of an open folder has a number of its own, which reading takes over.
std::unique_ptr<DIR, CloseFolder> listingOf(int folder)
{
    const int number = openat(folder, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    DIR* const listing = number < 0 ? nullptr : fdopendir(number);
    if (!listing && number >= 0) {
        close(number);
    }
    return std::unique_ptr<DIR, CloseFolder>(listing);
}

bool isSingleName(const std::wstring& name)
{
    constexpr std::wstring_view kNone(L"/\\\0", 3);
    return !name.empty() && name != L"." && name != L".." && name.find_first_of(kNone) == name.npos;
}

class PosixOutputFolder final : public OutputFolder {
public:
    explicit PosixOutputFolder(int number) : number_(number) {}
    ~PosixOutputFolder() override { close(number_); }

    std::unique_ptr<OutputFile> create(const std::wstring& name) override
    {
        if (!isSingleName(name)) {
            return nullptr;
        }
        const std::string native = entryFor(name);
        auto file = createIn(number_, native);
        if (file && isListed_) {
            names_.try_emplace(toLower(name), native);
        }
        return file;
    }

private:
    bool exists(const std::string& name) const
    {
        struct stat status;
        return fstatat(number_, name.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0;
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
        const auto listing = listingOf(number_);
        while (const dirent* const entry = listing ? readdir(listing.get()) : nullptr) {
            std::string name(entry->d_name);
            const auto [first, isNew] = names_.try_emplace(toLower(fromUtf8(name)), name);
            if (!isNew && name < first->second) {
                first->second = std::move(name);
            }
        }
    }

    int number_;
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
    const int number = ::open(native.empty() ? "." : native.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC);
    return number < 0 ? nullptr : std::make_unique<PosixOutputFolder>(number);
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
