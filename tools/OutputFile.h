// A file that appears complete or not at all.
#pragma once

#include <filesystem>
#include <functional>
#include <ostream>
#include <string>

namespace tool {

/// Empty when a file can be put at `path`, else one line that says why not: its folder is missing,
/// or something that is no regular file stands there. Touches nothing.
std::string whyNotWritable(const std::filesystem::path& path);

/// Lets `write` fill a new file beside `path` and gives it that name when all of it is written. A
/// file that was there keeps its permissions and, when anything fails or `write` raises, its
/// content; nothing else stays behind. A symbolic link stays, what it points at is replaced. Raises
/// std::runtime_error with one line that says what failed.
void writeWhole(const std::filesystem::path& path, const std::function<void(std::ostream&)>& write);

}  // namespace tool
