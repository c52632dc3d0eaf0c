#include "raylume/appearance/SurfaceFinish.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <limits>
#include <string>

#include "raylume/load/ReaderInterface.h"
#include "raylume/services/HostPaths.h"
#include "tests/platform/ScopedEnvironment.h"
#include "tests/recording_reader/RecordingReader.h"

namespace {

const std::wstring kFolder = L"\\images\\textures\\surfacefinishes\\";

// An appearance of which every answer is told apart from the others.
uoRVAppearanceProperties distinctAppearance()
{
    uoRVAppearanceProperties appearance;
    appearance.bumpTextureFilename = L"c:\\mine\\relief.png";
    appearance.filename = L"c:\\wrong\\filename.png";
    appearance.lfpFilename = L"c:\\wrong\\preset.lfp";
    appearance.shaderName = L"plain";
    appearance.knurlFileNumber = 4;
    appearance.dimpleFileNumber = 7;
    return appearance;
}

class DataFolder : public testing::Test {
protected:
    void SetUp() override { g_dataDir = L"D:\\host\\Data"; }
    void TearDown() override { g_dataDir.clear(); }
};

struct FinishCase {
    const char* name;
    int finish;
    std::wstring expected;
};

std::wstring image(const wchar_t* fileName)
{
    return L"D:\\host\\Data" + kFolder + fileName;
}

const FinishCase kFinishes[] = {
    {"finish_0_of_a_plain_shader_has_none", 0, L""},
    {"finish_1_has_none", 1, L""},
    {"finish_2_is_named_by_the_appearance", 2, L"c:\\mine\\relief.png"},
    {"finish_3_is_brushed", 3, image(L"ovbrushed_bump.jpg")},
    {"finish_4_is_burnished", 4, image(L"ovburnished_bump.jpg")},
    {"finish_5_is_cast", 5, image(L"ovcast_bump.jpg")},
    {"finish_6_is_wrought", 6, image(L"ovwrought_bump.jpg")},
    {"finish_7_is_machined", 7, image(L"ovmachined_bump.jpg")},
    {"finish_8_is_the_numbered_knurl", 8, image(L"ovknurled4_bump.png")},
    {"finish_9_is_the_treadplate_without_prefix", 9, image(L"treadplate_bump.png")},
    {"finish_10_is_the_numbered_dimple", 10, image(L"ovdimple7_bump.png")},
    {"finish_11_is_wire", 11, image(L"ovwire_bump.jpg")},
    {"finish_12_is_sand", 12, image(L"ovsand_bump.jpg")},
    {"finish_13_is_rough_1", 13, image(L"ovrough1_bump.jpg")},
    {"finish_14_is_rough_2", 14, image(L"ovrough2_bump.jpg")},
    {"finish_15_is_rough_3", 15, image(L"ovrough3_bump.jpg")},
    {"finish_16_is_diamond_tread", 16, image(L"ovdiamondtread_bump.png")},
    {"finish_17_is_the_prefixed_treadplate", 17, image(L"ovtreadplate_bump.png")},
    {"finish_18_is_named_by_the_appearance", 18, L"c:\\mine\\relief.png"},
    {"finish_19_is_named_by_the_appearance", 19, L"c:\\mine\\relief.png"},
    {"finish_20_is_named_by_the_appearance", 20, L"c:\\mine\\relief.png"},
    {"finish_21_has_none", 21, L""},
    {"finish_22_has_none", 22, L""},
    {"finish_minus_1_has_none", -1, L""},
    {"finish_256_has_none", 256, L""},
    {"finish_259_is_not_taken_for_its_low_byte", 259, L""},
    {"the_largest_number_has_none", std::numeric_limits<int>::max(), L""},
    {"the_smallest_number_has_none", std::numeric_limits<int>::min(), L""},
};

class SurfaceFinish : public DataFolder, public testing::WithParamInterface<FinishCase> {};

TEST_P(SurfaceFinish, ChoosesTheImage)
{
    uoRVAppearanceProperties appearance = distinctAppearance();
    EXPECT_EQ(surfaceFinishBumpFile(GetParam().finish, &appearance), GetParam().expected);
}

TEST_P(SurfaceFinish, IsEmptyWithoutAnAppearance)
{
    EXPECT_EQ(surfaceFinishBumpFile(GetParam().finish, nullptr), L"");
}

INSTANTIATE_TEST_SUITE_P(Rows, SurfaceFinish, testing::ValuesIn(kFinishes),
                         [](const auto& row) { return std::string(row.param.name); });

struct ShaderCase {
    const char* name;
    const wchar_t* shader;
    std::wstring expected;
};

const ShaderCase kShaders[] = {
    {"no_name_gives_none", L"", L""},
    {"another_name_gives_none", L"plastic", L""},
    {"knurl_gives_the_knurl", L"knurl", image(L"ovknurled4_bump.png")},
    {"knurl_counts_inside_a_name", L"my knurled steel", image(L"ovknurled4_bump.png")},
    {"dimple_gives_the_dimple", L"dimple", image(L"ovdimple7_bump.png")},
    {"dimple_counts_inside_a_name", L"undimpled", image(L"ovdimple7_bump.png")},
    {"circular_mesh_names_its_image", L"circularmeshplastic", L"c:\\mine\\relief.png"},
    {"circular_mesh_counts_inside_a_name", L"a circularmeshplastic2", L"c:\\mine\\relief.png"},
    {"diamond_mesh_names_its_image", L"diamondmeshplastic", L"c:\\mine\\relief.png"},
    {"diamond_mesh_counts_inside_a_name", L"a diamondmeshplastic2", L"c:\\mine\\relief.png"},
    {"half_a_mesh_name_gives_none", L"diamondmesh", L""},
    {"capital_knurl_gives_none", L"Knurl", L""},
    {"capital_dimple_gives_none", L"DIMPLE", L""},
    {"capital_mesh_gives_none", L"CircularMeshPlastic", L""},
    {"knurl_comes_before_dimple", L"dimpleknurl", image(L"ovknurled4_bump.png")},
    {"knurl_comes_before_mesh", L"diamondmeshplasticknurl", image(L"ovknurled4_bump.png")},
    {"dimple_comes_before_mesh", L"circularmeshplasticdimple", image(L"ovdimple7_bump.png")},
};

class ShaderOfFinish0 : public DataFolder, public testing::WithParamInterface<ShaderCase> {};

TEST_P(ShaderOfFinish0, ChoosesTheImage)
{
    uoRVAppearanceProperties appearance = distinctAppearance();
    appearance.shaderName = GetParam().shader;
    EXPECT_EQ(surfaceFinishBumpFile(0, &appearance), GetParam().expected);
}

TEST_P(ShaderOfFinish0, PlaysNoPartForTheOtherFinishes)
{
    uoRVAppearanceProperties appearance = distinctAppearance();
    appearance.shaderName = GetParam().shader;
    EXPECT_EQ(surfaceFinishBumpFile(1, &appearance), L"");
    EXPECT_EQ(surfaceFinishBumpFile(5, &appearance), image(L"ovcast_bump.jpg"));
}

INSTANTIATE_TEST_SUITE_P(Rows, ShaderOfFinish0, testing::ValuesIn(kShaders),
                         [](const auto& row) { return std::string(row.param.name); });

struct NumberCase {
    const char* name;
    int number;
    std::wstring knurl;
    std::wstring dimple;
};

const NumberCase kNumbers[] = {
    {"zero_is_no_knurl_but_a_dimple", 0, L"", image(L"ovdimple0_bump.png")},
    {"one_digit", 9, image(L"ovknurled9_bump.png"), image(L"ovdimple9_bump.png")},
    {"two_digits_print_in_full", 12, image(L"ovknurled12_bump.png"), image(L"ovdimple12_bump.png")},
    {"four_digits_print_without_grouping", 1234, image(L"ovknurled1234_bump.png"),
     image(L"ovdimple1234_bump.png")},
    {"negative_prints_its_sign", -3, image(L"ovknurled-3_bump.png"), image(L"ovdimple-3_bump.png")},
    {"the_smallest_prints_in_full", std::numeric_limits<int>::min(),
     image(L"ovknurled-2147483648_bump.png"), image(L"ovdimple-2147483648_bump.png")},
};

class FinishNumber : public DataFolder, public testing::WithParamInterface<NumberCase> {};

TEST_P(FinishNumber, IsPartOfTheFileName)
{
    uoRVAppearanceProperties appearance;
    appearance.knurlFileNumber = GetParam().number;
    appearance.dimpleFileNumber = 77;
    EXPECT_EQ(surfaceFinishBumpFile(8, &appearance), GetParam().knurl);
    appearance.knurlFileNumber = 77;
    appearance.dimpleFileNumber = GetParam().number;
    EXPECT_EQ(surfaceFinishBumpFile(10, &appearance), GetParam().dimple);
}

TEST_P(FinishNumber, WorksTheSameThroughTheShaderName)
{
    uoRVAppearanceProperties appearance;
    appearance.shaderName = L"knurl";
    appearance.knurlFileNumber = GetParam().number;
    EXPECT_EQ(surfaceFinishBumpFile(0, &appearance), GetParam().knurl);
    appearance.shaderName = L"dimple";
    appearance.dimpleFileNumber = GetParam().number;
    EXPECT_EQ(surfaceFinishBumpFile(0, &appearance), GetParam().dimple);
}

INSTANTIATE_TEST_SUITE_P(Rows, FinishNumber, testing::ValuesIn(kNumbers),
                         [](const auto& row) { return std::string(row.param.name); });

class SurfaceFinishFolder : public DataFolder {};

TEST_F(SurfaceFinishFolder, a_plain_image_asks_the_appearance_nothing)
{
    recording::Recorder::get().reset();
    uoRVAppearanceProperties appearance = distinctAppearance();
    surfaceFinishBumpFile(3, &appearance);
    EXPECT_THAT(recording::Recorder::get().lines(), testing::IsEmpty());
}

TEST_F(SurfaceFinishFolder, knurl_without_a_number_does_not_fall_through_to_dimple)
{
    uoRVAppearanceProperties appearance = distinctAppearance();
    appearance.shaderName = L"knurldimple";
    appearance.knurlFileNumber = 0;
    EXPECT_EQ(surfaceFinishBumpFile(0, &appearance), L"");
}

TEST_F(SurfaceFinishFolder, percent_signs_in_the_data_folder_survive)
{
    g_dataDir = L"E:\\100%d\\%s%1d%n";
    uoRVAppearanceProperties appearance = distinctAppearance();
    EXPECT_EQ(surfaceFinishBumpFile(3, &appearance), g_dataDir + kFolder + L"ovbrushed_bump.jpg");
    EXPECT_EQ(surfaceFinishBumpFile(8, &appearance), g_dataDir + kFolder + L"ovknurled4_bump.png");
    EXPECT_EQ(surfaceFinishBumpFile(10, &appearance), g_dataDir + kFolder + L"ovdimple7_bump.png");
}

TEST_F(SurfaceFinishFolder, an_image_name_of_the_appearance_is_taken_as_it_is)
{
    uoRVAppearanceProperties appearance;
    appearance.bumpTextureFilename = L"relief %d.png";
    EXPECT_EQ(surfaceFinishBumpFile(2, &appearance), L"relief %d.png");
    appearance.bumpTextureFilename.clear();
    EXPECT_EQ(surfaceFinishBumpFile(18, &appearance), L"");
}

TEST_F(SurfaceFinishFolder, a_data_folder_of_any_length_and_script_is_kept)
{
    g_dataDir = L"D:\\\u8868\u00e9\\" + std::wstring(5000, L'x');
    uoRVAppearanceProperties appearance = distinctAppearance();
    EXPECT_EQ(surfaceFinishBumpFile(10, &appearance), g_dataDir + kFolder + L"ovdimple7_bump.png");
}

// A host whose data folder cannot be found.
class SurfaceFinishWithoutFolder : public testing::Test {
protected:
    void SetUp() override { g_dataDir.clear(); }
    void TearDown() override { g_dataDir.clear(); }

private:
    const ScopedVariable host_{
        "RAYLUME_HOST",
        (std::filesystem::temp_directory_path() / "no_such_folder" / "a" / "b" / "host").string()};
};

TEST_F(SurfaceFinishWithoutFolder, the_path_comes_back_all_the_same)
{
    uoRVAppearanceProperties appearance = distinctAppearance();
    EXPECT_EQ(surfaceFinishBumpFile(3, &appearance), kFolder + L"ovbrushed_bump.jpg");
    EXPECT_EQ(surfaceFinishBumpFile(8, &appearance), kFolder + L"ovknurled4_bump.png");
    EXPECT_EQ(surfaceFinishBumpFile(10, &appearance), kFolder + L"ovdimple7_bump.png");
}

// A host with a real data folder, so that a look-up would leave its trace in g_dataDir.
class SurfaceFinishWithRealFolder : public testing::Test {
protected:
    void SetUp() override
    {
        std::filesystem::create_directories(root_ / "Data");
        g_dataDir.clear();
    }
    void TearDown() override
    {
        g_dataDir.clear();
        std::filesystem::remove_all(root_);
    }

    const std::filesystem::path root_ =
        std::filesystem::path(testing::TempDir()) /
        ("surface_finish_" + std::string(testing::UnitTest::GetInstance()->current_test_info()->name()));

private:
    const ScopedVariable host_{"RAYLUME_HOST", (root_ / "bin" / "host").string()};
};

TEST_F(SurfaceFinishWithRealFolder, images_lie_below_it_and_need_not_exist)
{
    uoRVAppearanceProperties appearance = distinctAppearance();
    const std::wstring path = surfaceFinishBumpFile(3, &appearance);
    ASSERT_FALSE(g_dataDir.empty());
    EXPECT_EQ(path, g_dataDir + kFolder + L"ovbrushed_bump.jpg");
    EXPECT_FALSE(std::filesystem::exists(root_ / "Data" / "images"));
}

TEST_F(SurfaceFinishWithRealFolder, a_null_appearance_does_not_look_for_it)
{
    EXPECT_EQ(surfaceFinishBumpFile(3, nullptr), L"");
    EXPECT_EQ(g_dataDir, L"");
}

}  // namespace
