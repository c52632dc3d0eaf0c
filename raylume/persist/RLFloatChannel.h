#pragma once

#include <string>

#include "raylume/persist/RLArchive.h"
#include "raylume/platform/Export.h"

/// A named number of a mask material. Names may repeat in a list.
///
/// Ownership: a plain value.
/// Units: text in the ANSI code page.
/// Layout: hosts read the fields directly; order and defaults are a contract.
class DL_API RLFloatChannel : public RLSerializable {
public:
    RLFloatChannel();
    RLFloatChannel(std::string name, float value);
    RLFloatChannel(const RLFloatChannel& other);
    RLFloatChannel(RLFloatChannel&& other) noexcept;
    RLFloatChannel& operator=(const RLFloatChannel& other);
    RLFloatChannel& operator=(RLFloatChannel&& other) noexcept;
    ~RLFloatChannel();

    /// Stores the name first.
    void serialize(RLArchive& archive) override;

    float getFloatVal() const;
    void setFloatVal(float value);
    std::string getChannelName() const;
    void setChannelName(std::string value);

    float floatVal = 0.0f;
    std::string channelName;
};
