// The command line of raylume-dl.
#pragma once

#include <ostream>

namespace tool {

enum ExitStatus : int {
    kModelLoaded = 0,
    kNoModel = 1,  ///< None, a rejected one, cancelled, or results that could not be written.
    kBadUsage = 2,
};

/// Runs one command. `out` gets results and nothing else, `err` everything that is said to a
/// person; a progress bar is drawn on `err` only when `terminal` is true. Never raises.
int run(int argumentCount, const char* const* arguments, std::ostream& out, std::ostream& err,
        bool terminal);

}  // namespace tool
