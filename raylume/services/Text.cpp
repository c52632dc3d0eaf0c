#include "raylume/services/Text.h"

#include <algorithm>

#include "raylume/platform/Text.h"

std::string rlu_WStringToString(const std::wstring& text)
{
    return platform::narrow(text);
}

wchar_t* rlu_CharStarToWideChar(const char* text)
{
    if (!text) {
        return nullptr;
    }
    const std::wstring wide = platform::widen(text);
    auto* const copy = new wchar_t[wide.size() + 1];
    *std::copy(wide.begin(), wide.end(), copy) = L'\0';
    return copy;
}

std::string rlu_makeLowerCaseString(const char* text)
{
    return text ? platform::narrow(platform::toLower(platform::widen(text))) : std::string();
}
