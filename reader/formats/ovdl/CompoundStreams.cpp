#include "reader/formats/ovdl/CompoundStreams.h"

#include <cstdio>
#include <new>
#include <string>
#include <utility>
#include <vector>

#include "raylume/platform/MappedCompoundFile.h"
#include "raylume/platform/Reference.h"
#include "reader/formats/ovdl/Refusal.h"

namespace ovdl {
namespace {

using StorageReference = platform::Reference<IStorage>;

std::string numberText(HResult result)
{
    char text[16];
    std::snprintf(text, sizeof(text), "0x%08X", static_cast<unsigned>(result));
    return text;
}

// Which element it was is told by `what`.
void check(HResult result, const std::string& what)
{
    if (result == kStorageOutOfMemory)
        throw std::bad_alloc();
    if (result == kStorageNotFound)
        refuse(what + " is missing");
    if (result < 0)
        refuse(what + " cannot be read (" + numberText(result) + ")");
}

std::string elementName(std::uint32_t number, std::uint32_t piece, std::uint32_t pieces)
{
    const std::string name = "tessellation " + std::to_string(number);
    return pieces == 1 ? name : name + ", piece " + std::to_string(piece);
}

HResult openStorage(IStorage& parent, const std::wstring& name, StorageReference& storage)
{
    return parent.OpenStorage(name.c_str(), kModeExclusive + kModeRead, storage.out());
}

class CompoundStreams final : public DocumentStreams {
public:
    explicit CompoundStreams(std::shared_ptr<const platform::MappedFile> file) : size_(file->size())
    {
        check(platform::openMappedCompoundFile(std::move(file), root_.out()), "the compound file");
    }

    DocumentHeader header() override
    {
        const auto header = readHeader(*root_.get());
        if (!header)
            refuse("the document has no header");
        return *header;
    }

    Bytes document() override { return bytesOf(*root_.get(), kDocumentName, "the document's description"); }

    Bytes tessellation(std::uint32_t number, std::uint32_t piece, std::uint32_t pieces) override
    {
        const std::string what = elementName(number, piece, pieces);
        IStorage& parent = parentOf(number, what);
        const std::wstring name = std::to_wstring(number);
        if (pieces == 1)
            return bytesOf(parent, name, what);
        if (!pieces_ || piecesOf_ != number)
            check(openStorage(parent, name, pieces_), what);
        piecesOf_ = number;
        return bytesOf(*pieces_.get(), std::to_wstring(piece), what);
    }

    std::uint64_t size() const override { return size_; }

private:
    void openAll(const std::string& what)
    {
        check(openStorage(*root_.get(), kTessellationName, all_), what);
        grouped_ = openStorage(*all_.get(), L"g0", group_) >= 0;
    }

    // The storage that holds this tessellation; consecutive ones mostly share it.
    IStorage& parentOf(std::uint32_t number, const std::string& what)
    {
        if (!all_)
            openAll(what);
        if (!grouped_)
            return *all_.get();
        if (number / kGroup != groupNumber_) {
            check(openStorage(*all_.get(), L"g" + std::to_wstring(number / kGroup), group_), what);
            groupNumber_ = number / kGroup;
        }
        return *group_.get();
    }

    Bytes bytesOf(IStorage& storage, const std::wstring& name, const std::string& what)
    {
        platform::StreamBytes bytes;
        check(platform::streamBytes(storage, name.c_str(), bytes), what);
        kept_.push_back(bytes.data);
        return {bytes.data.get(), bytes.size};
    }

    std::uint64_t size_;
    StorageReference root_;
    StorageReference all_;
    StorageReference group_;
    StorageReference pieces_;
    bool grouped_ = false;
    std::uint32_t groupNumber_ = 0;
    std::uint32_t piecesOf_ = 0;
    std::vector<std::shared_ptr<const unsigned char>> kept_;
};

}  // namespace

std::unique_ptr<DocumentStreams> openCompoundStreams(std::shared_ptr<const platform::MappedFile> file)
{
    return std::make_unique<CompoundStreams>(std::move(file));
}

}  // namespace ovdl
