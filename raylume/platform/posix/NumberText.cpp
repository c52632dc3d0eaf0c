#include "raylume/platform/NumberText.h"

#include <locale.h>
#include <stdlib.h>

#include <string>

namespace platform {

namespace {

// Set up once and passed to each scan: the locale of the process belongs to the host.
locale_t plainLocale()
{
    static const locale_t locale = newlocale(LC_ALL_MASK, "C", static_cast<locale_t>(nullptr));
    return locale;
}

// No character of a number lies outside ASCII, so the first that does ends it.
std::string asciiStart(const std::wstring& text)
{
    std::string start;
    for (const wchar_t character : text) {
        if (character <= 0 || character > 0x7F) {
            break;
        }
        start.push_back(static_cast<char>(character));
    }
    return start;
}

}  // namespace

bool scanReal(const std::wstring& text, double& value)
{
    const std::string start = asciiStart(text);
    char* end = nullptr;
    const double number = strtod_l(start.c_str(), &end, plainLocale());
    if (end == start.c_str()) {
        return false;
    }
    value = number;
    return true;
}

}  // namespace platform
