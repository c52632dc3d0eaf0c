#include "raylume/platform/Files.h"
#include "reader/DocumentFormat.h"
#include "reader/formats/ovdl/Decoder.h"
#include "reader/formats/ovdl/JsonText.h"
#include "reader/formats/ovdl/Refusal.h"

namespace ovdl {
namespace {

std::string_view textOf(const platform::MappedFile& file)
{
    return {reinterpret_cast<const char*>(file.data()), file.size()};
}

// The buffers are made of the text at once, so the file is needed no longer than that.
std::unique_ptr<DocumentStreams> openStreams(const std::wstring& path)
{
    const auto file = platform::MappedFile::open(path);
    if (!file)
        refuse("the file cannot be opened");
    return readJsonStreams(textOf(*file));
}

class JsonFormat : public DocumentFormat {
public:
    const char* name() const override { return ".ovdl as JSON"; }

    bool recognises(const std::wstring& path, std::string&) override
    {
        const auto file = platform::MappedFile::open(path);
        return file && startsLikeOurJson(textOf(*file));
    }

    ReadOutcome read(const std::wstring& path, ReadContext& context) override
    {
        try {
            return decodeDocument(openStreams(path), context);
        } catch (const Refusal& refusal) {
            ReadOutcome outcome;
            outcome.kind = ReadOutcome::kRejected;
            outcome.reason = refusal.what();
            return outcome;
        }
    }
};

}  // namespace

std::unique_ptr<DocumentFormat> makeOvdlJsonFormat()
{
    return std::make_unique<JsonFormat>();
}

}  // namespace ovdl
