#include "raylume/services/ImageCodec.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "raylume/platform/Folders.h"
#include "raylume/platform/Images.h"
#include "raylume/platform/Memory.h"
#include "raylume/services/TemporaryFiles.h"

namespace {

using platform::ImageSize;

constexpr int kLimit = 2048;
constexpr std::size_t kPixelBytes = 4;

// The quotients are taken in this order and cut, so that a picture and the same one lying on its side may
// differ by a pixel.
ImageSize limited(ImageSize size)
{
    const double ratio = static_cast<double>(size.width) / static_cast<double>(size.height);
    const bool isTall = size.height > kLimit && size.height > size.width;
    if (isTall) {
        return {static_cast<int>(ratio * kLimit), kLimit};
    }
    return size.width > kLimit ? ImageSize{kLimit, static_cast<int>(kLimit / ratio)} : size;
}

// The nearer power of two on a scale of powers: up from one and a half times the lower one.
int roundedToPowerOfTwo(int side)
{
    int power = 1;
    for (; side != 1; side /= 2, power *= 2) {
        if (side == 3) {
            return power * 4;
        }
    }
    return power;
}

ImageSize resultSize(ImageSize fileSize, bool isRounded)
{
    const ImageSize size = limited(fileSize);
    if (!isRounded || size.width < 1 || size.height < 1) {
        return size;
    }
    return {roundedToPowerOfTwo(size.width), roundedToPowerOfTwo(size.height)};
}

std::size_t byteCount(ImageSize size)
{
    return static_cast<std::size_t>(size.width) * static_cast<std::size_t>(size.height) * kPixelBytes;
}

struct CallerPixels {
    ImageSize size;
    std::size_t stride = 0;
    const unsigned char* pixels = nullptr;
};

// Nothing where there is no picture. A stride counts whole pixels.
std::optional<CallerPixels> checked(int width, int height, int stride, const unsigned char* pixels)
{
    constexpr auto kWhole = static_cast<int>(kPixelBytes);
    if (!pixels || width < 1 || height < 1 || stride % kWhole != 0 || stride / kWhole < width) {
        return std::nullopt;
    }
    return CallerPixels{{width, height}, static_cast<std::size_t>(stride), pixels};
}

std::vector<unsigned char> withoutGaps(const CallerPixels& source)
{
    const std::size_t rowBytes = kPixelBytes * static_cast<std::size_t>(source.size.width);
    std::vector<unsigned char> packed(byteCount(source.size));
    for (std::size_t row = 0; row < static_cast<std::size_t>(source.size.height); ++row) {
        std::copy_n(source.pixels + row * source.stride, rowBytes, packed.data() + row * rowBytes);
    }
    return packed;
}

// The first row as given is the bottom row, and so the first one in the file.
void saveChecked(const CallerPixels& source, const platform::BmpHeader& header, std::wstring& path)
{
    std::vector<unsigned char> packed;
    const unsigned char* pixels = source.pixels;
    if (source.stride != kPixelBytes * static_cast<std::size_t>(source.size.width)) {
        packed = withoutGaps(source);
        pixels = packed.data();
    }
    const std::array<std::span<const unsigned char>, 2> pieces{std::span<const unsigned char>(header),
                                                               std::span(pixels, byteCount(source.size))};
    saveNextTempBitmap(pieces, path);
}

}  // namespace

int rlu_GetBitmapDataFromFile(const std::wstring& path, int& width, int& height, int& stride,
                              unsigned char** pixels, int flag, int* fileWidth, int* fileHeight)
{
    const auto file = platform::ImageFile::open(path);
    if (!file) {
        return 0;
    }
    if (fileWidth && fileHeight) {
        *fileWidth = file->size().width;
        *fileHeight = file->size().height;
    }
    const ImageSize size = resultSize(file->size(), flag != 0);
    if (!pixels || size.width < 1 || size.height < 1) {
        return 0;
    }
    std::unique_ptr<unsigned char[]> buffer(new unsigned char[byteCount(size)]);
    platform::prepareForFilling(buffer.get(), byteCount(size));
    if (!file->decode(size, flag != 0, buffer.get())) {
        return 0;
    }
    width = size.width;
    height = size.height;
    stride = size.width * static_cast<int>(kPixelBytes);
    *pixels = buffer.release();
    return 1;
}

int rlu_GetPictureFileData(const std::wstring& path, int& width, int& height, int& stride,
                           unsigned char** pixels, int flag, int, int)
{
    return rlu_GetBitmapDataFromFile(path, width, height, stride, pixels, flag, nullptr, nullptr);
}

std::wstring rlu_SaveAsBitmap(int width, int height, int stride, const unsigned char* pixels)
{
    std::wstring path;
    const auto source = checked(width, height, stride, pixels);
    const auto header = source ? platform::bmpHeader(source->size) : std::nullopt;
    if (header) {
        saveChecked(*source, *header, path);
    } else {
        nextTempBitmapPath(path);
    }
    return path;
}

void rlu_ClearTempBMPFiles()
{
    const std::wstring folder = getTemporaryFilePath(std::wstring(), true);
    if (folder.empty() || !probeFolder(folder)) {
        return;
    }
    platform::deleteFilesInOwnFolder(folder);
    platform::removeFolder(folder);
}
