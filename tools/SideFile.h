// The animation side file beside a document, looked into for what the loaded tracks do not tell.
#pragma once

#include <cstddef>
#include <map>
#include <string>

namespace tool {

/// How many keys of appearance the file has for each component, one a time, before any is thinned.
/// By the component's name; of several components of one name the last counts. Empty without a
/// file that can be read. `document` is the path in UTF-8.
std::map<std::wstring, std::size_t> appearanceKeysInFile(const std::string& document);

}  // namespace tool
