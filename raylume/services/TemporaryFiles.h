// Where temporary files go, and the numbered bitmaps among them.
#pragma once

#include <span>
#include <string>

/// The folder for temporary files, ending in "\"; empty when the environment names none. With
/// `perProcess` a folder of this process in it, "rlx" and the process number, which is made if it is
/// missing; the path comes back whether or not that worked.
std::wstring getProcessTempFolder(bool perProcess);

/// That folder with `fileName` appended; empty when there is no folder.
std::wstring getTemporaryFilePath(const std::wstring& fileName, bool perProcess);

/// Whether a path counts as a folder. An address on the web does. Anything else does when its last name,
/// behind which one "\" may stand, exists, that of a plain file too, unless the current folder holds
/// something of the same bare name that is no folder. So a path with no last name, such as a root, does
/// not.
bool probeFolder(const std::wstring& path);

/// Stores the path for the next bitmap in the folder of this process, which is made if it is missing: named
/// by the highest number there is plus one. Empty when the environment names no temporary folder.
void nextTempBitmapPath(std::wstring& destination);

/// Saves a file, given in pieces, under the path of nextTempBitmapPath(), or under that of the next number
/// when somebody else takes that one meanwhile, and stores the path. It is stored, with no file behind it,
/// when there are no pieces or saving fails.
void saveNextTempBitmap(std::span<const std::span<const unsigned char>> pieces, std::wstring& destination);
