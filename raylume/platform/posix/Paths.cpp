#include "raylume/platform/Paths.h"

#include <dirent.h>
#include <sys/stat.h>

#include <algorithm>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include "raylume/platform/Environment.h"
#include "raylume/platform/Text.h"

namespace platform {

namespace {

struct CloseFolder {
    void operator()(DIR* folder) const { closedir(folder); }
};

// A dangling link is an entry too: it can be deleted, and nothing can be made in its place.
bool entryExists(const std::string& path)
{
    struct stat status;
    return lstat(path.c_str(), &status) == 0;
}

// The first entry in byte order, so that the answer does not hang on the order of the listing. An
// entry whose name is no UTF-8 is met as U+FFFD, which is also how its name came into the text.
std::optional<std::string> findWithoutCase(const std::string& folder, const std::string& name)
{
    const std::unique_ptr<DIR, CloseFolder> listing(opendir(folder.empty() ? "." : folder.c_str()));
    if (!listing) {
        return std::nullopt;
    }
    const std::wstring wanted = fromUtf8(name);
    std::optional<std::string> first;
    while (const dirent* const entry = readdir(listing.get())) {
        const std::string_view candidate = entry->d_name;
        if ((!first || candidate < *first) && compareIgnoringCase(fromUtf8(candidate), wanted) == 0) {
            first = candidate;
        }
    }
    return first;
}

std::string resolveComponent(const std::string& folder, const std::string& name, bool& found)
{
    if (entryExists(folder + name)) {
        return name;
    }
    const auto other = findWithoutCase(folder, name);
    found = other.has_value();
    return other.value_or(name);
}

// Takes `rest` component by component behind `path`; separators stay as they are written.
std::string resolveBehind(std::string path, std::string_view rest)
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
    return path.append(rest);
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

}  // namespace

std::string nativePath(const std::wstring& text)
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
    return path.empty() || entryExists(folder + path) ? folder + path : resolveBehind(folder, path);
}

}  // namespace platform
