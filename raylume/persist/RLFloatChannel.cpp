#include "raylume/persist/RLFloatChannel.h"

#include <utility>

RLFloatChannel::RLFloatChannel() = default;
RLFloatChannel::RLFloatChannel(const RLFloatChannel&) = default;
RLFloatChannel::RLFloatChannel(RLFloatChannel&&) noexcept = default;
RLFloatChannel& RLFloatChannel::operator=(const RLFloatChannel&) = default;
RLFloatChannel& RLFloatChannel::operator=(RLFloatChannel&&) noexcept = default;
RLFloatChannel::~RLFloatChannel() = default;

RLFloatChannel::RLFloatChannel(std::string name, float value)
    : floatVal(value), channelName(std::move(name))
{
}

void RLFloatChannel::serialize(RLArchive& archive)
{
    RLByteStream& stream = *archive.archive;
    if (stream.isStoring()) {
        stream.write(channelName);
        stream.write(floatVal);
    } else {
        stream.read(channelName);
        stream.read(floatVal);
    }
}

float RLFloatChannel::getFloatVal() const
{
    return floatVal;
}

void RLFloatChannel::setFloatVal(float value)
{
    floatVal = value;
}

std::string RLFloatChannel::getChannelName() const
{
    return channelName;
}

void RLFloatChannel::setChannelName(std::string value)
{
    channelName = std::move(value);
}
