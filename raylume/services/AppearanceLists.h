// The two side files that tune how missing images are treated.
#pragma once

#include <cstdint>
#include <string>

#include "raylume/platform/Export.h"

/// The colour that `folder` (ending in a separator) gives to an appearance whose image is missing:
/// 0x00BBGGRR, 0x7F7F7F if it gives none.
DL_API std::uint32_t rlu_GetDefaultAppearanceCol(const std::wstring& folder);

/// Reads the names whose absence is not to be reported from `folder` (ending in a separator), in place of
/// those read before: a file that is not there, or an empty folder, leaves none. Each line is a name; a
/// blank one enters the empty name.
DL_API void rlu_PopulateIgnoredMissingImagesList(const std::string& folder);

/// Whether the list holds exactly that name, letter case aside.
DL_API bool rlu_IsInIgnoredMissingImagesList(const std::wstring& name);
