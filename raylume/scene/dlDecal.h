#pragma once

#include <cstdint>
#include <list>
#include <string>

#include "raylume/platform/Export.h"
#include "raylume/scene/dlMaterial.h"

/// Kind of a mask. The library stores it and names no kind but the default.
enum decalmaskType_e : std::uint32_t { decalmaskType_none = 0 };

/// An appearance that lies on top of a surface: an image placed on a face, with a rule that cuts
/// parts of it out.
///
/// Ownership: a dlFace or a dlInstance owns the decals in its list and deletes them through the
///   virtual destructor here.
/// Layout: hosts read the fields directly; order and defaults are a contract.
class DL_API dlDecal : public dlMaterial {
public:
    dlDecal();
    dlDecal(const dlDecal& other);
    /// As dlMaterial's assignment (keeps reservedNameA and reservedNameB), and all fields below.
    dlDecal& operator=(const dlDecal& other);

    bool isDecal() const override;
    /// Never before a plain material; among decals, those with the greater instanceDecal first.
    /// faceId, rvFlagD, lfpAppearance, reservedFlag and visualFlag play no part.
    bool operator<(const dlMaterial& other) const override;
    virtual ~dlDecal();
    /// The material fields by dlMaterial's rule, then the decal's own, all but faceId.
    bool operator==(const dlDecal& other) const;

    int getFaceId() const;
    void setFaceId(int value);
    int getUODecalId() const;
    void setUODecalId(int value);
    int getInstanceDecal();
    void setInstanceDecal(int value);
    int getMaskInvert();
    void setMaskInvert(int value);
    int getUseUnderlyingAppearance();
    void setUseUnderlyingAppearance(int value);
    decalmaskType_e getMaskType();
    void setMaskType(decalmaskType_e value);
    float getTextureTransU() const;
    void setTextureTransU(float value);
    float getTextureTransV() const;
    void setTextureTransV(float value);
    float getTextureAngleUV() const;
    void setTextureAngleUV(float value);
    std::wstring getMaskFilename();
    void setMaskFilename(std::wstring value);
    std::string getPickDecalTag() const;
    void setPickDecalTag(std::string value);
    std::list<unsigned long> getColorMask();
    void setColorMask(std::list<unsigned long> value);

    /// Saves `texture.filename` as a bitmap in which the colours of `colorMask` are transparent and all
    /// others opaque, and takes its path. `documentPath` is the folder of the document, where the image is
    /// searched. It is passed on as it is: without a trailing separator its last component is lost.
    ///
    /// What was made before of the same image and the same colours in the same order is used again, as long
    /// as the process lives. That goes for failures too, and for files that rlu_ClearTempBMPFiles has
    /// deleted: they are not made again.
    ///
    /// Errors: none. An image that cannot be read still takes a path, with nothing behind it; the next
    ///   bitmap may be saved there, and then the path names another picture. Without a temporary folder
    ///   `texture.filename` stays.
    void generateNewImageUsingMaskColors(std::wstring documentPath);
    /// The same with the blue bytes of a mask image, `maskName`, as alpha; with `invert` 255 minus them.
    /// When only the mask cannot be read, the image is saved with its own alpha. What was made before of
    /// the same two images and the same `invert` is used again.
    void generateNewImageUsingMaskFile(std::wstring documentPath, std::wstring maskName, bool invert);

    std::int32_t decalReservedA = 0;
    std::int32_t decalReservedB = 0;
    std::int32_t decalReservedC = 0;
    decalmaskType_e maskType = decalmaskType_none;
    std::wstring maskFilename;
    std::int32_t maskInvert = 0;
    std::list<std::uint32_t> colorMask;  ///< Colours to cut out; red in the low byte.
    std::int32_t decalReservedD = 0;
    float textureTransU = 0;
    float textureTransV = 0;
    float textureAngleUV = 0;
    std::int32_t faceId = -1;  ///< The face it lies on, when it hangs on an instance.
    std::int32_t uoDecalId = 0;
    std::int32_t useUnderlyingAppearance = 1;
    std::string pickDecalTag;
    std::int32_t instanceDecal = 0;
};
