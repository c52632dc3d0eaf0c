// Paths of documents as texts: taken apart without asking the file system.
#pragma once

#include <string>

/// What a path is put together from: drive + folder + name + extension give the path back.
struct PathParts {
    std::wstring drive;      ///< "c:", or any other character before a ":" in second place.
    std::wstring folder;     ///< Up to the last "\" or "/", with it; empty without one.
    std::wstring name;       ///< Up to the last ".".
    std::wstring extension;  ///< From that "." on, with it.
};

/// Takes a path apart. Never fails; a part that the path lacks is empty. A text ends at its first zero.
PathParts splitPath(const std::wstring& path);

/// Drive and folder of a path, with the separator at the end: where its neighbours lie. So "c:\a\b" gives
/// "c:\a\", and "c:\a\" itself.
std::wstring driveAndFolder(const std::wstring& path);

/// What follows the last "\", if that is not the first character; the text itself otherwise ("\b" stays).
std::wstring lastPathComponent(const std::wstring& path);

/// Without the white space at its end, whatever the locale.
std::wstring withoutTrailingSpace(std::wstring text);
/// Without the white space at both ends.
std::wstring withoutOuterSpace(std::wstring text);
