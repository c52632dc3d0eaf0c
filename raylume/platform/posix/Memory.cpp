#include "raylume/platform/Memory.h"

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>

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

// The way below is one through glibc's allocator. A sanitizer's own gains nothing by it.
#if defined(__SANITIZE_ADDRESS__)
constexpr bool kPreparesHeap = false;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(memory_sanitizer) || !defined(__GLIBC__)
constexpr bool kPreparesHeap = false;
#else
constexpr bool kPreparesHeap = true;
#endif
#elif defined(__GLIBC__)
constexpr bool kPreparesHeap = true;
#else
constexpr bool kPreparesHeap = false;
#endif

constexpr std::size_t kSmallestHeap = std::size_t{4} << 20;
constexpr std::size_t kLargestHeap = std::size_t{512} << 20;
// Below the largest size that the allocator ever takes from its heap instead of mapping it.
constexpr std::size_t kHeapBlock = std::size_t{24} << 20;

// Blocks of this size come from the heap once a larger one was freed, which is how the allocator learns
// what a program's large blocks are.
void teachAllocator()
{
    void* volatile block = std::malloc(kHeapBlock + kSmallestBlock);
    std::free(block);
}

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

// Large blocks from the heap, mapped and freed again: the allocator cuts what comes next from them. Were
// there nothing above, it would give them back to the system at once.
PreparedHeap::PreparedHeap(std::size_t size)
{
    if (!kPreparesHeap || size < kSmallestHeap) {
        return;
    }
    constexpr std::size_t kPin = std::size_t{100} << 10;
    void* blocks[kLargestHeap / kHeapBlock + 1];
    std::size_t count = 0;
    teachAllocator();
    for (std::size_t left = std::min(size, kLargestHeap); left != 0; ++count) {
        const std::size_t part = std::min(left, kHeapBlock);
        blocks[count] = std::malloc(part);
        prepareForFilling(blocks[count], part);
        left -= part;
    }
    pin_ = std::malloc(kPin);
    std::for_each(blocks, blocks + count, std::free);
}

PreparedHeap::~PreparedHeap()
{
    std::free(pin_);
}

}  // namespace platform
