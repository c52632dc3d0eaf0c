// Any bytes as a file of settings, through all that reads one; ends the process where a promise of
// the reader is broken.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "raylume/platform/UserSettings.h"
#include "raylume/platform/posix/RegistryFile.h"

namespace {

void require(bool condition)
{
    if (!condition) {
        std::abort();
    }
}

bool isWithin(std::string_view part, std::string_view whole)
{
    const std::less_equal<const char*> notBehind;
    return notBehind(whole.data(), part.data()) &&
           notBehind(part.data() + part.size(), whole.data() + whole.size());
}

void checkKey(const std::optional<std::wstring>& path)
{
    require(!path || *path == platform::normalizedKeyPath(*path));
}

// Each byte of the data gives one UTF-16 unit at the most, and the terminator is one more; settings
// rely on that when they keep the text of a file and not its values.
void checkValue(std::string_view data, std::string_view text, bool isOld)
{
    require(data.empty() || isWithin(data, text));
    const auto value = platform::parseRegistryData(data, isOld);
    if (!value) {
        return;
    }
    require(!platform::isDeletion(data));
    require(value->bytes.size() <= 2 * data.size() + 2);
    const std::wstring content = platform::settingText({true, value->type, value->bytes});
    require(content.size() <= value->bytes.size() / 2);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string text =
        platform::registryFileText(std::string(reinterpret_cast<const char*>(data), size));
    const bool isOld = platform::isOldRegistryFile(text);
    platform::RegistryFileEvents events;
    events.onKey = [](const auto& path, bool) { checkKey(path); };
    events.onValue = [&](const std::wstring&, std::string_view value) { checkValue(value, text, isOld); };
    platform::readRegistryFile(text, events);
    return 0;
}
