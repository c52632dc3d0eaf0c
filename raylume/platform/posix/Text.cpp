#include "raylume/platform/Text.h"

#include <unicode/uchar.h>

#include <algorithm>
#include <atomic>
#include <charconv>

#include "raylume/platform/Environment.h"
#include "raylume/platform/posix/CodePage.h"
#include "raylume/platform/posix/Utf.h"

namespace platform {

namespace {

constexpr int kUtf8 = 65001;

const CodePage* utf8Page()
{
    // Never destroyed: other code may still convert while the process ends.
    static const auto& page = *new CodePage{kUtf8, "UTF-8", true, true, false};
    return &page;
}

const CodePage* pageOf(int number)
{
    return number == kUtf8 ? utf8Page() : findCodePage(number);
}

int parseNumber(const std::string& digits)
{
    int number = 0;
    const char* const end = digits.data() + digits.size();
    const auto [stop, error] = std::from_chars(digits.data(), end, number);
    return error == std::errc() && stop == end ? number : 0;
}

const CodePage* initialPage()
{
    const auto setting = environmentVariable("RAYLUME_ANSI_CODEPAGE");
    const CodePage* const page = setting ? pageOf(parseNumber(toUtf8(*setting))) : nullptr;
    return page ? page : utf8Page();
}

std::atomic<const CodePage*>& currentPage()
{
    static std::atomic<const CodePage*> page(initialPage());
    return page;
}

const CodePage& ansiPage()
{
    return *currentPage().load(std::memory_order_relaxed);
}

// All characters at once, without a branch for each, so that the compiler uses wide registers.
bool isAscii(std::wstring_view text)
{
    std::uint32_t all = 0;
    for (const wchar_t character : text) {
        all |= static_cast<std::uint32_t>(character);
    }
    return all < 0x80;
}

bool isAscii(std::string_view text)
{
    unsigned char all = 0;
    for (const char character : text) {
        all |= static_cast<unsigned char>(character);
    }
    return all < 0x80;
}

std::string narrowAscii(std::wstring_view text)
{
    std::string bytes(text.size(), '\0');
    std::transform(text.begin(), text.end(), bytes.begin(), [](wchar_t c) { return static_cast<char>(c); });
    return bytes;
}

std::wstring widenAscii(std::string_view text)
{
    return std::wstring(text.begin(), text.end());
}

int compareNumbers(std::size_t a, std::size_t b)
{
    return a < b ? -1 : a > b ? 1 : 0;
}

}  // namespace

std::string toUtf8(std::wstring_view text)
{
    if (isAscii(text)) {
        return narrowAscii(text);
    }
    std::string bytes;
    bytes.reserve(text.size() * 2);
    for (const wchar_t character : text) {
        appendUtf8(bytes, scalarValue(character));
    }
    return bytes;
}

std::wstring fromUtf8(std::string_view text)
{
    if (isAscii(text)) {
        return widenAscii(text);
    }
    std::wstring wide;
    wide.reserve(text.size());
    for (std::size_t i = 0; i < text.size();) {
        UChar32 character;
        U8_NEXT_OR_FFFD(text.data(), i, text.size(), character);
        wide.push_back(static_cast<wchar_t>(character));
    }
    return wide;
}

std::string narrow(std::wstring_view text)
{
    const CodePage& page = ansiPage();
    if (page.keepsAscii && isAscii(text)) {
        return narrowAscii(text);
    }
    return page.isUtf8 ? toUtf8(text) : encode(page, text);
}

std::wstring widen(std::string_view text)
{
    const CodePage& page = ansiPage();
    if (page.keepsAscii && isAscii(text)) {
        return widenAscii(text);
    }
    return page.isUtf8 ? fromUtf8(text) : decode(page, text);
}

bool fitsAnsiCodePage(std::wstring_view text)
{
    return (ansiPage().keepsAscii && isAscii(text)) || widen(narrow(text)) == text;
}

bool setAnsiCodePage(int codePage)
{
    const CodePage* const page = pageOf(codePage);
    if (page) {
        currentPage().store(page, std::memory_order_relaxed);
    }
    return page != nullptr;
}

int ansiCodePage()
{
    return ansiPage().number;
}

wchar_t toLower(wchar_t character)
{
    if (character >= L'A' && character <= L'Z') {
        return static_cast<wchar_t>(character + (L'a' - L'A'));
    }
    const bool isCharacter = static_cast<std::uint32_t>(character) <= 0x10FFFFu;
    return isCharacter && character >= 0x80 ? static_cast<wchar_t>(u_tolower(character)) : character;
}

std::wstring toLower(std::wstring_view text)
{
    std::wstring lower(text);
    for (wchar_t& character : lower) {
        character = toLower(character);
    }
    return lower;
}

int compareIgnoringCase(std::wstring_view a, std::wstring_view b)
{
    const std::size_t common = std::min(a.size(), b.size());
    for (std::size_t i = 0; i < common; ++i) {
        const auto lowerA = static_cast<std::uint32_t>(toLower(a[i]));
        const auto lowerB = static_cast<std::uint32_t>(toLower(b[i]));
        if (lowerA != lowerB) {
            return lowerA < lowerB ? -1 : 1;
        }
    }
    return compareNumbers(a.size(), b.size());
}

}  // namespace platform
