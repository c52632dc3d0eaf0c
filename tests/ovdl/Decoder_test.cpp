// Sound documents: every field arrives, and arrays stay where they are.
#include "reader/formats/ovdl/Decoder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

#include "tests/ovdl/DocumentBuffers.h"

namespace ovdl_tests {
namespace {

using ovdl::ReadOutcome;
using testing::ElementsAre;

class Everything : public testing::Test {
protected:
    void SetUp() override
    {
        outcome = decode(buffers);
        ASSERT_EQ(outcome.kind, ReadOutcome::kRead) << outcome.reason;
        contents = dynamic_cast<ovdl::DecodedDocument&>(*outcome.document).contents();
        assembly = outcome.document->assembly();
        ASSERT_NE(assembly, nullptr);
    }

    uoTempAssemblySHDData_c& component(long long index) { return *assembly->components.at(index); }
    uoTempPartTessData_c& part() { return *component(0).tessData; }
    uoTempBodyTessData_c& body() { return *part().bodies.at(0); }

    Buffers buffers = everything().buffers();
    ReadOutcome outcome;
    ovdl::DocumentContents contents;
    OVDLAssemblyDocument* assembly = nullptr;
};

TEST_F(Everything, CanBeWalked)
{
    EXPECT_EQ(walk(*outcome.document), 4 + 3 + 5);
    EXPECT_EQ(outcome.document->part(), nullptr);
    EXPECT_EQ(outcome.reason, "");
}

TEST_F(Everything, ComponentsAreThere)
{
    ASSERT_EQ(assembly->components.count, 2);
    EXPECT_EQ(component(0).name, L"a-1@top");
    EXPECT_EQ(component(0).configName, L"Default");
    EXPECT_EQ(component(0).visible, 1);
    EXPECT_EQ(component(1).name, L"sub-1@top/b-1@sub");
    EXPECT_EQ(component(1).visible, 0);
    EXPECT_EQ(component(1).vizProps, nullptr);
    EXPECT_EQ(component(1).configName, L"");
    EXPECT_NE(component(0).tessData, component(1).tessData);
}

TEST_F(Everything, PlacementsAreThere)
{
    double elements[16];
    component(0).xform.getGLData(elements);
    EXPECT_THAT(elements, ElementsAre(0, 2, 0, 0, -2, 0, 0, 0, 0, 0, 2, 0, 10, 20, 30, 1));
    component(1).xform.getGLData(elements);
    EXPECT_THAT(elements, ElementsAre(1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1));
}

TEST_F(Everything, ConfigurationsAreThere)
{
    auto* other = outcome.document->configuration(L"Other");
    ASSERT_NE(other, nullptr);
    ASSERT_EQ(other->count, 3);
    EXPECT_EQ(other->at(0), &component(1));
    EXPECT_EQ(other->at(1), nullptr);
    EXPECT_EQ(other->at(2), &component(0));
    EXPECT_EQ(outcome.document->configuration(L"other"), nullptr);
    ASSERT_EQ(contents.configurations.size(), 1u);
    EXPECT_EQ(contents.configurations.at(L"Other"), other);
}

TEST_F(Everything, VersionsAreHandedOn)
{
    EXPECT_EQ(contents.documentVersion, 12000u);
    EXPECT_EQ(contents.displayListVersion, 3u);
    EXPECT_EQ(contents.assembly, assembly);
    EXPECT_EQ(contents.part, nullptr);
    EXPECT_EQ(contents.reason, "");
}

TEST_F(Everything, VisualPropertiesAreThere)
{
    const moVisualProperties_c* visual = component(0).vizProps;
    ASSERT_NE(visual, nullptr);
    EXPECT_EQ(visual->activeFlag, 1);
    EXPECT_EQ(visual->inheritFlag, 2);
    EXPECT_EQ(visual->visualFlag, 3);
    EXPECT_EQ(visual->visualName, L"visual");
    EXPECT_EQ(visual->colorRef, 0x123456u);
    EXPECT_EQ(visual->materialFileName, L"m.mat");
    const uoMaterialProperties& material = *visual->materialProps;
    EXPECT_THAT((std::vector{material.ambient, material.diffuse, material.specular, material.shininess,
                             material.transparency, material.emission}),
                ElementsAre(0.1, 0.2, 0.3, 0.4, 0.5, 0.6));
    EXPECT_EQ(material.idName, L"id");
    EXPECT_EQ(material.userName, L"user \u00E4");
}

TEST_F(Everything, TexturesAreThere)
{
    const uoMaterialTextureProperties& texture = *component(0).vizProps->materialProps->textureProperties;
    EXPECT_THAT(texture.scale, ElementsAre(2, 3));
    EXPECT_THAT(texture.ranges[0], ElementsAre(3, 4));
    EXPECT_THAT(texture.ranges[1], ElementsAre(5, 6));
    EXPECT_TRUE(texture.hasRanges);
    EXPECT_THAT(texture.directions[0], ElementsAre(10, 11, 12));
    EXPECT_THAT(texture.directions[1], ElementsAre(13, 14, 15));
    EXPECT_TRUE(texture.hasDirections);
    EXPECT_EQ(texture.angle, 45);
    EXPECT_EQ(texture.transX, 1.5);
    EXPECT_EQ(texture.transY, 2.5);
    EXPECT_EQ(texture.filename, L"wood.png");
}

TEST_F(Everything, RenderAppearancesAreThere)
{
    const uoRVAppearanceProperties& rv = *component(0).vizProps->materialProps->rvAppearance;
    EXPECT_THAT(rv.uDirection, ElementsAre(1, 2, 3));
    EXPECT_THAT(rv.vDirection, ElementsAre(4, 5, 6));
    EXPECT_THAT(rv.origin, ElementsAre(7, 8, 9));
    EXPECT_THAT(
        (std::vector<int>{rv.surfaceFinish, rv.decalValue, static_cast<int>(rv.colorRef), rv.index,
                          rv.mappingType, static_cast<int>(rv.flags), static_cast<int>(rv.secondColorRef),
                          rv.dimpleFileNumber, rv.knurlFileNumber}),
        ElementsAre(10, 11, 12, 13, 14, 15, 16, 29, 30));
    EXPECT_THAT(
        (std::vector{rv.decalAmbient, rv.decalDiffuse, rv.decalSpecular, rv.shininess, rv.unitLevel,
                     rv.levelA, rv.levelB, rv.luminous, rv.levelC, rv.levelD, rv.mappingScalar, rv.weight}),
        ElementsAre(17, 18, 19, 20, 21, 22, 23, 24, 25, 26, 27, 28));
    EXPECT_THAT((std::vector{rv.lfpFilename, rv.bumpTextureFilename, rv.filename, rv.shaderName}),
                ElementsAre(L"a.lfp", L"bump.png", L"c.p2m", L"shader"));
}

TEST_F(Everything, DecalsAreThere)
{
    ASSERT_EQ(component(0).decals.size(), 3u);
    const auto numbers = std::vector(component(0).decals.begin(), component(0).decals.end());
    EXPECT_EQ(numbers[1], nullptr);
    EXPECT_EQ(numbers[0], numbers[2]);
    uoDecalProperties& decal = *numbers[0];
    EXPECT_EQ(decal.maskFileName, L"mask.bmp");
    EXPECT_EQ(decal.maskInvert, 1);
    EXPECT_EQ(decal.mappingScalar, 2.5f);
    EXPECT_EQ(decal.useUnderlyingAppearance, 1);
    EXPECT_EQ(decal.mappingKind, 4);
    EXPECT_EQ(decal.decalId, 99);
    EXPECT_EQ(decal.projectionOffsetU, 0.25f);
    EXPECT_EQ(decal.projectionOffsetV, 0.75f);
    EXPECT_THAT(decal.origin, ElementsAre(5, 6, 7));
    EXPECT_THAT(decal.colorMask, ElementsAre(0xFFu, 0xFF00u));
    EXPECT_EQ(decal.textureProperties.filename, L"wood.png");
    EXPECT_EQ(decal.materialProperties.userName, L"user \u00E4");
    EXPECT_EQ(decal.materialProperties.rvAppearance, component(0).vizProps->materialProps->rvAppearance);
}

TEST_F(Everything, FaceMappingsAreThere)
{
    const auto& mappings = component(0).decals.front()->faceMappings;
    ASSERT_EQ(mappings.size(), 2u);
    const uoDecalFaceMapping& mapping = mappings.front();
    EXPECT_EQ(mapping.faceId, 7);
    EXPECT_THAT((std::vector{mapping.transU, mapping.transV, mapping.angleUV, mapping.angle, mapping.transX,
                             mapping.transY}),
                ElementsAre(1, 2, 3, 4, 5, 6));
    EXPECT_EQ(mapping.mirrored, 1);
    EXPECT_EQ(mappings.back().faceId, 8);
}

TEST_F(Everything, LightsAreThere)
{
    ASSERT_NE(assembly->lightData, nullptr);
    ASSERT_EQ(assembly->lightData->count, 5);
    EXPECT_EQ(assembly->lightData->at(2), nullptr);
    const moLight_c& light = *assembly->lightData->at(4);
    EXPECT_EQ(light.getLightType(), LIGHT_SUN);
    EXPECT_EQ(light.sourceStamp, 0x7FF8000000000001u);
    EXPECT_THAT(light.sourceVectorA, ElementsAre(6, 7, 8));
    EXPECT_THAT(light.sourceVectorB, ElementsAre(0, 0, 0));
    EXPECT_EQ(light.lightIndex, 6);
}

TEST_F(Everything, TheSceneIsThere)
{
    ASSERT_NE(assembly->sceneHolder, nullptr);
    EXPECT_EQ(assembly->sceneHolder->floorOrientation, 2);
    EXPECT_EQ(assembly->sceneHolder->floorPoint.z, 3);
    EXPECT_EQ(assembly->sceneHolder->floorVector.x, 4);
    pwSceneData_c& data = *assembly->sceneHolder->sceneData;
    EXPECT_EQ(data.backgroundKind, 3u);
    EXPECT_EQ(data.backgroundColor1.g, 2);
    EXPECT_EQ(data.backgroundColor2.b, 6);
    EXPECT_EQ(data.getBackgroundImage(0), L"front.png");
    EXPECT_EQ(data.backgroundImages.at(-3), L"");
    EXPECT_EQ(data.getBackgroundEnvImage(2), L"env.hdr");
    EXPECT_EQ(data.getSceneFileName(), L"scene.p2s");
    ASSERT_NE(data.getWallInfo(0), nullptr);
    EXPECT_EQ(data.getWallInfo(0)->reflectFlag, 5);
    EXPECT_EQ(data.walls.at(4), nullptr);
}

TEST_F(Everything, ViewAndExtrasAreThere)
{
    EXPECT_THAT(assembly->viewPoint, ElementsAre(1, 2, 3));
    EXPECT_EQ(assembly->viewScale, 0.5);
    ASSERT_NE(assembly->extrasBlock, nullptr);
    ASSERT_NE(assembly->extrasBlock->record, nullptr);
    EXPECT_NE(assembly->extrasBlock->record->first, nullptr);
    EXPECT_NE(assembly->extrasBlock->record->second, nullptr);
}

TEST_F(Everything, BodiesAreThere)
{
    ASSERT_EQ(part().getNumBodies(), 2);
    EXPECT_EQ(part().bodies.at(1), nullptr);
    EXPECT_EQ(body().flag, 1);
    EXPECT_EQ(body().level, 3);
    EXPECT_EQ(body().getBodyVizProp(0), component(0).vizProps);
    EXPECT_EQ(body().getBodyVizProp(1), nullptr);
    EXPECT_EQ(body().bodyVizProps.count(1), 1u);
    EXPECT_EQ(body().getBodyPropInfo(0)->shown, 1);
    EXPECT_EQ(body().getBodyPropInfo(1)->shown, 0);
    EXPECT_EQ(part().getModelVizProp(1), component(0).vizProps);
    ASSERT_EQ(part().decalsByConfig.size(), 2u);
    EXPECT_EQ(part().decalsByConfig.at(0).front(), component(0).decals.front());
    EXPECT_EQ(part().decalsByConfig.at(0).back(), nullptr);
    EXPECT_TRUE(part().decalsByConfig.at(1).empty());
}

TEST_F(Everything, FacesOfAllPiecesAreThere)
{
    ASSERT_EQ(body().faces.count, 3);
    uoTempFaceTessData_c& first = *body().faces.at(0);
    EXPECT_EQ(body().faces.at(1), nullptr);
    uoTempFaceTessData_c& second = *body().faces.at(2);
    EXPECT_EQ(first.faceId, 7);
    EXPECT_EQ(first.faceKey, 8);
    EXPECT_EQ(first.hasUVs, 1);
    EXPECT_EQ(first.stripCount, 1);
    EXPECT_EQ(first.stripLengths.data[0], 4);
    EXPECT_EQ(first.points.count, 12);
    EXPECT_EQ(first.points.data[11], 5.5f);
    EXPECT_EQ(first.normals.data[11], 1.0f);
    EXPECT_EQ(first.uvs.count, 8);
    EXPECT_EQ(first.uvs.data[7], 1.75f);
    EXPECT_EQ(first.getFaceVizProp(0), component(0).vizProps);
    EXPECT_EQ(first.faceVizProps.at(-1), nullptr);
    EXPECT_EQ(first.getVizPropMode(0), 2);
    EXPECT_EQ(second.faceId, 8);
    EXPECT_EQ(second.points.count, 9);
    EXPECT_EQ(second.hasUVs, 0);
}

TEST_F(Everything, GeometryStaysInItsStream)
{
    const auto isIn = [&](const float* data, std::uint32_t piece) {
        const Buffer& bytes = buffers.tessellations.at({0, piece});
        const auto* byte = reinterpret_cast<const unsigned char*>(data);
        return byte >= bytes.data() && byte < bytes.data() + bytes.size();
    };
    EXPECT_TRUE(isIn(body().faces.at(0)->points.data, 0));
    EXPECT_TRUE(isIn(body().faces.at(0)->normals.data, 0));
    EXPECT_TRUE(isIn(body().faces.at(0)->uvs.data, 0));
    EXPECT_TRUE(isIn(body().faces.at(2)->points.data, 1));
}

TEST(Defaults, OfAnEmptyRecordAreThoseOfTheClasses)
{
    Draft draft = trianglePart();
    fb::DocumentT& document = draft.document;
    document.textures.push_back(std::make_unique<fb::TextureT>());
    document.decals.push_back(std::make_unique<fb::DecalT>());
    document.components.push_back(std::make_unique<fb::ComponentT>());
    draft.assembly().components = {0};
    draft.tessellations[0][0]->decalsByConfig = {5, 1, 0};
    const Buffers buffers = draft.buffers();
    const auto outcome = decode(buffers);
    ASSERT_EQ(outcome.kind, ReadOutcome::kRead) << outcome.reason;
    const auto& part = *outcome.document->part();
    EXPECT_EQ(part.viewScale, 1.0);
    EXPECT_EQ(part.viewXform.e4, 1.0);
    EXPECT_EQ(part.lightData, nullptr);
    EXPECT_EQ(part.sceneHolder, nullptr);
    const uoDecalProperties& decal = *part.tessData->decalsByConfig.at(5).front();
    EXPECT_THAT(decal.textureProperties.scale, ElementsAre(1, 1));
    EXPECT_EQ(decal.materialProperties.textureProperties, nullptr);
    const auto& component = *outcome.document->assembly()->components.at(0);
    EXPECT_EQ(component.visible, 1);
    EXPECT_EQ(component.tessData, nullptr);
    EXPECT_EQ(component.name, L"");
}

TEST(Numbers, KeepTheSignOfZeroAndTheBitsOfNaN)
{
    Draft draft = trianglePart();
    draft.tessellations[0][0]->points[0] = -0.0f;
    draft.tessellations[0][0]->points[1] = std::numeric_limits<float>::quiet_NaN();
    draft.part().viewScale = -0.0;
    const Buffers buffers = draft.buffers();
    const auto outcome = decode(buffers);
    ASSERT_EQ(outcome.kind, ReadOutcome::kRead) << outcome.reason;
    const float* points = outcome.document->part()->tessData->bodies.at(0)->faces.at(0)->points.data;
    EXPECT_TRUE(std::signbit(points[0]));
    EXPECT_TRUE(std::isnan(points[1]));
    EXPECT_TRUE(std::signbit(outcome.document->part()->viewScale));
}

TEST(Streams, ThatBeginAtAnOddAddressAreMoved)
{
    class OddStreams : public ovdl::DocumentStreams {
    public:
        explicit OddStreams(const Buffers& buffers) : header_(buffers.header)
        {
            for (const Buffer* bytes : {&buffers.document, &buffers.tessellations.at({0, 0})}) {
                Buffer& moved = moved_.emplace_back(1);
                moved.insert(moved.end(), bytes->begin(), bytes->end());
            }
        }
        ovdl::DocumentHeader header() override { return header_; }
        ovdl::Bytes document() override { return ovdl::Bytes(moved_[0]).subspan(1); }
        ovdl::Bytes tessellation(std::uint32_t, std::uint32_t, std::uint32_t) override
        {
            return ovdl::Bytes(moved_[1]).subspan(1);
        }
        std::uint64_t size() const override { return moved_[0].size() + moved_[1].size(); }

    private:
        ovdl::DocumentHeader header_;
        std::vector<Buffer> moved_;
    };
    Context context;
    const auto outcome =
        ovdl::decodeDocument(std::make_unique<OddStreams>(trianglePart().buffers()), context);
    ASSERT_EQ(outcome.kind, ReadOutcome::kRead) << outcome.reason;
    EXPECT_EQ(walk(*outcome.document), 3);
}

TEST(Version, IsToldOnceBeforeAnythingElse)
{
    Buffers buffers = trianglePart().buffers();
    buffers.header.documentVersion = 4711;
    buffers.header.formatVersion = 99;
    Context context;
    const auto outcome = decode(buffers, context);
    EXPECT_THAT(context.told, ElementsAre(4711));
    EXPECT_EQ(outcome.kind, ReadOutcome::kRejected);
    EXPECT_THAT(outcome.reason, testing::HasSubstr("99"));
    EXPECT_THAT(outcome.reason, testing::HasSubstr("1"));
}

TEST(Version, ThatTheHostRefusesEndsTheRead)
{
    const Buffers buffers = trianglePart().buffers();
    Context context;
    context.acceptsVersion = false;
    const auto outcome = decode(buffers, context);
    EXPECT_EQ(outcome.kind, ReadOutcome::kRejected);
    EXPECT_EQ(outcome.document, nullptr);
    EXPECT_THAT(outcome.reason, testing::HasSubstr("12000"));
}

TEST(Rejection, ByTheDocumentItselfKeepsTheDocument)
{
    Draft draft = trianglePart();
    draft.part().rejected = true;
    draft.document.reason = draft.text("made by\na newer \xED\xA0\x80 program");
    const Buffers buffers = draft.buffers();
    const auto outcome = decode(buffers);
    EXPECT_EQ(outcome.kind, ReadOutcome::kRejected);
    ASSERT_NE(outcome.document, nullptr);
    EXPECT_TRUE(outcome.document->part()->isRejected());
    EXPECT_THAT(outcome.reason, testing::StartsWith("made by a newer "));
    EXPECT_THAT(outcome.reason, testing::Not(testing::HasSubstr("\xED\xA0\x80")));
    EXPECT_EQ(dynamic_cast<ovdl::DecodedDocument&>(*outcome.document).contents().reason,
              "made by\na newer \xED\xA0\x80 program");
}

TEST(Rejection, WithoutAReasonGetsOne)
{
    Draft draft;
    draft.assembly().rejected = true;
    const Buffers buffers = draft.buffers();
    const auto outcome = decode(buffers);
    EXPECT_EQ(outcome.kind, ReadOutcome::kRejected);
    EXPECT_NE(outcome.reason, "");
}

TEST(PartAndAssembly, MayStandInOneDocument)
{
    Draft draft = trianglePart();
    draft.assembly().rejected = true;
    const Buffers buffers = draft.buffers();
    const auto outcome = decode(buffers);
    EXPECT_EQ(outcome.kind, ReadOutcome::kRead) << outcome.reason;
    EXPECT_NE(outcome.document->part(), nullptr);
    EXPECT_NE(outcome.document->assembly(), nullptr);
}

TEST(Progress, IsToldForEachTessellation)
{
    Draft draft = trianglePart();
    for (int i = 0; i < 3; ++i)
        draft.addTessellation();
    const Buffers buffers = draft.buffers();
    Context context;
    EXPECT_EQ(decode(buffers, context).kind, ReadOutcome::kRead);
    EXPECT_THAT(context.shares, ElementsAre(0.25f, 0.5f, 0.75f, 1.0f));
}

TEST(Cancellation, AtAnyQuestionEndsTheRead)
{
    const Buffers buffers = everything().buffers();
    Context whole;
    ASSERT_EQ(decode(buffers, whole).kind, ReadOutcome::kRead);
    ASSERT_GE(whole.questions, 3);
    for (long long answers = 0; answers < whole.questions; ++answers) {
        Context context;
        context.answersBeforeCancel = answers;
        const auto outcome = decode(buffers, context);
        EXPECT_EQ(outcome.kind, ReadOutcome::kCancelled) << answers;
        EXPECT_EQ(outcome.document, nullptr);
        EXPECT_EQ(context.questions, answers + 1);
    }
}

TEST(Cancellation, IsAskedForWithinALargeDocument)
{
    Draft draft = trianglePart();
    for (int i = 0; i < 20000; ++i)
        draft.document.components.push_back(std::make_unique<fb::ComponentT>());
    const Buffers buffers = draft.buffers();
    Context context;
    ASSERT_EQ(decode(buffers, context).kind, ReadOutcome::kRead);
    EXPECT_GE(context.questions, 5);
}

TEST(WhatTheHostRaises, GoesThrough)
{
    struct Raising : Context {
        bool cancelled() override { throw std::runtime_error("host"); }
    };
    const Buffers buffers = trianglePart().buffers();
    Raising context;
    EXPECT_THROW(decode(buffers, context), std::runtime_error);
}

}  // namespace
}  // namespace ovdl_tests
