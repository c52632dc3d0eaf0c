#include "tests/load/LiveModels.h"

#include <cstddef>
#include <cstdlib>
#include <new>

#include "raylume/scene/dlModel.h"

namespace {

// Nothing else in these programs has just this size.
constexpr std::size_t kModelSize = sizeof(dlModel);

int g_liveModels = 0;
long g_successes = -1;
bool g_failed = false;

void failIfDue()
{
    if (g_successes < 0 || g_successes-- > 0)
        return;
    g_failed = true;
    throw std::bad_alloc();
}

void* allocate(std::size_t size)
{
    failIfDue();
    void* block = std::malloc(size ? size : 1);
    if (!block)
        throw std::bad_alloc();
    return block;
}

}  // namespace

namespace allocations {

int liveModels()
{
    return g_liveModels;
}

void failAfter(long successes)
{
    g_successes = successes;
    g_failed = false;
}

bool hasFailed()
{
    return g_failed;
}

}  // namespace allocations

void* operator new(std::size_t size)
{
    void* block = allocate(size);
    g_liveModels += size == kModelSize ? 1 : 0;
    return block;
}

void* operator new[](std::size_t size)
{
    return allocate(size);
}

void operator delete(void* block) noexcept
{
    std::free(block);
}

void operator delete(void* block, std::size_t size) noexcept
{
    g_liveModels -= block && size == kModelSize ? 1 : 0;
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
