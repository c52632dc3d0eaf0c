#include "raylume/platform/UserFolders.h"

#include "raylume/platform/Environment.h"
#include "raylume/platform/Files.h"

namespace platform {

namespace {

bool isAbsolute(const std::wstring& path)
{
    return !path.empty() && path.front() == L'/';
}

std::wstring withoutTrailingSeparators(std::wstring path)
{
    while (!path.empty() && path.back() == L'/') {
        path.pop_back();
    }
    return path;
}

std::optional<std::wstring> absoluteFolder(const char* variable)
{
    const auto value = environmentVariable(variable);
    // A relative one counts as unset, by the rules for these variables.
    return value && isAbsolute(*value) ? std::optional(withoutTrailingSeparators(*value)) : std::nullopt;
}

// Whoever makes something in the folder finds out soon enough if this did not work.
void makeWithParents(const std::wstring& path)
{
    if (pathKind(path) == PathKind::kFolder) {
        return;
    }
    for (std::size_t end = path.find(L'/', 1); end != std::wstring::npos; end = path.find(L'/', end + 1)) {
        makeFolder(path.substr(0, end));
    }
    makeFolder(path);
}

}  // namespace

std::optional<std::wstring> applicationDataFolder()
{
    auto folder = absoluteFolder("XDG_DATA_HOME");
    if (!folder) {
        folder = absoluteFolder("HOME");
        if (!folder) {
            return std::nullopt;
        }
        *folder += L"/.local/share";
    }
    makeWithParents(*folder);
    return folder;
}

}  // namespace platform
