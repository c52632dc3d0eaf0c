// From the temporary bitmap that a decal names back to the image that the document names.
#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <vector>

#include "tools/SearchJournal.h"

namespace tool {

/// The searches behind one temporary bitmap, as indices of the journal.
struct BakedFrom {
    std::vector<std::size_t> images;
    std::vector<std::size_t> masks;
};

/// A baked decal keeps nothing of its image's name, but baking starts with a search: one for the image,
/// and a second one for the mask if that is an image too. What the next bitmap was at that moment is what
/// the decal names, unless the same image with the same mask had been baked before.
///
/// Where the bitmap was made, the last search before it appeared is known to be its own. A failed save
/// uses up no number, so decals whose image could not be read all name the bitmap that the next good one
/// gets; which of them a decal is cannot be told, and all are given, the good one last.
class BakedDecals {
public:
    BakedDecals() = default;
    explicit BakedDecals(const std::vector<LoadSearch>& searches);

    /// True when the load could have made that bitmap. `bitmap` is a native path.
    bool knows(const std::string& bitmap) const { return windows_.contains(bitmap); }
    /// `withMaskImage`: the mask was an image, not a list of colours.
    BakedFrom originsOf(const std::string& bitmap, bool withMaskImage) const;

private:
    bool cameFirstWith(std::size_t search, const std::string& bitmap) const;

    std::vector<std::wstring> names_;  // of each search: what it gave, in lower case
    std::map<std::string, std::vector<std::size_t>> windows_;
    std::map<std::wstring, std::string> firstBitmap_;  // by name
};

}  // namespace tool
