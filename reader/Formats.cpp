#include "reader/DocumentFormat.h"

namespace ovdl {

// Prepared documents come first: they take the place of files of their name. Compound files come last:
// what a format before recognised in one is a document.
std::vector<std::unique_ptr<DocumentFormat>> makeFormats()
{
    std::vector<std::unique_ptr<DocumentFormat>> formats;
    formats.push_back(makePreparedFormat());
    formats.push_back(makeOvdlJsonFormat());
    formats.push_back(makeGltfFormat());
    formats.push_back(makeStepFormat());
    formats.push_back(makeOvdlFormat());
    formats.push_back(makeCompoundFormat());
    return formats;
}

}  // namespace ovdl
