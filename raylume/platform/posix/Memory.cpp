#include "raylume/platform/Memory.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>

namespace platform {

namespace {

// Smaller blocks mostly come from memory that the allocator had before, where there is nothing to map.
constexpr std::size_t kSmallestBlock = std::size_t{1} << 20;
// A smaller block holds no whole huge page.
constexpr std::size_t kHugePage = std::size_t{2} << 20;

#if defined(MADV_POPULATE_WRITE)
constexpr int kPopulate = MADV_POPULATE_WRITE;
#else
constexpr int kPopulate = 23;
#endif

}  // namespace

void prepareForFilling(void* block, std::size_t size)
{
    if (!block || size < kSmallestBlock) {
        return;
    }
    static const auto pageSize = static_cast<std::uintptr_t>(sysconf(_SC_PAGESIZE));
    const auto start = reinterpret_cast<std::uintptr_t>(block);
    const std::uintptr_t firstPage = (start + pageSize - 1) / pageSize * pageSize;
    const std::uintptr_t end = (start + size) / pageSize * pageSize;
    if (size >= kHugePage) {
        madvise(reinterpret_cast<void*>(firstPage), end - firstPage, MADV_HUGEPAGE);
    }
    madvise(reinterpret_cast<void*>(firstPage), end - firstPage, kPopulate);
}

}  // namespace platform
