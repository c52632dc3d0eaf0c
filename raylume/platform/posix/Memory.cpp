#include "raylume/platform/Memory.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>

namespace platform {

namespace {

// Below two huge pages there may be no whole one in the block.
constexpr std::size_t kSmallestBlock = std::size_t{4} << 20;

}  // namespace

void adviseHugePages(void* block, std::size_t size)
{
    if (!block || size < kSmallestBlock) {
        return;
    }
    static const auto pageSize = static_cast<std::uintptr_t>(sysconf(_SC_PAGESIZE));
    const auto start = reinterpret_cast<std::uintptr_t>(block);
    const std::uintptr_t firstPage = (start + pageSize - 1) / pageSize * pageSize;
    const std::uintptr_t end = (start + size) / pageSize * pageSize;
    madvise(reinterpret_cast<void*>(firstPage), end - firstPage, MADV_HUGEPAGE);
}

}  // namespace platform
