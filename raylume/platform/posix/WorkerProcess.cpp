#include "raylume/platform/WorkerProcess.h"

#include <poll.h>
#include <pthread.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "raylume/platform/posix/Handles.h"

namespace platform {

namespace {

bool limit(int resource, std::uint64_t value)
{
    struct rlimit now;
    if (getrlimit(resource, &now) != 0) {
        return false;
    }
    // Where the host is limited already, the narrower limit holds.
    const rlim_t wanted = std::min<rlim_t>(value, now.rlim_max);
    const struct rlimit limits = {wanted, wanted};
    return setrlimit(resource, &limits) == 0;
}

bool limitIfSet(int resource, std::uint64_t value)
{
    return value == 0 || limit(resource, value);
}

// An error that is polled for comes up when the last reader is gone.
void* watch(void* pipe)
{
    struct pollfd watched = {static_cast<int>(reinterpret_cast<std::intptr_t>(pipe)), 0, 0};
    while (poll(&watched, 1, -1) < 0 && errno == EINTR) {
    }
    _exit(EXIT_FAILURE);
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
    signal(SIGXFSZ, SIG_IGN);
    return limit(RLIMIT_CORE, 0) && limitIfSet(RLIMIT_CPU, limits.processorSeconds) &&
           limitIfSet(RLIMIT_AS, limits.memoryBytes) && limitIfSet(RLIMIT_FSIZE, limits.fileBytes);
}

void endWithPipe(int pipe)
{
    signal(SIGPIPE, SIG_DFL);
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setdetachstate(&attributes, PTHREAD_CREATE_DETACHED);
    pthread_t thread;
    pthread_create(&thread, &attributes, watch, reinterpret_cast<void*>(static_cast<std::intptr_t>(pipe)));
    pthread_attr_destroy(&attributes);
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
