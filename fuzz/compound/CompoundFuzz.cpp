// One compound file for each input, from memory: its directory, then every stream to its end.
#include <cstdlib>
#include <cstring>
#include <vector>

#include "raylume/platform/posix/CompoundReader.h"

namespace {

using namespace platform::compound;

void require(bool holds)
{
    if (!holds)
        std::abort();
}

class MemoryBytes final : public FileBytes {
public:
    MemoryBytes(const std::uint8_t* data, std::size_t size) : bytes_(data, data + size) {}

    std::uint64_t size() const override { return bytes_.size(); }
    bool read(std::uint64_t offset, void* buffer, std::size_t count) const override
    {
        if (offset > bytes_.size() || count > bytes_.size() - offset)
            return false;
        if (count > 0)
            std::memcpy(buffer, bytes_.data() + offset, count);
        return true;
    }

private:
    std::vector<std::uint8_t> bytes_;
};

// Streams share no sectors, so all of them together are no larger than the file.
class Walk {
public:
    explicit Walk(std::uint64_t limit) : limit_(limit) {}

    void visit(Element& element)
    {
        require(element.depth() <= kDeepestStorage);
        for (const ElementPtr& child : element.children()) {
            require(child->depth() == element.depth() + 1);
            require(element.find(child->name()) != nullptr);
            child->kind() == Kind::kStorage ? visit(*child) : read(*child);
        }
    }

private:
    void read(Element& stream)
    {
        copyBytes(stream, [this](const void* piece, std::size_t count) {
            total_ += count;
            require(total_ <= limit_);
            sum_ = sum_ + static_cast<const unsigned char*>(piece)[count - 1];
            return true;
        });
    }

    std::uint64_t limit_;
    std::uint64_t total_ = 0;
    volatile unsigned sum_ = 0;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    ElementPtr root;
    std::size_t sectorSize = 0;
    if (readTree(std::make_shared<MemoryBytes>(data, size), root, sectorSize) < 0)
        return 0;
    require(root && (sectorSize == 512 || sectorSize == 4096));
    Walk(size).visit(*root);
    return 0;
}
