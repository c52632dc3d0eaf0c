#include <ovdl_schema/document_generated.h>

#include <cstdio>
#include <string>

#include "raylume/platform/Reference.h"
#include "reader/formats/ovdl/CompoundStreams.h"
#include "reader/formats/ovdl/Refusal.h"

namespace ovdl {
namespace {

constexpr std::uint32_t kNew = kModeExclusive + kModeReadWrite + kModeCreate;

std::string storageFailure(HResult result)
{
    char text[80];
    std::snprintf(text, sizeof(text), "the storage fails (0x%08X)", static_cast<unsigned>(result));
    return text;
}

void check(HResult result)
{
    if (result == kStorageTooLarge)
        refuse("the document has more parts than fit into a compound file");
    if (result < 0)
        refuse(storageFailure(result));
}

platform::Reference<IStorage> newStorage(IStorage& parent, const std::wstring& name)
{
    platform::Reference<IStorage> made;
    check(parent.CreateStorage(name.c_str(), kNew, made.out()));
    return made;
}

void writeStream(IStorage& parent, const std::wstring& name, Bytes bytes)
{
    platform::Reference<IStream> stream;
    check(parent.CreateStream(name.c_str(), kNew, stream.out()));
    if (!bytes.empty())
        check(stream->Write(bytes.data(), static_cast<std::uint32_t>(bytes.size()), nullptr));
}

class CompoundSink final : public StreamSink {
public:
    explicit CompoundSink(IStorage& root) : root_(root) {}

    void document(const DocumentHeader& header, Bytes bytes) override
    {
        check(writeHeader(root_, header));
        writeStream(root_, kDocumentName, bytes);
        destroyTessellations();
        const auto* entries = flatbuffers::GetRoot<fb::Document>(bytes.data())->tessellations();
        const std::uint32_t count = entries ? entries->size() : 0;
        grouped_ = count >= kGroupedFrom;
        if (count > 0)
            all_ = newStorage(root_, kTessellationName);
    }

    void tessellation(std::uint32_t number, std::uint32_t piece, std::uint32_t pieces, Bytes bytes) override
    {
        if (grouped_ && number % kGroup == 0 && piece == 0)
            group_ = newStorage(*all_.get(), L"g" + std::to_wstring(number / kGroup));
        IStorage& parent = grouped_ ? *group_.get() : *all_.get();
        if (pieces == 1)
            return writeStream(parent, std::to_wstring(number), bytes);
        if (piece == 0)
            pieces_ = newStorage(parent, std::to_wstring(number));
        writeStream(*pieces_.get(), std::to_wstring(piece), bytes);
    }

private:
    void destroyTessellations()
    {
        const HResult result = root_.DestroyElement(kTessellationName);
        if (result != kStorageNotFound)
            check(result);
    }

    IStorage& root_;
    bool grouped_ = false;
    platform::Reference<IStorage> all_;
    platform::Reference<IStorage> group_;
    platform::Reference<IStorage> pieces_;
};

}  // namespace

std::unique_ptr<StreamSink> makeCompoundSink(IStorage& root)
{
    return std::make_unique<CompoundSink>(root);
}

}  // namespace ovdl
