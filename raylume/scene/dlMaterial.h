#pragma once

#include <cstdint>
#include <list>
#include <string>

#include "raylume/platform/Export.h"
#include "raylume/scene/dlTexture.h"

class dlDecal;

/// How a surface looks: the appearance of a part (by value), a body, a face or an instance (by
/// pointer, only where that level has one of its own).
///
/// Ownership: owns the decals in `decals`; a copy shares the pointers, so a material with decals
///   has one owner that may be destroyed. Nothing in this library fills that list.
/// Units: colours 0 to 1, red first; packed colours have red in the low byte. Narrow strings are in
///   the ANSI code page.
/// Layout: hosts read the fields directly; order and defaults are a contract.
class DL_API dlMaterial {
public:
    dlMaterial();
    /// Copies every field; the decal pointers are shared.
    dlMaterial(const dlMaterial& other);
    /// Copies every field but reservedNameA and reservedNameB, which the target keeps.
    dlMaterial& operator=(const dlMaterial& other);
    /// Not virtual: only a decal is ever deleted through a base, and then through dlDecal.
    ~dlMaterial();

    virtual bool isDecal() const;
    /// Puts every plain material before every decal, then goes by the first field that differs. Not
    /// a strict weak order where floats lie within the tolerance of each other (see dlTexture) or are
    /// not finite. Looks at texture and shaderName, which operator== does not; does not look at
    /// lfpFilename, which operator== does.
    virtual bool operator<(const dlMaterial& other) const;
    /// Same appearance within the tolerance; the texture and seven of the names play no part.
    bool operator==(const dlMaterial& other) const;

    /// Appends the decal, which the material then owns. Null is ignored.
    void addDecals(dlDecal* decal);
    /// The live list.
    std::list<dlDecal*>& getDecals();

    float color[3] = {1, 0, 0};
    float ambient = 0.5f;
    float diffuse = 1.0f;
    float specular = 0;
    float shininess = 0;
    float transparency = 0;
    float emission = 0;
    dlTexture texture;
    std::uint32_t colorRef = 0x00FFFFFF;
    std::int32_t rvIndex = -1;
    float rvWeight = 0;
    std::int32_t rvDecalValue = 0;  ///< Set for decals only.
    std::uint32_t secondColorRef = 0x00FFFFFF;
    bool rvFlagA = false;
    bool rvFlagB = false;
    float rvLuminous = 0;
    float rvLevelA = 0;
    float rvLevelB = 0;
    float rvUnitLevel = 1.0f;
    float rvLevelC = 0;
    float rvLevelD = 0;
    bool rvFlagC = false;
    bool rvFlagD = false;
    bool lfpAppearance = false;
    bool reservedFlag = false;
    bool visualFlag = false;
    std::int32_t surfaceFinish = 0;
    std::list<dlDecal*> decals;
    std::string idName;
    std::string userName;
    std::string appearanceName;
    std::string shaderName;
    std::string visualName;
    std::string reservedNameA;
    std::string reservedNameB;
    std::string bumpFilename;
    std::string lfpFilename;
    std::string reservedNameC;  ///< The instance's name, on the material of an animated instance.
};
