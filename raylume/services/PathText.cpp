#include "raylume/services/PathText.h"

#include <utility>

namespace {

constexpr std::size_t kNowhere = std::wstring::npos;

// All that Unicode calls white space.
constexpr const wchar_t* kWhiteSpace =
    L" \t\n\v\f\r\u0085\u00A0\u1680\u2000\u2001\u2002\u2003\u2004\u2005\u2006\u2007\u2008\u2009\u200A"
    L"\u2028\u2029\u202F\u205F\u3000";

}  // namespace

PathParts splitPath(const std::wstring& path)
{
    const std::wstring text = path.substr(0, path.find(L'\0'));
    PathParts parts;
    const std::size_t drive = text.size() >= 2 && text[1] == L':' ? 2 : 0;
    const std::size_t separator = text.find_last_of(L"\\/");
    const std::size_t folder = separator == kNowhere || separator < drive ? drive : separator + 1;
    const std::size_t point = text.rfind(L'.');
    const std::size_t name = point == kNowhere || point < folder ? text.size() : point;
    parts.drive = text.substr(0, drive);
    parts.folder = text.substr(drive, folder - drive);
    parts.name = text.substr(folder, name - folder);
    parts.extension = text.substr(name);
    return parts;
}

std::wstring driveAndFolder(const std::wstring& path)
{
    const PathParts parts = splitPath(path);
    return parts.drive + parts.folder;
}

std::wstring lastPathComponent(const std::wstring& path)
{
    const std::size_t separator = path.rfind(L'\\');
    return separator == kNowhere || separator == 0 ? path : path.substr(separator + 1);
}

std::wstring withoutTrailingSpace(std::wstring text)
{
    const std::size_t last = text.find_last_not_of(kWhiteSpace);
    text.resize(last == kNowhere ? 0 : last + 1);
    return text;
}

std::wstring withoutOuterSpace(std::wstring text)
{
    text = withoutTrailingSpace(std::move(text));
    return text.erase(0, text.find_first_not_of(kWhiteSpace));
}
