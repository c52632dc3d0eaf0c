#include "raylume/scene/dlModel.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <string>
#include <type_traits>
#include <vector>

#include "tests/scene/CountingDecal.h"

namespace {

using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;

static_assert(std::is_same_v<decltype(dlModel::viewScale), double>);
static_assert(std::is_same_v<decltype(dlModel::documentVersion), std::uint32_t>);
static_assert(std::extent_v<decltype(dlModel::lights)> == 99);
static_assert(std::is_same_v<decltype(dlModel::parts), std::map<void*, std::map<int, dlPart*>>>);
static_assert(std::is_same_v<decltype(dlModel::animationTracks), std::map<std::wstring, dlAnimTrackSet>>);
static_assert(std::is_same_v<decltype(dlModel::componentXforms), std::map<std::wstring, dlComponentXform>>);
static_assert(std::is_same_v<decltype(dlComponentXform::m), double[16]>);

template <typename Key>
using ByTime = std::map<double, Key>;
static_assert(std::is_same_v<decltype(dlAnimTrackSet::visualTransforms), ByTime<dlVisualTransformKey>>);
static_assert(std::is_same_v<decltype(dlAnimTrackSet::transforms), ByTime<dlTransformKey>>);
static_assert(std::is_same_v<decltype(dlAnimTrackSet::viewKeys), ByTime<dlViewKey>>);
static_assert(std::is_same_v<decltype(dlAnimTrackSet::visualStates), ByTime<dlVisualStateKey>>);
static_assert(
    std::is_same_v<decltype(dlAnimTrackSet::lightTracks), std::map<std::int32_t, ByTime<dlLightKey>>>);
static_assert(std::is_same_v<decltype(dlVisualTransformKey::nullVizprop), bool>);
static_assert(std::is_same_v<decltype(dlLightKey::red), double>);
static_assert(std::is_same_v<decltype(dlLightKey::sunTime), float>);
static_assert(std::is_same_v<decltype(dlLightKey::sunDay), float>);
static_assert(std::is_same_v<decltype(dlLightKey::sunHaze), float>);

void* key(std::uintptr_t address)
{
    return reinterpret_cast<void*>(address);
}

TEST(Model, Defaults)
{
    const auto model = std::make_unique<dlModel>();
    EXPECT_EQ(model->instanceCount, 0);
    EXPECT_EQ(model->instances, nullptr);
    EXPECT_EQ(model->lightCount, 0);
    EXPECT_EQ(model->lights[98].lightType, 4);
    EXPECT_EQ(model->assemblyRoot, nullptr);
    EXPECT_EQ(model->bbox.isSet(), 0);
    EXPECT_EQ(model->singletonCount, 0);
    EXPECT_FALSE(model->isPartDocument);
    EXPECT_EQ(model->modelName, "");
    EXPECT_FALSE(model->versionGatePassed);
    EXPECT_FALSE(model->loadRejected);
    EXPECT_EQ(model->viewXform.m[0], 1.0f);
    EXPECT_THAT(model->viewPoint, Each(0.0f));
    EXPECT_THAT(model->viewDirection, Each(0.0f));
    EXPECT_EQ(model->viewScale, 0.0);
    EXPECT_EQ(model->documentVersion, 0xFFFFFFFFu);
    EXPECT_EQ(model->scene.floorOrient, 2);
    EXPECT_FALSE(model->hasDocumentExtras);
    EXPECT_THAT(model->animationTracks, IsEmpty());
    EXPECT_THAT(model->componentXforms, IsEmpty());
    EXPECT_THAT(model->parts, IsEmpty());
}

TEST(Model, ComponentPlacementStartsAsTheIdentity)
{
    const dlComponentXform placement;
    EXPECT_EQ(placement.tag, 1);
    for (int i = 0; i < 16; ++i) {
        EXPECT_EQ(placement.m[i], i % 5 == 0 ? 1.0 : 0.0);
    }
}

template <typename Map>
std::vector<std::wstring> keysOf(const Map& map)
{
    std::vector<std::wstring> keys;
    for (const auto& [name, value] : map) {
        keys.push_back(name);
    }
    return keys;
}

TEST(Model, ComponentNamesAreInCaseSensitiveOrder)
{
    dlModel model;
    for (const wchar_t* name : {L"b", L"B", L"a"}) {
        model.animationTracks[name];
        model.componentXforms[name];
    }
    EXPECT_THAT(keysOf(model.animationTracks), ElementsAre(L"B", L"a", L"b"));
    EXPECT_THAT(keysOf(model.componentXforms), ElementsAre(L"B", L"a", L"b"));
}

TEST(ModelParts, UnknownKeysGiveNullAndCreateNothing)
{
    dlModel model;
    EXPECT_EQ(model.getDLPart(key(1), 0), nullptr);
    EXPECT_THAT(model.parts, IsEmpty());
    model.addDLPart(key(1), new dlPart, 0);
    EXPECT_EQ(model.getDLPart(key(1), 1), nullptr);
    EXPECT_EQ(model.getDLPart(key(2), 0), nullptr);
    EXPECT_EQ(model.parts.size(), 1u);
    EXPECT_EQ(model.parts[key(1)].size(), 1u);
}

TEST(ModelParts, KnownKeyGetsAnotherConfiguration)
{
    dlModel model;
    auto* first = new dlPart;
    auto* second = new dlPart;
    model.addDLPart(key(1), first, -1);
    model.addDLPart(key(1), second, 3);
    EXPECT_EQ(model.parts.size(), 1u);
    EXPECT_EQ(model.getDLPart(key(1), -1), first);
    EXPECT_EQ(model.getDLPart(key(1), 3), second);
}

TEST(ModelParts, SamePairIsReplacedAndNotDeleted)
{
    std::vector<std::string> gone;
    dlModel model;
    auto orphan = std::make_unique<dlPart>();
    orphan->material.addDecals(new CountingDecal(gone, "orphan"));
    auto* second = new dlPart;
    model.addDLPart(key(1), orphan.get(), 0);
    model.addDLPart(key(1), second, 0);
    EXPECT_EQ(model.getDLPart(key(1), 0), second);
    EXPECT_EQ(model.parts[key(1)].size(), 1u);
    EXPECT_THAT(gone, IsEmpty());
}

TEST(ModelParts, AllPartsComeByAddressThenByConfiguration)
{
    dlModel model;
    dlPart* parts[4];
    for (dlPart*& part : parts) {
        part = new dlPart;
    }
    model.addDLPart(key(~std::uintptr_t{0}), parts[3], 0);
    model.addDLPart(key(8), parts[2], 7);
    model.addDLPart(key(8), parts[1], 0);
    model.addDLPart(key(8), parts[0], -1);
    std::vector<dlPart*> all;
    model.getAllDLParts(all);
    EXPECT_THAT(all, ElementsAre(parts[0], parts[1], parts[2], parts[3]));
    model.getAllDLParts(all);
    EXPECT_EQ(all.size(), 8u);
    EXPECT_EQ(all[4], parts[0]);
}

// Nodes tell nobody when they go: a tree left behind shows under the sanitizer.
TEST(Model, DestructorDeletesPartsThenInstances)
{
    std::vector<std::string> gone;
    {
        const auto model = std::make_unique<dlModel>();
        model->assemblyRoot = new dlAssemblyNode;
        model->instances = new dlInstance[2];
        model->instances[0].addDecal(new CountingDecal(gone, "instance 0"));
        model->instances[1].addDecal(new CountingDecal(gone, "instance 1"));
        for (const int config : {0, 1}) {
            auto* part = new dlPart;
            part->material.addDecals(new CountingDecal(gone, "part " + std::to_string(config)));
            model->addDLPart(key(1), part, config);
        }
    }
    EXPECT_THAT(gone, ElementsAre("part 0", "part 1", "instance 1", "instance 0"));
}

TEST(Model, DestructorTakesNullParts)
{
    auto model = std::make_unique<dlModel>();
    model->addDLPart(key(1), nullptr, 0);
    EXPECT_EQ(model->getDLPart(key(1), 0), nullptr);
    model.reset();
    EXPECT_EQ(model, nullptr);
}

void fill(dlModel& model)
{
    model.instanceCount = 1;
    model.instances = new dlInstance[1];
    model.lightCount = 2;
    model.lights[0].name = L"first";
    model.lights[98].name = L"last";
    model.assemblyRoot = new dlAssemblyNode;
    model.bbox.radius = 3;
    model.singletonCount = 4;
    model.isPartDocument = true;
    model.modelName = "model";
    model.versionGatePassed = true;
    model.loadRejected = true;
    model.viewXform.m[12] = 5;
    model.viewPoint[1] = 6;
    model.viewDirection[2] = 7;
    model.viewScale = 8.5;
    model.documentVersion = 9;
    model.scene.floorOrient = 10;
    model.hasDocumentExtras = true;
    model.animationTracks[L"component"].visualStates[0.5].componentVisibility = 11;
    model.componentXforms[L"component"].m[15] = 12;
    model.addDLPart(key(1), new dlPart, 13);
}

void expectShared(dlModel& a, dlModel& b)
{
    EXPECT_EQ(a.instanceCount, 1);
    EXPECT_EQ(a.instances, b.instances);
    EXPECT_EQ(a.lightCount, 2);
    EXPECT_EQ(a.lights[0].name, L"first");
    EXPECT_EQ(a.lights[98].name, L"last");
    EXPECT_EQ(a.assemblyRoot, b.assemblyRoot);
    EXPECT_EQ(a.bbox.radius, 3);
    EXPECT_EQ(a.singletonCount, 4);
    EXPECT_TRUE(a.isPartDocument);
    EXPECT_EQ(a.modelName, "model");
    EXPECT_TRUE(a.versionGatePassed);
    EXPECT_TRUE(a.loadRejected);
    EXPECT_EQ(a.viewXform.m[12], 5);
    EXPECT_EQ(a.viewPoint[1], 6);
    EXPECT_EQ(a.viewDirection[2], 7);
    EXPECT_EQ(a.viewScale, 8.5);
    EXPECT_EQ(a.documentVersion, 9u);
    EXPECT_EQ(a.scene.floorOrient, 10);
    EXPECT_TRUE(a.hasDocumentExtras);
    EXPECT_EQ(a.animationTracks[L"component"].visualStates[0.5].componentVisibility, 11);
    EXPECT_EQ(a.componentXforms[L"component"].m[15], 12);
    EXPECT_EQ(a.parts, b.parts);
}

void letGo(dlModel& model)
{
    model.instances = nullptr;
    model.assemblyRoot = nullptr;
    model.parts.clear();
}

TEST(Model, CopyConstructorSharesWhatThePointersReach)
{
    dlModel source;
    fill(source);
    dlModel copy(source);
    expectShared(copy, source);
    letGo(copy);
}

TEST(Model, AssignmentSharesAndFreesNothing)
{
    dlModel source, target;
    fill(source);
    const std::unique_ptr<dlInstance[]> orphanedInstances(target.instances = new dlInstance[1]);
    const std::unique_ptr<dlAssemblyNode> orphanedTree(target.assemblyRoot = new dlAssemblyNode);
    const auto orphanedPart = std::make_unique<dlPart>();
    target.addDLPart(key(2), orphanedPart.get(), 0);
    target.animationTracks[L"old"];
    target.componentXforms[L"old"];
    target.lights[50].name = L"old";
    target = source;
    expectShared(target, source);
    EXPECT_EQ(target.animationTracks.size(), 1u);
    EXPECT_EQ(target.componentXforms.size(), 1u);
    EXPECT_EQ(target.lights[50].name, L"");
    EXPECT_EQ(orphanedInstances[0].visible, 1);
    EXPECT_EQ(orphanedTree->depth, 0);
    EXPECT_EQ(orphanedPart->bodyCount, 0);
    letGo(target);
}

TEST(Model, MapsOfACopyAreItsOwn)
{
    dlModel source;
    fill(source);
    dlModel copy(source);
    copy.animationTracks.clear();
    copy.parts[key(1)].erase(13);
    EXPECT_EQ(source.animationTracks.size(), 1u);
    EXPECT_NE(source.getDLPart(key(1), 13), nullptr);
    letGo(copy);
}

TEST(Model, SelfAssignmentKeepsEverything)
{
    dlModel model;
    fill(model);
    const dlModel& alias = model;
    model = alias;
    expectShared(model, model);
    EXPECT_NE(model.getDLPart(key(1), 13), nullptr);
}

TEST(AnimationKeys, AppearanceDefaults)
{
    const dlVisualTransformKey sample;
    EXPECT_EQ(sample.interpolateMode, 1);
    EXPECT_EQ(sample.red, 0.0);
    EXPECT_EQ(sample.green, 0.0);
    EXPECT_EQ(sample.blue, 0.0);
    EXPECT_EQ(sample.transparency, 0.0);
    EXPECT_FALSE(sample.nullVizprop);
}

TEST(AnimationKeys, PlacementDefaults)
{
    const dlTransformKey sample;
    EXPECT_EQ(sample.interpolateMode, 1);
    EXPECT_THAT(sample.matrix, Each(0.0));
}

TEST(AnimationKeys, VisibilityDefaults)
{
    const dlVisualStateKey sample;
    EXPECT_EQ(sample.interpolateMode, 1);
    EXPECT_EQ(sample.componentVisibility, 0);
}

TEST(AnimationKeys, ViewDefaults)
{
    const dlViewKey sample;
    EXPECT_EQ(sample.interpolateMode, 1);
    EXPECT_THAT(sample.modelView, Each(0.0));
    EXPECT_THAT(sample.position, Each(0.0));
    EXPECT_EQ(sample.focalDistance, 0.0);
    EXPECT_EQ(sample.focalLength, 0.0);
}

TEST(AnimationKeys, LightDefaults)
{
    const dlLightKey sample;
    EXPECT_EQ(sample.interpolateMode, 1);
    EXPECT_EQ(sample.lightId, -1);
    EXPECT_EQ(sample.lightType, -1);
    EXPECT_EQ(sample.enabledInRL, 0);
    EXPECT_EQ(sample.red, 0.0);
    EXPECT_EQ(sample.green, 0.0);
    EXPECT_EQ(sample.blue, 0.0);
    EXPECT_THAT(sample.position, Each(0.0));
    EXPECT_THAT(sample.rotation, Each(0.0));
    EXPECT_EQ(sample.sunTime, 0.0f);
    EXPECT_EQ(sample.sunDay, 0.0f);
    EXPECT_EQ(sample.sunHaze, 0.0f);
}

}  // namespace
