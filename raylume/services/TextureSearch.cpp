#include "raylume/services/TextureSearch.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "raylume/platform/Paths.h"
#include "raylume/platform/Text.h"
#include "raylume/services/FolderLists.h"
#include "raylume/services/Locations.h"
#include "raylume/services/PathText.h"
#include "raylume/services/Registry.h"
#include "raylume/services/SideFile.h"
#include "raylume/services/Text.h"
#include "raylume/services/TextureSearchLog.h"

namespace {

using Step = TextureSearchStep;

constexpr std::wstring_view kDataTag = L"<SystemTexture>";
constexpr std::wstring_view kInstalledTextures = L"\\data\\images\\textures\\";
constexpr std::wstring_view kTextures = L"\\images\\textures\\";
constexpr std::wstring_view kDecals = L"\\images\\textures\\decals\\";
constexpr std::wstring_view kDefaultDecal = L"\\images\\textures\\decals\\decals.bmp";

// No file system has longer names, and a folder list may have a million folders to put one behind.
constexpr std::size_t kLongestLeaf = 32767;

thread_local TextureSearchObserver observer;

// What the search in progress tells the observer; inactive without one.
class Recording {
public:
    Recording(const std::wstring& storedPath, TextureImageType type)
    {
        record_.storedPath = storedPath;
        record_.type = type;
        // While it runs, the observer is out of the way of searches that it makes itself.
        observer_.swap(observer);
    }
    Recording(const Recording&) = delete;
    Recording& operator=(const Recording&) = delete;
    ~Recording() { observer_.swap(observer); }

    void add(Step step, const std::wstring& path, bool found)
    {
        if (!observer_) {
            return;
        }
        if (record_.probes.size() < TextureSearchRecord::kMostProbes) {
            record_.probes.push_back({step, path, found});
        }
        ++record_.probeCount;
    }

    void end(bool found, const std::wstring& path)
    {
        if (observer_) {
            record_.found = found;
            record_.path = found ? path : std::wstring();
            observer_(record_);
        }
    }

private:
    TextureSearchObserver observer_;
    TextureSearchRecord record_;
};

struct Request {
    std::wstring storedPath;
    std::wstring dataFolder;
    std::wstring searchFolder;
    TextureImageType type;
    std::wstring sceneFolder;
};

bool probe(Recording& recording, Step step, const std::wstring& path)
{
    const bool found = platform::pathMatches(path);
    recording.add(step, path, found);
    return found;
}

// One way from a folder list to its first folder that holds the leaf, for the side file, the settings and
// callers alike. An empty folder counts: it means the root.
bool searchFolders(Recording& recording, Step step, std::wstring& folders, const std::wstring& leaf,
                   std::wstring& destination)
{
    std::size_t tried = 0;
    bool found = false;
    while (!found && tried < folders.size() && leaf.size() <= kLongestLeaf) {
        const std::size_t end = std::min(folders.find(L';', tried), folders.size());
        std::wstring path = folders.substr(tried, end - tried).append(L"\\").append(leaf);
        found = probe(recording, step, path);
        if (found) {
            destination = std::move(path);
        } else {
            tried = std::min(end + 1, folders.size());
        }
    }
    // At once: piece by piece, a long list would be moved a million times.
    folders.erase(0, leaf.size() <= kLongestLeaf ? tried : folders.size());
    return found;
}

// Letters beyond ASCII have no part in the endings that are asked for, so they stay.
std::wstring extensionInCapitals(const std::wstring& path)
{
    const std::size_t point = path.rfind(L'.');
    if (point == std::wstring::npos || point == 0) {
        return {};
    }
    std::wstring extension = withoutTrailingSpace(path.substr(point + 1));
    std::transform(extension.begin(), extension.end(), extension.begin(), [](wchar_t c) {
        return c >= L'a' && c <= L'z' ? static_cast<wchar_t>(c - L'a' + L'A') : c;
    });
    return extension;
}

// "TIFF" and no ending at all are not among them, and that is meant.
bool isImageExtension(const std::wstring& extension)
{
    static constexpr std::array<std::wstring_view, 11> kKnown = {
        L"JPEG", L"JPG", L"BMP", L"PNG", L"GIF", L"RGB", L"TIF", L"TARGA", L"TGA", L"WMF", L"HDR"};
    return std::find(kKnown.begin(), kKnown.end(), extension) != kKnown.end();
}

const wchar_t* folderKey(TextureImageType type)
{
    switch (type) {
    case TextureImageDecal:
        return L"CUSTOM_DECAL_FOLDERS";
    case TextureImageAppearance:
        return L"CUSTOM_APPEARANCE_FOLDERS";
    case TextureImageScene:
        return L"CUSTOM_SCENE_FOLDERS";
    }
    return nullptr;
}

// One search. A step gives whether it found the image, and leaves its last path in candidate_; the next
// steps go on from there, so each one's leftovers matter.
class Search {
public:
    Search(const Request& request, Recording& recording)
        : request_(request), recording_(recording), candidate_(request.storedPath)
    {
    }

    bool run()
    {
        const bool found = asStored() || inDataFolder() || aroundSearchFolder() || inSceneFolder();
        if (found && request_.type == TextureImageDecal &&
            !isImageExtension(extensionInCapitals(request_.storedPath))) {
            candidate_ = request_.dataFolder;
            candidate_ += kDefaultDecal;
        }
        return found || inUserFolders();
    }

    const std::wstring& candidate() const { return candidate_; }

private:
    bool probeCandidate(Step step) { return probe(recording_, step, candidate_); }
    bool asStored();
    bool inDataFolder();
    bool inInstalledTextures();
    bool aroundSearchFolder();
    bool inSideFile();
    bool inParentFolder(std::wstring folder);
    bool inSceneFolder();
    bool tryPath(Step step, const std::wstring& path);
    bool inUserFolders();

    const Request& request_;
    Recording& recording_;
    std::wstring candidate_;
    std::wstring leaf_;
};

bool Search::asStored()
{
    bool found = probeCandidate(Step::kStoredPath);
    const std::wstring last = lastPathComponent(candidate_);
    if (!found && last.size() < candidate_.size()) {
        candidate_ = withoutTrailingSpace(last);
        found = probeCandidate(Step::kFileName);
    }
    leaf_ = candidate_;
    return found;
}

bool Search::inDataFolder()
{
    switch (request_.type) {
    case TextureImageDecal:
        candidate_ = std::wstring(request_.dataFolder).append(kDecals).append(candidate_);
        return probeCandidate(Step::kDataFolder);
    case TextureImageAppearance:
    case TextureImageScene:
        return inInstalledTextures();
    }
    return false;
}

// The tail is cut from the lower-cased path, so what is found here has a lower-cased tail.
bool Search::inInstalledTextures()
{
    constexpr std::size_t kDataFolderName = 5;
    const std::wstring lower = platform::toLower(request_.storedPath);
    const std::size_t installed = lower.find(kInstalledTextures);
    if (installed != std::wstring::npos && installed > 0) {
        candidate_ = request_.dataFolder + lower.substr(installed + kDataFolderName);
    } else if (lower.starts_with(kTextures)) {
        candidate_ = request_.dataFolder + lower;
    } else {
        return false;
    }
    return probeCandidate(Step::kDataFolder);
}

// What the data folder left in the candidate outlives the try in the search folder.
bool Search::aroundSearchFolder()
{
    const std::wstring folder = driveAndFolder(request_.searchFolder);
    std::wstring saved =
        std::exchange(candidate_, folder + withoutTrailingSpace(lastPathComponent(candidate_)));
    if (probeCandidate(Step::kSearchFolder)) {
        return true;
    }
    candidate_ = std::move(saved);
    return inSideFile() || inParentFolder(folder);
}

// The first line that names a folder is tried whole, whatever its key and even if it is a list. Later
// lines that are no list for this kind of image only leave their path behind.
bool Search::inSideFile()
{
    SideFile file(request_.searchFolder + kImageLocationsFile);
    const wchar_t* const ownKey = folderKey(request_.type);
    std::optional<std::wstring> folder;
    while (const auto line = file.nextLine()) {
        auto location = splitImageLocation(*line);
        if (!location || location->key == kDefaultColorKey) {
            continue;
        }
        const bool isFirst = !folder;
        folder = location->value;
        if (isFirst && tryPath(Step::kFirstLocation, *folder + L"\\" + leaf_)) {
            return true;
        }
        if (ownKey && location->key == ownKey &&
            searchFolders(recording_, Step::kLocations, location->value, leaf_, candidate_)) {
            return true;
        }
    }
    if (folder) {
        candidate_ = *folder + L"\\" + leaf_;
    }
    return false;
}

bool Search::inParentFolder(std::wstring folder)
{
    const auto lastSeparator = [&folder] {
        const std::size_t separator = folder.rfind(L'\\');
        return separator == std::wstring::npos ? 0 : separator;
    };
    if (const std::size_t end = lastSeparator(); end > 0) {
        folder.resize(end);
    }
    const std::size_t parent = lastSeparator();
    if (parent == 0) {
        return false;
    }
    candidate_ = folder.substr(0, parent + 1) + leaf_;
    return probeCandidate(Step::kParentFolder);
}

bool Search::tryPath(Step step, const std::wstring& path)
{
    const bool found = probe(recording_, step, path);
    if (found) {
        candidate_ = path;
    }
    return found;
}

// Every path begins with an empty data folder, so that one costs it its first character.
bool Search::inSceneFolder()
{
    if (request_.type != TextureImageScene || request_.sceneFolder.empty()) {
        return false;
    }
    const std::wstring dataFolder = platform::toLower(request_.dataFolder);
    std::wstring relative = platform::toLower(request_.storedPath);
    if (relative.starts_with(dataFolder)) {
        relative.erase(0, dataFolder.size() + 1);
    }
    return tryPath(Step::kSceneRelative, request_.sceneFolder + relative) ||
           tryPath(Step::kSceneFolder, request_.sceneFolder + leaf_);
}

bool Search::inUserFolders()
{
    if (request_.type != TextureImageAppearance) {
        return false;
    }
    std::wstring folders;
    std::int32_t number = 0;
    double real = 0.0;
    return readHostRegistryValue(L"ExtReferences", L"Custom Apperance Folders", kRegistryText, folders,
                                 number, real, 0) != 0 &&
           searchFolders(recording_, Step::kUserFolders, folders, leaf_, candidate_);
}

int find(const Request& request, Recording& recording, std::wstring& result)
{
    Search search(request, recording);
    const bool found = search.run();
    result = search.candidate();
    return found ? 1 : 0;
}

// The tag's length goes from the front wherever the tag stands.
std::wstring withDataFolder(const std::wstring& storedPath)
{
    return storedPath.find(kDataTag) == std::wstring::npos
               ? storedPath
               : rlu_getDataDir() + storedPath.substr(kDataTag.size());
}

std::wstring upToZero(const std::wstring& text)
{
    return text.c_str();
}

}  // namespace

std::string rlu_getTextureFilename(const std::wstring& storedPath, const std::string& searchFolder,
                                   TextureImageType type, const std::wstring& sceneFolder)
{
    const std::wstring path = withDataFolder(storedPath);
    const std::unique_ptr<wchar_t[]> folder(rlu_CharStarToWideChar(searchFolder.c_str()));
    Recording recording(storedPath, type);
    std::wstring result;
    const int found =
        find({upToZero(path), rlu_getDataDir(), folder.get(), type, sceneFolder}, recording, result);
    recording.end(found != 0, result);
    return rlu_WStringToString(found ? result : path);
}

int findFile(const wchar_t* storedPath, const std::wstring& dataFolder, const std::wstring& searchFolder,
             TextureImageType type, std::wstring* result, const std::wstring& sceneFolder)
{
    const std::wstring path = storedPath ? storedPath : L"";
    Recording recording(path, type);
    std::wstring candidate;
    const int found = find({path, dataFolder, searchFolder, type, sceneFolder}, recording, candidate);
    recording.end(found != 0, candidate);
    if (result) {
        *result = std::move(candidate);
    }
    return found;
}

int searchFolderList(std::wstring& folderList, const std::wstring& leafName, std::wstring& destination)
{
    Recording recording({}, TextureImageAppearance);
    return searchFolders(recording, Step::kLocations, folderList, leafName, destination) ? 1 : 0;
}

TextureSearchObserver rlu_observeTextureSearches(TextureSearchObserver next)
{
    return std::exchange(observer, std::move(next));
}
