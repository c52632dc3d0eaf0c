#include "tools/TessellationOption.h"

#include <charconv>
#include <optional>
#include <string_view>

#include "reader/ImportLimits.h"

namespace tool {
namespace {

std::optional<double> numberIn(std::string_view text)
{
    double value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    return error == std::errc() && end == text.data() + text.size() ? std::optional(value) : std::nullopt;
}

}  // namespace

bool useTessellation(const std::string& text)
{
    const std::size_t comma = text.find(',');
    if (comma == std::string::npos)
        return false;
    const auto deflection = numberIn(std::string_view(text).substr(0, comma));
    const auto degrees = numberIn(std::string_view(text).substr(comma + 1));
    return deflection && degrees && ovdl::setTessellation({*deflection, *degrees});
}

}  // namespace tool
