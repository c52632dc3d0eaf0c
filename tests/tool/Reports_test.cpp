#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "Models.h"
#include "raylume/scene/dlDecal.h"
#include "tools/ComponentOrder.h"
#include "tools/GltfMaterial.h"
#include "tools/InfoReport.h"
#include "tools/MaterialsReport.h"
#include "tools/TreeReport.h"
#include "tools/Values.h"

namespace {

using nlohmann::json;
using tool_test::ModelBuilder;
using tool_test::triangle;

std::unique_ptr<dlModel> treeModel()
{
    ModelBuilder builder;
    dlPart& part = builder.part({triangle()});
    dlPart& other = builder.part({triangle(), triangle()});
    auto model = builder.instance("robot-1@cell/arm-10@robot/bolt-1@arm", &part)
                     .instance("robot-1@cell/arm-2@robot/bolt-1@arm", &part)
                     .instance("robot-1@cell/arm-10@robot/nut-1@arm", &other)
                     .instance("table-1@cell", &other)
                     .build();
    model->instances[2].visible = 0;
    model->instances[3].configName = "long";
    model->modelName = "cell.gltf";
    return ModelBuilder::withTree(std::move(model));
}

std::string treeText(const dlModel& model, tool::DepthLimit limit)
{
    std::ostringstream out;
    tool::writeTreeText(model, limit, out);
    return out.str();
}

json treeJson(const dlModel& model, tool::DepthLimit limit)
{
    std::ostringstream out;
    tool::writeTreeJson(model, limit, out);
    return json::parse(out.str());
}

TEST(TreeText, ShowsSubassembliesAndInstancesInDocumentOrder)
{
    EXPECT_EQ(treeText(*treeModel(), {}),
              "cell  (4 instances)\n"
              "  robot-1@cell  (3 instances)\n"
              "    arm-10@robot  (2 instances)\n"
              "      bolt-1@arm  part \"<>bolt\"\n"
              "      nut-1@arm  part \"<>nut\"  hidden\n"
              "    arm-2@robot  (1 instance)\n"
              "      bolt-1@arm  part \"<>bolt\"\n"
              "  table-1@cell  part \"<>nut\"  configuration \"long\"\n");
}

TEST(TreeText, CountsWhatLiesBelowTheDepth)
{
    EXPECT_EQ(treeText(*treeModel(), 1),
              "cell  (4 instances)\n"
              "  robot-1@cell  (3 instances, 2 subassemblies, not shown)\n"
              "  table-1@cell  part \"<>nut\"  configuration \"long\"\n");
    EXPECT_EQ(treeText(*treeModel(), 0), "cell  (4 instances, 1 subassembly, not shown)\n");
    EXPECT_EQ(treeText(*treeModel(), 3), treeText(*treeModel(), {}));
}

TEST(TreeText, ShowsAModelWithoutInstances)
{
    auto model = ModelBuilder::withTree(ModelBuilder().build());
    model->modelName = "empty.glb";
    EXPECT_EQ(treeText(*model, {}), "empty.glb  (0 instances)\n");
    EXPECT_EQ(treeText(dlModel(), {}), "");
}

TEST(TreeText, WritesNamesOnOneLine)
{
    ModelBuilder builder;
    dlPart& part = builder.part({triangle()});
    const auto model = ModelBuilder::withTree(builder.instance("a\nb-1@t\xFF", &part).build());
    EXPECT_EQ(treeText(*model, {}), "t\xEF\xBF\xBD  (1 instance)\n  a b-1@t\xEF\xBF\xBD  part \"<>a b\"\n");
}

TEST(TreeJson, HasEveryFieldOfTheTree)
{
    const json root = treeJson(*treeModel(), {});
    EXPECT_EQ(root["kind"], "root");
    EXPECT_EQ(root["name"], "cell");
    EXPECT_EQ(root["path"], "");
    EXPECT_EQ(root["instanceCount"], 1);
    EXPECT_EQ(root["subtreeCount"], 4);
    EXPECT_EQ(root["childCount"], 1);
    EXPECT_EQ(root["cut"], false);
    ASSERT_EQ(root["components"].size(), 2u);
    const json& robot = root["components"][0];
    EXPECT_EQ(robot["kind"], "subassembly");
    EXPECT_EQ(robot["token"], "robot-1@cell");
    EXPECT_EQ(robot["name"], "robot");
    const json& arm = robot["components"][0];
    EXPECT_EQ(arm["path"], "robot-1@cell/arm-10@robot");
    ASSERT_EQ(arm["components"].size(), 2u);
    EXPECT_EQ(arm["components"][1], json::parse(R"({"kind":"instance","token":"nut-1@arm",
        "path":"robot-1@cell/arm-10@robot/nut-1@arm","part":"<>nut","partShortName":"nut",
        "configName":"","visible":0,"hidden":true})"));
    EXPECT_EQ(root["components"][1]["configName"], "long");
    EXPECT_EQ(root["components"][1]["hidden"], false);
}

TEST(TreeJson, CutsAtTheDepth)
{
    const json root = treeJson(*treeModel(), 1);
    const json& robot = root["components"][0];
    EXPECT_EQ(robot["cut"], true);
    EXPECT_EQ(robot["subtreeCount"], 3);
    EXPECT_EQ(robot["childCount"], 2);
    EXPECT_EQ(robot["components"], json::array());
    EXPECT_EQ(treeJson(*treeModel(), 0)["components"], json::array());
}

TEST(TreeReports, WorkForATreeDeeperThanTheStack)
{
    ModelBuilder builder;
    dlPart& part = builder.part({triangle()});
    builder.instance("leaf-1@t", &part);
    const auto model = ModelBuilder::withTree(builder.build());
    dlAssemblyNode* node = model->assemblyRoot;
    const int depth = 60000;
    for (int i = 0; i < depth; ++i) {
        auto* child = new dlAssemblyNode;
        child->parent = node;
        child->subtreeCount = 1;
        child->instances = new dlInstance*[0];
        node->children["n"] = child;
        node = child;
    }
    EXPECT_NE(treeText(*model, {}).find("[level 60000] n"), std::string::npos);
    std::ostringstream out;
    tool::writeTreeJson(*model, {}, out);
    const std::string text = out.str();
    EXPECT_EQ(std::count(text.begin(), text.end(), '{'), depth + 2);
    EXPECT_EQ(std::count(text.begin(), text.end(), '}'), depth + 2);
}

struct BaseCase {
    const char* name;
    const char* token;
    const char* base;
};
void PrintTo(const BaseCase& row, std::ostream* out)
{
    *out << row.name;
}
const BaseCase kBases[] = {
    {"the_name_stands_before_the_number", "arm-2@robot", "arm"},
    {"a_name_may_hold_dashes", "left-arm-12@robot", "left-arm"},
    {"the_first_at_sign_ends_the_name", "arm-2@robot-3@x", "arm"},
    {"without_an_owner_the_token_is_the_name", "arm-2", "arm-2"},
    {"without_a_number_the_token_is_the_name", "arm@robot", "arm@robot"},
    {"an_empty_name_keeps_the_token", "-1@robot", "-1@robot"},
    {"an_empty_token_stays_empty", "", ""},
};
class TokenBases : public testing::TestWithParam<BaseCase> {};
TEST_P(TokenBases, AreNames)
{
    EXPECT_EQ(tool::tokenBase(GetParam().token), GetParam().base);
}
INSTANTIATE_TEST_SUITE_P(Rows, TokenBases, testing::ValuesIn(kBases),
                         [](const auto& row) { return row.param.name; });

// ------------------------------------------------------------------------------------------- info

TEST(Counts, AreOverDistinctParts)
{
    auto model = treeModel();
    const tool::Counts counts = tool::countsOf(*model);
    EXPECT_EQ(counts.parts, 2);
    EXPECT_EQ(counts.bodies, 2);
    EXPECT_EQ(counts.faces, 3);
    EXPECT_EQ(counts.vertices, 9);
    EXPECT_EQ(counts.triangles, 3);
}

TEST(Counts, CountAPartUnderTwoKeysOnce)
{
    ModelBuilder builder;
    dlPart& part = builder.part({triangle()});
    auto model = builder.build();
    model->addDLPart(model.get(), &part, 3);
    EXPECT_EQ(tool::countsOf(*model).parts, 1);
    EXPECT_EQ(tool::countsOf(*model).triangles, 1);
    model->parts.erase(model.get());
}

tool::LoadedDocument loaded(std::unique_ptr<dlModel> model, tool::Outcome outcome)
{
    tool::LoadedDocument result;
    result.outcome = outcome;
    result.model = std::move(model);
    result.seconds = 0.25;
    return result;
}

json infoJson(const tool::LoadedDocument& document)
{
    std::ostringstream out;
    tool::writeInfoJson(document, out);
    return json::parse(out.str());
}

TEST(InfoJson, HasEveryFieldOfAModel)
{
    auto model = treeModel();
    model->documentVersion = 12000;
    model->versionGatePassed = true;
    model->updateSingletons();
    EXPECT_EQ(infoJson(loaded(std::move(model), tool::Outcome::kModel)), json::parse(R"({
        "outcome": "model", "modelName": "cell.gltf", "isPartDocument": false, "documentVersion": 12000,
        "versionGatePassed": true, "partCount": 2, "instanceCount": 4, "bodyCount": 2, "faceCount": 3,
        "vertexCount": 9, "triangleCount": 3, "lightCount": 0, "singletonCount": 2,
        "bbox": {"min": [0, 0, 0], "max": [1, 1, 0]}, "loadSeconds": 0.25})"));
}

TEST(InfoJson, HasTheModelOfARejectedDocument)
{
    auto model = std::make_unique<dlModel>();
    model->loadRejected = true;
    model->modelName = "bad.glb";
    auto document = loaded(std::move(model), tool::Outcome::kRejected);
    document.reason = "why";
    const json info = infoJson(document);
    EXPECT_EQ(info["outcome"], "rejected");
    EXPECT_EQ(info["reason"], "why");
    EXPECT_EQ(info["modelName"], "bad.glb");
    EXPECT_EQ(info["documentVersion"], 0xFFFFFFFFu);
    EXPECT_EQ(info["versionGatePassed"], false);
    EXPECT_EQ(info["bbox"], nullptr);
}

TEST(InfoJson, HasTheSameFieldsWithoutAModel)
{
    const json with = infoJson(loaded(std::make_unique<dlModel>(), tool::Outcome::kModel));
    const json without = infoJson(loaded(nullptr, tool::Outcome::kNone));
    EXPECT_EQ(without["outcome"], "none");
    EXPECT_EQ(without["loadSeconds"], 0.25);
    for (const auto& field : with.items()) {
        ASSERT_TRUE(without.contains(field.key())) << field.key();
        const bool isAboutTheLoad = field.key() == "outcome" || field.key() == "loadSeconds";
        EXPECT_EQ(without[field.key()].is_null(), !isAboutTheLoad) << field.key();
    }
}

TEST(InfoText, ShowsNameCountsAndBox)
{
    std::ostringstream out;
    tool::writeInfoText("a/cell.gltf", loaded(treeModel(), tool::Outcome::kModel), out);
    const std::string text = out.str();
    for (const char* line : {"document        a/cell.gltf\n", "outcome         model\n",
                             "kind            assembly\n", "instances       4\n", "triangles       3\n",
                             "box from        0 0 0 m\n", "box to          1 1 0 m\n"})
        EXPECT_NE(text.find(line), std::string::npos) << line << text;
}

// -------------------------------------------------------------------------------------- materials

bool never()
{
    return false;
}

json materialsJson(dlModel& model)
{
    std::ostringstream out;
    tool::ImageSearch images;
    tool::writeMaterialsJson(model, images, never, out);
    return json::parse(out.str());
}

std::string materialsText(dlModel& model)
{
    std::ostringstream out;
    tool::ImageSearch images;
    tool::writeMaterialsText(model, images, never, out);
    return out.str();
}

dlMaterial red()
{
    dlMaterial material;
    material.userName = "Red paint";
    material.transparency = 0.5f;
    return material;
}

TEST(MaterialsJson, CountsEqualAppearancesAtEveryLevel)
{
    auto model = treeModel();
    model->instances[0].material = new dlMaterial(red());
    dlPart& first = *model->instances[0].part;
    dlPart& second = *model->instances[2].part;
    first.material = red();
    second.bodies[0].material = new dlMaterial(red());
    second.bodies[0].faces[0].material = new dlMaterial(red());
    second.bodies[0].faces[1].material = new dlMaterial;
    const json result = materialsJson(*model);
    ASSERT_EQ(result["materials"].size(), 2u);
    const json& painted = result["materials"][0];
    EXPECT_EQ(painted["userName"], "Red paint");
    EXPECT_EQ(painted["color"], "#ff0000");
    EXPECT_EQ(painted["rgb"], json::parse("[1, 0, 0]"));
    EXPECT_EQ(painted["transparency"], 0.5);
    EXPECT_EQ(painted["uses"],
              json::parse(R"({"instance": 1, "part": 1, "body": 1, "face": 1, "decal": 0})"));
    EXPECT_EQ(result["materials"][1]["uses"]["face"], 1);
    EXPECT_EQ(result["without"], json::parse(R"({"instance": 3, "part": 1, "body": 1, "face": 1})"));
    EXPECT_EQ(result["textures"], json::array());
}

TEST(MaterialsJson, KeepsApartWhatDiffersInTheTextureOnly)
{
    auto model = treeModel();
    for (int i = 0; i < 2; ++i) {
        model->instances[i].material = new dlMaterial(red());
        model->instances[i].material->texture.filename = i ? L"a.png" : L"b.png";
    }
    EXPECT_EQ(materialsJson(*model)["materials"].size(), 2u);
}

TEST(MaterialsJson, LooksPastTheNamesOfAnimatedInstances)
{
    auto model = treeModel();
    for (int i = 0; i < 2; ++i) {
        model->instances[i].material = new dlMaterial(red());
        model->instances[i].material->reservedNameC = model->instances[i].name;
    }
    EXPECT_EQ(materialsJson(*model)["materials"].size(), 1u);
}

TEST(MaterialsJson, TellsWhichTexturesExist)
{
    const auto folder = std::filesystem::temp_directory_path() /
                        ("raylume-materials-" + std::to_string(std::hash<std::string>()(__FILE__)));
    std::filesystem::create_directories(folder);
    std::ofstream(folder / "wood.png") << "x";
    std::wstring backslashed = folder.wstring() + L"\\wood.png";
    auto model = treeModel();
    const std::wstring files[] = {backslashed, folder.wstring() + L"/none.png", folder.wstring(),
                                  L"cell.gltf#image12"};
    for (int i = 0; i < 4; ++i) {
        model->instances[i].material = new dlMaterial;
        model->instances[i].material->texture.filename = files[i];
    }
    model->instances[3].material->bumpFilename = (folder / "wood.png").string();
    const json textures = materialsJson(*model)["textures"];
    std::filesystem::remove_all(folder);
    ASSERT_EQ(textures.size(), 5u);
    EXPECT_EQ(textures[0]["file"], folder.string() + "\\wood.png");
    EXPECT_EQ(textures[0]["status"], "found");
    EXPECT_EQ(textures[1]["status"], "missing");
    EXPECT_EQ(textures[2]["status"], "found") << "the search takes folders too";
    EXPECT_EQ(textures[2]["readable"], false);
    EXPECT_EQ(textures[0]["readable"], false) << "one letter is no image";
    EXPECT_EQ(textures[3]["file"], "cell.gltf#image12");
    EXPECT_EQ(textures[3]["status"], "embedded");
    EXPECT_EQ(textures[4]["status"], "found");
    EXPECT_EQ(textures[4]["uses"], 1);
}

TEST(MaterialsJson, TakesOnlyNumberedImagesForEmbedded)
{
    auto model = treeModel();
    const wchar_t* files[] = {L"a#image", L"a#image1x", L"#image0", L"image1"};
    const char* statuses[] = {"missing", "missing", "embedded", "missing"};
    for (int i = 0; i < 4; ++i) {
        model->instances[i].material = new dlMaterial;
        model->instances[i].material->texture.filename = files[i];
    }
    const json textures = materialsJson(*model)["textures"];
    ASSERT_EQ(textures.size(), 4u);
    for (int i = 0; i < 4; ++i)
        EXPECT_EQ(textures[i]["status"], statuses[i]) << i;
}

TEST(MaterialsJson, CountsDecalsWithTheirMasks)
{
    auto model = treeModel();
    auto* decal = new dlDecal;
    decal->texture.filename = L"logo.png";
    decal->maskFilename = L"mask.png";
    model->instances[0].addDecal(decal);
    const json result = materialsJson(*model);
    ASSERT_EQ(result["materials"].size(), 1u);
    EXPECT_EQ(result["materials"][0]["uses"]["decal"], 1);
    EXPECT_EQ(result["materials"][0]["maskFile"], "mask.png");
    EXPECT_EQ(result["textures"].size(), 2u);
}

TEST(MaterialsJson, SurvivesNumbersThatAreNone)
{
    auto model = treeModel();
    model->instances[0].material = new dlMaterial;
    model->instances[0].material->transparency = std::numeric_limits<float>::quiet_NaN();
    model->instances[0].material->texture.scaleU = std::numeric_limits<float>::infinity();
    model->instances[0].material->color[1] = std::numeric_limits<float>::quiet_NaN();
    model->instances[0].material->color[2] = 7;
    model->instances[0].material->texture.filename = L"a\xD800\x7FFFFFFF";
    const json result = materialsJson(*model);
    EXPECT_EQ(result["materials"][0]["transparency"], "NaN");
    EXPECT_EQ(result["materials"][0]["texturePlacement"]["scaleU"], "Infinity");
    EXPECT_EQ(result["materials"][0]["color"], "#ff00ff");
    EXPECT_NE(materialsText(*model).find("transparency NaN"), std::string::npos);
}

TEST(MaterialsText, DescribesEachAppearanceOnce)
{
    auto model = treeModel();
    model->instances[0].material = new dlMaterial(red());
    model->instances[1].material = new dlMaterial(red());
    model->instances[1].part->bodies[0].faces[0].material = new dlMaterial(red());
    model->instances[3].material = new dlMaterial(red());
    model->instances[3].material->emission = 0.1f;
    model->instances[3].material->texture.filename = L"gone\\brick.png";
    EXPECT_EQ(materialsText(*model),
              "2 appearances\n"
              "  1. #ff0000 \"Red paint\"  transparency 0.5\n"
              "      on 2 instances, 1 face\n"
              "  2. #ff0000 \"Red paint\"  transparency 0.5  emission 0.1\n"
              "      on 1 instance\n"
              "      texture gone\\brick.png (missing)\n"
              "without one of their own: 1 instance, 2 parts, 2 bodies, 2 faces\n"
              "textures: 0 found, 1 missing, 0 embedded in the document\n"
              "  gone\\brick.png: missing\n"
              "      tried the stored path, the current folder, the document's folder\n");
}

TEST(MaterialsText, TellsOfTheSceneToo)
{
    auto model = treeModel();
    model->scene.environmentImage = "gone\\sky.hdr";
    EXPECT_NE(materialsText(*model).find("scene: environment gone\\sky.hdr (missing)\n"),
              std::string::npos);
    const json result = materialsJson(*model);
    EXPECT_EQ(result["scene"]["environmentImage"], "gone\\sky.hdr");
    EXPECT_EQ(result["scene"]["backPlateImage"], nullptr);
    EXPECT_EQ(result["textures"][0]["searchedAs"], "scene");
    EXPECT_EQ(result["textures"][0]["uses"], 1);
}

TEST(MaterialsJson, HasEveryPathThatWasTried)
{
    auto model = treeModel();
    model->instances[0].material = new dlMaterial;
    model->instances[0].material->texture.filename = L"gone\\brick.png";
    const json texture = materialsJson(*model)["textures"][0];
    EXPECT_EQ(texture["status"], "missing");
    EXPECT_EQ(texture["path"], nullptr);
    EXPECT_EQ(texture["readable"], nullptr);
    EXPECT_EQ(texture["width"], nullptr);
    EXPECT_EQ(texture["probeCount"], 3);
    EXPECT_EQ(texture["probes"],
              json::parse(R"([{"step": "storedPath", "path": "gone\\brick.png", "found": false},
                              {"step": "fileName", "path": "brick.png", "found": false},
                              {"step": "searchFolder", "path": "brick.png", "found": false}])"));
}

TEST(MaterialsReports, CanBeCancelledBeforeEachImage)
{
    auto model = treeModel();
    for (int i = 0; i < 2; ++i) {
        model->instances[i].material = new dlMaterial;
        model->instances[i].material->texture.filename = i ? L"a.png" : L"b.png";
    }
    tool::ImageSearch images;
    std::ostringstream out;
    int asked = 0;
    const auto atTheSecond = [&asked] { return ++asked == 2; };
    EXPECT_THROW(tool::writeMaterialsJson(*model, images, atTheSecond, out), std::runtime_error);
    EXPECT_EQ(out.str(), "");
}

// ---------------------------------------------------------------------------------- glTF materials

TEST(GltfMaterial, TurnsColoursIntoLinearFactors)
{
    dlMaterial material;
    material.color[0] = 1;
    material.color[1] = 128 / 255.0f;
    material.color[2] = 5 / 255.0f;
    const auto written = tool::gltfMaterial(material);
    const auto& factor = written["pbrMetallicRoughness"]["baseColorFactor"];
    EXPECT_EQ(factor[0], 1.0);
    EXPECT_NEAR(factor[1].get<double>(), 0.21586, 1e-5);
    EXPECT_NEAR(factor[2].get<double>(), 0.0015176, 1e-7);
    EXPECT_EQ(factor[3], 1.0);
    EXPECT_FALSE(written.contains("alphaMode"));
    EXPECT_FALSE(written.contains("emissiveFactor"));
    EXPECT_EQ(written["doubleSided"], true);
}

TEST(GltfMaterial, TurnsTransparencyIntoBlending)
{
    dlMaterial material;
    material.transparency = 0.25f;
    const auto written = tool::gltfMaterial(material);
    EXPECT_EQ(written["pbrMetallicRoughness"]["baseColorFactor"][3], 0.75);
    EXPECT_EQ(written["alphaMode"], "BLEND");
}

TEST(GltfMaterial, TurnsShininessIntoSmoothness)
{
    dlMaterial material;
    material.shininess = 0.75f;
    material.specular = 0.75f * 0.04f;
    auto pbr = tool::gltfMaterial(material)["pbrMetallicRoughness"];
    EXPECT_EQ(pbr["roughnessFactor"], 0.25);
    EXPECT_NEAR(pbr["metallicFactor"].get<double>(), 0, 1e-7);
    material.specular = 0.75f;
    EXPECT_EQ(tool::gltfMaterial(material)["pbrMetallicRoughness"]["metallicFactor"], 1.0);
    material.specular = 0.75f * 0.52f;
    pbr = tool::gltfMaterial(material)["pbrMetallicRoughness"];
    EXPECT_NEAR(pbr["metallicFactor"].get<double>(), 0.5, 1e-7);
}

struct EmissionCase {
    const char* name;
    std::array<float, 3> colour;
    std::uint32_t second;
    float emission;
    std::array<double, 3> factor;
};
void PrintTo(const EmissionCase& row, std::ostream* out)
{
    *out << row.name;
}
const EmissionCase kEmissions[] = {
    {"shines_in_its_own_colour", {1, 0, 0}, 0x00FFFFFF, 0.5f, {0.5, 0, 0}},
    {"the_top_byte_is_no_colour", {1, 0, 0}, 0xABFFFFFF, 0.5f, {0.5, 0, 0}},
    {"shines_in_the_second_colour", {1, 0, 0}, 0x0000FF00, 0.25f, {0, 0.25, 0}},
    {"black_shines_white", {0, 0, 0}, 0x00FFFFFF, 1.0f, {1, 1, 1}},
    {"the_strongest_part_has_the_strength", {0, 0, 0}, 0x00000080, 1.0f, {1, 0, 0}},
};
class Emissions : public testing::TestWithParam<EmissionCase> {};
TEST_P(Emissions, HaveColourAndStrength)
{
    dlMaterial material;
    std::copy_n(GetParam().colour.begin(), 3, material.color);
    material.secondColorRef = GetParam().second;
    material.emission = GetParam().emission;
    const auto written = tool::gltfMaterial(material);
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(written["emissiveFactor"][i], GetParam().factor[i]) << i;
}
INSTANTIATE_TEST_SUITE_P(Rows, Emissions, testing::ValuesIn(kEmissions),
                         [](const auto& row) { return row.param.name; });

TEST(GltfMaterial, IsDarkWithoutAColourToShineIn)
{
    dlMaterial material;
    material.secondColorRef = 0;
    material.emission = 1;
    EXPECT_FALSE(tool::gltfMaterial(material).contains("emissiveFactor"));
}

TEST(GltfMaterial, KeepsEveryFactorInRange)
{
    dlMaterial material;
    material.color[0] = -3;
    material.color[1] = std::numeric_limits<float>::quiet_NaN();
    material.color[2] = std::numeric_limits<float>::infinity();
    material.transparency = 40;
    material.emission = 9;
    material.shininess = std::numeric_limits<float>::quiet_NaN();
    const auto written = tool::gltfMaterial(material);
    EXPECT_EQ(written["pbrMetallicRoughness"]["baseColorFactor"],
              nlohmann::ordered_json::parse("[0.0,0.0,1.0,0.0]"));
    EXPECT_EQ(written["emissiveFactor"], nlohmann::ordered_json::parse("[0.0,0.0,1.0]"));
    EXPECT_EQ(written["pbrMetallicRoughness"]["roughnessFactor"], 1.0);
}

TEST(GltfMaterial, HasTheNameThatPeopleGave)
{
    dlMaterial material;
    EXPECT_FALSE(tool::gltfMaterial(material).contains("name"));
    material.appearanceName = "d";
    EXPECT_EQ(tool::gltfMaterial(material)["name"], "d");
    material.idName = "b";
    EXPECT_EQ(tool::gltfMaterial(material)["name"], "b");
    material.userName = "a\xFF";
    EXPECT_EQ(tool::gltfMaterial(material)["name"], "a\xEF\xBF\xBD");
}

TEST(IsUnset, IsTrueForAFreshMaterialOnly)
{
    EXPECT_TRUE(tool::isUnset(dlMaterial()));
    dlMaterial coloured;
    coloured.color[2] = 0.5f;
    EXPECT_FALSE(tool::isUnset(coloured));
    dlMaterial textured;
    textured.texture.filename = L"x";
    EXPECT_FALSE(tool::isUnset(textured));
    dlMaterial named;
    named.idName = "x";
    EXPECT_FALSE(tool::isUnset(named));
}

}  // namespace
