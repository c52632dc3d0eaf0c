#include "raylume/platform/WorkerProcess.h"

#include <poll.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/time.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "raylume/platform/posix/Handles.h"

namespace platform {

namespace {

// Between `value` and the hard limit, which lies `grace` above, a process may still say what ends it.
bool limit(int resource, std::uint64_t value, std::uint64_t grace)
{
    struct rlimit now;
    if (getrlimit(resource, &now) != 0) {
        return false;
    }
    // Where the host is limited already, the narrower limit holds.
    const struct rlimit limits = {std::min<rlim_t>(value, now.rlim_cur),
                                  std::min<rlim_t>(value + grace, now.rlim_max)};
    return setrlimit(resource, &limits) == 0;
}

bool limitIfSet(int resource, std::uint64_t value, std::uint64_t grace = 0)
{
    return value == 0 || limit(resource, value, grace);
}

int watchedPipe = -1;

// Nothing here but what a handler may call. The error of a pipe comes up when its last reader is gone.
void lookAtPipe(int)
{
    const int error = errno;
    struct pollfd watched = {watchedPipe, 0, 0};
    if (poll(&watched, 1, 0) > 0 && (watched.revents & (POLLERR | POLLNVAL)) != 0) {
        _exit(EXIT_FAILURE);
    }
    errno = error;
}

int crashPipe = -1;
char crashLine[24];
std::size_t crashWordLength = 0;

// Nothing here but what a handler may call.
void announceCrash(int signal)
{
    std::size_t length = crashWordLength;
    crashLine[length++] = ' ';
    if (signal >= 10) {
        crashLine[length++] = static_cast<char>('0' + signal / 10 % 10);
    }
    crashLine[length++] = static_cast<char>('0' + signal % 10);
    crashLine[length++] = '\n';
    [[maybe_unused]] const ssize_t written = write(crashPipe, crashLine, length);
    // The handler is gone by now, so this ends the process as the signal does.
    raise(signal);
}

void handle(int signal)
{
    struct sigaction action = {};
    action.sa_handler = announceCrash;
    // A stack that has run over has no room for the handler.
    action.sa_flags = SA_ONSTACK | SA_RESETHAND | SA_NODEFER;
    sigemptyset(&action.sa_mask);
    sigaction(signal, &action, nullptr);
}

}  // namespace

bool limitThisProcess(const WorkerLimits& limits)
{
    constexpr std::uint64_t kSecondsToSayIt = 2;
    signal(SIGXFSZ, SIG_IGN);
    return limit(RLIMIT_CORE, 0, 0) && limitIfSet(RLIMIT_CPU, limits.processorSeconds, kSecondsToSayIt) &&
           limitIfSet(RLIMIT_AS, limits.memoryBytes) && limitIfSet(RLIMIT_FSIZE, limits.fileBytes);
}

// By a clock and not by a thread: as long as there is one thread, the allocator takes no locks.
void endWithPipe(int pipe)
{
    constexpr int kMicroseconds = 100000;
    signal(SIGPIPE, SIG_DFL);
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    watchedPipe = pipe;
    struct sigaction action = {};
    action.sa_handler = lookAtPipe;
    action.sa_flags = SA_RESTART;
    sigemptyset(&action.sa_mask);
    sigaction(SIGALRM, &action, nullptr);
    const struct itimerval often = {{0, kMicroseconds}, {0, kMicroseconds}};
    setitimer(ITIMER_REAL, &often, nullptr);
}

void announceCrashes(int pipe, std::string_view word)
{
    static unsigned char stack[65536];
    crashPipe = pipe;
    crashWordLength = std::min<std::size_t>(word.size(), 16);
    std::memcpy(crashLine, word.data(), crashWordLength);
    const stack_t spare = {stack, 0, sizeof(stack)};
    sigaltstack(&spare, nullptr);
    for (const int signal : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT, SIGXCPU, SIGSYS}) {
        handle(signal);
    }
}

bool writeToPipe(int pipe, std::string_view text)
{
    return writeAll(pipe, text);
}

void endThisProcess(int status)
{
    _exit(status);
}

}  // namespace platform
