#include "reader/HostHandlers.h"

#include <memory>

#include "raylume/platform/Text.h"
#include "reader/FormatRegistry.h"
#include "reader/HostState.h"

namespace ovdl {
namespace {

constexpr std::size_t kLongestReason = 500;

// Shared, so that a handler that replaces itself is not destroyed under its own feet.
template <class Signature>
using Handler = std::shared_ptr<std::function<Signature>>;

Handler<void(float)>& progressHandler()
{
    static Handler<void(float)> handler;
    return handler;
}

Handler<bool()>& cancelHandler()
{
    static Handler<bool()> handler;
    return handler;
}

std::string& reasonText()
{
    static std::string text;
    return text;
}

template <class Signature>
Handler<Signature> sharedHandler(std::function<Signature> handler)
{
    if (!handler)
        return nullptr;
    return std::make_shared<std::function<Signature>>(std::move(handler));
}

bool breaksLine(wchar_t character)
{
    const auto code = static_cast<unsigned long>(character);
    return code < 0x20 || (code >= 0x7F && code <= 0x9F) || code == 0x2028 || code == 0x2029;
}

std::wstring trimmed(const std::wstring& text)
{
    const std::size_t first = text.find_first_not_of(L' ');
    if (first == std::wstring::npos)
        return {};
    return text.substr(first, text.find_last_not_of(L' ') - first + 1);
}

}  // namespace

void setProgressHandler(std::function<void(float done)> handler)
{
    progressHandler() = sharedHandler(std::move(handler));
}

void setCancelHandler(std::function<bool()> handler)
{
    cancelHandler() = sharedHandler(std::move(handler));
}

std::string lastReason()
{
    return reasonText();
}

std::vector<std::string> formatNames()
{
    return FormatRegistry::instance().names();
}

void forwardProgress(float done)
{
    if (const auto handler = progressHandler())
        (*handler)(done);
}

bool forwardCancelQuestion()
{
    const auto handler = cancelHandler();
    return handler && (*handler)();
}

void setLastReason(std::string_view reason)
{
    reasonText() = oneLine(reason);
}

std::string oneLine(std::string_view text)
{
    // A code point has at most four bytes, so nothing that would be kept is lost here.
    std::wstring line = platform::fromUtf8(text.substr(0, 4 * (kLongestReason + 1)));
    for (wchar_t& character : line)
        if (breaksLine(character))
            character = L' ';
    line = trimmed(line);
    if (line.size() > kLongestReason)
        line = line.substr(0, kLongestReason - 3) + L"...";
    return platform::toUtf8(line);
}

}  // namespace ovdl
