// How STEP and IGES documents are read: the limits that their import program is held to, and how fine it
// makes their faces.
#pragma once

#include <cstdint>

#include "raylume/platform/Export.h"

namespace ovdl {

/// Past any of these a document is rejected, with a reason that says which. What is 0, less, or not finite is
/// not limited.
struct ImportLimits {
    /// By the clock, and of processor time.
    double seconds = 600;
    /// Address space of the program. Not held to in a build with sanitizers.
    std::uint64_t memoryBytes = std::uint64_t{8192} << 20;
    /// Size of the document that the program hands back.
    std::uint64_t outputBytes = std::uint64_t{4096} << 20;
};

struct Tessellation {
    /// How far a face may lie from its surface, as a share of the diagonal of its part's box. From 1e-9 to 1.
    double deflection = 0.001;
    /// How far neighbouring pieces of a curve may turn. From 0.01 to 180.
    double degrees = 20;
};

/// Limits of all reads from now on. Until this is called they are the defaults above, or what the
/// environment says on each read: RAYLUME_IMPORT_SECONDS, RAYLUME_IMPORT_MEGABYTES,
/// RAYLUME_IMPORT_OUTPUT_MEGABYTES.
OVDL_API void setImportLimits(const ImportLimits& limits);

/// Tessellation of all reads from now on; false, and nothing changed, for numbers out of range. Until this
/// is called it is the default, or what RAYLUME_TESSELLATION says: "<deflection>,<degrees>".
OVDL_API bool setTessellation(const Tessellation& tessellation);

}  // namespace ovdl
