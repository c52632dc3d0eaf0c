#include "tests/platform/FailingAllocations.h"

#include <atomic>
#include <cstddef>
#include <cstdlib>

namespace {

constexpr long kNever = -1;

long g_successes = kNever;
bool g_failed = false;
std::atomic<long> g_blocks = 0;  // other threads may be at work

void* allocate(std::size_t size)
{
    if (g_successes >= 0 && g_successes-- == 0) {
        g_failed = true;
        throw std::bad_alloc();
    }
    void* const block = std::malloc(size ? size : 1);
    if (!block) {
        throw std::bad_alloc();
    }
    ++g_blocks;
    return block;
}

void release(void* block)
{
    if (block) {
        --g_blocks;
    }
    std::free(block);
}

}  // namespace

namespace failing_allocations {

void start(long successes)
{
    g_successes = successes;
    g_failed = false;
}

bool stop()
{
    g_successes = kNever;
    return g_failed;
}

long blocks()
{
    return g_blocks;
}

}  // namespace failing_allocations

void* operator new(std::size_t size)
{
    return allocate(size);
}

void* operator new[](std::size_t size)
{
    return allocate(size);
}

// Sorting asks like this for room and does without it. The one of a sanitizer would not go with ours.
void* operator new(std::size_t size, const std::nothrow_t&) noexcept
{
    try {
        return allocate(size);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

void operator delete(void* block) noexcept
{
    release(block);
}

void operator delete(void* block, std::size_t) noexcept
{
    release(block);
}

void operator delete[](void* block) noexcept
{
    release(block);
}

void operator delete[](void* block, std::size_t) noexcept
{
    release(block);
}
