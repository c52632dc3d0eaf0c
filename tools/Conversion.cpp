#include "tools/Conversion.h"

#include "raylume/platform/Text.h"
#include "reader/DocumentWriter.h"
#include "tools/ReaderHandlers.h"
#include "tools/Values.h"

namespace tool {

bool isConversionTarget(const std::string& path)
{
    return isJsonTarget(path) || platform::toLower(platform::fromUtf8(path)).ends_with(L".ovdl");
}

bool isJsonTarget(const std::string& path)
{
    return platform::toLower(platform::fromUtf8(path)).ends_with(L".json");
}

std::string convert(const ConversionRequest& request)
{
    const ReaderHandlers handlers(request.progressTo);
    std::string reason;
    const bool converted =
        ovdl::convertDocument(platform::fromUtf8(request.document), platform::fromUtf8(request.output),
                              platform::fromUtf8(request.configuration), reason);
    if (converted)
        return "";
    return reason.empty() ? "cancelled" : oneLine(request.document) + ": not converted: " + oneLine(reason);
}

}  // namespace tool
