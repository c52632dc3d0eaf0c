#include "raylume/load/PartTranslation.h"

#include "tests/load/LoadFixture.h"

namespace {

using testing::ElementsAre;

class PartTranslation : public LoadFixture {
protected:
    PartTranslation()
    {
        document.tessData = &triangle.part;
        document.activeConfigIndex = 6;
    }

    void translate() { translatePartDocument(model, document, L"p.doc"); }
    dlPart* part() { return model.getDLPart(&document, -1); }

    build::TrianglePart triangle;
    OVDLPartDocument document;
    dlModel model;
};

TEST_F(PartTranslation, FilesThePartUnderTheDocumentItself)
{
    translate();
    EXPECT_NE(part(), nullptr);
    EXPECT_EQ(model.getDLPart(&document, 6), nullptr);
    EXPECT_EQ(model.getDLPart(&triangle.part, -1), nullptr);
    EXPECT_EQ(model.getDLPart(&triangle.part, 6), nullptr);
    EXPECT_EQ(model.parts.size(), 1u);
    EXPECT_EQ(model.parts.begin()->second.size(), 1u);
}

TEST_F(PartTranslation, MakesOneInstanceOfDefaults)
{
    build::Visual visual(L"whole part", 1, 0);
    triangle.part.modelVizProps[6] = &visual;
    model.animationTracks[L"root"];
    standIns().animatedNames = {"root"};
    translate();
    EXPECT_TRUE(model.isPartDocument);
    ASSERT_EQ(model.instanceCount, 1);
    const dlInstance& instance = model.instances[0];
    EXPECT_EQ(instance.part, part());
    EXPECT_EQ(instance.name, "root");
    EXPECT_EQ(instance.configName, "");
    EXPECT_EQ(instance.visible, 1);
    EXPECT_EQ(instance.material, nullptr);
    EXPECT_TRUE(instance.decals.empty());
    EXPECT_FALSE(instance.hasAppearanceAnimation);
    for (int element = 0; element < 16; ++element)
        EXPECT_EQ(instance.xform.m[element], element % 5 == 0 ? 1.0f : 0.0f);
    EXPECT_EQ(recorder().countBeginning("compHas"), 0u);
    EXPECT_EQ(recorder().countBeginning("attachInstanceDecals"), 0u);
    EXPECT_TRUE(model.componentXforms.empty());
}

TEST_F(PartTranslation, LeavesTheInstanceAloneInTheFirstGroupAndUncounted)
{
    translate();
    dlInstance* instance = &model.instances[0];
    EXPECT_EQ(part()->instanceUseCount, 0);
    ASSERT_EQ(part()->associatedInstances.size(), 1u);
    EXPECT_THAT(part()->associatedInstances.at(instance), ElementsAre(instance));
    EXPECT_EQ(part()->getAssociatedPersistentID(instance), 0);
    EXPECT_EQ(part()->getAssociatedItemID(instance), -1);
}

TEST_F(PartTranslation, RunsItsStepsInOrder)
{
    ovScene_c holder;
    pwSceneData_c data;
    holder.sceneData = &data;
    document.sceneHolder = &holder;
    document.viewScale = 2.0;
    std::size_t groupsAtLights = 0;
    double scaleAtLights = -1.0;
    standIns().onLights = [&](dlModel& target) {
        groupsAtLights = part()->associatedInstances.size();
        scaleAtLights = target.viewScale;
    };
    double scaleAtCapture = 0.0;
    recorder().onCall("getNumBodies", [&] { scaleAtCapture = model.viewScale; });
    std::int32_t bodiesAtDecals = 0;
    standIns().onPartDecals = [&](dlPart& target, int) { bodiesAtDecals = target.bodyCount; };
    translate();
    EXPECT_THAT(lines(), ElementsAre("translateLights", "getNumBodies()", "getModelVizProp(6)",
                                     "getBodyPropInfo(6)", "getBodyVizProp(6)", "getFaceVizProp(6)",
                                     "attachPartDecals(p.doc,6)", "translateScene(p.doc)"));
    EXPECT_EQ(groupsAtLights, 1u);
    EXPECT_EQ(scaleAtLights, 0.0);
    EXPECT_EQ(scaleAtCapture, 2.0);
    EXPECT_EQ(bodiesAtDecals, 1);
    EXPECT_EQ(standIns().scene, &holder);
}

TEST_F(PartTranslation, MakesThePartMaterialInTheCapture)
{
    build::Visual visual(L"whole part", 1, 0);
    triangle.part.modelVizProps[6] = &visual;
    translate();
    EXPECT_EQ(part()->material.visualName, "whole part");
    EXPECT_EQ(recorder().count("applyVisualProperties(whole part)"), 1u);
}

TEST_F(PartTranslation, CallsTheLightsWithoutASceneToo)
{
    ovPointerArray<moLight_c> lights;
    document.lightData = &lights;
    translate();
    EXPECT_EQ(recorder().count("translateLights"), 1u);
    EXPECT_EQ(standIns().lights, &lights);
    EXPECT_EQ(standIns().lightsScene, nullptr);
    EXPECT_EQ(recorder().countBeginning("translateScene"), 0u);
}

TEST_F(PartTranslation, LeavesTheSceneAloneWhereTheHolderHasNone)
{
    ovScene_c holder;
    document.sceneHolder = &holder;
    translate();
    EXPECT_EQ(standIns().lightsScene, &holder);
    EXPECT_EQ(recorder().countBeginning("translateScene"), 0u);
}

TEST_F(PartTranslation, HangsTheDecalsOfAPartWithoutBodies)
{
    build::Part empty;
    document.tessData = &empty;
    translate();
    EXPECT_EQ(recorder().count("attachPartDecals(p.doc,6)"), 1u);
    EXPECT_EQ(part()->bodyCount, 0);
    EXPECT_EQ(model.instanceCount, 1);
}

TEST_F(PartTranslation, MakesAnEmptyPartWithoutATessellation)
{
    document.tessData = nullptr;
    translate();
    ASSERT_NE(part(), nullptr);
    EXPECT_EQ(part()->bodies, nullptr);
    EXPECT_EQ(recorder().countBeginning("attachPartDecals"), 0u);
}

TEST_F(PartTranslation, DoesNotPollTheCancelFlag)
{
    ovScene_c holder;
    pwSceneData_c data;
    holder.sceneData = &data;
    document.sceneHolder = &holder;
    g_terminateLoad = true;
    translate();
    EXPECT_EQ(part()->bodyCount, 1);
    EXPECT_EQ(recorder().count("attachPartDecals(p.doc,6)"), 1u);
    EXPECT_EQ(recorder().count("translateScene(p.doc)"), 1u);
}

}  // namespace
