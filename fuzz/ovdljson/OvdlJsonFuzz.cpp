// A text that is read is written again and read again, to the same text; and goes on to the decoder.
#include <ovdl_schema/document_generated.h>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "reader/formats/ovdl/Decoder.h"
#include "reader/formats/ovdl/JsonText.h"
#include "reader/formats/ovdl/Refusal.h"

namespace {

class Context : public ovdl::ReadContext {
public:
    bool acceptVersion(unsigned long) override { return true; }
    void progress(float) override {}
    bool cancelled() override { return false; }
};

void require(bool holds)
{
    if (!holds)
        std::abort();
}

std::string toJson(ovdl::DocumentStreams& streams)
{
    std::string text;
    const auto sink = ovdl::makeJsonSink([&](std::string_view piece) { text += piece; });
    const ovdl::Bytes document = streams.document();
    sink->document(streams.header(), document);
    const auto* entries = flatbuffers::GetRoot<ovdl::fb::Document>(document.data())->tessellations();
    for (std::uint32_t number = 0; entries && number < entries->size(); ++number) {
        const std::uint32_t pieces = entries->Get(number)->pieces();
        for (std::uint32_t piece = 0; piece < pieces; ++piece)
            sink->tessellation(number, piece, pieces, streams.tessellation(number, piece, pieces));
    }
    sink->finish();
    return text;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view input(reinterpret_cast<const char*>(data), size);
    std::unique_ptr<ovdl::DocumentStreams> streams;
    try {
        streams = ovdl::readJsonStreams(input);
    } catch (const ovdl::Refusal& refusal) {
        require(*refusal.what() != '\0' &&
                std::string_view(refusal.what()).find('\n') == std::string_view::npos);
        return 0;
    }
    require(ovdl::startsLikeOurJson(input));
    const std::string text = toJson(*streams);
    require(toJson(*ovdl::readJsonStreams(text)) == text);
    Context context;
    const ovdl::ReadOutcome outcome = ovdl::decodeDocument(std::move(streams), context);
    require(outcome.kind == ovdl::ReadOutcome::kRead ? outcome.document != nullptr
                                                     : !outcome.reason.empty());
    return 0;
}
