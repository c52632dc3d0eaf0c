// What kind of file it is, told by its first bytes.
#pragma once

#include <cstddef>
#include <string_view>

namespace ovdl::step {

enum class FileKind { kOther, kStep, kIges };

/// As many bytes as anybody need look at.
inline constexpr std::size_t kStartLength = 4096;

/// `start`: the first kStartLength bytes of the file, or all that it has.
FileKind fileKindOf(std::string_view start);

}  // namespace ovdl::step
