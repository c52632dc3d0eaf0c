#include "raylume/platform/Images.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>

#include "tests/platform/DecodedPictures.h"

namespace {

using namespace picture_files;
using platform::ImageSize;

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

TEST(Jpeg, OfArithmeticCodingIsRead)
{
    const auto image = decoded(jpeg(40, 30, {1, false, true, false, 100, true}, ramp));
    ASSERT_TRUE(image);
    EXPECT_LE(
        largestDifference(
            *image, makeImage(40, 30, [](int column, int row) { return grey(ramp(column, row, 0)); })),
        2);
}

TEST(Jpeg, IsReducedByTheCodecWhereThatIsAllThatIsWanted)
{
    const std::string file = jpeg(4096, 1024, {1, false, true, false, 90}, [](int column, int row, int) {
        return static_cast<unsigned>(column / 3 * 31 + row / 2 * 57) & 0xFF;
    });
    for (const unsigned part : {2u, 4u, 8u}) {
        const Image wanted = jpegReduced(file, part);
        const ImageSize size{wanted.width, wanted.height};
        EXPECT_TRUE(decodedTo(file, size) == wanted) << part;
        EXPECT_TRUE(decodedTo(file, size, true) == turnedOver(wanted)) << part;
    }
}

struct StripesCase {
    const char* name;
    bool areColumns;
    ImageSize wanted;
};

// Of 5000 x 40 a quarter would be 1250 x 10.
const StripesCase kStripes[] = {
    {"both_sides_decide", true, {2048, 16}},
    {"the_width_alone_decides", true, {2048, 8}},
    {"the_height_alone_decides", false, {1200, 16}},
};

class StripedJpeg : public testing::TestWithParam<StripesCase> {};

// Stripes of two pixels stay stripes at a half, and are one grey at a quarter.
TEST_P(StripedJpeg, IsNeverReducedBelowWhatIsWanted)
{
    const std::string file = jpeg(5000, 40, {1, false, true, false, 100}, [](int column, int row, int) {
        return (GetParam().areColumns ? column : row) / 2 % 2 * 255u;
    });
    const auto image = decodedTo(file, GetParam().wanted);
    ASSERT_TRUE(image);
    int lowest = 255, highest = 0;
    for (const Pixel& pixel : image->pixels) {
        lowest = std::min<int>(lowest, pixel[0]);
        highest = std::max<int>(highest, pixel[0]);
    }
    EXPECT_LT(lowest, 60);
    EXPECT_GT(highest, 195);
}

INSTANTIATE_TEST_SUITE_P(Rows, StripedJpeg, testing::ValuesIn(kStripes),
                         [](const auto& row) { return row.param.name; });

}  // namespace
