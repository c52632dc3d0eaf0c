#include "tools/BakedDecals.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

#include "raylume/platform/Text.h"

namespace tool {
namespace {

bool exists(const std::string& path)
{
    std::error_code failed;
    return std::filesystem::exists(path, failed);
}

// What the library knows its earlier results by.
std::wstring nameOf(const TextureSearchRecord& record)
{
    return platform::toLower(record.found ? record.path : record.storedPath);
}

}  // namespace

BakedDecals::BakedDecals(const std::vector<LoadSearch>& searches)
{
    for (const LoadSearch& search : searches) {
        names_.push_back(nameOf(search.record));
        if (search.nextBitmap.empty())
            continue;
        windows_[search.nextBitmap].push_back(names_.size() - 1);
        firstBitmap_.try_emplace(names_.back(), search.nextBitmap);
    }
}

// An image that was baked, or failed, before names that earlier bitmap, not this one.
bool BakedDecals::cameFirstWith(std::size_t search, const std::string& bitmap) const
{
    return firstBitmap_.at(names_[search]) == bitmap;
}

// Counted from the last search on, which is the one that is certain. Where some masks are images and some
// are colours and none of the images could be read, this takes a mask for an image or the other way round.
BakedFrom BakedDecals::originsOf(const std::string& bitmap, bool withMaskImage) const
{
    BakedFrom result;
    const auto entry = windows_.find(bitmap);
    if (entry == windows_.end())
        return result;
    const std::vector<std::size_t>& window = entry->second;
    const std::size_t step = withMaskImage ? 2 : 1;
    const bool lastIsCertain = exists(bitmap);
    for (std::size_t end = window.size(); end >= step; end -= step) {
        const std::size_t image = window[end - step];
        const bool isCertain = lastIsCertain && end == window.size();
        if (!isCertain && !cameFirstWith(image, bitmap))
            continue;
        result.images.insert(result.images.begin(), image);
        if (withMaskImage)
            result.masks.insert(result.masks.begin(), window[end - 1]);
    }
    return result;
}

}  // namespace tool
