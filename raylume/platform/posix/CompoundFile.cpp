#include "raylume/platform/CompoundFile.h"

#include <memory>
#include <new>
#include <utility>

#include "raylume/platform/Paths.h"
#include "raylume/platform/posix/CompoundFileDescriptor.h"
#include "raylume/platform/posix/CompoundReader.h"
#include "raylume/platform/posix/CompoundWriter.h"
#include "raylume/platform/posix/ReplacementTarget.h"

namespace platform {

namespace {

using namespace compound;

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
