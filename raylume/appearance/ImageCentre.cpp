#include "raylume/appearance/ImageCentre.h"

#include <cmath>

#include "raylume/load/ReaderInterface.h"
#include "raylume/scene/dlTexture.h"

namespace {

struct PlanePoint {
    float x;
    float y;
};

// Formed differently on purpose: 1 / size overflows before its half does. Neither is the texture's
// scale, which is divided in double.
PlanePoint halfExtent(uoMaterialTextureProperties& image)
{
    const float sizeU = static_cast<float>(image.getTextureScale(0));
    const float sizeV = static_cast<float>(image.getTextureScale(1));
    return {(1.0f / sizeU) * 0.5f, 0.5f / sizeV};
}

// An unrotated image arrives with an angle of a whole turn, whose sine in single precision is not 0.
PlanePoint turned(const PlanePoint& point, float angle)
{
    const float c = std::cos(angle);
    const float s = std::sin(angle);
    return {c * point.x + s * point.y, c * point.y - s * point.x};
}

mgUnitVector_c unit(const float (&direction)[3])
{
    return mgUnitVector_c(direction[0], direction[1], direction[2]);
}

// The second axis is made anew from the first and the normal, so that a skewed or left-handed pair of
// directions gives a right-handed frame all the same. The scale is 1 whatever mappingScalar says.
mgXform_c mappingFrame(const dlTexture& texture)
{
    const mgUnitVector_c first = unit(texture.uDirection);
    const mgUnitVector_c normal(first * unit(texture.vDirection), 0);
    const mgUnitVector_c second(normal * first, 0);
    const mgVector_c origin(texture.origin[0], texture.origin[1], texture.origin[2]);
    return mg_RestoreXform(mgMatrix_c(first, second, normal), origin, 1.0);
}

}  // namespace

void placeImageCentre(dlTexture& texture, uoMaterialTextureProperties& image, double transX, double transY)
{
    const PlanePoint middle = turned(halfExtent(image), -texture.angle);
    // Subtracted in single precision: the narrowing comes before the difference.
    const float x = middle.x - static_cast<float>(transX);
    const float y = middle.y - static_cast<float>(transY);
    mgPoint_c centre(x, y, 0.0);
    centre *= mappingFrame(texture);
    texture.center[0] = static_cast<float>(centre.x);
    texture.center[1] = static_cast<float>(centre.y);
    texture.center[2] = static_cast<float>(centre.z);
}
