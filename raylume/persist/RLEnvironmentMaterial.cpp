#include "raylume/persist/RLEnvironmentMaterial.h"

#include <utility>

#include "raylume/persist/RecordLists.h"
#include "raylume/persist/RecordText.h"

RLEnvironmentMaterial::RLEnvironmentMaterial() = default;
RLEnvironmentMaterial::RLEnvironmentMaterial(const RLEnvironmentMaterial&) = default;
RLEnvironmentMaterial::RLEnvironmentMaterial(RLEnvironmentMaterial&&) noexcept = default;
RLEnvironmentMaterial& RLEnvironmentMaterial::operator=(const RLEnvironmentMaterial&) = default;
RLEnvironmentMaterial& RLEnvironmentMaterial::operator=(RLEnvironmentMaterial&&) noexcept = default;
RLEnvironmentMaterial::~RLEnvironmentMaterial() = default;

void RLEnvironmentMaterial::serialize(RLArchive& archive)
{
    RLByteStream& stream = *archive.archive;
    if (stream.isStoring()) {
        stream.write(environmentName);
        persist::storeList(archive, stringTags);
        stream.write(whiteLevel);
        stream.write(clamp);
        stream.write(gamma);
        stream.write(bloom);
        stream.write(bloomThr);
        stream.write(bloomRad);
        stream.write(toneAmt);
    } else {
        stream.read(environmentName);
        if (archive.version > 1)
            persist::loadList(archive, stringTags);
        if (archive.version > 7) {
            stream.read(whiteLevel);
            stream.read(clamp);
            stream.read(gamma);
            stream.read(bloom);
            stream.read(bloomThr);
            stream.read(bloomRad);
            stream.read(toneAmt);
        }
    }
}

std::string RLEnvironmentMaterial::getEnvironmentName() const
{
    return environmentName;
}

void RLEnvironmentMaterial::setEnvironmentName(const char* value)
{
    environmentName = persist::textOrEmpty(value);
}

std::list<RLStringTag>& RLEnvironmentMaterial::getStringTags()
{
    return stringTags;
}

const std::list<RLStringTag>& RLEnvironmentMaterial::getStringTags() const
{
    return stringTags;
}

void RLEnvironmentMaterial::addStringTag(std::uint32_t id, std::string text)
{
    stringTags.emplace_back(id, std::move(text));
}

float RLEnvironmentMaterial::getWhiteLevel() const
{
    return whiteLevel;
}

void RLEnvironmentMaterial::setWhiteLevel(float value)
{
    whiteLevel = value;
}

bool RLEnvironmentMaterial::getClamp() const
{
    return clamp;
}

void RLEnvironmentMaterial::setClamp(bool value)
{
    clamp = value;
}

float RLEnvironmentMaterial::getGamma() const
{
    return gamma;
}

void RLEnvironmentMaterial::setGamma(float value)
{
    gamma = value;
}

bool RLEnvironmentMaterial::getBloom() const
{
    return bloom;
}

void RLEnvironmentMaterial::setBloom(bool value)
{
    bloom = value;
}

float RLEnvironmentMaterial::getBloomThr() const
{
    return bloomThr;
}

void RLEnvironmentMaterial::setBloomThr(float value)
{
    bloomThr = value;
}

float RLEnvironmentMaterial::getBloomRad() const
{
    return bloomRad;
}

void RLEnvironmentMaterial::setBloomRad(float value)
{
    bloomRad = value;
}

float RLEnvironmentMaterial::getToneAmt() const
{
    return toneAmt;
}

void RLEnvironmentMaterial::setToneAmt(float value)
{
    toneAmt = value;
}
