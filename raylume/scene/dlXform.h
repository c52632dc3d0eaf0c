#pragma once

#include "raylume/platform/Export.h"

/// A transform in column-major order: a point maps to
///   x' = m[0] x + m[4] y + m[8] z + m[12], and so on for y' and z'.
///
/// Ownership: a plain value. Copies carry all nineteen floats.
/// Units: the translation (12, 13, 14) in metres.
/// Layout: hosts read the fields directly; order and defaults are a contract.
class DL_API dlXform {
public:
    float m[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    float extra[3] = {0, 0, 0};  ///< Carried along; nothing here gives it a meaning.
};
