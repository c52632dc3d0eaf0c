// Image files to pixels and back.
//
// Pixels are 32 bits each: blue, green, red, alpha in memory order, alpha not premultiplied, rows from
// the top row of the picture at a stride of four times the width.
#pragma once

#include <string>

#include "raylume/platform/Export.h"

/// Decodes an image file of any known kind. Its sides are limited to 2048, the proportion kept; with a
/// `flag` other than 0 they are then rounded to powers of two and the rows are turned over.
///
/// Ownership: `*pixels` is new memory, which the caller frees with delete[].
/// Errors: 0 on failure, and then nothing is stored but possibly the file's size; 1 on success.
/// `fileWidth` and `fileHeight` take the size of the picture in the file, if both are given.
DL_API int rlu_GetBitmapDataFromFile(const std::wstring& path, int& width, int& height, int& stride,
                                     unsigned char** pixels, int flag, int* fileWidth, int* fileHeight);

/// The same without file sizes; the last two arguments are ignored.
DL_API int rlu_GetPictureFileData(const std::wstring& path, int& width, int& height, int& stride,
                                  unsigned char** pixels, int flag, int, int);

/// Saves pixels as the next numbered bitmap in the temporary folder of this process and gives its
/// path. The first row of the buffer becomes the bottom row of the picture, so that pixels decoded
/// with the flag stand upright again.
///
/// Errors: empty when the environment names no temporary folder. A failed save still gives the path
/// that was chosen, with no file behind it.
DL_API std::wstring rlu_SaveAsBitmap(int width, int height, int stride, const unsigned char* pixels);

/// Deletes the files of the temporary folder of this process, and then the folder. Decals that were baked
/// are remembered by their files for the life of the process (dlDecal.h), so a load after this call names
/// files that are gone: call it when the last document is closed.
DL_API void rlu_ClearTempBMPFiles();
