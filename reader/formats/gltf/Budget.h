// How much a document may ask for.
#pragma once

#include <algorithm>
#include <cstdint>

#include "reader/formats/gltf/Refusal.h"

namespace ovdl::gltf {

/// What the bytes of a document (its buffers included) justify. JSON can name the same bytes any
/// number of times, and accessors without bytes claim any count, so everything that is made from a
/// document is charged here before it is made.
class Budget {
public:
    static constexpr std::uint64_t kFloor = std::uint64_t(64) << 20;
    /// Arrays come to at most some 40 bytes for a byte of a natural document (8-bit indices).
    static constexpr std::uint64_t kTimes = 128;
    /// Component paths have a stricter limit, in characters.
    static constexpr std::uint64_t kPathTimes = 64;
    /// The paths of the nodes above the components stand in the model's tree, once each: a chain makes
    /// them grow with the square of its length, so that the floor is what some ten thousand levels need.
    static constexpr std::uint64_t kTreePathFloor = std::uint64_t(1) << 30;

    void addBytes(std::uint64_t bytes) { bytes_ += bytes; }
    static std::uint64_t limitFor(std::uint64_t bytes) { return std::max(kFloor, kTimes * bytes); }
    std::uint64_t limit() const { return limitFor(bytes_); }
    std::uint64_t pathLimit() const { return std::max(kFloor, kPathTimes * bytes_); }
    std::uint64_t treePathLimit() const { return std::max(kTreePathFloor, kPathTimes * bytes_); }

    /// Takes `count` elements of `size` bytes off; raises Refusal when that is too much.
    void charge(std::uint64_t count, std::uint64_t size)
    {
        const std::uint64_t left = limit() - used_;
        if (count > left / size)
            refuse("the document asks for more memory than its " + std::to_string(bytes_) +
                   " bytes justify");
        used_ += count * size;
    }
    /// Gives back what was only needed for a while.
    void release(std::uint64_t count, std::uint64_t size) { used_ -= count * size; }

private:
    std::uint64_t bytes_ = 0;
    std::uint64_t used_ = 0;
};

}  // namespace ovdl::gltf
