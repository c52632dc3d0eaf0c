// What a host can ask of the default reader beside the reader interface.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "raylume/platform/Export.h"

namespace ovdl {

/// Called while a document is read, with a share from 0 to 1 that never falls within one read. An
/// empty handler takes it away.
OVDL_API void setProgressHandler(std::function<void(float done)> handler);
/// Asked while a document is read; true ends the read, which leaves an empty assembly document that
/// is not rejected. The host that cancels sets g_terminateLoad too, so that the load gives null.
OVDL_API void setCancelHandler(std::function<bool()> handler);

/// Why the last document was rejected or could not be opened, in one line of UTF-8; empty after a
/// read that went well.
OVDL_API std::string lastReason();

/// The names of the formats that this reader opens, in the order in which they are asked.
OVDL_API std::vector<std::string> formatNames();

}  // namespace ovdl
