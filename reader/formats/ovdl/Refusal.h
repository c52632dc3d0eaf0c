// How the formats of this folder say that a document cannot be read or written.
#pragma once

#include <stdexcept>
#include <string>

namespace ovdl {

class Refusal : public std::runtime_error {
public:
    /// The reason may quote any bytes of a document: what() gives it as one line of UTF-8, cut when it is
    /// very long.
    explicit Refusal(const std::string& reason);
};

[[noreturn]] inline void refuse(const std::string& reason)
{
    throw Refusal(reason);
}

}  // namespace ovdl
