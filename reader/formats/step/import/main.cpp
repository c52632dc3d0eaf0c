// The import program: reads the STEP or IGES file that its arguments name and hands an .ovdl document back
// in the anonymous file that its host gave it. Whatever goes wrong ends it and nothing else.
#include <Message.hxx>
#include <Message_Messenger.hxx>
#include <Message_PrinterSystemLog.hxx>
#include <Standard_ErrorHandler.hxx>
#include <Standard_OutOfMemory.hxx>
#include <cmath>
#include <cstdlib>
#include <exception>
#include <new>

#include "raylume/platform/AnonymousFile.h"
#include "raylume/platform/ChildProcess.h"
#include "raylume/platform/Reference.h"
#include "raylume/platform/WorkerProcess.h"
#include "reader/formats/ovdl/CompoundStreams.h"
#include "reader/formats/ovdl/Encoder.h"
#include "reader/formats/ovdl/Refusal.h"
#include "reader/formats/step/import/Products.h"

namespace ovdl::step {
namespace {

constexpr char kNotStarted[] = "the import program was not started by this reader";

struct OutputFull {};

platform::WorkerLimits limitsOf(const ImportLimits& limits)
{
    platform::WorkerLimits result;
    // The host's clock is the limit; this one holds where the host has none left.
    constexpr double kLongest = 1e9;
    if (limits.seconds > 0)
        result.processorSeconds =
            static_cast<std::uint64_t>(std::ceil(std::min(limits.seconds, kLongest))) + 1;
    result.fileBytes = limits.outputBytes;
    // A sanitizer maps far more than there is memory.
    if (OVDL_IMPORT_LIMITS_MEMORY)
        result.memoryBytes = limits.memoryBytes;
    return result;
}

void checkResult(HResult result)
{
    if (result == kStorageMediumFull || result == kStorageTooLarge || result == kStorageWriteFault)
        throw OutputFull{};
    if (result < 0)
        throw Refusal{"the imported document cannot be handed over"};
}

void writeTo(platform::AnonymousFile& file, const PreparedDocument& document)
{
    platform::Reference<IStorage> root;
    checkResult(file.createCompound(root.out()));
    DocumentContents contents;
    contents.part = document.part.get();
    contents.assembly = document.assembly.get();
    encodeDocument(contents, *makeCompoundSink(*root.get()));
    checkResult(root->Commit(0));
    // What is left of the tree goes with the process.
    root->AddRef();
}

void importModel(const ImportRequest& request, HostLink& link)
{
    const auto file = platform::AnonymousFile::inherited(platform::kChildFile);
    if (!file || !platform::limitThisProcess(limitsOf(request.limits)))
        throw Refusal{kNotStarted};
    ::Message::DefaultMessenger()->ChangePrinters().Clear();
    const Model model = readModel(request.path, link);
    auto* document = new PreparedDocument;
    makeDocument(model, request, link, *document);
    link.beginStep(1);
    writeTo(*file, *document);
    link.say(Message::kComplete, std::to_string(file->size()));
    // Taking the shapes apart would take as long as some of the steps before.
    platform::endThisProcess(EXIT_SUCCESS);
}

std::string textOf(const Standard_Failure& failure)
{
    const char* text = failure.GetMessageString();
    return std::string("Open CASCADE fails: ") + (text && *text ? text : failure.DynamicType()->Name());
}

void importAndReport(const ImportRequest& request, HostLink& link)
{
    try {
        importModel(request, link);
    } catch (const Refusal& refusal) {
        link.say(Message::kRefused, refusal.reason);
    } catch (const OutputFull&) {
        link.say(Message::kOutputFull, "");
    } catch (const Standard_OutOfMemory&) {
        link.say(Message::kNoMemory, "");
    } catch (const std::bad_alloc&) {
        link.say(Message::kNoMemory, "");
    } catch (const Standard_Failure& failure) {
        link.say(Message::kRefused, textOf(failure));
    } catch (const std::exception& failure) {
        link.say(Message::kRefused, failure.what());
    }
}

int run(const std::vector<std::string>& arguments)
{
    platform::endWithPipe(platform::kChildPipe);
    platform::announceCrashes(platform::kChildPipe, wordOf(Message::kCrashed));
    HostLink link(platform::kChildPipe);
    if (const auto request = requestOf(arguments))
        importAndReport(*request, link);
    else
        link.say(Message::kRefused, kNotStarted);
    platform::endThisProcess(EXIT_FAILURE);
}

}  // namespace
}  // namespace ovdl::step

int main(int count, char** arguments)
{
    return ovdl::step::run({arguments + 1, arguments + count});
}
