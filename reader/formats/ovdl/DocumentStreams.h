// The streams of an .ovdl document, wherever they stand: in a compound file, in JSON text, in memory.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "reader/DocumentHeader.h"

namespace ovdl {

using Bytes = std::span<const unsigned char>;

/// A document is read from here. Nothing that it gives is trusted.
///
/// Errors: raises Refusal for a stream that is missing or cannot be read.
class DocumentStreams {
public:
    DocumentStreams() = default;
    DocumentStreams(const DocumentStreams&) = delete;
    DocumentStreams& operator=(const DocumentStreams&) = delete;
    virtual ~DocumentStreams() = default;

    virtual DocumentHeader header() = 0;
    /// The FlatBuffer with the root table Document. Stays where it is as long as this object lives, as all
    /// that is given here; begins at an address that is a multiple of 8.
    virtual Bytes document() = 0;
    /// The FlatBuffer with the root table Tessellation of that piece; `pieces` is how many the document
    /// says that the tessellation has.
    virtual Bytes tessellation(std::uint32_t number, std::uint32_t piece, std::uint32_t pieces) = 0;
    /// How many bytes there are in all, of which a hostile document may ask a multiple and no more.
    virtual std::uint64_t size() const = 0;
};

/// A document is written to here: first the document itself, then the pieces of each tessellation in
/// their order. The bytes are the caller's and go with the call.
///
/// Errors: raises Refusal when something cannot be written.
class StreamSink {
public:
    StreamSink() = default;
    StreamSink(const StreamSink&) = delete;
    StreamSink& operator=(const StreamSink&) = delete;
    virtual ~StreamSink() = default;

    virtual void document(const DocumentHeader& header, Bytes bytes) = 0;
    virtual void tessellation(std::uint32_t number, std::uint32_t piece, std::uint32_t pieces,
                              Bytes bytes) = 0;
};

inline constexpr char kDocumentIdentifier[] = "OVDD";
inline constexpr char kTessellationIdentifier[] = "OVDT";
/// A FlatBuffer of this size or more is refused before anything looks at it.
inline constexpr std::uint64_t kLargestBuffer = std::uint64_t{1} << 31;
/// A writer cuts tessellations into pieces below this size.
inline constexpr std::uint64_t kLargestPiece = std::uint64_t{1} << 30;

}  // namespace ovdl
