// A document format of the default reader: one class behind this interface, one folder under
// formats/.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "raylume/load/ReaderInterface.h"

namespace ovdl {

/// What a format can say and ask while it reads. All of it goes through the callback object that is
/// registered while ReadFile runs.
class ReadContext {
public:
    virtual ~ReadContext() = default;

    /// Tells the document's version, once, as soon as it is known. False: the document is refused,
    /// and the read ends with kRejected. A format that never tells has kForeignDocumentVersion.
    virtual bool acceptVersion(unsigned long version) = 0;
    /// `done` from 0 to 1; never falls.
    virtual void progress(float done) = 0;
    /// True when the read is to stop. Cheap enough to ask for every few thousand elements.
    virtual bool cancelled() = 0;
};

/// What a format made of a file. It owns every object that it hands out, and lives as long as the
/// document object.
class ReadDocument {
public:
    ReadDocument() = default;
    ReadDocument(const ReadDocument&) = delete;
    ReadDocument& operator=(const ReadDocument&) = delete;
    virtual ~ReadDocument() = default;

    /// The document that was read; null unless it is one of that kind.
    virtual OVDLPartDocument* part() = 0;
    virtual OVDLAssemblyDocument* assembly() = 0;
    /// The component array of the named configuration, or null.
    virtual uoTempAssemblySHDDataArray_c* configuration(const std::wstring& name) = 0;
    /// The names that configuration() knows.
    virtual std::vector<std::wstring> configurationNames() { return {}; }
    /// What ReadFile gives for a document that is neither rejected nor cancelled.
    virtual OVXDLReader_FileLoadResult result() const { return OVXDLReader_Loaded; }
    /// The version of the display lists; 0 for none.
    virtual std::uint32_t displayListVersion() const { return 0; }
};

/// How a read ended.
struct ReadOutcome {
    enum Kind { kRead, kRejected, kCancelled };

    Kind kind = kRead;
    /// Set with kRead. With kRejected it may be set too: a document that says itself that it is
    /// rejected.
    std::unique_ptr<ReadDocument> document;
    /// One line of UTF-8, for kRejected.
    std::string reason;
};

class DocumentFormat {
public:
    virtual ~DocumentFormat() = default;

    /// A short name, e.g. "glTF 2.0".
    virtual const char* name() const = 0;
    /// True when this format will read what stands at `path`: told by its content, not only by its
    /// ending. Holds no file open afterwards. When it gives false for a path that is its own and that
    /// it cannot open, it says why in `reason`: that ends the search, no other format is asked.
    virtual bool recognises(const std::wstring& path, std::string& reason) = 0;
    /// Reads the document. Never raises but std::bad_alloc.
    virtual ReadOutcome read(const std::wstring& path, ReadContext& context) = 0;
    /// The bytes of an image that lies inside the document; empty when there is no such image.
    virtual std::vector<unsigned char> image(const std::wstring& /*path*/, int /*index*/) { return {}; }
    /// Lets go of whatever recognises() kept for a read that never came.
    virtual void forgetProbes() {}
};

/// The version that documents of foreign formats are given.
inline constexpr unsigned long kForeignDocumentVersion = 12000;

/// The formats of this reader, in the order in which they are asked. The one list of them is in
/// Formats.cpp.
std::vector<std::unique_ptr<DocumentFormat>> makeFormats();

std::unique_ptr<DocumentFormat> makePreparedFormat();
/// Asked before glTF, which is JSON too.
std::unique_ptr<DocumentFormat> makeOvdlJsonFormat();
std::unique_ptr<DocumentFormat> makeGltfFormat();
std::unique_ptr<DocumentFormat> makeStepFormat();
/// Recognises compound files that hold a document.
std::unique_ptr<DocumentFormat> makeOvdlFormat();
/// Recognises every compound file and rejects it, so it is asked last.
std::unique_ptr<DocumentFormat> makeCompoundFormat();

}  // namespace ovdl
