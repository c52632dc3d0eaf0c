#include "reader/formats/step/FileStart.h"

#include <algorithm>

namespace ovdl::step {
namespace {

constexpr std::string_view kBlanks = " \t\r\n";

// Blanks and comments may stand before the first word.
std::string_view behindComments(std::string_view text)
{
    for (;;) {
        text.remove_prefix(std::min(text.find_first_not_of(kBlanks), text.size()));
        const std::size_t end = text.starts_with("/*") ? text.find("*/", 2) : std::string_view::npos;
        if (end == std::string_view::npos)
            return text;
        text.remove_prefix(end + 2);
    }
}

bool isStep(std::string_view start)
{
    // As Open CASCADE wants it: no byte-order mark, and nothing before the semicolon.
    return behindComments(start).starts_with("ISO-10303-21;");
}

// Lines of 80 characters: 72 of text, the letter of the section, the number in it. The first section is the
// start, or a flag of another way to write what this is not made for.
bool isIges(std::string_view start)
{
    constexpr std::size_t kLetter = 72;
    constexpr std::size_t kLine = 80;
    const std::string_view number = start.substr(std::min(start.size(), kLetter + 1), kLine - kLetter - 1);
    const bool counts =
        number.size() == kLine - kLetter - 1 && number.back() == '1' &&
        number.substr(0, number.size() - 1).find_first_not_of(" 0") == std::string_view::npos;
    return counts && start[kLetter] == 'S' &&
           std::none_of(start.begin(), start.begin() + kLetter, [](unsigned char c) { return c < 0x20; });
}

}  // namespace

FileKind fileKindOf(std::string_view start)
{
    if (isStep(start))
        return FileKind::kStep;
    return isIges(start) ? FileKind::kIges : FileKind::kOther;
}

}  // namespace ovdl::step
