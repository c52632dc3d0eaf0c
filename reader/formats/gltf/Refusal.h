// How a read ends early. Both are raised inside the format only; GltfFormat turns them into outcomes.
#pragma once

#include <string>
#include <utility>

namespace ovdl::gltf {

/// The document is broken or lies: why, in one line of UTF-8.
struct Refusal {
    std::string reason;
};

/// The host wants no more.
struct Cancellation {};

[[noreturn]] inline void refuse(std::string reason)
{
    throw Refusal{std::move(reason)};
}

/// "accessors[7]", for reasons.
inline std::string numbered(const char* section, std::size_t index)
{
    return std::string(section) + "[" + std::to_string(index) + "]";
}

}  // namespace ovdl::gltf
