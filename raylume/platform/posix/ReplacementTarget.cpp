#include "raylume/platform/posix/ReplacementTarget.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <utility>

#include "raylume/platform/posix/CompoundFileDescriptor.h"

namespace platform {

using namespace compound;

namespace {

struct FreeMemory {
    void operator()(char* memory) const { std::free(memory); }
};

std::optional<std::string> realPath(const std::string& native)
{
    const std::unique_ptr<char, FreeMemory> path(realpath(native.c_str(), nullptr));
    return path ? std::optional<std::string>(path.get()) : std::nullopt;
}

// Folder, with its separator, and name.
std::pair<std::string, std::string> split(const std::string& native)
{
    const std::size_t cut = native.rfind('/');
    if (cut == std::string::npos)
        return {"./", native};
    return {native.substr(0, cut + 1), native.substr(cut + 1)};
}

// What a link says, seen from where it lies; the path itself when it is no link.
std::string followLink(const std::string& native)
{
    char text[PATH_MAX];
    const ssize_t length = readlink(native.c_str(), text, sizeof(text));
    if (length <= 0)
        return native;
    const std::string target(text, static_cast<std::size_t>(length));
    return target[0] == '/' ? target : split(native).first + target;
}

bool folderExists(const std::string& native)
{
    struct stat status;
    return stat(split(native).first.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

HResult openFailure(const std::string& native, int error)
{
    return error == ENOENT && !folderExists(native) ? kStoragePathNotFound : resultOfErrno(error);
}

}  // namespace

std::optional<std::string> resolved(const std::string& native)
{
    if (auto path = realPath(native))
        return path;
    constexpr int kMostLinks = 40;
    std::string last = native;
    for (int i = 0; i < kMostLinks; ++i)
        last = followLink(last);
    const auto [folder, name] = split(last);
    const auto real = realPath(folder);
    return real && !name.empty() ? std::optional<std::string>(*real + "/" + name) : std::nullopt;
}

// Without O_NONBLOCK the open itself would wait for the other end of a pipe.
HResult openRegular(const std::string& native, bool writable, std::shared_ptr<const FileBytes>& file)
{
    const int access = writable ? O_RDWR : O_RDONLY;
    Descriptor descriptor(open(native.c_str(), access | O_NONBLOCK | O_CLOEXEC | O_NOCTTY));
    if (!descriptor.isOpen())
        return openFailure(native, errno);
    struct stat status;
    if (fstat(descriptor.number(), &status) != 0 || !S_ISREG(status.st_mode))
        return kStorageAccessDenied;
    file = std::make_shared<OpenFile>(std::move(descriptor), static_cast<std::uint64_t>(status.st_size));
    return kStorageOk;
}

HResult findTarget(const std::string& native, bool replace, std::string& target, bool& present)
{
    std::shared_ptr<const FileBytes> file;
    const HResult result = openRegular(native, replace, file);
    present = result != kStorageNotFound;
    if (!replace && (result >= 0 || result == kStorageAccessDenied))
        return kStorageExists;
    if (result < 0 && present)
        return result;
    const auto path = resolved(native);
    if (!path)
        return kStoragePathNotFound;
    target = *path;
    return kStorageOk;
}

}  // namespace platform
