#include "raylume/platform/Folders.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <memory>
#include <string_view>

#include "raylume/platform/Paths.h"
#include "raylume/platform/Text.h"
#include "raylume/platform/posix/Handles.h"
#include "raylume/platform/posix/NamePattern.h"

namespace platform {

namespace {

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

std::string nativeLastName(const std::string& native)
{
    return native.substr(native.rfind('/') + 1);
}

std::vector<std::wstring> nameAt(const std::wstring& path)
{
    struct stat status;
    const std::string native = nativePath(path);
    if (lstat(native.c_str(), &status) != 0) {
        return {};
    }
    return {fromUtf8(nativeLastName(native))};
}

std::vector<std::wstring> namesInFolder(const std::wstring& folder, const NamePattern& pattern)
{
    std::vector<std::wstring> names;
    const OpenFolder listing(opendir(folder.empty() ? "." : nativePath(folder).c_str()));
    while (const dirent* const entry = listing ? readdir(listing.get()) : nullptr) {
        std::wstring name = fromUtf8(entry->d_name);
        if (pattern.matches(name)) {
            names.push_back(std::move(name));
        }
    }
    return names;
}

}  // namespace

std::vector<std::wstring> matchingNames(const std::wstring& path)
{
    const std::size_t name = lastComponent(path);
    if (name == path.size()) {
        return {};
    }
    const std::wstring_view last = std::wstring_view(path).substr(name);
    if (last.find_first_of(L"*?") == std::wstring_view::npos) {
        return nameAt(path);
    }
    return namesInFolder(path.substr(0, name), NamePattern(last));
}

std::vector<FolderEntry> folderEntries(const std::wstring& folder)
{
    std::vector<FolderEntry> entries;
    const OpenFolder listing(folder.empty() ? nullptr : opendir(nativePath(folder).c_str()));
    if (!listing) {
        return entries;
    }
    for (const std::string& name : sortedNames(listing.get())) {
        struct stat status;
        const bool isKnown = fstatat(dirfd(listing.get()), name.c_str(), &status, 0) == 0;
        entries.push_back(
            {fromUtf8(name), isKnown && S_ISDIR(status.st_mode), isKnown && S_ISREG(status.st_mode)});
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
