// How the bytes of a file stand for characters.
#pragma once

#include <string>

namespace ovdl::step {

/// Whether all of the file is valid UTF-8, as ASCII is. False when it cannot be read.
bool isUtf8File(const std::string& path);

}  // namespace ovdl::step
