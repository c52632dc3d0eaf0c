#include "raylume/platform/images/ImageSource.h"

#include <algorithm>
#include <cstring>

namespace platform {

PartOfSource::PartOfSource(std::shared_ptr<ImageSource> whole, std::uint64_t offset, std::uint64_t size)
    : whole_(std::move(whole)), offset_(std::min(offset, whole_->size()))
{
    size_ = std::min(size, whole_->size() - offset_);
}

std::size_t PartOfSource::readAt(std::uint64_t offset, void* buffer, std::size_t size)
{
    if (offset >= size_) {
        return 0;
    }
    const std::uint64_t left = size_ - offset;
    return whole_->readAt(offset_ + offset, buffer,
                          static_cast<std::size_t>(std::min<std::uint64_t>(size, left)));
}

void SourceReader::seek(std::uint64_t position)
{
    if (position >= bufferOffset_ && position - bufferOffset_ <= filled_) {
        at_ = static_cast<std::size_t>(position - bufferOffset_);
        return;
    }
    bufferOffset_ = position;
    filled_ = at_ = 0;
}

bool SourceReader::fill()
{
    bufferOffset_ += at_;
    at_ = 0;
    filled_ = source_->readAt(bufferOffset_, buffer_.data(), buffer_.size());
    return filled_ > 0;
}

std::size_t SourceReader::read(void* destination, std::size_t size)
{
    auto* const to = static_cast<unsigned char*>(destination);
    std::size_t total = 0;
    while (total < size && (at_ < filled_ || fill())) {
        const std::size_t count = std::min(size - total, filled_ - at_);
        std::memcpy(to + total, buffer_.data() + at_, count);
        at_ += count;
        total += count;
    }
    failed_ = failed_ || total < size;
    return total;
}

std::uint8_t SourceReader::byte()
{
    if (at_ < filled_) {
        return buffer_[at_++];
    }
    std::uint8_t value = 0;
    read(&value, 1);
    return value;
}

std::uint32_t SourceReader::littleEndian16()
{
    const std::uint32_t low = byte();
    return low | static_cast<std::uint32_t>(byte()) << 8;
}

std::uint32_t SourceReader::littleEndian32()
{
    const std::uint32_t low = littleEndian16();
    return low | littleEndian16() << 16;
}

}  // namespace platform
