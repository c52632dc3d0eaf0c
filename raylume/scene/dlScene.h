#pragma once

#include <cstdint>
#include <string>

#include "raylume/platform/Export.h"

/// What stands behind and below the model: background, environment image, floor.
///
/// Ownership: a plain value. There are no move operations: moving from a scene copies it.
/// Units: colours 0 to 1; narrow strings in the ANSI code page.
/// Layout: hosts read the fields directly; order and defaults are a contract.
class DL_API dlScene {
public:
    dlScene();
    dlScene(const dlScene& other);
    dlScene& operator=(const dlScene& other);
    ~dlScene();

    int getFloorOrient() const;
    void setFloorOrient(int value);
    bool getFloorDir() const;
    void setFloorDir(bool value);
    bool getFloorVisibility() const;
    void setFloorVisibility(bool value);
    std::string getFloorType() const;
    /// Null counts as empty, here and in the other text setters.
    void setFloorType(const char* value);
    int getBackgroundType() const;
    void setBackgroundType(int value);
    std::string getBackgroundTypeStr() const;
    void setBackgroundTypeStr(const char* value);
    std::string getBackPlateImage() const;
    void setBackPlateImage(const char* value);
    bool getBkplVisibility() const;
    void setBkplVisibility(bool value);
    std::string getEnvironmentImage() const;
    void setEnvironmentImage(const char* value);
    bool getEnvVisibility() const;
    void setEnvVisibility(bool value);
    void getBackgroundColor1(double& red, double& green, double& blue) const;
    void setBackgroundColor1(double red, double green, double blue);
    void getBackgroundColor2(double& red, double& green, double& blue) const;
    void setBackgroundColor2(double red, double green, double blue);
    double getBackgroundBrightness() const;
    void setBackgroundBrightness(double value);
    double getRenderingBrightness() const;
    void setRenderingBrightness(double value);
    double getSceneReflectivity() const;
    void setSceneReflectivity(double value);

    std::int32_t floorOrient = 2;
    bool floorDir = false;
    bool floorVisibility = false;
    std::string floorType;  ///< "reflect", "shadow" or empty.
    std::int32_t backgroundType = 0;
    std::string backgroundTypeStr;  ///< "Env_Solid", "Env_Gradient", "Env_Backplate", "Environment".
    std::string backPlateImage;
    bool bkplVisibility = false;
    std::string environmentImage;
    bool envVisibility = false;
    double backgroundColor1[3] = {0, 0, 0};
    double backgroundColor2[3] = {0, 0, 0};
    double backgroundBrightness = 0;
    double renderingBrightness = 0;
    double sceneReflectivity = 0;
};
