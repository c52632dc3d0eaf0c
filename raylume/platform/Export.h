// Which names leave the shared libraries. Everything is built with hidden visibility, so that a
// name is public only where one of these macros says so.
#pragma once

#if defined(_WIN32)
#define RAYLUME_EXPORTED __declspec(dllexport)
#else
#define RAYLUME_EXPORTED __attribute__((visibility("default")))
#endif

/// The display list library itself (raylume_dl).
#define DL_API RAYLUME_EXPORTED
/// The reader interface, whichever reader library implements it.
#define OVDL_API RAYLUME_EXPORTED
/// The platform library (raylume_platform), which the other two share.
#define PLATFORM_API RAYLUME_EXPORTED
