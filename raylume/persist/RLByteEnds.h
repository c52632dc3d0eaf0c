// Where the bytes of a stream come from and go to: memory, files, streams of compound files.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

#include "raylume/persist/RLByteStream.h"
#include "raylume/platform/Export.h"

class IStream;
namespace platform {
class InputFile;
class OutputFile;
}  // namespace platform

/// Bytes in memory, which are borrowed.
class DL_API RLMemorySource final : public RLByteSource {
public:
    explicit RLMemorySource(std::string_view bytes);
    std::size_t read(void* buffer, std::size_t size) override;

private:
    std::string_view rest_;
};

/// Bytes in memory, which it owns.
class DL_API RLMemorySink final : public RLByteSink {
public:
    RLMemorySink();
    ~RLMemorySink();
    void write(const void* bytes, std::size_t size) override;
    const std::string& bytes() const { return bytes_; }

private:
    std::string bytes_;
};

/// A regular file. The path is a text of a document (its "\" separates).
class DL_API RLFileSource final : public RLByteSource {
public:
    explicit RLFileSource(const std::wstring& path);
    ~RLFileSource();
    bool isOpen() const;
    /// Also 0 of a file that is not open.
    std::size_t read(void* buffer, std::size_t size) override;

private:
    std::unique_ptr<platform::InputFile> file_;
};

/// A regular file, made or emptied. Raises platform::OleError (write fault) when it cannot be written.
class DL_API RLFileSink final : public RLByteSink {
public:
    explicit RLFileSink(const std::wstring& path);
    ~RLFileSink();
    bool isOpen() const;
    void write(const void* bytes, std::size_t size) override;

private:
    std::unique_ptr<platform::OutputFile> file_;
};

/// A stream of a compound file, which is borrowed. A read that fails is the end.
class DL_API RLStreamSource final : public RLByteSource {
public:
    explicit RLStreamSource(IStream& stream);
    std::size_t read(void* buffer, std::size_t size) override;

private:
    IStream& stream_;
};

/// A stream of a compound file, which is borrowed. Raises platform::OleError with the stream's code.
class DL_API RLStreamSink final : public RLByteSink {
public:
    explicit RLStreamSink(IStream& stream);
    void write(const void* bytes, std::size_t size) override;

private:
    IStream& stream_;
};
