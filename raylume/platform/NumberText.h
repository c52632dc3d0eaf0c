// Numbers in texts, without ever touching the locale of the process.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "raylume/platform/Export.h"

namespace platform {

/// Scans a real number at the start of a text as "%lf" does in the "C" locale: leading white space
/// goes, the longest number counts, the rest is not looked at. False, with `value` untouched, when
/// no number stands there.
PLATFORM_API bool scanReal(const std::wstring& text, double& value);

/// The two characters that stand in numbers besides digits, signs and exponents.
struct NumberSeparators {
    wchar_t decimal = L'.';
    wchar_t grouping = L',';  ///< 0: digits are not grouped.

    bool operator==(const NumberSeparators&) const = default;
};

/// The three conversions take a whole text (UTF-8) as a number: blanks at both ends, a sign, digits
/// with at most one decimal separator among them, and an exponent of ten ("e" or "E"). Between two digits
/// in front of the decimal separator one grouping separator may stand, wherever it is: groups differ from
/// country to country. Where the grouping separator is a no-break space, any blank of that kind serves.
///
/// The result is 0, or kErrorTypeMismatch for a text that is no number (an empty one, words such as "inf"
/// and hexadecimal forms too), or kErrorOverflow for one out of range; then `value` is untouched. Nothing
/// is allocated for plain numbers; std::bad_alloc for long ones with foreign separators.
///
/// Reals are the nearest double, ties to even; what is too small to hold is 0.
PLATFORM_API std::uint32_t convertReal(std::string_view text, const NumberSeparators& separators,
                                       double& value);
/// The nearest float to the text itself, not to the double between.
PLATFORM_API std::uint32_t convertFloat(std::string_view text, const NumberSeparators& separators,
                                        float& value);
/// The nearest integer by the decimal digits, ties to even: "2.5" is 2, "3.5" is 4.
PLATFORM_API std::uint32_t convertInteger(std::string_view text, const NumberSeparators& separators,
                                          std::int32_t& value);
/// The same rounding for a number that is one already. NaN is no number.
PLATFORM_API std::uint32_t convertInteger(double number, std::int32_t& value);

/// The user's separators: those that setNumberSeparators() said last, else those of the locale that
/// the variable LC_ALL, LC_NUMERIC or LANG names, the first that is set. Without one, and for "C" and
/// "POSIX", they are "." and ",". Any thread.
PLATFORM_API NumberSeparators numberSeparators();
/// Puts a choice of the host in place of the user's, for the whole process.
PLATFORM_API void setNumberSeparators(wchar_t decimal, wchar_t grouping);
/// Back to the user's.
PLATFORM_API void resetNumberSeparators();

}  // namespace platform
