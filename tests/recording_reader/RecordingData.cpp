// The data classes: each listed operation answers from the member beside it and writes itself down.
#include "tests/recording_reader/RecordingReader.h"

using recording::Recorder;

namespace {

void record(const void* object, const std::string& operation)
{
    Recorder& recorder = Recorder::get();
    recorder.record(recorder.prefixOf(object) + operation);
}

void record(const void* object, const char* operation, int argument)
{
    record(object, operation + ("(" + std::to_string(argument) + ")"));
}

template <class T>
T findOr(const std::map<int, T>& values, int key, T otherwise)
{
    const auto entry = values.find(key);
    return entry == values.end() ? otherwise : entry->second;
}

}  // namespace

uoMaterialTextureProperties::uoMaterialTextureProperties() = default;
uoMaterialTextureProperties::uoMaterialTextureProperties(const uoMaterialTextureProperties&) = default;
uoMaterialTextureProperties& uoMaterialTextureProperties::operator=(const uoMaterialTextureProperties&) =
    default;
uoMaterialTextureProperties::~uoMaterialTextureProperties() = default;

double uoMaterialTextureProperties::getTextureScale(int direction)
{
    record(this, "getTextureScale", direction);
    return scale[direction];
}

bool uoMaterialTextureProperties::getTextureRanges(int direction, double& from, double& to)
{
    record(this, "getTextureRanges", direction);
    if (!hasRanges)
        return false;
    from = ranges[direction][0];
    to = ranges[direction][1];
    return true;
}

bool uoMaterialTextureProperties::getTextureDir(int direction, double& x, double& y, double& z)
{
    record(this, "getTextureDir", direction);
    if (!hasDirections)
        return false;
    x = directions[direction][0];
    y = directions[direction][1];
    z = directions[direction][2];
    return direction == 0 || Recorder::get().answers.admitsSecondDirection;
}

double uoMaterialTextureProperties::getTextureAngle()
{
    record(this, "getTextureAngle()");
    return angle;
}

double uoMaterialTextureProperties::getTextureTransX()
{
    record(this, "getTextureTransX()");
    return transX;
}

double uoMaterialTextureProperties::getTextureTransY()
{
    record(this, "getTextureTransY()");
    return transY;
}

std::wstring uoMaterialTextureProperties::getTextureFilename()
{
    record(this, "getTextureFilename()");
    return filename;
}

uoRVAppearanceProperties::uoRVAppearanceProperties() = default;
uoRVAppearanceProperties::uoRVAppearanceProperties(const uoRVAppearanceProperties&) = default;
uoRVAppearanceProperties& uoRVAppearanceProperties::operator=(const uoRVAppearanceProperties&) = default;
uoRVAppearanceProperties::~uoRVAppearanceProperties() = default;

std::wstring uoRVAppearanceProperties::getLFPFilename()
{
    record(this, "getLFPFilename()");
    return lfpFilename;
}

std::wstring uoRVAppearanceProperties::getBumpTextureFilename()
{
    record(this, "getBumpTextureFilename()");
    return bumpTextureFilename;
}

std::wstring uoRVAppearanceProperties::getFilename()
{
    record(this, "getFilename()");
    return filename;
}

std::wstring uoRVAppearanceProperties::getRVShaderName()
{
    record(this, "getRVShaderName()");
    return shaderName;
}

int uoRVAppearanceProperties::getDimpleFileNumber()
{
    record(this, "getDimpleFileNumber()");
    return dimpleFileNumber;
}

int uoRVAppearanceProperties::getKnurlFileNumber()
{
    record(this, "getKnurlFileNumber()");
    return knurlFileNumber;
}

uoMaterialProperties::uoMaterialProperties() = default;
uoMaterialProperties::uoMaterialProperties(const uoMaterialProperties&) = default;
uoMaterialProperties& uoMaterialProperties::operator=(const uoMaterialProperties&) = default;
uoMaterialProperties::~uoMaterialProperties() = default;

std::wstring uoMaterialProperties::getIdName()
{
    record(this, "getIdName()");
    return idName;
}

std::wstring uoMaterialProperties::getUserName()
{
    record(this, "getUserName()");
    return userName;
}

uoDecalProperties::uoDecalProperties() = default;
uoDecalProperties::uoDecalProperties(const uoDecalProperties&) = default;
uoDecalProperties& uoDecalProperties::operator=(const uoDecalProperties&) = default;
uoDecalProperties::~uoDecalProperties() = default;

std::list<unsigned long> uoDecalProperties::getColorMask()
{
    record(this, "getColorMask()");
    return {colorMask.begin(), colorMask.end()};
}

moLight_c::moLight_c() = default;
moLight_c::moLight_c(const moLight_c&) = default;
moLight_c& moLight_c::operator=(const moLight_c&) = default;
moLight_c::~moLight_c() = default;

LIGHT_TYPE moLight_c::getLightType() const
{
    record(this, "getLightType()");
    return lightType;
}

pwSceneData_c::pwSceneData_c() = default;
pwSceneData_c::pwSceneData_c(const pwSceneData_c&) = default;
pwSceneData_c& pwSceneData_c::operator=(const pwSceneData_c&) = default;
pwSceneData_c::~pwSceneData_c() = default;

color pwSceneData_c::getBackgroundColor1()
{
    record(this, "getBackgroundColor1()");
    return backgroundColor1;
}

color pwSceneData_c::getBackgroundColor2()
{
    record(this, "getBackgroundColor2()");
    return backgroundColor2;
}

std::wstring pwSceneData_c::getBackgroundImage(int index)
{
    record(this, "getBackgroundImage", index);
    return findOr(backgroundImages, index, std::wstring());
}

std::wstring pwSceneData_c::getBackgroundEnvImage(int index)
{
    record(this, "getBackgroundEnvImage", index);
    return findOr(backgroundEnvImages, index, std::wstring());
}

std::wstring pwSceneData_c::getSceneFileName()
{
    record(this, "getSceneFileName()");
    return sceneFileName;
}

pwWallInfo_c* pwSceneData_c::getWallInfo(int index)
{
    record(this, "getWallInfo", index);
    return findOr<pwWallInfo_c*>(walls, index, nullptr);
}

ovScene_c::ovScene_c() = default;
ovScene_c::ovScene_c(const ovScene_c&) = default;
ovScene_c& ovScene_c::operator=(const ovScene_c&) = default;
ovScene_c::~ovScene_c() = default;

void ovScene_c::getFloorLocation(mgPoint_c& point, mgVector_c& direction)
{
    record(this, "getFloorLocation()");
    point = floorPoint;
    direction = floorVector;
}

uoTempFaceTessData_c::uoTempFaceTessData_c() = default;
uoTempFaceTessData_c::uoTempFaceTessData_c(const uoTempFaceTessData_c&) = default;
uoTempFaceTessData_c& uoTempFaceTessData_c::operator=(const uoTempFaceTessData_c&) = default;
uoTempFaceTessData_c::~uoTempFaceTessData_c() = default;

moVisualProperties_c* uoTempFaceTessData_c::getFaceVizProp(int config)
{
    record(this, "getFaceVizProp", config);
    return findOr<moVisualProperties_c*>(faceVizProps, config, nullptr);
}

VizPropMode_e uoTempFaceTessData_c::getVizPropMode(int config)
{
    record(this, "getVizPropMode", config);
    return findOr(vizPropModes, config, VizPropMode_none);
}

uoTempBodyTessData_c::uoTempBodyTessData_c() = default;
uoTempBodyTessData_c::uoTempBodyTessData_c(const uoTempBodyTessData_c&) = default;
uoTempBodyTessData_c& uoTempBodyTessData_c::operator=(const uoTempBodyTessData_c&) = default;
uoTempBodyTessData_c::~uoTempBodyTessData_c() = default;

moVisualProperties_c* uoTempBodyTessData_c::getBodyVizProp(int config)
{
    record(this, "getBodyVizProp", config);
    return findOr<moVisualProperties_c*>(bodyVizProps, config, nullptr);
}

uoBodyPropInfo_c* uoTempBodyTessData_c::getBodyPropInfo(int config)
{
    record(this, "getBodyPropInfo", config);
    return findOr<uoBodyPropInfo_c*>(bodyPropInfos, config, nullptr);
}

uoTempPartTessData_c::uoTempPartTessData_c() = default;
uoTempPartTessData_c::uoTempPartTessData_c(const uoTempPartTessData_c&) = default;
uoTempPartTessData_c& uoTempPartTessData_c::operator=(const uoTempPartTessData_c&) = default;
uoTempPartTessData_c::~uoTempPartTessData_c() = default;

int uoTempPartTessData_c::getNumBodies() const
{
    record(this, "getNumBodies()");
    return static_cast<int>(bodies.count);
}

moVisualProperties_c* uoTempPartTessData_c::getModelVizProp(int config) const
{
    record(this, "getModelVizProp", config);
    return findOr<moVisualProperties_c*>(modelVizProps, config, nullptr);
}
