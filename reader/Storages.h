// The storages that createStorage gives.
#pragma once

namespace ovdl {

/// Destroys every storage that createStorage has given so far, and lets the formats go of what they
/// kept for a read that never came.
void forgetProbes();

}  // namespace ovdl
