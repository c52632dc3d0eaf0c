// Compound files of the machine in memory: the same tree and views as the real ones, saved as a copy.
#include "raylume/platform/CompoundFile.h"
#include "tests/memory_platform/MemoryPlatform.h"

namespace platform {

using memory_platform::machine;
using memory_platform::tidyPath;
using namespace compound;

namespace {

ElementPtr copyOf(Element& element)
{
    auto copy = std::make_shared<Element>(element.name(), element.kind(), element.depth());
    copy->classId = element.classId;
    copy->modified = element.modified;
    for (const ElementPtr& child : element.children())
        copy->add(copyOf(*child));
    if (element.kind() == Kind::kStream) {
        EditedBytes& bytes = *copy->edited();
        copyBytes(element, [&bytes](const void* piece, std::size_t count) {
            bytes.write(bytes.size(), piece, count);
            return true;
        });
    }
    return copy;
}

class MemoryWriter final : public TreeWriter {
public:
    explicit MemoryWriter(std::wstring path) : path_(std::move(path)) {}

    HResult write(Element& root) override
    {
        ++machine().compoundWrites;
        if (machine().compoundWriteResult >= 0)
            machine().compoundFiles[path_] = copyOf(root);
        return machine().compoundWriteResult;
    }

private:
    std::wstring path_;
};

}  // namespace

HResult openCompoundFile(const std::wstring& path, bool writable, IStorage** root)
{
    *root = nullptr;
    const auto found = machine().compoundFiles.find(tidyPath(path));
    if (found == machine().compoundFiles.end())
        return machine().entries.count(tidyPath(path)) != 0 ? kStorageExists : kStorageNotFound;
    auto writer = writable ? std::make_unique<MemoryWriter>(found->first) : nullptr;
    *root = viewTree(copyOf(*found->second), std::move(writer), false);
    return kStorageOk;
}

HResult createCompoundFile(const std::wstring& path, bool replace, IStorage** root)
{
    *root = nullptr;
    const std::wstring tidy = tidyPath(path);
    const bool present = machine().compoundFiles.count(tidy) != 0 || machine().entries.count(tidy) != 0;
    if (present && !replace)
        return kStorageExists;
    auto writer = std::make_unique<MemoryWriter>(tidy);
    auto tree = std::make_shared<Element>(L"", Kind::kStorage);
    const HResult result = present ? kStorageOk : writer->write(*tree);
    if (result >= 0)
        *root = viewTree(std::move(tree), std::move(writer), present);
    return result;
}

}  // namespace platform
