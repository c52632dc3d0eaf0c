// From the streams of a document to objects of the reader interface.
#pragma once

#include <memory>

#include "reader/DocumentFormat.h"
#include "reader/formats/ovdl/DocumentContents.h"
#include "reader/formats/ovdl/DocumentStreams.h"

namespace ovdl {

/// A document of this folder's formats, opened: besides what every format gives, all its configurations.
class DecodedDocument : public ReadDocument {
public:
    /// Borrowed from this object.
    virtual DocumentContents contents() = 0;
};

/// Verifies every buffer, checks every number, and makes the objects. Arrays of geometry are used where they
/// lie, so the document keeps `streams`.
///
/// Never raises but std::bad_alloc and what `context` raises: a damaged document is an outcome with a
/// reason.
ReadOutcome decodeDocument(std::unique_ptr<DocumentStreams> streams, ReadContext& context);

}  // namespace ovdl
