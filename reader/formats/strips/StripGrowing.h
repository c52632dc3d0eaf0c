// Strips by growing: slower than the library's, better where its few triangles of foresight fail.
#pragma once

#include "reader/formats/strips/TriangleList.h"

namespace ovdl {

/// Grows strips one at a time: from the first triangle that is left, over its three edges in turn,
/// forwards and backwards as far as triangles are left, and keeps the best. Strips zigzag and
/// nothing else, so a mesh of regular rows comes out in whole rows, in whatever order it is listed.
class StripGrower {
public:
    /// Writes the ids of all strips to `ids` (room for three a triangle) and their lengths to
    /// `lengths` (room for one a triangle). `list` has no triangle that repeats an id.
    void grow(const std::uint32_t* list, std::size_t triangleCount, std::size_t idCount, std::uint32_t* ids,
              std::int32_t* lengths);
    std::size_t idCount() const { return idsWritten_; }
    std::size_t stripCount() const { return stripsWritten_; }

private:
    static constexpr std::uint32_t kNoCorner = ~0u;

    void linkEdges(std::size_t idCount);
    std::uint32_t across(std::uint32_t from, std::uint32_t to) const;
    bool isFree(std::uint32_t triangle) const { return marks_[triangle] < trial_; }
    std::size_t growFrom(std::uint32_t triangle, std::uint32_t corner, std::vector<std::uint32_t>& strip);
    void growForwards(std::vector<std::uint32_t>& strip);
    bool growBackwards(std::vector<std::uint32_t>& strip);
    void keep(std::uint32_t* ids, std::int32_t* lengths);

    const std::uint32_t* list_ = nullptr;
    std::size_t triangleCount_ = 0;
    std::vector<std::uint32_t> firstEdge_;  ///< By start id, into edges_.
    std::vector<std::uint32_t> edges_;      ///< Corners, by the id that their edge starts at.
    /// ~0 for a triangle that is in a strip, else the last trial that touched it.
    std::vector<std::uint32_t> marks_;
    std::uint32_t trial_ = 0;
    std::vector<std::uint32_t> best_;
    std::vector<std::uint32_t> tried_;
    std::vector<std::uint32_t> bestTriangles_;
    std::vector<std::uint32_t> triedTriangles_;
    std::vector<std::uint32_t> backwards_;
    std::size_t idsWritten_ = 0;
    std::size_t stripsWritten_ = 0;
};

}  // namespace ovdl
