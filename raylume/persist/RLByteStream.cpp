#include "raylume/persist/RLByteStream.h"

#include <algorithm>
#include <bit>
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
// What the reading of text may look at behind the bytes that it was given.
constexpr std::size_t kSlack = 16;
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

// Plain text is ASCII without a NUL, which nearly all text is. It is taken in blocks, without a branch for
// each character, and the tests of all blocks are looked at in the end. The last block may reach past the
// text, though never past kSlack; what is there does not count.

constexpr std::size_t kBlock = 8;
constexpr std::uint16_t kOthers = 0xFF80;

// From `kBlock - n` on: n lanes that count, and behind them those that do not.
constexpr std::uint16_t kLanes[2 * kBlock] = {0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF,
                                              0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF};

std::uint16_t littleEndian(std::uint16_t unit)
{
    if constexpr (std::endian::native == std::endian::little)
        return unit;
    return static_cast<std::uint16_t>(unit << 8 | unit >> 8);
}

struct UnitBlock {
    static constexpr std::size_t kWidth = 2;
    static void get(std::uint16_t (&units)[kBlock], const unsigned char* bytes)
    {
        std::memcpy(units, bytes, sizeof units);
        for (std::uint16_t& unit : units)
            unit = littleEndian(unit);
    }
};

struct ByteBlock {
    static constexpr std::size_t kWidth = 1;
    static void get(std::uint16_t (&units)[kBlock], const unsigned char* bytes)
    {
        for (std::size_t k = 0; k < kBlock; ++k)
            units[k] = bytes[k];
    }
};

// A unit that is 0 has all bits when one is taken away from it, and one beyond ASCII has some to begin
// with.
template <class Block>
bool narrowPlain(const unsigned char* bytes, std::size_t length, char* text)
{
    std::uint16_t others[kBlock] = {};
    for (std::size_t i = 0; i < length; i += kBlock) {
        std::uint16_t units[kBlock];
        Block::get(units, bytes + Block::kWidth * i);
        const std::uint16_t* const lanes = kLanes + kBlock - std::min(kBlock, length - i);
        for (std::size_t k = 0; k < kBlock; ++k) {
            others[k] = static_cast<std::uint16_t>(others[k] | ((units[k] | (units[k] - 1)) & lanes[k]));
            text[i + k] = static_cast<char>(units[k]);
        }
    }
    std::uint16_t all = 0;
    for (const std::uint16_t other : others)
        all = static_cast<std::uint16_t>(all | other);
    return (all & kOthers) == 0;
}

// False, and the text untouched, when the characters are no plain text.
template <class Block>
bool assignPlain(std::string& text, const unsigned char* bytes, std::size_t length)
{
    char narrowed[RLByteStream::kBufferSize / Block::kWidth + kBlock];
    if (!narrowPlain<Block>(bytes, length, narrowed))
        return false;
    text.assign(narrowed, length);
    return true;
}

bool isPlain(const char* text, std::size_t length)
{
    const auto isOther = [](char c) { return (static_cast<unsigned char>(c) - 1u) >= 0x7Fu; };
    return std::none_of(text, text + length, isOther);
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

// The marker of the wide form and a length of one byte.
bool isUsualHead(const unsigned char* bytes)
{
    return bytes[0] == kNoByteLength && bytes[1] == (kWideMarker & 0xFF) && bytes[2] == kWideMarker >> 8 &&
           bytes[3] != kNoByteLength;
}

[[noreturn]] void fail(const RLByteStream& stream, ArchiveError::Cause cause)
{
    throw ArchiveError(cause, stream.fileName());
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
      buffer_(new unsigned char[kBufferSize + kSlack]()),
      fileName_(std::move(fileName))
{
    readAt_ = readEnd_ = buffer_.get();
}

RLByteStream::RLByteStream(RLByteSink& sink, std::wstring fileName)
    : sink_(&sink),
      keepsAscii_(codePageKeepsAscii()),
      buffer_(new unsigned char[kBufferSize + kSlack]()),
      fileName_(std::move(fileName))
{
    writeAt_ = buffer_.get();
    writeEnd_ = writeAt_ + kBufferSize;
}

RLByteStream::~RLByteStream() = default;

void RLByteStream::close()
{
    if (isStoring())
        flush();
}

// Gets `size` bytes, which the buffer can hold, into one piece.
void RLByteStream::refill(std::size_t size)
{
    if (isStoring())
        fail(*this, ArchiveError::kWriteOnly);
    unsigned char* const start = buffer_.get();
    std::size_t filled = static_cast<std::size_t>(readEnd_ - readAt_);
    std::memmove(start, readAt_, filled);
    readAt_ = start;
    readEnd_ = start + filled;
    while (filled < size) {
        const std::size_t count = source_->read(start + filled, kBufferSize - filled);
        if (count == 0)
            fail(*this, ArchiveError::kEndOfFile);
        filled += count;
        readEnd_ = start + filled;
    }
}

void RLByteStream::flush()
{
    if (isLoading())
        fail(*this, ArchiveError::kReadOnly);
    const std::size_t size = static_cast<std::size_t>(writeAt_ - buffer_.get());
    writeAt_ = buffer_.get();
    if (size > 0)
        sink_->write(buffer_.get(), size);
}

// What the buffer holds, then whole blocks past it, then the rest through it.
std::size_t RLByteStream::readRaw(void* bytes, std::size_t size)
{
    if (isStoring())
        fail(*this, ArchiveError::kWriteOnly);
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
        fail(*this, ArchiveError::kReadOnly);
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
    constexpr std::size_t kUsual = 4;
    if (static_cast<std::size_t>(readEnd_ - readAt_) >= kUsual && isUsualHead(readAt_)) {
        readAt_ += kUsual;
        return {readAt_[-1], true};
    }
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
    const auto assign = head.isWide ? assignPlain<UnitBlock> : assignPlain<ByteBlock>;
    if (!keepsAscii_ || !assign(text, bytes, length))
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
            fail(*this, ArchiveError::kEndOfFile);
        left -= units;
    }
    text = textFrom(bytes.data(), static_cast<std::size_t>(head.length), head.isWide);
}

// ASCII that fits into the buffer, which nearly all strings do.
bool RLByteStream::writePlainText(const char* text, std::size_t length)
{
    constexpr std::size_t kHead = 4;
    const auto* const bytes = reinterpret_cast<const unsigned char*>(text);
    if (length >= kNoByteLength || !keepsAscii_ || !isPlain(text, length))
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
            fail(*this, ArchiveError::kReadOnly);
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
