// The triangles of one primitive as an index list, whatever the mode they are written in.
#pragma once

#include <cstdint>

#include "reader/formats/gltf/Accessors.h"
#include "reader/formats/strips/TriangleList.h"

namespace ovdl::gltf {

/// Number of indices that the primitive's triangles have, those that repeat one included: three each.
std::size_t listLength(std::int32_t mode, std::size_t elementCount);

/// Makes the list of a primitive of `vertexCount` vertices; `indices` may be null. Triangles that
/// repeat an index are left out; the others keep their order and winding. The list lies in `scratch`
/// or in the document's bytes. Raises Refusal for an index that is out of range.
TriangleList readTriangles(std::int32_t mode, const Elements* indices, std::size_t vertexCount,
                           Scratch<std::uint32_t>& scratch);

}  // namespace ovdl::gltf
