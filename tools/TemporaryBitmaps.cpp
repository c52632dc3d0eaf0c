#include "tools/TemporaryBitmaps.h"

#include <exception>

#include "raylume/services/ImageCodec.h"

namespace tool {

TemporaryBitmaps::~TemporaryBitmaps()
{
    try {
        remove();
    } catch (const std::exception&) {
        // Without memory for a path there is nothing that could be removed.
    }
}

void TemporaryBitmaps::remove()
{
    if (!keep_)
        rlu_ClearTempBMPFiles();
    keep_ = true;
}

}  // namespace tool
