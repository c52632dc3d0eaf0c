#include "raylume/persist/RLByteEnds.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "raylume/platform/CompoundFile.h"
#include "raylume/platform/Errors.h"
#include "raylume/platform/Files.h"
#include "raylume/platform/OutputFile.h"

namespace {

constexpr auto kWriteFault = static_cast<std::uint32_t>(kStorageWriteFault);
// Streams of compound files count in 32 bits.
constexpr std::size_t kMostAtOnce = std::size_t{1} << 30;

std::uint32_t blockOf(std::size_t size)
{
    return static_cast<std::uint32_t>(std::min(size, kMostAtOnce));
}

}  // namespace

RLMemorySource::RLMemorySource(std::string_view bytes) : rest_(bytes)
{
}

std::size_t RLMemorySource::read(void* buffer, std::size_t size)
{
    const std::size_t count = std::min(size, rest_.size());
    if (count > 0)
        std::memcpy(buffer, rest_.data(), count);
    rest_.remove_prefix(count);
    return count;
}

RLMemorySink::RLMemorySink() = default;
RLMemorySink::~RLMemorySink() = default;

void RLMemorySink::write(const void* bytes, std::size_t size)
{
    bytes_.append(static_cast<const char*>(bytes), size);
}

RLFileSource::RLFileSource(const std::wstring& path) : file_(platform::InputFile::open(path))
{
}

RLFileSource::~RLFileSource() = default;

bool RLFileSource::isOpen() const
{
    return file_ != nullptr;
}

std::size_t RLFileSource::read(void* buffer, std::size_t size)
{
    return file_ ? file_->read(buffer, size) : 0;
}

RLFileSink::RLFileSink(const std::wstring& path) : file_(platform::OutputFile::create(path))
{
}

RLFileSink::~RLFileSink() = default;

bool RLFileSink::isOpen() const
{
    return file_ != nullptr;
}

void RLFileSink::write(const void* bytes, std::size_t size)
{
    if (!file_ || !file_->write(bytes, size))
        throw platform::OleError(kWriteFault);
}

RLStreamSource::RLStreamSource(IStream& stream) : stream_(stream)
{
}

// The number is not relied on more than needed: another implementation may leave it unset on failure.
std::size_t RLStreamSource::read(void* buffer, std::size_t size)
{
    const std::uint32_t asked = blockOf(size);
    std::uint32_t count = 0;
    const HResult result = stream_.Read(buffer, asked, &count);
    return result < 0 ? 0 : std::min(count, asked);
}

RLStreamSink::RLStreamSink(IStream& stream) : stream_(stream)
{
}

void RLStreamSink::write(const void* bytes, std::size_t size)
{
    const char* next = static_cast<const char*>(bytes);
    while (size > 0) {
        std::uint32_t count = 0;
        const HResult result = stream_.Write(next, blockOf(size), &count);
        if (result < 0)
            throw platform::OleError(static_cast<std::uint32_t>(result));
        if (count == 0 || count > size)
            throw platform::OleError(kWriteFault);
        next += count;
        size -= count;
    }
}
