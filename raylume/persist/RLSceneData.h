#pragma once

#include <string>

#include "raylume/persist/RLArchive.h"
#include "raylume/platform/Export.h"

/// The images and the floor of a rendering.
///
/// Ownership: a plain value.
/// Units: text in the ANSI code page.
/// Layout: hosts read the fields directly; order and defaults are a contract.
class DL_API RLSceneData : public RLSerializable {
public:
    RLSceneData();
    RLSceneData(const RLSceneData& other);
    RLSceneData(RLSceneData&& other) noexcept;
    RLSceneData& operator=(const RLSceneData& other);
    RLSceneData& operator=(RLSceneData&& other) noexcept;
    ~RLSceneData();

    void serialize(RLArchive& archive) override;

    std::string getEnvironmentImage() const;
    /// Null counts as empty, here and in the other text setters.
    void setEnvironmentImage(const char* value);
    std::string getBackPlateImage() const;
    void setBackPlateImage(const char* value);
    std::string getFloor() const;
    void setFloor(const char* value);
    std::string getFloorType() const;
    void setFloorType(const char* value);
    bool getEnvVisibility() const;
    void setEnvVisibility(bool value);
    bool getBkplVisibility() const;
    void setBkplVisibility(bool value);
    bool getFloorVisibility() const;
    void setFloorVisibility(bool value);
    bool getFloorFlip() const;
    void setFloorFlip(bool value);

    std::string environmentImage;
    std::string backPlateImage;
    std::string floor = "ZX";
    std::string floorType = "shadow";
    bool envVisibility = false;
    bool bkplVisibility = false;
    bool floorVisibility = true;
    bool floorFlip = false;
};
