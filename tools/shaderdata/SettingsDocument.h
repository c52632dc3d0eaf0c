// A document that settings are put into.
#pragma once

#include <string>

namespace shaderdata {

/// Puts a stream of settings into the compound file at `path` (UTF-8), which is made if it is missing, in
/// the place of the one that is there. The file is replaced as a whole, or stays as it was. Raises
/// platform::OleError.
void putSettings(const std::string& path, const std::string& bytes);

}  // namespace shaderdata
