#include "raylume/persist/RLStringTag.h"

#include <utility>

RLStringTag::RLStringTag() = default;
RLStringTag::RLStringTag(const RLStringTag&) = default;
RLStringTag::RLStringTag(RLStringTag&&) noexcept = default;
RLStringTag& RLStringTag::operator=(const RLStringTag&) = default;
RLStringTag& RLStringTag::operator=(RLStringTag&&) noexcept = default;
RLStringTag::~RLStringTag() = default;

RLStringTag::RLStringTag(std::uint32_t id, std::string text) : tagID(id), tag(std::move(text))
{
}

void RLStringTag::serialize(RLArchive& archive)
{
    RLByteStream& stream = *archive.archive;
    if (stream.isStoring()) {
        stream.write(tagID);
        stream.write(tag);
    } else {
        stream.read(tagID);
        stream.read(tag);
    }
}

std::uint32_t RLStringTag::getTagID() const
{
    return tagID;
}

void RLStringTag::setTagID(std::uint32_t value)
{
    tagID = value;
}

std::string RLStringTag::getTag() const
{
    return tag;
}

void RLStringTag::setTag(std::string value)
{
    tag = std::move(value);
}
