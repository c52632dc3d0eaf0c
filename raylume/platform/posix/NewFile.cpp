#include "raylume/platform/posix/NewFile.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <ctime>
#include <iterator>
#include <utility>

namespace platform {

using compound::Descriptor;
using compound::resultOfErrno;

namespace {

std::string folderOf(const std::string& path)
{
    const std::size_t cut = path.rfind('/');
    if (cut == std::string::npos)
        return ".";
    return cut == 0 ? "/" : path.substr(0, cut);
}

// The new file is not there anyway: what is missing is its folder.
HResult failure(int error)
{
    return error == ENOENT ? kStoragePathNotFound : resultOfErrno(error);
}

}  // namespace

QuietSizeLimit::QuietSizeLimit()
{
    sigemptyset(&limit_);
    sigaddset(&limit_, SIGXFSZ);
    sigset_t pending;
    sigpending(&pending);
    wasPending_ = sigismember(&pending, SIGXFSZ) == 1;
    pthread_sigmask(SIG_BLOCK, &limit_, &before_);
}

QuietSizeLimit::~QuietSizeLimit()
{
    const timespec now = {0, 0};
    while (!wasPending_ && sigtimedwait(&limit_, nullptr, &now) > 0) {
    }
    pthread_sigmask(SIG_SETMASK, &before_, nullptr);
}

NewFile::NewFile(std::string target) : target_(std::move(target)), folder_(folderOf(target_))
{
}

NewFile::~NewFile()
{
    if (!name_.empty())
        unlink(name_.c_str());
}

HResult NewFile::open()
{
    struct stat old;
    const bool replaces = stat(target_.c_str(), &old) == 0;
    const mode_t mode = replaces ? 0600 : 0666;
    openNameless(mode);
    if (!file_.isOpen())
        openNamed(mode);
    if (!file_.isOpen())
        return failure(errno);
    return replaces ? takePermissions(old) : kStorageOk;
}

HResult NewFile::replaceTarget()
{
    if (fsync(file_.number()) != 0 || (name_.empty() && !giveName()) ||
        rename(name_.c_str(), target_.c_str()) != 0)
        return failure(errno);
    name_.clear();
    // The rename is done; that it lasts is all that is left to ask for.
    const Descriptor folder(::open(folder_.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (folder.isOpen())
        fsync(folder.number());
    return kStorageOk;
}

// Tries hidden names until `take` gets one that nobody has.
template <class Take>
bool NewFile::takeFreeName(Take take)
{
    for (int attempt = 0; attempt < 100; ++attempt) {
        const std::string name = hiddenName();
        if (take(name.c_str())) {
            name_ = name;
            return true;
        }
        if (errno != EEXIST)
            return false;
    }
    return false;
}

// A file without a name leaves nothing behind when the process is killed. It gets its name by way
// of the process's folder of open files.
void NewFile::openNameless(mode_t mode)
{
    if (access("/proc/self/fd", X_OK) == 0)
        file_ = Descriptor(::open(folder_.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, mode));
}

void NewFile::openNamed(mode_t mode)
{
    constexpr int kFlags = O_CREAT | O_EXCL | O_RDWR | O_CLOEXEC | O_NOFOLLOW;
    takeFreeName([&](const char* name) {
        file_ = Descriptor(::open(name, kFlags, mode));
        return file_.isOpen();
    });
}

bool NewFile::giveName()
{
    const std::string opened = "/proc/self/fd/" + std::to_string(file_.number());
    return takeFreeName([&](const char* name) {
        return linkat(AT_FDCWD, opened.c_str(), AT_FDCWD, name, AT_SYMLINK_FOLLOW) == 0;
    });
}

std::string NewFile::hiddenName() const
{
    static constexpr char kLetters[] = "abcdefghijklmnopqrstuvwxyz234567";
    unsigned char random[12];
    if (getentropy(random, sizeof(random)) != 0)
        std::fill(std::begin(random), std::end(random), std::uint8_t{0});
    std::string name = folder_ + "/.raylume-";
    for (const unsigned char byte : random)
        name += kLetters[byte % 32];
    return name;
}

HResult NewFile::takePermissions(const struct stat& old)
{
    // Only root may give files away; whoever else writes becomes the owner.
    [[maybe_unused]] const int owned = fchown(file_.number(), old.st_uid, old.st_gid);
    return fchmod(file_.number(), old.st_mode & 07777) == 0 ? kStorageOk : resultOfErrno(errno);
}

}  // namespace platform
