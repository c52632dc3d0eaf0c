#include "raylume/platform/images/BmpHeader.h"

#include <algorithm>
#include <bit>
#include <cstdlib>

#include "raylume/platform/images/Picture.h"

namespace platform {

namespace {

constexpr std::uint32_t kCoreHeaderBytes = 12;
constexpr std::uint32_t kInfoHeaderBytes = 40;
constexpr std::uint32_t kOs2HeaderBytes = 64;

enum Compression : std::uint32_t {
    kRgb = 0,
    kRle8 = 1,
    kRle4 = 2,
    kBitFields = 3,
    kRle24OfOs2 = 4,
    kAlphaBitFields = 6,
};

// The fields as they stand, in the order of the longer headers.
struct Fields {
    std::uint32_t headerBytes = 0;
    std::int64_t width = 0;
    std::int64_t height = 0;
    std::uint32_t bits = 0;
    std::uint32_t compression = kRgb;
    std::uint32_t coloursUsed = 0;
    std::array<std::uint32_t, 4> masks{};  // red, green, blue, alpha
    std::uint32_t maskBytesBehind = 0;     // masks that follow the header instead of standing in it
};

bool isOs2(const Fields& fields)
{
    const std::uint32_t size = fields.headerBytes;
    return size == kCoreHeaderBytes ||
           (size >= 16 && size <= kOs2HeaderBytes && size != kInfoHeaderBytes && size != 52 && size != 56);
}

bool isKnownHeader(std::uint32_t bytes)
{
    return bytes == kCoreHeaderBytes || (bytes >= 16 && bytes <= kOs2HeaderBytes) || bytes == 108 ||
           bytes == 124;
}

void readCore(SourceReader& reader, Fields& fields)
{
    fields.width = reader.littleEndian16();
    fields.height = reader.littleEndian16();
    reader.littleEndian16();
    fields.bits = reader.littleEndian16();
}

void readMasks(SourceReader& reader, Fields& fields)
{
    std::uint32_t count = 0;
    if (fields.headerBytes == kInfoHeaderBytes) {
        count = fields.compression == kBitFields ? 3 : fields.compression == kAlphaBitFields ? 4 : 0;
        fields.maskBytesBehind = 4 * count;
    } else if (!isOs2(fields)) {
        count = fields.headerBytes >= 56 ? 4 : 3;
    }
    for (std::uint32_t index = 0; index < count; ++index) {
        fields.masks[index] = reader.littleEndian32();
    }
}

// The header of OS/2 may be cut anywhere behind its sixteenth byte; what is cut off is 0.
void readInfo(SourceReader& reader, Fields& fields)
{
    fields.width = static_cast<std::int32_t>(reader.littleEndian32());
    fields.height = static_cast<std::int32_t>(reader.littleEndian32());
    reader.littleEndian16();
    fields.bits = reader.littleEndian16();
    if (fields.headerBytes >= 20) {
        fields.compression = reader.littleEndian32();
    }
    if (fields.headerBytes >= 36) {
        for (int skipped = 0; skipped < 3; ++skipped) {
            reader.littleEndian32();
        }
        fields.coloursUsed = reader.littleEndian32();
    }
    if (fields.headerBytes >= kInfoHeaderBytes) {
        reader.littleEndian32();
    }
    readMasks(reader, fields);
}

std::optional<Fields> readFields(SourceReader& reader)
{
    Fields fields;
    fields.headerBytes = reader.littleEndian32();
    if (!isKnownHeader(fields.headerBytes)) {
        return std::nullopt;
    }
    if (fields.headerBytes == kCoreHeaderBytes) {
        readCore(reader, fields);
    } else {
        readInfo(reader, fields);
    }
    return reader.failed() ? std::nullopt : std::optional(fields);
}

bool setPacking(const Fields& fields, BmpLayout& layout)
{
    switch (fields.compression) {
    case kRgb:
        return true;
    case kRle8:
        layout.packing = BmpPacking::kRunLength8;
        return layout.bits == 8;
    case kRle4:
        layout.packing = BmpPacking::kRunLength4;
        return layout.bits == 4;
    case kBitFields:
        return !isOs2(fields) && (layout.bits == 16 || layout.bits == 32);
    case kRle24OfOs2:
        layout.packing = BmpPacking::kRunLength24;
        return isOs2(fields) && layout.bits == 24;
    case kAlphaBitFields:
        return !isOs2(fields) && (layout.bits == 16 || layout.bits == 32);
    default:
        return false;
    }
}

// Masks count only where the compression says so, whatever the longer headers hold; but there are programs
// that declare alpha by its mask alone.
bool declaresAlphaOnly(const Fields& fields, const BmpLayout& layout)
{
    constexpr std::uint32_t kFourthByte = 0xFF000000;
    return fields.compression == kRgb && layout.bits == 32 && fields.masks[3] == kFourthByte;
}

void setChannels(const Fields& fields, BmpLayout& layout)
{
    if (fields.compression == kBitFields || fields.compression == kAlphaBitFields) {
        layout.red.mask = fields.masks[0];
        layout.green.mask = fields.masks[1];
        layout.blue.mask = fields.masks[2];
        layout.alpha.mask = fields.masks[3];
    } else if (layout.bits == 16) {
        layout.red.mask = 0x7C00;
        layout.green.mask = 0x03E0;
        layout.blue.mask = 0x001F;
    } else {
        layout.red.mask = 0xFF0000;
        layout.green.mask = 0x00FF00;
        layout.blue.mask = 0x0000FF;
    }
    if (declaresAlphaOnly(fields, layout)) {
        layout.alpha.mask = fields.masks[3];
    }
}

// An offset that leaves no room for any palette at all was written by a program that forgot it; one that
// leaves too little cuts the palette.
bool setPalette(const Fields& fields, std::uint64_t headerOffset, BmpLayout& layout)
{
    layout.paletteOffset = headerOffset + fields.headerBytes + fields.maskBytesBehind;
    const std::uint64_t entryBytes = fields.headerBytes == kCoreHeaderBytes ? 3 : 4;
    layout.paletteEntryBytes = static_cast<int>(entryBytes);
    std::uint64_t count = 0;
    if (layout.bits <= 8) {
        const std::uint32_t most = 1u << layout.bits;
        count = fields.coloursUsed == 0 ? most : std::min(fields.coloursUsed, most);
    }
    if (layout.pixelOffset == 0 || layout.pixelOffset == layout.paletteOffset) {
        layout.pixelOffset = layout.paletteOffset + count * entryBytes;
    }
    if (layout.pixelOffset < layout.paletteOffset) {
        return false;
    }
    layout.paletteCount =
        static_cast<int>(std::min(count, (layout.pixelOffset - layout.paletteOffset) / entryBytes));
    return true;
}

bool isKnownDepth(std::uint32_t bits)
{
    constexpr std::uint32_t kDepths[] = {1, 2, 4, 8, 16, 24, 32};
    return std::find(std::begin(kDepths), std::end(kDepths), bits) != std::end(kDepths);
}

// Sides beyond int's reach would be beyond the limits as well.
bool setSize(const Fields& fields, BmpForm form, BmpLayout& layout)
{
    const std::int64_t height = std::abs(fields.height) / (form == BmpForm::kIcon ? 2 : 1);
    if (fields.width < 1 || fields.width > kLongestSide || height < 1 || height > kLongestSide) {
        return false;
    }
    layout.size = {static_cast<int>(fields.width), static_cast<int>(height)};
    layout.isTopDown = fields.height < 0;
    return true;
}

// A file may be a list of several pictures; its first is taken.
bool readFileHeader(SourceReader& reader, BmpLayout& layout)
{
    constexpr std::uint32_t kList = 'B' | 'A' << 8;
    constexpr std::uint32_t kPicture = 'B' | 'M' << 8;
    constexpr std::uint32_t kListHeaderBytes = 14;
    const std::uint64_t start = reader.position();
    std::uint32_t mark = reader.littleEndian16();
    if (mark == kList) {
        reader.seek(start + kListHeaderBytes);
        mark = reader.littleEndian16();
    }
    reader.seek(reader.position() + 8);
    layout.pixelOffset = reader.littleEndian32();
    return mark == kPicture && !reader.failed();
}

}  // namespace

std::uint8_t BmpChannel::of(std::uint32_t pixel) const
{
    if (mask == 0) {
        return 0;
    }
    const int shift = std::countr_zero(mask);
    const std::uint64_t most = mask >> shift;
    if (most == 255) {
        return static_cast<std::uint8_t>(pixel >> shift);
    }
    return static_cast<std::uint8_t>((((pixel & mask) >> shift) * std::uint64_t{255} + most / 2) / most);
}

std::optional<BmpLayout> readBmpLayout(SourceReader& reader, BmpForm form)
{
    BmpLayout layout;
    if (form == BmpForm::kFile && !readFileHeader(reader, layout)) {
        return std::nullopt;
    }
    const std::uint64_t headerOffset = reader.position();
    const auto fields = readFields(reader);
    if (!fields || !isKnownDepth(fields->bits) || !setSize(*fields, form, layout)) {
        return std::nullopt;
    }
    layout.bits = static_cast<int>(fields->bits);
    if (!setPacking(*fields, layout) || !setPalette(*fields, headerOffset, layout)) {
        return std::nullopt;
    }
    setChannels(*fields, layout);
    return layout;
}

}  // namespace platform
