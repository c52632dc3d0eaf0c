// Saving and deleting in folders of the user's own.
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <memory>
#include <string_view>
#include <vector>

#include "raylume/platform/Folders.h"
#include "raylume/platform/Paths.h"
#include "raylume/platform/Text.h"

namespace platform {

namespace {

class Handle {
public:
    explicit Handle(int number) : number_(number) {}
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;
    ~Handle()
    {
        if (number_ >= 0) {
            close(number_);
        }
    }

    int number() const { return number_; }
    bool isOpen() const { return number_ >= 0; }

private:
    int number_;
};

struct CloseFolder {
    void operator()(DIR* folder) const { closedir(folder); }
};

// A separator at the end would follow a link, so it goes.
std::string nativeFolder(const std::wstring& folder)
{
    std::string native = nativePath(folder);
    while (native.size() > 1 && native.back() == '/') {
        native.pop_back();
    }
    return native;
}

bool isOwn(const Handle& folder)
{
    struct stat status;
    return folder.isOpen() && fstat(folder.number(), &status) == 0 && status.st_uid == geteuid();
}

int openFolder(const std::wstring& folder)
{
    return open(nativeFolder(folder).c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
}

FolderState stateOf(const struct stat& status)
{
    return {status.st_dev, status.st_ino, status.st_mtim.tv_sec, status.st_mtim.tv_nsec};
}

// Hidden from listings of pictures, and never the name of one.
std::string nextWorkName()
{
    static std::atomic<unsigned> count{0};
    return ".saving-" + std::to_string(getpid()) + "-" + std::to_string(++count);
}

bool writeAll(int file, std::span<const unsigned char> bytes)
{
    while (!bytes.empty()) {
        const ssize_t count = write(file, bytes.data(), bytes.size());
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count <= 0) {
            return false;
        }
        bytes = bytes.subspan(static_cast<std::size_t>(count));
    }
    return true;
}

// Network file systems tell of a failed write only when the file is closed.
bool writeAndClose(int file, std::span<const std::span<const unsigned char>> pieces)
{
    bool isWritten = true;
    for (const auto& piece : pieces) {
        isWritten = isWritten && writeAll(file, piece);
    }
    return close(file) == 0 && isWritten;
}

// Under a name of its own in the folder; empty when that failed.
std::string writeWorkFile(int folder, std::span<const std::span<const unsigned char>> pieces)
{
    constexpr int kTries = 100;  // a process that had this number before may have left some behind
    for (int attempt = 0; attempt < kTries; ++attempt) {
        std::string name = nextWorkName();
        const int file = openat(folder, name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
        if (file >= 0 && writeAndClose(file, pieces)) {
            return name;
        }
        if (file >= 0) {
            unlinkat(folder, name.c_str(), 0);
            return {};
        }
        if (errno != EEXIST) {
            return {};
        }
    }
    return {};
}

// Without the file system's own call a second name does, which is never made over another either.
int renameToFreeName(int folder, const char* from, const char* to)
{
#ifdef RENAME_NOREPLACE
    if (renameat2(folder, from, folder, to, RENAME_NOREPLACE) == 0) {
        return 0;
    }
    if (errno != EINVAL && errno != ENOSYS) {
        return errno;
    }
#endif
    if (linkat(folder, from, folder, to, 0) != 0) {
        return errno;
    }
    unlinkat(folder, from, 0);
    return 0;
}

SaveFile publish(int folder, const std::string& workName, const std::string& name, IfTaken ifTaken)
{
    const int error = ifTaken == IfTaken::kLeave
                          ? renameToFreeName(folder, workName.c_str(), name.c_str())
                          : (renameat(folder, workName.c_str(), folder, name.c_str()) == 0 ? 0 : errno);
    if (error == 0) {
        return SaveFile::kSaved;
    }
    unlinkat(folder, workName.c_str(), 0);
    return error == EEXIST ? SaveFile::kNameTaken : SaveFile::kFailed;
}

timespec justBefore(timespec time)
{
    return time.tv_nsec > 0 ? timespec{time.tv_sec, time.tv_nsec - 1}
                            : timespec{time.tv_sec - 1, 999999999};
}

bool isBefore(const timespec& a, const timespec& b)
{
    return a.tv_sec < b.tv_sec || (a.tv_sec == b.tv_sec && a.tv_nsec < b.tv_nsec);
}

// The clock of a file system ticks coarsely, so the time of our own change may be the time of the next one,
// too. Setting the folder's time a little back makes it one that no later change can have.
std::optional<FolderState> markState(int folder)
{
    struct stat changed;
    struct stat marked;
    if (fstat(folder, &changed) != 0) {
        return std::nullopt;
    }
    const timespec times[2] = {{0, UTIME_OMIT}, justBefore(changed.st_mtim)};
    if (futimens(folder, times) != 0 || fstat(folder, &marked) != 0 ||
        !isBefore(marked.st_mtim, changed.st_mtim)) {
        return std::nullopt;
    }
    return stateOf(marked);
}

}  // namespace

std::optional<FolderState> ownFolderState(const std::wstring& folder)
{
    struct stat status;
    if (lstat(nativeFolder(folder).c_str(), &status) != 0 || !S_ISDIR(status.st_mode) ||
        status.st_uid != geteuid()) {
        return std::nullopt;
    }
    return stateOf(status);
}

void deleteFilesInOwnFolder(const std::wstring& folder)
{
    const int number = openFolder(folder);
    const std::unique_ptr<DIR, CloseFolder> listing(number >= 0 ? fdopendir(number) : nullptr);
    struct stat status;
    if (!listing || fstat(number, &status) != 0 || status.st_uid != geteuid()) {
        if (number >= 0 && !listing) {
            close(number);
        }
        return;
    }
    std::vector<std::string> names;
    while (const dirent* const entry = readdir(listing.get())) {
        names.emplace_back(entry->d_name);
    }
    for (const std::string& name : names) {
        unlinkat(number, name.c_str(), 0);  // fails for folders
    }
}

SaveFile saveInOwnFolder(const std::wstring& folder, const std::wstring& name,
                         std::span<const std::span<const unsigned char>> pieces, IfTaken ifTaken,
                         std::optional<FolderState>* state)
{
    const Handle handle(openFolder(folder));
    if (!isOwn(handle)) {
        return SaveFile::kFailed;
    }
    const std::string workName = writeWorkFile(handle.number(), pieces);
    if (workName.empty()) {
        return SaveFile::kFailed;
    }
    const SaveFile outcome = publish(handle.number(), workName, toUtf8(name), ifTaken);
    if (outcome == SaveFile::kSaved && state) {
        *state = markState(handle.number());
    }
    return outcome;
}

}  // namespace platform
