#include "raylume/services/Log.h"

#include <cstdarg>
#include <cstdio>
#include <string>

#include "raylume/platform/Messages.h"
#include "raylume/platform/Text.h"

namespace {

constexpr std::size_t kMostCharacters = 4093;

// Those of the plain locale, whatever the host's is.
void removeTrailingWhiteSpace(std::string& text)
{
    const std::size_t last = text.find_last_not_of(" \t\n\v\f\r");
    text.resize(last == std::string::npos ? 0 : last + 1);
}

}  // namespace

void rlu_odprintf(const char* format, ...)
{
    if (!format) {
        return;
    }
    char buffer[kMostCharacters + 1];
    std::va_list arguments;
    va_start(arguments, format);
    const int length = std::vsnprintf(buffer, sizeof buffer, format, arguments);
    va_end(arguments);
    if (length < 0) {
        return;
    }
    std::string text = buffer;
    removeTrailingWhiteSpace(text);
    platform::debugOutput(platform::widen(text + "\r\n"));
}

void rlu_ASSERT(bool)
{
}
