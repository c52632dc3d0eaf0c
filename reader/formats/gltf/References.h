// Whether the records of a document point at each other rightly.
#pragma once

#include "reader/formats/gltf/Records.h"

namespace ovdl::gltf {

/// Raises Refusal for an index that names nothing, wherever it stands.
void checkReferences(const Records& records);

}  // namespace ovdl::gltf
