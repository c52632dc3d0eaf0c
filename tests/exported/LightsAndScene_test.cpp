// Lights and scene of whole documents, from the reader's records to the model's fields.
#include <gtest/gtest.h>

#include <bit>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "raylume/scene/dlModel.h"
#include "tests/platform/ScopedEnvironment.h"
#include "tests/reader/ReaderFixtures.h"

namespace {

using fixtures::Prepared;
using ovdl::PreparedDocument;

constexpr wchar_t kPath[] = L"folder/Lit.asm";
constexpr char kHostPath[] = "folder/Lit.asm";
constexpr std::int64_t kNewYear2021 = 1609459200;

moLight_c* light(PreparedDocument& document, int type)
{
    auto* made = document.own<moLight_c>();
    made->lightType = static_cast<LIGHT_TYPE>(type);
    made->lightIndex = type;
    made->sourceEnabled = 1;
    made->sourceVectorA[0] = 1;
    made->sourceVectorB[1] = 2;
    made->sourceVectorC[2] = 3;
    made->sourceShapeA = 0.25;
    made->sourceShapeB = 0.75;
    made->sourceHaze = 0.5;
    made->sourceStamp = std::bit_cast<std::uint64_t>(kNewYear2021);
    return made;
}

// One of each type, and a gap.
ovPointerArray<moLight_c>* lights(PreparedDocument& document)
{
    auto* array = document.own<ovPointerArray<moLight_c>>();
    *array = document.array<moLight_c>({light(document, 2), light(document, 3), nullptr, light(document, 4),
                                        light(document, 5), light(document, 6)});
    return array;
}

ovScene_c* sceneOf(PreparedDocument& document)
{
    auto* data = document.own<pwSceneData_c>();
    data->backgroundKind = 3;
    data->shadowFlag = 1;
    data->backgroundImages[0] = L"Q:\\gone\\Plate.BMP";
    auto* scene = document.own<ovScene_c>();
    scene->sceneData = data;
    scene->floorOrientation = 1;
    scene->floorVector = mgVector_c(1, 0, 0);
    return scene;
}

void light(OVDLDocument& holder, PreparedDocument& document)
{
    holder.lightData = lights(document);
    holder.sceneHolder = sceneOf(document);
}

std::unique_ptr<PreparedDocument> litPart()
{
    auto document = fixtures::emptyPart();
    light(*document->part, *document);
    return document;
}

std::unique_ptr<PreparedDocument> litAssembly()
{
    auto document = fixtures::emptyAssembly();
    light(*document->assembly, *document);
    return document;
}

std::unique_ptr<dlModel> load(std::unique_ptr<PreparedDocument> (*factory)())
{
    const Prepared prepared(kPath, factory);
    return std::unique_ptr<dlModel>(dlModel::ReadModel(kHostPath));
}

class WholeLightTable : public testing::TestWithParam<std::unique_ptr<PreparedDocument> (*)()> {};

TEST_P(WholeLightTable, IsThatOfTheDocument)
{
    const ScopedVariable zone("TZ", "XXX5");
    const auto model = load(GetParam());
    ASSERT_NE(model, nullptr);
    ASSERT_EQ(model->lightCount, 6);
    const int types[] = {2, 3, 4, 4, 5, 6};
    for (int i = 0; i < 6; ++i) {
        EXPECT_EQ(model->lights[i].lightType, types[i]) << i;
    }
    EXPECT_EQ(model->lights[0].shapeValue, 0.75f);
    EXPECT_EQ(model->lights[1].shapeValue, 0.25f);
    EXPECT_EQ(model->lights[2].name, L"");
    EXPECT_EQ(model->lights[3].direction[1], 2.0f);
    EXPECT_EQ(model->lights[4].position[0], 1.0f);
    EXPECT_EQ(model->lights[5].sunDay, 2020001.0f);
    EXPECT_EQ(model->lights[5].sunTime, 19.0f);
    EXPECT_EQ(model->lights[5].sunHaze, 5.0f);
    // From minus z to y is a right angle about x, which is the floor's direction here.
    EXPECT_FLOAT_EQ(model->lights[5].northAngle, 1.57079633f);
}

INSTANTIATE_TEST_SUITE_P(Kinds, WholeLightTable, testing::Values(&litPart, &litAssembly));

TEST(WholeScene, IsThatOfAPartDocument)
{
    const auto model = load(&litPart);
    ASSERT_NE(model, nullptr);
    EXPECT_EQ(model->scene.floorOrient, 1);
    EXPECT_EQ(model->scene.floorType, "shadow");
    EXPECT_TRUE(model->scene.bkplVisibility);
    EXPECT_EQ(model->scene.backPlateImage, "q:\\gone\\plate.bmp");
}

TEST(WholeScene, OfAnAssemblyKeepsItsDefaults)
{
    const auto model = load(&litAssembly);
    ASSERT_NE(model, nullptr);
    EXPECT_EQ(model->scene.floorOrient, 2);
    EXPECT_EQ(model->scene.floorType, "");
    EXPECT_EQ(model->scene.backgroundTypeStr, "");
    EXPECT_EQ(model->scene.backPlateImage, "");
    EXPECT_FALSE(model->scene.bkplVisibility);
}

}  // namespace
