#include "raylume/appearance/MaskImages.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cstdint>
#include <list>
#include <random>
#include <string>
#include <vector>

#include "raylume/platform/Text.h"
#include "raylume/scene/dlDecal.h"
#include "tests/appearance/ScriptedImages.h"
#include "tests/platform/ScopedCodePage.h"

namespace {

using maskimages::cutOutColours;
using maskimages::Size;
using maskimages::takeAlphaFromMask;
using scripted::images;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;
using testing::SizeIs;

using Bytes = std::vector<unsigned char>;
using Colours = std::list<std::uint32_t>;

// -------------------------------------------------------------------------------------- colours

struct ColourCase {
    const char* name;
    unsigned char pixel[4];  // blue, green, red, alpha
    Colours colours;
    unsigned char alpha;
};

const ColourCase kColours[] = {
    {"red_is_the_low_byte", {0, 0, 255, 9}, {0x0000FF}, 0},
    {"green_is_the_middle_byte", {0, 255, 0, 9}, {0x00FF00}, 0},
    {"blue_is_the_high_byte", {255, 0, 0, 9}, {0xFF0000}, 0},
    {"the_other_byte_order_is_no_match", {0, 0, 255, 9}, {0xFF0000}, 255},
    {"all_three_bytes_count", {3, 2, 1, 9}, {0x030201}, 0},
    {"another_blue_is_no_match", {4, 2, 1, 9}, {0x030201}, 255},
    {"another_green_is_no_match", {3, 3, 1, 9}, {0x030201}, 255},
    {"another_red_is_no_match", {3, 2, 0, 9}, {0x030201}, 255},
    {"there_is_no_tolerance", {0, 0, 254, 9}, {0x0000FF}, 255},
    {"black_can_be_cut", {0, 0, 0, 255}, {0}, 0},
    {"white_can_be_cut", {255, 255, 255, 255}, {0xFFFFFF}, 0},
    {"an_entry_with_a_top_byte_matches_nothing", {0, 0, 255, 9}, {0x010000FF}, 255},
    {"nor_with_a_top_byte_that_equals_the_alpha", {0, 0, 255, 255}, {0xFF0000FF}, 255},
    {"nor_black_with_a_full_top_byte", {0, 0, 0, 255}, {0xFF000000}, 255},
    {"nor_among_others", {0, 0, 255, 9}, {0x010000FF, 1, 2, 3, 4, 5}, 255},
    {"an_alpha_of_its_own_is_lost", {1, 2, 3, 0}, {0xFFFFFF}, 255},
    {"any_of_the_entries_matches", {0, 0, 7, 255}, {5, 6, 7}, 0},
    {"the_last_of_many_matches", {0, 0, 7, 255}, {1, 2, 3, 4, 5, 6, 7}, 0},
    {"none_of_many_matches", {0, 0, 8, 3}, {1, 2, 3, 4, 5, 6, 7}, 255},
    {"an_entry_may_come_many_times", {0, 0, 7, 255}, {7, 7, 7, 7, 7, 7}, 0},
    {"without_entries_the_alpha_stays", {0, 0, 7, 77}, {}, 77},
};

class CutOutColour : public testing::TestWithParam<ColourCase> {};

TEST_P(CutOutColour, DecidesTheAlphaAndKeepsTheColour)
{
    const ColourCase& row = GetParam();
    Bytes pixel(row.pixel, row.pixel + 4);
    cutOutColours(pixel.data(), 1, row.colours);
    EXPECT_THAT(pixel, ElementsAre(row.pixel[0], row.pixel[1], row.pixel[2], row.alpha));
}

INSTANTIATE_TEST_SUITE_P(Rows, CutOutColour, testing::ValuesIn(kColours),
                         [](const auto& row) { return std::string(row.param.name); });

// Few enough colours that many pixels have one of the list.
Bytes somePixels(std::size_t count, std::mt19937& random)
{
    Bytes pixels(4 * count);
    for (unsigned char& byte : pixels)
        byte = static_cast<unsigned char>(random() % 3 * 127);
    return pixels;
}

void cutOutOneByOne(Bytes& pixels, const Colours& colours)
{
    for (std::size_t at = 0; at < pixels.size(); at += 4) {
        const auto value =
            static_cast<std::uint32_t>(pixels[at] << 16 | pixels[at + 1] << 8 | pixels[at + 2]);
        const bool cut = std::find(colours.begin(), colours.end(), value) != colours.end();
        pixels[at + 3] = cut ? 0 : 255;
    }
}

Colours someColours(std::size_t count, std::mt19937& random)
{
    Colours colours;
    while (colours.size() < count)
        colours.push_back(static_cast<std::uint32_t>(random() % 3 * 127 << 16 | random() % 3 * 127 << 8 |
                                                     random() % 3 * 127));
    return colours;
}

TEST(CutOutColours, of_any_number_are_those_found_one_by_one)
{
    std::mt19937 random(7);
    for (const std::size_t colourCount : {1u, 2u, 3u, 4u, 5u, 6u, 20u, 300u}) {
        for (std::size_t pixelCount = 0; pixelCount < 70; ++pixelCount) {
            const Colours colours = someColours(colourCount, random);
            Bytes pixels = somePixels(pixelCount, random);
            Bytes expected = pixels;
            cutOutOneByOne(expected, colours);
            cutOutColours(pixels.data(), pixelCount, colours);
            ASSERT_EQ(pixels, expected) << colourCount << " colours, " << pixelCount << " pixels";
        }
    }
}

TEST(CutOutColours, go_no_further_than_the_pixels_given)
{
    for (const Colours& colours : {Colours{0}, Colours{0, 1, 2, 3, 4, 5}}) {
        Bytes pixels(4 * 9, 0);
        pixels[4 * 8 + 3] = 99;
        cutOutColours(pixels.data(), 8, colours);
        EXPECT_EQ(pixels[4 * 8 + 3], 99);
    }
}

// ------------------------------------------------------------------------------------ mask images

// Each pixel of the mask has its column, or its row, in its blue byte, and something else in the others.
Bytes maskOf(Size size, bool rows)
{
    Bytes mask;
    for (int y = 0; y < size.height; ++y)
        for (int x = 0; x < size.width; ++x)
            for (const int byte : {rows ? y : x, 201, 202, 203})
                mask.push_back(static_cast<unsigned char>(byte));
    return mask;
}

int maskedBy(Size size, Size maskSize, int x, int y, bool rows)
{
    Bytes pixels(static_cast<std::size_t>(4 * size.width * size.height), 50);
    takeAlphaFromMask(pixels.data(), size, maskOf(maskSize, rows).data(), maskSize, false);
    return pixels[static_cast<std::size_t>(4 * (y * size.width + x) + 3)];
}

struct NearestCase {
    const char* name;
    Size size;
    Size maskSize;
    int at[2];
    int from[2];
};

const NearestCase kNearest[] = {
    {"twice_as_wide_and_half_as_high", {200, 50}, {100, 100}, {199, 49}, {99, 98}},
    {"the_first_pixel", {200, 50}, {100, 100}, {0, 0}, {0, 0}},
    {"the_place_is_cut_and_not_rounded", {2, 3}, {3, 2}, {1, 2}, {1, 1}},
    {"the_same_size", {5, 4}, {5, 4}, {3, 2}, {3, 2}},
    {"the_same_width_only", {5, 4}, {5, 8}, {3, 3}, {3, 6}},
    {"the_same_height_only", {4, 5}, {8, 5}, {3, 3}, {6, 3}},
    {"the_same_number_of_pixels", {4, 2}, {2, 4}, {3, 1}, {1, 2}},
    {"a_mask_of_one_pixel", {9, 9}, {1, 1}, {8, 8}, {0, 0}},
    {"an_image_of_one_pixel", {1, 1}, {9, 9}, {0, 0}, {0, 0}},
    // 7 x 62 / 14 is exactly 31, but 62 / 14 rounds down in single precision.
    {"the_scale_comes_first_across", {14, 1}, {62, 1}, {7, 0}, {30, 0}},
    {"the_scale_comes_first_down", {1, 14}, {1, 62}, {0, 7}, {0, 30}},
    // Where single and double precision part.
    {"the_scale_is_single_precision", {14, 1}, {122, 1}, {7, 0}, {61, 0}},
};

class NearestMaskPixel : public testing::TestWithParam<NearestCase> {};

TEST_P(NearestMaskPixel, GivesTheAlpha)
{
    const NearestCase& row = GetParam();
    EXPECT_EQ(maskedBy(row.size, row.maskSize, row.at[0], row.at[1], false), row.from[0]);
    EXPECT_EQ(maskedBy(row.size, row.maskSize, row.at[0], row.at[1], true), row.from[1]);
}

INSTANTIATE_TEST_SUITE_P(Rows, NearestMaskPixel, testing::ValuesIn(kNearest),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(MaskImage, decides_the_alpha_only_and_by_its_blue_only)
{
    Bytes pixels = {1, 2, 3, 4};
    const Bytes mask = {70, 80, 90, 100};
    takeAlphaFromMask(pixels.data(), {1, 1}, mask.data(), {1, 1}, false);
    EXPECT_THAT(pixels, ElementsAre(1, 2, 3, 70));
}

TEST(MaskImage, is_turned_byte_by_byte_when_inverted)
{
    Bytes pixels(12, 9);
    const Bytes mask = {0, 1, 1, 1, 255, 1, 1, 1, 0x12, 1, 1, 1};
    takeAlphaFromMask(pixels.data(), {3, 1}, mask.data(), {3, 1}, true);
    EXPECT_EQ(pixels[3], 255);
    EXPECT_EQ(pixels[7], 0);
    EXPECT_EQ(pixels[11], 0xED);
}

TEST(MaskImage, of_another_size_is_turned_too)
{
    Bytes pixels(8, 9);
    const Bytes mask = {0x12, 1, 1, 1};
    takeAlphaFromMask(pixels.data(), {2, 1}, mask.data(), {1, 1}, true);
    EXPECT_THAT(pixels, ElementsAre(9, 9, 9, 0xED, 9, 9, 9, 0xED));
}

TEST(MaskImage, without_a_side_does_nothing)
{
    const Bytes mask(16, 7);
    for (const auto& [size, maskSize] : {std::pair<Size, Size>{{0, 1}, {1, 1}},
                                         {{1, 0}, {1, 1}},
                                         {{2, 1}, {0, 1}},
                                         {{2, 1}, {1, 0}},
                                         {{-2, -1}, {1, 1}},
                                         {{2, 1}, {-2, -1}}}) {
        Bytes pixels(8, 9);
        takeAlphaFromMask(pixels.data(), size, mask.data(), maskSize, false);
        EXPECT_THAT(pixels, testing::Each(9));
    }
}

// The last places of so long a side round to the mask's width, where there is no pixel.
TEST(MaskImage, stays_within_the_mask_for_sides_beyond_single_precision)
{
    const int width = (1 << 24) + 4;
    Bytes pixels(static_cast<std::size_t>(width) * 4);
    const Bytes mask = {1, 0, 0, 0, 2, 0, 0, 0, 3, 0, 0, 0};
    takeAlphaFromMask(pixels.data(), {width, 1}, mask.data(), {3, 1}, false);
    EXPECT_EQ(pixels.back(), 3);
}

// ----------------------------------------------------------------------------- the whole operation

constexpr Colours::value_type kRed = 0x0000FF;
constexpr Colours::value_type kBlue = 0xFF0000;

// The caches last as long as the process, so every test has names of its own.
class MaskOperation : public testing::Test {
protected:
    MaskOperation()
        : name_(L"t" + std::to_wstring(++tests_)),
          image(name_ + L"\\Image.png"),
          mask(name_ + L"\\Mask.png")
    {
        scripted::reset(name_);
        images().pictures[image] = {1, 3, 1, {0, 0, 255, 10, 255, 0, 0, 20, 1, 2, 3, 30}};
        images().pictures[mask] = {1, 3, 1, {100, 1, 1, 1, 110, 1, 1, 1, 120, 1, 1, 1}};
    }

    std::wstring saved(int number) const { return name_ + L"\\" + std::to_wstring(number) + L".bmp"; }

    // The file name that a decal has afterwards.
    std::wstring cutOut(const std::wstring& file, const Colours& colours,
                        const std::wstring& folder = L"d\\")
    {
        dlDecal decal;
        decal.texture.filename = file;
        decal.colorMask = colours;
        decal.generateNewImageUsingMaskColors(folder);
        return decal.texture.filename;
    }

    std::wstring masked(const std::wstring& file, const std::wstring& maskFile, bool invert,
                        const std::wstring& folder = L"d\\")
    {
        dlDecal decal;
        decal.texture.filename = file;
        decal.generateNewImageUsingMaskFile(folder, maskFile, invert);
        return decal.texture.filename;
    }

    static Bytes lastAlphas()
    {
        Bytes alphas;
        const Bytes& pixels = images().saved.back().pixels;
        for (std::size_t at = 3; at < pixels.size(); at += 4)
            alphas.push_back(pixels[at]);
        return alphas;
    }

    static inline int tests_ = 0;
    std::wstring name_;
    std::wstring image;
    std::wstring mask;
};

class ColourMaskOperation : public MaskOperation {};
class FileMaskOperation : public MaskOperation {};

TEST_F(ColourMaskOperation, searches_loads_and_saves_in_this_order)
{
    images().places[L"stored.png"] = image;
    EXPECT_EQ(cutOut(L"stored.png", {kRed}, L"C:\\docs\\"), saved(1));
    EXPECT_THAT(images().lines, ElementsAre("search stored.png in 'C:\\docs\\' as 0 ''",
                                            "load " + platform::toUtf8(image) + " 1,0,1", "save 3x1/12"));
}

TEST_F(ColourMaskOperation, passes_the_folder_on_literally)
{
    cutOut(image, {kRed}, L"C:\\docs\\part.doc");
    EXPECT_EQ(images().lines[0], "search " + platform::toUtf8(image) + " in 'C:\\docs\\part.doc' as 0 ''");
}

TEST_F(ColourMaskOperation, saves_the_image_with_the_colours_cut_out)
{
    cutOut(image, {kRed});
    ASSERT_THAT(images().saved, SizeIs(1));
    EXPECT_THAT(images().saved[0].pixels, ElementsAre(0, 0, 255, 0, 255, 0, 0, 255, 1, 2, 3, 255));
}

TEST_F(ColourMaskOperation, leaves_the_list_of_colours_alone)
{
    dlDecal decal;
    decal.texture.filename = image;
    decal.colorMask = {kRed, kBlue};
    decal.generateNewImageUsingMaskColors(L"");
    EXPECT_THAT(decal.colorMask, ElementsAre(kRed, kBlue));
    EXPECT_EQ(decal.maskFilename, L"");
}

TEST_F(ColourMaskOperation, keeps_the_alpha_of_an_image_without_colours_but_saves_and_remembers_it)
{
    EXPECT_EQ(cutOut(image, {}), saved(1));
    EXPECT_THAT(lastAlphas(), ElementsAre(10, 20, 30));
    EXPECT_EQ(cutOut(image, {}), saved(1));
    EXPECT_THAT(images().saved, SizeIs(1));
}

TEST_F(ColourMaskOperation, enters_what_it_made_at_the_end_of_the_cache)
{
    const std::size_t before = maskImageCacheColors.records().size();
    images().places[L"stored.png"] = image;
    cutOut(L"stored.png", {kRed, kBlue});
    ASSERT_EQ(maskImageCacheColors.records().size(), before + 1);
    const auto& record = maskImageCacheColors.records().back();
    EXPECT_EQ(record.imageName, image);
    EXPECT_THAT(record.colors, ElementsAre(kRed, kBlue));
    EXPECT_EQ(record.resultFile, saved(1));
}

TEST_F(ColourMaskOperation, takes_what_was_made_before_without_loading)
{
    cutOut(image, {kRed});
    const std::size_t records = maskImageCacheColors.records().size();
    images().lines.clear();
    EXPECT_EQ(cutOut(image, {kRed}), saved(1));
    EXPECT_THAT(images().lines, ElementsAre("search " + platform::toUtf8(image) + " in 'd\\' as 0 ''"));
    EXPECT_EQ(maskImageCacheColors.records().size(), records);
}

TEST_F(ColourMaskOperation, finds_what_was_made_before_whatever_the_case_of_the_path)
{
    cutOut(image, {kRed});
    images().places[L"again.png"] = platform::toLower(image);
    ASSERT_NE(images().places[L"again.png"], image);
    EXPECT_EQ(cutOut(L"again.png", {kRed}), saved(1));
}

TEST_F(ColourMaskOperation, makes_a_second_image_for_other_colours)
{
    EXPECT_EQ(cutOut(image, {kRed, kBlue}), saved(1));
    EXPECT_EQ(cutOut(image, {kBlue, kRed}), saved(2));
    EXPECT_EQ(cutOut(image, {kRed}), saved(3));
    EXPECT_EQ(cutOut(image, {kRed, kBlue, kBlue}), saved(4));
    EXPECT_EQ(cutOut(image, {kRed, 0x00FF01}), saved(5));
    EXPECT_EQ(cutOut(image, {kRed, kBlue}), saved(1));
    EXPECT_EQ(cutOut(image, {kRed}), saved(3));
}

TEST_F(ColourMaskOperation, makes_a_second_image_when_the_same_name_resolves_elsewhere)
{
    const std::wstring other = name_ + L"\\elsewhere\\Image.png";
    images().places[L"stored.png"] = image;
    EXPECT_EQ(cutOut(L"stored.png", {kRed}), saved(1));
    images().places[L"stored.png"] = other;
    EXPECT_EQ(cutOut(L"stored.png", {kRed}), saved(2));
}

TEST_F(ColourMaskOperation, saves_and_remembers_an_image_that_cannot_be_loaded)
{
    const std::wstring missing = name_ + L"\\missing.png";
    EXPECT_EQ(cutOut(missing, {kRed}), saved(1));
    EXPECT_EQ(images().lines.back(), "save 0x0/0 nothing");
    images().lines.clear();
    images().pictures[missing] = images().pictures[image];
    EXPECT_EQ(cutOut(missing, {kRed}), saved(1));
    EXPECT_THAT(images().lines, SizeIs(1));
}

TEST_F(ColourMaskOperation, cuts_nothing_out_unless_the_load_returns_one)
{
    images().pictures[image].status = 2;
    EXPECT_EQ(cutOut(image, {kRed}), saved(1));
    EXPECT_THAT(lastAlphas(), ElementsAre(10, 20, 30));
}

TEST_F(ColourMaskOperation, changes_nothing_when_there_is_no_path_to_save_to)
{
    const std::size_t records = maskImageCacheColors.records().size();
    images().places[L"stored.png"] = image;
    images().savePath = L"";
    EXPECT_EQ(cutOut(L"stored.png", {kRed}), L"stored.png");
    EXPECT_EQ(maskImageCacheColors.records().size(), records);
    images().savePath.reset();
    EXPECT_EQ(cutOut(L"stored.png", {kRed}), saved(1));
}

TEST_F(ColourMaskOperation, sends_both_texts_through_the_ansi_code_page)
{
    const ScopedCodePage latin(1252);
    ASSERT_TRUE(latin.isSet());
    cutOut(L"\u0416\u00E4.png", {kRed}, L"\u0416\u00E4\\");
    EXPECT_EQ(images().lines[0], "search \u0416\u00E4.png in '?\xE4\\' as 0 ''");
    EXPECT_EQ(images().lines[1], "load ?\u00E4.png 1,0,1");
}

TEST_F(FileMaskOperation, searches_loads_and_saves_in_this_order)
{
    images().places[L"stored.png"] = image;
    images().places[L"mask.png"] = mask;
    EXPECT_EQ(masked(L"stored.png", L"mask.png", false, L"C:\\docs"), saved(1));
    EXPECT_THAT(images().lines, ElementsAre("search stored.png in 'C:\\docs' as 0 ''",
                                            "search mask.png in 'C:\\docs' as 0 ''",
                                            "load " + platform::toUtf8(image) + " 1,0,1",
                                            "load " + platform::toUtf8(mask) + " 1,0,1", "save 3x1/12"));
}

TEST_F(FileMaskOperation, saves_the_image_with_the_masks_blue_as_alpha)
{
    masked(image, mask, false);
    ASSERT_THAT(images().saved, SizeIs(1));
    EXPECT_THAT(images().saved[0].pixels, ElementsAre(0, 0, 255, 100, 255, 0, 0, 110, 1, 2, 3, 120));
}

TEST_F(FileMaskOperation, turns_the_mask_over_when_inverted)
{
    masked(image, mask, true);
    EXPECT_THAT(lastAlphas(), ElementsAre(155, 145, 135));
}

TEST_F(FileMaskOperation, scales_a_mask_of_another_size)
{
    images().pictures[mask] = {1, 2, 1, {40, 0, 0, 0, 50, 0, 0, 0}};
    masked(image, mask, false);
    EXPECT_THAT(lastAlphas(), ElementsAre(40, 40, 50));
}

TEST_F(FileMaskOperation, leaves_the_decals_mask_fields_alone)
{
    dlDecal decal;
    decal.texture.filename = image;
    decal.generateNewImageUsingMaskFile(L"", mask, true);
    EXPECT_EQ(decal.maskFilename, L"");
    EXPECT_EQ(decal.maskInvert, 0);
    EXPECT_EQ(decal.maskType, decalmaskType_none);
}

TEST_F(FileMaskOperation, ignores_the_decals_colours)
{
    dlDecal decal;
    decal.texture.filename = image;
    decal.colorMask = {kRed};
    decal.generateNewImageUsingMaskFile(L"", mask, false);
    EXPECT_THAT(lastAlphas(), ElementsAre(100, 110, 120));
}

TEST_F(FileMaskOperation, enters_what_it_made_at_the_end_of_the_cache)
{
    const std::size_t before = maskImageCacheFiles.records().size();
    images().places[L"stored.png"] = image;
    images().places[L"mask.png"] = mask;
    masked(L"stored.png", L"mask.png", true);
    ASSERT_EQ(maskImageCacheFiles.records().size(), before + 1);
    const auto& record = maskImageCacheFiles.records().back();
    EXPECT_EQ(record.imageName, image);
    EXPECT_EQ(record.maskName, mask);
    EXPECT_TRUE(record.inverted);
    EXPECT_EQ(record.resultFile, saved(1));
}

TEST_F(FileMaskOperation, takes_what_was_made_before_without_loading)
{
    masked(image, mask, false);
    images().lines.clear();
    EXPECT_EQ(masked(image, mask, false), saved(1));
    EXPECT_THAT(images().lines, SizeIs(2));
}

TEST_F(FileMaskOperation, finds_what_was_made_before_whatever_the_case_of_the_paths)
{
    masked(image, mask, false);
    images().places[L"i"] = platform::toLower(image);
    images().places[L"m"] = platform::toLower(mask);
    EXPECT_EQ(masked(L"i", L"m", false), saved(1));
}

TEST_F(FileMaskOperation, makes_an_image_for_each_mask_and_each_sense)
{
    const std::wstring otherMask = name_ + L"\\other.png";
    EXPECT_EQ(masked(image, mask, false), saved(1));
    EXPECT_EQ(masked(image, mask, true), saved(2));
    EXPECT_EQ(masked(image, otherMask, false), saved(3));
    EXPECT_EQ(masked(otherMask, mask, false), saved(4));
    EXPECT_EQ(masked(image, mask, true), saved(2));
    EXPECT_EQ(masked(image, mask, false), saved(1));
}

TEST_F(FileMaskOperation, has_a_cache_of_its_own)
{
    EXPECT_EQ(cutOut(image, {}), saved(1));
    EXPECT_EQ(masked(image, mask, false), saved(2));
    EXPECT_EQ(cutOut(image, {}), saved(1));
}

TEST_F(FileMaskOperation, loads_the_mask_and_saves_nothing_when_the_image_cannot_be_loaded)
{
    const std::wstring missing = name_ + L"\\missing.png";
    EXPECT_EQ(masked(missing, mask, false), saved(1));
    EXPECT_THAT(images().lines, SizeIs(5));
    EXPECT_EQ(images().lines[3], "load " + platform::toUtf8(mask) + " 1,0,1");
    EXPECT_EQ(images().lines[4], "save 0x0/0 nothing");
    EXPECT_EQ(masked(missing, mask, false), saved(1));
    EXPECT_THAT(images().saved, SizeIs(1));
}

TEST_F(FileMaskOperation, saves_the_image_with_its_own_alpha_when_the_mask_cannot_be_loaded)
{
    EXPECT_EQ(masked(image, name_ + L"\\missing.png", false), saved(1));
    EXPECT_THAT(lastAlphas(), ElementsAre(10, 20, 30));
}

TEST_F(FileMaskOperation, wants_one_from_the_image_and_anything_but_zero_from_the_mask)
{
    images().pictures[mask].status = 2;
    masked(image, mask, false);
    EXPECT_THAT(lastAlphas(), ElementsAre(100, 110, 120));
    images().pictures[image].status = 2;
    masked(image, mask, true);
    EXPECT_THAT(lastAlphas(), ElementsAre(10, 20, 30));
    images().pictures[image].status = 1;
    images().pictures[mask].status = 0;
    const std::wstring refused = name_ + L"\\refused.png";
    images().pictures[refused] = images().pictures[mask];
    masked(image, refused, false);
    EXPECT_THAT(lastAlphas(), ElementsAre(10, 20, 30));
}

TEST_F(FileMaskOperation, changes_nothing_when_there_is_no_path_to_save_to)
{
    const std::size_t records = maskImageCacheFiles.records().size();
    images().savePath = L"";
    EXPECT_EQ(masked(image, mask, false), image);
    EXPECT_EQ(maskImageCacheFiles.records().size(), records);
    images().savePath.reset();
    EXPECT_EQ(masked(image, mask, false), saved(1));
}

}  // namespace
