#include "reader/DocumentRead.h"

#include <algorithm>
#include <exception>
#include <new>
#include <optional>

#include "reader/Callbacks.h"

namespace ovdl {
namespace {

// The version of this reader, which hosts compare with the document's.
constexpr int kReaderVersion = 12000;

// An assembly without components: what a rejected or cancelled read leaves.
class EmptyDocument final : public ReadDocument {
public:
    explicit EmptyDocument(bool rejected) { assembly_.rejected = rejected; }

    OVDLPartDocument* part() override { return nullptr; }
    OVDLAssemblyDocument* assembly() override { return &assembly_; }
    uoTempAssemblySHDDataArray_c* configuration(const std::wstring&) override { return nullptr; }

private:
    OVDLAssemblyDocument assembly_;
};

// Hands what a format says to the registered callback object.
//
// A format never sees what a callback raises, since formats may swallow exceptions: the first one is
// kept, the format is told to stop, and the read ends by raising it again.
class CallbackContext final : public ReadContext {
public:
    bool acceptVersion(unsigned long version) override
    {
        if (!version_) {
            version_ = static_cast<std::uint32_t>(version);
            askCallbacks([this](OVDL_Callbacks& callbacks) {
                refused_ = callbacks.CheckVersions(static_cast<int>(*version_), kReaderVersion) == 0;
            });
        }
        return !refused_ && !failure_;
    }

    void progress(float done) override
    {
        const float share = std::min(done, 1.0f);
        // Written so that a share that is no number is dropped.
        if (!(share > told_))
            return;
        told_ = share;
        askCallbacks([this](OVDL_Callbacks& callbacks) { callbacks.UpdateProgress(told_, 1, 1); });
    }

    bool cancelled() override
    {
        if (!cancelled_)
            askCallbacks(
                [this](OVDL_Callbacks& callbacks) { cancelled_ = callbacks.ShouldReadBeCancelled() != 0; });
        return cancelled_ || failure_;
    }

    bool refused() const { return refused_; }
    std::uint32_t version() const { return *version_; }

    void raiseFailure() const
    {
        if (failure_)
            std::rethrow_exception(failure_);
    }

private:
    template <class Question>
    void askCallbacks(Question question)
    {
        OVDL_Callbacks* callbacks = registeredCallbacks();
        if (!callbacks || failure_)
            return;
        try {
            question(*callbacks);
        } catch (...) {
            failure_ = std::current_exception();
        }
    }

    std::optional<std::uint32_t> version_;
    bool refused_ = false;
    bool cancelled_ = false;
    float told_ = -1.0f;
    std::exception_ptr failure_;
};

ReadOutcome rejection(std::string reason)
{
    ReadOutcome outcome;
    outcome.kind = ReadOutcome::kRejected;
    outcome.reason = std::move(reason);
    return outcome;
}

ReadOutcome readSafely(DocumentFormat& format, const std::wstring& path, ReadContext& context)
{
    try {
        return format.read(path, context);
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const std::exception& failure) {
        return rejection(std::string(format.name()) + ": " + failure.what());
    } catch (...) {
        return rejection(std::string(format.name()) + ": failed without saying why");
    }
}

// What the host decided goes before what the format made of it.
ReadOutcome decided(ReadOutcome outcome, CallbackContext& context)
{
    if (!context.acceptVersion(kForeignDocumentVersion))
        return rejection("the document's version " + std::to_string(context.version()) + " was refused");
    if (outcome.kind == ReadOutcome::kRead && context.cancelled())
        outcome.kind = ReadOutcome::kCancelled;
    if (outcome.kind == ReadOutcome::kRead && !outcome.document)
        return rejection("the format gave no document");
    return outcome;
}

DocumentReadResult rejectedResult(ReadOutcome outcome)
{
    DocumentReadResult result;
    result.result = OVXDLReader_Rejected;
    result.document = std::move(outcome.document);
    result.isWhole = result.document != nullptr;
    if (!result.isWhole)
        result.document = std::make_unique<EmptyDocument>(true);
    result.reason = outcome.reason.empty() ? "the document was rejected" : std::move(outcome.reason);
    return result;
}

DocumentReadResult cancelledResult()
{
    DocumentReadResult result;
    result.result = OVXDLReader_Cancelled;
    result.document = std::make_unique<EmptyDocument>(false);
    return result;
}

DocumentReadResult loadedResult(ReadOutcome outcome)
{
    DocumentReadResult result;
    result.result = outcome.document->result();
    result.document = std::move(outcome.document);
    result.isWhole = true;
    return result;
}

DocumentReadResult resultOf(ReadOutcome outcome)
{
    switch (outcome.kind) {
    case ReadOutcome::kRead:
        return loadedResult(std::move(outcome));
    case ReadOutcome::kCancelled:
        return cancelledResult();
    case ReadOutcome::kRejected:
        break;
    }
    return rejectedResult(std::move(outcome));
}

}  // namespace

DocumentReadResult readDocument(DocumentFormat& format, const std::wstring& path)
{
    CallbackContext context;
    context.progress(0.0f);
    ReadOutcome outcome = decided(readSafely(format, path, context), context);
    if (outcome.kind == ReadOutcome::kRead)
        context.progress(1.0f);
    context.raiseFailure();
    DocumentReadResult result = resultOf(std::move(outcome));
    result.version = context.version();
    return result;
}

}  // namespace ovdl
