// Storages and streams of a compound file, as interfaces with counted references. The names and the
// order of the operations are the published ones; results are 32-bit, negative for a failure.
#pragma once

#include <cstdint>


using HResult = std::int32_t;

class IUnknown {
public:
    /// One more reference; gives the new count.
    virtual std::uint32_t AddRef() = 0;
    /// One reference less; the last one destroys the object.
    virtual std::uint32_t Release() = 0;

protected:
    ~IUnknown() = default;
};

class IStream;

class IStorage : public IUnknown {
public:
    virtual HResult OpenStream(const wchar_t* name, std::uint32_t mode, IStream** stream) = 0;
    virtual HResult CreateStorage(const wchar_t* name, std::uint32_t mode, IStorage** storage) = 0;
    virtual HResult OpenStorage(const wchar_t* name, std::uint32_t mode, IStorage** storage) = 0;
    virtual HResult Commit(std::uint32_t flags) = 0;
    virtual HResult DestroyElement(const wchar_t* name) = 0;

protected:
    ~IStorage() = default;
};
