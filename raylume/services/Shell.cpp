#include "raylume/services/Shell.h"

#include "raylume/platform/Files.h"
#include "raylume/platform/Text.h"
#include "raylume/platform/UserFolders.h"
#include "raylume/services/FolderProbes.h"

namespace {

// The narrow form is all that is looked up, so a character that is lost on the way fails the test.
platform::PathKind kindByNarrowPath(const std::wstring& path)
{
    return platform::fitsAnsiCodePage(path) ? platform::pathKind(path) : platform::PathKind::kNothing;
}

bool makeOrFind(const std::wstring& path)
{
    return platform::makeFolder(path) != platform::MakeFolder::kFailed;
}

}  // namespace

bool isExistingDirectory(const std::wstring& path)
{
    return kindByNarrowPath(path) == platform::PathKind::kFolder;
}

bool isExistingFile(const std::wstring& path)
{
    return kindByNarrowPath(path) == platform::PathKind::kFile;
}

int rlu_getRLCustomViewsFolder(std::wstring* folder)
{
    const auto base = folder ? platform::applicationDataFolder() : std::nullopt;
    if (!base) {
        return 0;
    }
    std::wstring path = *base + L"\\Lumenforge\\";
    if (!makeOrFind(path)) {
        return 0;
    }
    path += L"Presets\\";
    bool made = makeOrFind(path);
    if (made) {
        path += L"Views\\";
        made = makeOrFind(path);
    }
    // Stored after a failure too: callers see how far it went.
    *folder = path;
    return made ? 1 : 0;
}

void getRenderEngineUserFolder(std::wstring* folder)
{
    const auto base = folder ? platform::applicationDataFolder() : std::nullopt;
    if (!base) {
        return;
    }
    const std::wstring path = *base + L"\\Lumenforge\\";
    makeOrFind(path);
    *folder = path;
}
