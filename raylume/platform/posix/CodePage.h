// The converters of code pages other than UTF-8.
#pragma once

#include <string>
#include <string_view>

namespace platform {

/// A code page that this machine can convert. Lives until the process ends.
struct CodePage {
    int number = 0;
    std::string converterName;
    bool isUtf8 = false;
    /// The bytes 00 to 7F stand for the characters U+0000 to U+007F, both ways.
    bool keepsAscii = false;
    /// The library's table has the controls 1A, 1C and 7F in one another's places, an old habit of
    /// one maker of these tables. They are put back.
    bool rotatesControls = false;
};

/// The code page of a number, or null when there is no converter for it.
const CodePage* findCodePage(int number);

/// Text to the bytes of a code page, with one "?" for each UTF-16 unit that has no form in it.
std::string encode(const CodePage& page, std::wstring_view text);

/// Bytes in a code page to text, with U+FFFD for what is no character in it.
std::wstring decode(const CodePage& page, std::string_view bytes);

}  // namespace platform
