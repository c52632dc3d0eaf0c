// The product structure of a file as a document of the reader interface.
#pragma once

#include <memory>

#include "reader/formats/step/import/PartMesh.h"

namespace ovdl::step {

/// Makes the document: a part when the file has one part and no assembly, else an assembly whose components
/// share parts. A file's only root is the document itself; several stand side by side in it. Raises Refusal
/// when there is nothing to show.
void makeDocument(const Model& model, const ImportRequest& request, HostLink& link,
                  PreparedDocument& document);

}  // namespace ovdl::step
