// The 108-byte header with channel masks, so that other programs read the alpha:
// https://learn.microsoft.com/windows/win32/api/wingdi/ns-wingdi-bitmapv4header
#include <cstdint>
#include <tuple>

#include "raylume/platform/Images.h"

namespace platform {

namespace {

constexpr std::uint32_t kFileHeaderBytes = 14;
constexpr std::uint32_t kInfoHeaderBytes = 108;
constexpr std::uint32_t kBitFields = 3;
constexpr std::uint32_t kPixelsPerMetre = 2835;  // 72 to the inch
constexpr std::uint32_t kColourSpaceSrgb = 0x73524742;

class HeaderBytes {
public:
    void add16(std::uint32_t value)
    {
        bytes_[size_++] = static_cast<unsigned char>(value & 0xFF);
        bytes_[size_++] = static_cast<unsigned char>(value >> 8 & 0xFF);
    }
    void add32(std::uint32_t value)
    {
        add16(value & 0xFFFF);
        add16(value >> 16);
    }
    const BmpHeader& bytes() const { return bytes_; }

private:
    BmpHeader bytes_{};  // zero behind what is added: the calibration
    std::size_t size_ = 0;
};

static_assert(kFileHeaderBytes + kInfoHeaderBytes == std::tuple_size_v<BmpHeader>);

void addFileHeader(HeaderBytes& header, std::uint32_t pixelBytes)
{
    constexpr std::uint32_t kHeaders = kFileHeaderBytes + kInfoHeaderBytes;
    header.add16('B' | 'M' << 8);
    header.add32(kHeaders + pixelBytes);
    header.add32(0);
    header.add32(kHeaders);
}

void addInfoHeader(HeaderBytes& header, ImageSize size, std::uint32_t pixelBytes)
{
    header.add32(kInfoHeaderBytes);
    header.add32(static_cast<std::uint32_t>(size.width));
    header.add32(static_cast<std::uint32_t>(size.height));
    header.add16(1);
    header.add16(32);
    header.add32(kBitFields);
    header.add32(pixelBytes);
    header.add32(kPixelsPerMetre);
    header.add32(kPixelsPerMetre);
    header.add32(0);
    header.add32(0);
    for (const std::uint32_t mask : {0x00FF0000u, 0x0000FF00u, 0x000000FFu, 0xFF000000u}) {
        header.add32(mask);
    }
    header.add32(kColourSpaceSrgb);
}

}  // namespace

std::optional<BmpHeader> bmpHeader(ImageSize size)
{
    constexpr std::uint64_t kMostPixelBytes = UINT32_MAX - std::tuple_size_v<BmpHeader>;
    if (size.width < 1 || size.height < 1) {
        return std::nullopt;
    }
    const std::uint64_t pixels =
        static_cast<std::uint64_t>(size.width) * static_cast<std::uint64_t>(size.height);
    if (pixels > kMostPixelBytes / 4) {
        return std::nullopt;
    }
    HeaderBytes header;
    addFileHeader(header, static_cast<std::uint32_t>(4 * pixels));
    addInfoHeader(header, size, static_cast<std::uint32_t>(4 * pixels));
    return header.bytes();
}

}  // namespace platform
