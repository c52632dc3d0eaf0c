#include "raylume/load/AssemblyTranslation.h"

#include <functional>
#include <limits>
#include <map>
#include <set>

#include "raylume/scene/dlDecal.h"
#include "tests/load/LoadFixture.h"

namespace {

using build::Component;
using build::Components;
using testing::ElementsAre;
using testing::IsEmpty;

class AssemblyTranslation : public LoadFixture {
protected:
    AssemblyTranslation()
    {
        recorder().name(&bolt.part, "bolt");
        recorder().name(&nut.part, "nut");
    }

    void translate(Components& components)
    {
        translateAssemblyDocument(model, document, L"a.doc", components);
    }

    dlPart* partOf(build::TrianglePart& source, int configuration = 0)
    {
        return model.getDLPart(&source.part, configuration);
    }

    // The error's code; 0 when nothing was raised.
    std::uint32_t codeRaisedBy(Components& components)
    {
        try {
            translate(components);
        } catch (const platform::ComError& error) {
            return error.code();
        }
        return 0;
    }

    build::TrianglePart bolt;
    build::TrianglePart nut{100.0f};
    OVDLAssemblyDocument document;
    dlModel model;
};

TEST_F(AssemblyTranslation, GivesAnEmptyAssemblyAnEmptyArrayAndItsView)
{
    Components none;
    model.isPartDocument = true;
    document.viewScale = 3.0;
    translate(none);
    EXPECT_FALSE(model.isPartDocument);
    EXPECT_EQ(model.instanceCount, 0);
    EXPECT_NE(model.instances, nullptr);
    EXPECT_TRUE(model.parts.empty());
    EXPECT_TRUE(model.componentXforms.empty());
    EXPECT_EQ(model.viewScale, 3.0);
    EXPECT_THAT(lines(), ElementsAre("translateLights"));
}

TEST_F(AssemblyTranslation, TreatsANegativeCountAsNone)
{
    Components none;
    none.count = -1;
    translate(none);
    EXPECT_EQ(model.instanceCount, 0);
    EXPECT_NE(model.instances, nullptr);
}

TEST_F(AssemblyTranslation, KeepsThePlacementOfEveryElement)
{
    build::Visual visual(L"other configuration", 1, 0);
    nut.part.modelVizProps[7] = &visual;
    Component refused(L"refused-1@a", &nut.part, 0);
    Component bare(L"bare-1@a", nullptr);
    Component shown(L"shown-1@a", &bolt.part);
    Components components{&shown.at(1, 2, 3), nullptr, &refused.at(4, 5, 6), &bare.at(7, 8, 9)};
    translate(components);
    ASSERT_EQ(model.componentXforms.size(), 3u);
    EXPECT_EQ(model.componentXforms.at(L"shown-1@a").m[13], 2.0);
    EXPECT_EQ(model.componentXforms.at(L"refused-1@a").m[12], 4.0);
    EXPECT_EQ(model.componentXforms.at(L"bare-1@a").m[14], 9.0);
    for (const auto& [name, placement] : model.componentXforms)
        EXPECT_EQ(placement.tag, 1);
    EXPECT_EQ(model.instanceCount, 1);
}

TEST_F(AssemblyTranslation, KeepsPlacementsInDoublePrecision)
{
    Component component(L"c", &bolt.part);
    Components components{&component.at(0.1, 1e-300, 1e300)};
    component.xform.scale = 1.0 / 3.0;
    translate(components);
    const double* m = model.componentXforms.at(L"c").m;
    EXPECT_EQ(m[0], 1.0 / 3.0);
    EXPECT_EQ(m[12], 0.1);
    EXPECT_EQ(m[13], 1e-300);
    EXPECT_EQ(m[14], 1e300);
    EXPECT_EQ(m[3], 0.0);
    EXPECT_EQ(m[15], 1.0);
}

TEST_F(AssemblyTranslation, LetsTheLastPlacementOfANameWin)
{
    Component first(L"same-1@a", &bolt.part);
    Component other(L"zz-1@a", &bolt.part);
    Component last(L"same-1@a", nullptr);
    Components components{&first.at(1, 0, 0), &other, &last.at(2, 0, 0)};
    translate(components);
    EXPECT_EQ(model.componentXforms.size(), 2u);
    EXPECT_EQ(model.componentXforms.at(L"same-1@a").m[12], 2.0);
    EXPECT_EQ(model.instanceCount, 2);
}

TEST_F(AssemblyTranslation, ReplacesAPlacementThatIsThereAlready)
{
    model.componentXforms[L"c"].tag = 5;
    Component component(L"c", nullptr);
    Components components{&component.at(1, 0, 0)};
    translate(components);
    EXPECT_EQ(model.componentXforms.at(L"c").tag, 1);
    EXPECT_EQ(model.componentXforms.at(L"c").m[12], 1.0);
}

// Whatever the order of the names, the map is the one of plain assignment.
TEST_F(AssemblyTranslation, RecordsPlacementsOfNamesInAnyOrder)
{
    const std::vector<std::wstring> names = {L"m", L"a", L"z", L"b", L"m", L"y", L"", L"a", L"zz", L"c"};
    std::vector<std::unique_ptr<Component>> owned;
    std::vector<uoTempAssemblySHDData_c*> list;
    std::map<std::wstring, double> expected;
    for (std::size_t index = 0; index < names.size(); ++index) {
        owned.push_back(std::make_unique<Component>(names[index], nullptr));
        list.push_back(&owned.back()->at(static_cast<double>(index), 0, 0));
        expected[names[index]] = static_cast<double>(index);
    }
    Components components;
    components.assign(list);
    translate(components);
    std::map<std::wstring, double> recorded;
    for (const auto& [name, placement] : model.componentXforms)
        recorded[name] = placement.m[12];
    EXPECT_EQ(recorded, expected);
}

TEST_F(AssemblyTranslation, AcceptsWithoutAskingWhereThePartHasNoAppearances)
{
    Component component(L"c-1@a", &bolt.part);
    Components components{&component};
    recorder().onCall("bolt.getNumBodies", [this] { recorder().name(&bolt.part, "captured bolt"); });
    translate(components);
    EXPECT_EQ(model.instanceCount, 1);
    EXPECT_EQ(recorder().countBeginning("bolt.getModelVizProp"), 0u);
    EXPECT_EQ(recorder().count("captured bolt.getModelVizProp(0)"), 1u);
}

TEST_F(AssemblyTranslation, AsksOnceForEachComponentWhereThePartHasAppearances)
{
    build::Visual inactive(L"inactive", 0, 1);
    bolt.part.modelVizProps[3] = &inactive;
    Component first(L"c-1@a", &bolt.part, 3);
    Component second(L"c-2@a", &bolt.part, 3);
    Component refused(L"c-3@a", &bolt.part, 4);
    Components components{&first, &second, &refused};
    translate(components);
    EXPECT_EQ(model.instanceCount, 2);                           // The active flag plays no part.
    EXPECT_EQ(recorder().count("bolt.getModelVizProp(3)"), 3u);  // One of them by the capture.
    EXPECT_EQ(recorder().count("bolt.getModelVizProp(4)"), 1u);
    EXPECT_EQ(partOf(bolt, 4), nullptr);
}

TEST_F(AssemblyTranslation, RefusesAConfigurationWhoseAppearanceIsNull)
{
    bolt.part.modelVizProps[0] = nullptr;
    Component component(L"c-1@a", &bolt.part);
    Components components{&component};
    translate(components);
    EXPECT_EQ(model.instanceCount, 0);
    EXPECT_TRUE(model.parts.empty());
    EXPECT_EQ(model.componentXforms.size(), 1u);
}

TEST_F(AssemblyTranslation, CapturesAPartOnceForTheComponentThatMeetsItFirst)
{
    Component first(L"c-1@a", &bolt.part, 2);
    Component second(L"d-1@a", &nut.part, 0);
    Component third(L"c-2@a", &bolt.part, 2);
    Components components{&first, &second, &third};
    translate(components);
    EXPECT_THAT(recorder().linesBeginning({"bolt.getNumBodies", "nut.getNumBodies", "bolt.attach",
                                           "nut.attach", "attachInstance"}),
                ElementsAre("bolt.getNumBodies()", "bolt.attachPartDecals(a.doc,2)", "nut.getNumBodies()",
                            "nut.attachPartDecals(a.doc,0)", "attachInstanceDecals(c-1@a,a.doc)",
                            "attachInstanceDecals(d-1@a,a.doc)", "attachInstanceDecals(c-2@a,a.doc)"));
    EXPECT_EQ(recorder().count("bolt.getModelVizProp(2)"), 1u);
    ASSERT_EQ(model.instanceCount, 3);
    EXPECT_EQ(model.instances[0].part, partOf(bolt, 2));
    EXPECT_EQ(model.instances[1].part, partOf(nut));
    EXPECT_EQ(model.instances[2].part, partOf(bolt, 2));
    EXPECT_EQ(partOf(bolt, 2)->instanceUseCount, 2);
    EXPECT_EQ(partOf(nut)->instanceUseCount, 1);
    EXPECT_EQ(partOf(bolt, 2)->bodies[0].faces[0].vertexCount, 3);
}

TEST_F(AssemblyTranslation, MakesAPartForEachConfiguration)
{
    Component first(L"c-1@a", &bolt.part, 0);
    Component second(L"c-2@a", &bolt.part, 1);
    Component third(L"c-3@a", &bolt.part, -1);
    Components components{&first, &second, &third};
    translate(components);
    ASSERT_EQ(model.parts.size(), 1u);
    EXPECT_EQ(model.parts.begin()->second.size(), 3u);
    EXPECT_NE(partOf(bolt, 0), partOf(bolt, 1));
    EXPECT_EQ(model.instances[2].part, partOf(bolt, -1));
    EXPECT_NE(partOf(bolt, -1), nullptr);
}

// More parts than the finder remembers at a time.
TEST_F(AssemblyTranslation, TellsManyPartsApart)
{
    constexpr int kParts = 700;
    std::vector<std::unique_ptr<build::Part>> sources;
    std::vector<std::unique_ptr<Component>> owned;
    std::vector<uoTempAssemblySHDData_c*> list;
    for (int index = 0; index < 3 * kParts; ++index) {
        if (index < kParts)
            sources.push_back(std::make_unique<build::Part>());
        owned.push_back(std::make_unique<Component>(
            L"c", sources[static_cast<std::size_t>(index % kParts)].get(), index % 2));
        list.push_back(owned.back().get());
    }
    Components components;
    components.assign(list);
    translate(components);
    ASSERT_EQ(model.instanceCount, 3 * kParts);
    EXPECT_EQ(model.parts.size(), static_cast<std::size_t>(kParts));
    for (int index = 0; index < model.instanceCount; ++index) {
        const uoTempAssemblySHDData_c* component = list[static_cast<std::size_t>(index)];
        dlPart* part = model.getDLPart(component->tessData, component->configIndex);
        ASSERT_NE(part, nullptr);
        EXPECT_EQ(model.instances[index].part, part);
    }
}

TEST_F(AssemblyTranslation, TellsManyConfigurationsOfOnePartApart)
{
    constexpr int kConfigurations = 600;
    build::Part source;
    std::vector<std::unique_ptr<Component>> owned;
    std::vector<uoTempAssemblySHDData_c*> list;
    for (int index = 0; index < 2 * kConfigurations; ++index) {
        owned.push_back(std::make_unique<Component>(L"c", &source, index % kConfigurations));
        list.push_back(owned.back().get());
    }
    Components components;
    components.assign(list);
    translate(components);
    ASSERT_EQ(model.instanceCount, 2 * kConfigurations);
    EXPECT_EQ(model.parts.at(&source).size(), static_cast<std::size_t>(kConfigurations));
    for (int index = 0; index < model.instanceCount; ++index) {
        dlPart* expected = model.getDLPart(&source, index % kConfigurations);
        EXPECT_EQ(model.instances[index].part, expected) << index;
        EXPECT_EQ(expected->instanceUseCount, 2);
    }
}

// So that a part that recurs is indexed once.
TEST_F(AssemblyTranslation, LetsAllDecalsOfALoadShareTheirIndices)
{
    Component first(L"c-1@a", &bolt.part);
    Component second(L"d-1@a", &nut.part);
    Components components{&first, &second};
    std::set<FaceIndices*> indices;
    standIns().onPartDecals = [&](dlPart&, int) { indices.insert(standIns().facesOfParts); };
    standIns().onInstanceDecals = [&](dlInstance&, dlPart&) {
        indices.insert(standIns().facesOfInstances);
    };
    translate(components);
    EXPECT_EQ(indices.size(), 1u);
    EXPECT_EQ(indices.count(nullptr), 0u);
}

TEST_F(AssemblyTranslation, AddsThePartBeforeItIsCapturedAndCapturesBeforeTheDecals)
{
    Component component(L"c-1@a", &bolt.part);
    Components components{&component};
    dlPart* duringCapture = nullptr;
    recorder().onCall("bolt.getNumBodies", [&] { duringCapture = partOf(bolt); });
    std::int32_t bodiesAtDecals = -1;
    std::int32_t usesAtDecals = -1;
    standIns().onPartDecals = [&](dlPart& part, int) {
        bodiesAtDecals = part.bodyCount;
        usesAtDecals = part.instanceUseCount;
    };
    translate(components);
    EXPECT_NE(duringCapture, nullptr);
    EXPECT_EQ(duringCapture, partOf(bolt));
    EXPECT_EQ(bodiesAtDecals, 1);
    EXPECT_EQ(usesAtDecals, 0);
}

TEST_F(AssemblyTranslation, KeepsAPartWithoutBodies)
{
    build::Part empty;
    Component component(L"c-1@a", &empty);
    Components components{&component};
    translate(components);
    ASSERT_EQ(model.instanceCount, 1);
    ASSERT_NE(model.instances[0].part, nullptr);
    EXPECT_EQ(model.instances[0].part->bodyCount, 0);
}

TEST_F(AssemblyTranslation, RaisesInvalidArgumentWhenTheArrayShrinksUnderTheWalk)
{
    Component first(L"c-1@a", &bolt.part);
    Component second(L"c-2@a", &bolt.part);
    Components components{&first, &second};
    standIns().onPartDecals = [&](dlPart&, int) { components.count = 1; };
    EXPECT_EQ(codeRaisedBy(components), platform::kErrorInvalidArgument);
}

class CancelledAssembly : public AssemblyTranslation {
protected:
    CancelledAssembly()
    {
        extrasRecord = {&extrasRecord, &extrasRecord};
        extrasBlock.record = &extrasRecord;
        document.extrasBlock = &extrasBlock;
        document.viewScale = 9.0;
    }

    OVDLExtrasRecord extrasRecord;
    OVDLExtrasBlock extrasBlock;
};

TEST_F(CancelledAssembly, StopsAfterTheAcceptedComponentWithoutCountingIt)
{
    build::Visual visual(L"for another", 1, 0);
    build::Part refusing;
    refusing.modelVizProps[5] = &visual;
    recorder().name(&refusing, "refusing");
    recorder().onCall("refusing.getModelVizProp(0)", [] { g_terminateLoad = true; });
    Component counted(L"counted", &bolt.part);
    Component refused(L"refused", &refusing);
    Component bare(L"bare", nullptr);
    Component last(L"last", &nut.part);
    Component never(L"never", &bolt.part);
    Components components{&counted, &refused, nullptr, &bare, &last, &never};
    translate(components);
    EXPECT_EQ(model.instanceCount, 1);
    ASSERT_NE(model.instances, nullptr);
    EXPECT_EQ(model.instances[0].part, nullptr);
    EXPECT_EQ(model.instances[0].name, "");
    EXPECT_EQ(recorder().count("nut.attachPartDecals(a.doc,0)"), 1u);
    EXPECT_EQ(partOf(nut)->bodyCount, 1);
    EXPECT_EQ(partOf(bolt)->instanceUseCount, 0);
    EXPECT_EQ(model.componentXforms.size(), 4u);
    EXPECT_EQ(model.componentXforms.count(L"never"), 0u);
    EXPECT_TRUE(model.hasDocumentExtras);
    EXPECT_EQ(recorder().countBeginning("attachInstanceDecals"), 0u);
    EXPECT_EQ(recorder().count("translateLights"), 0u);
    EXPECT_EQ(model.viewScale, 0.0);
}

TEST_F(CancelledAssembly, PollsAfterAComponentWhosePartIsThereAlready)
{
    Component first(L"c-1", &bolt.part);
    Component second(L"c-2", &bolt.part);
    Component third(L"c-3", &nut.part);
    build::Visual visual(L"v", 1, 0);
    bolt.part.modelVizProps[0] = &visual;
    Components components{&first, &second, &third};
    int questions = 0;
    recorder().onCall("bolt.getModelVizProp(0)", [&] { g_terminateLoad = ++questions == 3; });
    translate(components);  // The capture of the first asks too.
    EXPECT_EQ(model.instanceCount, 1);
    EXPECT_EQ(model.componentXforms.count(L"c-3"), 0u);
}

TEST_F(CancelledAssembly, DoesNotPollAfterElementsThatAreNotAccepted)
{
    g_terminateLoad = true;
    Component bare(L"bare", nullptr);
    Component other(L"other", nullptr);
    Components components{&bare, nullptr, &other};
    translate(components);
    EXPECT_EQ(model.componentXforms.size(), 2u);
    EXPECT_EQ(model.instanceCount, 0);
    EXPECT_NE(model.instances, nullptr);
    EXPECT_TRUE(model.hasDocumentExtras);
    EXPECT_EQ(recorder().count("translateLights"), 0u);
}

TEST_F(CancelledAssembly, RunsPassTwoToItsEndOnceBegun)
{
    Component first(L"c-1", &bolt.part);
    Component second(L"c-2", &bolt.part);
    Components components{&first, &second};
    standIns().onInstanceDecals = [](dlInstance&, dlPart&) { g_terminateLoad = true; };
    translate(components);
    EXPECT_EQ(model.instances[1].name, "c-2");
    EXPECT_EQ(recorder().count("translateLights"), 1u);
    EXPECT_EQ(model.viewScale, 9.0);
}

struct ExtrasCase {
    const char* name;
    bool block;
    bool record;
    bool first;
    bool second;
    bool has;
};

class Extras : public AssemblyTranslation, public testing::WithParamInterface<ExtrasCase> {};

TEST_P(Extras, NeedAllFourPointers)
{
    const ExtrasCase& row = GetParam();
    OVDLExtrasRecord record{row.first ? &model : nullptr, row.second ? &model : nullptr};
    OVDLExtrasBlock block{row.record ? &record : nullptr};
    document.extrasBlock = row.block ? &block : nullptr;
    Components none;
    translate(none);
    EXPECT_EQ(model.hasDocumentExtras, row.has);
}

const ExtrasCase kExtras[] = {
    {"all_four", true, true, true, true, true},
    {"no_block", false, true, true, true, false},
    {"no_record", true, false, true, true, false},
    {"first_member_alone", true, true, true, false, false},
    {"second_member_alone", true, true, false, true, false},
    {"no_members", true, true, false, false, false},
};
INSTANTIATE_TEST_SUITE_P(Rows, Extras, testing::ValuesIn(kExtras),
                         [](const auto& row) { return row.param.name; });

TEST_F(AssemblyTranslation, FillsEachInstanceInItsOrder)
{
    build::Visual visual(L"override", 1, 1);
    Component component(L"c-1@a", &bolt.part, 4);
    component.vizProps = &visual;
    component.configName = L"long";
    component.visible = 2;
    Components components{&component.at(1, 2, 3)};
    model.animationTracks[L"any"];
    standIns().animatedNames = {"c-1@a"};
    int calls = 0;
    standIns().onInstanceDecals = [&](dlInstance& instance, dlPart& part) {
        ++calls;
        EXPECT_EQ(instance.name, "c-1@a");
        ASSERT_NE(instance.material, nullptr);
        EXPECT_EQ(instance.material->reservedNameC, "c-1@a");
        EXPECT_EQ(instance.visible, 2);
        EXPECT_EQ(instance.part, &part);
        EXPECT_EQ(part.instanceUseCount, 1);
        EXPECT_FALSE(instance.hasAppearanceAnimation);
        EXPECT_TRUE(part.associatedInstances.empty());
        EXPECT_EQ(instance.configName, "");
        EXPECT_EQ(instance.xform.m[12], 0.0f);
    };
    translate(components);
    EXPECT_EQ(calls, 1);
    dlInstance& instance = model.instances[0];
    EXPECT_TRUE(instance.hasAppearanceAnimation);
    EXPECT_EQ(instance.part->associatedInstances.count(&instance), 1u);
    EXPECT_EQ(instance.configName, "long");
    EXPECT_EQ(instance.xform.m[12], 1.0f);
    EXPECT_EQ(instance.xform.m[14], 3.0f);
    EXPECT_EQ(instance.leafName, "");
    EXPECT_EQ(instance.node, nullptr);
}

TEST_F(AssemblyTranslation, WritesThePlacementInSinglePrecision)
{
    Component component(L"c", &bolt.part);
    component.xform.scale = 1.0 / 3.0;
    Components components{&component.at(0.1, -0.2, 1e-60)};
    translate(components);
    const float* m = model.instances[0].xform.m;
    EXPECT_EQ(m[0], static_cast<float>(1.0 / 3.0));
    EXPECT_EQ(m[12], 0.1f);
    EXPECT_EQ(m[13], -0.2f);
    EXPECT_EQ(m[14], 0.0f);
    EXPECT_EQ(m[15], 1.0f);
}

struct TopNameCase {
    const char* name;
    std::wstring component;
    std::string instance;
};

class TopName : public AssemblyTranslation, public testing::WithParamInterface<TopNameCase> {};

TEST_P(TopName, IsMarkedWhenItIsTheWholeName)
{
    Component component(GetParam().component, &bolt.part);
    Components components{&component};
    translate(components);
    EXPECT_EQ(model.instances[0].name, GetParam().instance);
    EXPECT_EQ(model.componentXforms.count(GetParam().component), 1u);
    EXPECT_EQ(model.componentXforms.size(), 1u);
}

const TopNameCase kTopNames[] = {
    {"as_it_is", L"Render", "Render##TOP##"},
    {"lower_case_stays_lower", L"render", "render##TOP##"},
    {"mixed_case_stays_mixed", L"rEnDeR", "rEnDeR##TOP##"},
    {"with_an_occurrence_it_is_another_name", L"Render-1@x", "Render-1@x"},
    {"behind_a_separator_it_is_another_name", L"a/Render", "a/Render"},
    {"with_a_blank_it_is_another_name", L"Render ", "Render "},
    {"six_other_letters", L"Rander", "Rander"},
    {"empty", L"", ""},
};
INSTANTIATE_TEST_SUITE_P(Rows, TopName, testing::ValuesIn(kTopNames),
                         [](const auto& row) { return row.param.name; });

TEST_F(AssemblyTranslation, ConvertsBothNamesThroughTheAnsiCodePage)
{
    ASSERT_TRUE(platform::setAnsiCodePage(1252));
    Component component(L"caf\x00E9\x4E00-1@a", &bolt.part);
    component.configName = L"\x00E9\x4E8C";
    Components components{&component};
    translate(components);
    EXPECT_EQ(model.instances[0].name, "caf\xE9?-1@a");
    EXPECT_EQ(model.instances[0].configName, "\xE9?");
    EXPECT_EQ(model.componentXforms.count(L"caf\x00E9\x4E00-1@a"), 1u);
}

TEST_F(AssemblyTranslation, TakesNamesOfAnyLength)
{
    const std::wstring longName(200000, L'n');
    Component component(longName, &bolt.part);
    Components components{&component};
    translate(components);
    EXPECT_EQ(model.instances[0].name.size(), longName.size());
}

TEST_F(AssemblyTranslation, AsksTheAnimationQuestionOnceAnInstanceWithTheFinishedName)
{
    build::Visual visual(L"over", 1, 0);
    Component top(L"Render", &bolt.part);
    Component other(L"c-1@a", &bolt.part);
    top.vizProps = other.vizProps = &visual;
    Components components{&top, &other};
    model.animationTracks[L"any"];
    standIns().animatedNames = {"Render"};
    translate(components);
    EXPECT_THAT(
        recorder().linesBeginning({"compHas"}),
        ElementsAre("compHasAppearanceAnimation(Render##TOP##)", "compHasAppearanceAnimation(c-1@a)"));
    EXPECT_FALSE(model.instances[0].hasAppearanceAnimation);
}

TEST_F(AssemblyTranslation, FindsATrackUnderTheMarkedName)
{
    Component top(L"Render", &bolt.part);
    Components components{&top};
    model.animationTracks[L"any"];
    standIns().animatedNames = {"Render##TOP##"};
    translate(components);
    EXPECT_TRUE(model.instances[0].hasAppearanceAnimation);
}

TEST_F(AssemblyTranslation, AsksNothingWhereThereIsNoAnimation)
{
    Component component(L"c-1@a", &bolt.part);
    Components components{&component};
    standIns().animatedNames = {"c-1@a"};
    translate(components);
    EXPECT_EQ(recorder().countBeginning("compHas"), 0u);
    EXPECT_FALSE(model.instances[0].hasAppearanceAnimation);
}

struct OverrideCase {
    const char* name;
    int active;
    int inherit;
    const wchar_t* userName;
    bool properties;
    bool made;
};

class Override : public AssemblyTranslation, public testing::WithParamInterface<OverrideCase> {};

TEST_P(Override, NeedsTheActiveFlagAlone)
{
    build::Visual visual(L"over", GetParam().active, GetParam().inherit);
    visual.material.userName = GetParam().userName;
    if (!GetParam().properties)
        visual.materialProps = nullptr;
    Component component(L"c-1@a", &bolt.part);
    component.vizProps = &visual;
    Components components{&component};
    translate(components);
    const dlMaterial* material = model.instances[0].material;
    EXPECT_EQ(material != nullptr, GetParam().made);
    if (material) {
        EXPECT_EQ(material->visualName, "over");
        EXPECT_EQ(material->reservedNameC, "from the document");
    }
}

const OverrideCase kOverrides[] = {
    {"active", 1, 0, L"steel", true, true},
    {"active_and_inherited", 1, 1, L"steel", true, true},
    {"negative_flag_is_active", -1, 0, L"steel", true, true},
    {"not_active", 0, 0, L"steel", true, false},
    {"not_active_and_inherited", 0, 1, L"steel", true, false},
    {"the_name_thread_plays_no_part", 1, 0, L"thread", true, true},
    {"without_material_properties", 1, 0, L"steel", false, false},
};
INSTANTIATE_TEST_SUITE_P(Rows, Override, testing::ValuesIn(kOverrides),
                         [](const auto& row) { return row.param.name; });

TEST_F(AssemblyTranslation, GivesAnAnimatedInstanceWithoutOverrideNoMaterial)
{
    Component component(L"c-1@a", &bolt.part);
    Components components{&component};
    model.animationTracks[L"any"];
    standIns().animatedNames = {"c-1@a"};
    translate(components);
    EXPECT_TRUE(model.instances[0].hasAppearanceAnimation);
    EXPECT_EQ(model.instances[0].material, nullptr);
}

TEST_F(AssemblyTranslation, WritesTheReservedNameOnTheInstancesOwnMaterialAlone)
{
    build::Visual partVisual(L"part", 1, 0);
    build::Visual over(L"over", 1, 0);
    bolt.part.modelVizProps[0] = &partVisual;
    Component component(L"c-1@a", &bolt.part);
    component.vizProps = &over;
    Components components{&component};
    model.animationTracks[L"any"];
    standIns().animatedNames = {"c-1@a"};
    translate(components);
    EXPECT_EQ(model.instances[0].material->reservedNameC, "c-1@a");
    EXPECT_EQ(partOf(bolt)->material.reservedNameC, "from the document");
}

TEST_F(AssemblyTranslation, CopiesTheVisibilityAsANumber)
{
    for (const std::int32_t visible : {1, 0, 2, -1, std::numeric_limits<std::int32_t>::min()}) {
        Component component(L"c-1@a", &bolt.part);
        component.visible = visible;
        Components components{&component};
        dlModel fresh;
        translateAssemblyDocument(fresh, document, L"a.doc", components);
        EXPECT_EQ(fresh.instances[0].visible, visible);
    }
}

TEST_F(AssemblyTranslation, GroupsInstancesThatLookTheSame)
{
    build::Visual over(L"over", 1, 0);
    Component plain(L"c-1@a", &bolt.part);
    Component alike(L"c-2@a", &bolt.part);
    Component overridden(L"c-3@a", &bolt.part);
    Component overriddenAlike(L"c-4@a", &bolt.part);
    overridden.vizProps = overriddenAlike.vizProps = &over;
    Components components{&plain, &overridden, &alike, &overriddenAlike};
    translate(components);
    const auto& groups = partOf(bolt)->associatedInstances;
    ASSERT_EQ(groups.size(), 2u);
    EXPECT_THAT(groups.at(&model.instances[0]), ElementsAre(&model.instances[0], &model.instances[2]));
    EXPECT_THAT(groups.at(&model.instances[1]), ElementsAre(&model.instances[1], &model.instances[3]));
}

TEST_F(AssemblyTranslation, KeepsInstancesWithDecalsApart)
{
    Component first(L"c-1@a", &bolt.part);
    Component second(L"c-2@a", &bolt.part);
    Components components{&first, &second};
    standIns().onInstanceDecals = [](dlInstance& instance, dlPart&) { instance.addDecal(new dlDecal); };
    translate(components);
    EXPECT_EQ(partOf(bolt)->associatedInstances.size(), 2u);
}

TEST_F(AssemblyTranslation, KeepsAnimatedInstancesOfDifferentNamesApart)
{
    Component first(L"c-1@a", &bolt.part);
    Component second(L"c-2@a", &bolt.part);
    Component again(L"c-1@a", &bolt.part);
    Components components{&first, &second, &again};
    model.animationTracks[L"any"];
    standIns().animatedNames = {"c-1@a", "c-2@a"};
    translate(components);
    const auto& groups = partOf(bolt)->associatedInstances;
    ASSERT_EQ(groups.size(), 2u);
    EXPECT_THAT(groups.at(&model.instances[0]), ElementsAre(&model.instances[0], &model.instances[2]));
}

// The flag has to stand before the grouping: it is the later instance alone that is animated.
TEST_F(AssemblyTranslation, KeepsAnAnimatedInstanceApartFromAnEarlierOneThatIsNot)
{
    Component still(L"c-1@a", &bolt.part);
    Component animated(L"c-2@a", &bolt.part);
    Components components{&still, &animated};
    model.animationTracks[L"any"];
    standIns().animatedNames = {"c-2@a"};
    translate(components);
    EXPECT_EQ(partOf(bolt)->associatedInstances.size(), 2u);
}

TEST_F(AssemblyTranslation, CallsTheLightsAfterTheInstancesAndLeavesTheSceneAlone)
{
    ovPointerArray<moLight_c> lights;
    ovScene_c holder;
    pwSceneData_c data;
    holder.sceneData = &data;
    document.lightData = &lights;
    document.sceneHolder = &holder;
    document.viewScale = 4.0;
    Component component(L"c-1@a", &bolt.part);
    Components components{&component};
    double scaleAtLights = -1.0;
    std::string nameAtLights;
    standIns().onLights = [&](dlModel& target) {
        scaleAtLights = target.viewScale;
        nameAtLights = target.instances[0].name;
    };
    translate(components);
    EXPECT_EQ(lines().back(), "translateLights");
    EXPECT_EQ(standIns().lights, &lights);
    EXPECT_EQ(standIns().lightsScene, &holder);
    EXPECT_EQ(nameAtLights, "c-1@a");
    EXPECT_EQ(scaleAtLights, 0.0);
    EXPECT_EQ(model.viewScale, 4.0);
    EXPECT_EQ(recorder().countBeginning("translateScene"), 0u);
}

// The change happens at the end of pass one: when the decals of the last new part are hung.
class ChangedAssembly : public AssemblyTranslation {
protected:
    void translateChanging(std::function<void()> change)
    {
        standIns().onPartDecals = [this, change](dlPart& part, int) {
            if (&part == partOf(nut))
                change();
        };
        components.assign({&first, &second, &last});
        translate(components);
    }

    std::vector<std::string> names() const
    {
        std::vector<std::string> list;
        for (int index = 0; index < model.instanceCount; ++index)
            list.push_back(model.instances[index].name);
        return list;
    }

    Component first{L"first", &bolt.part};
    Component second{L"second", &bolt.part};
    Component last{L"last", &nut.part};
    Components components;
};

TEST_F(ChangedAssembly, CutsOffWhatStaysUnfilled)
{
    translateChanging([this] { components.store[0] = nullptr; });
    EXPECT_THAT(names(), ElementsAre("second", "last"));
}

TEST_F(ChangedAssembly, SkipsAComponentThatLostItsTessellation)
{
    translateChanging([this] { second.tessData = nullptr; });
    EXPECT_THAT(names(), ElementsAre("first", "last"));
}

TEST_F(ChangedAssembly, SkipsAComponentWhoseConfigurationHasNoPart)
{
    translateChanging([this] { second.configIndex = 8; });
    EXPECT_THAT(names(), ElementsAre("first", "last"));
    EXPECT_EQ(partOf(bolt, 8), nullptr);
}

TEST_F(ChangedAssembly, TakesThePartThatTheComponentHasNow)
{
    translateChanging([this] { first.tessData = &nut.part; });
    EXPECT_THAT(names(), ElementsAre("first", "second", "last"));
    EXPECT_EQ(model.instances[0].part, partOf(nut));
    EXPECT_EQ(partOf(nut)->instanceUseCount, 2);
    EXPECT_EQ(partOf(bolt)->instanceUseCount, 1);
}

TEST_F(ChangedAssembly, DoesNotRepeatTheTestForAcceptance)
{
    translateChanging([this] { bolt.part.modelVizProps[99] = nullptr; });
    EXPECT_THAT(names(), ElementsAre("first", "second", "last"));
    EXPECT_EQ(recorder().count("bolt.getModelVizProp(0)"), 1u);  // By the capture.
}

TEST_F(ChangedAssembly, NeverFillsMoreThanWereCounted)
{
    Component more(L"more", &bolt.part);
    std::vector<uoTempAssemblySHDData_c*> longer = {&more, &first, &second, &last, &more};
    translateChanging([&] {
        components.data = longer.data();
        components.count = static_cast<long long>(longer.size());
    });
    EXPECT_THAT(names(), ElementsAre("more", "first", "second"));
}

TEST_F(ChangedAssembly, TakesAShorterArrayAsItIs)
{
    translateChanging([this] { components.count = 1; });
    EXPECT_THAT(names(), ElementsAre("first"));
}

TEST_F(ChangedAssembly, RaisesWhenTheArrayShrinksDuringPassTwo)
{
    standIns().onInstanceDecals = [this](dlInstance&, dlPart&) { components.count = 1; };
    components.assign({&first, &second, &last});
    EXPECT_EQ(codeRaisedBy(components), platform::kErrorInvalidArgument);
}

}  // namespace
