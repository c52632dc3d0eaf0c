#include <cstdint>
#include <utility>

#include "raylume/platform/Text.h"
#include "raylume/platform/UserSettings.h"
#include "tests/memory_platform/MemoryPlatform.h"

namespace memory_platform {

namespace {

void appendUnit(std::vector<std::uint8_t>& bytes, wchar_t character)
{
    bytes.push_back(static_cast<std::uint8_t>(character & 0xFF));
    bytes.push_back(static_cast<std::uint8_t>(character >> 8 & 0xFF));
}

}  // namespace

void Machine::addKey(const std::wstring& path)
{
    const std::wstring tidy = tidyPath(path);
    for (std::size_t end = tidy.find(L'\\'); end != std::wstring::npos; end = tidy.find(L'\\', end + 1)) {
        keys[tidy.substr(0, end)];
    }
    keys[tidy];
}

void Machine::addText(const std::wstring& key, const std::wstring& name, const std::wstring& text)
{
    addKey(key);
    platform::SettingValue value{true, platform::kSettingText, {}};
    for (const wchar_t character : text + L'\0') {
        appendUnit(value.bytes, character);
    }
    keys[tidyPath(key)][platform::toLower(name)] = std::move(value);
}

void Machine::addNumber(const std::wstring& key, const std::wstring& name, std::uint32_t number)
{
    addKey(key);
    platform::SettingValue value{true, platform::kSettingNumber, {}};
    appendUnit(value.bytes, static_cast<wchar_t>(number & 0xFFFF));
    appendUnit(value.bytes, static_cast<wchar_t>(number >> 16));
    keys[tidyPath(key)][platform::toLower(name)] = std::move(value);
}

}  // namespace memory_platform

namespace platform {

namespace {

using memory_platform::machine;
using memory_platform::tidyPath;

class MemoryKey final : public SettingsKey {
public:
    explicit MemoryKey(std::wstring path) : path_(std::move(path)) { ++machine().openKeys; }
    ~MemoryKey() override { --machine().openKeys; }

    static std::unique_ptr<SettingsKey> openAt(const std::wstring& path)
    {
        machine().keyOpens.push_back(path);
        const std::wstring tidy = tidyPath(path);
        return machine().keys.count(tidy) ? std::make_unique<MemoryKey>(tidy) : nullptr;
    }

    std::unique_ptr<SettingsKey> open(const std::wstring& path) const override
    {
        return openAt(path_ + L"\\" + path);
    }

    SettingValue query(const std::wstring& name, std::size_t bufferSize) const override
    {
        machine().queries.push_back(name);
        machine().queryBuffers.push_back(bufferSize);
        const auto& values = machine().keys[path_];
        const auto found = values.find(toLower(name));
        const bool fits = found != values.end() && found->second.bytes.size() <= bufferSize;
        return fits ? found->second : SettingValue{};
    }

private:
    std::wstring path_;
};

}  // namespace

SettingsKey::SettingsKey() = default;
SettingsKey::~SettingsKey() = default;

std::unique_ptr<SettingsKey> SettingsKey::openCurrentUser(const std::wstring& path)
{
    return MemoryKey::openAt(path);
}

}  // namespace platform
