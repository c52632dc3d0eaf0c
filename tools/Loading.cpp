#include "tools/Loading.h"

#include <chrono>
#include <exception>
#include <new>

#include "raylume/platform/Text.h"
#include "reader/HostHandlers.h"
#include "tools/Interruption.h"
#include "tools/ReaderHandlers.h"
#include "tools/Values.h"

namespace tool {
namespace {

void readModel(const LoadRequest& request, LoadedDocument& loaded)
{
    if (!request.configuration.empty())
        loaded.configuration =
            std::make_unique<ConfigurationRequest>(request.configuration, request.keepBitmaps);
    const std::string path = platform::narrow(platform::fromUtf8(request.document));
    const ReaderHandlers handlers(request.progressTo);
    SearchJournal journal;
    const auto start = std::chrono::steady_clock::now();
    loaded.model.reset(dlModel::ReadModel(path.c_str()));
    loaded.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    loaded.searches = journal.take();
    loaded.reason = oneLine(ovdl::lastReason());
}

void readModelWithoutRaising(const LoadRequest& request, LoadedDocument& loaded)
{
    try {
        readModel(request, loaded);
    } catch (const std::bad_alloc&) {
        loaded.reason = "there is not enough memory";
    } catch (const std::exception& error) {
        loaded.reason = oneLine(error.what());
    }
}

Outcome outcomeOf(const LoadedDocument& loaded)
{
    if (Interruption::requested())
        return Outcome::kCancelled;
    if (!loaded.model)
        return Outcome::kNone;
    return loaded.model->loadRejected ? Outcome::kRejected : Outcome::kModel;
}

}  // namespace

LoadedDocument loadDocument(const LoadRequest& request)
{
    LoadedDocument loaded;
    if (!platform::fitsAnsiCodePage(platform::fromUtf8(request.document)))
        loaded.reason = "its path has characters that the ANSI code page lacks";
    else
        readModelWithoutRaising(request, loaded);
    loaded.outcome = outcomeOf(loaded);
    if (loaded.outcome == Outcome::kCancelled)
        loaded.model.reset();
    if (loaded.outcome == Outcome::kModel)
        loaded.reason.clear();
    return loaded;
}

const char* outcomeName(Outcome outcome)
{
    switch (outcome) {
    case Outcome::kModel:
        return "model";
    case Outcome::kRejected:
        return "rejected";
    default:
        return "none";
    }
}

std::string failureLine(const std::string& document, const LoadedDocument& loaded)
{
    if (loaded.outcome == Outcome::kCancelled)
        return "cancelled";
    const std::string what = loaded.outcome == Outcome::kRejected ? "rejected: the document gives no model"
                                                                  : "none: the document cannot be opened";
    return oneLine(document) + ": " + what + (loaded.reason.empty() ? "" : " (" + loaded.reason + ")");
}

}  // namespace tool
