#include "raylume/platform/ChildProcess.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cinttypes>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <utility>

#include "raylume/platform/Paths.h"
#include "raylume/platform/Text.h"
#include "raylume/platform/posix/Handles.h"

namespace platform {

namespace {

// Above all numbers that a child's handles get, so that one cannot be closed while another takes its place.
constexpr int kFirstNumber = 16;

FileHandle movedUp(int number)
{
    return FileHandle(fcntl(number, F_DUPFD_CLOEXEC, kFirstNumber));
}

struct Pipe {
    FileHandle reading{-1};
    FileHandle writing{-1};
};

// Both ends above kFirstNumber; not open when there is no pipe to be had.
Pipe makePipe()
{
    int numbers[2];
    if (pipe2(numbers, O_CLOEXEC) != 0) {
        return {};
    }
    const FileHandle first(numbers[0]);
    const FileHandle second(numbers[1]);
    return {movedUp(first.number()), movedUp(second.number())};
}

class Actions {
public:
    Actions(int pipe, int file)
    {
        posix_spawn_file_actions_init(&actions_);
        for (int stream = 0; stream < 3; ++stream) {
            add(posix_spawn_file_actions_addopen(&actions_, stream, "/dev/null", O_RDWR, 0));
        }
        add(posix_spawn_file_actions_adddup2(&actions_, pipe, kChildPipe));
        add(posix_spawn_file_actions_adddup2(&actions_, file, kChildFile));
        add(posix_spawn_file_actions_addclosefrom_np(&actions_, kChildFile + 1));
    }
    Actions(const Actions&) = delete;
    Actions& operator=(const Actions&) = delete;
    ~Actions() { posix_spawn_file_actions_destroy(&actions_); }

    const posix_spawn_file_actions_t* get() const { return complete_ ? &actions_ : nullptr; }

private:
    void add(int error) { complete_ = complete_ && error == 0; }

    posix_spawn_file_actions_t actions_;
    bool complete_ = true;
};

// What the host blocks or ignores is no business of the child's. Nor is what a terminal sends to the host's
// group: the host decides what its interruption means for the child.
class Attributes {
public:
    Attributes()
    {
        posix_spawnattr_init(&attributes_);
        sigset_t signals;
        sigemptyset(&signals);
        posix_spawnattr_setsigmask(&attributes_, &signals);
        sigfillset(&signals);
        posix_spawnattr_setsigdefault(&attributes_, &signals);
        posix_spawnattr_setpgroup(&attributes_, 0);
        posix_spawnattr_setflags(&attributes_,
                                 POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETPGROUP);
    }
    Attributes(const Attributes&) = delete;
    Attributes& operator=(const Attributes&) = delete;
    ~Attributes() { posix_spawnattr_destroy(&attributes_); }

    const posix_spawnattr_t* get() const { return &attributes_; }

private:
    posix_spawnattr_t attributes_;
};

std::vector<char*> pointersTo(std::vector<std::string>& texts)
{
    std::vector<char*> pointers;
    for (std::string& text : texts) {
        pointers.push_back(text.data());
    }
    pointers.push_back(nullptr);
    return pointers;
}

std::vector<std::string> variables(const std::vector<std::string>& names)
{
    std::vector<std::string> result;
    for (const std::string& name : names) {
        if (const char* value = std::getenv(name.c_str())) {
            result.push_back(name + "=" + value);
        }
    }
    return result;
}

// The number of the new process, or -1.
pid_t spawn(const std::string& program, const std::vector<std::string>& arguments,
            const std::vector<std::string>& environment, int pipe, int file)
{
    const Actions actions(pipe, file);
    const Attributes attributes;
    std::vector<std::string> texts = {program};
    texts.insert(texts.end(), arguments.begin(), arguments.end());
    std::vector<std::string> values = variables(environment);
    pid_t child = -1;
    const bool started =
        actions.get() && posix_spawn(&child, program.c_str(), actions.get(), attributes.get(),
                                     pointersTo(texts).data(), pointersTo(values).data()) == 0;
    return started ? child : -1;
}

bool hasHungUp(int pipe)
{
    struct pollfd state = {pipe, 0, 0};
    return poll(&state, 1, 0) > 0 && (state.revents & POLLHUP) != 0;
}

// Stays the handle of that process when its number has gone to another.
FileHandle openHandle(pid_t process)
{
    return FileHandle(static_cast<int>(syscall(SYS_pidfd_open, process, 0)));
}

class PosixChild final : public ChildProcess {
public:
    // A host that ignores its children loses their numbers to others as soon as they end. The child held
    // its end of the pipe after the handle was made, so the handle is that child's.
    PosixChild(pid_t child, FileHandle pipe)
        : child_(child), pipe_(std::move(pipe)), handle_(openHandle(child))
    {
        isSure_ = handle_.isOpen() && !hasHungUp(pipe_.number());
    }
    ~PosixChild() override { end(); }

    Heard listen(int milliseconds, std::string& text) override;
    void kill() override;
    std::optional<ChildEnd> end() override;

private:
    int wait(siginfo_t& state, int options) const;
    bool isRunning() const;

    pid_t child_;
    FileHandle pipe_;
    FileHandle handle_;
    bool isSure_;
    bool isReaped_ = false;
    std::optional<ChildEnd> end_;
};

ChildProcess::Heard PosixChild::listen(int milliseconds, std::string& text)
{
    struct pollfd state = {pipe_.number(), POLLIN, 0};
    const int ready = poll(&state, 1, milliseconds);
    if (ready <= 0) {
        return Heard::kNothing;
    }
    char buffer[4096];
    const ssize_t count = read(pipe_.number(), buffer, sizeof(buffer));
    if (count > 0) {
        text.append(buffer, static_cast<std::size_t>(count));
        return Heard::kSomething;
    }
    return count < 0 && errno == EINTR ? Heard::kNothing : Heard::kEnd;
}

// By the handle where that is sure: the number may be another child's by now.
int PosixChild::wait(siginfo_t& state, int options) const
{
    int result;
    do {
        result = isSure_ ? waitid(P_PIDFD, static_cast<id_t>(handle_.number()), &state, options)
                         : waitid(P_PID, static_cast<id_t>(child_), &state, options);
    } while (result != 0 && errno == EINTR);
    return result;
}

bool PosixChild::isRunning() const
{
    siginfo_t state = {};
    return wait(state, WEXITED | WNOHANG | WNOWAIT) == 0 && state.si_pid == 0;
}

// Without a handle that is sure, the number is the child's as long as nobody has waited for it, which a
// host that ignores its children has done at once.
void PosixChild::kill()
{
    if (isReaped_) {
        return;
    }
    if (isSure_) {
        syscall(SYS_pidfd_send_signal, handle_.number(), SIGKILL, nullptr, 0);
        return;
    }
    if (isRunning()) {
        ::kill(child_, SIGKILL);
    }
}

std::optional<ChildEnd> PosixChild::end()
{
    if (isReaped_) {
        return end_;
    }
    // It closes its pipe by ending; one that goes on without it is not waited for.
    constexpr int kGrace = 200;
    for (int i = 0; i < kGrace && hasHungUp(pipe_.number()) && isRunning(); ++i) {
        poll(nullptr, 0, 1);
    }
    kill();
    siginfo_t state = {};
    isReaped_ = true;
    if (wait(state, WEXITED) == 0) {
        end_ = ChildEnd{state.si_code != CLD_EXITED, state.si_status};
    }
    return end_;
}

// Lines of the system's list: "<begin>-<end> <access> <offset> <device> <number>  <path>", with numbers in
// hexadecimals. A line end in a path is written as an octal number.
std::string fileMappedAt(std::uintptr_t address)
{
    std::ifstream list("/proc/self/maps");
    for (std::string line; std::getline(list, line);) {
        std::uintptr_t begin = 0;
        std::uintptr_t end = 0;
        int width = 0;
        if (std::sscanf(line.c_str(), "%" SCNxPTR "-%" SCNxPTR " %*s %*s %*s %*s %n", &begin, &end,
                        &width) < 2) {
            continue;
        }
        if (begin <= address && address < end) {
            std::string path = line.substr(static_cast<std::size_t>(width));
            for (std::size_t at; (at = path.find("\\012")) != std::string::npos;) {
                path.replace(at, 4, "\n");
            }
            return path;
        }
    }
    return {};
}

}  // namespace

ChildProcess::ChildProcess() = default;
ChildProcess::~ChildProcess() = default;

std::unique_ptr<ChildProcess> ChildProcess::start(const std::wstring& program,
                                                  const std::vector<std::string>& arguments,
                                                  const std::vector<std::string>& environment,
                                                  const AnonymousFile& file)
{
    const std::string native = nativePath(program);
    // Whatever lies in the current folder is not what anybody means.
    if (!native.starts_with('/')) {
        return nullptr;
    }
    Pipe pipe = makePipe();
    const FileHandle output = movedUp(file.number());
    if (!pipe.reading.isOpen() || !pipe.writing.isOpen() || !output.isOpen()) {
        return nullptr;
    }
    const pid_t child = spawn(native, arguments, environment, pipe.writing.number(), output.number());
    if (child < 0) {
        return nullptr;
    }
    pipe.writing.close();
    return std::make_unique<PosixChild>(child, std::move(pipe.reading));
}

bool isProgram(const std::wstring& path)
{
    const std::string native = nativePath(path);
    struct stat status;
    return stat(native.c_str(), &status) == 0 && S_ISREG(status.st_mode) &&
           access(native.c_str(), X_OK) == 0;
}

// The loader's own name for a library may be relative to a folder that is no longer the current one; the
// system's list of what is mapped has absolute ones.
std::wstring folderOfCode(const void* address)
{
    std::string path = fileMappedAt(reinterpret_cast<std::uintptr_t>(address));
    Dl_info info;
    if (path.empty() && dladdr(address, &info) != 0 && info.dli_fname) {
        path = info.dli_fname;
    }
    return path.starts_with('/') ? fromUtf8(path.substr(0, path.rfind('/') + 1)) : std::wstring();
}

}  // namespace platform
