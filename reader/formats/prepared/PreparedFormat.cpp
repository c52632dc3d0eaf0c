// Documents that were built in memory and put under a path.
#include <exception>
#include <map>
#include <memory>
#include <new>
#include <utility>

#include "reader/DocumentFormat.h"
#include "reader/PreparedDocuments.h"

namespace ovdl {
namespace {

// Factories by path, and the documents that a probe made for the read that follows it.
struct PreparedTable {
    std::map<std::wstring, std::shared_ptr<const DocumentFactory>> factories;
    std::map<std::wstring, std::unique_ptr<PreparedDocument>> waiting;
};

PreparedTable& table()
{
    static PreparedTable documents;
    return documents;
}

// Whatever it destroys is out of the table by then, so that a destructor may come back here.
void letGoOf(const std::wstring& path)
{
    const auto waiting = table().waiting.extract(path);
    const auto factory = table().factories.extract(path);
}

class PreparedRead final : public ReadDocument {
public:
    explicit PreparedRead(std::unique_ptr<PreparedDocument> document) : document_(std::move(document)) {}

    OVDLPartDocument* part() override { return document_->part.get(); }
    OVDLAssemblyDocument* assembly() override { return document_->assembly.get(); }
    OVXDLReader_FileLoadResult result() const override { return document_->result; }
    std::uint32_t displayListVersion() const override { return document_->displayListVersion; }

    uoTempAssemblySHDDataArray_c* configuration(const std::wstring& name) override
    {
        const auto found = document_->configurations.find(name);
        return found == document_->configurations.end() ? nullptr : &found->second;
    }

    std::vector<std::wstring> configurationNames() override
    {
        std::vector<std::wstring> names;
        for (const auto& [name, components] : document_->configurations)
            names.push_back(name);
        return names;
    }

private:
    std::unique_ptr<PreparedDocument> document_;
};

std::string reasonOr(const std::string& reason, const char* otherwise)
{
    return reason.empty() ? otherwise : reason;
}

// Null, with the reason, for a document that cannot be opened. A factory that fails has no document
// to open; running out of memory is the caller's affair.
std::unique_ptr<PreparedDocument> make(const DocumentFactory& factory, std::string& reason)
{
    std::unique_ptr<PreparedDocument> document;
    try {
        document = factory();
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const std::exception& failure) {
        reason = reasonOr(failure.what(), "the prepared document could not be made");
        return nullptr;
    } catch (...) {
        document = nullptr;
    }
    if (!document)
        reason = "the prepared document could not be made";
    else if (!document->openable)
        reason = reasonOr(document->reason, "the prepared document cannot be opened");
    return reason.empty() ? std::move(document) : nullptr;
}

void reject(PreparedDocument& document)
{
    if (document.part)
        document.part->rejected = true;
    if (document.assembly)
        document.assembly->rejected = true;
}

class PreparedFormat final : public DocumentFormat {
public:
    const char* name() const override { return "prepared"; }

    bool recognises(const std::wstring& path, std::string& reason) override
    {
        const auto found = table().factories.find(path);
        if (found == table().factories.end())
            return false;
        if (table().waiting.count(path) != 0)
            return true;
        // A copy: the factory may put another document in its own place.
        const auto factory = found->second;
        auto document = make(*factory, reason);
        if (!document)
            return false;
        table().waiting[path] = std::move(document);
        return true;
    }

    ReadOutcome read(const std::wstring& path, ReadContext& context) override
    {
        ReadOutcome outcome;
        std::unique_ptr<PreparedDocument> document = take(path);
        if (!document || !context.acceptVersion(document->version)) {
            outcome.kind = ReadOutcome::kRejected;
            return outcome;
        }
        if (context.cancelled()) {
            outcome.kind = ReadOutcome::kCancelled;
            return outcome;
        }
        if (document->rejected) {
            reject(*document);
            outcome.kind = ReadOutcome::kRejected;
            outcome.reason = document->reason;
        }
        outcome.document = std::make_unique<PreparedRead>(std::move(document));
        return outcome;
    }

    void forgetProbes() override { const auto waiting = std::exchange(table().waiting, {}); }

private:
    static std::unique_ptr<PreparedDocument> take(const std::wstring& path)
    {
        auto waiting = table().waiting.extract(path);
        return waiting ? std::move(waiting.mapped()) : nullptr;
    }
};

}  // namespace

PreparedDocument::PreparedDocument() = default;

// The documents go first, since they point at what is owned; of that the newest goes first, since it
// may point at what was made before it.
PreparedDocument::~PreparedDocument()
{
    part.reset();
    assembly.reset();
    configurations.clear();
    while (!owned_.empty())
        owned_.pop_back();
}

void prepareDocument(const std::wstring& path, DocumentFactory factory)
{
    letGoOf(path);
    if (!factory)
        factory = [] { return std::unique_ptr<PreparedDocument>(); };
    table().factories[path] = std::make_shared<const DocumentFactory>(std::move(factory));
}

void forgetDocument(const std::wstring& path)
{
    letGoOf(path);
}

std::unique_ptr<DocumentFormat> makePreparedFormat()
{
    return std::make_unique<PreparedFormat>();
}

}  // namespace ovdl
