// The byte stream that settings are stored in: fixed-size values and strings, in one direction, through
// a buffer.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "raylume/platform/Export.h"

/// Where a loading stream gets its bytes.
class DL_API RLByteSource {
public:
    /// Reads up to `size` bytes (at least 1) and gives their number, which may be smaller anywhere; 0 at
    /// the end, and where no more can be had. Asked in blocks of the buffer's size, not for each value.
    virtual std::size_t read(void* buffer, std::size_t size) = 0;

protected:
    ~RLByteSource() = default;
};

/// Where a storing stream puts its bytes.
class DL_API RLByteSink {
public:
    /// Takes all of the bytes. Raises what tells best why it cannot; the stream lets it through.
    virtual void write(const void* bytes, std::size_t size) = 0;

protected:
    ~RLByteSink() = default;
};

/// A stream of values, little-endian and without padding, that either loads or stores.
///
/// Ownership: borrows its source or sink, which must live as long as it is used. Not copied.
/// Errors: platform::ArchiveError with the file's name. kReadOnly from a write to a loading stream and
///   kWriteOnly from a read from a storing one, both before anything is touched; kEndOfFile where a value
///   or a string is cut short, which then leaves its target as it was.
/// Threads: one thread for one stream.
class DL_API RLByteStream {
public:
    static constexpr std::size_t kBufferSize = 0x1000;

    /// A loading stream. The name is what failures tell.
    RLByteStream(RLByteSource& source, std::wstring fileName);
    /// A storing stream. Bytes reach the sink when the buffer is full and from close().
    RLByteStream(RLByteSink& sink, std::wstring fileName);
    RLByteStream(const RLByteStream&) = delete;
    RLByteStream& operator=(const RLByteStream&) = delete;
    /// Writes nothing: what was not closed stays cut short.
    ~RLByteStream();

    bool isLoading() const { return source_ != nullptr; }
    bool isStoring() const { return source_ == nullptr; }
    const std::wstring& fileName() const { return fileName_; }

    /// Hands the rest of the buffer to the sink. Does nothing on a loading stream.
    void close();

    void read(std::uint32_t& value) { value = static_cast<std::uint32_t>(take<4>()); }
    void read(std::int32_t& value) { value = static_cast<std::int32_t>(take<4>()); }
    void read(std::uint64_t& value) { value = take<8>(); }
    /// The bits untouched, also those of numbers that are none.
    void read(float& value) { value = std::bit_cast<float>(static_cast<std::uint32_t>(take<4>())); }
    /// Any byte but 0 is true.
    void read(bool& value) { value = take<1>() != 0; }
    /// A string in any of its forms, as narrow text in the ANSI code page. Ends at its first NUL, though
    /// all of it is consumed; what the code page lacks becomes "?".
    void read(std::string& text);
    /// Up to `size` bytes; gives their number, which is smaller only at the end of the stream.
    std::size_t readRaw(void* bytes, std::size_t size);
    /// The number of elements of a list of the platform's framework: 2, 6 or 14 bytes.
    std::uint64_t readCount();

    void write(std::uint32_t value) { put<4>(value); }
    void write(std::int32_t value) { put<4>(static_cast<std::uint32_t>(value)); }
    void write(std::uint64_t value) { put<8>(value); }
    void write(float value) { put<4>(std::bit_cast<std::uint32_t>(value)); }
    void write(bool value) { put<1>(value ? 1u : 0u); }
    /// Always in the wide form, up to the first NUL of the text.
    void write(const std::string& text);
    /// A pointer would silently become a bool.
    template <class Other>
    void write(Other) = delete;
    void writeRaw(const void* bytes, std::size_t size);
    void writeCount(std::uint64_t count);
    /// The length of a string behind its marker: 1, 3, 7 or 15 bytes.
    void writeLength(std::uint64_t length);

private:
    struct StringHead {
        std::uint64_t length;
        bool isWide;
    };

    // The next `size` bytes, consumed; they stay until the next read. Of a storing stream the range is
    // empty, so that one test finds out both the direction and the end.
    const unsigned char* next(std::size_t size)
    {
        if (static_cast<std::size_t>(readEnd_ - readAt_) < size)
            refill(size);
        const unsigned char* const bytes = readAt_;
        readAt_ += size;
        return bytes;
    }

    // By value, so that the order of bytes is that of the stream on every machine.
    template <std::size_t size>
    std::uint64_t take()
    {
        const unsigned char* const bytes = next(size);
        std::uint64_t value = 0;
        for (std::size_t i = 0; i < size; ++i)
            value |= static_cast<std::uint64_t>(bytes[i]) << (8 * i);
        return value;
    }

    // Room for the next `size` bytes; of a loading stream the range is empty.
    unsigned char* room(std::size_t size)
    {
        if (static_cast<std::size_t>(writeEnd_ - writeAt_) < size)
            flush();
        unsigned char* const bytes = writeAt_;
        writeAt_ += size;
        return bytes;
    }

    template <std::size_t size>
    void put(std::uint64_t value)
    {
        unsigned char* const bytes = room(size);
        for (std::size_t i = 0; i < size; ++i)
            bytes[i] = static_cast<unsigned char>(value >> (8 * i));
    }

    void refill(std::size_t size);
    void flush();
    StringHead readHead();
    std::uint64_t readLongLength(std::uint64_t twoBytes);
    void readLongText(const StringHead& head, std::string& text);
    void writeUnits(const std::wstring& text);
    bool writePlainText(const char* text, std::size_t length);

    const unsigned char* readAt_ = nullptr;
    const unsigned char* readEnd_ = nullptr;
    unsigned char* writeAt_ = nullptr;
    unsigned char* writeEnd_ = nullptr;
    RLByteSource* source_ = nullptr;
    RLByteSink* sink_ = nullptr;
    bool keepsAscii_;
    std::unique_ptr<unsigned char[]> buffer_;
    std::wstring fileName_;
};
