#include "raylume/platform/Images.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "tests/platform/DecodedPictures.h"

namespace {

using namespace picture_files;
using platform::ImageSize;

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

}  // namespace
