#include "reader/formats/gltf/NumberText.h"

#include <charconv>
#include <cstdint>

namespace ovdl::gltf {
namespace {

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

// What the characters of a number come to, as far as whole numbers go.
struct Decimal {
    std::uint64_t digits = 0;
    int digitCount = 0;
    int fractionCount = 0;
    bool isNegative = false;
    bool hasExponent = false;
};

// Takes digits; false when there are none.
bool takeDigits(const char*& at, const char* end, Decimal& decimal)
{
    const char* begin = at;
    while (at != end && isDigit(*at))
        decimal.digits = decimal.digits * 10 + static_cast<std::uint64_t>(*at++ - '0');
    decimal.digitCount += static_cast<int>(at - begin);
    return at != begin;
}

bool takeExponent(const char*& at, const char* end, Decimal& decimal)
{
    if (at == end || (*at != 'e' && *at != 'E'))
        return true;
    ++at;
    decimal.hasExponent = true;
    if (at != end && (*at == '+' || *at == '-'))
        ++at;
    Decimal exponent;
    return takeDigits(at, end, exponent);
}

// The grammar of a JSON number.
bool takeDecimal(const char*& at, const char* end, Decimal& decimal)
{
    if (at != end && *at == '-') {
        decimal.isNegative = true;
        ++at;
    }
    const char* begin = at;
    if (!takeDigits(at, end, decimal) || (*begin == '0' && at - begin > 1))
        return false;
    if (at != end && *at == '.') {
        const char* fraction = ++at;
        if (!takeDigits(at, end, decimal))
            return false;
        decimal.fractionCount = static_cast<int>(at - fraction);
    }
    return takeExponent(at, end, decimal);
}

// Of a number out of a double's range: too small to hold is zero, too large is no number for us.
bool isTooSmall(std::string_view text)
{
    const std::size_t exponent = text.find_first_of("eE");
    if (exponent != std::string_view::npos)
        return text[exponent + 1] == '-';
    return text.substr(text[0] == '-' ? 1 : 0).front() == '0';
}

constexpr double kPowers[] = {1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                              1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};
constexpr int kExactDigits = 15;

}  // namespace

NumberList::NumberList(std::string_view text) : at_(text.data()), end_(text.data() + text.size())
{
    skipBlanks();
    if (at_ == end_ || *at_ != '[')
        isBroken_ = true;
    else
        ++at_;
}

void NumberList::skipBlanks()
{
    while (at_ != end_ && (*at_ == ' ' || *at_ == '\n' || *at_ == '\r' || *at_ == '\t'))
        ++at_;
}

bool NumberList::giveUp()
{
    isBroken_ = true;
    return false;
}

// Up to fifteen digits over a power of ten that is exact too round once, in the division.
bool NumberList::readNumber(double& number)
{
    const char* begin = at_;
    Decimal decimal;
    if (!takeDecimal(at_, end_, decimal))
        return giveUp();
    if (!decimal.hasExponent && decimal.digitCount <= kExactDigits) {
        number = static_cast<double>(decimal.digits) / kPowers[decimal.fractionCount];
        number = decimal.isNegative ? -number : number;
        return true;
    }
    const auto result = std::from_chars(begin, at_, number);
    if (result.ec == std::errc())
        return true;
    if (!isTooSmall({begin, static_cast<std::size_t>(at_ - begin)}))
        return giveUp();
    number = decimal.isNegative ? -0.0 : 0.0;
    return true;
}

bool NumberList::next(double& number)
{
    if (isBroken_)
        return false;
    skipBlanks();
    if (at_ != end_ && *at_ == ']' && isFirst_)
        return false;
    if (!isFirst_) {
        if (at_ != end_ && *at_ == ']')
            return false;
        if (at_ == end_ || *at_ != ',')
            return giveUp();
        ++at_;
        skipBlanks();
    }
    isFirst_ = false;
    return readNumber(number);
}

}  // namespace ovdl::gltf
