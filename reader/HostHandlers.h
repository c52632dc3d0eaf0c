// What a host can ask of the default reader beside the reader interface.
//
// Threads: handlers are called on the thread that reads. Set them between reads, or from within a
//   handler; setting them on another thread while one reads is a race.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "raylume/platform/Export.h"

namespace ovdl {

/// Called while a document is read, with a share from 0 to 1 that never falls within one read; the
/// last call of a read that went well says 1, before the library translates what was read. An empty handler
/// takes it away.
OVDL_API void setProgressHandler(std::function<void(float done)> handler);
/// Asked while a document is read, at least once; true ends the read, which leaves an empty assembly
/// document that is not rejected. The host that cancels sets g_terminateLoad too, so that the load
/// gives null. An empty handler takes it away.
///
/// What either handler raises ends the read and leaves ReadFile as it was raised.
OVDL_API void setCancelHandler(std::function<bool()> handler);

/// Why the last document was rejected or could not be opened, in one line of UTF-8; empty after a
/// read that went well or was cancelled.
OVDL_API std::string lastReason();

/// The names of the formats that this reader opens, in the order in which they are asked.
OVDL_API std::vector<std::string> formatNames();

}  // namespace ovdl
