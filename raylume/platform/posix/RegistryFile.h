// The text file that a registry editor exports, read line by line.
//
//   Windows Registry Editor Version 5.00      or REGEDIT4; a line of no other form is passed over
//   ; comment
//   [HKEY_CURRENT_USER\Software\Orvane]       a key, and the keys above it
//   [-HKEY_CURRENT_USER\Software\Orvane]      the key and all below it are gone
//   "name"="text"                             \\ and \" stand for \ and "
//   @="text"                                  the value without a name
//   "name"=dword:0000002a
//   "name"=hex:01,02,\                        bytes of type 3; "\" at the end: the next line goes on
//     03,04
//   "name"=hex(1):61,00,00,00                 bytes of that type; REGEDIT4 has 8-bit text in them
//   "name"=-                                  the value is gone
//
// The file is UTF-8, with or without a mark, or UTF-16 little endian with one. A line that is broken
// is as if it were not there; below a broken key line values belong to no key.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace platform {

/// One value as it stands in the file: its type and its bytes.
struct RegistryData {
    std::uint32_t type = 0;
    std::vector<std::uint8_t> bytes;
};

/// What reading tells, in the order of the file.
struct RegistryFileEvents {
    /// A key line; `deleted` for "[-...]". The path has no root, no empty component and no capitals.
    /// Nothing when the lines that follow belong to no key of the current user.
    std::function<void(const std::optional<std::wstring>& path, bool deleted)> onKey;
    /// A value line: its name without capitals, and the text of its data, which parseRegistryData()
    /// reads; it lies in the text of the file.
    std::function<void(const std::wstring& name, std::string_view data)> onValue;
};

/// The bytes of a file as UTF-8 without a mark.
std::string registryFileText(std::string bytes);

/// True when 8-bit text stands in hex(1), hex(2) and hex(7).
bool isOldRegistryFile(std::string_view text);

void readRegistryFile(std::string_view text, const RegistryFileEvents& events);

/// True for the mark of a value that is gone.
bool isDeletion(std::string_view data);

/// Nothing when the data is broken.
std::optional<RegistryData> parseRegistryData(std::string_view data, bool oldFile);

/// A path of keys without empty components and without capitals.
std::wstring normalizedKeyPath(std::wstring_view path);

}  // namespace platform
