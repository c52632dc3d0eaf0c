#include "raylume/scene/dlMaterial.h"

#include <algorithm>

#include "raylume/scene/FieldOrder.h"
#include "raylume/scene/MaterialOrder.h"
#include "raylume/scene/Ownership.h"
#include "raylume/scene/dlDecal.h"

using scene::FieldOrder;
using scene::orderSurface;
using scene::sameWithinTolerance;

namespace {

void copySurface(const dlMaterial& source, dlMaterial& target)
{
    std::copy(std::begin(source.color), std::end(source.color), target.color);
    target.ambient = source.ambient;
    target.diffuse = source.diffuse;
    target.specular = source.specular;
    target.shininess = source.shininess;
    target.transparency = source.transparency;
    target.emission = source.emission;
    target.texture = source.texture;
    target.colorRef = source.colorRef;
    target.surfaceFinish = source.surfaceFinish;
    target.decals = source.decals;
}

void copyRenderAppearance(const dlMaterial& source, dlMaterial& target)
{
    target.rvIndex = source.rvIndex;
    target.rvWeight = source.rvWeight;
    target.rvDecalValue = source.rvDecalValue;
    target.secondColorRef = source.secondColorRef;
    target.rvFlagA = source.rvFlagA;
    target.rvFlagB = source.rvFlagB;
    target.rvLuminous = source.rvLuminous;
    target.rvLevelA = source.rvLevelA;
    target.rvLevelB = source.rvLevelB;
    target.rvUnitLevel = source.rvUnitLevel;
    target.rvLevelC = source.rvLevelC;
    target.rvLevelD = source.rvLevelD;
    target.rvFlagC = source.rvFlagC;
    target.rvFlagD = source.rvFlagD;
    target.lfpAppearance = source.lfpAppearance;
    target.reservedFlag = source.reservedFlag;
    target.visualFlag = source.visualFlag;
}

// reservedNameA and reservedNameB are left out, and that is meant: they belong to the target.
void copyNames(const dlMaterial& source, dlMaterial& target)
{
    target.idName = source.idName;
    target.userName = source.userName;
    target.appearanceName = source.appearanceName;
    target.shaderName = source.shaderName;
    target.visualName = source.visualName;
    target.bumpFilename = source.bumpFilename;
    target.lfpFilename = source.lfpFilename;
    target.reservedNameC = source.reservedNameC;
}

bool sameSurface(const dlMaterial& a, const dlMaterial& b)
{
    return sameWithinTolerance(a.color, b.color) && sameWithinTolerance(a.ambient, b.ambient) &&
           sameWithinTolerance(a.diffuse, b.diffuse) && sameWithinTolerance(a.specular, b.specular) &&
           sameWithinTolerance(a.shininess, b.shininess) &&
           sameWithinTolerance(a.transparency, b.transparency) &&
           sameWithinTolerance(a.emission, b.emission) && a.colorRef == b.colorRef &&
           a.surfaceFinish == b.surfaceFinish && a.decals == b.decals;
}

bool sameRenderNumbers(const dlMaterial& a, const dlMaterial& b)
{
    return a.rvIndex == b.rvIndex && sameWithinTolerance(a.rvWeight, b.rvWeight) &&
           a.rvDecalValue == b.rvDecalValue && a.secondColorRef == b.secondColorRef &&
           sameWithinTolerance(a.rvLuminous, b.rvLuminous) && sameWithinTolerance(a.rvLevelA, b.rvLevelA) &&
           sameWithinTolerance(a.rvLevelB, b.rvLevelB) &&
           sameWithinTolerance(a.rvUnitLevel, b.rvUnitLevel) &&
           sameWithinTolerance(a.rvLevelC, b.rvLevelC) && sameWithinTolerance(a.rvLevelD, b.rvLevelD);
}

bool sameFlags(const dlMaterial& a, const dlMaterial& b)
{
    return a.rvFlagA == b.rvFlagA && a.rvFlagB == b.rvFlagB && a.rvFlagC == b.rvFlagC &&
           a.rvFlagD == b.rvFlagD && a.lfpAppearance == b.lfpAppearance &&
           a.reservedFlag == b.reservedFlag && a.visualFlag == b.visualFlag;
}

bool sameNames(const dlMaterial& a, const dlMaterial& b)
{
    return a.bumpFilename == b.bumpFilename && a.lfpFilename == b.lfpFilename &&
           a.reservedNameC == b.reservedNameC;
}

bool hasSurfaceDecal(const dlMaterial& material)
{
    return std::any_of(material.decals.begin(), material.decals.end(),
                       [](dlDecal* decal) { return decal && decal->getInstanceDecal() == 0; });
}

bool sameDecal(const dlDecal* receiver, const dlDecal* argument)
{
    return receiver && argument ? *receiver == *argument : receiver == argument;
}

bool decalBefore(const dlDecal* receiver, const dlDecal* argument)
{
    return receiver && argument ? *receiver < *argument : receiver == nullptr;
}

// The pair whose decals are not the same, for lists of one length.
auto firstDifferentPair(const std::list<dlDecal*>& a, const std::list<dlDecal*>& b)
{
    return std::mismatch(a.begin(), a.end(), b.begin(),
                         [](const dlDecal* inA, const dlDecal* inB) { return sameDecal(inB, inA); });
}

// Unlike every other step, the content sorts in reverse: b's decal is asked whether it is less.
void orderDecals(FieldOrder& order, const dlMaterial& a, const dlMaterial& b)
{
    order.step([&] { return hasSurfaceDecal(a) != hasSurfaceDecal(b); },
               [&] { return hasSurfaceDecal(a); });
    order.value(a.decals.size(), b.decals.size());
    order.step([&] { return firstDifferentPair(a.decals, b.decals).first != a.decals.end(); },
               [&] {
                   const auto pair = firstDifferentPair(a.decals, b.decals);
                   return decalBefore(*pair.second, *pair.first);
               });
}

void orderRenderAppearance(FieldOrder& order, const dlMaterial& a, const dlMaterial& b)
{
    order.value(a.rvIndex, b.rvIndex)
        .real(a.rvWeight, b.rvWeight)
        .value(a.secondColorRef, b.secondColorRef)
        .value(a.rvFlagA, b.rvFlagA)
        .value(a.rvFlagC, b.rvFlagC)
        .value(a.rvFlagD, b.rvFlagD)
        .value(a.rvFlagB, b.rvFlagB)
        .real(a.rvLuminous, b.rvLuminous)
        .real(a.rvLevelA, b.rvLevelA)
        .real(a.rvLevelB, b.rvLevelB)
        .real(a.rvUnitLevel, b.rvUnitLevel)
        .real(a.rvLevelC, b.rvLevelC)
        .real(a.rvLevelD, b.rvLevelD)
        .value(a.lfpAppearance, b.lfpAppearance)
        .value(a.reservedFlag, b.reservedFlag)
        .value(a.visualFlag, b.visualFlag);
}

// lfpFilename decides nothing here although operator== looks at it.
void orderRest(FieldOrder& order, const dlMaterial& a, const dlMaterial& b)
{
    order.value(a.surfaceFinish, b.surfaceFinish)
        .value(a.bumpFilename, b.bumpFilename)
        .value(a.reservedNameC, b.reservedNameC)
        .value(a.rvDecalValue, b.rvDecalValue);
}

}  // namespace

dlMaterial::dlMaterial() = default;
dlMaterial::dlMaterial(const dlMaterial& other) = default;

dlMaterial& dlMaterial::operator=(const dlMaterial& other)
{
    copySurface(other, *this);
    copyRenderAppearance(other, *this);
    copyNames(other, *this);
    return *this;
}

dlMaterial::~dlMaterial()
{
    scene::deleteDecals(decals);
}

bool dlMaterial::isDecal() const
{
    return false;
}

bool dlMaterial::operator==(const dlMaterial& other) const
{
    return sameSurface(*this, other) && sameRenderNumbers(*this, other) && sameFlags(*this, other) &&
           sameNames(*this, other);
}

bool dlMaterial::operator<(const dlMaterial& other) const
{
    if (other.isDecal()) {
        return true;
    }
    FieldOrder order;
    orderSurface(order, *this, other);
    orderDecals(order, *this, other);
    orderRenderAppearance(order, *this, other);
    orderRest(order, *this, other);
    return order.aBeforeB();
}

void dlMaterial::addDecals(dlDecal* decal)
{
    if (decal) {
        decals.push_back(decal);
    }
}

std::list<dlDecal*>& dlMaterial::getDecals()
{
    return decals;
}
