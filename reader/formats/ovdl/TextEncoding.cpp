#include "reader/formats/ovdl/TextEncoding.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <iterator>

#include "reader/formats/ovdl/Refusal.h"

namespace ovdl {
namespace {

constexpr std::size_t kLongest = 7;

// How many bytes a value takes: each one behind the first carries 6 bits.
std::size_t lengthOf(std::uint32_t value)
{
    constexpr std::uint32_t kEnds[] = {0x80, 0x800, 0x10000, 0x200000, 0x4000000, 0x80000000};
    return 1 +
           static_cast<std::size_t>(std::upper_bound(std::begin(kEnds), std::end(kEnds), value) - kEnds);
}

// The bits above those of the value: as many ones as there are bytes, then a zero; only the zero for one
// byte.
std::uint32_t leadOf(std::size_t length)
{
    return length == 1 ? 0u : 0xFF00u >> length & 0xFFu;
}

void append(std::string& bytes, std::uint32_t value)
{
    const std::size_t length = lengthOf(value);
    char buffer[kLongest];
    for (std::size_t i = length; --i > 0; value >>= 6)
        buffer[i] = static_cast<char>(0x80u | (value & 0x3Fu));
    buffer[0] = static_cast<char>(leadOf(length) | value);
    bytes.append(buffer, length);
}

bool isAscii(wchar_t character)
{
    return static_cast<std::uint32_t>(character) < 0x80u;
}

// Eight at a time: names are plain mostly, and an assembly has many.
std::size_t asciiLength(std::string_view bytes)
{
    std::size_t at = 0;
    for (; at + 8 <= bytes.size(); at += 8) {
        std::uint64_t eight;
        std::memcpy(&eight, bytes.data() + at, 8);
        if ((eight & 0x8080808080808080u) != 0)
            break;
    }
    while (at < bytes.size() && static_cast<unsigned char>(bytes[at]) < 0x80u)
        ++at;
    return at;
}

[[noreturn]] void refuseBytes()
{
    refuse("a text of the document is not encoded as texts are");
}

// The number of ones at the top; 0 for a byte that begins nothing.
std::size_t lengthFrom(std::uint32_t first)
{
    for (std::size_t length = 2; length <= kLongest; ++length)
        if (first >> (7 - length) == leadOf(length) >> (7 - length))
            return length;
    return 0;
}

std::uint32_t decodeLong(std::string_view bytes, std::size_t& at)
{
    const std::uint32_t first = static_cast<unsigned char>(bytes[at]);
    const std::size_t length = lengthFrom(first);
    if (length == 0 || length > bytes.size() - at)
        refuseBytes();
    std::uint64_t value = first & ~leadOf(length);
    for (std::size_t i = 1; i < length; ++i) {
        const auto next = static_cast<unsigned char>(bytes[at + i]);
        if ((next & 0xC0u) != 0x80u)
            refuseBytes();
        value = value << 6 | (next & 0x3Fu);
    }
    if (value > 0xFFFFFFFFu || lengthOf(static_cast<std::uint32_t>(value)) != length)
        refuseBytes();
    at += length;
    return static_cast<std::uint32_t>(value);
}

}  // namespace

std::string encodeText(std::wstring_view text)
{
    const auto plain =
        static_cast<std::size_t>(std::find_if_not(text.begin(), text.end(), isAscii) - text.begin());
    std::string bytes(text.size(), '\0');
    std::transform(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(plain), bytes.begin(),
                   [](wchar_t character) { return static_cast<char>(character); });
    bytes.resize(plain);
    for (const wchar_t character : text.substr(plain))
        append(bytes, static_cast<std::uint32_t>(character));
    return bytes;
}

std::wstring decodeText(std::string_view bytes)
{
    std::size_t at = asciiLength(bytes);
    std::wstring text(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(at));
    while (at < bytes.size()) {
        const auto byte = static_cast<unsigned char>(bytes[at]);
        text += static_cast<wchar_t>(byte < 0x80u ? (++at, byte) : decodeLong(bytes, at));
    }
    return text;
}

}  // namespace ovdl
