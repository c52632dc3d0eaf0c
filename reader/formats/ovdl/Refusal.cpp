#include "reader/formats/ovdl/Refusal.h"

#include <algorithm>

#include "raylume/platform/Text.h"

namespace ovdl {
namespace {

bool breaksLine(wchar_t character)
{
    const auto code = static_cast<unsigned long>(character);
    return code < 0x20 || (code >= 0x7F && code <= 0x9F) || code == 0x2028 || code == 0x2029;
}

}  // namespace

std::string reasonLine(std::wstring text)
{
    std::replace_if(text.begin(), text.end(), breaksLine, L' ');
    return platform::toUtf8(text);
}

Refusal::Refusal(const std::string& reason) : std::runtime_error(reasonLine(platform::fromUtf8(reason)))
{
}

}  // namespace ovdl
