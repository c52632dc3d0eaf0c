// Folders of the user.
#pragma once

#include <string>

#include "raylume/platform/Export.h"

/// Stores the folder of custom views, with a trailing separator, and makes it with its parents as
/// needed. 1 on success. 0 with the destination untouched when the first folder fails, and with the
/// path as far as it was built when a later one does.
DL_API int rlu_getRLCustomViewsFolder(std::wstring* folder);
