// The headers of bitmap files: https://learn.microsoft.com/windows/win32/gdi/bitmap-storage and, for the
// forms of OS/2, https://www.fileformat.info/format/os2bmp/egff.htm.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <optional>

#include "raylume/platform/Images.h"
#include "raylume/platform/images/ImageSource.h"

namespace platform {

enum class BmpPacking { kPlain, kRunLength4, kRunLength8, kRunLength24 };

/// One channel of a pixel of 16 or 32 bits.
struct BmpChannel {
    std::uint32_t mask = 0;

    /// The channel's bits spread over 0 to 255; 0 without a mask.
    std::uint8_t of(std::uint32_t pixel) const;
};

struct BmpLayout {
    ImageSize size;
    bool isTopDown = false;
    int bits = 0;  ///< Of a pixel: 1, 2, 4, 8, 16, 24, 32.
    BmpPacking packing = BmpPacking::kPlain;
    BmpChannel blue, green, red;
    BmpChannel alpha;  ///< Without a mask when none is declared.
    int paletteCount = 0;
    int paletteEntryBytes = 4;
    std::uint64_t paletteOffset = 0;
    std::uint64_t pixelOffset = 0;

    std::uint64_t rowBytes() const
    {
        return (static_cast<std::uint64_t>(size.width) * static_cast<std::uint64_t>(bits) + 31) / 32 * 4;
    }
};

/// Where the header that says the size lies. An icon's picture has no file header: its pixels follow
/// the palette, and its height counts the mask below them too.
enum class BmpForm { kFile, kIcon };

/// Nothing when the header is none that this knows.
std::optional<BmpLayout> readBmpLayout(SourceReader& reader, BmpForm form);

}  // namespace platform
