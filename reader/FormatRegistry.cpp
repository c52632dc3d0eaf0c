#include "reader/FormatRegistry.h"

#include <exception>
#include <new>

#include "raylume/platform/Files.h"
#include "reader/HostState.h"

namespace ovdl {
namespace {

// A format that fails while it looks at a file does not take the host with it.
bool recognises(DocumentFormat& format, const std::wstring& path, std::string& reason)
{
    try {
        return format.recognises(path, reason);
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const std::exception& failure) {
        reason = std::string(format.name()) + ": " + failure.what();
    } catch (...) {
        reason = std::string(format.name()) + ": failed while looking at the document";
    }
    return false;
}

}  // namespace

FormatRegistry& FormatRegistry::instance()
{
    static FormatRegistry registry(makeFormats());
    return registry;
}

FormatRegistry::FormatRegistry(std::vector<std::unique_ptr<DocumentFormat>> formats)
    : formats_(std::move(formats))
{
}

DocumentFormat* FormatRegistry::find(const std::wstring& path, std::string& reason)
{
    for (const auto& format : formats_) {
        std::string why;
        if (recognises(*format, path, why))
            return format.get();
        if (!why.empty()) {
            reason = std::move(why);
            return nullptr;
        }
    }
    reason = refusal(path);
    return nullptr;
}

bool FormatRegistry::canOpen(const std::wstring& path)
{
    std::string reason;
    const bool found = find(path, reason) != nullptr;
    setLastReason(reason);
    return found;
}

void FormatRegistry::forgetProbes()
{
    for (const auto& format : formats_)
        format->forgetProbes();
}

std::vector<std::string> FormatRegistry::names() const
{
    std::vector<std::string> names;
    for (const auto& format : formats_)
        names.emplace_back(format->name());
    return names;
}

std::string FormatRegistry::refusal(const std::wstring& path) const
{
    switch (platform::pathKind(path)) {
    case platform::PathKind::kNothing:
        return "there is no such file";
    case platform::PathKind::kFolder:
        return "a folder is no document";
    case platform::PathKind::kFile:
        break;
    }
    if (!platform::InputFile::open(path))
        return "the file cannot be opened for reading";
    return "no format of this reader recognises the file";
}

}  // namespace ovdl
