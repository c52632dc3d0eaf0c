#include "reader/formats/step/ImportProtocol.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

namespace ovdl::step {
namespace {

// Changes with the arguments and the lines, so that a program that an older installation left behind says
// so instead of misunderstanding.
constexpr std::string_view kVersion = "ovdl-import-1";

struct Word {
    Message message;
    const char* text;
};

constexpr Word kWords[] = {
    {Message::kProgress, "progress"},  {Message::kRefused, "refused"},
    {Message::kNoMemory, "no-memory"}, {Message::kOutputFull, "output-full"},
    {Message::kCrashed, "crashed"},    {Message::kComplete, "ovdl-complete-1"},
};

template <class T>
std::optional<T> numberOf(std::string_view text)
{
    T value{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    const bool whole = error == std::errc() && end == text.data() + text.size() && !text.empty();
    return whole ? std::optional<T>(value) : std::nullopt;
}

}  // namespace

std::string textOf(double value)
{
    std::array<char, 32> text;
    const auto result = std::to_chars(text.data(), text.data() + text.size(), value);
    return {text.data(), result.ptr};
}

std::optional<double> doubleOf(std::string_view text)
{
    const auto value = numberOf<double>(text);
    return value && std::isfinite(*value) ? value : std::nullopt;
}

std::optional<std::uint64_t> countOf(std::string_view text)
{
    return numberOf<std::uint64_t>(text);
}

std::vector<std::string> argumentsOf(const ImportRequest& request)
{
    return {std::string(kVersion),
            request.path,
            request.stem,
            textOf(request.limits.seconds),
            std::to_string(request.limits.memoryBytes),
            std::to_string(request.limits.outputBytes),
            textOf(request.tessellation.deflection),
            textOf(request.tessellation.degrees)};
}

std::optional<ImportRequest> requestOf(const std::vector<std::string>& arguments)
{
    if (arguments.size() != 8 || arguments[0] != kVersion)
        return std::nullopt;
    const auto seconds = doubleOf(arguments[3]);
    const auto memory = countOf(arguments[4]);
    const auto output = countOf(arguments[5]);
    const auto deflection = doubleOf(arguments[6]);
    const auto degrees = doubleOf(arguments[7]);
    if (!seconds || !memory || !output || !deflection || !degrees)
        return std::nullopt;
    return ImportRequest{arguments[1], arguments[2], {*seconds, *memory, *output}, {*deflection, *degrees}};
}

std::string_view shortened(std::string_view text, std::size_t bytes)
{
    if (text.size() <= bytes)
        return text;
    const auto isInside = [&](std::size_t at) {
        return (static_cast<unsigned char>(text[at]) & 0xC0) == 0x80;
    };
    while (bytes > 0 && isInside(bytes))
        --bytes;
    return text.substr(0, bytes);
}

const char* wordOf(Message message)
{
    const auto* const word = std::find_if(std::begin(kWords), std::end(kWords),
                                          [&](const Word& entry) { return entry.message == message; });
    return word->text;
}

std::string lineOf(Message message, std::string_view rest)
{
    std::string line = std::string(wordOf(message)) + " " + std::string(rest);
    std::replace_if(
        line.begin(), line.end(), [](unsigned char c) { return c < 0x20 || c == 0x7F; }, ' ');
    return line + '\n';
}

std::optional<Line> parseLine(std::string_view line)
{
    const std::size_t blank = line.find(' ');
    if (blank == std::string_view::npos)
        return std::nullopt;
    for (const Word& word : kWords)
        if (line.substr(0, blank) == word.text)
            return Line{word.message, line.substr(blank + 1)};
    return std::nullopt;
}

}  // namespace ovdl::step
