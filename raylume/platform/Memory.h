// Memory that is about to be filled.
#pragma once

#include <cstddef>

#include "raylume/platform/Export.h"

namespace platform {

/// Asks the system to back a large block, fresh from the allocator and not yet touched, with huge
/// pages: the faults of small ones cost more than the copying into them. A hint; small blocks and
/// systems without huge pages are left alone. The block stays the allocator's.
PLATFORM_API void adviseHugePages(void* block, std::size_t size);

}  // namespace platform
