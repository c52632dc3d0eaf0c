// Lists of folders, as side files and settings have them.
#pragma once

#include <string>

/// Tries the folders of a list separated by ";", one after another. Those that do not hold `leafName` are
/// taken out of the list; what is left begins with the one that does. Non-zero when found; `destination` is
/// written only then. Observers of searches hear of a list as part of a search only.
int searchFolderList(std::wstring& folderList, const std::wstring& leafName, std::wstring& destination);
