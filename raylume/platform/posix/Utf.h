// Steps between code points and their UTF-8 and UTF-16 forms. What is no character (a lone
// surrogate, a value above 0x10FFFF) becomes U+FFFD, so that nothing behind these steps meets one.
#pragma once

#include <unicode/utf16.h>
#include <unicode/utf8.h>

#include <cstdint>
#include <string>
#include <string_view>

namespace platform {

inline constexpr UChar32 kReplacementCharacter = 0xFFFD;

/// The character that a wide one means.
inline UChar32 scalarValue(wchar_t character)
{
    const auto value = static_cast<std::uint32_t>(character);
    const bool isScalar = value <= 0x10FFFFu && !U_IS_SURROGATE(value);
    return isScalar ? static_cast<UChar32>(value) : kReplacementCharacter;
}

inline void appendUtf16(std::u16string& text, UChar32 character)
{
    if (U_IS_BMP(character)) {
        text.push_back(static_cast<char16_t>(character));
        return;
    }
    text.push_back(U16_LEAD(character));
    text.push_back(U16_TRAIL(character));
}

inline void appendUtf8(std::string& text, UChar32 character)
{
    char bytes[U8_MAX_LENGTH];
    int length = 0;
    U8_APPEND_UNSAFE(bytes, length, character);
    text.append(bytes, static_cast<std::size_t>(length));
}

/// Wide text from UTF-16.
inline std::wstring fromUtf16(std::u16string_view units)
{
    std::wstring text;
    text.reserve(units.size());
    for (std::size_t i = 0; i < units.size();) {
        UChar32 character;
        U16_NEXT_OR_FFFD(units.data(), i, units.size(), character);
        text.push_back(static_cast<wchar_t>(character));
    }
    return text;
}

}  // namespace platform
