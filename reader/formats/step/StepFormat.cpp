// STEP and IGES documents: an import program reads them, and what it makes of them is read as any document
// of our own.
#include "raylume/platform/ChildProcess.h"
#include "raylume/platform/Files.h"
#include "raylume/platform/Paths.h"
#include "raylume/platform/Text.h"
#include "reader/DocumentFormat.h"
#include "reader/DocumentPath.h"
#include "reader/formats/ovdl/OvdlFile.h"
#include "reader/formats/step/FileStart.h"
#include "reader/formats/step/ImportRun.h"
#include "reader/formats/step/ImportSettings.h"

namespace ovdl {
namespace step {
namespace {

FileKind kindOf(const std::wstring& path)
{
    const auto file = platform::InputFile::open(path);
    if (!file)
        return FileKind::kOther;
    std::string start(kStartLength, '\0');
    start.resize(file->read(start.data(), start.size()));
    return fileKindOf(start);
}

// The last part of a read, for what came back: the host knows the version already, and how far it is.
class HandOver final : public ReadContext {
public:
    explicit HandOver(ReadContext& context) : context_(context) {}

    bool acceptVersion(unsigned long) override { return true; }
    void progress(float done) override { context_.progress(kBegin + (1 - kBegin) * done); }
    bool cancelled() override { return context_.cancelled(); }

private:
    static constexpr float kBegin = 0.95f;

    ReadContext& context_;
};

ReadOutcome rejection(std::string reason)
{
    ReadOutcome outcome;
    outcome.kind = ReadOutcome::kRejected;
    outcome.reason = std::move(reason);
    return outcome;
}

class StepFormat final : public DocumentFormat {
public:
    const char* name() const override { return "STEP and IGES"; }
    bool recognises(const std::wstring& path, std::string& reason) override;
    ReadOutcome read(const std::wstring& path, ReadContext& context) override;
};

bool StepFormat::recognises(const std::wstring& path, std::string& reason)
{
    if (kindOf(path) == FileKind::kOther)
        return false;
    const std::wstring program = importProgram();
    if (!platform::isProgram(program)) {
        reason = "the program that imports STEP and IGES is missing: " +
                 (program.empty() ? "ovdl-import" : platform::toUtf8(program));
        return false;
    }
    return true;
}

ReadOutcome StepFormat::read(const std::wstring& path, ReadContext& context)
{
    if (!context.acceptVersion(kForeignDocumentVersion))
        return rejection("the host refuses documents of foreign formats");
    const ImportRequest request{platform::nativePath(path), platform::toUtf8(DocumentPath(path).stem),
                                currentLimits(), currentTessellation()};
    ImportResult result = runImport(importProgram(), request, context);
    if (result.kind == ImportResult::kRefused)
        return rejection(std::move(result.reason));
    if (result.kind == ImportResult::kCancelled) {
        ReadOutcome outcome;
        outcome.kind = ReadOutcome::kCancelled;
        return outcome;
    }
    HandOver rest(context);
    return readOvdlFile(std::move(result.file), rest);
}

}  // namespace
}  // namespace step

std::unique_ptr<DocumentFormat> makeStepFormat()
{
    return std::make_unique<step::StepFormat>();
}

}  // namespace ovdl
