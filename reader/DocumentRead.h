// One read of one document by one format, with the rules that hold for every format.
#pragma once

#include <memory>
#include <string>

#include "reader/DocumentFormat.h"

namespace ovdl {

/// What a read came to. There always is a document: an empty assembly where the format gave none.
struct DocumentReadResult {
    OVXDLReader_FileLoadResult result = OVXDLReader_Loaded;
    std::unique_ptr<ReadDocument> document;
    std::uint32_t version = kForeignDocumentVersion;
    /// False: the document is the empty one. A format may give one that says itself that it is rejected.
    bool isWhole = false;
    std::string reason;  ///< Set exactly if the document was rejected.
};

/// Reads a document that `format` recognises.
///
/// Asks the registered callback object for its consent to the version exactly once, and through it
/// for cancellation at least once unless the document is rejected before; tells it the progress,
/// which never falls and ends with 1 if the read went well.
/// Errors: what a format raises is a rejected document, but for std::bad_alloc. What a callback
///   raises ends the read and is raised again here.
DocumentReadResult readDocument(DocumentFormat& format, const std::wstring& path);

}  // namespace ovdl
