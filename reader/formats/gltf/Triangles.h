// The triangles of one primitive as an index list, whatever the mode they are written in.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "reader/formats/gltf/Accessors.h"

namespace ovdl::gltf {

/// A block that is used again and again for what is only needed for a while; never initialised.
template <class T>
class Scratch {
public:
    T* get(std::size_t count)
    {
        if (count > size_) {
            block_.reset();
            block_.reset(new T[count]);
            size_ = count;
        }
        return block_.get();
    }

private:
    std::unique_ptr<T[]> block_;
    std::size_t size_ = 0;
};

/// Triangles over ids 0 .. idCount - 1. Each id stands for one vertex.
struct TriangleList {
    const std::uint32_t* indices = nullptr;
    std::size_t triangleCount = 0;
    std::size_t idCount = 0;
    /// The vertex of id 0, and the others behind it; or, if not empty, the vertex of each id.
    std::uint32_t firstVertex = 0;
    std::vector<std::uint32_t> vertexOf;

    std::uint32_t vertex(std::uint32_t id) const
    {
        return vertexOf.empty() ? firstVertex + id : vertexOf[id];
    }
};

/// Number of indices that the primitive's triangles have, those that repeat one included: three each.
std::size_t listLength(std::int32_t mode, std::size_t elementCount);

/// Makes the list of a primitive of `vertexCount` vertices; `indices` may be null. Triangles that
/// repeat an index are left out; the others keep their order and winding. The list lies in `scratch`
/// or in the document's bytes. Raises Refusal for an index that is out of range.
TriangleList readTriangles(std::int32_t mode, const Elements* indices, std::size_t vertexCount,
                           Scratch<std::uint32_t>& scratch);

}  // namespace ovdl::gltf
