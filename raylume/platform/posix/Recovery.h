// How errors come back out of codecs written in C, which jump.
#pragma once

#include <csetjmp>

namespace platform {

/// Runs calls of a codec whose error handler jumps to `recovery`; false when it did. Neither `calls` nor
/// what it calls may hold an object with a destructor across a call of the codec.
template <class Calls>
bool runGuarded(std::jmp_buf& recovery, const Calls& calls)
{
    if (setjmp(recovery) != 0) {
        return false;
    }
    calls();
    return true;
}

}  // namespace platform
