#include "raylume/platform/NumberText.h"

#include <locale.h>
#include <stdlib.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <string>
#include <system_error>

#include "raylume/platform/Errors.h"

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

bool isDigit(char character)
{
    return character >= '0' && character <= '9';
}

bool isBlank(char character)
{
    return character == ' ' || (character >= '\t' && character <= '\r');
}

bool isNoBreakSpace(wchar_t character)
{
    return character == 0xA0 || character == 0x202F;
}

std::string_view withoutBlanks(std::string_view text)
{
    while (!text.empty() && isBlank(text.front())) {
        text.remove_prefix(1);
    }
    while (!text.empty() && isBlank(text.back())) {
        text.remove_suffix(1);
    }
    return text;
}

/// A number taken apart. Its value is 0.DDDD times ten to the power of `magnitude`, with D the
/// digits, which neither begin nor end with a zero; a zero has none.
struct Decimal {
    bool isNegative = false;
    std::string digits;
    std::int64_t magnitude = 0;
};

// Exponents are cut off here: beyond it no text that fits a machine changes the answer.
// Ten times as much still fits.
constexpr std::int64_t kExponentLimit = std::int64_t{1} << 58;

/// Reads a Decimal from a text, piece by piece.
class DecimalScan {
public:
    DecimalScan(std::string_view text, const NumberSeparators& separators)
        : rest_(withoutBlanks(text)), separators_(separators)
    {
    }

    /// False when the text is no number.
    bool run(Decimal& number)
    {
        number.isNegative = takeSign();
        takeWhole(number);
        takeFraction(number);
        if (!sawDigit_ || !takeExponent(number)) {
            return false;
        }
        tidy(number);
        return rest_.empty();
    }

private:
    bool takeSign()
    {
        const bool isNegative = !rest_.empty() && rest_.front() == '-';
        if (isNegative || (!rest_.empty() && rest_.front() == '+')) {
            rest_.remove_prefix(1);
        }
        return isNegative;
    }

    bool atDigit() const { return !rest_.empty() && isDigit(rest_.front()); }

    void takeDigits(Decimal& number)
    {
        for (; atDigit(); rest_.remove_prefix(1)) {
            sawDigit_ = true;
            number.digits.push_back(rest_.front());
        }
    }

    void takeWhole(Decimal& number)
    {
        takeDigits(number);
        while (sawDigit_ && takeGrouping()) {
            takeDigits(number);
        }
        number.magnitude = static_cast<std::int64_t>(number.digits.size());
    }

    // Only one with a digit behind it is taken; any other stays, and then the text is no number.
    bool takeGrouping()
    {
        std::size_t length = 0;
        const wchar_t character = next(length);
        const bool separates =
            length > 0 && isGrouping(character) && rest_.size() > length && isDigit(rest_[length]);
        if (separates) {
            rest_.remove_prefix(length);
        }
        return separates;
    }

    bool isGrouping(wchar_t character) const
    {
        if (separators_.grouping == 0 || character == separators_.decimal) {
            return false;
        }
        const bool anySpace = isNoBreakSpace(separators_.grouping);
        return character == separators_.grouping ||
               (anySpace && (character == L' ' || isNoBreakSpace(character)));
    }

    void takeFraction(Decimal& number)
    {
        std::size_t length = 0;
        if (next(length) == separators_.decimal && length > 0) {
            rest_.remove_prefix(length);
            takeDigits(number);
        }
    }

    bool takeExponent(Decimal& number)
    {
        if (rest_.empty() || (rest_.front() != 'e' && rest_.front() != 'E')) {
            return true;
        }
        rest_.remove_prefix(1);
        const bool isNegative = takeSign();
        if (!atDigit()) {
            return false;
        }
        std::int64_t exponent = 0;
        for (; atDigit(); rest_.remove_prefix(1)) {
            exponent = std::min(exponent * 10 + (rest_.front() - '0'), kExponentLimit);
        }
        number.magnitude += isNegative ? -exponent : exponent;
        return true;
    }

    static void tidy(Decimal& number)
    {
        const std::size_t first = std::min(number.digits.find_first_not_of('0'), number.digits.size());
        number.digits.erase(0, first);
        number.digits.erase(number.digits.find_last_not_of('0') + 1);
        number.magnitude -= static_cast<std::int64_t>(first);
    }

    wchar_t next(std::size_t& length) const
    {
        UChar32 character = U_SENTINEL;
        if (!rest_.empty()) {
            U8_NEXT(rest_.data(), length, rest_.size(), character);
        }
        return static_cast<wchar_t>(character);
    }

    std::string_view rest_;
    const NumberSeparators& separators_;
    bool sawDigit_ = false;
};

// Beyond all magnitudes of a double.
constexpr std::int64_t kRealMagnitude = 400;

template <class Real>
std::uint32_t realOf(const Decimal& number, Real& value)
{
    if (number.digits.empty() || number.magnitude < -kRealMagnitude) {
        value = number.isNegative ? -Real(0) : Real(0);
        return 0;
    }
    if (number.magnitude > kRealMagnitude) {
        return kErrorOverflow;
    }
    const std::string plain = "0." + number.digits + "e" + std::to_string(number.magnitude);
    Real nearest = 0;
    const auto result = std::from_chars(plain.data(), plain.data() + plain.size(), nearest);
    const bool isOut = result.ec == std::errc::result_out_of_range || std::isinf(nearest);
    if (isOut && number.magnitude > 0) {
        return kErrorOverflow;
    }
    nearest = isOut ? Real(0) : nearest;
    value = number.isNegative ? -nearest : nearest;
    return 0;
}

// What nearly all texts are, without taking them apart: digits and a point. Left to the long way
// is whatever does not convert to its end, and what is out of range.
template <class Real>
bool convertPlain(std::string_view text, const NumberSeparators& separators, Real& value)
{
    const bool isNegative = !text.empty() && text.front() == '-';
    const std::size_t start = isNegative ? 1 : 0;
    if (separators.decimal != L'.' || text.size() <= start || !isDigit(text[start])) {
        return false;  // Words such as "inf" go here as well.
    }
    Real number = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), number);
    const bool isWhole = result.ec == std::errc() && result.ptr == text.data() + text.size();
    if (isWhole && std::isfinite(number)) {
        value = number;
        return true;
    }
    return false;
}

template <class Real>
std::uint32_t convert(std::string_view text, const NumberSeparators& separators, Real& value)
{
    if (convertPlain(text, separators, value)) {
        return 0;
    }
    Decimal number;
    return DecimalScan(text, separators).run(number) ? realOf(number, value) : kErrorTypeMismatch;
}

// The digits behind the first `count`, against a half: below, at or above.
int compareToHalf(std::string_view digits)
{
    if (digits.empty() || digits.front() < '5') {
        return -1;
    }
    return digits == "5" ? 0 : 1;  // No digits end with a zero.
}

std::uint32_t storeInteger(std::int64_t number, std::int32_t& value)
{
    if (number < std::numeric_limits<std::int32_t>::min() ||
        number > std::numeric_limits<std::int32_t>::max()) {
        return kErrorOverflow;
    }
    value = static_cast<std::int32_t>(number);
    return 0;
}

std::uint32_t integerOf(const Decimal& number, std::int32_t& value)
{
    constexpr std::int64_t kMostDigits = 10;
    if (number.digits.empty() || number.magnitude < 0) {
        value = 0;
        return 0;
    }
    if (number.magnitude > kMostDigits) {
        return kErrorOverflow;
    }
    const auto wholeDigits = static_cast<std::size_t>(number.magnitude);
    std::int64_t whole = 0;
    for (std::size_t i = 0; i < wholeDigits; ++i) {
        whole = whole * 10 + (i < number.digits.size() ? number.digits[i] - '0' : 0);
    }
    const std::string_view behind =
        std::string_view(number.digits).substr(std::min(wholeDigits, number.digits.size()));
    const int half = compareToHalf(behind);
    whole += half > 0 || (half == 0 && whole % 2 != 0) ? 1 : 0;
    return storeInteger(number.isNegative ? -whole : whole, value);
}

// Up to nine digits and nothing else; they cannot be too many.
bool convertDigits(std::string_view text, std::int32_t& value)
{
    if (text.empty() || text.size() > 9) {
        return false;
    }
    std::int32_t number = 0;
    for (const char character : text) {
        if (!isDigit(character)) {
            return false;
        }
        number = number * 10 + (character - '0');
    }
    value = number;
    return true;
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

std::uint32_t convertReal(std::string_view text, const NumberSeparators& separators, double& value)
{
    return convert(text, separators, value);
}

std::uint32_t convertFloat(std::string_view text, const NumberSeparators& separators, float& value)
{
    return convert(text, separators, value);
}

std::uint32_t convertInteger(std::string_view text, const NumberSeparators& separators, std::int32_t& value)
{
    if (convertDigits(text, value)) {
        return 0;
    }
    Decimal number;
    return DecimalScan(text, separators).run(number) ? integerOf(number, value) : kErrorTypeMismatch;
}

std::uint32_t convertInteger(double number, std::int32_t& value)
{
    if (std::isnan(number)) {
        return kErrorTypeMismatch;
    }
    const double floor = std::floor(number);
    const bool isOdd = std::fmod(floor, 2.0) != 0;
    const double part = number - floor;
    const double nearest = part > 0.5 || (part == 0.5 && isOdd) ? floor + 1 : floor;
    constexpr double kLimit = 2147483648.0;
    if (!(nearest >= -kLimit && nearest < kLimit)) {
        return kErrorOverflow;
    }
    value = static_cast<std::int32_t>(nearest);
    return 0;
}

}  // namespace platform
