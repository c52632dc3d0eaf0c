#include "tools/Interruption.h"

#include <atomic>
#include <csignal>

#include "raylume/scene/dlModel.h"

namespace tool {
namespace {

std::atomic<bool> g_requested{false};
static_assert(std::atomic<bool>::is_always_lock_free, "a signal handler may touch lock-free atomics only");

void setCancelFlag(bool on)
{
    std::atomic_ref<bool>(g_terminateLoad).store(on, std::memory_order_relaxed);
}

// Both flags are set here, not in the cancel handler of the reader alone: the translation asks no
// handler, it only looks at the library's flag.
extern "C" void onSignal(int signal)
{
    std::signal(signal, onSignal);
    g_requested.store(true);
    setCancelFlag(true);
}

}  // namespace

Interruption::Interruption()
{
    g_requested.store(false);
    previousInterrupt_ = std::signal(SIGINT, onSignal);
    previousTerminate_ = std::signal(SIGTERM, onSignal);
}

Interruption::~Interruption()
{
    std::signal(SIGINT, previousInterrupt_);
    std::signal(SIGTERM, previousTerminate_);
    g_requested.store(false);
    setCancelFlag(false);
}

bool Interruption::requested()
{
    return g_requested.load();
}

}  // namespace tool
