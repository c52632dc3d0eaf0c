// Appearance and decals: plain records that answer from their members.
#include "raylume/load/ReaderInterface.h"

namespace {

bool isDirection(int direction)
{
    return direction == 0 || direction == 1;
}

}  // namespace

uoMaterialTextureProperties::uoMaterialTextureProperties() = default;
uoMaterialTextureProperties::uoMaterialTextureProperties(const uoMaterialTextureProperties&) = default;
uoMaterialTextureProperties& uoMaterialTextureProperties::operator=(const uoMaterialTextureProperties&) =
    default;
uoMaterialTextureProperties::~uoMaterialTextureProperties() = default;

// There are two directions; any other number gets the neutral scale, since callers divide by it.
double uoMaterialTextureProperties::getTextureScale(int direction)
{
    return isDirection(direction) ? scale[direction] : 1.0;
}

bool uoMaterialTextureProperties::getTextureRanges(int direction, double& from, double& to)
{
    if (!hasRanges || !isDirection(direction))
        return false;
    from = ranges[direction][0];
    to = ranges[direction][1];
    return true;
}

bool uoMaterialTextureProperties::getTextureDir(int direction, double& x, double& y, double& z)
{
    if (!hasDirections || !isDirection(direction))
        return false;
    x = directions[direction][0];
    y = directions[direction][1];
    z = directions[direction][2];
    return true;
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
