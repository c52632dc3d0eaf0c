#include "raylume/persist/RLByteStream.h"

#include <algorithm>
#include <cstring>
#include <utility>
#include <vector>

#include "raylume/platform/Errors.h"
#include "raylume/platform/Text.h"

namespace {

using platform::ArchiveError;

constexpr std::uint32_t kNoByteLength = 0xFF;
constexpr std::uint32_t kWideMarker = 0xFFFE;
constexpr std::uint32_t kNoShortLength = 0xFFFF;
constexpr std::uint32_t kNoLongLength = 0xFFFFFFFF;
// A string is collected in pieces, so that a length takes no memory before its bytes are there.
constexpr std::uint64_t kPiece = 0x10000;

// In some code pages bytes below 0x80 are other characters, and nothing may go past the conversion.
bool codePageKeepsAscii()
{
    std::string bytes;
    for (char c = 1; c < 0x7F; ++c)
        bytes.push_back(c);
    bytes.push_back(0x7F);
    const std::wstring wide(bytes.begin(), bytes.end());
    return platform::widen(bytes) == wide && platform::narrow(wide) == bytes;
}

std::uint32_t unitAt(const unsigned char* bytes, std::size_t index)
{
    return bytes[2 * index] | static_cast<std::uint32_t>(bytes[2 * index + 1]) << 8;
}

// Neither NUL nor anything beyond ASCII. No branch for each, so that the compiler takes many at once.
bool isPlain(const unsigned char* bytes, std::size_t length, bool isWide)
{
    std::uint32_t others = 0;
    for (std::size_t i = 0; i < length; ++i)
        others |= ((isWide ? unitAt(bytes, i) : bytes[i]) - 1u) >= 0x7Fu ? 1u : 0u;
    return others == 0;
}

void assignPlain(std::string& text, const unsigned char* bytes, std::size_t length, bool isWide)
{
    if (!isWide) {
        text.assign(reinterpret_cast<const char*>(bytes), length);
        return;
    }
    text.resize(length);
    for (std::size_t i = 0; i < length; ++i)
        text[i] = static_cast<char>(bytes[2 * i]);
}

bool isLead(std::uint32_t unit)
{
    return unit >= 0xD800 && unit < 0xDC00;
}

bool isTrail(std::uint32_t unit)
{
    return unit >= 0xDC00 && unit < 0xE000;
}

// Up to the first NUL. A half of a pair without the other stays what it is; narrowing replaces it.
std::wstring wideFromUnits(const unsigned char* bytes, std::size_t length)
{
    std::wstring text;
    for (std::size_t i = 0; i < length; ++i) {
        std::uint32_t unit = unitAt(bytes, i);
        if (unit == 0)
            break;
        if (isLead(unit) && i + 1 < length && isTrail(unitAt(bytes, i + 1)))
            unit = 0x10000 + ((unit - 0xD800) << 10) + (unitAt(bytes, ++i) - 0xDC00);
        text.push_back(static_cast<wchar_t>(unit));
    }
    return text;
}

std::wstring wideFromBytes(const unsigned char* bytes, std::size_t length)
{
    const unsigned char* const end = std::find(bytes, bytes + length, 0);
    return platform::widen({reinterpret_cast<const char*>(bytes), static_cast<std::size_t>(end - bytes)});
}

// Narrow text goes through wide text too: what is invalid in it changes on the way.
std::string textFrom(const unsigned char* bytes, std::size_t length, bool isWide)
{
    return platform::narrow(isWide ? wideFromUnits(bytes, length) : wideFromBytes(bytes, length));
}

std::size_t unitCount(const std::wstring& text)
{
    const auto pairs = std::count_if(text.begin(), text.end(),
                                     [](wchar_t c) { return static_cast<std::uint32_t>(c) > 0xFFFF; });
    return text.size() + static_cast<std::size_t>(pairs);
}

}  // namespace

RLByteStream::RLByteStream(RLByteSource& source, std::wstring fileName)
    : source_(&source),
      keepsAscii_(codePageKeepsAscii()),
      buffer_(new unsigned char[kBufferSize]),
      fileName_(std::move(fileName))
{
    readAt_ = readEnd_ = buffer_.get();
}

RLByteStream::RLByteStream(RLByteSink& sink, std::wstring fileName)
    : sink_(&sink),
      keepsAscii_(codePageKeepsAscii()),
      buffer_(new unsigned char[kBufferSize]),
      fileName_(std::move(fileName))
{
    writeAt_ = buffer_.get();
    writeEnd_ = writeAt_ + kBufferSize;
}

RLByteStream::~RLByteStream() = default;

void RLByteStream::raise(int cause) const
{
    throw ArchiveError(static_cast<ArchiveError::Cause>(cause), fileName_);
}

void RLByteStream::close()
{
    if (isStoring())
        flush();
}

// Gets `size` bytes, which the buffer can hold, into one piece.
void RLByteStream::refill(std::size_t size)
{
    if (isStoring())
        raise(ArchiveError::kWriteOnly);
    unsigned char* const start = buffer_.get();
    std::size_t filled = static_cast<std::size_t>(readEnd_ - readAt_);
    std::memmove(start, readAt_, filled);
    readAt_ = start;
    readEnd_ = start + filled;
    while (filled < size) {
        const std::size_t count = source_->read(start + filled, kBufferSize - filled);
        if (count == 0)
            raise(ArchiveError::kEndOfFile);
        filled += count;
        readEnd_ = start + filled;
    }
}

void RLByteStream::flush()
{
    if (isLoading())
        raise(ArchiveError::kReadOnly);
    const std::size_t size = static_cast<std::size_t>(writeAt_ - buffer_.get());
    writeAt_ = buffer_.get();
    if (size > 0)
        sink_->write(buffer_.get(), size);
}

// What the buffer holds, then whole blocks past it, then the rest through it.
std::size_t RLByteStream::readRaw(void* bytes, std::size_t size)
{
    if (isStoring())
        raise(ArchiveError::kWriteOnly);
    unsigned char* const target = static_cast<unsigned char*>(bytes);
    std::size_t done = std::min(size, static_cast<std::size_t>(readEnd_ - readAt_));
    if (done > 0)
        std::memcpy(target, readAt_, done);
    readAt_ += done;
    while (size - done >= kBufferSize) {
        const std::size_t whole = (size - done) / kBufferSize * kBufferSize;
        const std::size_t count = source_->read(target + done, whole);
        if (count == 0)
            return done;
        done += count;
    }
    while (done < size) {
        const std::size_t count = source_->read(buffer_.get(), kBufferSize);
        if (count == 0)
            break;
        const std::size_t taken = std::min(count, size - done);
        std::memcpy(target + done, buffer_.get(), taken);
        readAt_ = buffer_.get() + taken;
        readEnd_ = buffer_.get() + count;
        done += taken;
    }
    return done;
}

void RLByteStream::writeRaw(const void* bytes, std::size_t size)
{
    if (isLoading())
        raise(ArchiveError::kReadOnly);
    const unsigned char* source = static_cast<const unsigned char*>(bytes);
    if (size >= kBufferSize) {
        const std::size_t whole = size / kBufferSize * kBufferSize;
        flush();
        sink_->write(source, whole);
        source += whole;
        size -= whole;
    }
    if (size > 0)
        std::memcpy(room(size), source, size);
}

std::uint64_t RLByteStream::readCount()
{
    const std::uint64_t count = take<2>();
    if (count < kNoShortLength)
        return count;
    const std::uint64_t longer = take<4>();
    return longer < kNoLongLength ? longer : take<8>();
}

void RLByteStream::writeCount(std::uint64_t count)
{
    if (count < kNoShortLength) {
        put<2>(count);
        return;
    }
    put<2>(kNoShortLength);
    if (count < kNoLongLength) {
        put<4>(count);
        return;
    }
    put<4>(kNoLongLength);
    put<8>(count);
}

void RLByteStream::writeLength(std::uint64_t length)
{
    if (length < kNoByteLength) {
        put<1>(length);
        return;
    }
    put<1>(kNoByteLength);
    if (length < kWideMarker) {
        put<2>(length);
        return;
    }
    put<2>(kNoShortLength);
    if (length < kNoLongLength) {
        put<4>(length);
        return;
    }
    put<4>(kNoLongLength);
    put<8>(length);
}

std::uint64_t RLByteStream::readLongLength(std::uint64_t twoBytes)
{
    if (twoBytes < kWideMarker)
        return twoBytes;
    const std::uint64_t length = take<4>();
    return length < kNoLongLength ? length : take<8>();
}

// The marker counts once: behind it the same two bytes only say that the length is longer.
RLByteStream::StringHead RLByteStream::readHead()
{
    std::uint64_t length = take<1>();
    if (length < kNoByteLength)
        return {length, false};
    length = take<2>();
    if (length != kWideMarker)
        return {readLongLength(length), false};
    length = take<1>();
    if (length < kNoByteLength)
        return {length, true};
    return {readLongLength(take<2>()), true};
}

void RLByteStream::read(std::string& text)
{
    const StringHead head = readHead();
    const std::uint64_t width = head.isWide ? 2 : 1;
    if (head.length > kBufferSize / width) {
        readLongText(head, text);
        return;
    }
    const auto length = static_cast<std::size_t>(head.length);
    const unsigned char* const bytes = next(length * static_cast<std::size_t>(width));
    if (keepsAscii_ && isPlain(bytes, length, head.isWide))
        assignPlain(text, bytes, length, head.isWide);
    else
        text = textFrom(bytes, length, head.isWide);
}

// The length may be anything, so it is never doubled and never allocated.
void RLByteStream::readLongText(const StringHead& head, std::string& text)
{
    const std::size_t width = head.isWide ? 2 : 1;
    std::vector<unsigned char> bytes;
    for (std::uint64_t left = head.length; left > 0;) {
        const auto units = static_cast<std::size_t>(std::min(left, kPiece / width));
        const std::size_t size = units * width;
        bytes.resize(bytes.size() + size);
        if (readRaw(bytes.data() + bytes.size() - size, size) < size)
            raise(ArchiveError::kEndOfFile);
        left -= units;
    }
    text = textFrom(bytes.data(), static_cast<std::size_t>(head.length), head.isWide);
}

// ASCII that fits into the buffer, which nearly all strings do.
bool RLByteStream::writePlainText(const char* text, std::size_t length)
{
    constexpr std::size_t kHead = 4;
    const auto* const bytes = reinterpret_cast<const unsigned char*>(text);
    if (length >= kNoByteLength || !keepsAscii_ || !isPlain(bytes, length, false))
        return false;
    unsigned char* target = room(kHead + 2 * length);
    target[0] = kNoByteLength;
    target[1] = kWideMarker & 0xFF;
    target[2] = kWideMarker >> 8;
    target[3] = static_cast<unsigned char>(length);
    target += kHead;
    for (std::size_t i = 0; i < length; ++i) {
        target[2 * i] = bytes[i];
        target[2 * i + 1] = 0;
    }
    return true;
}

void RLByteStream::write(const std::string& text)
{
    const std::size_t length = std::min(text.find('\0'), text.size());
    if (!writePlainText(text.data(), length)) {
        if (isLoading())
            raise(ArchiveError::kReadOnly);
        writeUnits(platform::widen({text.data(), length}));
    }
}

void RLByteStream::writeUnits(const std::wstring& text)
{
    put<1>(kNoByteLength);
    put<2>(kWideMarker);
    writeLength(unitCount(text));
    for (const wchar_t character : text) {
        const auto value = static_cast<std::uint32_t>(character);
        if (value <= 0xFFFF) {
            put<2>(value);
        } else {
            put<2>(0xD800 + ((value - 0x10000) >> 10));
            put<2>(0xDC00 + (value & 0x3FF));
        }
    }
}
