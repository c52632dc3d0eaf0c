#include "tools/ImageContent.h"

#include <algorithm>
#include <cstddef>
#include <memory>
#include <string_view>

#include "raylume/platform/Files.h"
#include "raylume/services/ImageCodec.h"
#include "reader/EmbeddedImages.h"

namespace tool {
namespace {

constexpr std::size_t kLargestFile = std::size_t(1) << 30;

struct Picture {
    int width = 0;
    int height = 0;
    int stride = 0;
    ImageSize inFile;
    std::unique_ptr<unsigned char[]> pixels;
};

// InputFile takes the same way from text to path as everything else, and opens regular files alone.
std::optional<Picture> decode(const std::wstring& path)
{
    Picture picture;
    unsigned char* pixels = nullptr;
    const int read = rlu_GetBitmapDataFromFile(path, picture.width, picture.height, picture.stride, &pixels,
                                               0, &picture.inFile.width, &picture.inFile.height);
    picture.pixels.reset(pixels);
    if (read != 1 || !pixels)
        return std::nullopt;
    return picture;
}

std::optional<std::vector<unsigned char>> bytesOf(const std::wstring& path)
{
    const auto file = platform::InputFile::open(path);
    if (!file)
        return std::nullopt;
    std::vector<unsigned char> bytes;
    unsigned char piece[65536];
    while (const std::size_t count = file->read(piece, sizeof piece)) {
        if (bytes.size() + count > kLargestFile)
            return std::nullopt;
        bytes.insert(bytes.end(), piece, piece + count);
    }
    return bytes;
}

bool isPng(const std::vector<unsigned char>& bytes)
{
    constexpr unsigned char kSignature[] = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
    return bytes.size() >= 8 && std::equal(kSignature, kSignature + 8, bytes.begin());
}

bool startsFrame(unsigned char marker)
{
    // C4, C8 and CC lie among the frame headers and are none.
    return marker >= 0xC0 && marker <= 0xCF && marker != 0xC4 && marker != 0xC8 && marker != 0xCC;
}

// The number of components in a JPEG file's first frame header
// (https://www.w3.org/Graphics/JPEG/itu-t81.pdf, B.2.2); 0 when there is none.
int jpegComponents(const std::vector<unsigned char>& bytes)
{
    std::size_t at = 2;
    while (at + 10 <= bytes.size() && bytes[at] == 0xFF) {
        const unsigned char marker = bytes[at + 1];
        if (marker == 0xFF) {
            ++at;
            continue;
        }
        if (startsFrame(marker))
            return bytes[at + 9];
        at += 2 + static_cast<std::size_t>(bytes[at + 2] << 8 | bytes[at + 3]);
    }
    return 0;
}

// What four components mean depends on the program that wrote them; viewers of glTF differ.
bool isCommonJpeg(const std::vector<unsigned char>& bytes)
{
    if (bytes.size() < 3 || bytes[0] != 0xFF || bytes[1] != 0xD8 || bytes[2] != 0xFF)
        return false;
    const int components = jpegComponents(bytes);
    return components == 1 || components == 3;
}

std::optional<ImageBytes> asGltfHasThem(std::vector<unsigned char> bytes)
{
    if (isPng(bytes))
        return ImageBytes{std::move(bytes), "image/png"};
    if (isCommonJpeg(bytes))
        return ImageBytes{std::move(bytes), "image/jpeg"};
    return std::nullopt;
}

}  // namespace

std::optional<ImageSize> imageSize(const std::wstring& path)
{
    const auto picture = decode(path);
    return picture ? std::optional(picture->inFile) : std::nullopt;
}

// A damaged file would make the whole document invalid, so only what can be decoded is copied.
std::optional<ImageBytes> imageForGltf(const std::wstring& path)
{
    const auto picture = decode(path);
    if (!picture)
        return std::nullopt;
    auto bytes = bytesOf(path);
    if (!bytes)
        return std::nullopt;
    if (auto asItIs = asGltfHasThem(std::move(*bytes)))
        return asItIs;
    return ImageBytes{encodePng(picture->pixels.get(), picture->width, picture->height), "image/png"};
}

std::optional<ImageBytes> embeddedImageForGltf(const std::wstring& name)
{
    return asGltfHasThem(ovdl::embeddedImage(name));
}

}  // namespace tool
