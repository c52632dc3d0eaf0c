#include "raylume/persist/RLCameraData.h"

#include <algorithm>

#include "raylume/persist/Floats.h"
#include "raylume/persist/RecordText.h"

RLCameraData::RLCameraData() = default;
RLCameraData::RLCameraData(const RLCameraData&) = default;
RLCameraData::RLCameraData(RLCameraData&&) noexcept = default;
RLCameraData& RLCameraData::operator=(const RLCameraData&) = default;
RLCameraData& RLCameraData::operator=(RLCameraData&&) noexcept = default;
RLCameraData::~RLCameraData() = default;

void RLCameraData::serialize(RLArchive& archive)
{
    RLByteStream& stream = *archive.archive;
    if (stream.isStoring()) {
        persist::writeFloats(stream, rotation);
        persist::writeFloats(stream, translation);
        stream.write(target);
        stream.write(focalLength);
        stream.write(projType);
        writeCustomViews(archive);
        stream.write(focusDist);
        stream.write(fStop);
        stream.write(frameWidth);
        stream.write(frameHeight);
        stream.write(RDOF);
        stream.write(previewRenderQuality);
        stream.write(fullRenderQuality);
        stream.write(imageFormat);
    } else {
        persist::readFloats(stream, rotation);
        persist::readFloats(stream, translation);
        stream.read(target);
        if (archive.version > 3) {
            stream.read(focalLength);
            stream.read(projType);
        }
        if (archive.version > 5)
            readCustomViews(archive);
        if (archive.version > 7) {
            stream.read(focusDist);
            stream.read(fStop);
            stream.read(frameWidth);
            stream.read(frameHeight);
            stream.read(RDOF);
            stream.read(previewRenderQuality);
            stream.read(fullRenderQuality);
        }
        if (archive.version >= 9)
            stream.read(imageFormat);
    }
}

float* RLCameraData::getRotation()
{
    return rotation;
}

const float* RLCameraData::getRotation() const
{
    return rotation;
}

void RLCameraData::setRotation(const float* values)
{
    std::copy_n(values, 3, rotation);
}

float* RLCameraData::getTranslation()
{
    return translation;
}

const float* RLCameraData::getTranslation() const
{
    return translation;
}

void RLCameraData::setTranslation(const float* values)
{
    std::copy_n(values, 3, translation);
}

float RLCameraData::getTarget() const
{
    return target;
}

void RLCameraData::setTarget(float value)
{
    target = value;
}

float RLCameraData::getFocalLength() const
{
    return focalLength;
}

void RLCameraData::setFocalLength(float value)
{
    focalLength = value;
}

int RLCameraData::getProjType() const
{
    return projType;
}

void RLCameraData::setProjType(int value)
{
    projType = value;
}

float RLCameraData::getFocusDist() const
{
    return focusDist;
}

void RLCameraData::setFocusDist(float value)
{
    focusDist = value;
}

float RLCameraData::getFStop() const
{
    return fStop;
}

void RLCameraData::setFStop(float value)
{
    fStop = value;
}

int RLCameraData::getFrameWidth() const
{
    return frameWidth;
}

void RLCameraData::setFrameWidth(int value)
{
    frameWidth = value;
}

int RLCameraData::getFrameHeight() const
{
    return frameHeight;
}

void RLCameraData::setFrameHeight(int value)
{
    frameHeight = value;
}

bool RLCameraData::getRDOF() const
{
    return RDOF;
}

void RLCameraData::setRDOF(bool value)
{
    RDOF = value;
}

std::string RLCameraData::getPreviewRenderQuality() const
{
    return previewRenderQuality;
}

void RLCameraData::setPreviewRenderQuality(const char* value)
{
    previewRenderQuality = persist::textOrEmpty(value);
}

std::string RLCameraData::getFullRenderQuality() const
{
    return fullRenderQuality;
}

void RLCameraData::setFullRenderQuality(const char* value)
{
    fullRenderQuality = persist::textOrEmpty(value);
}

std::string RLCameraData::getImageFormat() const
{
    return imageFormat;
}

void RLCameraData::setImageFormat(const char* value)
{
    imageFormat = persist::textOrEmpty(value);
}
