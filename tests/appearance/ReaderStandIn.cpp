// The reader's operations that appearance uses, answering from the public members.
#include "raylume/load/ReaderInterface.h"

uoMaterialTextureProperties::uoMaterialTextureProperties() = default;
uoMaterialTextureProperties::uoMaterialTextureProperties(const uoMaterialTextureProperties&) = default;
uoMaterialTextureProperties& uoMaterialTextureProperties::operator=(const uoMaterialTextureProperties&) =
    default;
uoMaterialTextureProperties::~uoMaterialTextureProperties() = default;

double uoMaterialTextureProperties::getTextureScale(int direction)
{
    return scale[direction];
}

double uoMaterialTextureProperties::getTextureAngle()
{
    return angle;
}

double uoMaterialTextureProperties::getTextureTransX()
{
    return transX;
}

double uoMaterialTextureProperties::getTextureTransY()
{
    return transY;
}

std::wstring uoMaterialTextureProperties::getTextureFilename()
{
    return filename;
}

uoRVAppearanceProperties::uoRVAppearanceProperties() = default;
uoRVAppearanceProperties::uoRVAppearanceProperties(const uoRVAppearanceProperties&) = default;
uoRVAppearanceProperties& uoRVAppearanceProperties::operator=(const uoRVAppearanceProperties&) = default;
uoRVAppearanceProperties::~uoRVAppearanceProperties() = default;

std::wstring uoRVAppearanceProperties::getLFPFilename()
{
    return lfpFilename;
}

std::wstring uoRVAppearanceProperties::getBumpTextureFilename()
{
    return bumpTextureFilename;
}

std::wstring uoRVAppearanceProperties::getFilename()
{
    return filename;
}

std::wstring uoRVAppearanceProperties::getRVShaderName()
{
    return shaderName;
}

int uoRVAppearanceProperties::getDimpleFileNumber()
{
    return dimpleFileNumber;
}

int uoRVAppearanceProperties::getKnurlFileNumber()
{
    return knurlFileNumber;
}

uoMaterialProperties::uoMaterialProperties() = default;
uoMaterialProperties::uoMaterialProperties(const uoMaterialProperties&) = default;
uoMaterialProperties& uoMaterialProperties::operator=(const uoMaterialProperties&) = default;
uoMaterialProperties::~uoMaterialProperties() = default;

std::wstring uoMaterialProperties::getIdName()
{
    return idName;
}

std::wstring uoMaterialProperties::getUserName()
{
    return userName;
}

uoDecalProperties::uoDecalProperties() = default;
uoDecalProperties::uoDecalProperties(const uoDecalProperties&) = default;
uoDecalProperties& uoDecalProperties::operator=(const uoDecalProperties&) = default;
uoDecalProperties::~uoDecalProperties() = default;

std::list<unsigned long> uoDecalProperties::getColorMask()
{
    return {colorMask.begin(), colorMask.end()};
}

uoTempPartTessData_c::uoTempPartTessData_c() = default;
uoTempPartTessData_c::uoTempPartTessData_c(const uoTempPartTessData_c&) = default;
uoTempPartTessData_c& uoTempPartTessData_c::operator=(const uoTempPartTessData_c&) = default;
uoTempPartTessData_c::~uoTempPartTessData_c() = default;

int uoTempPartTessData_c::getNumBodies() const
{
    return static_cast<int>(bodies.count);
}

moVisualProperties_c* uoTempPartTessData_c::getModelVizProp(int config) const
{
    const auto found = modelVizProps.find(config);
    return found == modelVizProps.end() ? nullptr : found->second;
}
