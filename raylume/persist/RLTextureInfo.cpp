#include "raylume/persist/RLTextureInfo.h"

#include <algorithm>

#include "raylume/persist/Floats.h"

RLTextureInfo::RLTextureInfo() = default;
RLTextureInfo::RLTextureInfo(const RLTextureInfo&) = default;
RLTextureInfo::RLTextureInfo(RLTextureInfo&&) noexcept = default;
RLTextureInfo& RLTextureInfo::operator=(const RLTextureInfo&) = default;
RLTextureInfo& RLTextureInfo::operator=(RLTextureInfo&&) noexcept = default;
RLTextureInfo::~RLTextureInfo() = default;

void RLTextureInfo::serialize(RLArchive& archive)
{
    RLByteStream& stream = *archive.archive;
    if (stream.isStoring()) {
        persist::writeFloats(stream, scale);
        persist::writeFloats(stream, position);
        persist::writeFloats(stream, rotation);
        stream.write(projectionType);
        stream.write(projectionAxis);
        stream.write(horizontalWrap);
        stream.write(verticalWrap);
    } else {
        persist::readFloats(stream, scale);
        persist::readFloats(stream, position);
        persist::readFloats(stream, rotation);
        stream.read(projectionType);
        stream.read(projectionAxis);
        stream.read(horizontalWrap);
        stream.read(verticalWrap);
    }
}

void RLTextureInfo::getScale(float* values) const
{
    std::copy_n(scale, 3, values);
}

void RLTextureInfo::setScale(const float* values)
{
    std::copy_n(values, 3, scale);
}

void RLTextureInfo::getPosition(float* values) const
{
    std::copy_n(position, 3, values);
}

void RLTextureInfo::setPosition(const float* values)
{
    std::copy_n(values, 3, position);
}

void RLTextureInfo::getRotation(float* values) const
{
    std::copy_n(rotation, 3, values);
}

void RLTextureInfo::setRotation(const float* values)
{
    std::copy_n(values, 3, rotation);
}

int RLTextureInfo::getProjectionType() const
{
    return projectionType;
}

void RLTextureInfo::setProjectionType(int value)
{
    projectionType = value;
}

int RLTextureInfo::getProjectionAxis() const
{
    return projectionAxis;
}

void RLTextureInfo::setProjectionAxis(int value)
{
    projectionAxis = value;
}

float RLTextureInfo::getHorizontalWrap() const
{
    return horizontalWrap;
}

void RLTextureInfo::setHorizontalWrap(float value)
{
    horizontalWrap = value;
}

float RLTextureInfo::getVerticalWrap() const
{
    return verticalWrap;
}

void RLTextureInfo::setVerticalWrap(float value)
{
    verticalWrap = value;
}
