#pragma once

#include <cstdint>
#include <string>

#include "raylume/platform/Export.h"

/// How one image lies on a surface.
///
/// Ownership: a plain value.
/// Units: radians for `angle`; scaleU and scaleV are reciprocals of the image's size in metres.
/// Layout: hosts read the fields directly; order and defaults are a contract.
/// Comparison: floats are the same when their single-precision difference, taken absolute and
///   widened, is strictly below 1e-05. There is deliberately no operator==.
class DL_API dlTexture {
public:
    dlTexture();
    dlTexture(const dlTexture& other);
    dlTexture& operator=(const dlTexture& other);
    ~dlTexture();

    /// True at the first difference; `center` plays no part.
    bool operator!=(const dlTexture& other) const;
    /// Orders by the same fields, scaleV before scaleU.
    bool operator<(const dlTexture& other) const;

    /// 1: no mapping at all. 2 to 6: the projection kinds, 3 being the box. An appearance carries
    /// the document's value unchanged.
    std::uint32_t mappingType = 1;
    float uDirection[3] = {0, 0, 0};
    float vDirection[3] = {0, 0, 0};
    float angle = 0;
    float origin[3] = {0, 0, 0};
    float scaleU = 0;  ///< Negative when the image is mirrored.
    float scaleV = 0;
    float transU = 0;
    float transV = 0;
    float mappingScalar = 0;
    float center[3] = {0, 0, 0};  ///< Middle of the image in model space.
    std::wstring filename;
};
