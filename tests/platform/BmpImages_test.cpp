#include "raylume/platform/Images.h"

#include <gtest/gtest.h>

#include "tests/platform/DecodedPictures.h"

namespace {

using namespace picture_files;
using namespace std::string_literals;

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
    for (const std::uint32_t headerBytes : {40u, 52u}) {
        made.headerBytes = headerBytes;
        EXPECT_EQ(decoded(bmp(made)), makeImage(kWidth, kHeight,
                                                [&](int column, int row) {
                                                    const Pixel& pixel = image_.at(column, row);
                                                    return Pixel{pixel[3], pixel[1], pixel[0], 255};
                                                }))
            << headerBytes;
    }
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
