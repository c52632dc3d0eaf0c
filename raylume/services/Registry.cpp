#include "raylume/services/Registry.h"

#include <memory>

#include "raylume/platform/NumberText.h"
#include "raylume/platform/UserSettings.h"

namespace {

using platform::SettingsKey;
using platform::SettingValue;

constexpr std::size_t kNumberBytes = 4;
constexpr std::size_t kTextBytes = 0x800;
constexpr std::size_t kRealBytes = 0x100;

// Pinned to this release, whichever one of the host is running.
constexpr const wchar_t* kHostKey = L"Orvane\\Orvane 2013";

bool isText(const SettingValue& value)
{
    return value.found && value.type == platform::kSettingText;
}

int readNumber(const SettingsKey& key, const std::wstring& name, std::int32_t& number)
{
    const SettingValue value = key.query(name, kNumberBytes);
    if (!value.found || value.type != platform::kSettingNumber) {
        return 0;
    }
    std::uint32_t bits = 0;
    for (std::size_t i = value.bytes.size(); i-- > 0;) {
        bits = bits << 8 | value.bytes[i];
    }
    number = static_cast<std::int32_t>(bits);
    return 1;
}

// Pieces are added to what the destination held, where a value in one piece takes its place.
int readTextPieces(const SettingsKey& key, const std::wstring& name, std::wstring& text)
{
    int count = 0;
    for (;;) {
        const SettingValue piece = key.query(name + std::to_wstring(count) + L"+", kTextBytes);
        if (!isText(piece)) {
            return count > 0 ? 1 : 0;
        }
        text += platform::settingText(piece);
        ++count;
    }
}

int readText(const SettingsKey& key, const std::wstring& name, std::wstring& text)
{
    const SettingValue value = key.query(name, kTextBytes);
    if (!value.found) {
        return readTextPieces(key, name, text);
    }
    // A value of another type was found all the same, so no pieces are looked for.
    if (!isText(value)) {
        return 0;
    }
    text = platform::settingText(value);
    return 1;
}

// 1 also for a text that is no number: the reading counts, not the scan.
int readReal(const SettingsKey& key, const std::wstring& name, double& real)
{
    const SettingValue value = key.query(name, kRealBytes);
    if (!isText(value)) {
        return 0;
    }
    platform::scanReal(platform::settingText(value), real);
    return 1;
}

std::unique_ptr<SettingsKey> openHostKey(const std::wstring& section)
{
    const auto software = SettingsKey::openCurrentUser(L"Software");
    auto host = software ? software->open(kHostKey) : nullptr;
    return host && !section.empty() ? host->open(section) : std::move(host);
}

}  // namespace

int readHostRegistryValue(const std::wstring& section, const std::wstring& name, RegistryValueKind kind,
                          std::wstring& text, std::int32_t& number, double& real, int skip)
{
    if (skip != 0) {
        return 0;
    }
    const auto key = openHostKey(section);
    return key ? readRegistryValue(*key, name, kind, text, number, real) : 0;
}

int readRegistryValue(const SettingsKey& key, const std::wstring& name, RegistryValueKind kind,
                      std::wstring& text, std::int32_t& number, double& real)
{
    switch (kind) {
    case kRegistryNumber:
        return readNumber(key, name, number);
    case kRegistryText:
        return readText(key, name, text);
    default:
        return readReal(key, name, real);
    }
}
