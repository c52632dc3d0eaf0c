// Storages and streams of a compound file, as interfaces with counted references. The names and the
// order of the operations are the published ones; results are 32-bit, negative for a failure.
#pragma once

#include <cstdint>

using HResult = std::int32_t;

inline constexpr HResult kNotImplemented = static_cast<HResult>(0x80004001u);

class IUnknown {
public:
    /// One more reference; gives the new count.
    virtual std::uint32_t AddRef() = 0;
    /// One reference less; the last one destroys the object.
    virtual std::uint32_t Release() = 0;

protected:
    ~IUnknown() = default;
};

class IStream : public IUnknown {
public:
    /// Reads up to `size` bytes and stores their number in `read`, which may be null. At the end of the
    /// stream fewer than asked for, or 0, which is no failure.
    virtual HResult Read(void* buffer, std::uint32_t size, std::uint32_t* read) = 0;
    /// Writes `size` bytes and stores how many were taken in `written`, which may be null.
    virtual HResult Write(const void* buffer, std::uint32_t size, std::uint32_t* written) = 0;

protected:
    ~IStream() = default;
};

class IStorage : public IUnknown {
public:
    virtual HResult OpenStream(const wchar_t* name, std::uint32_t mode, IStream** stream) = 0;
    virtual HResult CreateStorage(const wchar_t* name, std::uint32_t mode, IStorage** storage) = 0;
    virtual HResult OpenStorage(const wchar_t* name, std::uint32_t mode, IStorage** storage) = 0;
    virtual HResult Commit(std::uint32_t flags) = 0;
    virtual HResult DestroyElement(const wchar_t* name) = 0;
    /// Only what writes documents needs it: an implementation that reads leaves it alone.
    virtual HResult CreateStream(const wchar_t*, std::uint32_t, IStream** stream)
    {
        *stream = nullptr;
        return kNotImplemented;
    }

protected:
    ~IStorage() = default;
};
