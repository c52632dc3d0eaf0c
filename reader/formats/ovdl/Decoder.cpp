#include "reader/formats/ovdl/Decoder.h"

#include <cstring>
#include <utility>

#include "reader/formats/ovdl/CompoundStreams.h"
#include "reader/formats/ovdl/Decoding.h"
#include "reader/formats/ovdl/TextEncoding.h"
#include "reader/formats/ovdl/Verification.h"

namespace ovdl {
namespace decoding {

std::string_view Decoding::textBytes(std::uint32_t number) const
{
    if (number == 0)
        return {};
    const auto* texts = document.texts();
    if (!texts || number > texts->size())
        refuse("text " + std::to_string(number) + " is not there");
    const flatbuffers::String& text = *texts->Get(number - 1);
    return {text.c_str(), text.size()};
}

std::wstring Decoding::text(std::uint32_t number) const
{
    const std::string_view bytes = textBytes(number);
    budget.charge(bytes.size(), sizeof(wchar_t));
    steps.tick(bytes.size() / 64);
    return decodeText(bytes);
}

namespace {

class OvdlDocument final : public DecodedDocument {
public:
    explicit OvdlDocument(std::unique_ptr<DocumentStreams> streams) : streams_(std::move(streams)) {}

    OVDLPartDocument* part() override { return objects_.part.get(); }
    OVDLAssemblyDocument* assembly() override { return objects_.assembly.get(); }

    uoTempAssemblySHDDataArray_c* configuration(const std::wstring& name) override
    {
        const auto found = objects_.configurations.find(name);
        return found == objects_.configurations.end() ? nullptr : &found->second.array;
    }

    DocumentContents contents() override
    {
        DocumentContents contents;
        contents.documentVersion = header_.documentVersion;
        contents.displayListVersion = header_.displayListVersion;
        contents.part = part();
        contents.assembly = assembly();
        for (auto& [name, configuration] : objects_.configurations)
            contents.configurations.emplace(name, &configuration.array);
        contents.reason = reason_;
        return contents;
    }

    void read(ReadContext& context)
    {
        header_ = streams_->header();
        if (!context.acceptVersion(header_.documentVersion))
            refuse("the host refuses documents of version " + std::to_string(header_.documentVersion));
        if (header_.formatVersion > kFormatVersion)
            refuse("the document has format version " + std::to_string(header_.formatVersion) +
                   ", and this reader knows them up to " + std::to_string(kFormatVersion));
        const Bytes bytes = aligned(streams_->document());
        decode(verifiedRoot<fb::Document>(bytes, kDocumentIdentifier, "the document's description"),
               context);
    }

    /// The library takes the part where there are both.
    bool isRejected() const
    {
        return objects_.part ? objects_.part->rejected : objects_.assembly->rejected;
    }

    const std::string& reason() const { return reason_; }

private:
    void decode(const fb::Document& document, ReadContext& context)
    {
        Budget budget(streams_->size());
        Steps steps(context);
        steps.ask();
        Decoding decoding{document, objects_, budget, steps};
        decodeAppearances(decoding);
        decodeLightsAndScenes(decoding);
        decodeTessellations(*streams_, decoding);
        decodeDocuments(decoding);
        checkModels(decoding, streams_->size());
        (void)decoding.text(document.reason());  // Refused when it is no text.
        reason_ = decoding.textBytes(document.reason());
        steps.ask();
    }

    Bytes aligned(Bytes bytes) { return decoding::aligned(bytes, objects_); }

    std::unique_ptr<DocumentStreams> streams_;
    DecodedObjects objects_;
    DocumentHeader header_;
    std::string reason_;
};

ReadOutcome outcomeOf(std::unique_ptr<OvdlDocument> document)
{
    ReadOutcome outcome;
    if (document->isRejected()) {
        outcome.kind = ReadOutcome::kRejected;
        outcome.reason = reasonLine(decodeText(document->reason()));
        if (outcome.reason.empty())
            outcome.reason = "the document says itself that it is rejected";
    }
    outcome.document = std::move(document);
    return outcome;
}

}  // namespace

Bytes aligned(Bytes bytes, DecodedObjects& objects)
{
    if (isAligned(bytes) || bytes.size() >= kLargestBuffer)
        return bytes;
    auto& moved = objects.movedStreams.emplace_back((bytes.size() + kAlignment - 1) / kAlignment);
    std::memcpy(moved.data(), bytes.data(), bytes.size());
    return {reinterpret_cast<const unsigned char*>(moved.data()), bytes.size()};
}

}  // namespace decoding

ReadOutcome decodeDocument(std::unique_ptr<DocumentStreams> streams, ReadContext& context)
{
    ReadOutcome outcome;
    try {
        auto document = std::make_unique<decoding::OvdlDocument>(std::move(streams));
        document->read(context);
        return decoding::outcomeOf(std::move(document));
    } catch (const Refusal& refusal) {
        outcome.kind = ReadOutcome::kRejected;
        outcome.reason = refusal.what();
    } catch (const decoding::Cancellation&) {
        outcome.kind = ReadOutcome::kCancelled;
    }
    return outcome;
}

}  // namespace ovdl
