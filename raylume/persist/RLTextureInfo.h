#pragma once

#include <cstdint>

#include "raylume/persist/RLArchive.h"
#include "raylume/platform/Export.h"

/// The placement of a texture. No other record holds one: it is for hosts that store their own.
///
/// Ownership: a plain value.
/// Layout: hosts read the fields directly; order and defaults are a contract.
class DL_API RLTextureInfo : public RLSerializable {
public:
    RLTextureInfo();
    RLTextureInfo(const RLTextureInfo& other);
    RLTextureInfo(RLTextureInfo&& other) noexcept;
    RLTextureInfo& operator=(const RLTextureInfo& other);
    RLTextureInfo& operator=(RLTextureInfo&& other) noexcept;
    ~RLTextureInfo();

    /// 52 bytes of any version, in the order of the fields.
    void serialize(RLArchive& archive) override;

    /// The getters of the three vectors copy 3 floats to `values`, the setters 3 from it.
    void getScale(float* values) const;
    void setScale(const float* values);
    void getPosition(float* values) const;
    void setPosition(const float* values);
    void getRotation(float* values) const;
    void setRotation(const float* values);
    int getProjectionType() const;
    void setProjectionType(int value);
    int getProjectionAxis() const;
    void setProjectionAxis(int value);
    float getHorizontalWrap() const;
    void setHorizontalWrap(float value);
    float getVerticalWrap() const;
    void setVerticalWrap(float value);

    float scale[3] = {0, 0, 0};  ///< Not one: whoever makes a record sets it.
    float position[3] = {0, 0, 0};
    float rotation[3] = {0, 0, 0};
    std::int32_t projectionType = 0;
    std::int32_t projectionAxis = 2;
    float horizontalWrap = 1.0f;
    float verticalWrap = 1.0f;
};
