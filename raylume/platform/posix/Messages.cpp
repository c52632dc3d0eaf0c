#include "raylume/platform/Messages.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <string_view>
#include <utility>

#include "raylume/platform/Environment.h"
#include "raylume/platform/Paths.h"
#include "raylume/platform/Text.h"

namespace platform {

namespace {

using Handler = std::function<void(const std::wstring&)>;

// Never destroyed: other code may still have something to say while the process ends.
Handler& messageBoxHandler()
{
    static auto& handler = *new Handler;
    return handler;
}

Handler& debugOutputHandler()
{
    static auto& handler = *new Handler;
    return handler;
}

void writeAll(int file, std::string_view bytes)
{
    while (!bytes.empty()) {
        const ssize_t count = write(file, bytes.data(), bytes.size());
        if (count > 0) {
            bytes.remove_prefix(static_cast<std::size_t>(count));
        } else if (count == 0 || errno != EINTR) {
            return;
        }
    }
}

// Texts come from documents too: line breaks and terminal controls do not reach the terminal.
std::string asOneLine(const std::wstring& text)
{
    std::wstring line = text;
    for (wchar_t& character : line) {
        const bool isControl =
            (character >= 0 && character < 0x20) || (character >= 0x7F && character < 0xA0);
        character = isControl ? L' ' : character;
    }
    return toUtf8(line) + "\n";
}

void appendToFile(const std::wstring& path, std::string_view bytes)
{
    const int flags = O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC | O_NONBLOCK | O_NOCTTY;
    const int file = open(nativePath(path).c_str(), flags, 0666);
    if (file >= 0) {
        writeAll(file, bytes);
        close(file);
    }
}

void writeDebugOutput(const std::wstring& text)
{
    const auto target = environmentVariable("RAYLUME_DEBUG_OUTPUT");
    if (!target) {
        return;
    }
    const std::string bytes = toUtf8(text);
    if (*target == L"-") {
        writeAll(STDERR_FILENO, bytes);
    } else {
        appendToFile(*target, bytes);
    }
}

}  // namespace

void showMessageBox(const std::wstring& text)
{
    // A copy, since a handler may put another one in its own place.
    const Handler handler = messageBoxHandler();
    if (handler) {
        handler(text);
    } else {
        writeAll(STDERR_FILENO, asOneLine(text));
    }
}

void setMessageBoxHandler(std::function<void(const std::wstring&)> handler)
{
    messageBoxHandler() = std::move(handler);
}

void debugOutput(const std::wstring& text)
{
    const Handler handler = debugOutputHandler();
    if (handler) {
        handler(text);
    } else {
        writeDebugOutput(text);
    }
}

void setDebugOutputHandler(std::function<void(const std::wstring&)> handler)
{
    debugOutputHandler() = std::move(handler);
}

}  // namespace platform
