#include "tools/ImageSearch.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

#include "raylume/platform/Text.h"
#include "raylume/services/Locations.h"

namespace tool {
namespace {

bool isFile(const std::wstring& name)
{
    std::error_code failed;
    return std::filesystem::is_regular_file(rlu_nativePath(name), failed);
}

// The search splits at "\" alone, but a document of another kind has "/".
std::wstring withBackslashes(std::wstring path)
{
    std::replace(path.begin(), path.end(), L'/', L'\\');
    return path;
}

bool isAbsolute(const std::wstring& path)
{
    return path.starts_with(L'\\') || (path.size() >= 2 && path[1] == L':');
}

std::wstring currentFolder()
{
    std::error_code failed;
    const std::filesystem::path folder = std::filesystem::current_path(failed);
    return failed ? std::wstring() : withBackslashes(platform::fromUtf8(folder.string())) + L"\\";
}

// Made absolute, since the folder above it is searched as well.
std::string folderOf(const std::string& document)
{
    std::wstring path = withBackslashes(platform::fromUtf8(document));
    if (!isAbsolute(path))
        path.insert(0, currentFolder());
    const std::size_t separator = path.find_last_of(L"\\:");
    return platform::narrow(path.substr(0, separator == std::wstring::npos ? 0 : separator + 1));
}

bool isProbed(const TextureSearchRecord& record)
{
    return std::any_of(record.probes.begin(), record.probes.end(),
                       [&](const TextureProbe& probe) { return probe.path == record.path; });
}

void fill(const TextureSearchRecord& record, SearchedImage& image)
{
    image.status = record.found ? ImageStatus::kFound : ImageStatus::kMissing;
    image.path = record.found ? record.path : std::wstring();
    image.probes = record.probes;
    image.probeCount = record.probeCount;
    // A search whose list is cut tells nothing of what is not in it.
    image.isDefaultDecal = record.found && record.probes.size() == record.probeCount && !isProbed(record);
}

TextureSearchRecord search(const std::wstring& storedPath, const std::string& folder, TextureImageType type)
{
    TextureSearchRecord result;
    TextureSearchObserver before =
        rlu_observeTextureSearches([&result](const TextureSearchRecord& record) { result = record; });
    rlu_getTextureFilename(withBackslashes(storedPath), folder, type, {});
    rlu_observeTextureSearches(std::move(before));
    return result;
}

// What the library gave its caller.
std::string resultOf(const TextureSearchRecord& record)
{
    return platform::narrow(record.found ? record.path : record.storedPath);
}

}  // namespace

bool isEmbeddedImage(const std::wstring& name)
{
    const std::wstring mark = L"#image";
    const auto place = name.rfind(mark);
    if (place == std::wstring::npos || place + mark.size() == name.size())
        return false;
    return std::all_of(name.begin() + static_cast<std::ptrdiff_t>(place + mark.size()), name.end(),
                       [](wchar_t c) { return c >= L'0' && c <= L'9'; });
}

ImageSearch::ImageSearch(const std::string& document, std::vector<LoadSearch> searches)
    : folder_(folderOf(document)), searches_(std::move(searches)), baked_(searches_)
{
}

SearchedImage& ImageSearch::keep(const std::wstring& storedPath, TextureImageType type)
{
    SearchedImage& image = images_.emplace_back();
    image.storedPath = storedPath;
    image.type = type;
    known_[{storedPath, type}] = &image;
    return image;
}

const SearchedImage& ImageSearch::find(const std::wstring& storedPath, TextureImageType type)
{
    const auto known = known_.find({storedPath, type});
    if (known != known_.end())
        return *known->second;
    SearchedImage& image = keep(storedPath, type);
    if (isEmbeddedImage(storedPath) && !isFile(storedPath))
        image.status = ImageStatus::kEmbedded;
    else
        fill(search(storedPath, folder_, type), image);
    return image;
}

const SearchedImage& ImageSearch::take(const TextureSearchRecord& record)
{
    const auto known = known_.find({record.storedPath, record.type});
    if (known != known_.end())
        return *known->second;
    SearchedImage& image = keep(record.storedPath, record.type);
    fill(record, image);
    return image;
}

const SearchedImage& ImageSearch::takeBaked(const TextureSearchRecord& record, const std::string& bitmap)
{
    take(record);
    SearchedImage& image = *known_.at({record.storedPath, record.type});
    if (std::find(image.bakedAs.begin(), image.bakedAs.end(), bitmap) == image.bakedAs.end())
        image.bakedAs.push_back(bitmap);
    return image;
}

DecalImages ImageSearch::ofDecal(const dlDecal& decal)
{
    DecalImages result;
    const std::wstring& file = decal.texture.filename;
    const std::string bitmap = file.empty() ? std::string() : rlu_nativePath(file);
    result.isBaked = baked_.knows(bitmap);
    if (result.isBaked) {
        const BakedFrom origins = baked_.originsOf(bitmap, decal.colorMask.empty());
        for (const std::size_t image : origins.images)
            result.images.push_back(&takeBaked(searches_[image].record, bitmap));
        for (const std::size_t mask : origins.masks)
            result.masks.push_back(&take(searches_[mask].record));
    } else if (!file.empty()) {
        result.images.push_back(&find(file, TextureImageDecal));
    }
    if (!decal.maskFilename.empty())
        result.masks.push_back(&find(decal.maskFilename, TextureImageDecal));
    return result;
}

const SearchedImage& ImageSearch::ofScene(const std::string& name)
{
    for (const LoadSearch& search : searches_)
        if (search.record.type == TextureImageScene && resultOf(search.record) == name)
            return take(search.record);
    return find(platform::widen(name), TextureImageScene);
}

std::vector<const SearchedImage*> ImageSearch::others()
{
    std::vector<const SearchedImage*> result;
    for (const LoadSearch& search : searches_)
        if (!known_.contains({search.record.storedPath, search.record.type}))
            result.push_back(&take(search.record));
    return result;
}

const char* stepName(TextureSearchStep step)
{
    static constexpr const char* kNames[] = {"storedPath",    "fileName",   "dataFolder",   "searchFolder",
                                             "firstLocation", "locations",  "parentFolder", "sceneRelative",
                                             "sceneFolder",   "userFolders"};
    return kNames[static_cast<int>(step)];
}

const char* stepInWords(TextureSearchStep step)
{
    static constexpr const char* kWords[] = {"the stored path",
                                             "the current folder",
                                             "the data folder",
                                             "the document's folder",
                                             "the first folder of __ImageLocations__.txt",
                                             "the folders of __ImageLocations__.txt",
                                             "the parent folder",
                                             "the scene's folder by the relative path",
                                             "the scene's folder",
                                             "the folders of the user"};
    return kWords[static_cast<int>(step)];
}

}  // namespace tool
