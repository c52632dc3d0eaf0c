// What a program does for itself that a host started by ChildProcess.h.
#pragma once

#include <cstdint>
#include <string_view>

#include "raylume/platform/Export.h"

namespace platform {

/// 0 stands for no limit.
struct WorkerLimits {
    std::uint64_t processorSeconds = 0;
    std::uint64_t memoryBytes = 0;
    std::uint64_t fileBytes = 0;
};

/// Holds this process to limits that it cannot raise again, and keeps it from leaving its memory behind in
/// a file when it crashes. Past the limit of the processor SIGXCPU ends it, if need be two seconds later
/// for good; past that of files a write fails, without a signal. False when the system refuses.
PLATFORM_API bool limitThisProcess(const WorkerLimits& limits);

/// From now on this process ends within moments when nobody holds the other end of that pipe any more, or
/// when the thread that started it has ended.
PLATFORM_API void endWithPipe(int pipe);

/// From now on a signal that ends this process for a fault of its own (a bad access, an arithmetic fault,
/// an abort, no processor time left) writes one line first: `word`, a blank and the signal's number. `word`
/// has at most 16 characters.
PLATFORM_API void announceCrashes(int pipe, std::string_view word);

/// False when the text could not be written, which the process seldom lives to see: see endWithPipe().
PLATFORM_API bool writeToPipe(int pipe, std::string_view text);

/// Ends this process without destroying anything, since its memory goes with it.
[[noreturn]] PLATFORM_API void endThisProcess(int status);

}  // namespace platform
