#include "raylume/scene/dlScene.h"

namespace {

const char* textOrEmpty(const char* text)
{
    return text ? text : "";
}

void readColour(const double (&colour)[3], double& red, double& green, double& blue)
{
    red = colour[0];
    green = colour[1];
    blue = colour[2];
}

void writeColour(double (&colour)[3], double red, double green, double blue)
{
    colour[0] = red;
    colour[1] = green;
    colour[2] = blue;
}

}  // namespace

dlScene::dlScene() = default;
dlScene::dlScene(const dlScene& other) = default;
dlScene& dlScene::operator=(const dlScene& other) = default;
dlScene::~dlScene() = default;

int dlScene::getFloorOrient() const
{
    return floorOrient;
}

void dlScene::setFloorOrient(int value)
{
    floorOrient = value;
}

bool dlScene::getFloorDir() const
{
    return floorDir;
}

void dlScene::setFloorDir(bool value)
{
    floorDir = value;
}

bool dlScene::getFloorVisibility() const
{
    return floorVisibility;
}

void dlScene::setFloorVisibility(bool value)
{
    floorVisibility = value;
}

std::string dlScene::getFloorType() const
{
    return floorType;
}

void dlScene::setFloorType(const char* value)
{
    floorType = textOrEmpty(value);
}

int dlScene::getBackgroundType() const
{
    return backgroundType;
}

void dlScene::setBackgroundType(int value)
{
    backgroundType = value;
}

std::string dlScene::getBackgroundTypeStr() const
{
    return backgroundTypeStr;
}

void dlScene::setBackgroundTypeStr(const char* value)
{
    backgroundTypeStr = textOrEmpty(value);
}

std::string dlScene::getBackPlateImage() const
{
    return backPlateImage;
}

void dlScene::setBackPlateImage(const char* value)
{
    backPlateImage = textOrEmpty(value);
}

bool dlScene::getBkplVisibility() const
{
    return bkplVisibility;
}

void dlScene::setBkplVisibility(bool value)
{
    bkplVisibility = value;
}

std::string dlScene::getEnvironmentImage() const
{
    return environmentImage;
}

void dlScene::setEnvironmentImage(const char* value)
{
    environmentImage = textOrEmpty(value);
}

bool dlScene::getEnvVisibility() const
{
    return envVisibility;
}

void dlScene::setEnvVisibility(bool value)
{
    envVisibility = value;
}

void dlScene::getBackgroundColor1(double& red, double& green, double& blue) const
{
    readColour(backgroundColor1, red, green, blue);
}

void dlScene::setBackgroundColor1(double red, double green, double blue)
{
    writeColour(backgroundColor1, red, green, blue);
}

void dlScene::getBackgroundColor2(double& red, double& green, double& blue) const
{
    readColour(backgroundColor2, red, green, blue);
}

void dlScene::setBackgroundColor2(double red, double green, double blue)
{
    writeColour(backgroundColor2, red, green, blue);
}

double dlScene::getBackgroundBrightness() const
{
    return backgroundBrightness;
}

void dlScene::setBackgroundBrightness(double value)
{
    backgroundBrightness = value;
}

double dlScene::getRenderingBrightness() const
{
    return renderingBrightness;
}

void dlScene::setRenderingBrightness(double value)
{
    renderingBrightness = value;
}

double dlScene::getSceneReflectivity() const
{
    return sceneReflectivity;
}

void dlScene::setSceneReflectivity(double value)
{
    sceneReflectivity = value;
}
