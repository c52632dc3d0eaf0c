// Masks from files to files: found, decoded, baked and saved for real.
#include <gmock/gmock.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <list>
#include <optional>
#include <string>
#include <vector>

#include "raylume/appearance/DecalTranslation.h"
#include "raylume/appearance/MaskImages.h"
#include "raylume/load/ReaderInterface.h"
#include "raylume/platform/Files.h"
#include "raylume/platform/Paths.h"
#include "raylume/platform/Text.h"
#include "raylume/scene/dlDecal.h"
#include "raylume/services/ImageCodec.h"
#include "raylume/services/Locations.h"
#include "tests/appearance/Drawing.h"
#include "tests/appearance/PartBuilder.h"
#include "tests/platform/ScopedEnvironment.h"
#include "tests/platform/TemporaryFolder.h"

namespace {

using testing::ElementsAre;

constexpr std::uint32_t kRed = 0x0000FF;
constexpr std::uint32_t kGreen = 0x00FF00;
constexpr std::uint32_t kBlue = 0xFF0000;
constexpr std::uint32_t kWhite = 0xFFFFFF;

std::uint32_t grey(std::uint32_t level)
{
    return level << 16 | level << 8 | level;
}

std::int32_t numberAt(const std::string& bytes, std::size_t offset)
{
    std::int32_t value = 0;
    if (offset + 4 <= bytes.size())
        std::memcpy(&value, bytes.data() + offset, 4);
    return value;
}

// What was written, taken from the file's own bytes: 32 bits a pixel, the bottom row first. Alpha on top.
Drawing written(const std::wstring& path)
{
    const std::string bytes = readFile(platform::nativePath(path));
    Drawing drawing{numberAt(bytes, 18), numberAt(bytes, 22), {}};
    const auto start = static_cast<std::size_t>(numberAt(bytes, 10));
    for (int y = drawing.height - 1; y >= 0; --y) {
        for (int x = 0; x < drawing.width; ++x) {
            const auto pixel = static_cast<std::uint32_t>(
                numberAt(bytes, start + 4 * static_cast<std::size_t>(y * drawing.width + x)));
            drawing.colours.push_back((pixel & 0xFF00FF00) | (pixel >> 16 & 0xFF) | (pixel & 0xFF) << 16);
        }
    }
    return drawing;
}

bool exists(const std::wstring& path)
{
    return platform::pathKind(path) != platform::PathKind::kNothing;
}

const Drawing kFour{2, 2, {kRed, kGreen, kBlue, kWhite}};

class MaskFiles : public testing::Test {
protected:
    MaskFiles() : temp_("temp", folder.makeFolder("temp")) {}
    ~MaskFiles() override { rlu_ClearTempBMPFiles(); }

    std::wstring write(const std::string& name, const Drawing& drawing)
    {
        return platform::fromUtf8(folder.write(name, bitmapOf(drawing)));
    }

    std::wstring cutOut(const std::wstring& file, const std::list<std::uint32_t>& colours)
    {
        dlDecal decal;
        decal.texture.filename = file;
        decal.colorMask = colours;
        decal.generateNewImageUsingMaskColors(folder.wide() + L"\\");
        return decal.texture.filename;
    }

    std::wstring masked(const std::wstring& file, const std::wstring& mask, bool invert)
    {
        dlDecal decal;
        decal.texture.filename = file;
        decal.generateNewImageUsingMaskFile(folder.wide() + L"\\", mask, invert);
        return decal.texture.filename;
    }

    TemporaryFolder folder;

private:
    ScopedVariable temp_;
};

TEST_F(MaskFiles, of_colours_stand_upright)
{
    const Drawing result = written(cutOut(write("image.bmp", kFour), {kRed, kWhite}));
    EXPECT_EQ(result.width, 2);
    EXPECT_THAT(result.colours, ElementsAre(kRed, 0xFF000000 | kGreen, 0xFF000000 | kBlue, kWhite));
}

TEST_F(MaskFiles, of_an_image_stand_upright)
{
    const std::wstring mask = write("mask.bmp", {2, 2, {grey(10), grey(20), grey(30), grey(40)}});
    const Drawing result = written(masked(write("image.bmp", kFour), mask, false));
    EXPECT_THAT(result.colours,
                ElementsAre(10u << 24 | kRed, 20u << 24 | kGreen, 30u << 24 | kBlue, 40u << 24 | kWhite));
}

TEST_F(MaskFiles, of_a_larger_image_are_scaled_and_inverted)
{
    Drawing mask{4, 4, {}};
    for (std::uint32_t place = 0; place < 16; ++place)
        mask.colours.push_back(grey(place));
    const Drawing result = written(masked(write("image.bmp", kFour), write("mask.bmp", mask), true));
    // Rows are counted from the bottom while the pixels are turned over.
    EXPECT_THAT(result.colours, ElementsAre(251u << 24 | kRed, 249u << 24 | kGreen, 243u << 24 | kBlue,
                                            241u << 24 | kWhite));
}

// Colours are compared after the sides have been rounded.
TEST_F(MaskFiles, have_sides_of_powers_of_two)
{
    const Drawing plain{100, 100, std::vector<std::uint32_t>(10000, kRed)};
    const Drawing result = written(cutOut(write("image.bmp", plain), {kRed}));
    EXPECT_EQ(result.width, 128);
    EXPECT_EQ(result.height, 128);
    EXPECT_EQ(std::count(result.colours.begin(), result.colours.end(), kRed), 128 * 128);
}

TEST_F(MaskFiles, are_numbered_and_used_again)
{
    const std::wstring image = write("image.bmp", kFour);
    const std::wstring first = cutOut(image, {kRed});
    EXPECT_EQ(first.substr(first.size() - 6), L"\\1.bmp");
    const std::wstring second = cutOut(image, {kGreen});
    EXPECT_EQ(second.substr(second.size() - 6), L"\\2.bmp");
    EXPECT_EQ(cutOut(image, {kRed}), first);
    EXPECT_EQ(cutOut(folder.wide() + L"/IMAGE.bmp", {kRed}), first);
}

TEST_F(MaskFiles, of_an_image_that_is_missing_have_a_path_that_the_next_one_takes)
{
    const std::wstring nothing = cutOut(folder.wide() + L"\\missing.bmp", {kRed});
    EXPECT_FALSE(exists(nothing));
    EXPECT_EQ(cutOut(write("image.bmp", kFour), {kRed}), nothing);
    EXPECT_TRUE(exists(nothing));
    EXPECT_EQ(cutOut(folder.wide() + L"\\missing.bmp", {kRed}), nothing);
}

TEST_F(MaskFiles, of_an_image_that_is_none_have_a_path_too)
{
    const std::wstring image = platform::fromUtf8(folder.write("image.bmp", "no picture"));
    const std::wstring result = masked(image, write("mask.bmp", kFour), false);
    EXPECT_NE(result, image);
    EXPECT_FALSE(exists(result));
}

TEST_F(MaskFiles, are_remembered_though_they_are_cleared)
{
    const std::wstring image = write("image.bmp", kFour);
    const std::wstring result = cutOut(image, {kBlue});
    ASSERT_TRUE(exists(result));
    rlu_ClearTempBMPFiles();
    EXPECT_EQ(cutOut(image, {kBlue}), result);
    EXPECT_FALSE(exists(result));
}

TEST_F(MaskFiles, without_a_folder_to_save_to_leave_the_decal_alone)
{
    const ScopedVariable temp("temp", std::nullopt);
    const ScopedVariable capitals("TEMP", std::nullopt);
    const ScopedVariable tmp("tmp", std::nullopt);
    const ScopedVariable tmpCapitals("TMP", std::nullopt);
    const std::wstring image = write("image.bmp", kFour);
    EXPECT_EQ(cutOut(image, {kRed}), image);
    EXPECT_EQ(masked(image, image, false), image);
}

// The mask is searched as a decal is, and that knows no such ending.
TEST_F(MaskFiles, with_an_unlisted_ending_are_the_default_decal)
{
    const std::wstring mask = write("mask.tiff", kFour);
    masked(write("image.bmp", kFour), mask, false);
    ASSERT_FALSE(maskImageCacheFiles.records().empty());
    EXPECT_EQ(maskImageCacheFiles.records().back().maskName,
              rlu_getDataDir() + L"\\images\\textures\\decals\\decals.bmp");
}

// A part whose decal names a folder of another machine, while image and mask lie beside the document.
TEST_F(MaskFiles, of_a_translated_decal_are_found_beside_the_document)
{
    write("label.bmp", kFour);
    const std::wstring mask = write("mask.bmp", {1, 1, {grey(77)}});
    uoDecalProperties decal;
    decal.textureProperties.filename = L"Q:\\elsewhere\\label.bmp";
    decal.maskFileName = mask;
    decal.faceMappings.emplace_back();
    decal.faceMappings.back().faceId = 5;
    uoTempPartTessData_c tessData;
    tessData.decalsByConfig[0] = {&decal};
    dlPart part;
    fillBodies(part, {{5}});
    attachPartDecals(tessData, &part, folder.wide() + L"\\part.doc", -1);
    const std::list<dlDecal*> decals = part.bodies[0].faces[0].getDecalList();
    ASSERT_EQ(decals.size(), 1u);
    const Drawing result = written(decals.front()->texture.filename);
    EXPECT_THAT(result.colours,
                ElementsAre(77u << 24 | kRed, 77u << 24 | kGreen, 77u << 24 | kBlue, 77u << 24 | kWhite));
}

}  // namespace
