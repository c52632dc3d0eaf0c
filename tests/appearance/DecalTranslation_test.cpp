#include "raylume/appearance/DecalTranslation.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <list>
#include <string>
#include <vector>

#include "raylume/appearance/FaceIndex.h"
#include "raylume/appearance/ImageCentre.h"
#include "raylume/load/ReaderInterface.h"
#include "raylume/platform/Text.h"
#include "raylume/scene/dlDecal.h"
#include "raylume/scene/dlInstance.h"
#include "tests/appearance/AppearanceSource.h"
#include "tests/appearance/PartBuilder.h"
#include "tests/appearance/ScriptedImages.h"
#include "tests/platform/TemporaryFolder.h"
#include "tests/recording_reader/RecordingReader.h"

namespace {

using recording::Recorder;
using scripted::images;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

uoDecalFaceMapping recordFor(std::int32_t faceId, float transU = 0)
{
    uoDecalFaceMapping mapping;
    mapping.faceId = faceId;
    mapping.transU = transU;
    return mapping;
}

// Records are told apart by their placement: the first has 1, the second 2.
void addRecords(uoDecalProperties& decal, const std::vector<std::int32_t>& faceIds)
{
    for (const std::int32_t id : faceIds)
        decal.faceMappings.push_back(recordFor(id, static_cast<float>(decal.faceMappings.size() + 1)));
}

// Decal identity and placement of each.
std::vector<std::string> summary(const std::list<dlDecal*>& decals)
{
    std::vector<std::string> lines;
    for (const dlDecal* decal : decals)
        lines.push_back(std::to_string(decal->uoDecalId) + ":" +
                        std::to_string(static_cast<int>(decal->textureTransU)));
    return lines;
}

class DecalTest : public testing::Test {
protected:
    DecalTest()
    {
        Recorder::get().reset();
        scripted::reset(L"temp");
        one.decalId = 1;
        two.decalId = 2;
    }
    ~DecalTest() override { Recorder::get().reset(); }

    std::vector<std::string> onFace(int body, int face)
    {
        return summary(part.bodies[body].faces[face].getDecalList());
    }

    dlPart part;
    uoDecalProperties one;
    uoDecalProperties two;
};

// ---------------------------------------------------------------------------- decals of a component

class InstanceDecals : public DecalTest {
protected:
    InstanceDecals() { component.decals = {&one, &two}; }

    void attach() { attachInstanceDecals(component, &instance, &part, L"c:\\assembly.doc"); }

    uoTempAssemblySHDData_c component;
    dlInstance instance;
};

TEST_F(InstanceDecals, hang_on_the_instance_with_the_id_of_their_face)
{
    fillBodies(part, {{10, 11}});
    addRecords(one, {11, 10});
    attach();
    EXPECT_THAT(summary(instance.getDecalList()), ElementsAre("1:1", "1:2"));
    EXPECT_THAT(summary(instance.getDecalList(11)), ElementsAre("1:1"));
    EXPECT_THAT(summary(instance.getDecalList(10)), ElementsAre("1:2"));
    EXPECT_THAT(onFace(0, 0), IsEmpty());
    EXPECT_THAT(onFace(0, 1), IsEmpty());
}

TEST_F(InstanceDecals, come_in_the_order_of_the_list_and_of_the_records)
{
    fillBodies(part, {{10}, {11}});
    addRecords(one, {11, 10});
    addRecords(two, {10, 11});
    attach();
    EXPECT_THAT(summary(instance.getDecalList()), ElementsAre("1:1", "1:2", "2:1", "2:2"));
}

TEST_F(InstanceDecals, of_two_records_with_one_face_are_two)
{
    fillBodies(part, {{10}});
    addRecords(one, {10, 10});
    attach();
    EXPECT_THAT(summary(instance.getDecalList(10)), ElementsAre("1:1", "1:2"));
}

TEST_F(InstanceDecals, are_dropped_where_the_part_has_no_such_face)
{
    fillBodies(part, {{10}});
    addRecords(one, {12, 10, 13});
    attach();
    EXPECT_THAT(summary(instance.getDecalList()), ElementsAre("1:2"));
}

TEST_F(InstanceDecals, carry_no_mark_of_an_instance)
{
    fillBodies(part, {{10}});
    addRecords(one, {10});
    attach();
    EXPECT_EQ(instance.getDecalList().front()->getInstanceDecal(), 0);
}

TEST_F(InstanceDecals, without_an_instance_hang_on_the_faces_without_an_id)
{
    fillBodies(part, {{10}});
    addRecords(one, {10, 10});
    attachInstanceDecals(component, nullptr, &part, L"c:\\assembly.doc");
    EXPECT_THAT(onFace(0, 0), ElementsAre("1:1", "1:2"));
    for (const dlDecal* decal : part.bodies[0].faces[0].getDecalList())
        EXPECT_EQ(decal->getFaceId(), -1);
}

TEST_F(InstanceDecals, lie_on_the_first_face_of_an_id_only)
{
    fillBodies(part, {{9, 10}, {10, 8}, {8}});
    addRecords(one, {10, 8});
    attachInstanceDecals(component, nullptr, &part, L"c:\\assembly.doc");
    EXPECT_THAT(onFace(0, 1), ElementsAre("1:1"));
    EXPECT_THAT(onFace(1, 0), IsEmpty());
    EXPECT_THAT(onFace(1, 1), ElementsAre("1:2"));
    EXPECT_THAT(onFace(2, 0), IsEmpty());
}

TEST_F(InstanceDecals, pass_over_a_body_without_faces)
{
    fillBodies(part, {{10}, {10}});
    delete[] part.bodies[0].faces;
    part.bodies[0].faces = nullptr;
    addRecords(one, {10});
    attachInstanceDecals(component, nullptr, &part, L"c:\\assembly.doc");
    EXPECT_THAT(onFace(1, 0), ElementsAre("1:1"));
}

TEST_F(InstanceDecals, without_a_part_are_not_hung)
{
    addRecords(one, {10});
    attachInstanceDecals(component, &instance, nullptr, L"c:\\assembly.doc");
    EXPECT_THAT(instance.getDecalList(), IsEmpty());
}

TEST_F(InstanceDecals, that_are_null_are_passed_over)
{
    fillBodies(part, {{10}});
    addRecords(two, {10});
    component.decals = {nullptr, &two};
    attach();
    EXPECT_THAT(summary(instance.getDecalList()), ElementsAre("2:1"));
}

TEST_F(InstanceDecals, are_those_of_the_records_as_they_were_at_the_start)
{
    fillBodies(part, {{10}});
    addRecords(one, {10, 10, 10});
    Recorder::get().onCall("getTextureDir(0)", [&] { one.faceMappings.clear(); });
    attach();
    EXPECT_THAT(instance.getDecalList(), SizeIs(3));
}

TEST_F(InstanceDecals, see_what_the_part_has_now)
{
    fillBodies(part, {{10}, {11}});
    addRecords(one, {10});
    attach();
    part.bodies[0].faces[0].faceId = 20;
    attach();
    EXPECT_THAT(instance.getDecalList(), SizeIs(1));
    part.bodies[1].faces[0].faceId = 10;
    attach();
    EXPECT_THAT(instance.getDecalList(), SizeIs(2));
}

TEST_F(InstanceDecals, are_the_same_with_the_indices_of_a_load)
{
    FaceIndices faces;
    fillBodies(part, {{10}});
    addRecords(one, {10});
    attachInstanceDecals(component, &instance, &part, L"c:\\assembly.doc", faces);
    delete[] part.bodies;
    fillBodies(part, {{5}, {10, 10}});
    attachInstanceDecals(component, &instance, &part, L"c:\\assembly.doc", faces);
    attachInstanceDecals(component, nullptr, &part, L"c:\\assembly.doc", faces);
    attachInstanceDecals(component, &instance, nullptr, L"c:\\assembly.doc", faces);
    EXPECT_THAT(instance.getDecalList(10), SizeIs(2));
    EXPECT_THAT(onFace(1, 0), ElementsAre("1:1"));
}

// ---------------------------------------------------------------------------------- decals of a part

class PartDecals : public DecalTest {
protected:
    void attach(int configuration) { attachPartDecals(tessData, &part, L"c:\\part.doc", configuration); }

    uoTempPartTessData_c tessData;
};

TEST_F(PartDecals, hang_on_the_faces_without_an_id)
{
    fillBodies(part, {{10}, {11}});
    addRecords(one, {11, 10});
    tessData.decalsByConfig[0] = {&one};
    attach(0);
    EXPECT_THAT(onFace(0, 0), ElementsAre("1:2"));
    EXPECT_THAT(onFace(1, 0), ElementsAre("1:1"));
    EXPECT_EQ(part.bodies[0].faces[0].getDecalList().front()->getFaceId(), -1);
}

TEST_F(PartDecals, lie_on_a_face_once_each)
{
    fillBodies(part, {{10, 11}});
    addRecords(one, {10, 11, 10, 11, 10});
    addRecords(two, {11, 10, 10});
    tessData.decalsByConfig[0] = {&one, &two};
    attach(0);
    EXPECT_THAT(onFace(0, 0), ElementsAre("1:1", "2:2"));
    EXPECT_THAT(onFace(0, 1), ElementsAre("1:2", "2:1"));
}

TEST_F(PartDecals, that_come_twice_in_the_list_lie_on_a_face_twice)
{
    fillBodies(part, {{10}});
    addRecords(one, {10});
    tessData.decalsByConfig[0] = {&one, &one};
    attach(0);
    EXPECT_THAT(onFace(0, 0), ElementsAre("1:1", "1:1"));
}

TEST_F(PartDecals, lie_on_the_first_face_of_an_id_only)
{
    fillBodies(part, {{10, 10}, {10}});
    addRecords(one, {10, 10});
    tessData.decalsByConfig[0] = {&one};
    attach(0);
    EXPECT_THAT(onFace(0, 0), ElementsAre("1:1"));
    EXPECT_THAT(onFace(0, 1), IsEmpty());
    EXPECT_THAT(onFace(1, 0), IsEmpty());
}

TEST_F(PartDecals, are_dropped_where_the_part_has_no_such_face)
{
    fillBodies(part, {{10}});
    addRecords(one, {9, 10});
    tessData.decalsByConfig[0] = {&one};
    attach(0);
    EXPECT_THAT(onFace(0, 0), ElementsAre("1:2"));
}

TEST_F(PartDecals, pass_over_a_body_without_faces)
{
    fillBodies(part, {{10}, {10}});
    delete[] part.bodies[0].faces;
    part.bodies[0].faces = nullptr;
    addRecords(one, {10});
    tessData.decalsByConfig[0] = {nullptr, &one};
    attach(0);
    EXPECT_THAT(onFace(1, 0), ElementsAre("1:1"));
}

TEST_F(PartDecals, are_those_of_the_records_as_they_were_at_the_start)
{
    fillBodies(part, {{10, 11}});
    addRecords(one, {10, 11});
    tessData.decalsByConfig[0] = {&one};
    Recorder::get().onCall("getTextureDir(0)", [&] { one.faceMappings.clear(); });
    attach(0);
    EXPECT_THAT(onFace(0, 1), ElementsAre("1:2"));
}

TEST_F(PartDecals, without_a_part_leave_the_document_alone)
{
    addRecords(one, {10});
    tessData.decalsByConfig[0] = {&one};
    attachPartDecals(tessData, nullptr, L"c:\\part.doc", 0);
    EXPECT_THAT(tessData.decalsByConfig, SizeIs(1));
    EXPECT_THAT(one.faceMappings, SizeIs(1));
    EXPECT_EQ(Recorder::get().countBeginning("getTexture"), 0u);
}

struct ConfigurationCase {
    const char* name;
    std::vector<int> entries;  // the first with decal 1, the second with decal 2
    int asked;
    int found;  // number of the decal, 0 for none
};

const ConfigurationCase kConfigurations[] = {
    {"the_entry_asked_for", {0, 3}, 3, 2},
    {"the_other_entry_asked_for", {0, 3}, 0, 1},
    {"no_such_entry", {0, 3}, 2, 0},
    {"no_such_entry_though_there_is_only_one", {0}, 3, 0},
    {"minus_one_takes_the_only_entry", {0}, -1, 1},
    {"minus_one_takes_the_only_entry_whatever_its_key", {77}, -1, 1},
    {"minus_one_takes_the_only_entry_below_it_too", {-5}, -1, 1},
    {"minus_one_of_two_is_none", {0, 3}, -1, 0},
    {"minus_one_of_two_is_an_entry_of_that_key", {-1, 3}, -1, 1},
    {"minus_two_is_no_wildcard", {0}, -2, 0},
    {"minus_one_of_none", {}, -1, 0},
};

class ConfigurationOfDecals : public PartDecals, public testing::WithParamInterface<ConfigurationCase> {};

TEST_P(ConfigurationOfDecals, IsFoundInTheMap)
{
    const ConfigurationCase& row = GetParam();
    fillBodies(part, {{10}});
    addRecords(one, {10});
    addRecords(two, {10});
    for (std::size_t entry = 0; entry < row.entries.size(); ++entry)
        tessData.decalsByConfig[row.entries[entry]] = {entry == 0 ? &one : &two};
    attach(row.asked);
    std::vector<std::string> expected;
    if (row.found)
        expected.push_back(std::to_string(row.found) + ":1");
    EXPECT_EQ(onFace(0, 0), expected);
    EXPECT_THAT(tessData.decalsByConfig, SizeIs(row.entries.size())) << "a look-up enters nothing";
}

INSTANTIATE_TEST_SUITE_P(Rows, ConfigurationOfDecals, testing::ValuesIn(kConfigurations),
                         [](const auto& row) { return std::string(row.param.name); });

// ------------------------------------------------------------------------------------- one decal

class DecalTranslation : public DecalTest {
protected:
    DecalTranslation()
    {
        one.materialProperties.rvAppearance = nullptr;
        one.mappingKind = 1;
        one.textureProperties.filename = L"image.png";
    }

    void translate(const std::wstring& path = L"C:\\docs\\a.doc")
    {
        translateDecal(&decal, &one, &mapping, path);
    }

    // As if every field of the render appearance had a value of its own.
    void addAppearance()
    {
        appearance.decalValue = 41;
        appearance.decalAmbient = 0.125f;
        appearance.decalDiffuse = 0.25f;
        appearance.decalSpecular = 0.375f;
        appearance.weight = 5;
        appearance.secondColorRef = 0x123456;
        appearance.luminous = 6;
        appearance.flags = 0xFFFFFFFF;
        appearance.mappingType = 6;
        appearance.index = 7;
        appearance.colorRef = 0x654321;
        appearance.shininess = 8;
        appearance.unitLevel = appearance.levelA = appearance.levelB = appearance.levelC =
            appearance.levelD = 9;
        appearance.mappingScalar = 10;
        appearance.surfaceFinish = 4;
        appearance.origin[0] = appearance.uDirection[0] = appearance.vDirection[0] = 11;
        appearance.filename = L"a.p2m";
        appearance.lfpFilename = L"a.lfp";
        appearance.bumpTextureFilename = L"bump.png";
        appearance.shaderName = L"shiny";
        one.materialProperties.rvAppearance = &appearance;
    }

    void setLighting()
    {
        uoMaterialProperties& material = one.materialProperties;
        material.ambient = 0.1;
        material.diffuse = 0.2;
        material.specular = 0.3;
        material.shininess = 0.4;
        material.transparency = 0.5;
        material.emission = 0.6;
    }

    dlDecal decal;
    uoDecalFaceMapping mapping;
    uoRVAppearanceProperties appearance;
};

TEST_F(DecalTranslation, takes_all_six_lighting_values_of_the_material)
{
    setLighting();
    translate();
    EXPECT_EQ(decal.ambient, 0.1f);
    EXPECT_EQ(decal.diffuse, 0.2f);
    EXPECT_EQ(decal.specular, 0.3f);
    EXPECT_EQ(decal.shininess, 0.4f);
    EXPECT_EQ(decal.transparency, 0.5f);
    EXPECT_EQ(decal.emission, 0.6f);
    EXPECT_EQ(decal.rvLuminous, 0.0f);
    EXPECT_EQ(decal.rvDecalValue, 0);
    EXPECT_EQ(decal.rvWeight, 0.0f);
    EXPECT_EQ(decal.secondColorRef, 0x00FFFFFFu);
}

TEST_F(DecalTranslation, takes_three_lighting_values_and_six_more_of_the_render_appearance)
{
    setLighting();
    addAppearance();
    translate();
    EXPECT_EQ(decal.ambient, 0.125f);
    EXPECT_EQ(decal.diffuse, 0.25f);
    EXPECT_EQ(decal.specular, 0.375f);
    EXPECT_EQ(decal.rvDecalValue, 41);
    EXPECT_EQ(decal.rvWeight, 5.0f);
    EXPECT_EQ(decal.secondColorRef, 0x123456u);
    EXPECT_TRUE(decal.rvFlagA);
    EXPECT_TRUE(decal.rvFlagB);
    EXPECT_EQ(decal.rvLuminous, 6.0f);
}

TEST_F(DecalTranslation, takes_nothing_else_of_the_render_appearance)
{
    setLighting();
    addAppearance();
    translate();
    EXPECT_EQ(decal.shininess, 0.4f);
    EXPECT_EQ(decal.transparency, 0.5f);
    EXPECT_EQ(decal.emission, 0.6f);
    EXPECT_EQ(decal.colorRef, 0x00FFFFFFu);
    EXPECT_EQ(decal.color[0], 1.0f);
    EXPECT_EQ(decal.color[1], 0.0f);
    EXPECT_EQ(decal.color[2], 0.0f);
    EXPECT_EQ(decal.rvIndex, -1);
    EXPECT_EQ(decal.rvLevelA, 0.0f);
    EXPECT_EQ(decal.rvLevelB, 0.0f);
    EXPECT_EQ(decal.rvUnitLevel, 1.0f);
    EXPECT_EQ(decal.rvLevelC, 0.0f);
    EXPECT_EQ(decal.rvLevelD, 0.0f);
    EXPECT_FALSE(decal.rvFlagC);
    EXPECT_FALSE(decal.rvFlagD);
    EXPECT_FALSE(decal.lfpAppearance);
    EXPECT_FALSE(decal.visualFlag);
    EXPECT_EQ(decal.surfaceFinish, 0);
    EXPECT_EQ(decal.texture.mappingType, 4u);
    EXPECT_EQ(decal.texture.mappingScalar, 0.0f);
    EXPECT_EQ(decal.texture.origin[0], 0.0f);
    EXPECT_EQ(decal.texture.uDirection[0], 0.0f);
    EXPECT_EQ(decal.texture.vDirection[0], 0.0f);
    EXPECT_EQ(decal.appearanceName, "");
    EXPECT_EQ(decal.visualName, "");
    EXPECT_EQ(decal.bumpFilename, "");
    EXPECT_EQ(decal.lfpFilename, "");
}

TEST_F(DecalTranslation, takes_each_flag_from_its_bit)
{
    addAppearance();
    appearance.flags = 1u << 5;
    translate();
    EXPECT_TRUE(decal.rvFlagA);
    EXPECT_FALSE(decal.rvFlagB);
    appearance.flags = 1u << 6;
    translate();
    EXPECT_FALSE(decal.rvFlagA);
    EXPECT_TRUE(decal.rvFlagB);
    appearance.flags = ~(1u << 5 | 1u << 6);
    translate();
    EXPECT_FALSE(decal.rvFlagA);
    EXPECT_FALSE(decal.rvFlagB);
}

TEST_F(DecalTranslation, has_two_fixed_names_and_one_of_the_document)
{
    one.materialProperties.idName = L"id";
    one.materialProperties.userName = L"user";
    translate();
    EXPECT_EQ(decal.idName, "id");
    EXPECT_EQ(decal.userName, "texture");
    EXPECT_EQ(decal.shaderName, "custom_texture");
    addAppearance();
    translate();
    EXPECT_EQ(decal.userName, "texture");
    EXPECT_EQ(decal.shaderName, "custom_texture");
}

TEST_F(DecalTranslation, sets_nothing_of_these)
{
    one.maskInvert = 1;
    one.maskFileName = L".";
    translate();
    EXPECT_EQ(decal.instanceDecal, 0);
    EXPECT_EQ(decal.maskType, decalmaskType_none);
    EXPECT_EQ(decal.maskFilename, L"");
    EXPECT_EQ(decal.maskInvert, 0);
    EXPECT_EQ(decal.pickDecalTag, "");
    EXPECT_EQ(decal.faceId, -1);
    EXPECT_THAT(decal.colorMask, IsEmpty());
}

struct KindCase {
    int kind;
    std::uint32_t type;
};

class DecalKind : public DecalTranslation, public testing::WithParamInterface<KindCase> {};

TEST_P(DecalKind, HasItsMappingType)
{
    one.mappingKind = static_cast<std::uint8_t>(GetParam().kind);
    translate();
    EXPECT_EQ(decal.texture.mappingType, GetParam().type);
    EXPECT_EQ(decal.texture.filename.empty(), GetParam().type == 1);
}

INSTANTIATE_TEST_SUITE_P(Rows, DecalKind,
                         testing::Values(KindCase{0, 2}, KindCase{1, 4}, KindCase{2, 6}, KindCase{3, 5},
                                         KindCase{4, 3}, KindCase{5, 1}, KindCase{255, 1}),
                         [](const auto& row) { return "of_kind_" + std::to_string(row.param.kind); });

TEST_F(DecalTranslation, of_an_unknown_kind_has_its_mapping_but_no_placement)
{
    one.mappingKind = 9;
    one.origin[0] = 1.5f;
    one.origin[1] = 2.5f;
    one.origin[2] = 3.5f;
    one.mappingScalar = 4.5f;
    one.textureProperties.hasDirections = true;
    one.textureProperties.directions[0][0] = 5.5;
    mapping.transU = 1002.5f;
    mapping.transV = 1003.5f;
    mapping.angleUV = 0.5f;
    translate();
    EXPECT_THAT(decal.texture.origin, ElementsAre(1.5f, 2.5f, 3.5f));
    EXPECT_EQ(decal.texture.mappingScalar, 4.5f);
    EXPECT_EQ(decal.texture.uDirection[0], 5.5f);
    EXPECT_EQ(decal.textureTransU, 1002.5f);
    EXPECT_EQ(decal.textureTransV, 1003.5f);
    EXPECT_EQ(decal.textureAngleUV, 0.5f);
    EXPECT_EQ(decal.texture.scaleU, 0.0f);
    EXPECT_EQ(decal.texture.scaleV, 0.0f);
    EXPECT_EQ(decal.texture.angle, 0.0f);
    EXPECT_THAT(decal.texture.center, ElementsAre(0, 0, 0));
    EXPECT_EQ(decal.texture.filename, L"");
}

TEST_F(DecalTranslation, of_an_unknown_kind_still_has_its_mask_made)
{
    one.mappingKind = 9;
    one.colorMask = {0xFF};
    translate();
    EXPECT_EQ(decal.texture.filename, L"temp\\1.bmp");
    EXPECT_EQ(decal.uoDecalId, 1);
}

TEST_F(DecalTranslation, takes_the_image_of_the_decal_and_not_that_of_the_material)
{
    uoMaterialTextureProperties other;
    other.filename = L"other.png";
    other.scale[0] = 50;
    other.angle = 60;
    one.materialProperties.textureProperties = &other;
    one.textureProperties.scale[0] = 2;
    translate();
    EXPECT_EQ(decal.texture.filename, L"image.png");
    EXPECT_EQ(decal.texture.scaleU, 0.5f);
    EXPECT_EQ(bitsOf(decal.texture.angle), 0x40C90FDBu);
}

TEST_F(DecalTranslation, works_on_the_document_as_it_was_at_the_start)
{
    one.materialProperties.idName = L"id";
    Recorder::get().onCall("getIdName()", [&] {
        one.textureProperties.filename = L"changed";
        appearance.weight = 5;
        one.materialProperties.rvAppearance = &appearance;
    });
    translate();
    EXPECT_EQ(decal.texture.filename, L"image.png");
    EXPECT_EQ(decal.rvWeight, 0.0f);
}

// ---------------------------------------------------------------------------------- directions

TEST_F(DecalTranslation, takes_both_directions_narrowed)
{
    one.textureProperties.hasDirections = true;
    one.textureProperties.directions[0][0] = 0.1;
    one.textureProperties.directions[0][1] = 0.2;
    one.textureProperties.directions[0][2] = 0.3;
    one.textureProperties.directions[1][0] = 0.4;
    one.textureProperties.directions[1][1] = 0.5;
    one.textureProperties.directions[1][2] = 0.6;
    translate();
    EXPECT_THAT(decal.texture.uDirection, ElementsAre(0.1f, 0.2f, 0.3f));
    EXPECT_THAT(decal.texture.vDirection, ElementsAre(0.4f, 0.5f, 0.6f));
}

TEST_F(DecalTranslation, has_no_directions_when_the_first_is_denied)
{
    one.textureProperties.directions[0][0] = 1;
    one.textureProperties.directions[1][1] = 1;
    translate();
    EXPECT_THAT(decal.texture.uDirection, ElementsAre(0, 0, 0));
    EXPECT_THAT(decal.texture.vDirection, ElementsAre(0, 0, 0));
}

TEST_F(DecalTranslation, takes_the_second_direction_though_it_is_denied)
{
    Recorder::get().answers.admitsSecondDirection = false;
    one.textureProperties.hasDirections = true;
    one.textureProperties.directions[0][0] = 2;
    one.textureProperties.directions[1][1] = 3;
    translate();
    EXPECT_THAT(decal.texture.uDirection, ElementsAre(2, 0, 0));
    EXPECT_THAT(decal.texture.vDirection, ElementsAre(0, 3, 0));
}

TEST_F(DecalTranslation, asks_for_both_ranges_always_and_uses_neither)
{
    for (const bool hasRanges : {false, true}) {
        for (const int kind : {1, 9}) {
            Recorder::get().reset();
            one.mappingKind = static_cast<std::uint8_t>(kind);
            one.textureProperties.hasRanges = hasRanges;
            one.textureProperties.ranges[0][1] = 12;
            decal = dlDecal();
            translate();
            EXPECT_THAT(Recorder::get().linesBeginning({"getTextureRanges"}),
                        ElementsAre("getTextureRanges(0)", "getTextureRanges(1)"));
        }
    }
    EXPECT_EQ(decal.texture.scaleU, 0.0f);
}

// ----------------------------------------------------------------------------------- placement

constexpr float kRecordAngle = 12.5f;

struct PlacementCase {
    const char* name;
    int kind;
    float recordTrans[2];
    double angle;
    int mirrored;

    float storedTrans[2];       // textureTransU and V
    std::uint32_t storedAngle;  // bits
    float trans[2];             // of the texture
    float scaleU;
};

// The document places the image at 0.25, 0.5 and has sizes 4 and 8; the record places it at 2, 3.
const PlacementCase kPlacements[] = {
    {"a_record_of_kind_0_replaces_the_documents", 0, {1, 2}, 33, 0, {1, 2}, 0x40C214A3, {2, 3}, 0.25f},
    {"a_mirrored_record_of_kind_0", 0, {1, 2}, 33, 1, {1, 2}, 0x40C214A3, {2, 3}, -0.25f},
    {"any_number_but_0_is_mirrored", 0, {1, 2}, 33, -1, {1, 2}, 0x40C214A3, {2, 3}, -0.25f},
    {"a_mark_in_u", 0, {1002.5f, 2}, 33, 0, {2.5f, 2}, 0x3F137207, {-0.25f, 0.5f}, -0.25f},
    {"a_mark_in_u_of_a_mirrored_record",
     0,
     {1002.5f, 2},
     33,
     1,
     {2.5f, 2},
     0x3F137207,
     {-0.25f, 0.5f},
     -0.25f},
    {"a_mark_in_u_begins_at_999", 0, {999, 2}, 33, 0, {-1, 2}, 0x3F137207, {-0.25f, 0.5f}, -0.25f},
    {"below_999_there_is_no_mark",
     0,
     {998.9375f, 998.9375f},
     33,
     0,
     {998.9375f, 998.9375f},
     0x40C214A3,
     {2, 3},
     0.25f},
    {"a_mark_in_v_is_taken_back_by_a_turn",
     0,
     {1, 1000},
     10,
     0,
     {1, 0},
     0x40543B67,
     {0.25f, -0.5f},
     -0.25f},
    {"a_mark_in_v_of_a_mirrored_record", 0, {1, 1000}, 10, 1, {1, 0}, 0x40543B67, {0.25f, -0.5f}, -0.25f},
    {"a_mark_in_v_begins_at_999", 0, {1, 999}, 10, 0, {1, -1}, 0x40543B67, {0.25f, -0.5f}, -0.25f},
    {"a_mark_in_v_below_a_turn", 0, {1, 1000}, 200, 0, {1, 0}, 0x3EB2B8C2, {0.25f, -0.5f}, -0.25f},
    {"a_mark_in_v_of_exactly_a_turn_stays",
     0,
     {1, 1000},
     180,
     0,
     {1, 0},
     0x00000000,
     {0.25f, -0.5f},
     -0.25f},
    {"a_mark_in_v_loses_one_turn_only", 0, {1, 1000}, -200, 0, {1, 0}, 0xBEB2B8C2, {0.25f, -0.5f}, -0.25f},
    {"a_mark_in_u_hides_one_in_v", 0, {1000, 1003}, 33, 0, {0, 1003}, 0x3F137207, {-0.25f, 0.5f}, -0.25f},
    {"kind_1_has_no_marks", 1, {1002.5f, 1003}, 33, 0, {1002.5f, 1003}, 0x40B6A19A, {0.25f, 0.5f}, 0.25f},
    {"kind_2_has_no_marks", 2, {1002.5f, 1003}, 33, 0, {1002.5f, 1003}, 0x40B6A19A, {0.25f, 0.5f}, 0.25f},
    {"kind_3_has_no_marks", 3, {1002.5f, 1003}, 33, 0, {1002.5f, 1003}, 0x40B6A19A, {0.25f, 0.5f}, 0.25f},
    {"kind_4_has_no_marks", 4, {1002.5f, 1003}, 33, 0, {1002.5f, 1003}, 0x40B6A19A, {0.25f, 0.5f}, 0.25f},
    {"kind_1_has_the_documents_placement", 1, {1, 2}, 33, 0, {1, 2}, 0x40B6A19A, {0.25f, 0.5f}, 0.25f},
    {"kind_1_mirrored", 1, {1, 2}, 33, 2, {1, 2}, 0x40B6A19A, {0.25f, 0.5f}, -0.25f},
    {"kind_4_mirrored", 4, {1, 2}, 33, -7, {1, 2}, 0x40B6A19A, {0.25f, 0.5f}, -0.25f},
    {"an_unturned_image_has_a_whole_turn", 2, {1, 2}, 0, 0, {1, 2}, 0x40C90FDB, {0.25f, 0.5f}, 0.25f},
};

class DecalPlacement : public DecalTranslation, public testing::WithParamInterface<PlacementCase> {
protected:
    DecalPlacement()
    {
        uoMaterialTextureProperties& image = one.textureProperties;
        image.angle = GetParam().angle;
        image.transX = 0.25;
        image.transY = 0.5;
        image.scale[0] = 4;
        image.scale[1] = 8;
        image.hasDirections = true;
        image.directions[0][0] = 1;
        image.directions[1][1] = 1;
        one.mappingKind = static_cast<std::uint8_t>(GetParam().kind);
        one.origin[0] = 100;
        mapping.transU = GetParam().recordTrans[0];
        mapping.transV = GetParam().recordTrans[1];
        mapping.angle = kRecordAngle;
        mapping.transX = 2;
        mapping.transY = 3;
        mapping.mirrored = GetParam().mirrored;
    }
};

TEST_P(DecalPlacement, IsThatOfDocumentOrRecord)
{
    translate();
    EXPECT_EQ(decal.textureTransU, GetParam().storedTrans[0]);
    EXPECT_EQ(decal.textureTransV, GetParam().storedTrans[1]);
    EXPECT_EQ(bitsOf(decal.texture.angle), GetParam().storedAngle) << decal.texture.angle;
    EXPECT_EQ(decal.texture.transU, GetParam().trans[0]);
    EXPECT_EQ(decal.texture.transV, GetParam().trans[1]);
    EXPECT_EQ(decal.texture.scaleU, GetParam().scaleU);
    EXPECT_EQ(decal.texture.scaleV, 0.125f);
    EXPECT_EQ(decal.texture.filename, L"image.png");
}

// By the angle that was stored, the sizes as the document has them, and its own translation always.
TEST_P(DecalPlacement, HasItsCentreByTheDocumentsTranslation)
{
    translate();
    dlTexture expected = decal.texture;
    expected.angle = floatOf(GetParam().storedAngle);
    placeImageCentre(expected, one.textureProperties, 0.25, 0.5);
    for (int axis = 0; axis < 3; ++axis)
        EXPECT_EQ(bitsOf(decal.texture.center[axis]), bitsOf(expected.center[axis])) << axis;
}

INSTANTIATE_TEST_SUITE_P(Rows, DecalPlacement, testing::ValuesIn(kPlacements),
                         [](const auto& row) { return std::string(row.param.name); });

TEST_F(DecalTranslation, divides_the_sizes_in_double_precision)
{
    one.textureProperties.scale[0] = 2e-39;
    one.textureProperties.scale[1] = 0.3;
    translate();
    EXPECT_EQ(decal.texture.scaleU, std::numeric_limits<float>::infinity());
    EXPECT_EQ(decal.texture.scaleV, static_cast<float>(1.0 / 0.3));
}

TEST_F(DecalTranslation, does_not_guard_an_image_of_no_size)
{
    one.textureProperties.scale[0] = 0;
    one.textureProperties.scale[1] = 0;
    mapping.mirrored = 1;
    translate();
    EXPECT_EQ(decal.texture.scaleU, -std::numeric_limits<float>::infinity());
    EXPECT_EQ(decal.texture.scaleV, std::numeric_limits<float>::infinity());
}

struct OffsetCase {
    const char* name;
    int kind;
    int mirrored;
    bool isOffset;
};

class ProjectionOffset : public DecalTranslation, public testing::WithParamInterface<OffsetCase> {};

// At these numbers a sum in single precision would lose the offsets.
TEST_P(ProjectionOffset, MovesTheCentreInDoublePrecision)
{
    uoMaterialTextureProperties& image = one.textureProperties;
    image.hasDirections = true;
    image.directions[0][0] = 1;
    image.directions[1][1] = 1;
    image.transX = 16777217.0;
    image.transY = -16777217.0;
    one.projectionOffsetU = 1;
    one.projectionOffsetV = 3;
    one.mappingKind = static_cast<std::uint8_t>(GetParam().kind);
    mapping.mirrored = GetParam().mirrored;
    translate();
    dlTexture expected = decal.texture;
    placeImageCentre(expected, image, GetParam().isOffset ? 16777218.0 : 16777217.0,
                     GetParam().isOffset ? -16777220.0 : -16777217.0);
    EXPECT_EQ(decal.texture.center[0], expected.center[0]);
    EXPECT_EQ(decal.texture.center[1], expected.center[1]);
    if (GetParam().kind != 0) {
        EXPECT_EQ(decal.texture.transU, 16777216.0f) << "the translation itself stays";
    }
}

INSTANTIATE_TEST_SUITE_P(Rows, ProjectionOffset,
                         testing::Values(OffsetCase{"of_kind_1_mirrored", 1, 1, true},
                                         OffsetCase{"of_kind_1_mirrored_by_any_number", 1, -1, true},
                                         OffsetCase{"not_of_kind_1_unmirrored", 1, 0, false},
                                         OffsetCase{"not_of_kind_0", 0, 1, false},
                                         OffsetCase{"not_of_kind_2", 2, 1, false},
                                         OffsetCase{"not_of_kind_3", 3, 1, false},
                                         OffsetCase{"not_of_kind_4", 4, 1, false}),
                         [](const auto& row) { return std::string(row.param.name); });

// ---------------------------------------------------------------------------------------- masks

// Names of images differ from test to test: what was made once is used again.
class DecalMask : public DecalTranslation {
protected:
    DecalMask()
        : image(platform::widen(testing::UnitTest::GetInstance()->current_test_info()->name())),
          maskFile(platform::fromUtf8(folder.write("mask.png", "")))
    {
        one.textureProperties.filename = image;
    }

    std::string search(const std::wstring& name, const std::string& inFolder = "C:\\docs\\")
    {
        return "search " + platform::toUtf8(name) + " in '" + inFolder + "' as 0 ''";
    }

    TemporaryFolder folder;
    std::wstring image;
    std::wstring maskFile;
};

TEST_F(DecalMask, of_colours_is_stored_and_made)
{
    one.colorMask = {3, 1, 2};
    translate();
    EXPECT_THAT(decal.colorMask, ElementsAre(3, 1, 2));
    EXPECT_EQ(images().lines.at(0), search(image));
    EXPECT_EQ(decal.texture.filename, L"temp\\1.bmp");
}

TEST_F(DecalMask, of_a_file_is_made)
{
    one.maskFileName = maskFile;
    images().pictures[image] = {1, 1, 1, {9, 9, 9, 9}};
    images().pictures[maskFile] = {1, 1, 1, {7, 1, 1, 1}};
    translate();
    EXPECT_EQ(images().lines.at(0), search(image));
    EXPECT_EQ(images().lines.at(1), search(maskFile));
    EXPECT_EQ(decal.texture.filename, L"temp\\1.bmp");
    EXPECT_EQ(images().saved.back().pixels[3], 7);
}

TEST_F(DecalMask, is_inverted_by_any_number_but_0)
{
    images().pictures[image] = {1, 1, 1, {9, 9, 9, 9}};
    images().pictures[maskFile] = {1, 1, 1, {7, 1, 1, 1}};
    one.maskFileName = maskFile;
    one.maskInvert = -4;
    translate();
    EXPECT_EQ(images().saved.back().pixels[3], 248);
}

TEST_F(DecalMask, of_colours_wins_over_one_of_a_file)
{
    one.colorMask = {1};
    one.maskFileName = maskFile;
    translate();
    EXPECT_EQ(images().lines.at(0), search(image));
    EXPECT_EQ(images().lines.at(1).substr(0, 4), "load");
    EXPECT_THAT(decal.colorMask, SizeIs(1));
}

TEST_F(DecalMask, of_a_file_that_does_not_exist_is_not_made)
{
    one.maskFileName = maskFile + L".missing";
    translate();
    EXPECT_THAT(images().lines, IsEmpty());
    EXPECT_EQ(decal.texture.filename, image);
}

TEST_F(DecalMask, that_only_a_search_would_find_is_not_made)
{
    one.maskFileName = L"mask.png";
    images().places[L"mask.png"] = maskFile;
    translate(folder.wide() + L"\\a.doc");
    EXPECT_THAT(images().lines, IsEmpty());
    EXPECT_EQ(decal.texture.filename, image);
}

TEST_F(DecalMask, of_a_folder_counts_as_one_of_a_file)
{
    one.maskFileName = folder.wide();
    translate();
    EXPECT_THAT(images().lines, SizeIs(5));
    EXPECT_EQ(decal.texture.filename, L"temp\\1.bmp");
}

TEST_F(DecalMask, of_neither_is_not_made)
{
    translate();
    EXPECT_THAT(images().lines, IsEmpty());
    EXPECT_EQ(decal.texture.filename, image);
}

TEST_F(DecalMask, is_found_by_a_path_as_documents_have_it)
{
    std::wstring path = maskFile;
    std::replace(path.begin(), path.end(), L'/', L'\\');
    one.maskFileName = path;
    translate();
    EXPECT_EQ(images().lines.at(1), search(path));
}

TEST_F(DecalMask, is_made_after_the_placement_and_before_the_last_two_fields)
{
    one.colorMask = {1};
    one.decalId = 71;
    one.useUnderlyingAppearance = 5;
    std::wstring filename;
    std::vector<int> lastFields;
    images().onSearch = [&] {
        filename = decal.texture.filename;
        lastFields = {decal.uoDecalId, decal.useUnderlyingAppearance};
    };
    translate();
    EXPECT_EQ(filename, image);
    EXPECT_THAT(lastFields, ElementsAre(0, 1));
    EXPECT_EQ(decal.uoDecalId, 71);
    EXPECT_EQ(decal.useUnderlyingAppearance, 5);
}

struct FolderCase {
    const char* name;
    const wchar_t* path;
    const char* folder;
};

class SearchFolder : public DecalMask, public testing::WithParamInterface<FolderCase> {};

TEST_P(SearchFolder, IsDriveAndFolderOfTheDocument)
{
    one.textureProperties.filename = platform::widen(GetParam().name);
    one.colorMask = {1};
    one.maskFileName = maskFile;
    translate(GetParam().path);
    EXPECT_EQ(images().lines.at(0), search(one.textureProperties.filename, GetParam().folder));
    one.colorMask.clear();
    images().lines.clear();
    translate(GetParam().path);
    EXPECT_EQ(images().lines.at(0), search(one.textureProperties.filename, GetParam().folder));
    EXPECT_EQ(images().lines.at(1), search(maskFile, GetParam().folder));
}

INSTANTIATE_TEST_SUITE_P(
    Rows, SearchFolder,
    testing::Values(FolderCase{"of_a_path", L"C:\\docs\\a.doc", "C:\\docs\\"},
                    FolderCase{"of_a_path_with_slashes", L"/home/docs/a.doc", "/home/docs/"},
                    FolderCase{"of_both_separators", L"C:/docs\\x/a.doc", "C:/docs\\x/"},
                    FolderCase{"of_a_folder", L"C:\\docs\\", "C:\\docs\\"},
                    FolderCase{"of_the_top", L"C:\\a.doc", "C:\\"},
                    FolderCase{"of_a_name_on_a_drive", L"C:a.doc", "C:"},
                    FolderCase{"of_a_bare_name", L"a.doc", ""}, FolderCase{"of_nothing", L"", ""}),
    [](const auto& row) { return std::string(row.param.name); });

TEST_F(DecalTranslation, takes_the_identity_and_what_lies_beneath_as_they_are)
{
    one.decalId = -3;
    one.useUnderlyingAppearance = 5;
    translate();
    EXPECT_EQ(decal.uoDecalId, -3);
    EXPECT_EQ(decal.useUnderlyingAppearance, 5);
    one.useUnderlyingAppearance = 0;
    translate();
    EXPECT_EQ(decal.useUnderlyingAppearance, 0);
}

TEST_F(DecalTranslation, changes_nothing_without_its_source)
{
    setLighting();
    const dlDecal untouched;
    translateDecal(nullptr, &one, &mapping, L"");
    translateDecal(&decal, nullptr, &mapping, L"");
    translateDecal(&decal, &one, nullptr, L"");
    EXPECT_TRUE(decal == untouched);
    EXPECT_EQ(decal.shaderName, "");
    EXPECT_EQ(decal.texture.mappingType, 1u);
    EXPECT_EQ(decal.ambient, 0.5f);
    EXPECT_TRUE(Recorder::get().lines().empty());
}

}  // namespace
