// How the tessellation of a part is spread over its records, and over pieces.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "raylume/load/ReaderInterface.h"
#include "reader/formats/ovdl/ObjectNumbers.h"

namespace ovdl {

/// The records of one tessellation. Borrows the objects.
struct TessellationLayout {
    ObjectNumbers<uoTempBodyTessData_c> bodies;
    ObjectNumbers<uoTempFaceTessData_c> faces;
    ObjectNumbers<uoBodyPropInfo_c> propInfos;

    struct Piece {
        std::size_t firstFace;
        std::size_t endFace;
        std::uint64_t bytes;  ///< At most that many.
    };
    /// One at least. The first one has the bodies too.
    std::vector<Piece> pieces;
};

/// Numbers the records of `tessData` and cuts them at faces into pieces below `largestPiece` bytes.
///
/// Errors: raises Refusal, starting with `where`, for what no document can hold and for what is too large
///   for one piece.
TessellationLayout layOut(const uoTempPartTessData_c& tessData, const std::string& where,
                          std::uint64_t largestPiece);

}  // namespace ovdl
