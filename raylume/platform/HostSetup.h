// What a host program sets up before it loads a document, and asks about the terminal that it runs
// in. The library itself uses none of it.
#pragma once

#include <string>

#include "raylume/platform/Export.h"

namespace platform {

/// Sets a variable of this process's environment, or removes it. Texts are
/// UTF-8. False, and nothing changed, when the system refuses. Not to be called while another thread
/// reads the environment.
PLATFORM_API bool setEnvironmentVariable(const std::string& name, const std::string& value);
PLATFORM_API bool removeEnvironmentVariable(const std::string& name);

/// True when standard error goes to a terminal.
PLATFORM_API bool standardErrorIsTerminal();

}  // namespace platform
