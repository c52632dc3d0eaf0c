#include "raylume/platform/HostProgram.h"

#include <unistd.h>

#include "raylume/platform/Environment.h"
#include "raylume/platform/Text.h"

namespace platform {

namespace {

// The system cuts the path at the buffer's end without a word, so a full buffer is a short one.
std::wstring runningExecutable()
{
    std::string buffer(256, '\0');
    for (;;) {
        const ssize_t length = readlink("/proc/self/exe", buffer.data(), buffer.size());
        if (length < 0) {
            return {};
        }
        if (static_cast<std::size_t>(length) < buffer.size()) {
            return fromUtf8(std::string_view(buffer).substr(0, static_cast<std::size_t>(length)));
        }
        buffer.resize(buffer.size() * 2);
    }
}

}  // namespace

std::wstring hostProgramPath(std::size_t bufferCharacters)
{
    std::wstring path = environmentVariable("RAYLUME_HOST").value_or(std::wstring());
    if (path.empty()) {
        path = runningExecutable();
    }
    const std::size_t limit = bufferCharacters > 0 ? bufferCharacters - 1 : 0;
    return path.substr(0, limit);
}

}  // namespace platform
