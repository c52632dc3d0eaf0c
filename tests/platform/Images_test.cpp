#include "raylume/platform/Images.h"

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cmath>
#include <cstdlib>
#include <ostream>

#include "tests/platform/PictureFiles.h"
#include "tests/platform/TemporaryFolder.h"

#if defined(__SANITIZE_ADDRESS__)
#define UNDER_ADDRESS_SANITIZER 1
#else
#define UNDER_ADDRESS_SANITIZER 0
#endif

namespace picture_files {

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

}  // namespace picture_files

namespace {

using namespace picture_files;
using namespace std::string_literals;
using platform::ImageFile;
using platform::ImageSize;

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

std::optional<Image> decodedTo(const std::string& bytes, ImageSize wanted, bool turnOver = false)
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
Pixel entryOf(unsigned index, unsigned alpha = 255)
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

// ------------------------------------------------------------------------------------- bitmaps

std::vector<Pixel> someColours(int count)
{
    std::vector<Pixel> colours;
    for (int index = 0; index < count; ++index) {
        colours.push_back(entryOf(static_cast<unsigned>(index * 7 % 128)));
    }
    return colours;
}

class Bitmap : public testing::Test {
protected:
    static constexpr int kWidth = 13;
    static constexpr int kHeight = 5;

    static BmpParts parts(int bits, const std::function<std::uint32_t(int, int)>& value)
    {
        BmpParts parts;
        parts.width = kWidth;
        parts.height = kHeight;
        parts.bits = bits;
        parts.pixels = bmpRows(kWidth, kHeight, bits, false, value);
        return parts;
    }
    static std::uint32_t word(const Pixel& pixel)
    {
        return pixel[0] | static_cast<std::uint32_t>(pixel[1]) << 8 |
               static_cast<std::uint32_t>(pixel[2]) << 16 | static_cast<std::uint32_t>(pixel[3]) << 24;
    }
    const Image image_ = scattered(kWidth, kHeight);
    std::uint32_t wordAt(int column, int row) const { return word(image_.at(column, row)); }
};

TEST_F(Bitmap, OfIndicesTakesTheColoursOfThePalette)
{
    for (const int bits : {1, 2, 4, 8}) {
        const int count = 1 << bits;
        const auto index = [&](int column, int row) {
            return static_cast<unsigned>((column * 3 + row) % count);
        };
        for (const bool isCore : {false, true}) {
            BmpParts made = parts(bits, index);
            made.headerBytes = isCore ? 12 : 40;
            made.palette = bmpPalette(someColours(count), isCore);
            const Image wanted = makeImage(kWidth, kHeight, [&](int column, int row) {
                return someColours(count)[index(column, row)];
            });
            EXPECT_EQ(decoded(bmp(made)), wanted) << bits << " bits, core " << isCore;
        }
    }
}

TEST_F(Bitmap, OfMoreIndicesThanColoursIsBlackThere)
{
    BmpParts made = parts(8, [](int column, int) { return static_cast<unsigned>(column); });
    made.coloursUsed = 2;
    made.palette = bmpPalette(someColours(2));
    const auto image = decoded(bmp(made));
    ASSERT_TRUE(image);
    EXPECT_EQ(image->at(1, 0), someColours(2)[1]);
    EXPECT_EQ(image->at(2, 0), grey(0));
}

TEST_F(Bitmap, WhoseOffsetForgetsThePaletteIsReadBehindIt)
{
    BmpParts made = parts(1, [](int column, int) { return static_cast<unsigned>(column % 2); });
    made.palette = bmpPalette(someColours(2));
    std::string file = bmp(made);
    file.replace(10, 4, bytes32(54));
    EXPECT_EQ(decoded(file)->at(1, 0), someColours(2)[1]);
}

TEST_F(Bitmap, Of24BitsIsOpaque)
{
    EXPECT_EQ(decoded(bmp(parts(24, [&](int column, int row) { return wordAt(column, row); }))),
              opaque(image_));
}

TEST_F(Bitmap, FromTheTopDownHasANegativeHeight)
{
    BmpParts made = parts(24, [](int, int) { return 0u; });
    made.height = -kHeight;
    made.pixels =
        bmpRows(kWidth, kHeight, 24, true, [&](int column, int row) { return wordAt(column, row); });
    EXPECT_EQ(decoded(bmp(made)), opaque(image_));
}

TEST_F(Bitmap, MayLackThePaddingOfItsLastRow)
{
    BmpParts made = parts(24, [&](int column, int row) { return wordAt(column, row); });
    made.pixels.pop_back();
    EXPECT_EQ(decoded(bmp(made)), opaque(image_));
    made.pixels.pop_back();
    EXPECT_EQ(decoded(bmp(made)), std::nullopt);
}

TEST_F(Bitmap, Of16BitsSpreadsItsChannels)
{
    const auto value = [](int column, int row) {
        return static_cast<unsigned>(column * 2531 + row * 77) & 0x7FFF;
    };
    const auto spread = [](unsigned bits, unsigned most) {
        return static_cast<unsigned char>((bits * 255 + most / 2) / most);
    };
    EXPECT_EQ(
        decoded(bmp(parts(16, value))), makeImage(kWidth, kHeight, [&](int column, int row) {
            const unsigned pixel = value(column, row);
            return Pixel{spread(pixel & 31, 31), spread(pixel >> 5 & 31, 31), spread(pixel >> 10, 31), 255};
        }));
    BmpParts green6 = parts(16, value);
    green6.compression = 3;
    green6.masks = {0xF800, 0x07E0, 0x001F};
    EXPECT_EQ(
        decoded(bmp(green6)), makeImage(kWidth, kHeight, [&](int column, int row) {
            const unsigned pixel = value(column, row);
            return Pixel{spread(pixel & 31, 31), spread(pixel >> 5 & 63, 63), spread(pixel >> 11, 31), 255};
        }));
}

TEST_F(Bitmap, OfDeclaredAlphaKeepsItAsItStands)
{
    for (const std::uint32_t headerBytes : {40u, 56u, 108u, 124u}) {
        BmpParts made = parts(32, [&](int column, int row) { return wordAt(column, row); });
        made.headerBytes = headerBytes;
        made.compression = headerBytes == 40 ? 6 : 3;
        made.masks = {0x00FF0000, 0x0000FF00, 0x000000FF, 0xFF000000};
        EXPECT_EQ(decoded(bmp(made)), image_) << headerBytes;
        made.pixels = bmpRows(kWidth, kHeight, 32, false, [](int, int) { return 0x00123456u; });
        EXPECT_EQ(decoded(bmp(made)), makeImage(kWidth, kHeight,
                                                [](int, int) {
                                                    return Pixel{0x56, 0x34, 0x12, 0};
                                                }))
            << headerBytes;
    }
}

// Some programs write the alpha mask of a long header without saying that masks count.
TEST_F(Bitmap, OfAnAlphaMaskAloneKeepsAlphaAsItStands)
{
    for (const std::uint32_t headerBytes : {56u, 108u, 124u}) {
        BmpParts made = parts(32, [](int, int) { return 0x00123456u; });
        made.headerBytes = headerBytes;
        made.masks = {0, 0, 0, 0xFF000000};
        EXPECT_EQ(decoded(bmp(made))->at(0, 0), (Pixel{0x56, 0x34, 0x12, 0})) << headerBytes;
        made.masks = {0, 0, 0, 0x7F000000};
        EXPECT_EQ(decoded(bmp(made))->at(0, 0), (Pixel{0x56, 0x34, 0x12, 255})) << headerBytes;
    }
    BmpParts sixteen = parts(16, [](int, int) { return 0u; });
    sixteen.headerBytes = 108;
    sixteen.masks = {0, 0, 0, 0xFF000000};
    EXPECT_EQ(decoded(bmp(sixteen))->at(0, 0), grey(0));
}

TEST_F(Bitmap, OfUndeclaredAlphaTakesItWhereAnyPixelHasOne)
{
    BmpParts made = parts(32, [&](int column, int row) { return wordAt(column, row) & 0xFFFFFF; });
    EXPECT_EQ(decoded(bmp(made)), opaque(image_));
    const auto oneAlpha = [&](int column, int row) {
        return (wordAt(column, row) & 0xFFFFFF) | (column == 12 && row == 0 ? 0x05000000u : 0);
    };
    for (const std::uint32_t compression : {0u, 3u}) {
        made.compression = compression;
        made.masks = compression == 3 ? std::vector<std::uint32_t>{0xFF0000, 0xFF00, 0xFF}
                                      : std::vector<std::uint32_t>();
        made.pixels = bmpRows(kWidth, kHeight, 32, false, oneAlpha);
        const auto image = decoded(bmp(made));
        ASSERT_TRUE(image);
        EXPECT_EQ(image->at(12, 0)[3], 5);
        EXPECT_EQ(image->at(0, 0)[3], 0);
        EXPECT_EQ(image->at(0, 0)[0], image_.at(0, 0)[0]);
    }
}

TEST_F(Bitmap, OfOddMasksTakesThem)
{
    BmpParts made = parts(32, [&](int column, int row) { return wordAt(column, row); });
    made.compression = 3;
    made.masks = {0x000000FF, 0x0000FF00, 0xFF000000};
    EXPECT_EQ(decoded(bmp(made)), makeImage(kWidth, kHeight, [&](int column, int row) {
                  const Pixel& pixel = image_.at(column, row);
                  return Pixel{pixel[3], pixel[1], pixel[0], 255};
              }));
}

TEST_F(Bitmap, OfOs2ComesInEveryLengthOfHeader)
{
    for (const std::uint32_t bytes : {16u, 20u, 36u, 48u, 64u}) {
        BmpParts made = parts(24, [&](int column, int row) { return wordAt(column, row); });
        made.headerBytes = bytes;
        EXPECT_EQ(decoded(bmp(made)), opaque(image_)) << bytes;
    }
    BmpParts listed = parts(24, [&](int column, int row) { return wordAt(column, row); });
    std::string file = bmp(listed);
    file.replace(10, 4, bytes32(54 + 14));
    EXPECT_EQ(decoded("BA" + bytes32(14) + bytes32(0) + bytes32(0) + file), opaque(image_));
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

struct RunsCase {
    const char* name;
    int bits;
    std::string commands;
    std::vector<unsigned> indices;  // of 4 x 2 pixels from the top
};

const RunsCase kRuns[] = {
    {"runs_and_literals",
     8,
     "\x03\x05\x01\x06\x00\x00\x00\x04\x01\x02\x03\x04\x00\x00\x00\x01"s,
     {1, 2, 3, 4, 5, 5, 5, 6}},
    {"literals_are_padded_to_even",
     8,
     "\x00\x03\x07\x08\x09\x00\x01\x01\x00\x00\x04\x02\x00\x01"s,
     {2, 2, 2, 2, 7, 8, 9, 1}},
    {"a_move_leaves_colour_0",
     8,
     "\x01\x05\x00\x02\x02\x00\x01\x06\x00\x02\x00\x01\x00\x01"s,
     {0, 0, 0, 0, 5, 0, 0, 6}},
    {"a_move_goes_up", 8, "\x01\x05\x00\x02\x01\x01\x01\x06\x00\x01"s, {0, 0, 6, 0, 5, 0, 0, 0}},
    {"an_early_end_leaves_colour_0", 8, "\x04\x05\x00\x01"s, {0, 0, 0, 0, 5, 5, 5, 5}},
    {"runs_end_at_the_row", 8, "\xFF\x05\x00\x00\x04\x06\x00\x01"s, {6, 6, 6, 6, 5, 5, 5, 5}},
    {"a_last_row_that_is_whole_needs_no_end", 8, "\x04\x05\x00\x00\x04\x06"s, {6, 6, 6, 6, 5, 5, 5, 5}},
    {"halves_in_turn", 4, "\x03\x5A\x01\x60\x00\x00\x00\x04\x12\x34\x00\x01"s, {1, 2, 3, 4, 5, 10, 5, 6}},
    {"halves_are_padded_to_even_bytes",
     4,
     "\x00\x03\x12\x30\x01\x70\x00\x00\x04\x22\x00\x01"s,
     {2, 2, 2, 2, 1, 2, 3, 7}},
};

class BitmapRuns : public testing::TestWithParam<RunsCase> {};

TEST_P(BitmapRuns, AreUnrolled)
{
    const RunsCase& row = GetParam();
    const Image wanted = makeImage(4, 2, [&](int column, int line) {
        return someColours(256)[row.indices[static_cast<std::size_t>(line * 4 + column)]];
    });
    EXPECT_EQ(decoded(bmp(runs(4, 2, row.bits, row.commands))), wanted);
}

INSTANTIATE_TEST_SUITE_P(Rows, BitmapRuns, testing::ValuesIn(kRuns),
                         [](const auto& row) { return row.param.name; });

TEST(BitmapRunsOf24Bits, AreThoseOfOs2)
{
    const auto image = decoded(bmp(runs(2, 1, 24, "\x01\x01\x02\x03\x01\x04\x05\x06\x00\x01"s)));
    EXPECT_EQ(image, (Image{2, 1, {{1, 2, 3, 255}, {4, 5, 6, 255}}}));
}

TEST(BitmapRunsThatStop, AreNoPicture)
{
    EXPECT_EQ(decoded(bmp(runs(4, 2, 8, "\x04\x05\x00\x00"s))), std::nullopt);
    EXPECT_EQ(decoded(bmp(runs(4, 2, 8, "\x02\x05"s))), std::nullopt);
}

TEST(BitmapHeader, OfWhatIsUnknownIsNoPicture)
{
    BmpParts good;
    good.width = good.height = 1;
    good.pixels = "abcd";
    ASSERT_TRUE(decoded(bmp(good)));
    for (const auto& spoil : std::vector<std::function<void(BmpParts&)>>{
             [](BmpParts& parts) { parts.bits = 3; },
             [](BmpParts& parts) { parts.bits = 0; },
             [](BmpParts& parts) { parts.compression = 5; },
             [](BmpParts& parts) { parts.compression = 1; },
             [](BmpParts& parts) { parts.compression = 3; },
             [](BmpParts& parts) { parts.width = 0; },
             [](BmpParts& parts) { parts.width = -1; },
             [](BmpParts& parts) { parts.height = 0; },
             [](BmpParts& parts) { parts.height = INT32_MIN; },
             [](BmpParts& parts) { parts.height = 65536; },
             [](BmpParts& parts) { parts.width = 65536; },
             [](BmpParts& parts) { parts.headerBytes = 15; },
         }) {
        BmpParts made = good;
        spoil(made);
        EXPECT_EQ(decoded(bmp(made)), std::nullopt);
    }
}

// ------------------------------------------------------------------------------------- icons

BmpParts iconParts(int width, int height, int bits, std::uint32_t value)
{
    BmpParts parts;
    parts.width = width;
    parts.height = height;
    parts.bits = bits;
    parts.pixels = bmpRows(width, height, bits, false, [=](int, int) { return value; });
    return parts;
}

TEST(Icon, IsItsLargestPictureOfMostBits)
{
    const std::string small = iconBitmap(iconParts(1, 1, 24, 0x111111), std::string(4, '\0'));
    const std::string coarse = iconBitmap(iconParts(2, 2, 24, 0x222222), std::string(8, '\0'));
    const std::string fine = iconBitmap(iconParts(2, 2, 32, 0xFF333333), std::string(8, '\0'));
    EXPECT_EQ(decoded(icon({{1, 1, 24, small}, {2, 2, 24, coarse}, {2, 2, 32, fine}, {1, 1, 24, small}})),
              makeImage(2, 2, [](int, int) { return grey(0x33); }));
}

TEST(Icon, IsCutOutWhereItsMaskIs)
{
    // From the bottom row: the second pixel; then the first.
    const std::string mask = "\x40\0\0\0\x80\0\0\0"s;
    const auto image = decoded(icon({{2, 2, 24, iconBitmap(iconParts(2, 2, 24, 0x0A0A0A), mask)}}));
    EXPECT_EQ(image,
              (Image{2, 2, {{10, 10, 10, 0}, {10, 10, 10, 255}, {10, 10, 10, 255}, {10, 10, 10, 0}}}));
}

TEST(Icon, TakesItsAlphaBeforeItsMask)
{
    const std::string mask(4, '\xFF');
    EXPECT_EQ(decoded(icon({{1, 1, 32, iconBitmap(iconParts(1, 1, 32, 0x80010203), mask)}}))->at(0, 0),
              (Pixel{3, 2, 1, 128}));
    EXPECT_EQ(decoded(icon({{1, 1, 32, iconBitmap(iconParts(1, 1, 32, 0x00010203), mask)}}))->at(0, 0),
              (Pixel{3, 2, 1, 0}));
}

TEST(Icon, MayHoldAPng)
{
    const Image image = scattered(256, 256);
    EXPECT_EQ(decoded(icon({{16, 16, 32, iconBitmap(iconParts(16, 16, 32, 0), std::string(64, '\0'))},
                            {256, 256, 32, pngOf(image)}})),
              image);
}

TEST(Icon, OfNothingIsNoPicture)
{
    EXPECT_FALSE(opened(icon({})));
    EXPECT_FALSE(opened(icon({{2, 2, 32, ""}})));
    const std::string inner = icon({{1, 1, 24, iconBitmap(iconParts(1, 1, 24, 0), std::string(4, '\0'))}});
    EXPECT_FALSE(opened(icon({{1, 1, 24, inner}})));
}

// ------------------------------------------------------------------------------------- PNG

struct PngCase {
    const char* name;
    PngKind kind;
};

const PngCase kPngs[] = {
    {"grey_1", {0, 1, false, false}},
    {"grey_2", {0, 2, false, false}},
    {"grey_4", {0, 4, false, false}},
    {"grey_8", {0, 8, false, false}},
    {"grey_16", {0, 16, false, false}},
    {"grey_transparent", {0, 8, false, true}},
    {"colour_8", {2, 8, false, false}},
    {"colour_16", {2, 16, false, false}},
    {"colour_transparent", {2, 8, false, true}},
    {"palette_1", {3, 1, false, false}},
    {"palette_2", {3, 2, false, false}},
    {"palette_4", {3, 4, false, false}},
    {"palette_8", {3, 8, false, false}},
    {"palette_transparent", {3, 8, false, true}},
    {"grey_alpha_8", {4, 8, false, false}},
    {"grey_alpha_16", {4, 16, false, false}},
    {"alpha_8", {6, 8, false, false}},
    {"alpha_16", {6, 16, false, false}},
    {"interlaced_grey_1", {0, 1, true, false}},
    {"interlaced_palette", {3, 8, true, true}},
    {"interlaced_alpha", {6, 8, true, false}},
};

class Png : public testing::TestWithParam<PngCase> {
protected:
    static unsigned sample(const PngKind& kind, int column, int row, int channel)
    {
        const auto seed = static_cast<unsigned>(column * 37 + row * 59 + channel * 83 + column * row);
        return kind.depth == 16 ? seed * 977 & 0xFFFF : seed & ((1u << kind.depth) - 1);
    }
    static unsigned narrowed(const PngKind& kind, unsigned value)
    {
        const unsigned most = (1u << kind.depth) - 1;
        return (value * 255 + most / 2) / most;
    }
    static Pixel pixel(const PngKind& kind, int column, int row)
    {
        const auto raw = [&](int channel) { return sample(kind, column, row, channel); };
        const auto level = [&](int channel) {
            return static_cast<unsigned char>(narrowed(kind, raw(channel)));
        };
        const bool isFirst = raw(0) == 0 && (kind.colourType != 2 || (raw(1) == 0 && raw(2) == 0));
        const unsigned char alpha = kind.hasTransparency && isFirst ? 0 : 255;
        switch (kind.colourType) {
        case 0:
            return {level(0), level(0), level(0), alpha};
        case 2:
            return {level(2), level(1), level(0), alpha};
        case 3:
            return entryOf(raw(0), alpha);
        case 4:
            return {level(0), level(0), level(0), level(1)};
        default:
            return {level(2), level(1), level(0), level(3)};
        }
    }
};

TEST_P(Png, OfEveryColourTypeAndDepthIsRead)
{
    const PngKind kind = GetParam().kind;
    const std::string file = png(
        19, 11, kind, [&](int column, int row, int channel) { return sample(kind, column, row, channel); });
    EXPECT_EQ(decoded(file),
              makeImage(19, 11, [&](int column, int row) { return pixel(kind, column, row); }));
}

INSTANTIATE_TEST_SUITE_P(Rows, Png, testing::ValuesIn(kPngs),
                         [](const auto& row) { return row.param.name; });

TEST(PngTurnedOver, IsUpsideDownAndNotMirrored)
{
    const Image image = scattered(7, 9);
    for (const bool isInterlaced : {false, true}) {
        EXPECT_EQ(decodedTo(pngOf(image, isInterlaced), {7, 9}, true), turnedOver(image));
    }
}

TEST(PngCutShort, IsNoPictureWhereverItEnds)
{
    const std::string whole = pngOf(scattered(9, 9));
    ASSERT_TRUE(decoded(whole));
    for (std::size_t length = 0; length < whole.size(); ++length) {
        ASSERT_FALSE(decoded(whole.substr(0, length))) << length;
    }
}

// ------------------------------------------------------------------------------------- JPEG

unsigned ramp(int column, int row, int channel)
{
    return static_cast<unsigned>(column * 3 + row * 2 + channel * 20) & 0xFF;
}

TEST(Jpeg, OfGreyAndColourIsRead)
{
    for (const bool isProgressive : {false, true}) {
        const auto levels = decoded(jpeg(40, 30, {1, isProgressive, true, false, 100}, ramp));
        ASSERT_TRUE(levels);
        EXPECT_LE(
            largestDifference(
                *levels, makeImage(40, 30, [](int column, int row) { return grey(ramp(column, row, 0)); })),
            2);
        const auto colours = decoded(jpeg(40, 30, {3, isProgressive, true, false, 100}, ramp));
        ASSERT_TRUE(colours);
        EXPECT_LE(largestDifference(*colours, makeImage(40, 30,
                                                        [](int column, int row) {
                                                            const auto level = [&](int channel) {
                                                                return static_cast<unsigned char>(
                                                                    ramp(column, row, channel));
                                                            };
                                                            return Pixel{level(2), level(1), level(0), 255};
                                                        })),
                  4);
    }
}

TEST(Jpeg, OfInksMultipliesThem)
{
    constexpr unsigned kBytes[] = {200, 100, 255, 128};
    const auto inks = [&](int, int, int channel) { return kBytes[channel]; };
    const auto light = [&](unsigned a, unsigned b) { return static_cast<int>((a * b + 127) / 255); };
    const auto near = [](const Pixel& pixel, int blue, int green, int red) {
        return std::abs(pixel[0] - blue) <= 2 && std::abs(pixel[1] - green) <= 2 &&
               std::abs(pixel[2] - red) <= 2 && pixel[3] == 255;
    };
    for (const bool isYcck : {false, true}) {
        const Pixel marked = decoded(jpeg(8, 8, {4, false, true, isYcck, 100}, inks))->at(3, 3);
        EXPECT_TRUE(near(marked, light(255, 128), light(100, 128), light(200, 128))) << isYcck;
    }
    const Pixel plain = decoded(jpeg(8, 8, {4, false, false, false, 100}, inks))->at(3, 3);
    EXPECT_TRUE(near(plain, light(0, 127), light(155, 127), light(55, 127)));
}

TEST(Jpeg, CutShortIsGreyFromThereOn)
{
    const std::string whole = jpeg(64, 64, {1, false, true, false, 90},
                                   [](int column, int, int) { return column % 2 ? 250u : 240u; });
    const auto image = decoded(whole.substr(0, whole.size() * 3 / 4));
    ASSERT_TRUE(image);
    EXPECT_GT(image->at(0, 0)[0], 230);
    EXPECT_EQ(image->at(63, 63), grey(128));
    EXPECT_FALSE(opened(whole.substr(0, 100)));
}

TEST(Jpeg, OfFlatColourStaysItWhenReduced)
{
    const std::string file =
        jpeg(4096, 1024, {1, false, true, false, 90}, [](int, int, int) { return 77u; });
    const Image wanted = makeImage(512, 128, [](int, int) { return grey(77); });
    EXPECT_EQ(decodedTo(file, {512, 128}), wanted);
    EXPECT_EQ(decodedTo(file, {500, 100}), makeImage(500, 100, [](int, int) { return grey(77); }));
}

TEST(Jpeg, OfAtMost500ScansIsRead)
{
    EXPECT_TRUE(decoded(jpegOfScans(16, 16, 500)));
    EXPECT_FALSE(decoded(jpegOfScans(16, 16, 501)));
}

TEST(Jpeg, LimitedTakesLessThan64MiB)
{
    if (UNDER_ADDRESS_SANITIZER) {
        GTEST_SKIP() << "the sanitizer reserves memory of its own";
    }
    const std::string file = jpeg(4096, 4096, {1, false, true, false, 80},
                                  [](int column, int, int) { return 100u + (column & 31); });
    folder().write("large.jpg", file);
    const auto decodeWithin64MiB = [] {
        std::FILE* const status = std::fopen("/proc/self/statm", "r");
        unsigned long pages = 0;
        if (!status || std::fscanf(status, "%lu", &pages) != 1) {
            std::_Exit(2);
        }
        const rlim_t used = pages * static_cast<rlim_t>(sysconf(_SC_PAGESIZE));
        const rlimit limit{used + (rlim_t{64} << 20), RLIM_INFINITY};
        setrlimit(RLIMIT_AS, &limit);
        const auto picture = ImageFile::open(folder().wide() + L"/large.jpg");
        std::vector<unsigned char> pixels(std::size_t{4} * 2048 * 2048);
        std::_Exit(picture && picture->decode({2048, 2048}, false, pixels.data()) ? 0 : 1);
    };
    EXPECT_EXIT(decodeWithin64MiB(), testing::ExitedWithCode(0), "");
}

// ------------------------------------------------------------------------------------- TIFF

unsigned tiffSample(const TiffKind& kind, int column, int row, int sample)
{
    const auto seed = static_cast<unsigned>(column * 37 + row * 59 + sample * 83);
    return seed & ((1u << std::min(kind.bits, 8)) - 1);
}

std::string tiffOf(int width, int height, const TiffKind& kind)
{
    return tiff(width, height, kind, [&](int column, int row, int sample) {
        return tiffSample(kind, column, row, sample) * (kind.bits == 16 ? 257 : 1);
    });
}

Pixel tiffPixel(const TiffKind& kind, int column, int row)
{
    const auto raw = [&](int sample) { return tiffSample(kind, column, row, sample); };
    const auto level = [&](int sample) { return static_cast<unsigned char>(raw(sample)); };
    const unsigned most = (1u << std::min(kind.bits, 8)) - 1;
    switch (kind.photometric) {
    case 0:
        return grey((most - raw(0)) * 255 / most);
    case 1:
        return grey(raw(0) * 255 / most);
    case 3:
        return entryOf(raw(0));
    default:
        return {level(2), level(1), level(0),
                kind.samples == 4 && kind.extraSamples != 0 ? level(3) : static_cast<unsigned char>(255)};
    }
}

struct TiffCase {
    const char* name;
    TiffKind kind;
};

const TiffCase kTiffs[] = {
    {"grey_1_from_white", {0, 1, 1, 1, 0, 0, -1, 0, false, false}},
    {"grey_1", {1, 1, 1, 1, 0, 0, -1, 0, false, false}},
    {"grey_4", {1, 1, 4, 1, 0, 0, -1, 0, false, false}},
    {"grey_8", {1, 1, 8, 1, 0, 0, -1, 0, false, false}},
    {"grey_16", {1, 1, 16, 1, 0, 0, -1, 0, false, false}},
    {"palette_4", {3, 1, 4, 1, 0, 0, -1, 0, false, false}},
    {"palette_8", {3, 1, 8, 1, 0, 0, -1, 0, false, false}},
    {"colour_8", {2, 3, 8, 1, 0, 0, -1, 0, false, false}},
    {"colour_16", {2, 3, 16, 1, 0, 0, -1, 0, false, false}},
    {"colour_8_planes", {2, 3, 8, 1, 0, 0, -1, 0, true, false}},
    {"straight_alpha", {2, 4, 8, 1, 0, 0, 2, 0, false, false}},
    {"straight_alpha_planes", {2, 4, 8, 1, 0, 0, 2, 0, true, false}},
    {"straight_alpha_tiles", {2, 4, 8, 5, 0, 16, 2, 0, false, false}},
    {"a_fourth_sample_without_a_word_is_alpha", {2, 4, 8, 1, 0, 0, -1, 0, false, false}},
    {"an_unspecified_fourth_sample_is_no_alpha", {2, 4, 8, 1, 0, 0, 0, 0, false, false}},
    {"strips_of_3_rows", {2, 3, 8, 5, 3, 0, -1, 0, false, false}},
    {"strips_of_1_row_deflate", {2, 3, 8, 8, 1, 0, -1, 0, false, false}},
    {"adobe_deflate", {2, 3, 8, 32946, 4, 0, -1, 0, false, false}},
    {"pack_bits", {2, 3, 8, 32773, 4, 0, -1, 0, false, false}},
    {"tiles_of_16", {2, 3, 8, 1, 0, 16, -1, 0, false, false}},
    {"group_3", {0, 1, 1, 3, 0, 0, -1, 0, false, false}},
    {"group_4", {0, 1, 1, 4, 0, 0, -1, 0, false, false}},
    {"run_length_fax", {0, 1, 1, 2, 0, 0, -1, 0, false, false}},
    {"no_orientation_turns_it", {2, 3, 8, 1, 4, 0, -1, 3, false, false}},
    {"from_the_bottom_is_not_turned_either", {2, 3, 8, 1, 4, 0, -1, 4, false, false}},
    {"big_tiff", {2, 3, 8, 5, 4, 0, -1, 0, false, true}},
};

class Tiff : public testing::TestWithParam<TiffCase> {};

TEST_P(Tiff, OfEveryKindIsRead)
{
    const TiffKind kind = GetParam().kind;
    const Image wanted =
        makeImage(21, 19, [&](int column, int row) { return tiffPixel(kind, column, row); });
    EXPECT_EQ(decoded(tiffOf(21, 19, kind)), wanted);
}

INSTANTIATE_TEST_SUITE_P(Rows, Tiff, testing::ValuesIn(kTiffs),
                         [](const auto& row) { return row.param.name; });

TEST(TiffOfPremultipliedAlpha, IsDividedOut)
{
    const TiffKind kind{2, 4, 8, 1, 0, 0, 1, 0, false, false};
    constexpr unsigned kSamples[2][4] = {{100, 50, 0, 128}, {0, 0, 0, 0}};
    const std::string file =
        tiff(2, 1, kind, [&](int column, int, int sample) { return kSamples[column][sample]; });
    EXPECT_EQ(decoded(file), (Image{2, 1, {{0, 100, 199, 128}, {0, 0, 0, 0}}}));
}

TEST(TiffOfInks, MultipliesThem)
{
    const TiffKind kind{5, 4, 8, 1, 0, 0, -1, 0, false, false};
    const auto image =
        decoded(tiff(1, 1, kind, [](int, int, int sample) { return sample == 0 ? 255u : 0u; }));
    EXPECT_EQ(image, (Image{1, 1, {{255, 255, 0, 255}}}));
}

TEST(TiffOfAKindThatIsNotRead, HasNoSizeEither)
{
    EXPECT_TRUE(opened(tiffOf(4, 4, {1, 1, 8, 1, 0, 0, -1, 0, false, false, 1})));
    EXPECT_FALSE(opened(tiffOf(4, 4, {1, 1, 32, 1, 0, 0, -1, 0, false, false, 1})));
    EXPECT_FALSE(opened(tiffOf(4, 4, {1, 1, 32, 1, 0, 0, -1, 0, false, false, 3})));
    EXPECT_FALSE(opened(tiffOf(4, 4, {5, 4, 16, 1, 0, 0, -1, 0, false, false})));
}

TEST(TiffCutShort, IsNoPicture)
{
    const std::string whole = tiffOf(21, 19, {2, 3, 8, 5, 4, 0, -1, 0, false, false});
    for (std::size_t length = 0; length < whole.size() - 2; length += 3) {
        EXPECT_FALSE(decoded(whole.substr(0, length))) << length;
    }
}

// ------------------------------------------------------------------------------------- GIF

unsigned gifIndex(int column, int row)
{
    return static_cast<unsigned>(column * 5 + row * 3) & 0xFF;
}

TEST(Gif, ShowsItsFirstFrame)
{
    for (const bool isInterlaced : {false, true}) {
        for (const bool hasOwnPalette : {false, true}) {
            GifParts parts{17, 13, 0, 0, 17, 13, isInterlaced, hasOwnPalette, -1, 3};
            EXPECT_EQ(decoded(gif(parts, gifIndex)),
                      makeImage(17, 13, [](int column, int row) { return entryOf(gifIndex(column, row)); }))
                << isInterlaced << hasOwnPalette;
        }
    }
}

TEST(Gif, IsCutOutWhereItIsTransparentAndBesideTheFrame)
{
    for (const bool isInterlaced : {false, true}) {
        GifParts parts{10, 8, 2, 3, 5, 4, isInterlaced, false, 8, 1};
        const Image wanted = makeImage(10, 8, [](int column, int row) {
            const bool isInside = column >= 2 && column < 7 && row >= 3 && row < 7;
            const unsigned index = isInside ? gifIndex(column - 2, row - 3) : 0;
            return !isInside ? Pixel{0, 0, 0, 0} : entryOf(index, index == 8 ? 0 : 255);
        });
        EXPECT_EQ(decoded(gif(parts, gifIndex)), wanted);
    }
}

TEST(Gif, GrowsToAFrameThatIsLargerThanItsScreen)
{
    GifParts parts{2, 2, 1, 1, 3, 4, false, false, -1, 1};
    EXPECT_EQ(opened(gif(parts, gifIndex))->size(), (ImageSize{4, 5}));
}

// In place of the screen's and of the frame's sides as they stand in the file.
std::string withGifSides(std::string file, int screen, int frame)
{
    const std::size_t descriptor = 13 + 3 * 256;
    const std::string screenSide = bytes16(static_cast<std::uint32_t>(screen));
    const std::string frameSide = bytes16(static_cast<std::uint32_t>(frame));
    return file.replace(6, 4, screenSide + screenSide).replace(descriptor + 5, 4, frameSide + frameSide);
}

// Time goes by pixels, and rows beside the frame cost the file nothing.
TEST(Gif, OfAFrameThatLeavesMuchOfItsScreenFreeIsLimited)
{
    const std::string plain = gif({1, 1, 0, 0, 1, 1, false, false, -1, 1}, gifIndex);
    EXPECT_FALSE(opened(withGifSides(plain, 65535, 1)));
    EXPECT_FALSE(opened(withGifSides(plain, 16385, 16384)));
    EXPECT_TRUE(opened(withGifSides(plain, 16384, 1)));
    EXPECT_TRUE(opened(withGifSides(plain, 65535, 65535)));
    EXPECT_TRUE(opened(withGifSides(plain, 1, 65535)));
    const std::string interlaced = gif({1, 1, 0, 0, 1, 1, true, false, -1, 1}, gifIndex);
    EXPECT_TRUE(opened(withGifSides(interlaced, 16384, 16384)));
    EXPECT_FALSE(opened(withGifSides(interlaced, 16385, 16385)));
}

TEST(Gif, ThatReachesBeyondTheLongestSideIsNoPicture)
{
    std::string file = gif({1, 1, 0, 0, 1, 1, false, false, -1, 1}, gifIndex);
    const std::size_t descriptor = 13 + 3 * 256;
    EXPECT_TRUE(opened(file.replace(descriptor + 1, 2, bytes16(65534))));
    EXPECT_FALSE(opened(file.replace(descriptor + 1, 2, bytes16(65535))));
}

TEST(Gif, CutShortIsNoPicture)
{
    const std::string whole = gif({17, 13, 0, 0, 17, 13, false, false, -1, 1}, gifIndex);
    for (std::size_t length = 0; length < whole.size() - 20; length += 7) {
        EXPECT_FALSE(decoded(whole.substr(0, length))) << length;
    }
}

// ------------------------------------------------------------------------------------- scaling

TEST(Scaling, AveragesAreasWhereItShrinks)
{
    const Image image{
        4, 2, {grey(10), grey(20), grey(50), grey(51), grey(30), grey(40), grey(52), grey(54)}};
    EXPECT_EQ(decodedTo(pngOf(image), {2, 1}), (Image{2, 1, {grey(25), grey(52)}}));
    const Image thirds{3, 1, {grey(0), grey(90), grey(200)}};
    EXPECT_EQ(decodedTo(pngOf(thirds), {2, 1}), (Image{2, 1, {grey(30), grey(163)}}));
}

TEST(Scaling, InterpolatesWhereItEnlarges)
{
    const Image image{3, 1, {grey(0), grey(80), grey(160)}};
    EXPECT_EQ(decodedTo(pngOf(image), {4, 1}), (Image{4, 1, {grey(0), grey(50), grey(110), grey(160)}}));
    const Image column{1, 3, {grey(0), grey(80), grey(160)}};
    EXPECT_EQ(decodedTo(pngOf(column), {1, 4}), (Image{1, 4, {grey(0), grey(50), grey(110), grey(160)}}));
}

TEST(Scaling, DoesBothAtOnce)
{
    const Image image{2, 3, {grey(0), grey(10), grey(80), grey(90), grey(160), grey(170)}};
    EXPECT_EQ(decodedTo(pngOf(image), {1, 4}), (Image{1, 4, {grey(5), grey(55), grey(115), grey(165)}}));
    const Image flat{3, 2, {grey(0), grey(80), grey(160), grey(10), grey(90), grey(170)}};
    EXPECT_EQ(decodedTo(pngOf(flat), {4, 1}), (Image{4, 1, {grey(5), grey(55), grey(115), grey(165)}}));
}

TEST(Scaling, KeepsOneColourToTheBit)
{
    for (const Pixel colour : {Pixel{1, 2, 3, 255}, Pixel{255, 0, 254, 255}, Pixel{77, 88, 99, 0},
                               Pixel{200, 13, 1, 1}, Pixel{255, 255, 255, 128}}) {
        for (const ImageSize size :
             {ImageSize{64, 64}, ImageSize{128, 32}, ImageSize{7, 5}, ImageSize{1, 1}}) {
            const std::string file = pngOf(makeImage(97, 61, [&](int, int) { return colour; }));
            EXPECT_EQ(decodedTo(file, size),
                      makeImage(size.width, size.height, [&](int, int) { return colour; }));
        }
    }
}

TEST(Scaling, LendsNoColourFromWhatIsCutOut)
{
    const Image image{2, 1, {{0, 0, 255, 255}, {0, 255, 0, 0}}};
    EXPECT_EQ(decodedTo(pngOf(image), {1, 1}), (Image{1, 1, {{0, 0, 255, 128}}}));
    const Image faint{2, 1, {{0, 0, 240, 200}, {240, 0, 0, 100}}};
    EXPECT_EQ(decodedTo(pngOf(faint), {1, 1}), (Image{1, 1, {{80, 0, 160, 150}}}));
}

TEST(Scaling, IsTheSameFromTheTopAndFromTheBottom)
{
    const Image image = opaque(scattered(37, 53));
    BmpParts parts;
    parts.width = 37;
    for (const ImageSize size : {ImageSize{16, 16}, ImageSize{64, 64}, ImageSize{37, 20}}) {
        const auto fromBmp = [&](bool isTopDown) {
            parts.height = isTopDown ? -53 : 53;
            parts.pixels = bmpRows(37, 53, 24, isTopDown, [&](int column, int row) {
                const Pixel& pixel = image.at(column, row);
                return pixel[0] | static_cast<unsigned>(pixel[1]) << 8 |
                       static_cast<unsigned>(pixel[2]) << 16;
            });
            return bmp(parts);
        };
        const auto wanted = decodedTo(pngOf(image), size);
        EXPECT_EQ(decodedTo(fromBmp(false), size), wanted);
        EXPECT_EQ(decodedTo(fromBmp(true), size), wanted);
        EXPECT_EQ(decodedTo(fromBmp(false), size, true), turnedOver(*wanted));
        EXPECT_EQ(decodedTo(pngOf(image, true), size), wanted);
    }
}

TEST(Scaling, AgreesWithRealNumbers)
{
    const Image image = opaque(scattered(31, 29));
    const auto scaled = decodedTo(pngOf(image), {11, 7});
    ASSERT_TRUE(scaled);
    const auto overlap = [](int source, int result, double step) {
        return std::max(
            0.0, std::min(source + 1.0, (result + 1) * step) - std::max<double>(source, result * step));
    };
    for (int row = 0; row < 7; ++row) {
        for (int column = 0; column < 11; ++column) {
            double sum = 0;
            for (int y = 0; y < 29; ++y) {
                for (int x = 0; x < 31; ++x) {
                    sum += image.at(x, y)[1] * overlap(x, column, 31.0 / 11) * overlap(y, row, 29.0 / 7);
                }
            }
            const double mean = sum / (31.0 / 11) / (29.0 / 7);
            ASSERT_NEAR(scaled->at(column, row)[1], mean, 0.51) << column << " " << row;
        }
    }
}

// ------------------------------------------------------------------------------------- hostile files

std::vector<std::string> oneOfEach()
{
    BmpParts parts;
    parts.width = 5;
    parts.height = 3;
    parts.bits = 32;
    parts.pixels = bmpRows(5, 3, 32, false, [](int, int) { return 0x40302010u; });
    const Image image = scattered(5, 4);
    return {
        bmp(parts),
        bmp(runs(4, 2, 8, kRuns[0].commands)),
        icon({{5, 3, 32, iconBitmap(parts, std::string(12, '\0'))}}),
        icon({{5, 4, 32, pngOf(image)}}),
        pngOf(image),
        pngOf(image, true),
        png(9, 3, {3, 4, false, true}, [](int column, int, int) { return static_cast<unsigned>(column); }),
        jpeg(20, 20, {3, false, true, false, 50}, ramp),
        jpeg(20, 20, {3, true, true, false, 50}, ramp),
        jpeg(9, 9, {4, false, true, true, 50}, ramp),
        tiffOf(9, 7, {2, 4, 8, 5, 3, 0, 2, 0, false, false}),
        tiffOf(20, 7, {3, 1, 8, 1, 0, 16, -1, 0, false, false}),
        tiffOf(9, 7, {0, 1, 1, 4, 0, 0, -1, 0, false, false}),
        gif({9, 7, 1, 1, 5, 4, true, false, 8, 2}, gifIndex),
    };
}

// Reads a file that may be broken as a load does: not larger than its header says, nor than a screen.
void readAny(const std::string& bytes)
{
    const auto file = opened(bytes);
    if (!file) {
        return;
    }
    const ImageSize size{std::min(file->size().width, 64), std::min(file->size().height, 64)};
    std::vector<unsigned char> pixels(4 * static_cast<std::size_t>(size.width * size.height));
    file->decode(size, true, pixels.data());
}

TEST(HostilePictures, CutAnywhereDoNoHarmAndPrintNothing)
{
    testing::internal::CaptureStderr();
    testing::internal::CaptureStdout();
    for (const std::string& file : oneOfEach()) {
        EXPECT_TRUE(decoded(file));
        const std::size_t step = file.size() > 1000 ? 5 : 1;
        for (std::size_t length = 0; length < file.size(); length += step) {
            readAny(file.substr(0, length));
        }
    }
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

// A flipped byte may make a header ask for much, which may then be there: the largest of the sides are
// left out to keep the time down.
TEST(HostilePictures, WithAFlippedByteDoNoHarmAndPrintNothing)
{
    testing::internal::CaptureStderr();
    for (const std::string& file : oneOfEach()) {
        const std::size_t step = file.size() > 400 ? 3 : 1;
        for (std::size_t place = 0; place < file.size(); place += step) {
            for (const char flip : {'\xFF', '\x01', '\x40'}) {
                std::string broken = file;
                broken[place] = static_cast<char>(broken[place] ^ flip);
                const auto header = opened(broken);
                const std::int64_t pixels =
                    header ? std::int64_t{header->size().width} * header->size().height : 0;
                if (pixels < 1 << 22) {
                    readAny(broken);
                }
            }
        }
    }
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

std::string pngHeader(std::uint32_t width, std::uint32_t height, bool isInterlaced)
{
    std::string file = png(1, 1, {0, 8, isInterlaced, false}, [](int, int, int) { return 0u; });
    const auto big = [](std::uint32_t value) {
        const std::string little = bytes32(value);
        return std::string(little.rbegin(), little.rend());
    };
    file.replace(16, 4, big(width));
    file.replace(20, 4, big(height));
    std::uint32_t crc = 0xFFFFFFFF;  // of the chunk's name and content
    for (std::size_t at = 12; at < 29; ++at) {
        crc ^= static_cast<unsigned char>(file[at]);
        for (int bit = 0; bit < 8; ++bit) {
            crc = crc >> 1 ^ ((crc & 1) != 0 ? 0xEDB88320u : 0);
        }
    }
    return file.replace(29, 4, big(~crc));
}

TEST(HostileHeaders, OfTooMuchAreNoPictures)
{
    EXPECT_TRUE(opened(pngHeader(65535, 65535, false)));
    EXPECT_FALSE(opened(pngHeader(65536, 1, false)));
    EXPECT_FALSE(opened(pngHeader(1, 65536, false)));
    EXPECT_TRUE(opened(pngHeader(16384, 16384, true)));
    EXPECT_FALSE(opened(pngHeader(16385, 16384, true)));
    EXPECT_FALSE(opened(bmp(runs(16385, 16384, 8, "\x00\x01"s))));
    EXPECT_TRUE(opened(bmp(runs(16384, 16384, 8, "\x00\x01"s))));
    std::string wide = jpeg(8, 8, {1, true, true, false, 50}, ramp);
    const std::size_t frame = wide.find("\xFF\xC2");
    wide.replace(frame + 5, 4, "\x40\x01\x40\x00"s);
    EXPECT_FALSE(opened(wide));
    wide.replace(frame + 5, 4, "\x40\x00\x40\x00"s);
    EXPECT_TRUE(opened(wide));
}

TEST(HostileHeaders, OfPixelsThatAreNotThereAreNoPictures)
{
    BmpParts parts;
    parts.width = 60000;
    parts.height = 60000;
    parts.pixels = "abcd";
    EXPECT_FALSE(opened(bmp(parts)));
}

TEST(PictureFiles, OfNoKnownKindAreNone)
{
    for (const std::string& bytes :
         {""s, "B"s, "BM"s, "\x89PNG"s, "hello, world"s, "\xD7\xCD\xC6\x9A"s + std::string(40, '\0'),
          "\x01\0\0\0"s + std::string(100, '\0'), "GIF88a"s + std::string(20, '\0')}) {
        EXPECT_FALSE(opened(bytes));
    }
}

TEST(PictureFiles, ThatAreNoRegularFilesAreNoneAndNeverKeepWaiting)
{
    const std::string pipe = folder() / "pipe.png";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_FALSE(ImageFile::open(platform::fromUtf8(pipe)));
    EXPECT_FALSE(ImageFile::open(folder().wide()));
    EXPECT_FALSE(ImageFile::open(L"/dev/zero"));
    EXPECT_FALSE(ImageFile::open(folder().wide() + L"/missing.png"));
    EXPECT_FALSE(ImageFile::open(L""));
}

TEST(PictureFiles, CutShortWhileTheyAreOpenAreBroken)
{
    BmpParts parts;
    parts.width = parts.height = 200;
    parts.pixels = std::string(200 * 200 * 3, 'x');
    const std::string path = folder().write("shrinking.bmp", bmp(parts));
    const auto file = ImageFile::open(platform::fromUtf8(path));
    ASSERT_TRUE(file);
    ASSERT_EQ(truncate(path.c_str(), 0), 0);
    std::vector<unsigned char> pixels(4 * 200 * 200);
    EXPECT_FALSE(file->decode({200, 200}, false, pixels.data()));
}

// ------------------------------------------------------------------------------------- the header to write

TEST(WrittenBitmap, ReadsBackWithItsAlpha)
{
    const Image image = scattered(3, 5);
    const auto header = platform::bmpHeader({3, 5});
    ASSERT_TRUE(header);
    std::string file(header->begin(), header->end());
    for (const Pixel& pixel : image.pixels) {
        file.append(pixel.begin(), pixel.end());
    }
    EXPECT_EQ(file.substr(2, 4), bytes32(static_cast<std::uint32_t>(file.size())));
    EXPECT_EQ(decoded(file), turnedOver(image));
}

TEST(WrittenBitmap, IsNoneWithoutPixelsOrBeyond32Bits)
{
    EXPECT_FALSE(platform::bmpHeader({0, 1}));
    EXPECT_FALSE(platform::bmpHeader({1, 0}));
    EXPECT_FALSE(platform::bmpHeader({-1, 1}));
    EXPECT_FALSE(platform::bmpHeader({32768, 32768}));
    EXPECT_TRUE(platform::bmpHeader({32768, 32767}));
    EXPECT_FALSE(platform::bmpHeader({INT32_MAX, INT32_MAX}));
}

}  // namespace
