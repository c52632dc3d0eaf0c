// Where the images of a model are.
#pragma once

#include <deque>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "raylume/scene/dlDecal.h"
#include "raylume/services/TextureSearchLog.h"
#include "tools/BakedDecals.h"
#include "tools/SearchJournal.h"

namespace tool {

enum class ImageStatus {
    kFound,     ///< Something stands where the search ended; whether it is an image is another question.
    kEmbedded,  ///< "<document>#image<n>": the image lies in the document.
    kMissing,
};

/// One image that a document names, and what came of looking for it.
struct SearchedImage {
    std::wstring storedPath;  ///< As the document names it.
    TextureImageType type = TextureImageAppearance;
    ImageStatus status = ImageStatus::kMissing;
    std::wstring path;                 ///< A text for rlu_nativePath; empty unless found.
    std::vector<TextureProbe> probes;  ///< In order; fewer than probeCount in a very long search.
    std::size_t probeCount = 0;
    /// Something was found that is no image by its name, and the default decal takes its place.
    bool isDefaultDecal = false;
    /// The temporary bitmaps that were made of it, or should have been. Native paths.
    std::vector<std::string> bakedAs;
};

/// The images that make up a decal. More than one image or mask where the load leaves open which one it
/// was: decals whose bitmaps could not be made all name the same one.
struct DecalImages {
    std::vector<const SearchedImage*> images;
    std::vector<const SearchedImage*> masks;
    bool isBaked = false;  ///< texture.filename names a temporary bitmap.
};

/// Looks each image up once, by the library's own search. Images of scenes and decals with masks were
/// looked up by the load: what its journal has is taken over.
///
/// Ownership: owns every SearchedImage; pointers stay for its life.
class ImageSearch {
public:
    /// Without a document: no folder to search in, and nothing that was searched before.
    ImageSearch() = default;
    /// `document` is the path in UTF-8 that was loaded.
    ImageSearch(const std::string& document, std::vector<LoadSearch> searches);
    ImageSearch(const ImageSearch&) = delete;
    ImageSearch& operator=(const ImageSearch&) = delete;

    const SearchedImage& find(const std::wstring& storedPath, TextureImageType type);
    DecalImages ofDecal(const dlDecal& decal);
    /// Of an image as dlScene has it: what the search of the load gave.
    const SearchedImage& ofScene(const std::string& name);

    /// What the load looked for, or should have baked, and no call above asked for.
    std::vector<const SearchedImage*> others();

private:
    SearchedImage& keep(const std::wstring& storedPath, TextureImageType type);
    const SearchedImage& take(const TextureSearchRecord& record);
    const SearchedImage& takeBaked(const TextureSearchRecord& record, const std::string& bitmap);

    std::string folder_;  // in the ANSI code page, with a separator at its end
    std::vector<LoadSearch> searches_;
    BakedDecals baked_;
    std::deque<SearchedImage> images_;
    std::map<std::pair<std::wstring, TextureImageType>, SearchedImage*> known_;
};

/// "<document>#image<n>".
bool isEmbeddedImage(const std::wstring& name);

/// The name of a step in JSON, and in words.
const char* stepName(TextureSearchStep step);
const char* stepInWords(TextureSearchStep step);

}  // namespace tool
