// What a texture search tried, for whoever wants to tell a user where an image was looked for.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "raylume/platform/Export.h"
#include "raylume/services/TextureSearch.h"

/// Why a path was tried, in the order in which a search goes.
enum class TextureSearchStep : std::int32_t {
    kStoredPath = 0,     ///< As the document has it.
    kFileName = 1,       ///< The file name alone, so in the current folder.
    kDataFolder = 2,     ///< Below the host's data folder.
    kSearchFolder = 3,   ///< In the search folder, mostly that of the document.
    kFirstLocation = 4,  ///< The first line of the side file that names a folder.
    kLocations = 5,      ///< The side file's folders for this kind of image.
    kParentFolder = 6,   ///< One above the search folder.
    kSceneRelative = 7,  ///< Below the scene's folder, by the path relative to the data folder.
    kSceneFolder = 8,    ///< In the scene's folder.
    kUserFolders = 9,    ///< The folders in the host's per-user settings.
};

/// One question to the file system.
struct TextureProbe {
    TextureSearchStep step;
    std::wstring path;  ///< As it was built, with "\".
    bool found;
};

/// One finished search.
struct TextureSearchRecord {
    /// Paths beyond that many are counted only: a side file can list any number of folders.
    static constexpr std::size_t kMostProbes = 4096;

    std::wstring storedPath;  ///< As the caller gave it.
    TextureImageType type = TextureImageDecal;
    std::vector<TextureProbe> probes;  ///< In order, up to kMostProbes.
    std::size_t probeCount = 0;        ///< All of them.
    bool found = false;
    /// Where the image is, if found. A path that is in no probe is the default decal, which stands in for a
    /// decal of an unknown kind and is not looked for.
    std::wstring path;
};

using TextureSearchObserver = std::function<void(const TextureSearchRecord&)>;

/// Hands every search that the calling thread makes from now on, those within a load too, to `observer`
/// as soon as it has ended; with an empty one, to nobody. Gives the observer before, to be put back.
///
/// The observer must not raise and must not call this function: what it sets is lost. It may search itself,
/// and such a search is not observed.
DL_API TextureSearchObserver rlu_observeTextureSearches(TextureSearchObserver observer);
