#include "raylume/lights/LightTranslation.h"

#include <gtest/gtest.h>

#include "raylume/scene/dlModel.h"

namespace {

TEST(LightTable, stays_empty_without_lights_and_without_a_scene)
{
    dlModel model;
    translateLights(model, nullptr, nullptr);
    EXPECT_EQ(model.lightCount, 0);
}

}  // namespace
