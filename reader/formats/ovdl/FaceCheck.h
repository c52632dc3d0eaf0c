// Whether a face can be written.
#pragma once

#include <cstdint>
#include <string>

#include "raylume/load/ReaderInterface.h"

namespace ovdl {

/// Errors: raises Refusal, starting with `where`, for a face whose strips need more than its arrays have,
///   and for arrays that no document can hold.
void checkFace(const uoTempFaceTessData_c& face, const std::string& where);

/// The bytes that a checked face takes in a piece.
std::uint64_t faceBytes(const uoTempFaceTessData_c& face);

}  // namespace ovdl
