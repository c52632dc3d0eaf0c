// The host's per-user settings.
#pragma once

#include <cstdint>
#include <string>

namespace platform {
class SettingsKey;
}

/// How a value is read: 0 a 32-bit number, 2 a text, any other (1 is the usual one) a real number
/// stored as text.
using RegistryValueKind = int;
inline constexpr RegistryValueKind kRegistryNumber = 0;
inline constexpr RegistryValueKind kRegistryReal = 1;
inline constexpr RegistryValueKind kRegistryText = 2;

/// Reads a value of the host program's section (empty: directly under the host's own key) into the
/// destination of its kind. 1 when a value was read; 0, with the destinations untouched but for
/// what the text rule says, otherwise. A non-zero `skip` gives 0 at once.
int readHostRegistryValue(const std::wstring& section, const std::wstring& name, RegistryValueKind kind,
                          std::wstring& text, std::int32_t& number, double& real, int skip);

/// The same for an open key. A text that does not fit 2048 bytes may lie in numbered pieces, name
/// followed by "0+", "1+" and so on; these are appended to `text`.
int readRegistryValue(const platform::SettingsKey& key, const std::wstring& name, RegistryValueKind kind,
                      std::wstring& text, std::int32_t& number, double& real);
