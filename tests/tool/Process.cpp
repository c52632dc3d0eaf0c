#include "Process.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <stdexcept>

namespace tool_test {
namespace {

/// Both ends of a pipe, or of a terminal.
struct Channel {
    int readEnd = -1;
    int writeEnd = -1;
};

Channel openPipe()
{
    int ends[2];
    if (pipe(ends) != 0)
        throw std::runtime_error("no pipe");
    return {ends[0], ends[1]};
}

Channel openTerminal()
{
    const int master = posix_openpt(O_RDWR | O_NOCTTY);
    if (master < 0 || grantpt(master) != 0 || unlockpt(master) != 0)
        throw std::runtime_error("no terminal");
    return {master, open(ptsname(master), O_RDWR | O_NOCTTY)};
}

[[noreturn]] void becomeProgram(const Program& program, const Channel& out, const Channel& err)
{
    for (const auto& [name, value] : program.environment)
        value.empty() ? unsetenv(name.c_str()) : setenv(name.c_str(), value.c_str(), 1);
    const int target =
        program.outTo.empty() ? out.writeEnd : open(program.outTo.c_str(), O_WRONLY | O_CREAT, 0600);
    dup2(target, STDOUT_FILENO);
    dup2(err.writeEnd, STDERR_FILENO);
    for (const int end : {out.readEnd, out.writeEnd, err.readEnd, err.writeEnd})
        close(end);
    std::vector<char*> arguments;
    for (const std::string& argument : program.command)
        arguments.push_back(const_cast<char*>(argument.c_str()));
    arguments.push_back(nullptr);
    execv(arguments[0], arguments.data());
    _exit(127);
}

// False at the end of what there is to read.
bool readSome(int end, std::string& text)
{
    char bytes[4096];
    const ssize_t count = read(end, bytes, sizeof bytes);
    if (count > 0)
        text.append(bytes, static_cast<std::size_t>(count));
    return count > 0;
}

void collect(const Program& program, int process, Channel out, Channel err, Finished& finished)
{
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::minutes(2);
    pollfd ends[] = {{out.readEnd, POLLIN, 0}, {err.readEnd, POLLIN, 0}};
    while (ends[0].fd >= 0 || ends[1].fd >= 0) {
        if (std::chrono::steady_clock::now() > deadline)
            kill(process, SIGKILL);
        if (poll(ends, 2, 1000) <= 0)
            continue;
        if (ends[0].revents != 0 && !readSome(ends[0].fd, finished.out))
            ends[0].fd = -1;
        if (ends[1].revents == 0)
            continue;
        if (!readSome(ends[1].fd, finished.err))
            ends[1].fd = -1;
        else if (program.onErr)
            program.onErr(process, finished.err);
    }
}

}  // namespace

Finished run(const Program& program)
{
    const Channel out = openPipe();
    const Channel err = program.terminalForErr ? openTerminal() : openPipe();
    const int process = fork();
    if (process == 0)
        becomeProgram(program, out, err);
    close(out.writeEnd);
    close(err.writeEnd);
    Finished finished;
    collect(program, process, out, err, finished);
    int status = 0;
    waitpid(process, &status, 0);
    close(out.readEnd);
    close(err.readEnd);
    if (WIFEXITED(status))
        finished.exitStatus = WEXITSTATUS(status);
    else
        finished.signal = WTERMSIG(status);
    return finished;
}

}  // namespace tool_test
