#include "reader/formats/ovdl/JsonTokens.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "reader/formats/ovdl/Refusal.h"

namespace ovdl::json {
namespace {

bool isBlank(char c)
{
    return c == ' ' || c == '\n' || c == '\t' || c == '\r';
}

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

bool isHighSurrogate(std::uint32_t value)
{
    return value >= 0xD800 && value <= 0xDBFF;
}

bool isLowSurrogate(std::uint32_t value)
{
    return value >= 0xDC00 && value <= 0xDFFF;
}

bool isContinuation(const char* at, unsigned char low, unsigned char high)
{
    return static_cast<unsigned char>(*at) >= low && static_cast<unsigned char>(*at) <= high;
}

// How many bytes the character at `at` takes; 0 where there is none. The table of well-formed byte
// sequences is in the Unicode Standard, section 3.9.
std::size_t utf8Length(const char* at, const char* end)
{
    const auto first = static_cast<unsigned char>(*at);
    const auto left = static_cast<std::size_t>(end - at);
    const auto rest = [at](std::size_t from, std::size_t count) {
        return std::all_of(at + from, at + count,
                           [](const char& c) { return isContinuation(&c, 0x80, 0xBF); });
    };
    if (first < 0x80)
        return 1;
    if (first >= 0xC2 && first <= 0xDF)
        return left >= 2 && rest(1, 2) ? 2 : 0;
    if (first >= 0xE0 && first <= 0xEF) {
        const unsigned char low = first == 0xE0 ? 0xA0 : 0x80;
        const unsigned char high = first == 0xED ? 0x9F : 0xBF;
        return left >= 3 && isContinuation(at + 1, low, high) && rest(2, 3) ? 3 : 0;
    }
    if (first >= 0xF0 && first <= 0xF4) {
        const unsigned char low = first == 0xF0 ? 0x90 : 0x80;
        const unsigned char high = first == 0xF4 ? 0x8F : 0xBF;
        return left >= 4 && isContinuation(at + 1, low, high) && rest(2, 4) ? 4 : 0;
    }
    return 0;
}

}  // namespace

void appendUtf8(std::string& target, std::uint32_t value)
{
    const auto tail = [value](unsigned shift) {
        return static_cast<char>(0x80 | ((value >> shift) & 0x3F));
    };
    if (value < 0x80) {
        target += static_cast<char>(value);
    } else if (value < 0x800) {
        target += {static_cast<char>(0xC0 | (value >> 6)), tail(0)};
    } else if (value < 0x10000) {
        target += {static_cast<char>(0xE0 | (value >> 12)), tail(6), tail(0)};
    } else {
        target += {static_cast<char>(0xF0 | (value >> 18)), tail(12), tail(6), tail(0)};
    }
}

std::string quoted(std::string_view text)
{
    constexpr std::size_t kLongest = 40;
    std::size_t length = std::min(text.size(), kLongest);
    // Not in the middle of a character.
    while (length < text.size() && length > 0 && (static_cast<unsigned char>(text[length]) & 0xC0) == 0x80)
        --length;
    std::string result =
        "\"" + std::string(text.substr(0, length)) + (length < text.size() ? "...\"" : "\"");
    std::replace_if(
        result.begin(), result.end(),
        [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; }, ' ');
    return result;
}

Tokens::Tokens(std::string_view text, std::function<void()> ask)
    : begin_(text.data()),
      at_(begin_),
      end_(begin_ + text.size()),
      token_(begin_),
      asked_(begin_),
      ask_(std::move(ask))
{
    if (text.substr(0, 3) == "\xEF\xBB\xBF")
        at_ += 3;
}

void Tokens::fail(const std::string& reason) const
{
    const auto line = 1 + std::count(begin_, token_, '\n');
    const char* start = token_;
    while (start > begin_ && start[-1] != '\n')
        --start;
    refuse("line " + std::to_string(line) + ", column " + std::to_string(token_ - start + 1) + ": " +
           reason);
}

void Tokens::failHere(const std::string& reason)
{
    token_ = at_;
    fail(at_ == end_ ? "the text ends too early" : reason);
}

void Tokens::skipBlanks()
{
    constexpr std::ptrdiff_t kAskEvery = 1 << 16;
    while (at_ != end_ && isBlank(*at_))
        ++at_;
    token_ = at_;
    if (at_ - asked_ < kAskEvery)
        return;
    asked_ = at_;
    if (ask_)
        ask_();
}

char Tokens::peek()
{
    skipBlanks();
    return at_ == end_ ? '\0' : *at_;
}

bool Tokens::take(char c)
{
    skipBlanks();
    if (at_ == end_ || *at_ != c)
        return false;
    ++at_;
    return true;
}

void Tokens::expect(char c)
{
    if (!take(c))
        failHere(std::string("'") + c + "' is missing");
}

void Tokens::digits()
{
    if (at_ == end_ || !isDigit(*at_))
        failHere("a digit is missing");
    while (at_ != end_ && isDigit(*at_))
        ++at_;
}

std::string_view Tokens::number()
{
    skipBlanks();
    const char* start = at_;
    const auto has = [this](char a, char b) { return at_ != end_ && (*at_ == a || *at_ == b); };
    if (has('-', '-'))
        ++at_;
    const bool beginsWithZero = has('0', '0');
    const char* whole = at_;
    digits();
    if (beginsWithZero && at_ - whole > 1)
        fail("a number begins with a zero too many");
    if (has('.', '.')) {
        ++at_;
        digits();
    }
    if (has('e', 'E')) {
        ++at_;
        if (has('+', '-'))
            ++at_;
        digits();
    }
    token_ = start;
    return {start, static_cast<std::size_t>(at_ - start)};
}

bool Tokens::boolean()
{
    skipBlanks();
    const std::string_view left(at_, static_cast<std::size_t>(end_ - at_));
    for (const std::string_view word : {"true", "false"})
        if (left.substr(0, word.size()) == word) {
            at_ += word.size();
            return word == "true";
        }
    failHere("true or false is missing");
}

void Tokens::string(std::string& target)
{
    target.clear();
    skipBlanks();
    const char* start = at_;
    if (at_ == end_ || *at_ != '"')
        failHere("a text is missing");
    ++at_;
    for (;;) {
        if (at_ == end_)
            failHere("");
        if (*at_ == '"')
            break;
        if (*at_ == '\\')
            escape(target);
        else
            rawCharacter(target);
    }
    ++at_;
    token_ = start;
}

void Tokens::rawCharacter(std::string& target)
{
    if (static_cast<unsigned char>(*at_) < 0x20)
        failHere("a control character in a text has to be escaped");
    const std::size_t length = utf8Length(at_, end_);
    if (length == 0)
        failHere("the text is not UTF-8");
    target.append(at_, length);
    at_ += length;
}

std::uint32_t Tokens::hexadecimal(std::uint32_t count)
{
    std::uint32_t value = 0;
    for (std::uint32_t i = 0; i < count; ++i, ++at_) {
        if (at_ == end_)
            failHere("");
        const char c = *at_;
        const char lower = static_cast<char>(c | 0x20);
        if (isDigit(c))
            value = value << 4 | static_cast<std::uint32_t>(c - '0');
        else if (lower >= 'a' && lower <= 'f')
            value = value << 4 | static_cast<std::uint32_t>(lower - 'a' + 10);
        else
            failHere("a hexadecimal digit is missing");
    }
    return value;
}

void Tokens::escape(std::string& target)
{
    constexpr std::string_view kLetters = "\"\\/bfnrt";
    constexpr std::string_view kMeanings = "\"\\/\b\f\n\r\t";
    const char* start = at_++;
    if (at_ == end_)
        failHere("");
    if (const std::size_t letter = kLetters.find(*at_); letter != std::string_view::npos) {
        target += kMeanings[letter];
        ++at_;
        return;
    }
    if (*at_ != 'u') {
        at_ = start;
        failHere("there is no such escape");
    }
    ++at_;
    std::uint32_t value = hexadecimal(4);
    if (isHighSurrogate(value) && end_ - at_ >= 6 && at_[0] == '\\' && at_[1] == 'u') {
        const char* behind = at_;
        at_ += 2;
        const std::uint32_t second = hexadecimal(4);
        if (isLowSurrogate(second))
            value = 0x10000 + ((value - 0xD800) << 10) + (second - 0xDC00);
        else
            at_ = behind;
    }
    appendUtf8(target, value);
}

void Tokens::key(std::string& target)
{
    if (peek() != '"')
        failHere("a key is missing");
    string(target);
    const char* start = token_;
    expect(':');
    token_ = start;
}

std::uint64_t Tokens::bits(std::uint32_t digits)
{
    skipBlanks();
    const char* start = at_;
    const std::string expected = "\"0x\" with " + std::to_string(digits) + " hexadecimal digits is missing";
    const std::string_view left(at_, static_cast<std::size_t>(end_ - at_));
    if (left.substr(0, 3) != "\"0x")
        failHere(expected);
    at_ += 3;
    std::uint64_t value = 0;
    for (std::uint32_t i = 0; i < digits; i += 4)
        value = value << 16 | hexadecimal(4);
    token_ = start;
    if (at_ == end_ || *at_ != '"')
        fail(expected);
    ++at_;
    return value;
}

void Tokens::end()
{
    if (peek() != '\0' || at_ != end_)
        failHere("there is something behind the end");
}

}  // namespace ovdl::json
