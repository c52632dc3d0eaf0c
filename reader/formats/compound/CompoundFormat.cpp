// Compound files that no other format reads. Settings that an add-in stored in them can be had by their
// path; a model cannot.
#include <cstdio>
#include <cstring>

#include "raylume/platform/CompoundFile.h"
#include "raylume/platform/Files.h"
#include "raylume/platform/Reference.h"
#include "reader/DocumentFormat.h"
#include "reader/DocumentHeader.h"

namespace ovdl {
namespace {

std::string openFailure(HResult result)
{
    char text[80];
    std::snprintf(text, sizeof(text), "the compound file cannot be read (0x%08X)",
                  static_cast<unsigned>(result));
    return text;
}

class CompoundFormat final : public DocumentFormat {
public:
    const char* name() const override { return "compound file (settings only)"; }

    bool recognises(const std::wstring& path, std::string&) override
    {
        static constexpr unsigned char kSignature[] = {0xD0, 0xCF, 0x11, 0xE0, 0xA1, 0xB1, 0x1A, 0xE1};
        unsigned char start[sizeof(kSignature)];
        const auto file = platform::InputFile::open(path);
        return file && file->read(start, sizeof(start)) == sizeof(start) &&
               std::memcmp(start, kSignature, sizeof(start)) == 0;
    }

    ReadOutcome read(const std::wstring& path, ReadContext& context) override
    {
        ReadOutcome outcome;
        outcome.kind = ReadOutcome::kRejected;
        platform::Reference<IStorage> root;
        const HResult result = platform::openCompoundFile(path, false, root.out());
        if (result < 0) {
            outcome.reason = openFailure(result);
            return outcome;
        }
        const auto header = readHeader(*root.get());
        context.acceptVersion(header ? header->documentVersion : kVersionWithoutHeader);
        outcome.reason = "a compound file without a document that this reader knows";
        return outcome;
    }
};

}  // namespace

std::unique_ptr<DocumentFormat> makeCompoundFormat()
{
    return std::make_unique<CompoundFormat>();
}

}  // namespace ovdl
