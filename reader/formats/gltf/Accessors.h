// Typed elements in the document's bytes.
#pragma once

#include <memory>
#include <vector>

#include "reader/formats/gltf/Buffers.h"

namespace ovdl::gltf {

/// Where the elements of one accessor lie. A plain view; the bytes belong to the Accessors.
struct Elements {
    const unsigned char* data = nullptr;
    std::size_t stride = 0;  ///< 0 for elements that are all zero.
    std::size_t count = 0;
    std::int32_t componentType = 0;
    bool normalized = false;

    bool isPacked(std::int32_t type, std::size_t size) const
    {
        return componentType == type && stride == size;
    }
    /// The same elements from `first` on.
    Elements from(std::size_t first) const
    {
        Elements result = *this;
        result.data += first * stride;
        result.count -= first;
        return result;
    }
};

/// Writes the elements that `order` names, `components` floats each. Integers become whole numbers,
/// normalised ones the range 0 to 1 or -1 to 1. Nothing is checked: `order` has to be in range.
void gather(const Elements& elements, int components, const std::uint32_t* order, std::size_t count,
            float* target);
/// Writes `count` whole numbers from `first` on; the elements are unsigned scalars.
void copyIndices(const Elements& elements, std::size_t first, std::size_t count, std::uint32_t* target);

class Accessors {
public:
    /// Checks every accessor against its view and its count against what the document justifies.
    /// Raises Refusal.
    Accessors(const Records& records, const Buffers& buffers, Budget& budget);

    /// The elements of an accessor of that type. Raises Refusal when it is of another one.
    Elements elements(std::int32_t index, ElementType type);
    /// The same for indices: unsigned scalars.
    Elements indices(std::int32_t index);

private:
    void check(std::size_t index) const;
    void checkSparse(std::size_t index) const;
    Bytes span(std::size_t index, std::int32_t view, std::uint64_t offset, std::uint64_t count,
               std::uint64_t stride, std::uint64_t size) const;
    std::size_t strideOf(const AccessorRecord& record) const;
    Elements plain(std::size_t index) const;
    Elements sparse(std::size_t index);

    const Records& records_;
    const Buffers& buffers_;
    Budget& budget_;
    /// Sparse accessors are made whole, once each.
    std::vector<std::unique_ptr<unsigned char[]>> made_;
};

}  // namespace ovdl::gltf
