// The triangles of faces, and arithmetic on their corners.
#pragma once

#include <array>
#include <vector>

#include "StepReading.h"

namespace step_tests {

using Point = std::array<double, 3>;

inline Point at(const ovArrayView<float>& values, long long vertex)
{
    return {values.data[3 * vertex], values.data[3 * vertex + 1], values.data[3 * vertex + 2]};
}

inline Point cross(const Point& a, const Point& b)
{
    return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

inline double dot(const Point& a, const Point& b)
{
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

inline Point difference(const Point& a, const Point& b)
{
    return {a[0] - b[0], a[1] - b[1], a[2] - b[2]};
}

/// Corners of each triangle of a face, as numbers of its vertices.
inline std::vector<std::array<long long, 3>> trianglesOf(const uoTempFaceTessData_c& face)
{
    std::vector<std::array<long long, 3>> result;
    long long begin = 0;
    for (std::int32_t strip = 0; strip < face.stripCount; ++strip) {
        const long long length = face.stripLengths.data[strip];
        for (long long i = 0; i + 2 < length; ++i) {
            const long long odd = i % 2;
            result.push_back({begin + i, begin + i + 1 + odd, begin + i + 2 - odd});
        }
        begin += length;
    }
    return result;
}

}  // namespace step_tests
