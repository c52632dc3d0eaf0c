// Documents written and converted: the way from a host to the encoder.
#include "reader/DocumentWriter.h"

#include <cstdio>
#include <functional>
#include <utility>

#include "raylume/platform/CompoundCopy.h"
#include "raylume/platform/Reference.h"
#include "raylume/platform/ReplacementFile.h"
#include "raylume/platform/Text.h"
#include "reader/Callbacks.h"
#include "reader/DocumentRead.h"
#include "reader/FormatRegistry.h"
#include "reader/HostState.h"
#include "reader/formats/ovdl/CompoundStreams.h"
#include "reader/formats/ovdl/Decoder.h"
#include "reader/formats/ovdl/Encoder.h"
#include "reader/formats/ovdl/JsonText.h"
#include "reader/formats/ovdl/Refusal.h"

namespace ovdl {
namespace {

// Where an add-in keeps the settings of a document.
constexpr wchar_t kSettingsName[] = L"ThirdPtyStore";

struct Cancelled {};

// Raises Cancelled where a host wants no more; empty where no host is asked.
using CancelCheck = std::function<void()>;
// Puts more than the document into a compound file.
using StorageFiller = std::function<void(IStorage& root)>;

std::string failureText(HResult result)
{
    switch (result) {
    case kStoragePathNotFound:
        return "there is no folder for it";
    case kStorageAccessDenied:
        return "it is no regular file, or it or its folder may not be written";
    case kStorageMediumFull:
        return "there is no room for it";
    case kStorageTooLarge:
        return "the document has more parts than fit into a compound file";
    case kStorageOutOfMemory:
        return "there is not enough memory";
    default:
        char text[40];
        std::snprintf(text, sizeof(text), "error 0x%08X", static_cast<unsigned>(result));
        return text;
    }
}

void checkWritten(HResult result)
{
    if (result < 0)
        refuse("the file cannot be written (" + failureText(result) + ")");
}

// The system would take what stands before it for the whole name.
void checkName(const std::wstring& path)
{
    if (path.find(L'\0') != std::wstring::npos)
        refuse("the file cannot be written (its name has a zero character)");
}

// Asks for cancellation before each stream.
class CheckedSink final : public StreamSink {
public:
    CheckedSink(StreamSink& sink, const CancelCheck& check) : sink_(sink), check_(check) {}

    void document(const DocumentHeader& header, Bytes bytes) override
    {
        check_();
        sink_.document(header, bytes);
    }

    void tessellation(std::uint32_t number, std::uint32_t piece, std::uint32_t pieces, Bytes bytes) override
    {
        check_();
        sink_.tessellation(number, piece, pieces, bytes);
    }

private:
    StreamSink& sink_;
    const CancelCheck& check_;
};

void encodeChecked(const DocumentContents& contents, StreamSink& sink, const CancelCheck& check)
{
    CheckedSink checked(sink, check);
    encodeDocument(contents, checked);
    check();
}

void writeCompound(const std::wstring& path, const DocumentContents& contents,
                   const StorageFiller& fillMore, const CancelCheck& check)
{
    checkWritten(platform::replaceCompoundFile(path, [&](IStorage& root) {
        encodeChecked(contents, *makeCompoundSink(root), check);
        fillMore(root);
    }));
}

void writeJson(const std::wstring& path, const DocumentContents& contents, const CancelCheck& check)
{
    std::unique_ptr<platform::ReplacementFile> file;
    checkWritten(platform::ReplacementFile::create(path, file));
    const auto sink =
        makeJsonSink([&](std::string_view text) { checkWritten(file->write(text.data(), text.size())); });
    encodeChecked(contents, *sink, check);
    sink->finish();
    checkWritten(file->commit());
}

void write(const std::wstring& path, const DocumentContents& contents, const StorageFiller& fillMore,
           const CancelCheck& check)
{
    if (platform::toLower(path).ends_with(L".json"))
        writeJson(path, contents, check);
    else
        writeCompound(path, contents, fillMore, check);
}

// What is written: an encoder looks at members only, so what part and assembly answer is laid over copies
// of them.
class WrittenContents {
public:
    explicit WrittenContents(DocumentContents contents, bool rejected = false)
        : contents_(std::move(contents))
    {
        contents_.part = copyOf(contents_.part, rejected, part_);
        contents_.assembly = copyOf(contents_.assembly, rejected, assembly_);
    }
    WrittenContents(const WrittenContents&) = delete;
    WrittenContents& operator=(const WrittenContents&) = delete;

    const DocumentContents& get() const { return contents_; }

    // The assembly gets the components of that configuration.
    void openWith(const std::wstring& configuration)
    {
        const auto found = contents_.configurations.find(configuration);
        if (!contents_.assembly || found == contents_.configurations.end() || !found->second)
            refuse("the document has no configuration \"" + platform::toUtf8(configuration) + "\"");
        assembly_.components = *found->second;
    }

private:
    template <class Document>
    static Document* copyOf(Document* document, bool rejected, Document& copy)
    {
        if (!document)
            return nullptr;
        copy = *document;
        copy.rejected = document->isRejected() || rejected;
        return &copy;
    }

    OVDLPartDocument part_;
    OVDLAssemblyDocument assembly_;
    DocumentContents contents_;
};

DocumentContents contentsOf(const PreparedDocument& document)
{
    DocumentContents contents;
    contents.documentVersion = document.version;
    contents.displayListVersion = document.displayListVersion;
    contents.reason = document.reason;
    contents.part = document.part.get();
    contents.assembly = document.assembly.get();
    // Nothing is changed through these pointers.
    for (const auto& [name, components] : document.configurations)
        contents.configurations[name] = const_cast<uoTempAssemblySHDDataArray_c*>(&components);
    return contents;
}

// A read tells progress and asks for cancellation through the registered callbacks: the ones of the host's
// load, else the reader's own, which forward to the host's handlers.
class CallbacksForRead {
public:
    CallbacksForRead() : ours_(!registeredCallbacks())
    {
        if (ours_)
            SetOVDL_Callbacks(&forwarding_);
    }
    CallbacksForRead(const CallbacksForRead&) = delete;
    CallbacksForRead& operator=(const CallbacksForRead&) = delete;
    ~CallbacksForRead()
    {
        if (ours_)
            SetOVDL_Callbacks(nullptr);
    }

private:
    OVDL_Callbacks forwarding_;
    bool ours_;
};

DocumentReadResult readWhole(const std::wstring& path)
{
    std::string reason;
    DocumentFormat* format = FormatRegistry::instance().find(path, reason);
    if (!format)
        refuse("the document cannot be opened (" + reason + ")");
    const CallbacksForRead callbacks;
    DocumentReadResult read = readDocument(*format, path);
    // One that says itself that it is rejected is a whole document all the same.
    if (!read.reason.empty() && !read.isWhole)
        refuse("the document is rejected (" + read.reason + ")");
    if (read.result == OVXDLReader_Cancelled)
        throw Cancelled();
    return read;
}

DocumentContents contentsOf(const DocumentReadResult& read)
{
    if (auto* decoded = dynamic_cast<DecodedDocument*>(read.document.get()))
        return decoded->contents();
    DocumentContents contents;
    contents.documentVersion = read.version;
    contents.displayListVersion = read.document->displayListVersion();
    contents.reason = read.reason;
    contents.part = read.document->part();
    contents.assembly = read.document->assembly();
    for (const std::wstring& name : read.document->configurationNames())
        contents.configurations[name] = read.document->configuration(name);
    return contents;
}

bool isNoCompoundFile(HResult result)
{
    return result == kStorageExists || result == kStorageNotFound || result == kStoragePathNotFound ||
           result == kStorageAccessDenied;
}

void checkSettings(HResult result)
{
    if (result < 0)
        refuse("the settings stored in the document cannot be read (" + failureText(result) + ")");
}

void carrySettings(const std::wstring& source, IStorage& target)
{
    platform::Reference<IStorage> from;
    const HResult opened = platform::openCompoundFile(source, false, from.out());
    if (isNoCompoundFile(opened))
        return;
    checkSettings(opened);
    const HResult copied = platform::copyElement(*from.get(), kSettingsName, target);
    if (copied != kStorageNotFound)
        checkSettings(copied);
}

void checkCancelled()
{
    if (forwardCancelQuestion())
        throw Cancelled();
}

void convert(const std::wstring& source, const std::wstring& target, const std::wstring& configuration)
{
    checkName(target);
    const DocumentReadResult read = readWhole(source);
    WrittenContents contents(contentsOf(read));
    if (!configuration.empty())
        contents.openWith(configuration);
    const auto fillMore = [&source](IStorage& root) { carrySettings(source, root); };
    // No bare function: its type would be exported with the library.
    write(target, contents.get(), fillMore, [] { checkCancelled(); });
}

template <class Work>
bool succeeds(Work work, std::string& reason)
{
    reason.clear();
    try {
        work();
        return true;
    } catch (const Cancelled&) {
    } catch (const Refusal& refusal) {
        reason = oneLine(refusal.what());
    }
    return false;
}

}  // namespace

bool writeDocument(const std::wstring& path, const PreparedDocument& document, std::string& reason)
{
    return succeeds(
        [&] {
            if (!document.openable)
                refuse("the document cannot be opened (" + document.reason + ")");
            checkName(path);
            write(
                path, WrittenContents(contentsOf(document), document.rejected).get(), [](IStorage&) {},
                [] {});
        },
        reason);
}

bool convertDocument(const std::wstring& source, const std::wstring& target,
                     const std::wstring& configuration, std::string& reason)
{
    return succeeds([&] { convert(source, target, configuration); }, reason);
}

}  // namespace ovdl
