// Triangles as an index list: what strips are made of.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace ovdl {

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

}  // namespace ovdl
