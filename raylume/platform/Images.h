// Picture files to pixels, and the header of the one kind of file that is written.
//
// Pixels are 32 bits each: blue, green, red, alpha in memory order, alpha not premultiplied, rows one
// behind the other without gaps, from the top row of the picture.
#pragma once

#include <array>
#include <cstddef>
#include <memory>
#include <optional>
#include <string>

#include "raylume/platform/Export.h"

namespace platform {

/// In pixels.
struct ImageSize {
    int width = 0;
    int height = 0;

    bool operator==(const ImageSize&) const = default;
};

/// A picture file whose header has been read. What kind it is goes by its content, never by its name.
/// Closed by the destructor.
class PLATFORM_API ImageFile {
public:
    /// Null when there is no regular file, or it holds no known kind of picture, or the header is broken
    /// or asks for too much: a side over 65535, or over 2^28 pixels that would all be kept at once. Such a
    /// side or count costs no memory.
    static std::unique_ptr<ImageFile> open(const std::wstring& path);

    ImageFile(const ImageFile&) = delete;
    ImageFile& operator=(const ImageFile&) = delete;
    virtual ~ImageFile();

    /// The size in the file; both sides are at least 1.
    virtual ImageSize size() const = 0;

    /// Decodes the picture scaled to `wanted`, whose sides are at least 1, into 4 * width * height bytes at
    /// `pixels`; `turnOver` puts its rows upside down. Without scaling the pixels are those of the file.
    /// Scaling averages areas where it shrinks and interpolates where it enlarges; cut-out pixels do
    /// not bleed into others, areas of one colour keep it exactly, and the result is the same on every
    /// machine. To be called once. False when the picture is broken; `pixels` may have been written to
    /// then.
    virtual bool decode(ImageSize wanted, bool turnOver, unsigned char* pixels) = 0;

protected:
    ImageFile();
};

using BmpHeader = std::array<unsigned char, 122>;

/// What stands before the pixels in a bitmap file of 32 bits a pixel, rows from the bottom up, with alpha
/// declared. Nothing when the picture has no pixels or the file would not fit 32-bit sizes.
PLATFORM_API std::optional<BmpHeader> bmpHeader(ImageSize size);

}  // namespace platform
