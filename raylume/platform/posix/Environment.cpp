#include "raylume/platform/Environment.h"

#include <unistd.h>

#include <cstdlib>

#include "raylume/platform/Text.h"

namespace platform {

namespace {

std::optional<std::wstring> exactVariable(const std::string& name)
{
    const char* const value = std::getenv(name.c_str());
    if (!value || !*value) {
        return std::nullopt;
    }
    return fromUtf8(value);
}

// Only the letters of ASCII: the process locale has no say in what a variable is called.
std::string inCapitals(std::string name)
{
    for (char& c : name) {
        if (c >= 'a' && c <= 'z') {
            c = static_cast<char>(c - 'a' + 'A');
        }
    }
    return name;
}

}  // namespace

std::optional<std::wstring> environmentVariable(const std::string& name)
{
    auto value = exactVariable(name);
    return value ? value : exactVariable(inCapitals(name));
}

std::optional<std::wstring> temporaryFolderVariable()
{
    auto value = environmentVariable("temp");
    return value ? value : environmentVariable("tmp");
}

int processId()
{
    return static_cast<int>(getpid());
}

}  // namespace platform
