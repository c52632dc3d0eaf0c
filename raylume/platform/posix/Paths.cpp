#include "raylume/platform/Paths.h"

#include <sys/stat.h>

#include <algorithm>
#include <ctime>
#include <memory>
#include <string_view>
#include <vector>

#include "raylume/platform/Environment.h"
#include "raylume/platform/Text.h"
#include "raylume/platform/posix/FolderListings.h"
#include "raylume/platform/posix/Handles.h"
#include "raylume/platform/posix/NamePattern.h"

namespace platform {

namespace {

enum class Entry {
    kMissing,
    kPlain,
    // Or not known to be anything else; where it leads is another look.
    kLink,
};

// A dangling link is an entry too: it can be deleted, and nothing can be made in its place.
Entry entryAt(const std::string& path)
{
    struct stat status;
    if (lstat(path.c_str(), &status) != 0) {
        return Entry::kMissing;
    }
    return S_ISLNK(status.st_mode) ? Entry::kLink : Entry::kPlain;
}

bool exists(const std::string& path)
{
    struct stat status;
    return stat(path.c_str(), &status) == 0;
}

std::timespec systemTime()
{
    std::timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    return now;
}

// Never destroyed: other code may still look for files while the process ends.
FolderListings& listings()
{
    static auto& all = *new FolderListings(systemTime);
    return all;
}

std::string resolveComponent(const std::string& folder, const std::string& name, bool& found)
{
    if (entryAt(folder + name) != Entry::kMissing) {
        return name;
    }
    const auto other = listings().find(folder, name).name;
    found = other.has_value();
    return other.value_or(name);
}

struct Resolved {
    std::string path;
    Entry entry;
};

// Takes `rest` component by component behind `path`; separators stay as they are written.
Resolved resolveBehind(std::string path, std::string_view rest)
{
    bool found = true;
    while (found && !rest.empty()) {
        const std::size_t separators = std::min(rest.find_first_not_of('/'), rest.size());
        path += rest.substr(0, separators);
        rest.remove_prefix(separators);
        const std::string name(rest.substr(0, rest.find('/')));
        rest.remove_prefix(name.size());
        if (!name.empty()) {
            path += resolveComponent(path, name, found);
        }
    }
    return {path.append(rest), found ? Entry::kLink : Entry::kMissing};
}

Entry entryOf(const FolderListings::Answer& answer)
{
    return answer.name ? Entry::kLink : Entry::kMissing;
}

// The whole of `path` below `folder`, of which nothing stands there as written. Where the folder that
// should hold the last name does, as it mostly does, the names before it need no look of their own.
Resolved resolveMissing(const std::string& folder, const std::string& path)
{
    const std::string whole = folder + path;
    const std::size_t name = whole.rfind('/') + 1;
    if (name >= folder.size() && name < whole.size()) {
        const auto answer = listings().find(whole.substr(0, name), whole.substr(name));
        if (answer.isFolder) {
            return {whole.substr(0, name) + answer.name.value_or(whole.substr(name)), entryOf(answer)};
        }
    }
    return resolveBehind(folder, path);
}

// Texts have their drives in capitals mostly, and folders of drives have not, so the drive comes first.
Resolved resolveMissingOnDrive(const std::string& folder, const std::string& path)
{
    const std::string drive = path.substr(0, path.find('/'));
    const auto answer = listings().find(folder, drive);
    if (!answer.name || drive.size() == path.size()) {
        return {folder + answer.name.value_or(drive) + path.substr(drive.size()), entryOf(answer)};
    }
    return resolveMissing(folder + *answer.name, path.substr(drive.size()));
}

// Calls of the system see a text up to its first zero, so that much is what a text means.
std::string withNativeSeparators(const std::wstring& text)
{
    std::string path = toUtf8(std::wstring_view(text).substr(0, text.find(L'\0')));
    std::replace(path.begin(), path.end(), '\\', '/');
    return path;
}

bool startsWithDrive(const std::string& path)
{
    const auto isLetter = [](char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); };
    return path.size() >= 2 && path[1] == ':' && isLetter(path[0]);
}

// Takes "." and ".." out by the text alone, as the system of the texts does: ".." in the root of a
// drive is that root, so that no text leads out of a drive.
std::string withinDrive(std::string_view path)
{
    constexpr std::size_t kDrive = 2;
    std::string within(path.substr(0, kDrive));
    path.remove_prefix(kDrive);
    std::vector<std::string_view> steps;
    while (!path.empty()) {
        const std::size_t name = std::min(path.find_first_not_of('/'), path.size());
        const std::string_view step = path.substr(0, path.find('/', name));
        path.remove_prefix(step.size());
        if (step.substr(name) != "." && step.substr(name) != "..") {
            steps.push_back(step);
        } else if (step.substr(name) == ".." && !steps.empty()) {
            steps.pop_back();
        }
    }
    for (const std::string_view step : steps) {
        within += step;
    }
    return within;
}

// The folder of drives as the variable has it; a text of a document decides below it only.
std::string drivesFolder()
{
    return toUtf8(environmentVariable("RAYLUME_DRIVES").value_or(std::wstring()));
}

Resolved resolve(const std::wstring& text)
{
    std::string path = withNativeSeparators(text);
    const bool onDrive = startsWithDrive(path);
    std::string folder = onDrive ? drivesFolder() : std::string();
    if (!folder.empty()) {
        folder += '/';
        path.insert(2, path.size() > 2 && path[2] != '/' ? "/" : "");
    }
    if (onDrive) {
        path = withinDrive(path);
    }
    if (path.empty()) {
        return {folder, Entry::kMissing};
    }
    const Entry entry = entryAt(folder + path);
    if (entry != Entry::kMissing) {
        return {folder + path, entry};
    }
    return folder.empty() ? resolveMissing(folder, path) : resolveMissingOnDrive(folder, path);
}

bool isSeparator(wchar_t character)
{
    return character == L'\\' || character == L'/';
}

bool holdsMatch(const std::string& folder, const NamePattern& pattern)
{
    const OpenFolder listing(opendir(folder.empty() ? "." : folder.c_str()));
    while (const dirent* const entry = listing ? readdir(listing.get()) : nullptr) {
        struct stat status;
        if (pattern.matches(fromUtf8(entry->d_name)) &&
            fstatat(dirfd(listing.get()), entry->d_name, &status, 0) == 0) {
            return true;
        }
    }
    return false;
}

}  // namespace

std::string nativePath(const std::wstring& text)
{
    return resolve(text).path;
}

bool pathMatches(const std::wstring& text)
{
    const std::wstring path = text.substr(0, text.find(L'\0'));
    if (path.empty() || isSeparator(path.back())) {
        return false;
    }
    const std::size_t name = lastComponent(path);
    if (path.find_first_of(L"*?", name) != std::wstring::npos) {
        return holdsMatch(nativePath(path.substr(0, name)), NamePattern(path.substr(name)));
    }
    const Resolved resolved = resolve(path);
    return resolved.entry == Entry::kPlain || (resolved.entry == Entry::kLink && exists(resolved.path));
}

}  // namespace platform
