#include "raylume/scene/dlBBox.h"

#include <algorithm>
#include <cmath>

#include "raylume/load/ReaderMaths.h"

namespace {

// The power function's square differs from the product in the last bit for about one value in 1400, so
// this file is compiled without the compiler's own version of it.
float halfExtentSquared(float low, float high)
{
    return ::powf((high - low) * 0.5f, 2.0f);
}

float halfDiagonal(const float (&low)[3], const float (&high)[3])
{
    const float x = halfExtentSquared(low[0], high[0]);
    const float y = halfExtentSquared(low[1], high[1]);
    const float z = halfExtentSquared(low[2], high[2]);
    return std::sqrt((y + (x + 0.0f)) + z);
}

}  // namespace

void dlBBox::addPoint(const float* p)
{
    for (int axis = 0; axis < 3; ++axis) {
        if (p[axis] < min[axis]) {
            min[axis] = p[axis];
        }
        if (p[axis] > max[axis]) {
            max[axis] = p[axis];
        }
    }
    radius = -1.0f;
}

float dlBBox::getRadius()
{
    if (radius < 0.0f) {
        radius = halfDiagonal(min, max);
    }
    return radius;
}

double dlBBox::getDiagonalLength()
{
    const mgPoint_c high(max[0], max[1], max[2]);
    const mgPoint_c low(min[0], min[1], min[2]);
    return std::sqrt((high - low).sqlen());
}

int dlBBox::isSet()
{
    const dlBBox unset;
    return std::equal(min, min + 3, unset.min) && std::equal(max, max + 3, unset.max) ? 0 : 1;
}
