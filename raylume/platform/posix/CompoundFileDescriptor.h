// A file of the operating system as the layers of a compound file use it.
#pragma once

#include <cstdint>
#include <utility>

#include "raylume/platform/posix/CompoundDirectory.h"

namespace platform::compound {

/// Closes a file when it goes.
class Descriptor {
public:
    explicit Descriptor(int number = -1) : number_(number) {}
    Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept
    {
        std::swap(number_, other.number_);
        return *this;
    }
    ~Descriptor();

    int number() const { return number_; }
    bool isOpen() const { return number_ >= 0; }

private:
    int number_;
};

/// An open regular file, which stays the same file when another one takes its name.
class OpenFile final : public FileBytes {
public:
    OpenFile(Descriptor descriptor, std::uint64_t size) : descriptor_(std::move(descriptor)), size_(size) {}

    std::uint64_t size() const override { return size_; }
    bool read(std::uint64_t offset, void* buffer, std::size_t count) const override;

private:
    Descriptor descriptor_;
    std::uint64_t size_;
};

/// The result code for an error of the operating system.
HResult resultOfErrno(int error);

}  // namespace platform::compound
