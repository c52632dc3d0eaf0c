// Buffers of documents, made by hand and at random, and what they say, for tests of JSON.
#pragma once

#include <flatbuffers/flatbuffers.h>

#include <functional>
#include <map>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "reader/formats/ovdl/DocumentStreams.h"
#include "reader/formats/ovdl/JsonText.h"

namespace json_tests {

using Buffer = std::vector<unsigned char>;

/// Streams in memory, to be filled by hand or as a sink.
struct MemoryStreams : public ovdl::DocumentStreams, public ovdl::StreamSink {
    MemoryStreams() = default;
    explicit MemoryStreams(Buffer bytes) : documentBytes(std::move(bytes)) {}

    ovdl::DocumentHeader headerRead{1, 12000, 0};
    Buffer documentBytes;
    /// By number and piece.
    std::map<std::pair<std::uint32_t, std::uint32_t>, Buffer> tessellations;

    ovdl::DocumentHeader header() override { return headerRead; }
    ovdl::Bytes document() override { return documentBytes; }
    ovdl::Bytes tessellation(std::uint32_t number, std::uint32_t piece, std::uint32_t) override
    {
        return tessellations.at({number, piece});
    }
    std::uint64_t size() const override { return documentBytes.size(); }

    void document(const ovdl::DocumentHeader& header, ovdl::Bytes bytes) override
    {
        headerRead = header;
        documentBytes.assign(bytes.begin(), bytes.end());
    }
    void tessellation(std::uint32_t number, std::uint32_t piece, std::uint32_t, ovdl::Bytes bytes) override
    {
        tessellations[{number, piece}].assign(bytes.begin(), bytes.end());
    }
};

/// A document with one root table, which `fill` makes, and nothing else.
Buffer documentOf(const std::function<flatbuffers::uoffset_t(flatbuffers::FlatBufferBuilder&)>& fill);

/// The JSON of streams.
std::string toJson(ovdl::DocumentStreams& streams);
/// The JSON of a document without tessellations.
std::string toJson(const Buffer& document);

/// A text with all that the streams say, by the schema and in its order: every field that differs from its
/// default or cannot be left out, bits of numbers in hexadecimal, texts and runs where they are used.
std::string meaning(ovdl::DocumentStreams& streams);
/// That of a document alone.
std::string meaning(const Buffer& document);

/// A document whose every field has a random value. `changed` gets the names ("Light.sourceHaze") of all
/// fields that got another value than their default.
void makeRandom(std::mt19937& random, MemoryStreams& streams, std::set<std::string>& changed);

/// The names of all fields that a random document can change.
std::set<std::string> allFields();

}  // namespace json_tests
