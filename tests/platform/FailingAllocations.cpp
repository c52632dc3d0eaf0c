#include "tests/platform/FailingAllocations.h"

#include <cstddef>
#include <cstdlib>

namespace {

constexpr long kNever = -1;

long g_successes = kNever;
bool g_failed = false;

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
    return block;
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

}  // namespace failing_allocations

void* operator new(std::size_t size)
{
    return allocate(size);
}

void* operator new[](std::size_t size)
{
    return allocate(size);
}

void operator delete(void* block) noexcept
{
    std::free(block);
}

void operator delete(void* block, std::size_t) noexcept
{
    std::free(block);
}

void operator delete[](void* block) noexcept
{
    std::free(block);
}

void operator delete[](void* block, std::size_t) noexcept
{
    std::free(block);
}
