// Placements of nodes: affine transforms in double precision.
#pragma once

#include <array>
#include <cstddef>

namespace ovdl::gltf {

/// The images of the three axes and the translation, one after another: what the first three rows of
/// a glTF matrix hold, column by column.
struct Affine {
    std::array<double, 12> m = {1, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0};

    bool operator==(const Affine&) const = default;
};

/// The transform that applies `inner` first.
Affine compose(const Affine& outer, const Affine& inner);
/// The same for an inner transform that only moves.
Affine compose(const Affine& outer, const std::array<double, 3>& translation);
/// From a column-major 4 by 4 matrix, whose last row is left out.
Affine fromMatrix(const std::array<double, 16>& matrix);
/// Scale first, then the rotation of the quaternion x, y, z, w (normalised; a zero one is no
/// rotation), then the translation.
Affine fromParts(const std::array<double, 3>& translation, const std::array<double, 4>& rotation,
                 const std::array<double, 3>& scale);
/// Zero times anything that is not finite is no zero.
inline bool isFinite(const Affine& transform)
{
    // Four sums side by side, since each addition waits for the one before.
    std::array<double, 4> sums = {0, 0, 0, 0};
    for (std::size_t i = 0; i < transform.m.size(); i += sums.size())
        for (std::size_t k = 0; k < sums.size(); ++k)
            sums[k] += transform.m[i + k] * 0;
    return sums[0] + sums[1] + sums[2] + sums[3] == 0;
}

}  // namespace ovdl::gltf
