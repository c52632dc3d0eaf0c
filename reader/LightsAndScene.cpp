// Lights and scene settings: plain records that answer from their members.
#include "raylume/load/ReaderInterface.h"

namespace {

std::wstring textAt(const std::map<int, std::wstring>& texts, int index)
{
    const auto found = texts.find(index);
    return found == texts.end() ? std::wstring() : found->second;
}

}  // namespace

moLight_c::moLight_c() = default;
moLight_c::moLight_c(const moLight_c&) = default;
moLight_c& moLight_c::operator=(const moLight_c&) = default;
moLight_c::~moLight_c() = default;

LIGHT_TYPE moLight_c::getLightType() const
{
    return lightType;
}

pwSceneData_c::pwSceneData_c() = default;
pwSceneData_c::pwSceneData_c(const pwSceneData_c&) = default;
pwSceneData_c& pwSceneData_c::operator=(const pwSceneData_c&) = default;
pwSceneData_c::~pwSceneData_c() = default;

color pwSceneData_c::getBackgroundColor1()
{
    return backgroundColor1;
}

color pwSceneData_c::getBackgroundColor2()
{
    return backgroundColor2;
}

std::wstring pwSceneData_c::getBackgroundImage(int index)
{
    return textAt(backgroundImages, index);
}

std::wstring pwSceneData_c::getBackgroundEnvImage(int index)
{
    return textAt(backgroundEnvImages, index);
}

std::wstring pwSceneData_c::getSceneFileName()
{
    return sceneFileName;
}

pwWallInfo_c* pwSceneData_c::getWallInfo(int index)
{
    const auto found = walls.find(index);
    return found == walls.end() ? nullptr : found->second;
}

ovScene_c::ovScene_c() = default;
ovScene_c::ovScene_c(const ovScene_c&) = default;
ovScene_c& ovScene_c::operator=(const ovScene_c&) = default;
ovScene_c::~ovScene_c() = default;

void ovScene_c::getFloorLocation(mgPoint_c& point, mgVector_c& direction)
{
    point = floorPoint;
    direction = floorVector;
}
