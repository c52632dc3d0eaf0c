#include "reader/formats/gltf/Affine.h"

#include <algorithm>
#include <cmath>

namespace ovdl::gltf {
namespace {

// One axis, or the translation without its offset, through the outer transform.
void turn(const Affine& outer, const double* vector, double* result)
{
    for (int row = 0; row < 3; ++row)
        result[row] =
            outer.m[row] * vector[0] + outer.m[3 + row] * vector[1] + outer.m[6 + row] * vector[2];
}

}  // namespace

Affine compose(const Affine& outer, const Affine& inner)
{
    Affine result;
    for (int column = 0; column < 4; ++column)
        turn(outer, &inner.m[3 * column], &result.m[3 * column]);
    for (int row = 0; row < 3; ++row)
        result.m[9 + row] += outer.m[9 + row];
    return result;
}

Affine compose(const Affine& outer, const std::array<double, 3>& translation)
{
    Affine result = outer;
    turn(outer, translation.data(), &result.m[9]);
    for (int row = 0; row < 3; ++row)
        result.m[9 + row] += outer.m[9 + row];
    return result;
}

Affine fromMatrix(const std::array<double, 16>& matrix)
{
    Affine result;
    for (int column = 0; column < 4; ++column)
        std::copy_n(&matrix[4 * column], 3, &result.m[3 * column]);
    return result;
}

Affine fromParts(const std::array<double, 3>& translation, const std::array<double, 4>& rotation,
                 const std::array<double, 3>& scale)
{
    const double length =
        std::hypot(std::hypot(rotation[0], rotation[1]), std::hypot(rotation[2], rotation[3]));
    const double unit = length > 0 ? length : 1;
    const double x = rotation[0] / unit;
    const double y = rotation[1] / unit;
    const double z = rotation[2] / unit;
    const double w = length > 0 ? rotation[3] / unit : 1;
    Affine result;
    result.m = {1 - 2 * (y * y + z * z), 2 * (x * y + z * w), 2 * (x * z - y * w), 2 * (x * y - z * w),
                1 - 2 * (x * x + z * z), 2 * (y * z + x * w), 2 * (x * z + y * w), 2 * (y * z - x * w),
                1 - 2 * (x * x + y * y), translation[0],      translation[1],      translation[2]};
    for (int element = 0; element < 9; ++element)
        result.m[element] *= scale[element / 3];
    return result;
}

}  // namespace ovdl::gltf
