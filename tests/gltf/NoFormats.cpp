// The session's list of formats; these tests ask the format itself.
#include "reader/DocumentFormat.h"

namespace ovdl {

std::vector<std::unique_ptr<DocumentFormat>> makeFormats()
{
    return {};
}

}  // namespace ovdl
