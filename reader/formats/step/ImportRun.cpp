#include "reader/formats/step/ImportRun.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <csignal>
#include <optional>
#include <utility>

#include "raylume/platform/AnonymousFile.h"
#include "raylume/platform/ChildProcess.h"
#include "raylume/platform/Text.h"

namespace ovdl::step {
namespace {

// The longest time between two questions for cancellation is 50.
constexpr int kMillisecondsAWait = 25;
// Longer lines no program of ours writes.
constexpr std::size_t kLongestLine = 8192;

// What the program needs of the host's environment: its libraries, and how sanitizers are set up.
const std::vector<std::string>& handedOn()
{
    static const std::vector<std::string> names = {"LD_LIBRARY_PATH", "ASAN_OPTIONS", "LSAN_OPTIONS",
                                                   "UBSAN_OPTIONS"};
    return names;
}

std::string megabytes(std::uint64_t bytes)
{
    if (bytes < 1048576)
        return std::to_string(bytes) + (bytes == 1 ? " byte" : " bytes");
    return std::to_string(bytes >> 20) + " megabytes";
}

std::string tooLong(const ImportLimits& limits)
{
    return "the import took longer than " + textOf(limits.seconds) + " seconds";
}

std::string endedBy(std::uint64_t signal, const ImportLimits& limits)
{
    if (signal == SIGXCPU)
        return tooLong(limits);
    // These no fault of its own raises.
    if (signal == SIGKILL || signal == SIGTERM)
        return "the import program was ended from outside (signal " + std::to_string(signal) + ")";
    return "the import program crashed on this file (signal " + std::to_string(signal) + ")";
}

// Whatever the program says may come from the file.
std::string plainLine(std::string_view text)
{
    std::wstring wide = platform::fromUtf8(shortened(text, kLongestReason));
    std::replace_if(
        wide.begin(), wide.end(), [](wchar_t c) { return c < 0x20 || c == 0x7F; }, L' ');
    return platform::toUtf8(wide);
}

// Listens to one program.
class Run {
public:
    Run(const ImportRequest& request, ReadContext& context, platform::ChildProcess& child)
        : request_(request), context_(context), child_(child), start_(Clock::now())
    {
    }

    /// Waits for the end. Nothing when the program did what it should; then size() is that of the file.
    std::optional<ImportResult> wait()
    {
        using Heard = platform::ChildProcess::Heard;
        for (;;) {
            if (context_.cancelled())
                return ended({ImportResult::kCancelled, nullptr, {}});
            if (isLate())
                return ended(refused(tooLong(request_.limits)));
            const Heard heard = child_.listen(kMillisecondsAWait, text_);
            // What ended the program may be what cancels.
            if (heard == Heard::kEnd && context_.cancelled())
                return ended({ImportResult::kCancelled, nullptr, {}});
            if (!takeLines())
                return ended(refused("the import program says what nobody understands"));
            if (heard == Heard::kEnd)
                return conclude();
        }
    }
    std::uint64_t size() const { return *size_; }

private:
    using Clock = std::chrono::steady_clock;

    static ImportResult refused(std::string reason)
    {
        return {ImportResult::kRefused, nullptr, std::move(reason)};
    }

    ImportResult ended(ImportResult result)
    {
        child_.kill();
        child_.end();
        return result;
    }

    bool isLate() const
    {
        const std::chrono::duration<double> passed = Clock::now() - start_;
        return request_.limits.seconds > 0 && passed.count() > request_.limits.seconds;
    }

    bool takeLines()
    {
        std::size_t begin = 0;
        for (std::size_t end; (end = text_.find('\n', begin)) != std::string::npos; begin = end + 1) {
            const auto line = parseLine(std::string_view(text_).substr(begin, end - begin));
            // Behind the last word there is none.
            if (!line || size_ || !take(*line))
                return false;
        }
        text_.erase(0, begin);
        return text_.size() <= kLongestLine;
    }

    bool take(const Line& line)
    {
        switch (line.message) {
        case Message::kProgress:
            if (const auto share = doubleOf(line.rest))
                context_.progress(static_cast<float>(kImported * std::clamp(*share, 0.0, 1.0)));
            return true;
        case Message::kComplete:
            size_ = countOf(line.rest);
            return size_.has_value();
        default:
            if (reason_.empty())
                reason_ = reasonIn(line);
            return true;
        }
    }

    std::string reasonIn(const Line& line) const
    {
        const ImportLimits& limits = request_.limits;
        switch (line.message) {
        case Message::kNoMemory:
            return "the import needs more memory than " + megabytes(limits.memoryBytes);
        case Message::kOutputFull:
            return "the imported document is larger than " + megabytes(limits.outputBytes);
        case Message::kCrashed:
            return endedBy(countOf(line.rest).value_or(0), limits);
        default:
            return plainLine(line.rest);
        }
    }

    // How it ended tells only why there is no result: a host may keep that from anybody.
    std::optional<ImportResult> conclude()
    {
        const auto end = child_.end();
        if (size_ && reason_.empty() && text_.empty())
            return std::nullopt;
        if (reason_.empty())
            reason_ = end && end->bySignal
                          ? endedBy(static_cast<std::uint64_t>(end->number), request_.limits)
                          : "the import program ended without a result";
        return refused(reason_);
    }

    // What remains is for reading what came back.
    static constexpr double kImported = 0.95;

    const ImportRequest& request_;
    ReadContext& context_;
    platform::ChildProcess& child_;
    Clock::time_point start_;
    std::string text_;
    std::string reason_;
    std::optional<std::uint64_t> size_;
};

}  // namespace

ImportResult runImport(const std::wstring& program, const ImportRequest& request, ReadContext& context)
{
    const auto file = platform::AnonymousFile::create();
    const auto child =
        file ? platform::ChildProcess::start(program, argumentsOf(request), handedOn(), *file) : nullptr;
    if (!child)
        return {ImportResult::kRefused, nullptr, "the import program cannot be started"};
    Run run(request, context, *child);
    if (auto result = run.wait())
        return std::move(*result);
    if (run.size() != file->size())
        return {ImportResult::kRefused, nullptr, "the import program handed over half a document"};
    auto mapped = file->sealAndMap();
    if (!mapped)
        return {ImportResult::kRefused, nullptr, "the imported document cannot be mapped"};
    return {ImportResult::kDone, std::move(mapped), {}};
}

}  // namespace ovdl::step
