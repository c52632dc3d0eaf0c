// The small stream that tells a document of this reader's own from any other compound file.
#pragma once

#include <cstdint>
#include <optional>

#include "raylume/platform/CompoundFile.h"

namespace ovdl {

inline constexpr wchar_t kHeaderName[] = L"Header";

/// Three 32-bit numbers, little-endian. Later format versions may put more behind them.
struct DocumentHeader {
    std::uint32_t formatVersion = 1;  ///< 1 to 65535; anything else is another program's stream.
    std::uint32_t documentVersion = 0;
    std::uint32_t displayListVersion = 0;  ///< 0: none.
};

/// What a compound file answers that has no such header.
inline constexpr unsigned long kVersionWithoutHeader = 10000;
inline constexpr unsigned long kDLVersionWithoutHeader = 0;

/// The header of a document, or nothing where there is none of this reader's own.
std::optional<DocumentHeader> readHeader(IStorage& root);

/// Puts a header into a document, in the place of one that is there. The result is that of the storage.
HResult writeHeader(IStorage& root, const DocumentHeader& header);

}  // namespace ovdl
