#include "raylume/scene/dlScene.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <utility>

namespace {

using testing::ElementsAre;

TEST(Scene, Defaults)
{
    const dlScene scene;
    EXPECT_EQ(scene.getFloorOrient(), 2);
    EXPECT_EQ(scene.getBackgroundType(), 0);
    EXPECT_FALSE(scene.getFloorDir());
    EXPECT_FALSE(scene.getFloorVisibility());
    EXPECT_FALSE(scene.getBkplVisibility());
    EXPECT_FALSE(scene.getEnvVisibility());
    EXPECT_EQ(scene.getFloorType(), "");
    EXPECT_EQ(scene.getBackgroundTypeStr(), "");
    EXPECT_EQ(scene.getBackPlateImage(), "");
    EXPECT_EQ(scene.getEnvironmentImage(), "");
    EXPECT_THAT(scene.backgroundColor1, ElementsAre(0.0, 0.0, 0.0));
    EXPECT_THAT(scene.backgroundColor2, ElementsAre(0.0, 0.0, 0.0));
    EXPECT_EQ(scene.getBackgroundBrightness(), 0);
    EXPECT_EQ(scene.getRenderingBrightness(), 0);
    EXPECT_EQ(scene.getSceneReflectivity(), 0);
}

void fill(dlScene& scene)
{
    scene.setFloorOrient(1);
    scene.setFloorDir(true);
    scene.setFloorVisibility(true);
    scene.setFloorType("reflect");
    scene.setBackgroundType(3);
    scene.setBackgroundTypeStr("Env_Backplate");
    scene.setBackPlateImage("the image of the back plate.png");
    scene.setBkplVisibility(true);
    scene.setEnvironmentImage("the image of the environment.hdr");
    scene.setEnvVisibility(true);
    scene.setBackgroundColor1(0.125, 0.25, 0.375);
    scene.setBackgroundColor2(0.5, 0.625, 0.75);
    scene.setBackgroundBrightness(1.5);
    scene.setRenderingBrightness(2.5);
    scene.setSceneReflectivity(3.5);
}

void expectFilled(const dlScene& scene)
{
    EXPECT_EQ(scene.floorOrient, 1);
    EXPECT_TRUE(scene.floorDir);
    EXPECT_TRUE(scene.floorVisibility);
    EXPECT_EQ(scene.floorType, "reflect");
    EXPECT_EQ(scene.backgroundType, 3);
    EXPECT_EQ(scene.backgroundTypeStr, "Env_Backplate");
    EXPECT_EQ(scene.backPlateImage, "the image of the back plate.png");
    EXPECT_TRUE(scene.bkplVisibility);
    EXPECT_EQ(scene.environmentImage, "the image of the environment.hdr");
    EXPECT_TRUE(scene.envVisibility);
    EXPECT_THAT(scene.backgroundColor1, ElementsAre(0.125, 0.25, 0.375));
    EXPECT_THAT(scene.backgroundColor2, ElementsAre(0.5, 0.625, 0.75));
    EXPECT_EQ(scene.backgroundBrightness, 1.5);
    EXPECT_EQ(scene.renderingBrightness, 2.5);
    EXPECT_EQ(scene.sceneReflectivity, 3.5);
}

TEST(Scene, WritersWriteTheirFields)
{
    dlScene scene;
    fill(scene);
    expectFilled(scene);
}

TEST(Scene, ReadersReadTheirFields)
{
    dlScene scene;
    fill(scene);
    EXPECT_EQ(scene.getFloorOrient(), 1);
    EXPECT_TRUE(scene.getFloorDir());
    EXPECT_TRUE(scene.getFloorVisibility());
    EXPECT_EQ(scene.getFloorType(), "reflect");
    EXPECT_EQ(scene.getBackgroundType(), 3);
    EXPECT_EQ(scene.getBackgroundTypeStr(), "Env_Backplate");
    EXPECT_EQ(scene.getBackPlateImage(), "the image of the back plate.png");
    EXPECT_TRUE(scene.getBkplVisibility());
    EXPECT_EQ(scene.getEnvironmentImage(), "the image of the environment.hdr");
    EXPECT_TRUE(scene.getEnvVisibility());
    EXPECT_EQ(scene.getBackgroundBrightness(), 1.5);
    EXPECT_EQ(scene.getRenderingBrightness(), 2.5);
    EXPECT_EQ(scene.getSceneReflectivity(), 3.5);
}

TEST(Scene, ColoursComeOutAsTheyWentIn)
{
    dlScene scene;
    fill(scene);
    double red = 0, green = 0, blue = 0;
    scene.getBackgroundColor1(red, green, blue);
    EXPECT_THAT((std::array{red, green, blue}), ElementsAre(0.125, 0.25, 0.375));
    scene.getBackgroundColor2(red, green, blue);
    EXPECT_THAT((std::array{red, green, blue}), ElementsAre(0.5, 0.625, 0.75));
}

TEST(Scene, NullTextIsEmpty)
{
    dlScene scene;
    fill(scene);
    scene.setFloorType(nullptr);
    scene.setBackgroundTypeStr(nullptr);
    scene.setBackPlateImage(nullptr);
    scene.setEnvironmentImage(nullptr);
    EXPECT_EQ(scene.floorType, "");
    EXPECT_EQ(scene.backgroundTypeStr, "");
    EXPECT_EQ(scene.backPlateImage, "");
    EXPECT_EQ(scene.environmentImage, "");
}

TEST(Scene, TakesItsOwnText)
{
    dlScene scene;
    fill(scene);
    scene.setBackPlateImage(scene.backPlateImage.c_str() + 4);
    EXPECT_EQ(scene.backPlateImage, "image of the back plate.png");
}

TEST(Scene, CopiesCarryEveryField)
{
    dlScene source, assigned;
    fill(source);
    assigned = source;
    expectFilled(dlScene(source));
    expectFilled(assigned);
}

TEST(Scene, MovingCopies)
{
    dlScene source, assigned;
    fill(source);
    const dlScene constructed(std::move(source));
    expectFilled(constructed);
    expectFilled(source);
    assigned = std::move(source);
    expectFilled(assigned);
    expectFilled(source);
}

TEST(Scene, SelfAssignmentKeepsEverything)
{
    dlScene scene;
    fill(scene);
    const dlScene& alias = scene;
    scene = alias;
    expectFilled(scene);
}

}  // namespace
