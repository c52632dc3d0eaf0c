// The option that says how fine faces are made.
#pragma once

#include <string>

namespace tool {

/// Makes all loads from now on use "<share>,<degrees>". False, and nothing changed, for another text or
/// numbers out of range.
bool useTessellation(const std::string& text);

}  // namespace tool
