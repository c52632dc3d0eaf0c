// Text: conversion through the ANSI code page, and comparison without case.
//
// wchar_t holds code points here. The ANSI code page is a setting of the process: UTF-8 at first,
// RAYLUME_ANSI_CODEPAGE ("1252", "932", ...) if that is set, or what setAnsiCodePage() says.
#pragma once

#include <string>
#include <string_view>

#include "raylume/platform/Export.h"

namespace platform {

/// Wide text to the ANSI code page. Never fails: a character that the code page lacks becomes one
/// "?" for each UTF-16 unit it has (no best fit). Zero characters inside the text are kept.
PLATFORM_API std::string narrow(std::wstring_view text);

/// Text in the ANSI code page to wide text. Never fails: invalid bytes become U+FFFD.
PLATFORM_API std::wstring widen(std::string_view text);

/// True when every character of `text` has a form of its own in the ANSI code page, so that
/// narrow() loses nothing.
PLATFORM_API bool fitsAnsiCodePage(std::wstring_view text);

/// UTF-8, whatever the ANSI code page: what the file system and the tool speak.
PLATFORM_API std::string toUtf8(std::wstring_view text);
PLATFORM_API std::wstring fromUtf8(std::string_view text);

/// Sets the ANSI code page by its number (65001 is UTF-8). False, and nothing changed, when this
/// machine has no converter for it. Not to be called while another thread converts.
PLATFORM_API bool setAnsiCodePage(int codePage);
PLATFORM_API int ansiCodePage();

/// Unicode's simple one-to-one lower-casing: independent of the process locale, never by Turkish
/// rules, and never changing the length.
PLATFORM_API wchar_t toLower(wchar_t character);
PLATFORM_API std::wstring toLower(std::wstring_view text);

/// Negative, zero or positive, by lower-cased code points; a shorter prefix comes first.
PLATFORM_API int compareIgnoringCase(std::wstring_view a, std::wstring_view b);

}  // namespace platform
