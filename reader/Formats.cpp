#include "reader/DocumentFormat.h"

namespace ovdl {

// Prepared documents come first: they take the place of files of their name.
std::vector<std::unique_ptr<DocumentFormat>> makeFormats()
{
    std::vector<std::unique_ptr<DocumentFormat>> formats;
    formats.push_back(makePreparedFormat());
    formats.push_back(makeGltfFormat());
    return formats;
}

}  // namespace ovdl
