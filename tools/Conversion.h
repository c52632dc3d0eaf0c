// A document written as one of the reader's own formats.
#pragma once

#include <ostream>
#include <string>

namespace tool {

struct ConversionRequest {
    std::string document;                ///< Path in UTF-8, as the user gave it.
    std::string output;                  ///< The same of the file to write.
    std::string configuration;           ///< Empty: the document's own choice.
    std::ostream* progressTo = nullptr;  ///< Where a bar is drawn; null for none.
};

/// True for a path with one of the endings that tell what is written.
bool isConversionTarget(const std::string& path);

/// True for one of these paths that becomes JSON.
bool isJsonTarget(const std::string& path);

/// Empty when all of it was written, else one line that says why not: "cancelled" after an interrupt. An
/// Interruption has to be alive for it to be cancelled. Raises std::bad_alloc.
std::string convert(const ConversionRequest& request);

}  // namespace tool
