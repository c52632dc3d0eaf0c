// From triangle lists to triangle strips.
#pragma once

#include "reader/formats/strips/StripGrowing.h"
#include "reader/formats/strips/TriangleList.h"

namespace ovdl {

/// The ids of one strip after another, and the number of ids of each strip.
struct StripIds {
    std::uint32_t* ids = nullptr;
    std::size_t idCount = 0;
    const std::int32_t* lengths = nullptr;
    std::size_t stripCount = 0;
};

/// Makes strips of a list without repeating triangles. Every triangle comes once, with its winding,
/// and there are no degenerate ones, neither within strips nor between them. A regular grid of at
/// least five rows and columns takes at most 1.2 ids a triangle, in whatever order it is listed.
class Stripifier {
public:
    /// What comes back lies in this object until the next call.
    StripIds make(const TriangleList& triangles);

private:
    enum class Way { kAsListed, kPairsSwapped, kGrown };

    Way chooseWay(const TriangleList& triangles);
    double costOfSample(Way way, std::size_t length, std::size_t idCount);
    StripIds byGrowing(const TriangleList& triangles);

    // The library's strips of a list, listed in that way, cut. Blocks for one run.
    struct Blocks {
        Scratch<std::uint32_t> ordered;
        Scratch<std::uint32_t> strips;
        Scratch<std::uint32_t> ids;
        Scratch<std::int32_t> lengths;
    };
    static StripIds run(Way way, const std::uint32_t* list, std::size_t length, std::size_t idCount,
                        Blocks& blocks);

    Scratch<std::uint32_t> sample_;
    Blocks sampleBlocks_;
    Blocks blocks_;
    StripGrower grower_;
};

}  // namespace ovdl
