#include "reader/formats/ovdl/JsonLayout.h"

#include <cstdint>
#include <cstdio>

#include "reader/formats/ovdl/JsonTokens.h"

namespace ovdl::json {
namespace {

constexpr std::size_t kColumns = 100;
constexpr std::size_t kPiece = std::size_t{1} << 16;

std::uint32_t valueOf(wchar_t c)
{
    return static_cast<std::uint32_t>(c);
}

bool isSurrogate(std::uint32_t value, std::uint32_t from)
{
    return value >= from && value < from + 0x400;
}

bool isExpressible(std::wstring_view text)
{
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (valueOf(text[i]) > 0x10FFFF)
            return false;
        if (i > 0 && isSurrogate(valueOf(text[i - 1]), 0xD800) && isSurrogate(valueOf(text[i]), 0xDC00))
            return false;
    }
    return true;
}

void appendEscape(std::string& target, std::uint32_t value)
{
    char escape[8];
    std::snprintf(escape, sizeof(escape), "\\u%04x", static_cast<unsigned>(value & 0xFFFF));
    target += escape;
}

void appendCharacter(std::string& target, std::uint32_t value)
{
    switch (value) {
    case '"':
        target += "\\\"";
        return;
    case '\\':
        target += "\\\\";
        return;
    case '\n':
        target += "\\n";
        return;
    case '\t':
        target += "\\t";
        return;
    default:
        break;
    }
    const bool isControl = value < 0x20 || (value >= 0x7F && value < 0xA0);
    // Line and paragraph separators end a line for many editors; the mark is invisible.
    const bool isInvisible = value == 0x2028 || value == 0x2029 || value == 0xFEFF;
    if (isControl || isInvisible || (value >= 0xD800 && value <= 0xDFFF))
        appendEscape(target, value);
    else
        appendUtf8(target, value);
}

}  // namespace

bool appendQuoted(std::string& target, std::wstring_view text)
{
    if (!isExpressible(text))
        return false;
    target += '"';
    for (const wchar_t c : text)
        appendCharacter(target, valueOf(c));
    target += '"';
    return true;
}

Layout::Layout(TextOutput output) : output_(std::move(output))
{
}

void Layout::write(std::string_view text)
{
    text_ += text;
    column_ += text.size();
    if (text_.size() >= kPiece)
        flush();
}

void Layout::line(unsigned indent)
{
    write("\n");
    text_.append(indent, ' ');
    column_ = indent;
}

void Layout::element(std::string_view text, bool first, unsigned indent)
{
    if (!first)
        write(",");
    if (column_ + 1 + text.size() > kColumns)
        line(indent);
    else if (!first)
        write(" ");
    write(text);
}

void Layout::flush()
{
    if (!text_.empty())
        output_(text_);
    text_.clear();
}

}  // namespace ovdl::json
