#include "raylume/platform/Images.h"

#include <gtest/gtest.h>

#include "tests/platform/DecodedPictures.h"

namespace {

using namespace picture_files;

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
    {"grey_16_transparent", {0, 16, false, true}},
    {"colour_8", {2, 8, false, false}},
    {"colour_16", {2, 16, false, false}},
    {"colour_transparent", {2, 8, false, true}},
    {"colour_16_transparent", {2, 16, false, true}},
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
        // One colour is the transparent one in all of its channels.
        channel = kind.hasTransparency && kind.colourType == 2 ? 0 : channel;
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

TEST(PngOfManyTexts, IsRead)
{
    EXPECT_EQ(decoded(pngWithTexts(1000, 10, false)), (Image{1, 1, {grey(0x50)}}));
    EXPECT_EQ(decoded(pngWithTexts(200, 10, true)), (Image{1, 1, {grey(0x50)}}));
}

TEST(PngCutShort, IsNoPictureWhereverItEnds)
{
    const std::string whole = pngOf(scattered(9, 9));
    ASSERT_TRUE(decoded(whole));
    for (std::size_t length = 0; length < whole.size(); ++length) {
        ASSERT_FALSE(decoded(whole.substr(0, length))) << length;
    }
}

}  // namespace
