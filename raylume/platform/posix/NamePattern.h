// Names with "*" and "?" in the manner of the system that the texts of documents come from.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace platform {

/// A pattern of names, letter case aside:
///   "*"   any run of characters; "*.*" is any name, a final "*." one without a point from there on
///   "?"   one character but "."; at a "." and at the end of the name also none
///   "."   in front of "*" or "?", also the end of the name
/// A pattern longer than names can be matches nothing.
class NamePattern {
public:
    explicit NamePattern(std::wstring_view text);

    /// Takes time by the product of the lengths at most, whatever the pattern.
    bool matches(std::wstring_view name) const;

private:
    enum class Kind : unsigned char { kCharacter, kAnyRun, kRunWithoutPoint, kAnyOrNone, kPointOrEnd };
    struct Token {
        Kind kind;
        wchar_t character;
    };
    using States = std::vector<bool>;

    static Kind kindAt(std::wstring_view text, std::size_t at);
    bool mayBeNothing(Kind kind, wchar_t next) const;
    void addReachable(States& states, wchar_t next) const;
    States after(const States& states, wchar_t character) const;

    std::vector<Token> tokens_;
    bool isUsable_ = false;
};

/// Where the last component of a path begins, of which alone a pattern is one: behind the last "\\" or "/",
/// and that of "c:name" behind the drive.
std::size_t lastComponent(std::wstring_view path);

}  // namespace platform
