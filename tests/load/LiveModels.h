// The allocations of the test program: how many models are alive, and failing on demand.
#pragma once

namespace allocations {

/// Models made with plain new and not yet destroyed with plain delete.
int liveModels();
/// The allocation after `successes` more fails with std::bad_alloc, once. Negative: none fails.
void failAfter(long successes);
/// True when that failure has happened since failAfter().
bool hasFailed();

}  // namespace allocations
