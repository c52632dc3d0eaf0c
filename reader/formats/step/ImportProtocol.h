// What the reader and its import program tell each other: the arguments of the program, and the lines that
// it writes to its pipe. The program has the numbers of its handles from platform/ChildProcess.h.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "reader/ImportLimits.h"

namespace ovdl::step {

struct ImportRequest {
    std::string path;  ///< Native.
    std::string stem;  ///< Of the document: owner of the components at the top. UTF-8.
    ImportLimits limits;
    Tessellation tessellation;
};

std::vector<std::string> argumentsOf(const ImportRequest& request);
/// Nothing for arguments that no reader of this version wrote.
std::optional<ImportRequest> requestOf(const std::vector<std::string>& arguments);

/// What a line says. Only kComplete, with the size of the file and nothing behind it, stands for success.
enum class Message {
    kProgress,  ///< A share from 0 to 1.
    kRefused,   ///< Why the document is refused, in one line of UTF-8.
    kNoMemory,
    kOutputFull,
    kCrashed,   ///< The number of the signal.
    kComplete,  ///< The size of the file.
};

struct Line {
    Message message;
    std::string_view rest;  ///< Behind the word, without the end of the line.
};

/// Of reasons, in bytes.
inline constexpr std::size_t kLongestReason = 500;
/// The start of `text`, that many bytes at most, without a part of a character of UTF-8 at its end.
std::string_view shortened(std::string_view text, std::size_t bytes);

const char* wordOf(Message message);
/// "word rest\n"; line ends inside `rest` become blanks.
std::string lineOf(Message message, std::string_view rest);
/// Nothing for a line that no program of this version writes.
std::optional<Line> parseLine(std::string_view line);

/// Independent of the locale, and without loss.
std::string textOf(double value);
std::optional<double> doubleOf(std::string_view text);
std::optional<std::uint64_t> countOf(std::string_view text);

}  // namespace ovdl::step
