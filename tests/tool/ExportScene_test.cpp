// Lights and placement tracks in exported files. Cameras of viewers and the Khronos validator read
// them by the same rules, which stand in the documents named in the headers.
#include <gmock/gmock.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <memory>
#include <nlohmann/json.hpp>
#include <numbers>
#include <sstream>
#include <vector>

#include "Models.h"
#include "raylume/platform/Text.h"
#include "tools/GltfExport.h"

namespace {

using nlohmann::json;
using testing::ElementsAre;
using tool_test::FaceData;
using tool_test::ModelBuilder;
using tool_test::triangle;

constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();

tool::GltfDocument documentOf(const dlModel& model)
{
    return tool::exportModel(model, [] { return false; });
}

json jsonOf(const dlModel& model)
{
    return json::parse(documentOf(model).json);
}

dlLight lightOf(int type)
{
    dlLight light;
    light.lightType = type;
    light.name = L"L\u00e4mp";
    light.factorA = 2.5f;
    light.colour[0] = 0.25f;
    light.valueF = 7;
    light.shapeValue = 1;
    light.valueD = 0.5f;
    light.position[0] = 1;
    light.position[2] = 3;
    return light;
}

std::unique_ptr<dlModel> modelWith(const dlLight& light)
{
    auto model = std::make_unique<dlModel>();
    model->lightCount = 1;
    model->lights[0] = light;
    return model;
}

json onlyLight(const json& file)
{
    EXPECT_EQ(file["extensionsUsed"], json({"KHR_lights_punctual"}));
    EXPECT_EQ(file["extensions"]["KHR_lights_punctual"]["lights"].size(), 1u);
    EXPECT_EQ(file["nodes"][0]["extensions"]["KHR_lights_punctual"]["light"], 0);
    EXPECT_EQ(file["scenes"][0]["nodes"], json({0}));
    return file["extensions"]["KHR_lights_punctual"]["lights"][0];
}

std::vector<double> turned(const json& quaternion, std::vector<double> v)
{
    const double x = quaternion[0], y = quaternion[1], z = quaternion[2], w = quaternion[3];
    const double t[3] = {2 * (y * v[2] - z * v[1]), 2 * (z * v[0] - x * v[2]), 2 * (x * v[1] - y * v[0])};
    return {v[0] + w * t[0] + y * t[2] - z * t[1], v[1] + w * t[1] + z * t[0] - x * t[2],
            v[2] + w * t[2] + x * t[1] - y * t[0]};
}

TEST(ExportedLights, positioned_ones_are_points)
{
    const json file = jsonOf(*modelWith(lightOf(3)));
    const json light = onlyLight(file);
    EXPECT_EQ(light["type"], "point");
    EXPECT_EQ(light["name"], "L\xC3\xA4mp");
    EXPECT_EQ(light["intensity"], 2.5);
    EXPECT_EQ(light["range"], 7.0);
    EXPECT_EQ(light["color"], json({0.25, 1.0, 1.0}));
    EXPECT_FALSE(light.contains("spot"));
    EXPECT_EQ(file["nodes"][0]["translation"], json({1.0, 0.0, 3.0}));
    EXPECT_FALSE(file["nodes"][0].contains("rotation"));
}

TEST(ExportedLights, aimed_ones_are_spots_of_half_the_cones)
{
    dlLight source = lightOf(2);
    source.rotation[0] = 0.3f;
    source.rotation[1] = -0.4f;
    source.rotation[2] = 0.5f;
    const json file = jsonOf(*modelWith(source));
    const json light = onlyLight(file);
    EXPECT_EQ(light["type"], "spot");
    EXPECT_EQ(light["spot"]["outerConeAngle"], 0.5);
    EXPECT_EQ(light["spot"]["innerConeAngle"], 0.25);
    const auto looks = turned(file["nodes"][0]["rotation"], {0, 0, -1});
    // Rz Ry Rx of minus z, by hand.
    const double x = 0.3f, y = -0.4f, z = 0.5f;
    const double a = -std::sin(y) * std::cos(x), b = std::sin(x);
    EXPECT_NEAR(looks[0], std::cos(z) * a - std::sin(z) * b, 1e-12);
    EXPECT_NEAR(looks[1], std::sin(z) * a + std::cos(z) * b, 1e-12);
    EXPECT_NEAR(looks[2], -std::cos(y) * std::cos(x), 1e-12);
}

TEST(ExportedLights, the_sun_and_directional_ones_have_no_place_and_no_range)
{
    for (const int type : {4, 6}) {
        const json file = jsonOf(*modelWith(lightOf(type)));
        EXPECT_EQ(onlyLight(file)["type"], "directional");
        EXPECT_FALSE(onlyLight(file).contains("range"));
        EXPECT_FALSE(file["nodes"][0].contains("translation"));
        EXPECT_TRUE(file["nodes"][0].contains("rotation"));
    }
}

TEST(ExportedLights, cones_stay_within_what_the_format_allows)
{
    dlLight source = lightOf(2);
    source.shapeValue = 9;
    source.valueD = 9;
    const json wide = onlyLight(jsonOf(*modelWith(source)))["spot"];
    EXPECT_LE(wide["outerConeAngle"].get<double>(), std::numbers::pi / 2);
    EXPECT_LT(wide["innerConeAngle"], wide["outerConeAngle"]);
    source.shapeValue = kNaN;
    source.valueD = kNaN;
    const json odd = onlyLight(jsonOf(*modelWith(source)))["spot"];
    EXPECT_GT(odd["outerConeAngle"], 0);
    EXPECT_EQ(odd["innerConeAngle"], 0.0);
}

TEST(ExportedLights, one_that_is_switched_off_shines_with_nothing)
{
    dlLight source = lightOf(3);
    source.enabled = false;
    const json light = onlyLight(jsonOf(*modelWith(source)));
    EXPECT_EQ(light["intensity"], 0.0);
    EXPECT_EQ(light["extras"]["intensity"], 2.5);
}

TEST(ExportedLights, without_a_place_or_of_another_type_are_counted)
{
    dlLight source = lightOf(3);
    source.position[1] = kNaN;
    tool::GltfDocument document = documentOf(*modelWith(source));
    EXPECT_EQ(document.notes.lightsWithoutPlace, 1);
    EXPECT_FALSE(json::parse(document.json).contains("nodes"));
    document = documentOf(*modelWith(lightOf(5)));
    EXPECT_EQ(document.notes.lightsOfOtherTypes, 1);
    EXPECT_FALSE(json::parse(document.json).contains("extensionsUsed"));
}

TEST(ExportedLights, odd_numbers_become_allowed_ones)
{
    dlLight source = lightOf(3);
    source.factorA = kNaN;
    source.valueF = kNaN;
    source.colour[0] = kNaN;
    source.colour[1] = 7;
    const json light = onlyLight(jsonOf(*modelWith(source)));
    EXPECT_EQ(light["intensity"], 1.0);
    EXPECT_FALSE(light.contains("range"));
    EXPECT_EQ(light["color"], json({0.0, 1.0, 1.0}));
}

// ------------------------------------------------------------------------------------- placements

constexpr char kName[] = "a-1@t";

std::unique_ptr<dlModel> movable()
{
    ModelBuilder builder;
    dlPart& part = builder.part({triangle()});
    return ModelBuilder::withTree(builder.instance(kName, &part).build());
}

dlTransformKey keyAt(double x, double angle = 0)
{
    dlTransformKey key;
    key.matrix[0] = key.matrix[5] = std::cos(angle);
    key.matrix[1] = std::sin(angle);
    key.matrix[4] = -std::sin(angle);
    key.matrix[10] = key.matrix[15] = 1;
    key.matrix[12] = x;
    return key;
}

dlAnimTrackSet& tracksOf(dlModel& model, const char* name = kName)
{
    return model.animationTracks[platform::widen(name)];
}

std::vector<float> floatsOf(const tool::GltfDocument& document, const json& file, int accessor)
{
    std::ostringstream stream;
    tool::writeGlb(document, stream);
    const std::string bytes = stream.str();
    const json& a = file["accessors"][accessor];
    const json& view = file["bufferViews"][a["bufferView"].get<int>()];
    const std::size_t binary = 12 + 8 + (document.json.size() + 3) / 4 * 4 + 8;
    const std::size_t offset =
        binary + view["byteOffset"].get<std::size_t>() + a["byteOffset"].get<std::size_t>();
    const std::string type = a["type"];
    std::vector<float> values(a["count"].get<std::size_t>() * (type == "SCALAR" ? 1 : type.back() - '0'));
    std::memcpy(values.data(), bytes.data() + offset, values.size() * sizeof(float));
    return values;
}

std::vector<float> samplesOf(const dlModel& model, const char* path, const char* end)
{
    const tool::GltfDocument document = documentOf(model);
    const json file = json::parse(document.json);
    for (const json& channel : file["animations"][0]["channels"])
        if (channel["target"]["path"] == path) {
            const json& sampler = file["animations"][0]["samplers"][channel["sampler"].get<int>()];
            return floatsOf(document, file, sampler[end]);
        }
    return {};
}

TEST(ExportedAnimation, is_none_without_tracks)
{
    EXPECT_FALSE(jsonOf(*movable()).contains("animations"));
}

TEST(ExportedAnimation, moves_the_node_of_the_instance_that_has_the_name)
{
    const auto model = movable();
    tracksOf(*model).transforms = {{1.0, keyAt(5)}, {2.5, keyAt(6)}};
    const json file = jsonOf(*model);
    ASSERT_EQ(file["animations"].size(), 1u);
    ASSERT_EQ(file["animations"][0]["channels"].size(), 3u);
    for (const json& channel : file["animations"][0]["channels"]) {
        EXPECT_EQ(channel["target"]["node"], 0);
    }
    EXPECT_FALSE(file["nodes"][0].contains("matrix"));
    EXPECT_THAT(samplesOf(*model, "translation", "input"), ElementsAre(1.0f, 2.5f));
    EXPECT_THAT(samplesOf(*model, "translation", "output"), ElementsAre(5, 0, 0, 6, 0, 0));
    EXPECT_THAT(samplesOf(*model, "scale", "output"), ElementsAre(1, 1, 1, 1, 1, 1));
}

TEST(ExportedAnimation, has_the_bounds_of_its_times)
{
    const auto model = movable();
    tracksOf(*model).transforms = {{1.0, keyAt(5)}, {2.5, keyAt(6)}};
    const json file = jsonOf(*model);
    const json& input = file["accessors"][file["animations"][0]["samplers"][0]["input"].get<int>()];
    EXPECT_EQ(input["min"], json({1.0}));
    EXPECT_EQ(input["max"], json({2.5}));
}

TEST(ExportedAnimation, turns_the_short_way)
{
    const auto model = movable();
    std::map<double, dlTransformKey> keys;
    for (int i = 0; i <= 16; ++i)
        keys[i] = keyAt(0, i * 0.5);
    tracksOf(*model).transforms = keys;
    const auto rotations = samplesOf(*model, "rotation", "output");
    ASSERT_EQ(rotations.size(), 17u * 4);
    for (std::size_t i = 4; i < rotations.size(); i += 4) {
        double cosine = 0;
        for (std::size_t j = 0; j < 4; ++j)
            cosine += rotations[i + j] * rotations[i + j - 4];
        EXPECT_NEAR(cosine, std::cos(0.25), 1e-6);
    }
}

TEST(ExportedAnimation, starts_no_earlier_than_zero)
{
    const auto model = movable();
    tracksOf(*model).transforms = {{-2.0, keyAt(1)}, {1.0, keyAt(2)}};
    tracksOf(*model, "nobody").transforms = {{-50.0, keyAt(1)}};
    EXPECT_THAT(samplesOf(*model, "translation", "input"), ElementsAre(0.0f, 3.0f));
}

TEST(ExportedAnimation, leaves_out_keys_that_the_format_cannot_hold)
{
    const auto model = movable();
    dlTransformKey sheared = keyAt(2), infinite = keyAt(3);
    sheared.matrix[4] = 0.5;
    infinite.matrix[12] = std::numeric_limits<double>::infinity();
    tracksOf(*model).transforms = {
        {1.0, keyAt(1)}, {1.0 + 1e-12, keyAt(9)}, {2.0, sheared}, {3.0, infinite}, {4.0, keyAt(4)}};
    EXPECT_THAT(samplesOf(*model, "translation", "input"), ElementsAre(1.0f, 4.0f));
    EXPECT_EQ(documentOf(*model).notes.placementKeysLeftOut, 3);
}

TEST(ExportedAnimation, leaves_other_tracks_and_other_names_alone)
{
    const auto model = movable();
    tracksOf(*model).visualStates[1.0];
    tracksOf(*model, "b-1@t").transforms = {{1.0, keyAt(5)}};
    EXPECT_FALSE(jsonOf(*model).contains("animations"));
}

TEST(ExportedAnimation, needs_an_instance_that_stands_unsheared)
{
    const auto model = movable();
    model->instances[0].xform.m[4] = 0.5f;
    tracksOf(*model).transforms = {{1.0, keyAt(5)}, {2.0, keyAt(6)}};
    EXPECT_FALSE(jsonOf(*model).contains("animations"));
    EXPECT_EQ(documentOf(*model).notes.placementKeysLeftOut, 2);
    model->instances[0].xform.m[12] = kNaN;
    EXPECT_EQ(documentOf(*model).notes.placementKeysLeftOut, 2);
}

TEST(ExportedAnimation, binary_part_is_as_long_as_told)
{
    const auto model = movable();
    tracksOf(*model).transforms = {{1.0, keyAt(5)}};
    const tool::GltfDocument document = documentOf(*model);
    std::ostringstream stream;
    tool::writeGlb(document, stream);
    EXPECT_EQ(stream.str().size(), tool::glbSize(document));
}

}  // namespace
