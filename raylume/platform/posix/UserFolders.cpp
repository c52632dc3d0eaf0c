#include "raylume/platform/UserFolders.h"

#include "raylume/platform/Files.h"
#include "raylume/platform/posix/AbsoluteFolder.h"

namespace platform {

namespace {

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
