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

struct Cancelled {};

// The buffers are made of the text at once, so the file is needed no longer than that.
std::unique_ptr<DocumentStreams> openStreams(const std::wstring& path, ReadContext& context)
{
    const auto file = platform::MappedFile::open(path);
    if (!file)
        refuse("the file cannot be opened");
    return readJsonStreams(textOf(*file), [&context] {
        if (context.cancelled())
            throw Cancelled();
    });
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
        ReadOutcome outcome;
        try {
            outcome = decodeDocument(openStreams(path, context), context);
        } catch (const Refusal& refusal) {
            outcome.kind = ReadOutcome::kRejected;
            outcome.reason = refusal.what();
        } catch (const Cancelled&) {
            outcome.kind = ReadOutcome::kCancelled;
        }
        return outcome;
    }
};

}  // namespace

std::unique_ptr<DocumentFormat> makeOvdlJsonFormat()
{
    return std::make_unique<JsonFormat>();
}

}  // namespace ovdl
