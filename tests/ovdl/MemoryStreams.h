// Streams of a document in memory.
#pragma once

#include <map>
#include <memory>
#include <tuple>
#include <vector>

#include "reader/DocumentFormat.h"
#include "reader/formats/ovdl/DocumentStreams.h"
#include "reader/formats/ovdl/Refusal.h"

namespace ovdl_tests {

/// What a sink was given. Copies lie at multiples of 8.
struct MemoryStreams {
    using Place = std::pair<std::uint32_t, std::uint32_t>;

    static std::vector<std::uint64_t> copyOf(ovdl::Bytes bytes)
    {
        std::vector<std::uint64_t> copy((bytes.size() + 7) / 8);
        std::copy(bytes.begin(), bytes.end(), reinterpret_cast<unsigned char*>(copy.data()));
        return copy;
    }

    struct Stream {
        std::vector<std::uint64_t> words;
        std::size_t size = 0;

        ovdl::Bytes bytes() const { return {reinterpret_cast<const unsigned char*>(words.data()), size}; }
    };

    ovdl::DocumentHeader header;
    Stream document;
    std::map<Place, Stream> tessellations;  ///< By number and piece.
    std::map<std::uint32_t, std::uint32_t> pieces;
};

class MemorySink final : public ovdl::StreamSink {
public:
    void document(const ovdl::DocumentHeader& header, ovdl::Bytes bytes) override
    {
        streams.header = header;
        streams.document = {MemoryStreams::copyOf(bytes), bytes.size()};
    }

    void tessellation(std::uint32_t number, std::uint32_t piece, std::uint32_t pieces,
                      ovdl::Bytes bytes) override
    {
        streams.tessellations[{number, piece}] = {MemoryStreams::copyOf(bytes), bytes.size()};
        streams.pieces[number] = pieces;
    }

    MemoryStreams streams;
};

class MemoryDocumentStreams final : public ovdl::DocumentStreams {
public:
    explicit MemoryDocumentStreams(MemoryStreams streams) : streams_(std::move(streams)) {}

    ovdl::DocumentHeader header() override { return streams_.header; }
    ovdl::Bytes document() override { return streams_.document.bytes(); }
    ovdl::Bytes tessellation(std::uint32_t number, std::uint32_t piece, std::uint32_t) override
    {
        const auto found = streams_.tessellations.find({number, piece});
        if (found == streams_.tessellations.end())
            ovdl::refuse("a stream is missing");
        return found->second.bytes();
    }
    std::uint64_t size() const override
    {
        std::uint64_t size = streams_.document.size;
        for (const auto& [place, stream] : streams_.tessellations)
            size += stream.size;
        return size;
    }

private:
    MemoryStreams streams_;
};

/// Wants everything and never cancels.
class WillingContext final : public ovdl::ReadContext {
public:
    bool acceptVersion(unsigned long) override { return true; }
    void progress(float) override {}
    bool cancelled() override { return false; }
};

}  // namespace ovdl_tests
