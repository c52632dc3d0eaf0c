#include "raylume/platform/UserSettings.h"

#include <map>
#include <optional>
#include <string_view>
#include <utility>

#include "raylume/platform/Environment.h"
#include "raylume/platform/Files.h"
#include "raylume/platform/Text.h"
#include "raylume/platform/posix/AbsoluteFolder.h"
#include "raylume/platform/posix/RegistryFile.h"

namespace platform {

namespace {

// Far above any file of settings, and far below what would hurt the host.
constexpr std::size_t kLargestFile = std::size_t{64} << 20;

struct RegistryText {
    std::string text;
    bool isOld = false;
};
using SharedText = std::shared_ptr<const RegistryText>;

/// What an open key holds: where the data of its values stand in the text of the file.
struct KeyContent {
    bool exists = false;
    std::map<std::wstring, std::string_view> values;
};

std::optional<std::wstring> configurationFolder()
{
    auto folder = absoluteFolder("XDG_CONFIG_HOME");
    if (folder) {
        return folder;
    }
    folder = absoluteFolder("HOME");
    return folder ? std::optional(*folder + L"/.config") : std::nullopt;
}

std::optional<std::wstring> registryPath()
{
    const auto path = environmentVariable("RAYLUME_REGISTRY");
    if (path) {
        return path;
    }
    const auto folder = configurationFolder();
    return folder ? std::optional(*folder + L"/raylume/registry.reg") : std::nullopt;
}

// Read, not mapped: a person may be saving the file in this moment, and a mapping of a file that
// shrinks ends the process.
std::optional<std::string> readSmallFile(const std::wstring& path)
{
    const auto file = InputFile::open(path);
    if (!file) {
        return std::nullopt;
    }
    std::string bytes;
    char buffer[1 << 16];
    for (;;) {
        const std::size_t count = file->read(buffer, sizeof buffer);
        bytes.append(buffer, count);
        if (bytes.size() > kLargestFile) {
            return std::nullopt;
        }
        if (count < sizeof buffer) {
            return bytes;
        }
    }
}

SharedText readRegistryText()
{
    const auto path = registryPath();
    auto bytes = path ? readSmallFile(*path) : std::nullopt;
    if (!bytes) {
        return nullptr;
    }
    RegistryText file;
    file.text = registryFileText(std::move(*bytes));
    file.isOld = isOldRegistryFile(file.text);
    return std::make_shared<const RegistryText>(std::move(file));
}

bool isSameOrBelow(const std::wstring& path, const std::wstring& above)
{
    const bool startsAlike = path.compare(0, above.size(), above) == 0;
    return startsAlike && (above.empty() || path.size() == above.size() || path[above.size()] == L'\\');
}

/// Follows the lines of a file and keeps what belongs to one key.
class KeyCollector {
public:
    KeyCollector(const RegistryText& file, const std::wstring& path) : file_(file), path_(path)
    {
        content_.exists = path.empty();
    }

    KeyContent collect()
    {
        RegistryFileEvents events;
        events.onKey = [this](const auto& path, bool deleted) { meetKey(path, deleted); };
        events.onValue = [this](const auto& name, std::string_view data) { meetValue(name, data); };
        readRegistryFile(file_.text, events);
        return std::move(content_);
    }

private:
    void meetKey(const std::optional<std::wstring>& path, bool deleted)
    {
        inside_ = path && !deleted && *path == path_;
        if (!path) {
            return;
        }
        if (deleted && isSameOrBelow(path_, *path)) {
            content_ = {path_.empty(), {}};
        } else if (!deleted && isSameOrBelow(*path, path_)) {
            content_.exists = true;
        }
    }

    void meetValue(const std::wstring& name, std::string_view data)
    {
        if (!inside_) {
            return;
        }
        if (isDeletion(data)) {
            content_.values.erase(name);
        } else if (parseRegistryData(data, file_.isOld)) {
            content_.values[name] = data;
        }
    }

    const RegistryText& file_;
    const std::wstring& path_;
    KeyContent content_;
    bool inside_ = false;
};

class RegistryFileKey final : public SettingsKey {
public:
    RegistryFileKey(SharedText file, std::wstring path, KeyContent content)
        : file_(std::move(file)), path_(std::move(path)), content_(std::move(content))
    {
    }

    static std::unique_ptr<SettingsKey> openIn(SharedText file, std::wstring path)
    {
        KeyContent content = KeyCollector(*file, path).collect();
        if (!content.exists) {
            return nullptr;
        }
        return std::make_unique<RegistryFileKey>(std::move(file), std::move(path), std::move(content));
    }

    std::unique_ptr<SettingsKey> open(const std::wstring& path) const override
    {
        return openIn(file_, normalizedKeyPath(path_ + L'\\' + path));
    }

    SettingValue query(const std::wstring& name, std::size_t bufferSize) const override
    {
        const auto found = content_.values.find(toLower(name));
        if (found == content_.values.end()) {
            return {};
        }
        auto data = parseRegistryData(found->second, file_->isOld);
        if (!data || data->bytes.size() > bufferSize) {
            return {};
        }
        return {true, data->type, std::move(data->bytes)};
    }

private:
    SharedText file_;
    std::wstring path_;
    KeyContent content_;
};

}  // namespace

SettingsKey::SettingsKey() = default;
SettingsKey::~SettingsKey() = default;

std::unique_ptr<SettingsKey> SettingsKey::openCurrentUser(const std::wstring& path)
{
    SharedText file = readRegistryText();
    return file ? RegistryFileKey::openIn(std::move(file), normalizedKeyPath(path)) : nullptr;
}

}  // namespace platform
