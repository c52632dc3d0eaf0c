// Memory that is about to be filled.
#pragma once

#include <cstddef>

#include "raylume/platform/Export.h"

namespace platform {

/// Makes a large block, fresh from the allocator and about to be filled, ready for it: asks for huge
/// pages where whole ones fit, and has the system map all pages in one call, since taking a fault for
/// each costs more than the copying into them. A hint: small blocks, and systems that know neither, are
/// left alone, and the bytes stay as they are. The block stays the allocator's.
PLATFORM_API void prepareForFilling(void* block, std::size_t size);

}  // namespace platform
