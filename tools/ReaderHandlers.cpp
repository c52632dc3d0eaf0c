#include "tools/ReaderHandlers.h"

#include "raylume/scene/dlModel.h"
#include "reader/HostHandlers.h"
#include "tools/Interruption.h"

namespace tool {
namespace {

// The reader alone would leave an empty assembly; the library's flag makes a load end.
bool cancelled()
{
    if (!Interruption::requested())
        return false;
    g_terminateLoad = true;
    return true;
}

}  // namespace

ReaderHandlers::ReaderHandlers(std::ostream* progressTo)
{
    ovdl::setCancelHandler(cancelled);
    if (!progressTo)
        return;
    bar_.emplace(*progressTo);
    ovdl::setProgressHandler([this](float done) { bar_->show(done); });
}

ReaderHandlers::~ReaderHandlers()
{
    ovdl::setProgressHandler({});
    ovdl::setCancelHandler({});
}

}  // namespace tool
