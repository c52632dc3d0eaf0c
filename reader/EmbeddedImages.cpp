#include "reader/EmbeddedImages.h"

#include <optional>

#include "reader/FormatRegistry.h"

namespace ovdl {
namespace {

constexpr std::wstring_view kMark = L"#image";
constexpr std::size_t kMostDigits = 9;

struct ImagePlace {
    std::wstring document;
    int index = 0;
};

std::optional<ImagePlace> placeOf(const std::wstring& name)
{
    const std::size_t mark = name.rfind(kMark);
    if (mark == std::wstring::npos)
        return std::nullopt;
    const std::wstring digits = name.substr(mark + kMark.size());
    const bool isNumber = !digits.empty() && digits.size() <= kMostDigits &&
                          digits.find_first_not_of(L"0123456789") == std::wstring::npos;
    return isNumber ? std::optional(ImagePlace{name.substr(0, mark), std::stoi(digits)}) : std::nullopt;
}

}  // namespace

std::vector<unsigned char> embeddedImage(const std::wstring& name)
{
    const auto place = placeOf(name);
    if (!place)
        return {};
    std::string reason;
    DocumentFormat* const format = FormatRegistry::instance().find(place->document, reason);
    return format ? format->image(place->document, place->index) : std::vector<unsigned char>();
}

}  // namespace ovdl
