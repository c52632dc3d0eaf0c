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

/// The resolved path, or the stored one if nothing was found, in the ANSI code page. `searchFolder`
/// ends in a separator.
DL_API std::string rlu_getTextureFilename(const std::wstring& storedPath, const std::string& searchFolder,
                                          TextureImageType type, const std::wstring& sceneFolder);

/// The search itself: non-zero when found. `*result` is written in every case, and means something only
/// when found.
DL_API int findFile(const wchar_t* storedPath, const std::wstring& dataFolder,
                    const std::wstring& searchFolder, TextureImageType type, std::wstring* result,
                    const std::wstring& sceneFolder);

/// Tries the folders of a list separated by ";" and takes those tried out of it. Non-zero when found;
/// `destination` is written only then.
int searchFolderList(std::wstring& folderList, const std::wstring& leafName, std::wstring& destination);
