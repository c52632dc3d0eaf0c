// From the path of an image as a document stores it to a path that exists here.
#pragma once

#include <cstdint>
#include <string>

#include "raylume/platform/Export.h"

/// The kind of image sought.
enum TextureImageType : std::int32_t {
    TextureImageDecal = 0,
    TextureImageAppearance = 1,
    TextureImageScene = 2,
};

/// Where an image is that a document names by `storedPath`: a path that exists here, or the stored path if
/// there is none, in the ANSI code page. A path that holds "<SystemTexture>" anywhere loses its first 15
/// characters, the length of the tag, and the data folder takes their place.
///
/// `searchFolder`, in the ANSI code page, is mostly the document's; it ends in a separator, or else its
/// last component counts as a file. `sceneFolder` is used as it is, for scenes only. A relative path is
/// taken from the current folder. All paths keep "\"; rlu_nativePath turns the result into one to open.
/// Raises nothing but std::bad_alloc. rlu_observeTextureSearches (TextureSearchLog.h) tells what was tried.
DL_API std::string rlu_getTextureFilename(const std::wstring& storedPath, const std::string& searchFolder,
                                          TextureImageType type, const std::wstring& sceneFolder);

/// The search itself: non-zero when found. `*result` is written in every case, and means something only
/// when found. `dataFolder` has no trailing separator and may be empty.
DL_API int findFile(const wchar_t* storedPath, const std::wstring& dataFolder,
                    const std::wstring& searchFolder, TextureImageType type, std::wstring* result,
                    const std::wstring& sceneFolder);
