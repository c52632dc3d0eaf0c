#include "reader/formats/gltf/Uris.h"

#include <algorithm>
#include <array>

#include "raylume/platform/Text.h"

namespace ovdl::gltf {
namespace {

constexpr std::string_view kDataScheme = "data:";

int hexDigit(char c)
{
    if (c >= '0' && c <= '9')
        return c - '0';
    const char lower = static_cast<char>(c | 0x20);
    return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

std::optional<std::string> percentDecoded(std::string_view text)
{
    std::string result;
    result.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '%') {
            result += text[i];
            continue;
        }
        const int high = i + 2 < text.size() ? hexDigit(text[i + 1]) : -1;
        const int low = high >= 0 ? hexDigit(text[i + 2]) : -1;
        if (low < 0)
            return std::nullopt;
        result += static_cast<char>(high * 16 + low);
        i += 2;
    }
    return result;
}

bool staysBelow(std::string_view path)
{
    if (path.empty() || path.front() == '/' || path.back() == '/')
        return false;
    if (path.find_first_of(std::string_view("\\:\0", 3)) != std::string_view::npos)
        return false;
    for (std::size_t begin = 0; begin <= path.size();) {
        const std::size_t end = std::min(path.find('/', begin), path.size());
        if (path.substr(begin, end - begin) == "..")
            return false;
        begin = end + 1;
    }
    return true;
}

constexpr std::array<signed char, 256> base64Values()
{
    std::array<signed char, 256> values{};
    values.fill(-1);
    constexpr std::string_view kDigits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    for (std::size_t i = 0; i < kDigits.size(); ++i)
        values[static_cast<unsigned char>(kDigits[i])] = static_cast<signed char>(i);
    return values;
}

std::optional<std::vector<unsigned char>> base64Decoded(std::string_view text)
{
    static constexpr auto kValues = base64Values();
    while (!text.empty() && text.back() == '=')
        text.remove_suffix(1);
    if (text.size() % 4 == 1)
        return std::nullopt;
    std::vector<unsigned char> result;
    result.reserve(text.size() / 4 * 3 + 3);
    unsigned bits = 0;
    int held = 0;
    for (const char c : text) {
        const int value = kValues[static_cast<unsigned char>(c)];
        if (value < 0)
            return std::nullopt;
        bits = bits << 6 | static_cast<unsigned>(value);
        held += 6;
        if (held >= 8) {
            held -= 8;
            result.push_back(static_cast<unsigned char>(bits >> held));
        }
    }
    return result;
}

}  // namespace

std::optional<std::wstring> relativePath(std::string_view uri)
{
    // The limits are for what the path means, so they are held against the decoded text.
    const std::optional<std::string> path = percentDecoded(uri);
    if (!path || !staysBelow(*path))
        return std::nullopt;
    std::wstring wide = platform::fromUtf8(*path);
    if (wide.find(L'\xFFFD') != std::wstring::npos && path->find("\xEF\xBF\xBD") == std::string::npos)
        return std::nullopt;
    return wide;
}

bool isDataUri(std::string_view uri)
{
    return uri.substr(0, kDataScheme.size()) == kDataScheme;
}

std::optional<std::vector<unsigned char>> dataUriBytes(std::string_view uri)
{
    const std::size_t comma = uri.find(',');
    if (!isDataUri(uri) || comma == std::string_view::npos)
        return std::nullopt;
    const std::string_view kind = uri.substr(0, comma);
    const std::string_view body = uri.substr(comma + 1);
    constexpr std::string_view kBase64 = ";base64";
    const bool isBase64 =
        kind.size() >= kBase64.size() && kind.substr(kind.size() - kBase64.size()) == kBase64;
    if (isBase64 && body.find('%') == std::string_view::npos)
        return base64Decoded(body);
    const std::optional<std::string> decoded = percentDecoded(body);
    if (!decoded)
        return std::nullopt;
    if (isBase64)
        return base64Decoded(*decoded);
    return std::vector<unsigned char>(decoded->begin(), decoded->end());
}

}  // namespace ovdl::gltf
