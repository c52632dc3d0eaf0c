// Per-user settings: a tree of keys with typed values, in the shape of a registry.
//
// On this system they come from a text file in the form that a registry editor exports
// ("Windows Registry Editor Version 5.00"; sections [HKEY_CURRENT_USER\...]; "name"="text",
// "name"=dword:0000002a, "name"=hex(1):...), at RAYLUME_REGISTRY, else raylume/registry.reg in the
// user's configuration folder. The file is read by each openCurrentUser(), so that a changed
// setting takes effect on the next call; keys opened below share what was read. Key and value names
// compare without case.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "raylume/platform/Export.h"

namespace platform {

inline constexpr std::uint32_t kSettingText = 1;    // REG_SZ
inline constexpr std::uint32_t kSettingNumber = 4;  // REG_DWORD

/// What a query found. `bytes` is UTF-16 little endian for texts, with the terminator as stored.
struct SettingValue {
    bool found = false;  ///< The query succeeded: the value exists and fits the buffer.
    std::uint32_t type = 0;
    std::vector<std::uint8_t> bytes;
};

/// An open key. Closed by the destructor.
class PLATFORM_API SettingsKey {
public:
    /// Opens a key of the current user, e.g. L"Software". Null when there is none.
    static std::unique_ptr<SettingsKey> openCurrentUser(const std::wstring& path);

    SettingsKey(const SettingsKey&) = delete;
    SettingsKey& operator=(const SettingsKey&) = delete;
    virtual ~SettingsKey();

    /// Opens a key below this one ("a\b" goes two levels down). Null when there is none.
    virtual std::unique_ptr<SettingsKey> open(const std::wstring& path) const = 0;
    /// Looks a value up. A value of more than `bufferSize` bytes is a failed query.
    virtual SettingValue query(const std::wstring& name, std::size_t bufferSize) const = 0;

protected:
    SettingsKey();
};

/// The text of a kSettingText value: up to its first terminator.
PLATFORM_API std::wstring settingText(const SettingValue& value);

}  // namespace platform
