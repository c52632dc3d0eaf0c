// From materials to the appearance of faces.
#include <gmock/gmock.h>

#include "tests/gltf/GltfBuilder.h"
#include "tests/gltf/GltfReading.h"

namespace gltf_tests {
namespace {

// What is read belongs to the document, so both are kept together.
struct Read {
    Folder folder;
    std::wstring path;
    ovdl::ReadOutcome outcome;

    explicit Read(const GltfBuilder& builder) : path(folder.write("model.glb", builder.glb()))
    {
        outcome = read(path);
    }
    const moVisualProperties_c& visual(int face = 0) const
    {
        const auto& faces = firstPart(*outcome.document).bodies.at(0)->faces;
        return *faces.at(face)->getFaceVizProp(0);
    }
    const uoMaterialProperties& material() const { return *visual().materialProps; }
    const uoRVAppearanceProperties& render() const { return *material().rvAppearance; }
};

GltfBuilder withMaterial(const Json& material)
{
    GltfBuilder builder;
    Json primitive = builder.triangle();
    primitive["material"] = builder.add("materials", material);
    builder.addNode({{"mesh", builder.addMesh(primitive)}});
    return builder;
}

Json metallic(const Json& values)
{
    return {{"pbrMetallicRoughness", values}};
}

struct NumberCase {
    const char* name;
    Json material;
    double specular;
    double shininess;
    double transparency;
    double emission;
};
Json extended(const char* extension, const Json& values, Json material = Json::object())
{
    material["extensions"][extension] = values;
    return material;
}
const NumberCase kNumbers[] = {
    {"nothing_said_is_rough_metal", Json::object(), 0, 0, 0, 0},
    {"polished_metal", metallic({{"metallicFactor", 1}, {"roughnessFactor", 0}}), 1, 1, 0, 0},
    {"polished_plastic", metallic({{"metallicFactor", 0}, {"roughnessFactor", 0}}), 0.04, 1, 0, 0},
    {"half_rough_metal", metallic({{"metallicFactor", 1}, {"roughnessFactor", 0.5}}), 0.5, 0.5, 0, 0},
    {"half_a_metal", metallic({{"metallicFactor", 0.5}, {"roughnessFactor", 0}}), 0.52, 1, 0, 0},
    {"factors_out_of_range_are_cut", metallic({{"metallicFactor", 7}, {"roughnessFactor", -3}}), 1, 1, 0,
     0},
    {"alpha_of_an_opaque_material_is_nothing", metallic({{"baseColorFactor", {1, 1, 1, 0.25}}}), 0, 0, 0,
     0},
    {"alpha_that_blends",
     {{"alphaMode", "BLEND"}, {"pbrMetallicRoughness", {{"baseColorFactor", {1, 1, 1, 0.25}}}}},
     0,
     0,
     0.75,
     0},
    {"alpha_below_the_cutoff",
     {{"alphaMode", "MASK"}, {"pbrMetallicRoughness", {{"baseColorFactor", {1, 1, 1, 0.25}}}}},
     0,
     0,
     1,
     0},
    {"alpha_at_the_cutoff",
     {{"alphaMode", "MASK"},
      {"alphaCutoff", 0.25},
      {"pbrMetallicRoughness", {{"baseColorFactor", {1, 1, 1, 0.25}}}}},
     0,
     0,
     0,
     0},
    {"transmission", extended("KHR_materials_transmission", {{"transmissionFactor", 0.75}}), 0, 0, 0.75, 0},
    {"transmission_and_alpha",
     extended("KHR_materials_transmission", {{"transmissionFactor", 0.5}},
              {{"alphaMode", "BLEND"}, {"pbrMetallicRoughness", {{"baseColorFactor", {1, 1, 1, 0.5}}}}}),
     0, 0, 0.75, 0},
    {"emission_is_its_strongest_colour", {{"emissiveFactor", {0.125, 0.5, 0.25}}}, 0, 0, 0, 0.5},
    {"emission_with_a_strength",
     extended("KHR_materials_emissive_strength", {{"emissiveStrength", 0.5}},
              {{"emissiveFactor", {0.5, 0, 0}}}),
     0, 0, 0, 0.25},
    {"emission_is_cut_at_one",
     extended("KHR_materials_emissive_strength", {{"emissiveStrength", 100}},
              {{"emissiveFactor", {0.5, 0, 0}}}),
     0, 0, 0, 1},
    {"unlit_has_no_highlight",
     extended("KHR_materials_unlit", Json::object(), metallic({{"roughnessFactor", 0}})), 0, 0, 0, 0},
    {"the_older_workflow",
     extended("KHR_materials_pbrSpecularGlossiness",
              {{"specularFactor", {0.25, 0.5, 0}}, {"glossinessFactor", 0.5}}),
     0.25, 0.5, 0, 0},
    {"the_older_workflow_blends_too",
     extended("KHR_materials_pbrSpecularGlossiness",
              {{"diffuseFactor", {1, 1, 1, 0.25}}, {"glossinessFactor", 0}}, {{"alphaMode", "BLEND"}}),
     0, 0, 0.75, 0},
};

class MaterialNumbers : public testing::TestWithParam<NumberCase> {};

TEST_P(MaterialNumbers, AreThoseOfTheTable)
{
    const Read document(withMaterial(GetParam().material));
    ASSERT_EQ(document.outcome.kind, ovdl::ReadOutcome::kRead) << document.outcome.reason;
    const uoMaterialProperties& material = document.material();
    EXPECT_EQ(material.ambient, 0.5);
    EXPECT_EQ(material.diffuse, 1.0);
    EXPECT_DOUBLE_EQ(material.specular, GetParam().specular);
    EXPECT_DOUBLE_EQ(material.shininess, GetParam().shininess);
    EXPECT_DOUBLE_EQ(material.transparency, GetParam().transparency);
    EXPECT_DOUBLE_EQ(material.emission, GetParam().emission);
    EXPECT_FLOAT_EQ(document.render().shininess, static_cast<float>(GetParam().shininess));
    EXPECT_FLOAT_EQ(document.render().luminous, static_cast<float>(GetParam().emission));
}
INSTANTIATE_TEST_SUITE_P(Rows, MaterialNumbers, testing::ValuesIn(kNumbers),
                         [](const auto& row) { return row.param.name; });

struct ColourCase {
    const char* name;
    std::vector<double> factor;
    std::uint32_t packed;
};
const ColourCase kColours[] = {
    {"white", {1, 1, 1, 1}, 0x00FFFFFF},
    {"black", {0, 0, 0, 1}, 0x00000000},
    {"red_is_the_low_byte", {1, 0, 0, 1}, 0x000000FF},
    {"green_is_the_middle_byte", {0, 1, 0, 1}, 0x0000FF00},
    {"blue_is_the_high_byte", {0, 0, 1, 1}, 0x00FF0000},
    {"middle_grey_of_light_is_a_bright_one_on_a_screen", {0.5, 0.5, 0.5, 1}, 0x00BCBCBC},
    {"middle_grey_of_a_screen_is_a_dark_one_of_light", {0.2158605, 0.2158605, 0.2158605, 1}, 0x00808080},
    {"near_black_is_in_the_straight_part", {0.002, 0.002, 0.002, 1}, 0x00070707},
    {"out_of_range_is_cut", {-1, 2, 1, 1}, 0x00FFFF00},
};

class MaterialColours : public testing::TestWithParam<ColourCase> {};

TEST_P(MaterialColours, AreThoseOfAScreen)
{
    const Read document(withMaterial(metallic({{"baseColorFactor", GetParam().factor}})));
    EXPECT_EQ(document.visual().colorRef, GetParam().packed);
    EXPECT_EQ(document.render().colorRef, GetParam().packed);
    EXPECT_EQ(document.render().secondColorRef, 0x00FFFFFFu);
}
INSTANTIATE_TEST_SUITE_P(Rows, MaterialColours, testing::ValuesIn(kColours),
                         [](const auto& row) { return row.param.name; });

TEST(MaterialColour, OfTheOlderWorkflowIsTheDiffuseOne)
{
    const Read document(
        withMaterial(extended("KHR_materials_pbrSpecularGlossiness", {{"diffuseFactor", {1, 0, 0, 1}}},
                              metallic({{"baseColorFactor", {0, 1, 0, 1}}}))));
    EXPECT_EQ(document.visual().colorRef, 0x000000FFu);
}

TEST(MaterialColour, OfTheLightThatASurfaceGivesIsTheSecondOne)
{
    const Read document(withMaterial({{"emissiveFactor", {0, 1, 0}}}));
    EXPECT_EQ(document.render().secondColorRef, 0x0000FF00u);
}

TEST(Appearance, IsAFacesOwn)
{
    const Read document(withMaterial({{"name", "Gr\xC3\xBCn"}}));
    const moVisualProperties_c& visual = document.visual();
    EXPECT_EQ(visual.activeFlag, 1);
    EXPECT_EQ(visual.inheritFlag, 0);
    EXPECT_EQ(visual.visualFlag, 0);
    EXPECT_EQ(visual.visualName, L"Gr\xFCn");
    EXPECT_EQ(visual.materialFileName, L"");
    EXPECT_EQ(visual.materialProps->idName, L"Gr\xFCn");
    EXPECT_EQ(visual.materialProps->userName, L"Gr\xFCn");
    EXPECT_EQ(visual.materialProps->textureProperties, nullptr);
    const uoRVAppearanceProperties& render = document.render();
    EXPECT_EQ(render.mappingType, 1);
    EXPECT_EQ(render.shaderName, L"");
    EXPECT_EQ(render.filename, L"");
    EXPECT_EQ(render.index, -1);
    EXPECT_EQ(render.flags, 0u);
    EXPECT_EQ(render.unitLevel, 1.0f);
    EXPECT_EQ(firstFace(*document.outcome.document).getVizPropMode(0), VizPropMode_none);
}

TEST(Appearance, WithoutAMaterialIsTheFormatsOwnWhite)
{
    GltfBuilder builder;
    builder.addNode({{"mesh", builder.triangleMesh()}});
    const Read document(builder);
    EXPECT_EQ(document.visual().colorRef, 0x00FFFFFFu);
    EXPECT_EQ(document.visual().activeFlag, 1);
    EXPECT_EQ(document.visual().visualName, L"");
    EXPECT_EQ(document.material().transparency, 0.0);
}

TEST(Appearance, OfOneMaterialIsOneRecord)
{
    GltfBuilder builder;
    builder.add("materials", {{"name", "a"}});
    builder.add("materials", {{"name", "b"}});
    Json mesh;
    for (const int material : {0, 1, 0, -1, -1}) {
        Json primitive = builder.triangle();
        if (material >= 0)
            primitive["material"] = material;
        mesh["primitives"].push_back(primitive);
    }
    builder.addNode({{"mesh", builder.add("meshes", mesh)}});
    const Read document(builder);
    EXPECT_EQ(&document.visual(0), &document.visual(2));
    EXPECT_EQ(&document.visual(3), &document.visual(4));
    EXPECT_NE(&document.visual(0), &document.visual(1));
    EXPECT_NE(&document.visual(0), &document.visual(3));
}

// --------------------------------------------------------------------------------------- textures

GltfBuilder withTexture(const Json& image, const Json& use = {{"index", 0}})
{
    GltfBuilder builder;
    builder.add("images", {{"uri", "unused.png"}});
    builder.add("images", image);
    builder.add("textures", {{"source", 1}});
    Json primitive = builder.triangle();
    primitive["attributes"]["TEXCOORD_0"] = builder.addValues<float>({0, 0, 1, 0, 0, 1}, "VEC2");
    primitive["material"] = builder.add("materials", metallic({{"baseColorTexture", use}}));
    builder.addNode({{"mesh", builder.addMesh(primitive)}});
    return builder;
}

TEST(Textures, LieByTheVerticesOwnCoordinates)
{
    const Read document(withTexture({{"uri", "a.png"}}));
    const uoRVAppearanceProperties& render = document.render();
    EXPECT_EQ(render.mappingType, 0);
    EXPECT_THAT(render.uDirection, testing::ElementsAre(1.0f, 0.0f, 0.0f));
    EXPECT_THAT(render.vDirection, testing::ElementsAre(0.0f, 1.0f, 0.0f));
    EXPECT_THAT(render.origin, testing::ElementsAre(0.0f, 0.0f, 0.0f));
    EXPECT_EQ(render.mappingScalar, 1.0f);
    EXPECT_EQ(render.shaderName, L"texture");
    ASSERT_NE(document.material().textureProperties, nullptr);
    uoMaterialTextureProperties& texture = *document.material().textureProperties;
    EXPECT_EQ(texture.getTextureScale(0), 1.0);
    EXPECT_EQ(texture.getTextureScale(1), 1.0);
    EXPECT_EQ(texture.getTextureAngle(), 0.0);
    EXPECT_EQ(texture.getTextureTransX(), 0.0);
    EXPECT_EQ(texture.getTextureTransY(), 0.0);
    double x = 0;
    double y = 0;
    double z = 0;
    ASSERT_TRUE(texture.getTextureDir(0, x, y, z));
    EXPECT_THAT((std::vector<double>{x, y, z}), testing::ElementsAre(1, 0, 0));
    ASSERT_TRUE(texture.getTextureDir(1, x, y, z));
    EXPECT_THAT((std::vector<double>{x, y, z}), testing::ElementsAre(0, 1, 0));
}

TEST(Textures, BesideTheDocumentAreNamedByTheirPath)
{
    const Read document(withTexture({{"uri", "maps/my%20wood.png"}}));
    EXPECT_EQ(document.material().textureProperties->filename, document.folder.path("maps/my wood.png"));
}

TEST(Textures, InTheDocumentAreNamedByTheirNumber)
{
    for (const Json& image : {Json{{"uri", "data:image/png;base64,AAAA"}},
                              Json{{"bufferView", 0}, {"mimeType", "image/png"}}}) {
        const Read document(withTexture(image));
        ASSERT_EQ(document.outcome.kind, ovdl::ReadOutcome::kRead) << document.outcome.reason;
        EXPECT_EQ(document.material().textureProperties->filename, document.path + L"#image1");
    }
}

TEST(Textures, OutsideTheDocumentsFolderAreLeftOut)
{
    for (const char* uri : {"../a.png", "/etc/a.png", "http://example.com/a.png", "a\\b.png"}) {
        const Read document(withTexture({{"uri", uri}}));
        ASSERT_EQ(document.outcome.kind, ovdl::ReadOutcome::kRead) << "geometry is not lost for an image";
        EXPECT_EQ(document.material().textureProperties, nullptr) << uri;
        EXPECT_EQ(document.render().mappingType, 1);
    }
}

TEST(Textures, WithoutAnImageAreLeftOut)
{
    GltfBuilder builder = withTexture({{"uri", "a.png"}});
    builder.json["textures"][0] = Json::object();
    EXPECT_EQ(Read(builder).material().textureProperties, nullptr);
}

TEST(Textures, OfTheOlderWorkflowAreTheDiffuseOnes)
{
    GltfBuilder builder = withTexture({{"uri", "a.png"}});
    builder.json["materials"][0] =
        extended("KHR_materials_pbrSpecularGlossiness", {{"diffuseTexture", {{"index", 0}}}});
    const Read document(builder);
    ASSERT_NE(document.material().textureProperties, nullptr);
    EXPECT_EQ(document.material().textureProperties->filename, document.folder.path("a.png"));
}

TEST(Textures, TakeOverTheirTransform)
{
    Json use = {{"index", 0}};
    use["extensions"]["KHR_texture_transform"] = {
        {"offset", {0.25, 0.5}}, {"rotation", 1.5707963267948966}, {"scale", {4, 0}}};
    const Read document(withTexture({{"uri", "a.png"}}, use));
    ASSERT_EQ(document.outcome.kind, ovdl::ReadOutcome::kRead) << document.outcome.reason;
    const uoMaterialTextureProperties& texture = *document.material().textureProperties;
    EXPECT_EQ(texture.scale[0], 0.25);
    EXPECT_EQ(texture.scale[1], 1.0) << "nothing is divided by zero";
    EXPECT_DOUBLE_EQ(texture.angle, 90.0);
    EXPECT_EQ(texture.transX, 0.25);
    EXPECT_EQ(texture.transY, 0.5);
}

}  // namespace
}  // namespace gltf_tests
