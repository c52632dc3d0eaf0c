#include "tests/platform/DecodedPictures.h"

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>

namespace picture_files {

using platform::ImageFile;
using platform::ImageSize;

void PrintTo(const Image& image, std::ostream* out)
{
    *out << image.width << " x " << image.height << ":";
    for (std::size_t index = 0; index < std::min<std::size_t>(image.pixels.size(), 64); ++index) {
        *out << " (";
        for (const unsigned char channel : image.pixels[index]) {
            *out << int{channel} << " ";
        }
        *out << ")";
    }
}

const TemporaryFolder& folder()
{
    static const TemporaryFolder instance;
    return instance;
}

// A file in memory: thousands of them are written.
std::unique_ptr<ImageFile> opened(const std::string& bytes)
{
    static const int file = memfd_create("picture.txt", MFD_CLOEXEC);
    if (ftruncate(file, 0) != 0 ||
        pwrite(file, bytes.data(), bytes.size(), 0) != static_cast<ssize_t>(bytes.size())) {
        return nullptr;
    }
    return ImageFile::open(L"/proc/self/fd/" + std::to_wstring(file));
}

std::optional<Image> decodedTo(const std::string& bytes, ImageSize wanted, bool turnOver)
{
    const auto file = opened(bytes);
    Image image{wanted.width, wanted.height, {}};
    image.pixels.resize(static_cast<std::size_t>(wanted.width) * static_cast<std::size_t>(wanted.height));
    if (!file || !file->decode(wanted, turnOver, image.pixels.data()->data())) {
        return std::nullopt;
    }
    return image;
}

std::optional<Image> decoded(const std::string& bytes)
{
    const auto file = opened(bytes);
    return file ? decodedTo(bytes, file->size()) : std::nullopt;
}

Pixel grey(unsigned value)
{
    const auto level = static_cast<unsigned char>(value);
    return {level, level, level, 255};
}

// The palettes of the builders.
Pixel entryOf(unsigned index, unsigned alpha)
{
    return {static_cast<unsigned char>(255 - index), static_cast<unsigned char>(2 * index),
            static_cast<unsigned char>(index), static_cast<unsigned char>(alpha)};
}

int largestDifference(const Image& a, const Image& b)
{
    int largest = a.pixels.size() == b.pixels.size() ? 0 : 999;
    for (std::size_t index = 0; largest < 999 && index < a.pixels.size(); ++index) {
        for (std::size_t channel = 0; channel < 4; ++channel) {
            largest = std::max(largest, std::abs(a.pixels[index][channel] - b.pixels[index][channel]));
        }
    }
    return largest;
}

std::vector<Pixel> someColours(int count)
{
    std::vector<Pixel> colours;
    for (int index = 0; index < count; ++index) {
        colours.push_back(entryOf(static_cast<unsigned>(index * 7 % 128)));
    }
    return colours;
}

BmpParts runs(int width, int height, int bits, const std::string& commands)
{
    BmpParts made;
    made.width = width;
    made.height = height;
    made.bits = bits;
    made.compression = bits == 8 ? 1 : bits == 4 ? 2 : 4;
    made.headerBytes = bits == 24 ? 64 : 40;
    made.palette = bits == 24 ? "" : bmpPalette(someColours(1 << bits));
    made.pixels = commands;
    return made;
}

unsigned ramp(int column, int row, int channel)
{
    return static_cast<unsigned>(column * 3 + row * 2 + channel * 20) & 0xFF;
}

unsigned tiffSample(const TiffKind& kind, int column, int row, int sample)
{
    const auto seed = static_cast<unsigned>(column * 37 + row * 59 + sample * 83);
    return kind.bits < 16 ? seed & ((1u << kind.bits) - 1) : seed * 977 & 0xFFFF;
}

std::string tiffOf(int width, int height, const TiffKind& kind)
{
    return tiff(width, height, kind,
                [&](int column, int row, int sample) { return tiffSample(kind, column, row, sample); });
}

unsigned gifIndex(int column, int row)
{
    return static_cast<unsigned>(column * 5 + row * 3) & 0xFF;
}

}  // namespace picture_files
