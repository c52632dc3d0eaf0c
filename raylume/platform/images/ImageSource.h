// Where the bytes of a picture come from.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>

namespace platform {

/// Bytes by offset. Never waits; what is past the end, also of a file that was cut short since, is not
/// read.
class ImageSource {
public:
    virtual ~ImageSource() = default;
    virtual std::uint64_t size() const = 0;
    /// Reads up to `size` bytes and gives their number.
    virtual std::size_t readAt(std::uint64_t offset, void* buffer, std::size_t size) = 0;
};

/// A part of another source, whose offset 0 is its own.
class PartOfSource final : public ImageSource {
public:
    PartOfSource(std::shared_ptr<ImageSource> whole, std::uint64_t offset, std::uint64_t size);
    std::uint64_t size() const override { return size_; }
    std::size_t readAt(std::uint64_t offset, void* buffer, std::size_t size) override;

private:
    std::shared_ptr<ImageSource> whole_;
    std::uint64_t offset_;
    std::uint64_t size_;
};

/// Reads a source from front to back, a buffer at a time.
class SourceReader {
public:
    explicit SourceReader(std::shared_ptr<ImageSource> source) : source_(std::move(source)) {}

    std::uint64_t size() const { return source_->size(); }
    std::uint64_t position() const { return bufferOffset_ + at_; }
    void seek(std::uint64_t position);
    /// Reads up to `size` bytes and gives their number.
    std::size_t read(void* destination, std::size_t size);
    /// False when the source ends before.
    bool readAll(void* destination, std::size_t size) { return read(destination, size) == size; }
    /// 0 behind the end.
    std::uint8_t byte();
    std::uint32_t littleEndian16();
    std::uint32_t littleEndian32();
    /// One of the reads above went past the end.
    bool failed() const { return failed_; }

private:
    bool fill();

    std::shared_ptr<ImageSource> source_;
    std::array<unsigned char, 16384> buffer_;
    std::uint64_t bufferOffset_ = 0;
    std::size_t filled_ = 0;
    std::size_t at_ = 0;
    bool failed_ = false;
};

}  // namespace platform
