// What reading takes in memory, by the address space that a process grows by.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <functional>

#include "raylume/platform/Images.h"
#include "tests/platform/DecodedPictures.h"

#if defined(__SANITIZE_ADDRESS__)
#define UNDER_ADDRESS_SANITIZER 1
#else
#define UNDER_ADDRESS_SANITIZER 0
#endif

namespace {

using namespace picture_files;
using platform::ImageFile;
using platform::ImageSize;

constexpr std::size_t kMiB = std::size_t{1} << 20;

// In bytes; a field of this process's status that counts kilobytes.
std::size_t statusField(const char* format)
{
    std::FILE* const status = std::fopen("/proc/self/status", "r");
    char line[256];
    unsigned long kilobytes = 0;
    while (status && std::fgets(line, sizeof line, status) && std::sscanf(line, format, &kilobytes) != 1) {
    }
    if (status) {
        std::fclose(status);
    }
    return std::size_t{1024} * kilobytes;
}

// Ends the process, which a death test has made for this: a peak never comes down again.
void exitByGrowth(std::size_t most, const std::function<bool()>& run)
{
    const std::size_t before = statusField("VmSize: %lu");
    const bool isDone = run();
    const std::size_t peak = statusField("VmPeak: %lu");
    std::_Exit(before == 0 || !isDone ? 1 : peak - before > most ? 2 : 0);
}

bool isDecoded(const std::wstring& path, ImageSize wanted)
{
    const auto picture = ImageFile::open(path);
    std::vector<unsigned char> pixels(std::size_t{4} *
                                      static_cast<std::size_t>(wanted.width * wanted.height));
    return picture && picture->decode(wanted, false, pixels.data());
}

class PictureMemory : public testing::Test {
protected:
    void SetUp() override
    {
        if (UNDER_ADDRESS_SANITIZER) {
            GTEST_SKIP() << "the sanitizer reserves memory of its own";
        }
    }
    static std::wstring write(const std::string& bytes)
    {
        return platform::fromUtf8(folder().write("large", bytes));
    }
};

std::string blackBmp(int width, int height)
{
    BmpParts parts;
    parts.width = width;
    parts.height = height;
    parts.bits = 1;
    parts.palette = bmpPalette({{0, 0, 0, 255}, {255, 255, 255, 255}});
    parts.pixels.resize(static_cast<std::size_t>(width / 8) * static_cast<std::size_t>(height));
    return bmp(parts);
}

std::string greyJpeg(int width, int height)
{
    return jpeg(width, height, {1, false, true, false, 80},
                [](int column, int, int) { return 100u + (column & 31); });
}

struct LargeCase {
    const char* name;
    std::string (*make)(int width, int height);
    int width, height;
};

// Whole, each would take four times 64 MiB.
const LargeCase kLarge[] = {
    {"jpeg", greyJpeg, 8192, 4096},
    {"png", blackPng, 16384, 4096},
    {"bmp", blackBmp, 16384, 4096},
    {"tiff", blackTiff, 16384, 4096},
};

class LimitedPicture : public PictureMemory, public testing::WithParamInterface<LargeCase> {};

TEST_P(LimitedPicture, TakesLessThan64MiB)
{
    const LargeCase& row = GetParam();
    const std::wstring path = write(row.make(row.width, row.height));
    EXPECT_EXIT(exitByGrowth(64 * kMiB,
                             [&] {
                                 return isDecoded(path, {2048, 2048 * row.height / row.width});
                             }),
                testing::ExitedWithCode(0), "");
}

INSTANTIATE_TEST_SUITE_P(Rows, LimitedPicture, testing::ValuesIn(kLarge),
                         [](const auto& row) { return row.param.name; });

TEST_F(PictureMemory, DoesNotSwellWithTheTextsOfAPng)
{
    const std::wstring path = write(pngWithTexts(1, 64 * kMiB, true));
    EXPECT_EXIT(exitByGrowth(32 * kMiB,
                             [&] {
                                 return isDecoded(path, {1, 1});
                             }),
                testing::ExitedWithCode(0), "");
}

// A header that speaks of strips of 2 GiB: many samples to a pixel, so that the pixels alone are few.
TEST_F(PictureMemory, IsNotAskedForAStripThatIsTooLarge)
{
    std::string file =
        tiff(4, 4, {2, 128, 8, 5, 0, 0, -1, 0, false, false}, [](int, int, int) { return 0u; });
    for (const unsigned side : {256u, 257u, 278u}) {
        file = withTiffTag(file, side, 4096);
    }
    const std::wstring path = write(file);
    EXPECT_EXIT(exitByGrowth(512 * kMiB,
                             [&] {
                                 return ImageFile::open(path) && !isDecoded(path, {16, 16});
                             }),
                testing::ExitedWithCode(0), "");
}

}  // namespace
