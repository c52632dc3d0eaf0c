#include "raylume/platform/posix/AbsoluteFolder.h"

#include "raylume/platform/Environment.h"

namespace platform {

namespace {

std::wstring withoutTrailingSeparators(std::wstring path)
{
    while (!path.empty() && path.back() == L'/') {
        path.pop_back();
    }
    return path;
}

}  // namespace

std::optional<std::wstring> absoluteFolder(const char* variable)
{
    const auto value = environmentVariable(variable);
    const bool isAbsolute = value && value->front() == L'/';
    return isAbsolute ? std::optional(withoutTrailingSeparators(*value)) : std::nullopt;
}

}  // namespace platform
