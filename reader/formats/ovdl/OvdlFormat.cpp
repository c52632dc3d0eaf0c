#include <cstring>
#include <utility>

#include "raylume/platform/CompoundFile.h"
#include "raylume/platform/Reference.h"
#include "reader/DocumentFormat.h"
#include "reader/formats/ovdl/CompoundStreams.h"
#include "reader/formats/ovdl/Decoder.h"
#include "reader/formats/ovdl/OvdlFile.h"
#include "reader/formats/ovdl/Refusal.h"

namespace ovdl {
namespace {

bool hasSignature(const std::wstring& path)
{
    static constexpr unsigned char kSignature[] = {0xD0, 0xCF, 0x11, 0xE0, 0xA1, 0xB1, 0x1A, 0xE1};
    unsigned char start[sizeof(kSignature)];
    const auto file = platform::InputFile::open(path);
    return file && file->read(start, sizeof(start)) == sizeof(start) &&
           std::memcmp(start, kSignature, sizeof(start)) == 0;
}

// A damaged stream of that name is there too.
bool hasDocument(IStorage& root)
{
    platform::Reference<IStream> stream;
    const HResult result = root.OpenStream(kDocumentName, kModeExclusive + kModeRead, stream.out());
    return result >= 0 || result == kStorageCorrupt;
}

ReadOutcome rejection(const char* reason)
{
    ReadOutcome outcome;
    outcome.kind = ReadOutcome::kRejected;
    outcome.reason = reason;
    return outcome;
}

class OvdlFormat final : public DocumentFormat {
public:
    const char* name() const override { return ".ovdl"; }

    bool recognises(const std::wstring& path, std::string&) override
    {
        platform::Reference<IStorage> root;
        return hasSignature(path) && platform::openCompoundFile(path, false, root.out()) >= 0 &&
               readHeader(*root.get()) && hasDocument(*root.get());
    }

    ReadOutcome read(const std::wstring& path, ReadContext& context) override
    {
        return readOvdlFile(platform::MappedFile::open(path), context);
    }
};

}  // namespace

ReadOutcome readOvdlFile(std::shared_ptr<const platform::MappedFile> file, ReadContext& context)
{
    if (!file)
        return rejection("the file cannot be opened");
    try {
        return decodeDocument(openCompoundStreams(std::move(file)), context);
    } catch (const Refusal& refusal) {
        return rejection(refusal.what());
    }
}

std::unique_ptr<DocumentFormat> makeOvdlFormat()
{
    return std::make_unique<OvdlFormat>();
}

}  // namespace ovdl
