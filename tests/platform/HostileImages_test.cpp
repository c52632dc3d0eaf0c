#include "raylume/platform/Images.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tests/platform/DecodedPictures.h"

namespace {

using namespace picture_files;
using namespace std::string_literals;
using platform::ImageFile;
using platform::ImageSize;

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
        bmp(runs(4, 2, 8, "\x03\x05\x01\x06\x00\x00\x00\x04\x01\x02\x03\x04\x00\x00\x00\x01"s)),
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

}  // namespace
