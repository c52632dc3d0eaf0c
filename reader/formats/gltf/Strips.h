// From triangle lists to triangle strips.
#pragma once

#include "reader/formats/gltf/Triangles.h"

namespace ovdl::gltf {

/// The ids of one strip after another, each strip closed by kStripEnd.
struct StripIds {
    std::uint32_t* ids = nullptr;
    std::size_t length = 0;
};

inline constexpr std::uint32_t kStripEnd = ~0u;

/// Makes strips of a list without repeating triangles. Every triangle comes once, with its winding,
/// and no strip is joined to the next by degenerate ones. A regular grid of a few rows and columns or
/// more takes at most 1.2 ids a triangle, in whatever regular order its triangles are listed.
class Stripifier {
public:
    /// What comes back lies in this object until the next call.
    StripIds make(const TriangleList& triangles);

private:
    enum class Order { kAsListed, kPairsSwapped, kOptimised };

    Order chooseOrder(const TriangleList& triangles);
    double costOfSample(Order order, std::size_t length, std::size_t idCount);
    const std::uint32_t* inOrder(Order order, const std::uint32_t* list, std::size_t length,
                                 std::size_t idCount, Scratch<std::uint32_t>& scratch);

    Scratch<std::uint32_t> sample_;
    Scratch<std::uint32_t> sampleOrdered_;
    Scratch<std::uint32_t> sampleStrips_;
    Scratch<std::uint32_t> ordered_;
    Scratch<std::uint32_t> strips_;
};

}  // namespace ovdl::gltf
