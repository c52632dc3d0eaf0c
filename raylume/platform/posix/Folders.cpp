#include "raylume/platform/Folders.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <memory>
#include <string_view>

#include "raylume/platform/Paths.h"
#include "raylume/platform/Text.h"

namespace platform {

namespace {

struct CloseFolder {
    void operator()(DIR* folder) const { closedir(folder); }
};
using Listing = std::unique_ptr<DIR, CloseFolder>;

std::vector<std::string> sortedNames(DIR* listing)
{
    std::vector<std::string> names;
    while (const dirent* const entry = readdir(listing)) {
        const std::string_view name = entry->d_name;
        if (name != "." && name != "..") {
            names.emplace_back(name);
        }
    }
    std::sort(names.begin(), names.end());
    return names;
}

}  // namespace

std::vector<FolderEntry> folderEntries(const std::wstring& folder)
{
    std::vector<FolderEntry> entries;
    const Listing listing(folder.empty() ? nullptr : opendir(nativePath(folder).c_str()));
    if (!listing) {
        return entries;
    }
    for (const std::string& name : sortedNames(listing.get())) {
        struct stat status;
        if (fstatat(dirfd(listing.get()), name.c_str(), &status, 0) == 0) {
            entries.push_back({fromUtf8(name), S_ISDIR(status.st_mode), S_ISREG(status.st_mode)});
        }
    }
    return entries;
}

bool deleteFile(const std::wstring& path)
{
    return !path.empty() && unlink(nativePath(path).c_str()) == 0;
}

bool removeFolder(const std::wstring& path)
{
    return !path.empty() && rmdir(nativePath(path).c_str()) == 0;
}

}  // namespace platform
