// The plain records of the interface: defaults, copies, and operations that answer from members.
#include <gmock/gmock.h>

#include <limits>
#include <type_traits>

#include "ReaderFixtures.h"
#include "raylume/platform/Errors.h"

namespace {

using testing::ElementsAre;

// Reader libraries and tests derive from these and delete through the base.
static_assert(std::has_virtual_destructor_v<uoMaterialProperties>);
static_assert(std::has_virtual_destructor_v<uoMaterialTextureProperties>);
static_assert(std::has_virtual_destructor_v<suFileStorage>);
static_assert(std::has_virtual_destructor_v<OVDLDocument>);
static_assert(std::is_base_of_v<suFileStorage, suStructuredStorage>);

// The constness of what answers by configuration is part of the interface.
static_assert(
    std::is_same_v<decltype(&uoTempPartTessData_c::getNumBodies), int (uoTempPartTessData_c::*)() const>);
static_assert(std::is_same_v<decltype(&uoTempPartTessData_c::getModelVizProp),
                             moVisualProperties_c* (uoTempPartTessData_c::*)(int) const>);
static_assert(std::is_same_v<decltype(&uoTempBodyTessData_c::getBodyVizProp),
                             moVisualProperties_c* (uoTempBodyTessData_c::*)(int)>);
static_assert(std::is_same_v<decltype(&uoTempBodyTessData_c::getBodyPropInfo),
                             uoBodyPropInfo_c* (uoTempBodyTessData_c::*)(int)>);
static_assert(std::is_same_v<decltype(&uoTempFaceTessData_c::getFaceVizProp),
                             moVisualProperties_c* (uoTempFaceTessData_c::*)(int)>);
static_assert(std::is_same_v<decltype(&uoTempFaceTessData_c::getVizPropMode),
                             VizPropMode_e (uoTempFaceTessData_c::*)(int)>);
static_assert(std::is_same_v<decltype(&CDispListsDoc::getTempDispListDataSHDArrayForConfig),
                             uoTempAssemblySHDDataArray_c* (CDispListsDoc::*)(std::wstring&)>);
static_assert(std::is_same_v<decltype(&uoDecalProperties::getColorMask),
                             std::list<unsigned long> (uoDecalProperties::*)()>);

TEST(PointerArray, RaisesInvalidArgumentOutsideAndMayHoldNullInside)
{
    fixtures::RecordingCallbacks unused;
    OVDL_Callbacks* elements[] = {&unused, nullptr};
    const ovPointerArray<OVDL_Callbacks> array{elements, 2};
    EXPECT_EQ(array.at(0), &unused);
    EXPECT_EQ(array.at(1), nullptr);
    for (const long long outside :
         {-1ll, 2ll, std::numeric_limits<long long>::max(), std::numeric_limits<long long>::min()}) {
        try {
            array.at(outside);
            ADD_FAILURE() << "nothing raised at " << outside;
        } catch (const platform::ComError& error) {
            EXPECT_EQ(error.code(), 0x80070057u);
        }
    }
}

TEST(PointerArray, IsEmptyAtFirst)
{
    const uoTempAssemblySHDDataArray_c array;
    EXPECT_EQ(array.count, 0);
    EXPECT_THROW(array.at(0), platform::ComError);
}

TEST(TextureProperties, HaveAScaleForTwoDirections)
{
    uoMaterialTextureProperties texture;
    EXPECT_EQ(texture.getTextureScale(0), 1.0);
    texture.scale[0] = 2.0;
    texture.scale[1] = 3.0;
    EXPECT_EQ(texture.getTextureScale(0), 2.0);
    EXPECT_EQ(texture.getTextureScale(1), 3.0);
    EXPECT_EQ(texture.getTextureScale(2), 1.0);
    EXPECT_EQ(texture.getTextureScale(-1), 1.0);
}

TEST(TextureProperties, WriteRangesOnlyIfThereAreSome)
{
    uoMaterialTextureProperties texture;
    double from = -1, to = -2;
    texture.ranges[1][0] = 3;
    texture.ranges[1][1] = 4;
    EXPECT_FALSE(texture.getTextureRanges(1, from, to));
    EXPECT_EQ(from, -1);
    texture.hasRanges = true;
    EXPECT_FALSE(texture.getTextureRanges(2, from, to));
    EXPECT_FALSE(texture.getTextureRanges(-1, from, to));
    EXPECT_EQ(to, -2);
    EXPECT_TRUE(texture.getTextureRanges(1, from, to));
    EXPECT_EQ(from, 3);
    EXPECT_EQ(to, 4);
}

TEST(TextureProperties, WriteDirectionsOnlyIfThereAreSome)
{
    uoMaterialTextureProperties texture;
    double v[3] = {-1, -2, -3};
    texture.directions[0][0] = 5;
    texture.directions[0][1] = 6;
    texture.directions[0][2] = 7;
    EXPECT_FALSE(texture.getTextureDir(0, v[0], v[1], v[2]));
    texture.hasDirections = true;
    EXPECT_FALSE(texture.getTextureDir(2, v[0], v[1], v[2]));
    EXPECT_THAT(v, ElementsAre(-1, -2, -3));
    EXPECT_TRUE(texture.getTextureDir(0, v[0], v[1], v[2]));
    EXPECT_THAT(v, ElementsAre(5, 6, 7));
}

TEST(TextureProperties, AnswerFromTheirMembersAndSoDoCopies)
{
    uoMaterialTextureProperties texture;
    texture.angle = 30;
    texture.transX = 0.1;
    texture.transY = 0.2;
    texture.filename = L"wood.png";
    uoMaterialTextureProperties copy(texture);
    texture = uoMaterialTextureProperties();
    EXPECT_EQ(texture.getTextureFilename(), L"");
    EXPECT_EQ(copy.getTextureAngle(), 30);
    EXPECT_EQ(copy.getTextureTransX(), 0.1);
    EXPECT_EQ(copy.getTextureTransY(), 0.2);
    EXPECT_EQ(copy.getTextureFilename(), L"wood.png");
}

TEST(RenderAppearance, AnswersFromItsMembers)
{
    uoRVAppearanceProperties appearance;
    appearance.lfpFilename = L"a.lfp";
    appearance.bumpTextureFilename = L"b.png";
    appearance.filename = L"c.p2m";
    appearance.shaderName = L"texture";
    appearance.dimpleFileNumber = 4;
    appearance.knurlFileNumber = 5;
    uoRVAppearanceProperties copy(appearance);
    EXPECT_EQ(copy.getLFPFilename(), L"a.lfp");
    EXPECT_EQ(copy.getBumpTextureFilename(), L"b.png");
    EXPECT_EQ(copy.getFilename(), L"c.p2m");
    EXPECT_EQ(copy.getRVShaderName(), L"texture");
    EXPECT_EQ(copy.getDimpleFileNumber(), 4);
    EXPECT_EQ(copy.getKnurlFileNumber(), 5);
}

TEST(MaterialProperties, ShareWhatTheyPointAtWithTheirCopies)
{
    uoMaterialTextureProperties texture;
    uoRVAppearanceProperties appearance;
    uoMaterialProperties material;
    material.textureProperties = &texture;
    material.rvAppearance = &appearance;
    material.idName = L"steel";
    material.userName = L"Steel, brushed";
    uoMaterialProperties copy(material);
    EXPECT_EQ(copy.textureProperties, &texture);
    EXPECT_EQ(copy.rvAppearance, &appearance);
    EXPECT_EQ(copy.getIdName(), L"steel");
    EXPECT_EQ(copy.getUserName(), L"Steel, brushed");
}

TEST(Decals, GiveTheirColoursInOrderWithEqualOnesTwice)
{
    uoDecalProperties decal;
    EXPECT_TRUE(decal.getColorMask().empty());
    decal.colorMask = {0xFFFFFFFFu, 3u, 3u, 0u};
    EXPECT_THAT(decal.getColorMask(), ElementsAre(0xFFFFFFFFul, 3ul, 3ul, 0ul));
}

TEST(Lights, HaveATypeAndCopyEverything)
{
    moLight_c light;
    EXPECT_EQ(light.getLightType(), LIGHT_DIRECTIONAL);
    light.lightType = LIGHT_SUN;
    light.sourceStamp = 0x0123456789ABCDEFull;
    light.sourceVectorC[2] = 9;
    const moLight_c copy(light);
    EXPECT_EQ(copy.getLightType(), LIGHT_SUN);
    EXPECT_EQ(copy.sourceStamp, 0x0123456789ABCDEFull);
    EXPECT_EQ(copy.sourceVectorC[2], 9);
}

TEST(LightTypes, HaveTheirNumbers)
{
    EXPECT_EQ(LIGHT_AIMED, 2);
    EXPECT_EQ(LIGHT_POSITIONED, 3);
    EXPECT_EQ(LIGHT_DIRECTIONAL, 4);
    EXPECT_EQ(LIGHT_SUN, 6);
}

TEST(SceneData, AnswersFromItsMembers)
{
    pwWallInfo_c floor;
    pwSceneData_c scene;
    scene.backgroundColor1.r = 0.25;
    scene.backgroundColor2.b = 0.5;
    scene.backgroundImages[1] = L"sky.jpg";
    scene.backgroundEnvImages[0] = L"hall.hdr";
    scene.sceneFileName = L"hall.p2s";
    scene.walls[0] = &floor;
    EXPECT_EQ(scene.getBackgroundColor1().r, 0.25);
    EXPECT_EQ(scene.getBackgroundColor2().b, 0.5);
    EXPECT_EQ(scene.getBackgroundImage(1), L"sky.jpg");
    EXPECT_EQ(scene.getBackgroundEnvImage(0), L"hall.hdr");
    EXPECT_EQ(scene.getSceneFileName(), L"hall.p2s");
    EXPECT_EQ(scene.getWallInfo(0), &floor);
}

TEST(SceneData, HasNothingUnderOtherNumbersAndMakesNoEntries)
{
    pwSceneData_c scene;
    EXPECT_EQ(scene.getBackgroundImage(0), L"");
    EXPECT_EQ(scene.getBackgroundEnvImage(-1), L"");
    EXPECT_EQ(scene.getWallInfo(0), nullptr);
    EXPECT_TRUE(scene.backgroundImages.empty());
    EXPECT_TRUE(scene.backgroundEnvImages.empty());
    EXPECT_TRUE(scene.walls.empty());
}

TEST(SceneHolder, WritesTheFloor)
{
    ovScene_c scene;
    scene.floorPoint = mgPoint_c(1, 2, 3);
    scene.floorVector = mgVector_c(4, 5, 6);
    mgPoint_c point;
    mgVector_c direction;
    scene.getFloorLocation(point, direction);
    EXPECT_EQ(point.x, 1);
    EXPECT_EQ(point.y, 2);
    EXPECT_EQ(point.z, 3);
    EXPECT_EQ(direction.x, 4);
    EXPECT_EQ(direction.y, 5);
    EXPECT_EQ(direction.z, 6);
    EXPECT_EQ(scene.sceneData, nullptr);
}

TEST(Tessellation, AnswersByConfigurationAndMakesNoEntries)
{
    moVisualProperties_c look;
    uoBodyPropInfo_c info;
    uoTempFaceTessData_c face;
    uoTempBodyTessData_c body;
    uoTempPartTessData_c part;
    face.faceVizProps[2] = &look;
    face.vizPropModes[2] = static_cast<VizPropMode_e>(5);
    body.bodyVizProps[-1] = &look;
    body.bodyPropInfos[-1] = &info;
    part.modelVizProps[0] = &look;
    EXPECT_EQ(face.getFaceVizProp(2), &look);
    EXPECT_EQ(face.getVizPropMode(2), 5);
    EXPECT_EQ(body.getBodyVizProp(-1), &look);
    EXPECT_EQ(body.getBodyPropInfo(-1), &info);
    EXPECT_EQ(part.getModelVizProp(0), &look);
    EXPECT_EQ(face.getFaceVizProp(3), nullptr);
    EXPECT_EQ(face.getVizPropMode(3), VizPropMode_none);
    EXPECT_EQ(body.getBodyVizProp(3), nullptr);
    EXPECT_EQ(body.getBodyPropInfo(3), nullptr);
    EXPECT_EQ(part.getModelVizProp(3), nullptr);
    EXPECT_EQ(face.faceVizProps.size() + face.vizPropModes.size() + body.bodyVizProps.size() +
                  body.bodyPropInfos.size() + part.modelVizProps.size(),
              5u);
}

TEST(Tessellation, CanBeReplacedOperationByOperation)
{
    struct Part : uoTempPartTessData_c {
        int getNumBodies() const override { return -4; }
    };
    const Part part;
    const uoTempPartTessData_c& base = part;
    EXPECT_EQ(base.getNumBodies(), -4);
}

struct BodyCount {
    const char* name;
    long long count;
    int bodies;
};

const BodyCount kBodyCounts[] = {
    {"none", 0, 0},
    {"some", 3, 3},
    {"most", std::numeric_limits<int>::max(), std::numeric_limits<int>::max()},
    {"more_than_an_int_holds", 0x100000000ll, std::numeric_limits<int>::max()},
    {"less_than_none", -2, -2},
    {"less_than_an_int_holds", -0x100000000ll, std::numeric_limits<int>::min()},
};

class NumBodies : public testing::TestWithParam<BodyCount> {};

TEST_P(NumBodies, IsTheCountOfTheArray)
{
    uoTempPartTessData_c part;
    part.bodies.count = GetParam().count;
    EXPECT_EQ(part.getNumBodies(), GetParam().bodies);
}

INSTANTIATE_TEST_SUITE_P(Rows, NumBodies, testing::ValuesIn(kBodyCounts),
                         [](const auto& row) { return row.param.name; });

TEST(Documents, HaveTheseDefaults)
{
    OVDLAssemblyDocument assembly;
    EXPECT_FALSE(assembly.isRejected());
    EXPECT_EQ(assembly.lightData, nullptr);
    EXPECT_EQ(assembly.sceneHolder, nullptr);
    EXPECT_EQ(assembly.viewScale, 1.0);
    EXPECT_THAT(assembly.viewPoint, ElementsAre(0, 0, 0));
    EXPECT_EQ(assembly.extrasBlock, nullptr);
    EXPECT_EQ(assembly.components.count, 0);
    OVDLPartDocument part;
    EXPECT_EQ(part.tessData, nullptr);
    EXPECT_EQ(part.activeConfigIndex, 0);
}

TEST(Documents, AnswerWhetherTheyAreRejected)
{
    OVDLPartDocument part;
    part.rejected = true;
    OVDLDocument& document = part;
    EXPECT_TRUE(document.isRejected());
}

TEST(Lists, TakeElementsAtTheEndAndCountThem)
{
    CList<CRectItem*, CRectItem*> list(10);
    EXPECT_EQ(list.GetCount(), 0);
    list.AddTail(nullptr);
    EXPECT_EQ(list.GetCount(), 1);
    list.RemoveAll();
    EXPECT_EQ(list.GetCount(), 0);
}

}  // namespace
