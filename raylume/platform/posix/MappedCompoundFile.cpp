#include "raylume/platform/MappedCompoundFile.h"

#include <cstring>
#include <new>
#include <utility>

#include "raylume/platform/posix/CompoundReader.h"

namespace platform {

namespace {

using namespace compound;

class MappedBytes final : public FileBytes {
public:
    explicit MappedBytes(std::shared_ptr<const MappedFile> file) : file_(std::move(file)) {}

    std::uint64_t size() const override { return file_->size(); }
    const unsigned char* inMemory() const override { return file_->data(); }

    bool read(std::uint64_t offset, void* buffer, std::size_t count) const override
    {
        if (offset > size() || count > size() - offset)
            return false;
        if (count != 0)
            std::memcpy(buffer, file_->data() + offset, count);
        return true;
    }

private:
    std::shared_ptr<const MappedFile> file_;
};

HResult openTree(std::shared_ptr<const MappedFile> file, IStorage** root)
{
    ElementPtr tree;
    std::size_t sectorSize = 0;
    const HResult result = readTree(std::make_shared<MappedBytes>(std::move(file)), tree, sectorSize);
    if (result >= 0)
        *root = viewTree(std::move(tree), nullptr, false);
    return result;
}

}  // namespace

HResult openMappedCompoundFile(std::shared_ptr<const MappedFile> file, IStorage** root)
{
    if (!root)
        return kStorageInvalidPointer;
    *root = nullptr;
    if (!file)
        return kStorageInvalidPointer;
    try {
        return openTree(std::move(file), root);
    } catch (const std::bad_alloc&) {
        return kStorageOutOfMemory;
    }
}

}  // namespace platform
