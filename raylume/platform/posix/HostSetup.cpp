#include "raylume/platform/HostSetup.h"

#include <stdlib.h>
#include <unistd.h>

namespace platform {

bool setEnvironmentVariable(const std::string& name, const std::string& value)
{
    return setenv(name.c_str(), value.c_str(), 1) == 0;
}

bool removeEnvironmentVariable(const std::string& name)
{
    return unsetenv(name.c_str()) == 0;
}

bool standardErrorIsTerminal()
{
    return isatty(STDERR_FILENO) != 0;
}

}  // namespace platform
