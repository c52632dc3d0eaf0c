#include "raylume/persist/RLMaskMaterial.h"

#include <algorithm>
#include <utility>

#include "raylume/persist/Floats.h"
#include "raylume/persist/RecordLists.h"
#include "raylume/persist/RecordText.h"

RLMaskMaterial::RLMaskMaterial() = default;
RLMaskMaterial::RLMaskMaterial(const RLMaskMaterial&) = default;
RLMaskMaterial::RLMaskMaterial(RLMaskMaterial&&) noexcept = default;
RLMaskMaterial& RLMaskMaterial::operator=(const RLMaskMaterial&) = default;
RLMaskMaterial& RLMaskMaterial::operator=(RLMaskMaterial&&) noexcept = default;
RLMaskMaterial::~RLMaskMaterial() = default;

// The order of the stream is not that of the fields.
void RLMaskMaterial::serialize(RLArchive& archive)
{
    RLByteStream& stream = *archive.archive;
    if (stream.isStoring()) {
        stream.write(maskName);
        stream.write(maskType);
        stream.write(maskPTag);
        stream.write(materialName);
        persist::writeFloats(stream, diffuseColor);
        stream.write(materialAtRoot);
        persist::storeList(archive, floatChannels);
        persist::storeList(archive, stringTags);
    } else {
        advMaterialIsSet = false;
        stream.read(maskName);
        stream.read(maskType);
        stream.read(maskPTag);
        stream.read(materialName);
        persist::readFloats(stream, diffuseColor);
        stream.read(materialAtRoot);
        if (archive.version != 0) {
            persist::loadList(archive, floatChannels);
            persist::loadList(archive, stringTags);
            advMaterialIsSet = true;
        }
    }
}

float* RLMaskMaterial::getDiffuseColor()
{
    return diffuseColor;
}

const float* RLMaskMaterial::getDiffuseColor() const
{
    return diffuseColor;
}

void RLMaskMaterial::setDiffuseColor(const float* values)
{
    std::copy_n(values, 4, diffuseColor);
}

std::string RLMaskMaterial::getMaskType() const
{
    return maskType;
}

void RLMaskMaterial::setMaskType(const char* value)
{
    maskType = persist::textOrEmpty(value);
}

std::string RLMaskMaterial::getMaskPTag() const
{
    return maskPTag;
}

void RLMaskMaterial::setMaskPTag(const char* value)
{
    maskPTag = persist::textOrEmpty(value);
}

std::string RLMaskMaterial::getMaskName() const
{
    return maskName;
}

void RLMaskMaterial::setMaskName(const char* value)
{
    maskName = persist::textOrEmpty(value);
}

std::string RLMaskMaterial::getMaterialName() const
{
    return materialName;
}

void RLMaskMaterial::setMaterialName(const char* value)
{
    materialName = persist::textOrEmpty(value);
}

bool RLMaskMaterial::getMaterialAtRoot() const
{
    return materialAtRoot;
}

void RLMaskMaterial::setMaterialAtRoot(bool value)
{
    materialAtRoot = value;
}

std::list<RLFloatChannel>& RLMaskMaterial::getFloatChannels()
{
    return floatChannels;
}

const std::list<RLFloatChannel>& RLMaskMaterial::getFloatChannels() const
{
    return floatChannels;
}

std::list<RLStringTag>& RLMaskMaterial::getStringTags()
{
    return stringTags;
}

const std::list<RLStringTag>& RLMaskMaterial::getStringTags() const
{
    return stringTags;
}

void RLMaskMaterial::addFloatChannel(std::string name, float value)
{
    floatChannels.emplace_back(std::move(name), value);
}

void RLMaskMaterial::addStringTag(std::uint32_t id, std::string text)
{
    stringTags.emplace_back(id, std::move(text));
}

bool RLMaskMaterial::getAdvMaterialIsSet() const
{
    return advMaterialIsSet;
}
