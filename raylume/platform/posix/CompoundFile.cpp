#include "raylume/platform/CompoundFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
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

// Where the links of a path lead to, so that the file is replaced and not a link to it.
std::optional<std::string> resolved(const std::string& native)
{
    const std::unique_ptr<char, FreeMemory> path(realpath(native.c_str(), nullptr));
    return path ? std::optional<std::string>(path.get()) : std::nullopt;
}

bool folderExists(const std::string& native)
{
    struct stat status;
    const std::size_t cut = native.rfind('/');
    const std::string folder = cut == std::string::npos ? "." : native.substr(0, cut + 1);
    return stat(folder.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
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
            return openFailure(native, errno);
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
    if (!present) {
        target = native;
        return kStorageOk;
    }
    if (!replace && (result >= 0 || result == kStorageAccessDenied))
        return kStorageExists;
    if (result < 0)
        return result;
    const auto path = resolved(native);
    target = path.value_or(native);
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
