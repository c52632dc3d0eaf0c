#include "raylume/scene/dlDecal.h"

#include <algorithm>
#include <functional>
#include <utility>

#include "raylume/scene/FieldOrder.h"
#include "raylume/scene/MaterialOrder.h"

using scene::FieldOrder;
using scene::orderSurface;
using scene::sameWithinTolerance;

namespace {

bool samePlacement(const dlDecal& a, const dlDecal& b)
{
    return sameWithinTolerance(a.textureTransU, b.textureTransU) &&
           sameWithinTolerance(a.textureTransV, b.textureTransV) &&
           sameWithinTolerance(a.textureAngleUV, b.textureAngleUV);
}

bool sameReserved(const dlDecal& a, const dlDecal& b)
{
    return a.decalReservedA == b.decalReservedA && a.decalReservedB == b.decalReservedB &&
           a.decalReservedC == b.decalReservedC && a.decalReservedD == b.decalReservedD;
}

bool sameMask(const dlDecal& a, const dlDecal& b)
{
    return a.maskType == b.maskType && a.maskFilename == b.maskFilename && a.maskInvert == b.maskInvert &&
           a.colorMask == b.colorMask;
}

bool sameIdentity(const dlDecal& a, const dlDecal& b)
{
    return a.uoDecalId == b.uoDecalId && a.instanceDecal == b.instanceDecal &&
           a.useUnderlyingAppearance == b.useUnderlyingAppearance && a.pickDecalTag == b.pickDecalTag;
}

// By the pointers themselves, unlike the order of plain materials, which looks into the decals.
bool pointersBefore(const std::list<dlDecal*>& a, const std::list<dlDecal*>& b)
{
    return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end(), std::less<>());
}

// rvLevelD decides before rvLevelC, and four of the flags do not count: both differ from plain
// materials, and both are meant.
void orderRenderAppearance(FieldOrder& order, const dlDecal& a, const dlDecal& b)
{
    order.value(a.rvIndex, b.rvIndex)
        .real(a.rvWeight, b.rvWeight)
        .value(a.rvDecalValue, b.rvDecalValue)
        .value(a.secondColorRef, b.secondColorRef)
        .value(a.rvFlagA, b.rvFlagA)
        .value(a.rvFlagC, b.rvFlagC)
        .value(a.rvFlagB, b.rvFlagB)
        .real(a.rvLuminous, b.rvLuminous)
        .real(a.rvLevelA, b.rvLevelA)
        .real(a.rvLevelB, b.rvLevelB)
        .real(a.rvUnitLevel, b.rvUnitLevel)
        .real(a.rvLevelD, b.rvLevelD)
        .real(a.rvLevelC, b.rvLevelC)
        .value(a.surfaceFinish, b.surfaceFinish)
        .value(a.bumpFilename, b.bumpFilename)
        .value(a.lfpFilename, b.lfpFilename)
        .value(a.reservedNameC, b.reservedNameC);
}

std::int32_t asSigned(decalmaskType_e type)
{
    return static_cast<std::int32_t>(type);
}

void orderMask(FieldOrder& order, const dlDecal& a, const dlDecal& b)
{
    order.value(a.decalReservedA, b.decalReservedA)
        .value(a.decalReservedB, b.decalReservedB)
        .value(a.decalReservedC, b.decalReservedC)
        .value(asSigned(a.maskType), asSigned(b.maskType))
        .value(a.maskFilename, b.maskFilename)
        .value(a.maskInvert, b.maskInvert)
        .value(a.decalReservedD, b.decalReservedD);
}

void orderRest(FieldOrder& order, const dlDecal& a, const dlDecal& b)
{
    order.real(a.textureTransU, b.textureTransU)
        .real(a.textureTransV, b.textureTransV)
        .real(a.textureAngleUV, b.textureAngleUV)
        .value(a.uoDecalId, b.uoDecalId)
        .value(a.useUnderlyingAppearance, b.useUnderlyingAppearance)
        .value(a.pickDecalTag, b.pickDecalTag)
        .value(a.colorMask, b.colorMask);
}

// Instance decals come first, so the larger value does.
void orderInstanceDecal(FieldOrder& order, const dlDecal& a, const dlDecal& b)
{
    order.value(b.instanceDecal, a.instanceDecal);
}

}  // namespace

dlDecal::dlDecal() = default;
dlDecal::dlDecal(const dlDecal& other) = default;
dlDecal& dlDecal::operator=(const dlDecal& other) = default;
dlDecal::~dlDecal() = default;

bool dlDecal::isDecal() const
{
    return true;
}

bool dlDecal::operator==(const dlDecal& other) const
{
    return dlMaterial::operator==(other) && sameReserved(*this, other) && sameMask(*this, other) &&
           samePlacement(*this, other) && sameIdentity(*this, other);
}

bool dlDecal::operator<(const dlMaterial& other) const
{
    if (!other.isDecal()) {
        return false;
    }
    const auto& decal = static_cast<const dlDecal&>(other);
    FieldOrder order;
    orderInstanceDecal(order, *this, decal);
    orderSurface(order, *this, decal);
    order.step([&] { return decals != decal.decals; },
               [&] { return pointersBefore(decals, decal.decals); });
    orderRenderAppearance(order, *this, decal);
    orderMask(order, *this, decal);
    orderRest(order, *this, decal);
    return order.aBeforeB();
}

int dlDecal::getFaceId() const
{
    return faceId;
}

void dlDecal::setFaceId(int value)
{
    faceId = value;
}

int dlDecal::getUODecalId() const
{
    return uoDecalId;
}

void dlDecal::setUODecalId(int value)
{
    uoDecalId = value;
}

int dlDecal::getInstanceDecal()
{
    return instanceDecal;
}

void dlDecal::setInstanceDecal(int value)
{
    instanceDecal = value;
}

int dlDecal::getMaskInvert()
{
    return maskInvert;
}

void dlDecal::setMaskInvert(int value)
{
    maskInvert = value;
}

int dlDecal::getUseUnderlyingAppearance()
{
    return useUnderlyingAppearance;
}

void dlDecal::setUseUnderlyingAppearance(int value)
{
    useUnderlyingAppearance = value;
}

decalmaskType_e dlDecal::getMaskType()
{
    return maskType;
}

void dlDecal::setMaskType(decalmaskType_e value)
{
    maskType = value;
}

float dlDecal::getTextureTransU() const
{
    return textureTransU;
}

void dlDecal::setTextureTransU(float value)
{
    textureTransU = value;
}

float dlDecal::getTextureTransV() const
{
    return textureTransV;
}

void dlDecal::setTextureTransV(float value)
{
    textureTransV = value;
}

float dlDecal::getTextureAngleUV() const
{
    return textureAngleUV;
}

void dlDecal::setTextureAngleUV(float value)
{
    textureAngleUV = value;
}

std::wstring dlDecal::getMaskFilename()
{
    return maskFilename;
}

void dlDecal::setMaskFilename(std::wstring value)
{
    maskFilename = std::move(value);
}

std::string dlDecal::getPickDecalTag() const
{
    return pickDecalTag;
}

void dlDecal::setPickDecalTag(std::string value)
{
    pickDecalTag = std::move(value);
}

std::list<unsigned long> dlDecal::getColorMask()
{
    return {colorMask.begin(), colorMask.end()};
}

// The values are 32-bit; what an unsigned long holds above that is dropped.
void dlDecal::setColorMask(std::list<unsigned long> value)
{
    std::list<std::uint32_t> narrowed;
    for (const unsigned long colour : value) {
        narrowed.push_back(static_cast<std::uint32_t>(colour));
    }
    colorMask = std::move(narrowed);
}
