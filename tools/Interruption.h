// The user's interrupt, turned into the library's cancel flag.
#pragma once

namespace tool {

/// While an object of this kind lives, an interrupt or a request to terminate sets a flag, and with
/// it g_terminateLoad, in place of ending the process. One at a time; the destructor brings back what
/// was there before and clears both flags.
class Interruption {
public:
    Interruption();
    Interruption(const Interruption&) = delete;
    Interruption& operator=(const Interruption&) = delete;
    ~Interruption();

    /// True from the first signal on.
    static bool requested();

private:
    using Handler = void (*)(int);

    Handler previousInterrupt_;
    Handler previousTerminate_;
};

}  // namespace tool
