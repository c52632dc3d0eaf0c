#include "raylume/platform/Images.h"

#include <gtest/gtest.h>

#include "tests/platform/DecodedPictures.h"

namespace {

using namespace picture_files;
using platform::ImageSize;

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

}  // namespace
