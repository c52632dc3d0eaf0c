// From objects of the reader interface to the streams of a document.
#pragma once

#include "reader/formats/ovdl/DocumentContents.h"
#include "reader/formats/ovdl/DocumentStreams.h"

namespace ovdl {

/// Writes a whole document into `sink`, one tessellation after another: besides what the sink keeps, one
/// piece is in memory at a time.
///
/// Pieces stay below `largestPiece` bytes.
///
/// Errors: raises Refusal for objects that no document can hold (strips that need more vertices than the
///   arrays have, a face too large for one piece), before the sink is given anything, and hands on what the
///   sink raises.
void encodeDocument(const DocumentContents& contents, StreamSink& sink,
                    std::uint64_t largestPiece = kLargestPiece);

}  // namespace ovdl
