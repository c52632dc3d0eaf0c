#include "raylume/services/AppearanceLists.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <list>
#include <memory>
#include <optional>
#include <string_view>
#include <unordered_set>
#include <utility>

#include "raylume/platform/Text.h"
#include "raylume/services/IgnoredImages.h"
#include "raylume/services/PathText.h"
#include "raylume/services/SideFile.h"
#include "raylume/services/Text.h"

std::list<std::wstring> g_ignoredImages;

namespace {

constexpr std::uint32_t kNoColour = 0x7F7F7F;
constexpr std::uint32_t kColourBits = 0xFFFFFF;
// Of all names together, so that a file that is no such list cannot fill the memory. Names beyond are
// reported when they are missing, which harms nobody.
constexpr std::size_t kMostCharacters = std::size_t{16} << 20;

// As a scan with "%d" reads it: white space, a sign, digits, and whatever follows them. A number too
// large for 64 bits is the largest that they hold.
std::optional<std::int64_t> scanInteger(const std::wstring& text)
{
    const std::string narrow = platform::narrow(text);
    std::string_view digits = narrow;
    digits.remove_prefix(std::min(digits.find_first_not_of(" \t\n\v\f\r"), digits.size()));
    const bool isNegative = !digits.empty() && digits.front() == '-';
    if (!digits.empty() && (digits.front() == '-' || digits.front() == '+')) {
        digits.remove_prefix(1);
    }
    std::uint64_t size = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), size);
    if (end == digits.data()) {
        return std::nullopt;
    }
    using Limits = std::numeric_limits<std::int64_t>;
    if (error != std::errc() || size > static_cast<std::uint64_t>(Limits::max())) {
        return isNegative ? Limits::min() : Limits::max();
    }
    return isNegative ? -static_cast<std::int64_t>(size) : static_cast<std::int64_t>(size);
}

// The bytes are in the order of packed colours already.
std::uint32_t colourOf(const std::wstring& value)
{
    const auto number = scanInteger(value);
    return number ? static_cast<std::uint32_t>(*number) & kColourBits : kNoColour;
}

std::wstring ignoredName(const std::wstring& line)
{
    return withoutOuterSpace(platform::toLower(line));
}

void readIgnoredImages(const std::wstring& path)
{
    SideFile file(path);
    std::unordered_set<std::wstring_view> known;
    std::size_t characters = 0;
    while (const auto line = file.nextLine()) {
        std::wstring name = ignoredName(*line);
        if (known.count(name) != 0) {
            continue;
        }
        characters += name.size() + 1;
        if (characters > kMostCharacters) {
            return;
        }
        known.insert(g_ignoredImages.emplace_back(std::move(name)));
    }
}

}  // namespace

std::uint32_t rlu_GetDefaultAppearanceCol(const std::wstring& folder)
{
    SideFile file(folder + kImageLocationsFile);
    while (const auto line = file.nextLine()) {
        const auto location = splitImageLocation(*line);
        if (location && location->key == kDefaultColorKey) {
            return colourOf(location->value);
        }
    }
    return kNoColour;
}

void rlu_PopulateIgnoredMissingImagesList(const std::string& folder)
{
    g_ignoredImages.clear();
    const std::unique_ptr<wchar_t[]> wide(rlu_CharStarToWideChar(folder.c_str()));
    const std::wstring path = wide.get();
    if (!path.empty()) {
        readIgnoredImages(path + kIgnoredImagesFile);
    }
}

bool rlu_IsInIgnoredMissingImagesList(const std::wstring& name)
{
    const std::wstring lower = platform::toLower(name);
    return std::find(g_ignoredImages.begin(), g_ignoredImages.end(), lower) != g_ignoredImages.end();
}
