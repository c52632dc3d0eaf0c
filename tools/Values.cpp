#include "tools/Values.h"

#include <charconv>
#include <cmath>

#include "raylume/platform/Text.h"

namespace tool {
namespace {

template <class Real>
std::string shortest(Real value)
{
    char digits[64];
    const auto end = std::to_chars(digits, digits + sizeof digits, value);
    return std::string(digits, end.ptr);
}

template <class Real>
std::string notFinite(Real value)
{
    if (std::isnan(value))
        return "NaN";
    return value > 0 ? "Infinity" : "-Infinity";
}

}  // namespace

Json floatValue(float value)
{
    if (!std::isfinite(value))
        return notFinite(value);
    // Widening alone would print 0.1f as 0.10000000149011612.
    const std::string digits = shortest(value);
    double widened = 0;
    std::from_chars(digits.data(), digits.data() + digits.size(), widened);
    return widened;
}

Json floatValues(const float* values, int count)
{
    Json result = Json::array();
    for (int i = 0; i < count; ++i)
        result.push_back(floatValue(values[i]));
    return result;
}

Json doubleValue(double value)
{
    if (!std::isfinite(value))
        return notFinite(value);
    return value;
}

Json jsonNumbers(const double* values, std::size_t count)
{
    Json result = Json::array();
    for (std::size_t i = 0; i < count; ++i)
        result.push_back(values[i]);
    return result;
}

Json boxValue(dlBBox box)
{
    if (!box.isSet())
        return nullptr;
    return Json{{"min", floatValues(box.min, 3)}, {"max", floatValues(box.max, 3)}};
}

std::string floatText(float value)
{
    return std::isfinite(value) ? shortest(value) : notFinite(value);
}

std::string doubleText(double value)
{
    return std::isfinite(value) ? shortest(value) : notFinite(value);
}

std::string vectorText(const float* values)
{
    return floatText(values[0]) + " " + floatText(values[1]) + " " + floatText(values[2]);
}

std::string utf8(std::string_view modelText)
{
    return platform::toUtf8(platform::widen(modelText));
}

std::string oneLine(std::string_view text)
{
    std::string line = platform::toUtf8(platform::fromUtf8(text));
    for (char& character : line)
        if (static_cast<unsigned char>(character) < 0x20 || character == 0x7F)
            character = ' ';
    return line;
}

std::string counted(long long number, std::string_view singular)
{
    return std::to_string(number) + " " + std::string(singular) + (number == 1 ? "" : "s");
}

}  // namespace tool
