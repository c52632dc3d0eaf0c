#include "raylume/lights/SceneTranslation.h"

#include <gmock/gmock.h>

#include <vector>

#include "raylume/load/ReaderInterface.h"
#include "raylume/platform/Text.h"
#include "raylume/scene/dlModel.h"
#include "raylume/services/TextureSearchLog.h"
#include "tests/platform/TemporaryFolder.h"

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

struct SceneSource : ovScene_c {
    SceneSource()
    {
        sceneData = &data;
        data.walls[0] = nullptr;
    }

    pwSceneData_c data;
    pwWallInfo_c wall;
};

std::vector<double> list(const double (&values)[3])
{
    return {values[0], values[1], values[2]};
}

/// Translates into a fresh model and keeps what was searched for.
struct Translation {
    explicit Translation(SceneSource& source, const std::wstring& documentPath = L"\\nowhere\\part.doc")
    {
        const auto before = rlu_observeTextureSearches(
            [this](const TextureSearchRecord& record) { searches.push_back(record); });
        translateScene(*model, source, documentPath);
        rlu_observeTextureSearches(before);
    }

    const dlScene& scene() const { return model->scene; }
    std::vector<std::wstring> paths(std::size_t search = 0) const
    {
        std::vector<std::wstring> all;
        for (const TextureProbe& probe : searches.at(search).probes) {
            all.push_back(probe.path);
        }
        return all;
    }

    std::unique_ptr<dlModel> model = std::make_unique<dlModel>();
    std::vector<TextureSearchRecord> searches;
};

TEST(Scene, takes_numbers_and_colours_as_they_are)
{
    SceneSource source;
    source.floorOrientation = -4;
    source.data.backgroundColor1 = {};
    source.data.backgroundColor1.r = 0.1;
    source.data.backgroundColor1.g = 0.2;
    source.data.backgroundColor1.b = 0.3;
    source.data.backgroundColor2.r = 4;
    source.data.backgroundColor2.g = -5;
    source.data.backgroundColor2.b = 1e-300;
    source.data.backgroundBrightnessValue = 0.7;
    source.data.renderingBrightnessValue = 0.8;
    source.data.reflectivityValue = 0.9;
    const Translation made(source);
    EXPECT_EQ(made.scene().floorOrient, -4);
    EXPECT_THAT(list(made.scene().backgroundColor1), ElementsAre(0.1, 0.2, 0.3));
    EXPECT_THAT(list(made.scene().backgroundColor2), ElementsAre(4, -5, 1e-300));
    EXPECT_EQ(made.scene().backgroundBrightness, 0.7);
    EXPECT_EQ(made.scene().renderingBrightness, 0.8);
    EXPECT_EQ(made.scene().sceneReflectivity, 0.9);
}

TEST(Scene, has_its_floor_direction_only_for_one)
{
    for (const int direction : {0, 1, 2, -1}) {
        SceneSource source;
        source.floorDirection = direction;
        EXPECT_EQ(Translation(source).scene().floorDir, direction == 1) << direction;
    }
}

struct FloorCase {
    const char* name;
    bool hasWall;
    int reflect, shadow;
    const char* type;
};

const FloorCase kFloors[] = {
    {"reflection_goes_before_shadow", true, 1, 1, "reflect"},
    {"a_wall_without_reflection_leaves_the_shadow", true, 0, 1, "shadow"},
    {"negative_flags_count", true, -1, 0, "reflect"},
    {"a_negative_shadow_counts", false, 0, -2, "shadow"},
    {"no_wall_and_a_shadow", false, 1, 1, "shadow"},
    {"nothing_at_all", false, 0, 0, ""},
    {"a_wall_with_nothing", true, 0, 0, ""},
};

class SceneFloor : public testing::TestWithParam<FloorCase> {};

TEST_P(SceneFloor, is_the_first_effect_that_is_on)
{
    SceneSource source;
    source.wall.reflectFlag = GetParam().reflect;
    source.data.walls[0] = GetParam().hasWall ? &source.wall : nullptr;
    source.data.shadowFlag = GetParam().shadow;
    const Translation made(source);
    EXPECT_EQ(made.scene().floorType, GetParam().type);
    EXPECT_EQ(made.scene().floorVisibility, *GetParam().type != '\0');
}

INSTANTIATE_TEST_SUITE_P(Rows, SceneFloor, testing::ValuesIn(kFloors),
                         [](const auto& row) { return std::string(row.param.name); });

struct KindCase {
    const char* name;
    std::uint32_t kind;
    const char* text;
    bool plate, environment;
};

const KindCase kKinds[] = {
    {"solid", 0, "Env_Solid", false, false},        {"the_other_solid", 1, "Env_Solid", false, false},
    {"gradient", 2, "Env_Gradient", false, false},  {"back_plate", 3, "Env_Backplate", true, false},
    {"environment", 4, "Environment", false, true}, {"five", 5, "", false, false},
    {"all_bits", 0xFFFFFFFFu, "", false, false},
};

class SceneKind : public testing::TestWithParam<KindCase> {};

TEST_P(SceneKind, names_the_background_and_keeps_its_number)
{
    SceneSource source;
    source.data.backgroundKind = GetParam().kind;
    const Translation made(source);
    EXPECT_EQ(made.scene().backgroundType, static_cast<std::int32_t>(GetParam().kind));
    EXPECT_EQ(made.scene().backgroundTypeStr, GetParam().text);
    EXPECT_EQ(made.scene().bkplVisibility, GetParam().plate);
    EXPECT_EQ(made.scene().envVisibility, GetParam().environment);
}

TEST_P(SceneKind, does_not_decide_about_images)
{
    SceneSource source;
    source.data.backgroundKind = GetParam().kind;
    source.data.backgroundEnvImages[0] = L"E.hdr";
    source.data.backgroundImages[0] = L"B.bmp";
    const Translation made(source);
    EXPECT_EQ(made.scene().environmentImage, "e.hdr");
    EXPECT_EQ(made.scene().backPlateImage, "b.bmp");
}

INSTANTIATE_TEST_SUITE_P(Rows, SceneKind, testing::ValuesIn(kKinds),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(SceneImages, are_searched_environment_first)
{
    SceneSource source;
    source.data.backgroundEnvImages[0] = L"C:\\X\\Env.HDR";
    source.data.backgroundImages[0] = L"C:\\X\\Plate.BMP";
    const Translation made(source);
    ASSERT_THAT(made.searches, SizeIs(2));
    EXPECT_EQ(made.searches[0].storedPath, L"c:\\x\\env.hdr");
    EXPECT_EQ(made.searches[1].storedPath, L"c:\\x\\plate.bmp");
    EXPECT_EQ(made.searches[0].type, TextureImageScene);
    EXPECT_EQ(made.searches[1].type, TextureImageScene);
}

TEST(SceneImages, without_a_path_are_not_searched)
{
    SceneSource source;
    source.data.backgroundEnvImages[1] = L"other.hdr";
    const Translation made(source);
    EXPECT_THAT(made.searches, IsEmpty());
    EXPECT_EQ(made.scene().environmentImage, "");
    EXPECT_EQ(made.scene().backPlateImage, "");
}

TEST(SceneImages, do_not_know_the_tag_of_the_data_folder_any_more)
{
    SceneSource source;
    source.data.backgroundImages[0] = L"<SystemTexture>\\images\\a.png";
    EXPECT_EQ(Translation(source).scene().backPlateImage, "<systemtexture>\\images\\a.png");
}

TEST(SceneImages, are_looked_for_beside_the_document)
{
    SceneSource source;
    source.data.backgroundImages[0] = L"Q:\\gone\\plate.bmp";
    EXPECT_THAT(Translation(source, L"C:\\docs\\part.doc").paths(), Contains(L"C:\\docs\\plate.bmp"));
    EXPECT_THAT(Translation(source, L"C:\\docs\\").paths(), Contains(L"C:\\docs\\plate.bmp"));
}

TEST(SceneImages, are_found_beside_the_document)
{
    const TemporaryFolder folder;
    folder.write("plate.bmp", "x");
    SceneSource source;
    source.data.backgroundImages[0] = L"Q:\\gone\\PLATE.bmp";
    const std::wstring document = folder.wide() + L"\\part.doc";
    EXPECT_EQ(Translation(source, document).scene().backPlateImage, folder.path() + "\\plate.bmp");
}

TEST(SceneFolder, is_cut_from_a_scene_file_that_is_there)
{
    const TemporaryFolder folder;
    folder.write("room.p2s", "x");
    SceneSource source;
    source.data.backgroundImages[0] = L"Q:\\gone\\plate.bmp";
    source.data.sceneFileName = folder.wide() + L"\\room.p2s";
    EXPECT_THAT(Translation(source).paths(), Contains(folder.wide() + L"\\plate.bmp"));
}

TEST(SceneFolder, stays_the_whole_name_of_a_file_that_is_not_there)
{
    SceneSource source;
    source.data.backgroundImages[0] = L"Q:\\gone\\plate.bmp";
    source.data.sceneFileName = L"\\no\\room.p2s";
    const auto paths = Translation(source).paths();
    EXPECT_THAT(paths, Contains(L"\\no\\room.p2splate.bmp"));
    EXPECT_THAT(paths, Not(Contains(L"\\no\\plate.bmp")));
}

TEST(SceneFolder, stays_whole_when_its_only_separator_comes_first)
{
    SceneSource source;
    source.data.backgroundImages[0] = L"Q:\\gone\\plate.bmp";
    source.data.sceneFileName = L"\\tmp";  // a folder that is there counts as found
    EXPECT_THAT(Translation(source).paths(), Contains(L"\\tmpplate.bmp"));
}

TEST(SceneFolder, is_not_tried_when_there_is_none)
{
    SceneSource source;
    source.data.backgroundImages[0] = L"Q:\\gone\\plate.bmp";
    const Translation made(source);
    for (const TextureProbe& probe : made.searches.at(0).probes) {
        EXPECT_NE(probe.step, TextureSearchStep::kSceneFolder);
        EXPECT_NE(probe.step, TextureSearchStep::kSceneRelative);
    }
}

TEST(SceneFolder, is_cut_after_the_last_separator_only)
{
    const TemporaryFolder folder;
    folder.write("room.p2s", "x");
    std::wstring name = folder.wide() + L"/room.p2s";
    for (wchar_t& c : name)
        if (c == L'/')
            c = L'\\';
    SceneSource source;
    source.data.backgroundImages[0] = L"Q:\\gone\\plate.bmp";
    source.data.sceneFileName = name;
    EXPECT_THAT(Translation(source).paths(), Contains(name.substr(0, name.size() - 8) + L"plate.bmp"));
}

TEST(SceneImages, are_found_by_the_side_file_beside_the_document)
{
    const TemporaryFolder folder, maps;
    folder.write("__ImageLocations__.txt", "other\tQ:\\none\nCUSTOM_SCENE_FOLDERS\t" + maps.path() + "\n");
    maps.write("plate.bmp", "x");
    SceneSource source;
    source.data.backgroundImages[0] = L"Q:\\gone\\plate.bmp";
    EXPECT_EQ(Translation(source, folder.wide() + L"\\part.doc").scene().backPlateImage,
              maps.path() + "\\plate.bmp");
}

}  // namespace
