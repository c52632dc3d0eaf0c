#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "raylume/platform/Images.h"
#include "tests/platform/FailingAllocations.h"
#include "tests/platform/PictureFiles.h"

namespace {

using namespace picture_files;
using failing_allocations::callWithFailure;
using platform::ImageFile;

std::wstring inMemory(const std::string& bytes)
{
    const int file = memfd_create("picture", MFD_CLOEXEC);
    EXPECT_EQ(write(file, bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
    return L"/proc/self/fd/" + std::to_wstring(file);
}

struct Case {
    const char* name;
    std::string bytes;
};

std::vector<Case> cases()
{
    const Image image = scattered(20, 20);
    const auto sample = [](int column, int row, int) { return static_cast<unsigned>(column * row) & 0xFF; };
    BmpParts parts;
    parts.width = parts.height = 20;
    parts.bits = 32;
    parts.pixels = bmpRows(20, 20, 32, false, [](int, int) { return 0x40302010u; });
    const std::string mask(80, '\0');
    return {
        {"bitmap", bmp(parts)},
        {"icon", icon({{20, 20, 32, iconBitmap(parts, mask)}})},
        {"png", pngOf(image)},
        {"interlaced_png", pngOf(image, true)},
        {"jpeg", jpeg(20, 20, {3, true, true, false, 90}, sample)},
        {"inks", jpeg(20, 20, {4, false, true, false, 90}, sample)},
        {"tiff", tiff(20, 20, {2, 3, 8, 5, 4, 0, -1, 0, false, false}, sample)},
        {"tiff_in_tiles", tiff(20, 20, {1, 1, 8, 1, 0, 16, -1, 0, false, false}, sample)},
        {"gif", gif({20, 20, 0, 0, 20, 20, true, false, 1, 1},
                    [](int column, int) { return static_cast<unsigned>(column); })},
    };
}

class PictureWithoutMemory : public testing::TestWithParam<Case> {};

// An allocation that fails comes out as such, or there is no picture; a picture that comes is whole.
TEST_P(PictureWithoutMemory, IsNoneOrWhole)
{
    constexpr std::size_t kBytes = 4 * 8 * 8;
    const std::wstring path = inMemory(GetParam().bytes);
    std::vector<unsigned char> wanted(kBytes);
    std::vector<unsigned char> pixels(kBytes);
    ASSERT_TRUE(ImageFile::open(path)->decode({8, 8}, true, wanted.data()));
    long successes = 0;
    for (bool failed = true; failed && successes < 1000; ++successes) {
        const auto outcome = callWithFailure(successes, [&] {
            const auto file = ImageFile::open(path);
            return !file || !file->decode({8, 8}, true, pixels.data()) || pixels == wanted;
        });
        ASSERT_FALSE(outcome.isWrong) << successes;
        failed = outcome.failed;
    }
    EXPECT_GT(successes, 5);
    EXPECT_LT(successes, 1000);
    EXPECT_EQ(pixels, wanted);
}

INSTANTIATE_TEST_SUITE_P(Rows, PictureWithoutMemory, testing::ValuesIn(cases()),
                         [](const auto& row) { return row.param.name; });

}  // namespace
