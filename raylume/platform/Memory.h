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

/// Makes the allocator's own memory ready for small blocks that come to about `size` bytes in all and are
/// about to be made, as prepareForFilling() does for a large one. What they leave over goes back to the
/// system with this object, or stays with the allocator.
///
/// Less than a few megabytes, and allocators of other kinds than the system's own, are left alone. With
/// glibc it is more than a hint: the process's allocator keeps blocks of up to 24 MB in its heap from then
/// on, where it would have mapped each by itself (the dynamic mmap threshold), as in any program that frees
/// such a block.
class PLATFORM_API PreparedHeap {
public:
    explicit PreparedHeap(std::size_t size);
    PreparedHeap(const PreparedHeap&) = delete;
    PreparedHeap& operator=(const PreparedHeap&) = delete;
    ~PreparedHeap();

private:
    void* pin_ = nullptr;
};

}  // namespace platform
