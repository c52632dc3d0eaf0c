// One picture of a known kind: what each codec implements.
#pragma once

#include <cstdint>
#include <memory>

#include "raylume/platform/Images.h"
#include "raylume/platform/images/ImageSource.h"
#include "raylume/platform/images/RowScaler.h"

namespace platform {

inline constexpr int kLongestSide = 65535;
inline constexpr std::int64_t kMostPixelsAtOnce = std::int64_t{1} << 28;

inline std::int64_t pixelCount(ImageSize size)
{
    return std::int64_t{size.width} * size.height;
}

/// Made when a header has been read; nothing that grows with the picture is allocated before decode().
class Picture {
public:
    Picture() = default;
    Picture(const Picture&) = delete;
    Picture& operator=(const Picture&) = delete;
    virtual ~Picture() = default;

    /// As the header has it, whatever that is.
    virtual ImageSize size() const = 0;
    /// Whether an alpha other than 255 can occur.
    virtual bool hasAlpha() const = 0;
    /// Whether memory does not grow with the number of pixels.
    virtual bool comesByRows() const = 0;
    /// The size in which decode() will give the picture, for a result of that size: less than size() only
    /// where the codec itself reduces, and never less than wanted.
    virtual ImageSize reduceFor(ImageSize) { return size(); }
    /// Hands over all rows. False when the picture is broken.
    virtual bool decode(RowScaler& rows) = 0;
};

/// A picture within the limits, by its first bytes; null when there is none. Each system has its own, over
/// the codecs that it has.
std::unique_ptr<Picture> openPicture(const std::shared_ptr<ImageSource>& source);

inline bool isWithinLimits(const Picture& picture)
{
    const ImageSize size = picture.size();
    const bool isSized =
        size.width >= 1 && size.height >= 1 && size.width <= kLongestSide && size.height <= kLongestSide;
    return isSized && (picture.comesByRows() || pixelCount(size) <= kMostPixelsAtOnce);
}

}  // namespace platform
