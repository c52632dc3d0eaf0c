// The FlatBuffer with the root table Tessellation, piece by piece.
#pragma once

#include "raylume/load/ReaderInterface.h"
#include "reader/formats/ovdl/BufferBuilder.h"
#include "reader/formats/ovdl/Inventory.h"
#include "reader/formats/ovdl/TessellationLayout.h"

namespace ovdl {

/// Piece `number` of a tessellation; borrowed from `builder`.
Bytes buildPiece(const uoTempPartTessData_c& tessData, const TessellationLayout& layout, std::size_t number,
                 const Inventory& inventory, BufferBuilder& builder);

}  // namespace ovdl
