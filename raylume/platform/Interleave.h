// Positions and normals into one array of records, with the extremes of the positions.
#pragma once

#include <cstddef>

#include "raylume/platform/Export.h"

namespace platform {

/// The smallest and the largest of each coordinate. Whoever starts a walk sets the starting values.
struct Extremes {
    float min[3];
    float max[3];
};

/// Copies `count` positions and normals (3 floats each) into records of 6 floats, position first,
/// and carries `extremes` on over the positions.
///
/// Every bit of the input is kept. The extremes are those of a plain walk that tests
/// `value < min ? value : min` and `value > max ? value : max` vertex by vertex: a NaN replaces
/// nothing, and of two zeros the first stays. Large blocks are written past the caches. The arrays
/// must not overlap; `records` is aligned like any array new of floats.
PLATFORM_API void interleave(const float* positions, const float* normals, std::size_t count,
                             float* records, Extremes& extremes);

}  // namespace platform
