// How the formats of this folder say that a document cannot be read or written.
#pragma once

#include <stdexcept>
#include <string>

namespace ovdl {

/// Any text as one line of true UTF-8, which a reason is.
std::string reasonLine(std::wstring text);

class Refusal : public std::runtime_error {
public:
    /// The reason may quote any bytes of a document: what() gives it as one line of true UTF-8.
    explicit Refusal(const std::string& reason);
};

[[noreturn]] inline void refuse(const std::string& reason)
{
    throw Refusal(reason);
}

}  // namespace ovdl
