// The callback object that is registered with the reader.
#pragma once

#include "raylume/load/ReaderInterface.h"

namespace ovdl {

/// The registered object, or null. Ask anew before each call: a callback may unregister it.
OVDL_Callbacks* registeredCallbacks();

}  // namespace ovdl
