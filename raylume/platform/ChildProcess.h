// A program that this process starts, listens to and ends. The other end is WorkerProcess.h.
//
// The host may be anybody's: it may ignore its children, wait for all of them itself, or have given out the
// numbers 0 to 2 for files of its own. So how a child ended is a hint and nothing more; what it did is told
// by what it writes.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "raylume/platform/AnonymousFile.h"
#include "raylume/platform/Export.h"

namespace platform {

/// The numbers under which a child finds its two handles. All others are closed in it.
inline constexpr int kChildPipe = 3;
inline constexpr int kChildFile = 4;

/// How a child ended: by its own exit, or by a signal.
struct ChildEnd {
    bool bySignal = false;
    int number = 0;  ///< Exit status or signal.
};

class PLATFORM_API ChildProcess {
public:
    /// Starts a program with its standard streams on the null device, no signal blocked or ignored, and of
    /// the environment only what `environment` names. It may write to the pipe that this object listens to,
    /// and to `file`. It has a process group of its own, so that what a terminal sends to the host's does not
    /// reach it. Null when it cannot be started, or when `program` is no absolute path.
    static std::unique_ptr<ChildProcess> start(const std::wstring& program,
                                               const std::vector<std::string>& arguments,
                                               const std::vector<std::string>& environment,
                                               const AnonymousFile& file);

    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;
    /// Ends the program if it still runs.
    virtual ~ChildProcess();

    enum class Heard { kSomething, kNothing, kEnd };
    /// Waits that long at most for what the program writes, and appends it to `text`. kEnd when the program
    /// has closed its end, for good.
    virtual Heard listen(int milliseconds, std::string& text) = 0;
    /// Ends the program at once, and no other, even if its number has meanwhile been given to another.
    virtual void kill() = 0;
    /// How the program ended, once it has closed its end of the pipe; ends it when it has not. Nothing when
    /// the host's way with children lets nobody know.
    virtual std::optional<ChildEnd> end() = 0;

protected:
    ChildProcess();
};

/// Whether a file is there that this process may run.
PLATFORM_API bool isProgram(const std::wstring& path);

/// The folder, absolute and with a separator at its end, of the library or program that holds the function at
/// `address`, whatever the current folder is and was; empty when the system does not tell.
PLATFORM_API std::wstring folderOfCode(const void* address);

}  // namespace platform
