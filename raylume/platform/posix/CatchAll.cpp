#include "raylume/platform/CatchAll.h"

#include <cxxabi.h>

namespace platform {

bool runCatchingAll(const std::function<void()>& work)
{
    try {
        work();
        return true;
    } catch (const abi::__forced_unwind&) {
        throw;
    } catch (...) {
        return false;
    }
}

}  // namespace platform
