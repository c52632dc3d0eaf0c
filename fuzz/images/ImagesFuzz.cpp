// Any bytes as a picture file: the header, and the pixels in their own size and scaled. Pictures that are
// large by their headers are left at that, so that a run gets through many inputs.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <vector>

#include "raylume/platform/images/Picture.h"

namespace {

class Bytes final : public platform::ImageSource {
public:
    Bytes(const std::uint8_t* data, std::size_t size) : data_(data), size_(size) {}
    std::uint64_t size() const override { return size_; }
    std::size_t readAt(std::uint64_t offset, void* buffer, std::size_t size) override
    {
        if (offset >= size_)
            return 0;
        const std::size_t count = std::min<std::uint64_t>(size, size_ - offset);
        std::memcpy(buffer, data_ + offset, count);
        return count;
    }

private:
    const std::uint8_t* data_;
    std::size_t size_;
};

constexpr std::int64_t kMostPixels = 1 << 18;

void decode(const std::shared_ptr<platform::ImageSource>& source, platform::ImageSize wanted)
{
    const auto picture = platform::openPicture(source);
    if (!picture)
        std::abort();
    std::vector<unsigned char> pixels(4 * static_cast<std::size_t>(pixelCount(wanted)));
    platform::RowScaler rows(picture->reduceFor(wanted), {wanted, true, pixels.data()},
                             picture->hasAlpha());
    picture->decode(rows);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::shared_ptr<platform::ImageSource> source = std::make_shared<Bytes>(data, size);
    const auto picture = platform::openPicture(source);
    if (!picture)
        return 0;
    const platform::ImageSize whole = picture->size();
    if (!isWithinLimits(*picture))
        std::abort();
    if (pixelCount(whole) > kMostPixels)
        return 0;
    decode(source, whole);
    decode(source, {(whole.width + 2) / 3, (whole.height + 2) / 3});
    decode(source, {whole.width + whole.width / 3, (whole.height + 1) / 2});
    return 0;
}
