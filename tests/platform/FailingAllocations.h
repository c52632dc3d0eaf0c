// An operator new that fails when a test wants it to. A program that links it has it everywhere.
#pragma once

#include <new>

namespace failing_allocations {

/// The allocation after that many fails, and only that one.
void start(long successes);
/// From here on none fails. True when one did.
bool stop();
/// How many blocks are allocated now, by all of the process.
long blocks();

struct Outcome {
    bool isWrong = false;  ///< The call came back with a wrong answer.
    bool failed = false;   ///< One of its allocations failed.
};

/// Runs a call, which tells whether its answer was right, with one of its allocations failing.
template <class Call>
Outcome callWithFailure(long successes, Call call)
{
    Outcome outcome;
    start(successes);
    try {
        outcome.isWrong = !call();
    } catch (const std::bad_alloc&) {
    }
    outcome.failed = stop();
    return outcome;
}

}  // namespace failing_allocations
