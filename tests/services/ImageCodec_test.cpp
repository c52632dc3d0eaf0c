#include "raylume/services/ImageCodec.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <climits>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <ostream>
#include <thread>

#include "raylume/services/TemporaryFiles.h"
#include "tests/platform/PictureFiles.h"
#include "tests/platform/ScopedEnvironment.h"
#include "tests/platform/TemporaryFolder.h"

namespace {

using namespace picture_files;
namespace fs = std::filesystem;

constexpr int kUntouched = -77;

struct Decoded {
    int result = 0;
    int width = kUntouched;
    int height = kUntouched;
    int stride = kUntouched;
    int fileWidth = kUntouched;
    int fileHeight = kUntouched;
    std::unique_ptr<unsigned char[]> pixels;

    Image image() const
    {
        return makeImage(width, height, [&](int column, int row) {
            const unsigned char* const pixel = pixels.get() + row * stride + 4 * column;
            return Pixel{pixel[0], pixel[1], pixel[2], pixel[3]};
        });
    }
};

Decoded decode(const std::wstring& path, int flag)
{
    Decoded decoded;
    unsigned char* pixels = nullptr;
    decoded.result = rlu_GetBitmapDataFromFile(path, decoded.width, decoded.height, decoded.stride, &pixels,
                                               flag, &decoded.fileWidth, &decoded.fileHeight);
    decoded.pixels.reset(pixels);
    return decoded;
}

// Of one bit a pixel, so that large ones are small.
std::string plainPicture(int width, int height)
{
    BmpParts parts;
    parts.width = width;
    parts.height = height;
    parts.bits = 1;
    parts.palette = bmpPalette({{10, 20, 30, 255}, {0, 0, 0, 255}});
    parts.pixels.resize((static_cast<std::size_t>(width) + 31) / 32 * 4 * static_cast<std::size_t>(height));
    return bmp(parts);
}

class ImageCodec : public testing::Test {
protected:
    std::wstring write(const std::string& bytes) const
    {
        return platform::fromUtf8(folder_.write("picture.anything", bytes));
    }

    TemporaryFolder folder_;
};

// ------------------------------------------------------------------------------------- sizes

struct SizeCase {
    const char* name;
    int fileWidth, fileHeight;
    int width, height;                // without the flag
    int roundedWidth, roundedHeight;  // with it
};

const SizeCase kSizes[] = {
    {"one_pixel", 1, 1, 1, 1, 1, 1},
    {"small_sides", 3, 5, 3, 5, 4, 4},
    {"small_sides_further_up", 6, 11, 6, 11, 8, 8},
    {"twelve", 12, 2, 12, 2, 16, 2},
    {"below_and_above_the_middle", 700, 300, 700, 300, 512, 256},
    {"just_below_the_middle", 1535, 767, 1535, 767, 1024, 512},
    {"the_middle", 1536, 768, 1536, 768, 2048, 1024},
    {"up_and_flat", 1600, 100, 1600, 100, 2048, 128},
    {"at_the_limit", 2048, 2048, 2048, 2048, 2048, 2048},
    {"wide", 4096, 1024, 2048, 512, 2048, 512},
    {"tall", 1024, 4096, 512, 2048, 512, 2048},
    {"both_beyond", 3000, 3000, 2048, 2048, 2048, 2048},
    {"both_beyond_wide", 2500, 2100, 2048, 1720, 2048, 2048},
    {"both_beyond_tall", 2100, 2500, 1720, 2048, 2048, 2048},
    {"lying", 2176, 1581, 2048, 1487, 2048, 1024},
    {"standing", 1581, 2176, 1488, 2048, 1024, 2048},
    {"just_beyond", 2049, 2048, 2048, 2047, 2048, 2048},
    {"limited_before_it_is_rounded", 4096, 770, 2048, 385, 2048, 512},
};

class ImageSizes : public testing::TestWithParam<SizeCase> {
protected:
    TemporaryFolder folder_;
};

TEST_P(ImageSizes, AreLimitedAndRounded)
{
    const SizeCase& row = GetParam();
    const std::wstring path =
        platform::fromUtf8(folder_.write("a.bmp", plainPicture(row.fileWidth, row.fileHeight)));
    for (const bool isRounded : {false, true}) {
        const Decoded decoded = decode(path, isRounded ? 1 : 0);
        ASSERT_EQ(decoded.result, 1);
        EXPECT_EQ(decoded.width, isRounded ? row.roundedWidth : row.width);
        EXPECT_EQ(decoded.height, isRounded ? row.roundedHeight : row.height);
        EXPECT_EQ(decoded.stride, 4 * decoded.width);
        EXPECT_EQ(decoded.fileWidth, row.fileWidth);
        EXPECT_EQ(decoded.fileHeight, row.fileHeight);
        const auto* const last = decoded.pixels.get() + 4 * (decoded.width * decoded.height - 1);
        EXPECT_THAT(std::vector<int>(last, last + 4), testing::ElementsAre(10, 20, 30, 255));
    }
}

INSTANTIATE_TEST_SUITE_P(Rows, ImageSizes, testing::ValuesIn(kSizes),
                         [](const auto& row) { return row.param.name; });

TEST_F(ImageCodec, CountsASideThatVanishesAsAFailureThatTellsTheFileSize)
{
    for (const auto& [width, height] : {std::pair{4097, 1}, std::pair{1, 4097}}) {
        for (const int flag : {0, 1}) {
            const Decoded decoded = decode(write(plainPicture(width, height)), flag);
            EXPECT_EQ(decoded.result, 0);
            EXPECT_EQ(decoded.width, kUntouched);
            EXPECT_EQ(decoded.stride, kUntouched);
            EXPECT_EQ(decoded.pixels, nullptr);
            EXPECT_EQ(decoded.fileWidth, width);
            EXPECT_EQ(decoded.fileHeight, height);
        }
    }
}

// ------------------------------------------------------------------------------------- flag and outputs

TEST_F(ImageCodec, TurnsRowsOverWithTheFlagOnly)
{
    const Image image = scattered(8, 16);
    const std::wstring path = write(pngOf(image));
    EXPECT_EQ(decode(path, 0).image(), image);
    EXPECT_EQ(decode(path, 1).image(), turnedOver(image));
    EXPECT_EQ(decode(path, -5).image(), turnedOver(image));
}

TEST_F(ImageCodec, TurnsOverWhatItScales)
{
    const Image halves = makeImage(8, 20, [](int, int row) {
        return row < 10 ? Pixel{1, 2, 3, 255} : Pixel{200, 100, 50, 255};
    });
    const Image image = decode(write(pngOf(halves)), 1).image();
    ASSERT_EQ(image.height, 16);
    EXPECT_EQ(image.at(0, 0), (Pixel{200, 100, 50, 255}));
    EXPECT_EQ(image.at(7, 15), (Pixel{1, 2, 3, 255}));
}

TEST_F(ImageCodec, StoresFileSizesOnlyWhenBothAreWanted)
{
    const std::wstring path = write(pngOf(scattered(5, 6)));
    int width, height, stride, size = kUntouched;
    unsigned char* pixels = nullptr;
    EXPECT_EQ(rlu_GetBitmapDataFromFile(path, width, height, stride, &pixels, 0, &size, nullptr), 1);
    delete[] std::exchange(pixels, nullptr);
    EXPECT_EQ(rlu_GetBitmapDataFromFile(path, width, height, stride, &pixels, 0, nullptr, &size), 1);
    delete[] std::exchange(pixels, nullptr);
    EXPECT_EQ(size, kUntouched);
    EXPECT_EQ(rlu_GetPictureFileData(path, width, height, stride, &pixels, 0, 17, 18), 1);
    EXPECT_EQ(width, 5);
    EXPECT_EQ(height, 6);
    EXPECT_EQ(stride, 20);
    delete[] pixels;
}

TEST_F(ImageCodec, PassesTheFlagOn)
{
    const Image image = scattered(8, 16);
    Decoded decoded;
    unsigned char* pixels = nullptr;
    decoded.result = rlu_GetPictureFileData(write(pngOf(image)), decoded.width, decoded.height,
                                            decoded.stride, &pixels, 1, 0, 0);
    decoded.pixels.reset(pixels);
    ASSERT_EQ(decoded.result, 1);
    EXPECT_EQ(decoded.image(), turnedOver(image));
}

TEST_F(ImageCodec, LeavesEverythingAloneWhenThereIsNoPicture)
{
    const std::string good = pngOf(scattered(9, 9));
    for (const std::wstring& path :
         {std::wstring(L""), folder_.wide(), folder_.wide() + L"\\missing.png", write("no picture")}) {
        const Decoded decoded = decode(path, 1);
        EXPECT_EQ(decoded.result, 0);
        EXPECT_EQ(decoded.width, kUntouched);
        EXPECT_EQ(decoded.height, kUntouched);
        EXPECT_EQ(decoded.stride, kUntouched);
        EXPECT_EQ(decoded.pixels, nullptr);
        EXPECT_EQ(decoded.fileWidth, kUntouched);
        EXPECT_EQ(decoded.fileHeight, kUntouched);
    }
    const auto noSample = [](int, int, int) { return 0u; };
    const Decoded unread =
        decode(write(tiff(9, 9, {1, 1, 32, 1, 0, 0, -1, 0, false, false, 3}, noSample)), 0);
    EXPECT_EQ(unread.result, 0);
    EXPECT_EQ(unread.fileWidth, kUntouched);
    const Decoded broken = decode(write(good.substr(0, good.size() / 2)), 0);
    EXPECT_EQ(broken.result, 0);
    EXPECT_EQ(broken.width, kUntouched);
    EXPECT_EQ(broken.pixels, nullptr);
    EXPECT_EQ(broken.fileWidth, 9);
}

TEST_F(ImageCodec, GivesNoPictureWithoutAPlaceForIt)
{
    int width = kUntouched, height, stride;
    EXPECT_EQ(rlu_GetBitmapDataFromFile(write(pngOf(scattered(2, 2))), width, height, stride, nullptr, 0,
                                        nullptr, nullptr),
              0);
    EXPECT_EQ(width, kUntouched);
}

TEST_F(ImageCodec, FindsFilesByTheTextsOfDocuments)
{
    folder_.makeFolder("Maps");
    folder_.write("Maps/Oak.PNG", pngOf(scattered(2, 2)));
    EXPECT_EQ(decode(folder_.wide() + L"\\maps\\oak.png", 0).result, 1);
}

// ------------------------------------------------------------------------------------- saving

class SavedBitmaps : public ImageCodec {
protected:
    std::string process() const { return "temp/rlx" + std::to_string(getpid()); }
    std::string native(const std::string& name) const { return folder_ / (process() + "/" + name); }
    std::wstring text(const std::wstring& name) const
    {
        return folder_.wide() + L"/temp\\rlx" + std::to_wstring(getpid()) + L"\\" + name;
    }
    std::wstring save(const Image& image) const
    {
        return rlu_SaveAsBitmap(image.width, image.height, 4 * image.width, image.pixels.data()->data());
    }
    std::string addEntry(const std::string& name) const
    {
        folder_.makeFolder(process());
        return folder_.write(process() + "/" + name, "x");
    }

    const std::string temp_ = folder_.makeFolder("temp");
    const ScopedVariable variable_{"temp", temp_};
    const Image image_ = scattered(6, 4);
};

TEST_F(SavedBitmaps, AreNumberedFromOne)
{
    EXPECT_EQ(save(image_), text(L"1.bmp"));
    EXPECT_EQ(save(image_), text(L"2.bmp"));
    EXPECT_TRUE(fs::is_regular_file(native("2.bmp")));
    EXPECT_EQ(std::distance(fs::directory_iterator(folder_ / process()), {}), 2);
}

TEST_F(SavedBitmaps, HaveTheFirstRowAtTheBottom)
{
    const Decoded decoded = decode(save(image_), 0);
    ASSERT_EQ(decoded.result, 1);
    EXPECT_EQ(decoded.image(), turnedOver(image_));
}

TEST_F(SavedBitmaps, StandUprightAfterBeingDecodedWithTheFlag)
{
    const Image image = scattered(8, 16);
    const Decoded turned = decode(write(pngOf(image)), 1);
    EXPECT_EQ(decode(rlu_SaveAsBitmap(turned.width, turned.height, turned.stride, turned.pixels.get()), 0)
                  .image(),
              image);
}

TEST_F(SavedBitmaps, KeepAPictureThatIsCutOutAltogether)
{
    const Image image = makeImage(3, 3, [](int, int) { return Pixel{9, 8, 7, 0}; });
    EXPECT_EQ(decode(save(image), 0).image(), image);
}

TEST_F(SavedBitmaps, AreTheBytesOfTheBufferBehindTheirHeader)
{
    save(image_);
    const std::string file = readFile(native("1.bmp"));
    const std::string bytes(reinterpret_cast<const char*>(image_.pixels.data()), 4 * image_.pixels.size());
    ASSERT_EQ(file.size(), 122 + bytes.size());
    EXPECT_EQ(file.substr(122), bytes);
    EXPECT_EQ(file.substr(0, 18), "BM" + bytes32(122 + 96) + bytes32(0) + bytes32(122) + bytes32(108));
    EXPECT_EQ(file.substr(18, 16), bytes32(6) + bytes32(4) + bytes16(1) + bytes16(32) + bytes32(3));
    EXPECT_EQ(file.substr(54, 16),
              bytes32(0xFF0000) + bytes32(0xFF00) + bytes32(0xFF) + bytes32(0xFF000000));
}

// What a program prints, with its newline.
std::string outputOf(const std::string& command)
{
    std::string output;
    std::FILE* const pipe = popen(command.c_str(), "r");
    for (int byte; pipe && (byte = std::fgetc(pipe)) != EOF;) {
        output += static_cast<char>(byte);
    }
    return pipe && pclose(pipe) == 0 ? output : "";
}

TEST_F(SavedBitmaps, AreReadByAnotherProgramWithTheirAlpha)
{
    save(image_);
    const std::string program =
        "import sys; from PIL import Image; image = Image.open(sys.argv[1]); "
        "print(image.mode, *image.size, *image.tobytes())";
    std::string wanted = "RGBA 6 4";
    for (const Pixel& pixel : turnedOver(image_).pixels) {
        for (const int channel : {2, 1, 0, 3}) {
            wanted += " " + std::to_string(pixel[static_cast<std::size_t>(channel)]);
        }
    }
    EXPECT_EQ(outputOf(RAYLUME_PYTHON " -c \"" + program + "\" '" + native("1.bmp") + "'"), wanted + "\n");
}

TEST_F(SavedBitmaps, LeaveGapsBehindRowsOut)
{
    std::vector<unsigned char> buffer(2 * 32, 0xEE);
    for (std::size_t place = 0; place < 2 * 6; ++place) {
        std::copy_n(image_.pixels[place].data(), 4, &buffer[place / 6 * 32 + place % 6 * 4]);
    }
    const Image image = decode(rlu_SaveAsBitmap(6, 2, 32, buffer.data()), 0).image();
    EXPECT_EQ(turnedOver(image),
              makeImage(6, 2, [&](int column, int row) { return image_.at(column, row); }));
}

TEST_F(SavedBitmaps, WithoutSenseAreOnlyNamed)
{
    const unsigned char* const pixels = image_.pixels.data()->data();
    const std::wstring path = text(L"1.bmp");
    EXPECT_EQ(rlu_SaveAsBitmap(0, 4, 24, pixels), path);
    EXPECT_EQ(rlu_SaveAsBitmap(6, 0, 24, pixels), path);
    EXPECT_EQ(rlu_SaveAsBitmap(-6, 4, 24, pixels), path);
    EXPECT_EQ(rlu_SaveAsBitmap(6, -4, 24, pixels), path);
    EXPECT_EQ(rlu_SaveAsBitmap(6, 4, 20, pixels), path);
    EXPECT_EQ(rlu_SaveAsBitmap(6, 4, 0, pixels), path);
    EXPECT_EQ(rlu_SaveAsBitmap(6, 4, -24, pixels), path);
    EXPECT_EQ(rlu_SaveAsBitmap(6, 4, 25, pixels), path);
    EXPECT_EQ(rlu_SaveAsBitmap(6, 4, 24, nullptr), path);
    EXPECT_EQ(rlu_SaveAsBitmap(INT_MAX, INT_MAX, INT_MAX, pixels), path);
    EXPECT_EQ(rlu_SaveAsBitmap(INT_MAX / 4, INT_MAX, INT_MAX - 3, pixels), path);
    EXPECT_TRUE(fs::is_empty(folder_ / process()));
}

TEST_F(SavedBitmaps, AreNamedThoughTheirFolderCannotBeMade)
{
    const ScopedVariable gone("temp", folder_ / "no/such");
    EXPECT_EQ(save(image_), folder_.wide() + L"/no/such\\rlx" + std::to_wstring(getpid()) + L"\\1.bmp");
    EXPECT_FALSE(fs::exists(folder_ / "no"));
}

// Past the limit the system would end the process instead of failing the call.
TEST_F(SavedBitmaps, AreNamedThoughTheyCannotBeWritten)
{
    const auto saveUnderLimit = [&] {
        const rlimit limit{100, 100};
        const bool isLimited = setrlimit(RLIMIT_FSIZE, &limit) == 0;
        const bool isNamed = save(image_) == text(L"1.bmp") && save(image_) == text(L"1.bmp");
        std::_Exit(isLimited && isNamed && fs::is_empty(folder_ / process()) ? 0 : 1);
    };
    EXPECT_EXIT(saveUnderLimit(), testing::ExitedWithCode(0), "");
}

TEST_F(SavedBitmaps, AreNumberedWhateverTheVariableEndsIn)
{
    addEntry("7.bmp");
    for (const char* const ending : {"/", "\\", "\\\\"}) {
        const ScopedVariable temp("temp", temp_ + ending);
        std::wstring path;
        nextTempBitmapPath(path);
        EXPECT_TRUE(path.ends_with(L"\\8.bmp")) << ending;
    }
    const ScopedVariable temp("temp", temp_ + "\\");
    rlu_ClearTempBMPFiles();
    EXPECT_FALSE(fs::exists(folder_ / process()));
}

TEST_F(SavedBitmaps, AreNowhereWithoutATemporaryFolder)
{
    const ScopedVariable none("temp", std::nullopt), none2("TEMP", std::nullopt),
        none3("tmp", std::nullopt), none4("TMP", std::nullopt);
    EXPECT_EQ(save(image_), L"");
    EXPECT_EQ(rlu_SaveAsBitmap(0, 0, 0, nullptr), L"");
    rlu_ClearTempBMPFiles();
    std::wstring path = L"old";
    nextTempBitmapPath(path);
    EXPECT_EQ(path, L"");
}

TEST_F(SavedBitmaps, ThatFailUseNoNumber)
{
    EXPECT_EQ(rlu_SaveAsBitmap(0, 0, 0, nullptr), text(L"1.bmp"));
    EXPECT_EQ(save(image_), text(L"1.bmp"));
    EXPECT_EQ(rlu_SaveAsBitmap(0, 0, 0, nullptr), text(L"2.bmp"));
    EXPECT_EQ(save(image_), text(L"2.bmp"));
}

TEST_F(SavedBitmaps, SeeAnEntryThatCameRightAfterASave)
{
    save(image_);
    addEntry("9.bmp");
    EXPECT_EQ(save(image_), text(L"10.bmp"));
    addEntry("11.bmp");
    EXPECT_EQ(save(image_), text(L"12.bmp"));
    for (const char* const name : {"12.bmp", "11.bmp", "10.bmp", "9.bmp"}) {
        fs::remove(native(name));
    }
    EXPECT_EQ(save(image_), text(L"2.bmp"));
}

TEST_F(SavedBitmaps, LieInAFolderForTheirOwnerAlone)
{
    save(image_);
    struct stat status;
    ASSERT_EQ(stat((folder_ / process()).c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0700u);
}

TEST_F(SavedBitmaps, DoNotGoThroughALinkInPlaceOfTheirFolder)
{
    const std::string elsewhere = folder_.makeFolder("elsewhere");
    folder_.write("elsewhere/5.bmp", "precious");
    fs::create_symlink(elsewhere, folder_ / process());
    EXPECT_EQ(save(image_), text(L"6.bmp"));
    EXPECT_EQ(std::distance(fs::directory_iterator(elsewhere), {}), 1);
    rlu_ClearTempBMPFiles();
    EXPECT_EQ(readFile(elsewhere + "/5.bmp"), "precious");
}

TEST_F(SavedBitmaps, DoNotGoIntoAFolderOfSomebodyElse)
{
    if (geteuid() != 0) {
        GTEST_SKIP() << "giving a folder away takes the rights of root";
    }
    const std::string own = folder_.makeFolder(process());
    ASSERT_EQ(chown(own.c_str(), 65534, 65534), 0);
    EXPECT_EQ(save(image_), text(L"1.bmp"));
    EXPECT_TRUE(fs::is_empty(own));
    folder_.write(process() + "/1.bmp", "theirs");
    rlu_ClearTempBMPFiles();
    EXPECT_EQ(readFile(native("1.bmp")), "theirs");
}

TEST_F(SavedBitmaps, AreNeverWrittenThroughALinkOfTheirName)
{
    // It leads nowhere, so that a plain creation would go through it.
    folder_.makeFolder(process());
    fs::create_symlink(folder_ / "target", native("1.bmp"));
    EXPECT_EQ(save(image_), text(L"2.bmp"));
    EXPECT_FALSE(fs::exists(folder_ / "target"));
}

TEST_F(SavedBitmaps, OfSeveralThreadsAllGetNamesOfTheirOwn)
{
    std::vector<std::thread> threads;
    for (int index = 0; index < 4; ++index) {
        threads.emplace_back([&] {
            for (int count = 0; count < 20; ++count) {
                save(image_);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(std::distance(fs::directory_iterator(folder_ / process()), {}), 80);
    EXPECT_EQ(save(image_), text(L"81.bmp"));
}

// ------------------------------------------------------------------------------------- numbering

struct NumberCase {
    const char* name;
    std::vector<std::string> entries;
    std::wstring next;
};

const NumberCase kNumbers[] = {
    {"nothing_there", {}, L"1.bmp"},
    {"gaps_are_not_filled", {"7.bmp", "9.bmp"}, L"10.bmp"},
    {"numbers_and_not_texts_are_compared", {"10.bmp", "9.bmp"}, L"11.bmp"},
    {"no_number_is_0", {"abc.bmp"}, L"1.bmp"},
    {"digits_in_front_count", {"7a.bmp", "x9.bmp"}, L"8.bmp"},
    {"capitals_count", {"4.BMP"}, L"5.bmp"},
    {"other_endings_do_not", {"12.png", "13.bmp.txt", "14bmp"}, L"1.bmp"},
    {"cut_at_the_first_ending", {"3.bmp5.bmp"}, L"4.bmp"},
    {"an_ending_alone_is_0", {".bmp"}, L"1.bmp"},
    {"signs_and_blanks", {"+6.bmp", "-9.bmp", " 5.bmp"}, L"7.bmp"},
    {"zeros_in_front", {"0012.bmp"}, L"13.bmp"},
    {"overflow_saturates", {"99999999999999999999.bmp"}, L"2147483647.bmp"},
    {"the_highest_stays", {"2147483647.bmp"}, L"2147483647.bmp"},
    {"the_one_below_the_highest", {"2147483645.bmp"}, L"2147483646.bmp"},
    {"fifty_bytes_count", {std::string(49, '0') + "7.bmp"}, L"8.bmp"},
    {"no_more_than_fifty_do", {std::string(50, '0') + "7.bmp"}, L"1.bmp"},
};

class Numbering : public SavedBitmaps, public testing::WithParamInterface<NumberCase> {};

TEST_P(Numbering, GoesOnBehindTheHighest)
{
    for (const std::string& entry : GetParam().entries) {
        addEntry(entry);
    }
    std::wstring path;
    nextTempBitmapPath(path);
    EXPECT_EQ(path, text(GetParam().next));
    EXPECT_EQ(save(image_), text(GetParam().next));
    EXPECT_EQ(decode(path, 0).image(), turnedOver(image_));
}

INSTANTIATE_TEST_SUITE_P(Rows, Numbering, testing::ValuesIn(kNumbers),
                         [](const auto& row) { return row.param.name; });

TEST_F(SavedBitmaps, CountFoldersAndLinksOfTheirNamesToo)
{
    folder_.makeFolder(process() + "/20.bmp");
    EXPECT_EQ(save(image_), text(L"21.bmp"));
    fs::create_symlink("nowhere", native("30.bmp"));
    EXPECT_EQ(save(image_), text(L"31.bmp"));
}

// ------------------------------------------------------------------------------------- clearing

TEST_F(SavedBitmaps, GoWithTheirFolder)
{
    save(image_);
    save(image_);
    addEntry("notes.txt");
    fs::create_symlink("nowhere", native("link"));
    rlu_ClearTempBMPFiles();
    EXPECT_FALSE(fs::exists(folder_ / process()));
    EXPECT_TRUE(fs::exists(temp_));
    EXPECT_EQ(save(image_), text(L"1.bmp"));
}

TEST_F(SavedBitmaps, GoButForFoldersWhichKeepTheirs)
{
    save(image_);
    folder_.makeFolder(process() + "/sub");
    folder_.write(process() + "/sub/kept.bmp", "x");
    folder_.write("outside.bmp", "x");
    fs::create_symlink(folder_.path(), native("link"));
    rlu_ClearTempBMPFiles();
    EXPECT_FALSE(fs::exists(native("1.bmp")));
    EXPECT_FALSE(fs::exists(fs::symlink_status(native("link"))));
    EXPECT_TRUE(fs::exists(native("sub/kept.bmp")));
    EXPECT_TRUE(fs::exists(folder_ / "outside.bmp"));
}

TEST_F(SavedBitmaps, AreClearedWhateverTheirNamesAreMadeOf)
{
    addEntry("back\\slash");
    addEntry("no\xFFtext");
    rlu_ClearTempBMPFiles();
    EXPECT_FALSE(fs::exists(folder_ / process()));
}

TEST_F(SavedBitmaps, NeedNoFolderToBeCleared)
{
    rlu_ClearTempBMPFiles();
    EXPECT_TRUE(fs::is_empty(temp_));
}

// ------------------------------------------------------------------------------------- probeFolder

// The current folder is the process's, and comes back.
class InFolder {
public:
    explicit InFolder(const std::string& path) : before_(fs::current_path()) { fs::current_path(path); }
    InFolder(const InFolder&) = delete;
    InFolder& operator=(const InFolder&) = delete;
    ~InFolder() { fs::current_path(before_); }

private:
    fs::path before_;
};

class ProbeFolder : public testing::Test {
protected:
    ProbeFolder()
    {
        folder_.makeFolder("there/real");
        folder_.makeFolder("there/empty");
        folder_.write("there/plain", "x");
        folder_.makeFolder("current");
    }
    bool probe(const std::wstring& name) const { return probeFolder(folder_.wide() + L"\\there\\" + name); }

    TemporaryFolder folder_;
    const InFolder current_{(folder_.makeFolder("current"))};
};

TEST_F(ProbeFolder, FindsWebAddresses)
{
    EXPECT_TRUE(probeFolder(L"http://nowhere/"));
    EXPECT_TRUE(probeFolder(L"HTTPS://nowhere"));
    EXPECT_TRUE(probeFolder(L"hTtp"));
    EXPECT_FALSE(probeFolder(L"htt"));
    EXPECT_FALSE(probeFolder(L"ftp://nowhere"));
}

TEST_F(ProbeFolder, FindsFoldersAndPlainFiles)
{
    EXPECT_TRUE(probe(L"real"));
    EXPECT_TRUE(probe(L"real\\"));
    EXPECT_TRUE(probe(L"plain"));
    EXPECT_TRUE(probe(L"plain\\"));
    EXPECT_TRUE(probe(L"REAL"));
    EXPECT_FALSE(probe(L"missing"));
    // No name is left to look for, whatever stands there.
    EXPECT_FALSE(probe(L"real\\\\"));
    EXPECT_FALSE(probe(L"plain\\\\"));
    EXPECT_FALSE(probeFolder(L""));
    EXPECT_FALSE(probeFolder(L"\\"));
    EXPECT_FALSE(probeFolder(L"/"));
}

TEST_F(ProbeFolder, AsksTheCurrentFolderAboutTheBareName)
{
    folder_.write("current/real", "x");
    folder_.write("current/plain", "x");
    EXPECT_FALSE(probe(L"real"));
    EXPECT_FALSE(probe(L"plain"));
    fs::remove(folder_ / "current/plain");
    folder_.makeFolder("current/plain");
    EXPECT_TRUE(probe(L"plain"));
}

TEST_F(ProbeFolder, TakesWildcardsInTheLastName)
{
    EXPECT_TRUE(probe(L"re*"));
    EXPECT_TRUE(probe(L"PL?IN"));
    EXPECT_TRUE(probe(L"empty\\*"));
    EXPECT_TRUE(probe(L"empty\\*.*"));
    EXPECT_FALSE(probe(L"empty\\*.bmp"));
    EXPECT_FALSE(probe(L"x*"));
    EXPECT_FALSE(probe(L"missing\\*"));
    folder_.write("current/plain", "x");
    EXPECT_FALSE(probe(L"pla*"));
    folder_.makeFolder("there/plastic");
    EXPECT_TRUE(probe(L"pla*"));
}

TEST_F(ProbeFolder, DecidesWhetherBitmapsAreCounted)
{
    const ScopedVariable temp("temp", folder_ / "there");
    const std::string name = "rlx" + std::to_string(getpid());
    folder_.makeFolder("there/" + name);
    folder_.write("there/" + name + "/7.bmp", "x");
    std::wstring path;
    nextTempBitmapPath(path);
    EXPECT_TRUE(path.ends_with(L"\\8.bmp"));
    folder_.write("current/" + name, "x");
    nextTempBitmapPath(path);
    EXPECT_TRUE(path.ends_with(L"\\1.bmp"));
    rlu_ClearTempBMPFiles();
    EXPECT_TRUE(fs::exists(folder_ / ("there/" + name + "/7.bmp")));
}

}  // namespace
