// How the formats of this folder say that a document cannot be read or written.
#pragma once

#include <stdexcept>
#include <string>

namespace ovdl {

/// The reason in one line of UTF-8.
class Refusal : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

[[noreturn]] inline void refuse(const std::string& reason)
{
    throw Refusal(reason);
}

}  // namespace ovdl
