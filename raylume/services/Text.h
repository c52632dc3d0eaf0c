// Text conversions through the ANSI code page.
#pragma once

#include <string>

#include "raylume/platform/Export.h"

/// Wide text in the ANSI code page. A character that the code page lacks becomes one "?" for each
/// UTF-16 unit that it has; zeros inside the text are kept.
DL_API std::string rlu_WStringToString(const std::wstring& text);
/// Text in the ANSI code page as new wide text, which the caller frees with delete[]; null for null.
/// Bytes that are no character become U+FFFD.
DL_API wchar_t* rlu_CharStarToWideChar(const char* text);
/// Lower case by Unicode's simple rules, from the ANSI code page and back into it by the rules of the
/// two above; empty for null.
DL_API std::string rlu_makeLowerCaseString(const char* text);
