#include "raylume/scene/dlTexture.h"

#include "raylume/scene/FieldOrder.h"

dlTexture::dlTexture() = default;
dlTexture::dlTexture(const dlTexture& other) = default;
dlTexture& dlTexture::operator=(const dlTexture& other) = default;
dlTexture::~dlTexture() = default;

// The centre follows from the other fields and is compared nowhere.
bool dlTexture::operator!=(const dlTexture& other) const
{
    using scene::sameWithinTolerance;
    return mappingType != other.mappingType || !sameWithinTolerance(uDirection, other.uDirection) ||
           !sameWithinTolerance(vDirection, other.vDirection) ||
           !sameWithinTolerance(origin, other.origin) || !sameWithinTolerance(scaleU, other.scaleU) ||
           !sameWithinTolerance(scaleV, other.scaleV) || !sameWithinTolerance(angle, other.angle) ||
           !sameWithinTolerance(transU, other.transU) || !sameWithinTolerance(transV, other.transV) ||
           !sameWithinTolerance(mappingScalar, other.mappingScalar) || filename != other.filename;
}

// scaleV decides before scaleU here; that is meant.
bool dlTexture::operator<(const dlTexture& other) const
{
    return scene::FieldOrder()
        .value(mappingType, other.mappingType)
        .reals(uDirection, other.uDirection)
        .reals(vDirection, other.vDirection)
        .reals(origin, other.origin)
        .real(scaleV, other.scaleV)
        .real(scaleU, other.scaleU)
        .real(angle, other.angle)
        .real(transU, other.transU)
        .real(transV, other.transV)
        .real(mappingScalar, other.mappingScalar)
        .value(filename, other.filename)
        .aBeforeB();
}
