#pragma once

#include <cstdint>

#include "raylume/platform/Export.h"
#include "raylume/scene/dlBBox.h"
#include "raylume/scene/dlFace.h"

class dlMaterial;

/// A body: an array of faces.
///
/// Ownership: owns `faces` (array new) and `material`. The copy constructor is the implicit one;
///   copies and assignments share both and free nothing.
/// Layout: hosts read the fields directly; order and defaults are a contract.
class DL_API dlBody {
public:
    dlBody();
    dlBody(const dlBody&) = default;
    dlBody& operator=(const dlBody& other);
    ~dlBody();

    std::int32_t faceCount = 0;
    dlFace* faces = nullptr;
    dlMaterial* material = nullptr;
    bool flag = false;
    dlBBox bbox;
    std::int32_t level = 100;
};
