// A counted reference to a storage or a stream.
#pragma once

#include <utility>

namespace platform {

/// Owns one reference, or none.
template <class Interface>
class Reference {
public:
    Reference() = default;
    /// Takes a reference over.
    explicit Reference(Interface* interface) : interface_(interface) {}
    Reference(Reference&& other) noexcept : interface_(std::exchange(other.interface_, nullptr)) {}
    Reference& operator=(Reference&& other) noexcept
    {
        std::swap(interface_, other.interface_);
        return *this;
    }
    ~Reference() { reset(); }

    void reset()
    {
        if (interface_)
            std::exchange(interface_, nullptr)->Release();
    }
    /// Where an operation stores what it opens.
    Interface** out()
    {
        reset();
        return &interface_;
    }
    Interface* get() const { return interface_; }
    Interface* operator->() const { return interface_; }
    explicit operator bool() const { return interface_ != nullptr; }

private:
    Interface* interface_ = nullptr;
};

}  // namespace platform
