#include "raylume/platform/posix/RegistryFile.h"

#include <algorithm>
#include <charconv>
#include <utility>

#include "raylume/platform/Text.h"
#include "raylume/platform/UserSettings.h"
#include "raylume/platform/posix/Utf.h"

namespace platform {

namespace {

constexpr std::string_view kBlanks = " \t\r";
constexpr std::uint32_t kSettingBytes = 3;
constexpr std::uint32_t kSettingExpandedText = 2;
constexpr std::uint32_t kSettingTexts = 7;

std::string_view trimmed(std::string_view text)
{
    const std::size_t first = text.find_first_not_of(kBlanks);
    if (first == std::string_view::npos) {
        return {};
    }
    return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

bool isBlankOrComment(std::string_view text)
{
    text = trimmed(text);
    return text.empty() || text.front() == ';';
}

bool startsWith(std::string_view text, std::string_view start)
{
    return text.substr(0, start.size()) == start;
}

bool startsWithIgnoringCase(std::string_view text, std::string_view lowerStart)
{
    return compareIgnoringCase(fromUtf8(text.substr(0, lowerStart.size())), fromUtf8(lowerStart)) == 0;
}

// Takes one line off the text.
std::string_view takeLine(std::string_view& text)
{
    const std::size_t end = std::min(text.find('\n'), text.size());
    const std::string_view line = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    return line;
}

bool goesOn(std::string_view line)
{
    line = trimmed(line);
    return !line.empty() && line.back() == '\\';
}

bool startsAnotherItem(std::string_view text)
{
    text = trimmed(text.substr(0, text.find('\n')));
    return text.empty() || std::string_view("[\"@").find(text.front()) != std::string_view::npos;
}

// Bytes may spread over lines; the pieces lie one after another, so a longer view holds them all.
// A break that no further bytes follow costs nothing but the value that it breaks.
std::string_view takeContinuations(std::string_view line, std::string_view& text)
{
    std::string_view last = line;
    while (goesOn(last) && !startsAnotherItem(text)) {
        last = takeLine(text);
    }
    return std::string_view(line.data(), static_cast<std::size_t>(last.data() + last.size() - line.data()));
}

// Reads a quoted text at the start and takes it off. An escape of any other kind stands for itself.
std::optional<std::string> takeQuoted(std::string_view& text)
{
    if (text.empty() || text.front() != '"') {
        return std::nullopt;
    }
    std::string content;
    for (std::size_t i = 1; i < text.size(); ++i) {
        const bool isEscape =
            text[i] == '\\' && i + 1 < text.size() && (text[i + 1] == '\\' || text[i + 1] == '"');
        if (text[i] == '"') {
            text.remove_prefix(i + 1);
            return content;
        }
        i += isEscape ? 1 : 0;
        content.push_back(text[i]);
    }
    return std::nullopt;
}

std::optional<std::string> takeValueName(std::string_view& text)
{
    if (!text.empty() && text.front() == '@') {
        text.remove_prefix(1);
        return std::string();
    }
    return takeQuoted(text);
}

std::vector<std::uint8_t> utf16Bytes(std::wstring_view text)
{
    std::u16string units;
    for (const wchar_t character : text) {
        appendUtf16(units, scalarValue(character));
    }
    std::vector<std::uint8_t> bytes;
    bytes.reserve(units.size() * 2);
    for (const char16_t unit : units) {
        bytes.push_back(static_cast<std::uint8_t>(unit & 0xFF));
        bytes.push_back(static_cast<std::uint8_t>(unit >> 8));
    }
    return bytes;
}

std::optional<std::uint32_t> hexadecimal(std::string_view digits, std::size_t mostDigits)
{
    std::uint32_t value = 0;
    const char* const end = digits.data() + digits.size();
    const auto [stop, error] = std::from_chars(digits.data(), end, value, 16);
    const bool isNumber = error == std::errc() && stop == end && digits.size() <= mostDigits;
    return isNumber ? std::optional(value) : std::nullopt;
}

std::optional<RegistryData> parseText(std::string_view data)
{
    const auto text = takeQuoted(data);
    if (!text || !isBlankOrComment(data)) {
        return std::nullopt;
    }
    return RegistryData{kSettingText, utf16Bytes(fromUtf8(*text) + L'\0')};
}

std::optional<RegistryData> parseNumber(std::string_view digits)
{
    const auto value = hexadecimal(trimmed(digits.substr(0, digits.find(';'))), 8);
    if (!value) {
        return std::nullopt;
    }
    RegistryData number{kSettingNumber, {}};
    for (int shift = 0; shift < 32; shift += 8) {
        number.bytes.push_back(static_cast<std::uint8_t>(*value >> shift));
    }
    return number;
}

// The digits and commas of one line, without comment, blanks and the mark that goes on.
std::string bytesOfLine(std::string_view line)
{
    line = trimmed(line.substr(0, line.find(';')));
    line.remove_suffix(goesOn(line) ? 1 : 0);
    std::string bytes(line);
    bytes.erase(std::remove_if(bytes.begin(), bytes.end(),
                               [](char c) { return kBlanks.find(c) != std::string_view::npos; }),
                bytes.end());
    return bytes;
}

std::string joinedBytes(std::string_view text)
{
    std::string joined;
    while (!text.empty()) {
        joined += bytesOfLine(takeLine(text));
    }
    return joined;
}

std::optional<std::vector<std::uint8_t>> parseBytes(std::string_view text)
{
    const std::string joined = joinedBytes(text);
    std::string_view rest = joined;
    std::vector<std::uint8_t> bytes;
    bytes.reserve(rest.size() / 2);
    while (!rest.empty()) {
        const std::size_t end = std::min(rest.find(','), rest.size());
        const auto value = hexadecimal(rest.substr(0, end), 2);
        if (!value) {
            return std::nullopt;
        }
        bytes.push_back(static_cast<std::uint8_t>(*value));
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    return bytes;
}

bool holdsText(std::uint32_t type)
{
    return type == kSettingText || type == kSettingExpandedText || type == kSettingTexts;
}

// What stands behind "hex": a type in brackets or nothing, a colon, bytes.
std::optional<RegistryData> parseTypedBytes(std::string_view data, bool oldFile)
{
    const std::size_t colon = data.find(':');
    if (colon == std::string_view::npos) {
        return std::nullopt;
    }
    const std::string_view brackets = data.substr(0, colon);
    std::optional<std::uint32_t> type = kSettingBytes;
    if (!brackets.empty()) {
        const bool areBrackets = brackets.size() > 2 && brackets.front() == '(' && brackets.back() == ')';
        type = areBrackets ? hexadecimal(brackets.substr(1, brackets.size() - 2), 8) : std::nullopt;
    }
    auto bytes = parseBytes(data.substr(colon + 1));
    if (!type || !bytes) {
        return std::nullopt;
    }
    if (oldFile && holdsText(*type)) {
        bytes = utf16Bytes(widen(std::string(bytes->begin(), bytes->end())));
    }
    return RegistryData{*type, std::move(*bytes)};
}

bool isCurrentUser(std::wstring_view lowerRoot)
{
    return lowerRoot == L"hkey_current_user" || lowerRoot == L"hkcu";
}

struct KeyLine {
    std::optional<std::wstring> path;
    bool deleted = false;
};

KeyLine parseKeyLine(std::string_view line)
{
    const std::size_t end = line.rfind(']');
    if (end == std::string_view::npos || !isBlankOrComment(line.substr(end + 1))) {
        return {};
    }
    line = line.substr(1, end - 1);
    const bool deleted = startsWith(line, "-");
    const std::wstring path = normalizedKeyPath(fromUtf8(line.substr(deleted ? 1 : 0)));
    const std::size_t rootEnd = std::min(path.find(L'\\'), path.size());
    if (!isCurrentUser(std::wstring_view(path).substr(0, rootEnd))) {
        return {};
    }
    return {path.substr(std::min(rootEnd + 1, path.size())), deleted};
}

void readKeyLine(std::string_view line, const RegistryFileEvents& events)
{
    const KeyLine key = parseKeyLine(line);
    events.onKey(key.path, key.deleted);
}

void readValueLine(std::string_view line, std::string_view& text, const RegistryFileEvents& events)
{
    const auto name = takeValueName(line);
    line = trimmed(line);
    if (!name || !startsWith(line, "=")) {
        return;
    }
    std::string_view data = trimmed(line.substr(1));
    if (startsWithIgnoringCase(data, "hex")) {
        data = takeContinuations(data, text);
    }
    events.onValue(toLower(fromUtf8(*name)), data);
}

std::string utf8FromUtf16(std::string_view bytes)
{
    std::u16string units;
    units.reserve(bytes.size() / 2);
    for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
        const auto low = static_cast<unsigned char>(bytes[i]);
        const auto high = static_cast<unsigned char>(bytes[i + 1]);
        units.push_back(static_cast<char16_t>(low | high << 8));
    }
    return toUtf8(fromUtf16(units));
}

}  // namespace

std::string registryFileText(std::string bytes)
{
    if (startsWith(bytes, "\xFF\xFE")) {
        return utf8FromUtf16(std::string_view(bytes).substr(2));
    }
    bytes.erase(0, startsWith(bytes, "\xEF\xBB\xBF") ? 3 : 0);
    return bytes;
}

bool isOldRegistryFile(std::string_view text)
{
    std::string_view line;
    while (line.empty() && !text.empty()) {
        line = trimmed(takeLine(text));
    }
    return line == "REGEDIT4";
}

void readRegistryFile(std::string_view text, const RegistryFileEvents& events)
{
    while (!text.empty()) {
        const std::string_view line = trimmed(takeLine(text));
        if (startsWith(line, "[")) {
            readKeyLine(line, events);
        } else if (startsWith(line, "\"") || startsWith(line, "@")) {
            readValueLine(line, text, events);
        }
    }
}

bool isDeletion(std::string_view data)
{
    return startsWith(data, "-") && isBlankOrComment(data.substr(1));
}

std::optional<RegistryData> parseRegistryData(std::string_view data, bool oldFile)
{
    if (startsWith(data, "\"")) {
        return parseText(data);
    }
    if (startsWithIgnoringCase(data, "dword:")) {
        return parseNumber(data.substr(6));
    }
    if (startsWithIgnoringCase(data, "hex")) {
        return parseTypedBytes(data.substr(3), oldFile);
    }
    return std::nullopt;
}

std::wstring normalizedKeyPath(std::wstring_view path)
{
    std::wstring normalized;
    for (const wchar_t character : path) {
        const bool isExtraSeparator =
            character == L'\\' && (normalized.empty() || normalized.back() == L'\\');
        if (!isExtraSeparator) {
            normalized.push_back(toLower(character));
        }
    }
    if (!normalized.empty() && normalized.back() == L'\\') {
        normalized.pop_back();
    }
    return normalized;
}

}  // namespace platform
