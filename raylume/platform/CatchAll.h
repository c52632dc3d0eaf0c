// The end of the road for errors.
#pragma once

#include <functional>

#include "raylume/platform/Export.h"

namespace platform {

/// Runs `work` and answers false when anything at all was thrown out of it. One thing passes: the
/// unwinding of a cancelled thread, which looks like an exception here and must not be held up.
PLATFORM_API bool runCatchingAll(const std::function<void()>& work);

}  // namespace platform
