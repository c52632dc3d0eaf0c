#include "raylume/platform/Messages.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <string_view>
#include <utility>

#include "raylume/platform/Environment.h"
#include "raylume/platform/Paths.h"
#include "raylume/platform/Text.h"
#include "raylume/platform/posix/Handles.h"

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

// Where the next bytes may come to stand at most; a pipe or a terminal has no such place.
std::uint64_t endOf(int file)
{
    struct stat status;
    if (fstat(file, &status) != 0 || !S_ISREG(status.st_mode)) {
        return 0;
    }
    return static_cast<std::uint64_t>(std::max({off_t{0}, status.st_size, lseek(file, 0, SEEK_CUR)}));
}

// A message that does not fit any more is lost, and not the process.
void writeMessage(int file, std::string_view bytes)
{
    if (mayHold(endOf(file) + bytes.size())) {
        writeAll(file, bytes);
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
    const FileHandle file(open(nativePath(path).c_str(), flags, 0666));
    if (file.isOpen()) {
        writeMessage(file.number(), bytes);
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
        writeMessage(STDERR_FILENO, bytes);
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
        writeMessage(STDERR_FILENO, asOneLine(text));
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
