#include "raylume/platform/posix/NamePattern.h"

#include <algorithm>

#include "raylume/platform/Text.h"

namespace platform {

namespace {

// That of file systems.
constexpr std::size_t kLongestName = 255;

// Stands behind the last character of a name.
constexpr wchar_t kEnd = L'\0';

}  // namespace

NamePattern::Kind NamePattern::kindAt(std::wstring_view text, std::size_t at)
{
    const wchar_t next = at + 1 < text.size() ? text[at + 1] : kEnd;
    switch (text[at]) {
    case L'?':
        return Kind::kAnyOrNone;
    case L'*':
        return next == L'.' && at + 2 == text.size() ? Kind::kRunWithoutPoint : Kind::kAnyRun;
    case L'.':
        return next == L'*' || next == L'?' ? Kind::kPointOrEnd : Kind::kCharacter;
    default:
        return Kind::kCharacter;
    }
}

NamePattern::NamePattern(std::wstring_view text) : isUsable_(text.size() <= kLongestName)
{
    if (!isUsable_) {
        return;
    }
    text = text == L"*.*" ? L"*" : text;
    for (std::size_t i = 0; i < text.size(); ++i) {
        tokens_.push_back({kindAt(text, i), toLower(text[i])});
        if (tokens_.back().kind == Kind::kRunWithoutPoint) {
            break;  // The point behind it is no character of the name.
        }
    }
}

bool NamePattern::mayBeNothing(Kind kind, wchar_t next) const
{
    switch (kind) {
    case Kind::kAnyRun:
    case Kind::kRunWithoutPoint:
        return true;
    case Kind::kAnyOrNone:
        return next == kEnd || next == L'.';
    case Kind::kPointOrEnd:
        return next == kEnd;
    case Kind::kCharacter:
        break;
    }
    return false;
}

// State i: the tokens before i have matched what was read of the name.
void NamePattern::addReachable(States& states, wchar_t next) const
{
    for (std::size_t i = 0; i < tokens_.size(); ++i) {
        if (states[i] && mayBeNothing(tokens_[i].kind, next)) {
            states[i + 1] = true;
        }
    }
}

NamePattern::States NamePattern::after(const States& states, wchar_t character) const
{
    States result(states.size());
    for (std::size_t i = 0; i < tokens_.size(); ++i) {
        if (!states[i]) {
            continue;
        }
        switch (tokens_[i].kind) {
        case Kind::kAnyRun:
            result[i] = true;
            break;
        case Kind::kRunWithoutPoint:
            result[i] = character != L'.';
            break;
        case Kind::kAnyOrNone:
            result[i + 1] = result[i + 1] || character != L'.';
            break;
        case Kind::kPointOrEnd:
        case Kind::kCharacter:
            result[i + 1] = result[i + 1] || character == tokens_[i].character;
            break;
        }
    }
    return result;
}

bool NamePattern::matches(std::wstring_view name) const
{
    if (!isUsable_) {
        return false;
    }
    States states(tokens_.size() + 1);
    states[0] = true;
    for (const wchar_t character : name) {
        const wchar_t lower = toLower(character);
        addReachable(states, lower);
        states = after(states, lower);
        if (std::find(states.begin(), states.end(), true) == states.end()) {
            return false;
        }
    }
    addReachable(states, kEnd);
    return states.back();
}

std::size_t lastComponent(std::wstring_view path)
{
    const std::size_t separator = path.find_last_of(L"\\/");
    if (separator != std::wstring_view::npos) {
        return separator + 1;
    }
    return path.size() >= 2 && path[1] == L':' ? 2 : 0;
}

}  // namespace platform
