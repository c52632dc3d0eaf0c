// Saving and deleting in folders of the user's own.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <string_view>
#include <utility>
#include <vector>

#include "raylume/platform/Folders.h"
#include "raylume/platform/Paths.h"
#include "raylume/platform/Text.h"
#include "raylume/platform/posix/Handles.h"

namespace platform {

namespace {

// A separator at the end would follow a link, so it goes.
std::string nativeFolder(const std::wstring& folder)
{
    std::string native = nativePath(folder);
    while (native.size() > 1 && native.back() == '/') {
        native.pop_back();
    }
    return native;
}

bool isOwn(const FileHandle& folder)
{
    struct stat status;
    return folder.isOpen() && fstat(folder.number(), &status) == 0 && status.st_uid == geteuid();
}

FileHandle openFolder(const std::wstring& folder)
{
    return FileHandle(open(nativeFolder(folder).c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
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

using Pieces = std::span<const std::span<const unsigned char>>;

std::uint64_t byteCount(Pieces pieces)
{
    std::uint64_t count = 0;
    for (const auto& piece : pieces) {
        count += piece.size();
    }
    return count;
}

bool writeAndClose(FileHandle file, Pieces pieces)
{
    bool isWritten = true;
    for (const auto& piece : pieces) {
        isWritten = isWritten &&
                    writeAll(file.number(), {reinterpret_cast<const char*>(piece.data()), piece.size()});
    }
    return file.close() && isWritten;
}

// Under a name of its own in the folder; empty when that failed.
std::string writeWorkFile(int folder, Pieces pieces)
{
    constexpr int kTries = 100;  // a process that had this number before may have left some behind
    for (int attempt = 0; attempt < kTries && mayHold(byteCount(pieces)); ++attempt) {
        const std::string name = nextWorkName();
        FileHandle file(openat(folder, name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
        if (file.isOpen()) {
            const bool isWritten = writeAndClose(std::move(file), pieces);
            if (!isWritten) {
                unlinkat(folder, name.c_str(), 0);
            }
            return isWritten ? name : std::string();
        }
        if (errno != EEXIST) {
            return {};
        }
    }
    return {};
}

bool isUnsupported(int error)
{
    return error == EINVAL || error == ENOSYS || error == ENOTSUP || error == EPERM;
}

// For file systems that have nothing better. Whoever takes the name between the two calls loses his file,
// but the folder is of the user's own.
int renameIfMissing(int folder, const char* from, const char* to)
{
    struct stat status;
    if (fstatat(folder, to, &status, AT_SYMLINK_NOFOLLOW) == 0) {
        return EEXIST;
    }
    return errno == ENOENT && renameat(folder, from, folder, to) == 0 ? 0 : errno;
}

// Without the file system's own call a second name does, which is never made over another either.
int renameToFreeName(int folder, const char* from, const char* to)
{
#ifdef RENAME_NOREPLACE
    if (renameat2(folder, from, folder, to, RENAME_NOREPLACE) == 0) {
        return 0;
    }
    if (!isUnsupported(errno)) {
        return errno;
    }
#endif
    if (linkat(folder, from, folder, to, 0) == 0) {
        unlinkat(folder, from, 0);
        return 0;
    }
    return isUnsupported(errno) ? renameIfMissing(folder, from, to) : errno;
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
// too. Setting the folder's time a little back makes it one that no change from here on can have. What
// somebody else changes between the renaming and this goes unseen with it: such an entry is found when the
// numbering comes to its name, which is never written over.
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
    FileHandle handle = openFolder(folder);
    const OpenFolder listing(isOwn(handle) ? fdopendir(handle.number()) : nullptr);
    if (!listing) {
        return;
    }
    const int number = handle.release();  // the listing closes it
    std::vector<std::string> names;
    while (const dirent* const entry = readdir(listing.get())) {
        names.emplace_back(entry->d_name);
    }
    for (const std::string& name : names) {
        unlinkat(number, name.c_str(), 0);  // fails for folders
    }
}

SaveFile saveInOwnFolder(const std::wstring& folder, const std::wstring& name, Pieces pieces,
                         IfTaken ifTaken, std::optional<FolderState>* state)
{
    const FileHandle handle = openFolder(folder);
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
