#include "raylume/platform/AnonymousFile.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <new>
#include <utility>

#include "raylume/platform/posix/CompoundFileDescriptor.h"
#include "raylume/platform/posix/CompoundWriter.h"

namespace platform {

namespace {

// With large ones libgsf counts a sector of its table too many, behind the end of the file.
constexpr std::size_t kSectors = 512;

std::uint64_t sizeOf(int number)
{
    struct stat status;
    return fstat(number, &status) == 0 ? static_cast<std::uint64_t>(status.st_size) : 0;
}

}  // namespace

AnonymousFile::AnonymousFile(int number) : number_(number)
{
}

AnonymousFile::~AnonymousFile()
{
    close(number_);
}

std::unique_ptr<AnonymousFile> AnonymousFile::create()
{
    const int number = memfd_create("raylume", MFD_CLOEXEC | MFD_ALLOW_SEALING);
    return std::unique_ptr<AnonymousFile>(number >= 0 ? new AnonymousFile(number) : nullptr);
}

std::unique_ptr<AnonymousFile> AnonymousFile::inherited(int number)
{
    struct stat status;
    const int flags = fcntl(number, F_GETFL);
    if (flags < 0 || (flags & O_ACCMODE) != O_RDWR || fstat(number, &status) != 0 ||
        !S_ISREG(status.st_mode)) {
        return nullptr;
    }
    fcntl(number, F_SETFD, FD_CLOEXEC);
    return std::unique_ptr<AnonymousFile>(new AnonymousFile(number));
}

std::uint64_t AnonymousFile::size() const
{
    return sizeOf(number_);
}

std::shared_ptr<const MappedFile> AnonymousFile::sealAndMap()
{
    constexpr int kSeals = F_SEAL_SHRINK | F_SEAL_GROW | F_SEAL_WRITE | F_SEAL_SEAL;
    if (fcntl(number_, F_ADD_SEALS, kSeals) != 0) {
        return nullptr;
    }
    return MappedFile::ofHandle(number_, size());
}

HResult AnonymousFile::createCompound(IStorage** root)
{
    if (!root) {
        return kStorageInvalidPointer;
    }
    *root = nullptr;
    try {
        auto tree = std::make_shared<compound::Element>(L"", compound::Kind::kStorage);
        *root = compound::viewTree(std::move(tree), compound::makeHandleWriter(number_, kSectors), true);
        return kStorageOk;
    } catch (const std::bad_alloc&) {
        return kStorageOutOfMemory;
    }
}

}  // namespace platform
