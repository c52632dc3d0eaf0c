#include "raylume/appearance/MaskImages.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <iterator>
#include <memory>

#include "raylume/platform/Text.h"
#include "raylume/scene/dlDecal.h"
#include "raylume/services/ImageCodec.h"
#include "raylume/services/TextureSearch.h"

maskimages::Cache<maskimages::ColorsRecord> maskImageCacheColors;
maskimages::Cache<maskimages::FileRecord> maskImageCacheFiles;

namespace {

constexpr std::size_t kBytesAPixel = 4;
constexpr std::size_t kFewColours = 4;
constexpr std::uint32_t kAllColours = 1u << 24;

using FewColours = std::array<std::uint32_t, kFewColours>;

// The four bytes of a pixel as they lie in memory.
std::uint32_t pixelOf(unsigned char blue, unsigned char green, unsigned char red, unsigned char alpha)
{
    const unsigned char bytes[kBytesAPixel] = {blue, green, red, alpha};
    std::uint32_t pixel;
    std::memcpy(&pixel, bytes, kBytesAPixel);
    return pixel;
}

std::uint32_t pixelOf(std::uint32_t colour)
{
    return pixelOf(static_cast<unsigned char>(colour >> 16), static_cast<unsigned char>(colour >> 8),
                   static_cast<unsigned char>(colour), 0);
}

// `isCut` is asked with the alpha taken out.
template <class IsCut>
void cutOut(unsigned char* pixels, std::size_t pixelCount, IsCut isCut)
{
    const std::uint32_t colourBits = pixelOf(255, 255, 255, 0);
    const std::uint32_t opaque = pixelOf(0, 0, 0, 255);
    for (std::size_t index = 0; index < pixelCount; ++index, pixels += kBytesAPixel) {
        std::uint32_t pixel;
        std::memcpy(&pixel, pixels, kBytesAPixel);
        pixel &= colourBits;
        pixel |= isCut(pixel) ? 0 : opaque;
        std::memcpy(pixels, &pixel, kBytesAPixel);
    }
}

// Comparing with each of a few is faster than any look-up: the compiler does several pixels at a time.
void cutOutFew(unsigned char* pixels, std::size_t pixelCount, const FewColours& few)
{
    const std::uint32_t a = few[0], b = few[1], c = few[2], d = few[3];
    cutOut(pixels, pixelCount,
           [a, b, c, d](std::uint32_t p) { return (p == a) | (p == b) | (p == c) | (p == d); });
}

// Unused places hold what no pixel is compared as: one with an alpha.
FewColours fewOf(const std::vector<std::uint32_t>& colours)
{
    FewColours few;
    few.fill(pixelOf(0, 0, 0, 255));
    std::transform(colours.begin(), colours.end(), few.begin(), [](std::uint32_t c) { return pixelOf(c); });
    return few;
}

// One bit for every colour there is, by the pixel that has it and no alpha.
class ColourSet {
public:
    explicit ColourSet(const std::vector<std::uint32_t>& colours) : words_(kAllColours / 64)
    {
        for (const std::uint32_t colour : colours) {
            const std::uint32_t place = placeOf(pixelOf(colour));
            words_[place / 64] |= std::uint64_t{1} << (place % 64);
        }
    }

    bool has(std::uint32_t pixel) const
    {
        const std::uint32_t place = placeOf(pixel);
        return (words_[place / 64] >> (place % 64) & 1) != 0;
    }

private:
    // The alpha, which is 0, lies at one end of the number.
    static std::uint32_t placeOf(std::uint32_t pixel)
    {
        return std::endian::native == std::endian::little ? pixel : pixel >> 8;
    }

    std::vector<std::uint64_t> words_;
};

void cutOutMany(unsigned char* pixels, std::size_t pixelCount, const ColourSet& colours)
{
    cutOut(pixels, pixelCount, [&colours](std::uint32_t pixel) { return colours.has(pixel); });
}

// Each once, and only those that a pixel can have.
std::vector<std::uint32_t> possibleColours(const std::list<std::uint32_t>& colours)
{
    std::vector<std::uint32_t> possible;
    std::copy_if(colours.begin(), colours.end(), std::back_inserter(possible),
                 [](std::uint32_t colour) { return colour < kAllColours; });
    std::sort(possible.begin(), possible.end());
    possible.erase(std::unique(possible.begin(), possible.end()), possible.end());
    return possible;
}

// For each place of a side the place of the mask's side: scaled in single precision, the scale first. The
// bound only matters to sides so long that rounding would step over the end.
std::vector<std::size_t> nearestPlaces(int side, int maskSide)
{
    const float scale = static_cast<float>(maskSide) / static_cast<float>(side);
    const float end = static_cast<float>(maskSide);
    const auto last = static_cast<std::size_t>(maskSide) - 1;
    std::vector<std::size_t> places(static_cast<std::size_t>(side));
    for (int place = 0; place < side; ++place) {
        const float scaled = static_cast<float>(place) * scale;
        places[static_cast<std::size_t>(place)] =
            scaled < end ? std::min(static_cast<std::size_t>(scaled), last) : last;
    }
    return places;
}

// The complement of a byte is the byte with all its bits turned.
unsigned char turnedBits(bool invert)
{
    return invert ? 0xFF : 0x00;
}

void takeAlphaInPlace(unsigned char* pixels, std::size_t pixelCount, const unsigned char* mask,
                      unsigned char turned)
{
    for (std::size_t at = 0; at < pixelCount * kBytesAPixel; at += kBytesAPixel)
        pixels[at + 3] = mask[at] ^ turned;
}

void takeAlphaScaled(unsigned char* pixels, maskimages::Size size, const unsigned char* mask,
                     maskimages::Size maskSize, unsigned char turned)
{
    const std::vector<std::size_t> columns = nearestPlaces(size.width, maskSize.width);
    const std::vector<std::size_t> rows = nearestPlaces(size.height, maskSize.height);
    for (const std::size_t row : rows) {
        const unsigned char* maskRow = mask + row * static_cast<std::size_t>(maskSize.width) * kBytesAPixel;
        for (const std::size_t column : columns) {
            pixels[3] = maskRow[column * kBytesAPixel] ^ turned;
            pixels += kBytesAPixel;
        }
    }
}

bool isEmpty(maskimages::Size size)
{
    return size.width <= 0 || size.height <= 0;
}

// A decoded image, or the nothing that a failed load leaves.
struct Picture {
    int status = 0;
    int width = 0;
    int height = 0;
    int stride = 0;
    std::unique_ptr<unsigned char[]> pixels;

    maskimages::Size size() const { return {width, height}; }
    std::size_t pixelCount() const
    {
        return static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
    }
};

// The flag makes the sides powers of two and turns the rows over; saving turns them back.
Picture load(const std::wstring& path)
{
    Picture picture;
    unsigned char* pixels = nullptr;
    picture.status =
        rlu_GetPictureFileData(path, picture.width, picture.height, picture.stride, &pixels, 1, 0, 1);
    picture.pixels.reset(pixels);
    return picture;
}

// After a failed load too: the caller gets a path with nothing behind it, and keeps it.
std::wstring save(const Picture& picture)
{
    return rlu_SaveAsBitmap(picture.width, picture.height, picture.stride, picture.pixels.get());
}

std::wstring resolve(const std::wstring& storedPath, const std::wstring& documentPath)
{
    return platform::widen(
        rlu_getTextureFilename(storedPath, platform::narrow(documentPath), TextureImageDecal, {}));
}

template <class Record>
bool takeFromCache(const maskimages::Cache<Record>& cache, const Record& wanted, std::wstring& filename)
{
    const Record* hit = cache.find(wanted);
    if (hit)
        filename = hit->resultFile;
    return hit != nullptr;
}

// The name comes last: a decal whose image could not be remembered still has the one to begin with again.
template <class Record>
void keep(maskimages::Cache<Record>& cache, Record record, std::wstring resultFile, std::wstring& filename)
{
    if (resultFile.empty())
        return;
    record.resultFile = resultFile;
    cache.add(std::move(record));
    filename = std::move(resultFile);
}

std::wstring bakeColours(const maskimages::ColorsRecord& wanted)
{
    const Picture picture = load(wanted.imageName);
    if (picture.status == 1)
        maskimages::cutOutColours(picture.pixels.get(), picture.pixelCount(), wanted.colors);
    return save(picture);
}

// Both are loaded, even when the first fails. The statuses are tested differently on purpose.
std::wstring bakeMaskImage(const maskimages::FileRecord& wanted)
{
    const Picture picture = load(wanted.imageName);
    Picture mask = load(wanted.maskName);
    if (picture.status == 1 && mask.status != 0)
        maskimages::takeAlphaFromMask(picture.pixels.get(), picture.size(), mask.pixels.get(), mask.size(),
                                      wanted.inverted);
    mask.pixels.reset();
    return save(picture);
}

}  // namespace

namespace maskimages {

void cutOutColours(unsigned char* pixels, std::size_t pixelCount, const std::list<std::uint32_t>& colours)
{
    if (colours.empty())
        return;
    const std::vector<std::uint32_t> possible = possibleColours(colours);
    if (possible.size() <= kFewColours)
        cutOutFew(pixels, pixelCount, fewOf(possible));
    else
        cutOutMany(pixels, pixelCount, ColourSet(possible));
}

void takeAlphaFromMask(unsigned char* pixels, Size size, const unsigned char* mask, Size maskSize,
                       bool invert)
{
    if (isEmpty(size) || isEmpty(maskSize))
        return;
    if (size.width == maskSize.width && size.height == maskSize.height)
        takeAlphaInPlace(pixels,
                         static_cast<std::size_t>(size.width) * static_cast<std::size_t>(size.height), mask,
                         turnedBits(invert));
    else
        takeAlphaScaled(pixels, size, mask, maskSize, turnedBits(invert));
}

ColorsKey keyOf(const ColorsRecord& record)
{
    return {platform::toLower(record.imageName), record.colors};
}

FileKey keyOf(const FileRecord& record)
{
    return {platform::toLower(record.imageName), platform::toLower(record.maskName), record.inverted};
}

}  // namespace maskimages

void dlDecal::generateNewImageUsingMaskColors(std::wstring documentPath)
{
    const maskimages::ColorsRecord wanted{resolve(texture.filename, documentPath), colorMask, {}};
    if (!takeFromCache(maskImageCacheColors, wanted, texture.filename))
        keep(maskImageCacheColors, wanted, bakeColours(wanted), texture.filename);
}

void dlDecal::generateNewImageUsingMaskFile(std::wstring documentPath, std::wstring maskName, bool invert)
{
    const std::wstring image = resolve(texture.filename, documentPath);
    const maskimages::FileRecord wanted{image, resolve(maskName, documentPath), invert, {}};
    if (!takeFromCache(maskImageCacheFiles, wanted, texture.filename))
        keep(maskImageCacheFiles, wanted, bakeMaskImage(wanted), texture.filename);
}
