#pragma once

#include <limits>

#include "raylume/platform/Export.h"

/// Axis-aligned box round a face, a body, a part or the whole model.
///
/// Ownership: a plain value; holds no memory. Copies carry all seven floats.
/// Units: metres, in the space of whoever holds it (part space under a dlPart, model space under
///   dlModel). Nothing here converts.
/// Errors: none. A box that saw no point is "unset": isSet() gives 0, getRadius() gives +infinity
///   (the extent overflows single precision) and getDiagonalLength() a huge number.
/// Layout: hosts read the fields directly; order and defaults are a contract.
class DL_API dlBBox {
public:
    /// Grows the box to hold `p` (three floats x, y, z) and drops the cached radius, also when
    /// nothing moved. A NaN moves no side.
    void addPoint(const float* p);
    /// Half the diagonal, in single precision. Cached: writing min or max directly does not refresh
    /// it.
    float getRadius();
    /// The whole diagonal, in double precision. Not cached.
    double getDiagonalLength();
    /// 0 exactly if all six of min and max still hold their defaults, otherwise 1.
    int isSet();

    float min[3] = {std::numeric_limits<float>::max(), std::numeric_limits<float>::max(),
                    std::numeric_limits<float>::max()};
    float max[3] = {std::numeric_limits<float>::lowest(), std::numeric_limits<float>::lowest(),
                    std::numeric_limits<float>::lowest()};
    float radius = -1.0f;  ///< Cached result of getRadius; negative: not computed.
};
