#include "raylume/platform/UserSettings.h"
#include "raylume/platform/posix/Utf.h"

namespace platform {

std::wstring settingText(const SettingValue& value)
{
    std::u16string units;
    for (std::size_t i = 0; i + 1 < value.bytes.size(); i += 2) {
        const auto unit = static_cast<char16_t>(value.bytes[i] | value.bytes[i + 1] << 8);
        if (unit == 0) {
            break;
        }
        units.push_back(unit);
    }
    return fromUtf16(units);
}

}  // namespace platform
