#include "raylume/platform/CompoundFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <memory>
#include <new>
#include <optional>
#include <utility>

#include "raylume/platform/Paths.h"
#include "raylume/platform/posix/CompoundFileDescriptor.h"
#include "raylume/platform/posix/CompoundReader.h"
#include "raylume/platform/posix/CompoundWriter.h"

namespace platform {

namespace {

using namespace compound;

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

// Where the links of a path lead to, from the root of the file system: a file is replaced there, so that
// no link is replaced instead, and wherever the working folder is by then. The file itself may be
// missing, its folder may not.
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

bool folderExists(const std::string& native)
{
    struct stat status;
    return stat(split(native).first.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

HResult openFailure(const std::string& native, int error)
{
    return error == ENOENT && !folderExists(native) ? kStoragePathNotFound : resultOfErrno(error);
}

// Without O_NONBLOCK the open itself would wait for the other end of a pipe. A file that this user may
// not write is opened for writing only to learn that.
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

HResult openTree(const std::wstring& path, bool writable, IStorage** root)
{
    const std::string native = nativePath(path);
    std::shared_ptr<const FileBytes> file;
    HResult result = openRegular(native, writable, file);
    ElementPtr tree;
    std::size_t sectorSize = 0;
    if (result >= 0)
        result = readTree(file, tree, sectorSize);
    if (result < 0)
        return result;
    std::unique_ptr<TreeWriter> writer;
    if (writable) {
        const auto target = resolved(native);
        if (!target)
            return kStoragePathNotFound;
        writer = makeFileWriter(*target, sectorSize);
    }
    *root = viewTree(std::move(tree), std::move(writer), false);
    return kStorageOk;
}

// The target of a new tree. What stands there has to be a file that may be replaced.
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

HResult createTree(const std::wstring& path, bool replace, IStorage** root)
{
    constexpr std::size_t kSmallSectors = 512;
    const std::string native = nativePath(path);
    std::string target;
    bool present = false;
    const HResult result = findTarget(native, replace, target, present);
    if (result < 0)
        return result;
    auto writer = makeFileWriter(target, kSmallSectors);
    auto tree = std::make_shared<Element>(L"", Kind::kStorage);
    const HResult made = present ? kStorageOk : writer->write(*tree);
    if (made >= 0)
        *root = viewTree(std::move(tree), std::move(writer), present);
    return made;
}

template <class Operation>
HResult guarded(IStorage** root, Operation operation)
{
    if (!root)
        return kStorageInvalidPointer;
    *root = nullptr;
    try {
        return operation();
    } catch (const std::bad_alloc&) {
        return kStorageOutOfMemory;
    }
}

}  // namespace

HResult openCompoundFile(const std::wstring& path, bool writable, IStorage** root)
{
    return guarded(root, [&] { return openTree(path, writable, root); });
}

HResult createCompoundFile(const std::wstring& path, bool replace, IStorage** root)
{
    return guarded(root, [&] { return createTree(path, replace, root); });
}

}  // namespace platform
