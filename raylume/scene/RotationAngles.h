// Angles of a rotation about the three axes.
#pragma once

#include <cmath>

namespace scene {

namespace rotation_detail {

// Exactly zero: -0.0 is, the smallest of other numbers is not. Such a pair has no angle to give.
inline bool isZeroPair(double a, double b)
{
    return a == 0.0 && b == 0.0;
}

}  // namespace rotation_detail

/// Takes a 3 by 3 rotation apart into angles in radians, the elements being taken as they lie (0, 1, 2 the
/// first three). The sine of the second angle is -m[6] in the general case and m[2] in the two others; an
/// element outside -1 to 1 gives NaN, also where rounding alone put it there.
inline void decomposeRotation(const double matrix[9], double& first, double& second, double& third)
{
    using rotation_detail::isZeroPair;
    const double* const m = matrix;
    if (!isZeroPair(m[3], m[0]) && !isZeroPair(m[7], m[8])) {
        first = std::atan2(m[7], m[8]);
        second = -std::asin(m[6]);
        third = std::atan2(m[3], m[0]);
        return;
    }
    const bool isFlat = isZeroPair(m[1], m[0]) || isZeroPair(m[5], m[8]);
    first = isFlat ? 0.0 : -std::atan2(m[5], m[8]);
    second = std::asin(m[2]);
    third = isFlat ? 0.0 : -std::atan2(m[1], m[0]);
}

}  // namespace scene
