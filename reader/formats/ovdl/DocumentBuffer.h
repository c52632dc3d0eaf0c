// The FlatBuffer with the root table Document.
#pragma once

#include "reader/formats/ovdl/BufferBuilder.h"
#include "reader/formats/ovdl/DocumentContents.h"
#include "reader/formats/ovdl/Inventory.h"

namespace ovdl {

/// Borrowed from `builder`. Errors: raises Refusal when the document is too large for a buffer.
Bytes buildDocument(const DocumentContents& contents, const Inventory& inventory, BufferBuilder& builder);

}  // namespace ovdl
