// Runs a program and keeps what it said.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

namespace tool_test {

struct Finished {
    int exitStatus = -1;  ///< -1 when a signal ended the program.
    int signal = 0;       ///< The signal that ended it.
    std::string out;
    std::string err;
};

struct Program {
    std::vector<std::string> command;  ///< Program and arguments.
    /// Variables to set; an empty value removes one.
    std::map<std::string, std::string> environment;
    bool terminalForErr = false;  ///< Standard error is a terminal of its own.
    std::string outTo;            ///< A file for standard output, in place of a pipe.
    /// Called with the process's id whenever standard error said something new.
    std::function<void(int processId, const std::string& err)> onErr;
};

/// Waits at most two minutes; a program that takes longer is killed.
Finished run(const Program& program);

}  // namespace tool_test
