// Text conversions through the ANSI code page.
#pragma once

#include <string>

#include "raylume/platform/Export.h"

DL_API std::string rlu_WStringToString(const std::wstring& text);
/// New wide text, which the caller frees with delete[]; null for null.
DL_API wchar_t* rlu_CharStarToWideChar(const char* text);
/// Lower case by Unicode's simple rules; empty for null.
DL_API std::string rlu_makeLowerCaseString(const char* text);
