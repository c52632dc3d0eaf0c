// How much a document may ask for.
#pragma once

#include <algorithm>
#include <compare>
#include <cstdint>
#include <limits>
#include <string>

#include "reader/formats/ovdl/Refusal.h"

namespace ovdl::decoding {

/// A sum of products that stays at its limit instead of starting again at 0.
class Cost {
public:
    constexpr Cost() = default;
    constexpr explicit Cost(std::uint64_t bytes) : bytes_(bytes) {}

    constexpr std::uint64_t bytes() const { return bytes_; }
    constexpr auto operator<=>(const Cost&) const = default;
    constexpr void add(std::uint64_t count, std::uint64_t size = 1)
    {
        const std::uint64_t left = kMost - bytes_;
        bytes_ = size != 0 && count > left / size ? kMost : bytes_ + count * size;
    }

private:
    static constexpr std::uint64_t kMost = std::numeric_limits<std::uint64_t>::max();

    std::uint64_t bytes_ = 0;
};

/// What the bytes of a document justify. Records can name the same text, the same vector or the same
/// geometry any number of times, so everything that is made from a document is charged here before it is
/// made.
class Budget {
public:
    static constexpr std::uint64_t kFloor = std::uint64_t{256} << 20;
    /// Faces without geometry come to some 10 bytes for a byte, components of an assembly to some 30.
    static constexpr std::uint64_t kTimes = 64;

    explicit Budget(std::uint64_t documentSize) : size_(documentSize) {}

    std::uint64_t limit() const
    {
        return std::max(kFloor, size_ > kMost / kTimes ? kMost : kTimes * size_);
    }
    std::uint64_t used() const { return used_; }

    /// Takes `count` elements of `size` bytes off; raises Refusal when that is too much.
    void charge(std::uint64_t count, std::uint64_t size)
    {
        if (size != 0 && count > (limit() - used_) / size)
            refuse("the document asks for more memory than its " + std::to_string(size_) +
                   " bytes justify");
        used_ += count * size;
    }

private:
    static constexpr std::uint64_t kMost = std::numeric_limits<std::uint64_t>::max();

    std::uint64_t size_;
    std::uint64_t used_ = 0;
};

}  // namespace ovdl::decoding
