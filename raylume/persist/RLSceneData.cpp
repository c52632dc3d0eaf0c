#include "raylume/persist/RLSceneData.h"

#include "raylume/persist/RecordText.h"

RLSceneData::RLSceneData() = default;
RLSceneData::RLSceneData(const RLSceneData&) = default;
RLSceneData::RLSceneData(RLSceneData&&) noexcept = default;
RLSceneData& RLSceneData::operator=(const RLSceneData&) = default;
RLSceneData& RLSceneData::operator=(RLSceneData&&) noexcept = default;
RLSceneData::~RLSceneData() = default;

// The order of the stream is not that of the fields: texts and flags take turns, and the flip comes
// ahead of the floor's visibility.
void RLSceneData::serialize(RLArchive& archive)
{
    RLByteStream& stream = *archive.archive;
    if (stream.isStoring()) {
        stream.write(environmentImage);
        stream.write(envVisibility);
        stream.write(backPlateImage);
        stream.write(bkplVisibility);
        stream.write(floor);
        stream.write(floorFlip);
        stream.write(floorVisibility);
        stream.write(floorType);
    } else {
        stream.read(environmentImage);
        stream.read(envVisibility);
        stream.read(backPlateImage);
        stream.read(bkplVisibility);
        if (archive.version >= 7) {
            stream.read(floor);
            stream.read(floorFlip);
            stream.read(floorVisibility);
        }
        if (archive.version >= 10)
            stream.read(floorType);
    }
}

std::string RLSceneData::getEnvironmentImage() const
{
    return environmentImage;
}

void RLSceneData::setEnvironmentImage(const char* value)
{
    environmentImage = persist::textOrEmpty(value);
}

std::string RLSceneData::getBackPlateImage() const
{
    return backPlateImage;
}

void RLSceneData::setBackPlateImage(const char* value)
{
    backPlateImage = persist::textOrEmpty(value);
}

std::string RLSceneData::getFloor() const
{
    return floor;
}

void RLSceneData::setFloor(const char* value)
{
    floor = persist::textOrEmpty(value);
}

std::string RLSceneData::getFloorType() const
{
    return floorType;
}

void RLSceneData::setFloorType(const char* value)
{
    floorType = persist::textOrEmpty(value);
}

bool RLSceneData::getEnvVisibility() const
{
    return envVisibility;
}

void RLSceneData::setEnvVisibility(bool value)
{
    envVisibility = value;
}

bool RLSceneData::getBkplVisibility() const
{
    return bkplVisibility;
}

void RLSceneData::setBkplVisibility(bool value)
{
    bkplVisibility = value;
}

bool RLSceneData::getFloorVisibility() const
{
    return floorVisibility;
}

void RLSceneData::setFloorVisibility(bool value)
{
    floorVisibility = value;
}

bool RLSceneData::getFloorFlip() const
{
    return floorFlip;
}

void RLSceneData::setFloorFlip(bool value)
{
    floorFlip = value;
}
