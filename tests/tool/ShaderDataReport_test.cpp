#include "tools/ShaderDataReport.h"

#include <gmock/gmock.h>

#include <bit>
#include <limits>
#include <nlohmann/json.hpp>
#include <sstream>

#include "raylume/platform/Text.h"

namespace {

using nlohmann::json;
using testing::HasSubstr;
using testing::Not;

const tool::ViewsFolder kViews{"/home/u/Views", {"a.view", "b\n.view"}};

// Every field with a value that no other and no default has.
void fillMask(RLMaskMaterial& mask)
{
    mask.setMaskName("name");
    mask.setMaskType("type");
    mask.setMaskPTag("ptag");
    mask.setMaterialName("material");
    const float colour[] = {0.1f, 0.25f, 0.5f, 0.75f};
    mask.setDiffuseColor(colour);
    mask.setMaterialAtRoot(true);
    mask.addFloatChannel("gloss", 0.3f);
    mask.addFloatChannel("gloss", -2.5f);
    mask.addStringTag(4000000000u, "tag \"a\"\nb");
}

void fillEnvironment(RLEnvironmentMaterial& environment)
{
    environment.setEnvironmentName("studio");
    environment.addStringTag(5, "five");
    environment.addStringTag(5, "again");
    environment.setWhiteLevel(1.5f);
    environment.setClamp(true);
    environment.setGamma(2.2f);
    environment.setBloom(true);
    environment.setBloomThr(3.5f);
    environment.setBloomRad(4.5f);
    environment.setToneAmt(5.5f);
}

RLCameraData* camera()
{
    auto* const camera = new RLCameraData;
    const float rotation[] = {1, 2, 3};
    const float translation[] = {4, 5, 6};
    camera->setRotation(rotation);
    camera->setTranslation(translation);
    camera->setTarget(7);
    camera->setFocalLength(35.5f);
    camera->setProjType(2);
    camera->setFocusDist(8.5f);
    camera->setFStop(2.75f);
    camera->setFrameWidth(640);
    camera->setFrameHeight(480);
    camera->setRDOF(true);
    camera->setPreviewRenderQuality("draft");
    camera->setFullRenderQuality("best");
    camera->setImageFormat("png");
    return camera;
}

RLSceneData* scene()
{
    auto* const scene = new RLSceneData;
    scene->setEnvironmentImage("sky.hdr");
    scene->setEnvVisibility(true);
    scene->setBackPlateImage("plate.png");
    scene->setBkplVisibility(true);
    scene->setFloor("XY");
    scene->setFloorFlip(true);
    scene->setFloorVisibility(false);
    scene->setFloorType("reflect");
    return scene;
}

std::unique_ptr<RLData> settings(std::uint32_t version = 10)
{
    auto data = std::make_unique<RLData>();
    data->setStorageVersion(version);
    fillMask(data->getMaskMaterials().emplace_back());
    fillEnvironment(data->getEnvironmentMaterial());
    data->setCameraData(camera());
    data->setSceneData(scene());
    return data;
}

std::string textOf(const RLData& data, const std::optional<tool::ViewsFolder>& views = std::nullopt)
{
    std::ostringstream out;
    tool::writeShaderDataText(data, views, out);
    return out.str();
}

json jsonOf(const RLData& data, const std::optional<tool::ViewsFolder>& views = std::nullopt)
{
    std::ostringstream out;
    tool::writeShaderDataJson(data, views, out);
    return json::parse(out.str());
}

TEST(ShaderDataText, shows_every_field)
{
    EXPECT_EQ(textOf(*settings(), kViews),
              "version: 10\n"
              "mask materials: 1\n"
              "  1.\n"
              "    maskName              \"name\"\n"
              "    maskType              \"type\"\n"
              "    maskPTag              \"ptag\"\n"
              "    materialName          \"material\"\n"
              "    diffuseColor          0.1 0.25 0.5 0.75\n"
              "    materialAtRoot        yes\n"
              "    channels: 2\n"
              "      \"gloss\" 0.3\n"
              "      \"gloss\" -2.5\n"
              "    tags: 1\n"
              "      4000000000 \"tag \"a\" b\"\n"
              "environment\n"
              "  environmentName       \"studio\"\n"
              "  tags: 2\n"
              "    5 \"five\"\n"
              "    5 \"again\"\n"
              "  whiteLevel            1.5\n"
              "  clamp                 yes\n"
              "  gamma                 2.2\n"
              "  bloom                 yes\n"
              "  bloomThr              3.5\n"
              "  bloomRad              4.5\n"
              "  toneAmt               5.5\n"
              "camera\n"
              "  rotation              1 2 3\n"
              "  translation           4 5 6\n"
              "  target                7\n"
              "  focalLength           35.5\n"
              "  projType              2\n"
              "  focusDist             8.5\n"
              "  fStop                 2.75\n"
              "  frameWidth            640\n"
              "  frameHeight           480\n"
              "  RDOF                  yes\n"
              "  previewRenderQuality  \"draft\"\n"
              "  fullRenderQuality     \"best\"\n"
              "  imageFormat           \"png\"\n"
              "scene\n"
              "  environmentImage      \"sky.hdr\"\n"
              "  envVisibility         yes\n"
              "  backPlateImage        \"plate.png\"\n"
              "  bkplVisibility        yes\n"
              "  floor                 \"XY\"\n"
              "  floorFlip             yes\n"
              "  floorVisibility       no\n"
              "  floorType             \"reflect\"\n"
              "custom views: 2 in /home/u/Views\n"
              "  a.view\n"
              "  b .view\n");
}

TEST(ShaderDataText, of_a_new_record_is_short)
{
    EXPECT_EQ(textOf(RLData()),
              "version: 1\n"
              "mask materials: 0\n"
              "environment\n"
              "  environmentName       \"\"\n"
              "camera: none\n"
              "scene: none\n");
}

struct GateCase {
    const char* name;
    std::uint32_t since;
    std::vector<const char*> lines;
};
void PrintTo(const GateCase& row, std::ostream* out)
{
    *out << row.name;
}
const GateCase kGates[] = {
    {"mask_lists", 1, {"    channels: 2", "    tags: 1"}},
    {"environment_tags", 2, {"\n  tags: 2"}},
    {"camera_place", 3, {"rotation", "translation", "target"}},
    {"camera_lens", 4, {"focalLength", "projType"}},
    {"scene_images", 5, {"environmentImage", "envVisibility", "backPlateImage", "bkplVisibility"}},
    {"scene_floor", 7, {"floor  ", "floorFlip", "floorVisibility"}},
    {"environment_tones",
     8,
     {"whiteLevel", "clamp", "gamma", "bloom  ", "bloomThr", "bloomRad", "toneAmt"}},
    {"camera_output",
     8,
     {"focusDist", "fStop", "frameWidth", "frameHeight", "RDOF", "previewRenderQuality",
      "fullRenderQuality"}},
    {"image_format", 9, {"imageFormat"}},
    {"floor_type", 10, {"floorType"}},
};
class Gates : public testing::TestWithParam<GateCase> {};
TEST_P(Gates, HoldInTheText)
{
    for (const char* const line : GetParam().lines) {
        EXPECT_THAT(textOf(*settings(GetParam().since - 1)), Not(HasSubstr(line)));
        for (const std::uint32_t version : {GetParam().since, 10u, 0x80000000u})
            EXPECT_THAT(textOf(*settings(version)), HasSubstr(line)) << version;
    }
}
TEST_P(Gates, DoNotHideFieldsOfTheJson)
{
    json before = jsonOf(*settings(GetParam().since - 1));
    json after = jsonOf(*settings(10));
    EXPECT_EQ(before["storageVersion"], GetParam().since - 1);
    before.erase("storageVersion");
    after.erase("storageVersion");
    EXPECT_EQ(before, after);
}
INSTANTIATE_TEST_SUITE_P(Rows, Gates, testing::ValuesIn(kGates),
                         [](const auto& row) { return row.param.name; });

TEST(ShaderDataJson, has_every_field)
{
    EXPECT_EQ(jsonOf(*settings(), kViews), json::parse(R"({
        "storageVersion": 10,
        "maskMaterials": [{
            "maskName": "name", "maskType": "type", "maskPTag": "ptag", "materialName": "material",
            "diffuseColor": [0.1, 0.25, 0.5, 0.75], "materialAtRoot": true, "advMaterialIsSet": true,
            "floatChannels": [{"channelName": "gloss", "floatVal": 0.3}, {"channelName": "gloss", "floatVal": -2.5}],
            "stringTags": [{"tagID": 4000000000, "tag": "tag \"a\"\nb"}]}],
        "environmentMaterial": {
            "environmentName": "studio",
            "stringTags": [{"tagID": 5, "tag": "five"}, {"tagID": 5, "tag": "again"}],
            "whiteLevel": 1.5, "clamp": true, "gamma": 2.2, "bloom": true, "bloomThr": 3.5, "bloomRad": 4.5,
            "toneAmt": 5.5},
        "cameraData": {
            "rotation": [1.0, 2.0, 3.0], "translation": [4.0, 5.0, 6.0], "target": 7.0, "focalLength": 35.5,
            "projType": 2, "focusDist": 8.5, "fStop": 2.75, "frameWidth": 640, "frameHeight": 480, "RDOF": true,
            "previewRenderQuality": "draft", "fullRenderQuality": "best", "imageFormat": "png"},
        "sceneData": {
            "environmentImage": "sky.hdr", "envVisibility": true, "backPlateImage": "plate.png",
            "bkplVisibility": true, "floor": "XY", "floorFlip": true, "floorVisibility": false,
            "floorType": "reflect"},
        "customViews": {"folder": "/home/u/Views", "files": ["a.view", "b\n.view"]}})"));
}

TEST(ShaderDataJson, has_null_for_records_that_are_missing)
{
    const json report = jsonOf(RLData());
    EXPECT_EQ(report["storageVersion"], 1);
    EXPECT_EQ(report["maskMaterials"], json::array());
    for (const char* const record : {"cameraData", "sceneData", "customViews"})
        EXPECT_TRUE(report.at(record).is_null()) << record;
}

TEST(ShaderDataJson, lists_masks_in_their_order)
{
    auto data = settings();
    data->getMaskMaterials().emplace_back();
    data->getMaskMaterials().emplace_back().setMaskName("third");
    const json masks = jsonOf(*data)["maskMaterials"];
    ASSERT_EQ(masks.size(), 3u);
    EXPECT_EQ(masks[0]["maskName"], "name");
    EXPECT_EQ(masks[1]["floatChannels"], json::array());
    EXPECT_EQ(masks[2]["maskName"], "third");
}

// --- numbers and texts

TEST(ShaderDataNumbers, that_nobody_set_are_told)
{
    RLData data;
    data.setStorageVersion(10);
    data.setCameraData(new RLCameraData);
    const json report = jsonOf(data);
    for (const char* const field : {"whiteLevel", "gamma", "bloomThr", "bloomRad", "toneAmt"}) {
        EXPECT_EQ(report["environmentMaterial"][field], "unset") << field;
        std::string line = std::string("  ") + field;
        line.resize(24, ' ');
        EXPECT_THAT(textOf(data), HasSubstr(line + "unset\n"));
    }
    for (const char* const field : {"focalLength", "focusDist", "fStop"})
        EXPECT_EQ(report["cameraData"][field], "unset") << field;
    EXPECT_THAT(textOf(data), HasSubstr("  focalLength           unset\n"));
}

// Two values stand for none, each in its own fields; nothing near them does.
TEST(ShaderDataNumbers, that_only_look_unset_are_numbers)
{
    RLData data;
    data.setCameraData(new RLCameraData);
    data.getCameraData()->setFocalLength(-100000000.0f);
    data.getCameraData()->setFocusDist(std::numeric_limits<float>::lowest());
    data.getCameraData()->setTarget(-100000000.0f);
    data.getEnvironmentMaterial().setGamma(std::bit_cast<float>(0xCCBEBC21u));
    const json report = jsonOf(data);
    EXPECT_EQ(report["cameraData"]["focalLength"], -100000000.0);
    EXPECT_EQ(report["cameraData"]["focusDist"], -3.4028235e38);
    EXPECT_EQ(report["cameraData"]["target"], -100000000.0);
    EXPECT_EQ(report["environmentMaterial"]["gamma"], -100000008.0);
}

TEST(ShaderDataNumbers, that_are_not_finite_are_texts)
{
    auto data = settings();
    data->getCameraData()->setTarget(std::numeric_limits<float>::quiet_NaN());
    data->getMaskMaterials().front().addFloatChannel("far", std::numeric_limits<float>::infinity());
    EXPECT_EQ(jsonOf(*data)["cameraData"]["target"], "NaN");
    EXPECT_EQ(jsonOf(*data)["maskMaterials"][0]["floatChannels"][2]["floatVal"], "Infinity");
    EXPECT_THAT(textOf(*data), HasSubstr("  target                NaN\n"));
    EXPECT_THAT(textOf(*data), HasSubstr("      \"far\" Infinity\n"));
}

TEST(ShaderDataTexts, of_the_code_page_come_out_as_utf8)
{
    const int before = platform::ansiCodePage();
    ASSERT_TRUE(platform::setAnsiCodePage(1252));
    RLData data;
    data.getEnvironmentMaterial().setEnvironmentName("\xFC");
    const json report = jsonOf(data);
    const std::string text = textOf(data);
    platform::setAnsiCodePage(before);
    EXPECT_EQ(report["environmentMaterial"]["environmentName"], "\xC3\xBC");
    EXPECT_THAT(text, HasSubstr("\"\xC3\xBC\""));
}

TEST(ShaderDataTexts, that_are_none_have_replacement_characters)
{
    RLData data;
    data.getEnvironmentMaterial().setEnvironmentName("a\xFFz\x1B");
    EXPECT_EQ(jsonOf(data)["environmentMaterial"]["environmentName"], "a\xEF\xBF\xBDz\x1B");
    EXPECT_THAT(textOf(data), HasSubstr("\"a\xEF\xBF\xBDz \""));
}

}  // namespace
