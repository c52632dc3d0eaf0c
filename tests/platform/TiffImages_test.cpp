#include "raylume/platform/Images.h"

#include <gtest/gtest.h>
#include <tiffio.h>

#include <algorithm>
#include <cstdarg>

#include "tests/platform/DecodedPictures.h"

namespace {

using namespace picture_files;
using picture_files::tiff;  // and not the library's structure of that name

// Of 16 bits colours are scaled, while of grey the high byte is taken.
Pixel tiffPixel(const TiffKind& kind, int column, int row)
{
    const auto raw = [&](int sample) { return tiffSample(kind, column, row, sample); };
    const auto level = [&](int sample) {
        return static_cast<unsigned char>(kind.bits == 16 ? (raw(sample) * 255 + 32767) / 65535
                                                          : raw(sample));
    };
    const unsigned most = (1u << std::min(kind.bits, 8)) - 1;
    const unsigned value = kind.bits == 16 ? raw(0) >> 8 : raw(0);
    switch (kind.photometric) {
    case 0:
        return grey((most - value) * 255 / most);
    case 1: {
        Pixel pixel = grey(value * 255 / most);
        pixel[3] = kind.samples == 2 ? level(1) : pixel[3];
        return pixel;
    }
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
    {"grey_16_from_white", {0, 1, 16, 1, 0, 0, -1, 0, false, false}},
    {"grey_and_alpha", {1, 2, 8, 1, 0, 0, 2, 0, false, false}},
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
    {"tiles_of_16_in_planes", {2, 3, 8, 1, 0, 16, -1, 0, true, false}},
    {"straight_alpha_of_16", {2, 4, 16, 1, 0, 0, 2, 0, false, false}},
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

TEST(TiffOfJpeg, IsRead)
{
    const TiffKind grey8{1, 1, 8, 7, 0, 0, -1, 0, false, false};
    const auto levels = decoded(tiff(32, 16, grey8, ramp));
    ASSERT_TRUE(levels);
    EXPECT_LE(
        largestDifference(
            *levels, makeImage(32, 16, [](int column, int row) { return grey(ramp(column, row, 0)); })),
        12);
    const TiffKind colour{6, 3, 8, 7, 0, 0, -1, 0, false, false};
    const auto flat = decoded(tiff(
        32, 16, colour, [](int, int, int sample) { return 200u - 70u * static_cast<unsigned>(sample); }));
    ASSERT_TRUE(flat);
    EXPECT_LE(largestDifference(*flat, makeImage(32, 16,
                                                 [](int, int) {
                                                     return Pixel{60, 130, 200, 255};
                                                 })),
              3);
}

TEST(TiffOfYCbCr, IsRead)
{
    const TiffKind kind{6, 3, 8, 1, 0, 0, -1, 0, false, false};
    constexpr unsigned kSamples[3][3] = {{128, 128, 128}, {76, 85, 255}, {29, 255, 107}};
    const auto image =
        decoded(tiff(3, 1, kind, [&](int column, int, int sample) { return kSamples[column][sample]; }));
    ASSERT_TRUE(image);
    EXPECT_LE(largestDifference(*image, Image{3, 1, {grey(128), {0, 0, 255, 255}, {255, 0, 0, 255}}}), 2);
}

// Lightness, then green to red, blue to yellow.
TEST(TiffOfLab, IsRead)
{
    const TiffKind kind{8, 3, 8, 1, 0, 0, -1, 0, false, false};
    constexpr unsigned kSamples[4][3] = {{255, 0, 0}, {0, 0, 0}, {128, 70, 0}, {128, 0, 0x100 - 70}};
    const auto image =
        decoded(tiff(4, 1, kind, [&](int column, int, int sample) { return kSamples[column][sample]; }));
    ASSERT_TRUE(image);
    for (std::size_t channel = 0; channel < 3; ++channel) {
        EXPECT_GT(image->at(0, 0)[channel], 210) << channel;  // white in another light
        EXPECT_LT(image->at(1, 0)[channel], 6) << channel;
    }
    EXPECT_GT(image->at(2, 0)[2], image->at(2, 0)[1] + 60);
    EXPECT_GT(image->at(3, 0)[0], image->at(3, 0)[2] + 60);
}

constexpr unsigned kWidthTag = 256;
constexpr unsigned kHeightTag = 257;
constexpr unsigned kRowsPerStripTag = 278;

std::string tiffOfSides(std::uint32_t width, std::uint32_t height, std::uint32_t rowsPerStrip)
{
    const std::string file = tiffOf(4, 4, {1, 1, 8, 5, 0, 0, -1, 0, false, false});
    return withTiffTag(withTiffTag(withTiffTag(file, kWidthTag, width), kHeightTag, height),
                       kRowsPerStripTag, rowsPerStrip);
}

TEST(TiffOfTooMuch, IsNoPicture)
{
    EXPECT_TRUE(opened(tiffOfSides(65535, 1, 1)));
    EXPECT_FALSE(opened(tiffOfSides(65536, 1, 1)));
    EXPECT_TRUE(opened(tiffOfSides(1, 65535, 16)));
    EXPECT_FALSE(opened(tiffOfSides(1, 65536, 16)));
    EXPECT_TRUE(opened(tiffOfSides(16384, 16384, 16384)));
    EXPECT_FALSE(opened(tiffOfSides(16384, 16385, 16385)));
    EXPECT_TRUE(opened(tiffOfSides(65535, 65535, 16)));
    EXPECT_FALSE(opened(tiffOfSides(65535, 65535, 5000)));
}

int countedErrors = 0;
int countedWarnings = 0;

void countError(const char*, const char*, va_list)
{
    ++countedErrors;
}

void countWarning(const char*, const char*, va_list)
{
    ++countedWarnings;
}

// The library's handlers belong to the host.
TEST(BrokenTiff, LeavesTheHandlersOfTheProcessAlone)
{
    std::string broken = tiffOf(21, 19, {2, 3, 8, 5, 4, 0, -1, 0, false, false});
    std::fill_n(broken.begin() + 8, 60, '\xFF');
    const std::string odd = withTiffTag(tiffOf(4, 4, {1, 1, 8, 1, 0, 0, -1, 0, false, false}), 262, 99);
    const TIFFErrorHandler errors = TIFFSetErrorHandler(countError);
    const TIFFErrorHandler warnings = TIFFSetWarningHandler(countWarning);
    countedErrors = countedWarnings = 0;
    EXPECT_FALSE(decoded(broken));
    EXPECT_FALSE(decoded(broken.substr(0, broken.size() - 5)));
    EXPECT_FALSE(decoded(odd));
    EXPECT_EQ(countedErrors, 0);
    EXPECT_EQ(countedWarnings, 0);
    // The counting works.
    TIFF* const missing = TIFFOpen("/no/such/file.tif", "r");
    EXPECT_EQ(missing, nullptr);
    EXPECT_EQ(countedErrors, 1);
    EXPECT_EQ(TIFFSetErrorHandler(errors), countError);
    EXPECT_EQ(TIFFSetWarningHandler(warnings), countWarning);
}

TEST(TiffCutShort, IsNoPicture)
{
    const std::string whole = tiffOf(21, 19, {2, 3, 8, 5, 4, 0, -1, 0, false, false});
    for (std::size_t length = 0; length < whole.size() - 2; length += 3) {
        EXPECT_FALSE(decoded(whole.substr(0, length))) << length;
    }
}

}  // namespace
