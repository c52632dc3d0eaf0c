// Placements as translation, rotation and scale.
#pragma once

#include <array>
#include <optional>

#include "raylume/scene/dlXform.h"

namespace tool {

using Vector3 = std::array<double, 3>;
/// x, y, z, w; of unit length.
using Quaternion = std::array<double, 4>;

struct Trs {
    Vector3 translation{0, 0, 0};
    Quaternion rotation{0, 0, 0, 1};
    Vector3 scale{1, 1, 1};
};

/// What a placement is made of: `outer` after `inner`. `inner` is a rotation alone, and there only
/// when the axes of the placement do not stand at right angles, so that one rotation and one scale
/// cannot make it.
struct PlacementParts {
    Trs outer;
    std::optional<Quaternion> inner;
};

/// True when all twelve numbers that place a point are finite. The bottom row plays no part.
bool isFinite(const dlXform& placement);
bool isIdentity(const dlXform& placement);

/// Takes a finite placement apart, by the singular values of its axes: any matrix can be written as
/// rotation, scale, rotation. A mirroring placement has one negative scale (or three), a singular
/// one zeros.
PlacementParts takeApart(const dlXform& placement);

}  // namespace tool
