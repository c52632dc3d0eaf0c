#include <gmock/gmock.h>

#include <bit>
#include <cstring>
#include <list>
#include <type_traits>

#include "raylume/persist/RLCameraData.h"
#include "raylume/persist/RLData.h"
#include "raylume/persist/RLEnvironmentMaterial.h"
#include "raylume/persist/RLMaskMaterial.h"
#include "raylume/persist/RLSceneData.h"
#include "raylume/persist/RLTextureInfo.h"
#include "tests/persist/Archives.h"
#include "tests/persist/StreamBuilder.h"
#include "tests/platform/ScopedEnvironment.h"

namespace {

using namespace persist_tests;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr float kUnset = -100000000.0f;
constexpr int kEndOfFile = 3;

std::uint32_t bitsOf(float value)
{
    return std::bit_cast<std::uint32_t>(value);
}

static_assert(std::is_abstract_v<RLSerializable> && std::is_polymorphic_v<RLSerializable>);
static_assert(sizeof(RLSerializable) == sizeof(void*));
static_assert(std::is_standard_layout_v<RLArchive>);

// A host's own record, which is complete with the one operation.
struct Only final : RLSerializable {
    void serialize(RLArchive&) override {}
};
static_assert(!std::is_abstract_v<Only> && sizeof(Only) == sizeof(void*));

template <class Record>
class AnyRecord : public testing::Test {
};
using AllRecords = testing::Types<RLSerializable, RLData, RLCameraData, RLEnvironmentMaterial, RLSceneData,
                                  RLMaskMaterial, RLFloatChannel, RLStringTag, RLTextureInfo>;
TYPED_TEST_SUITE(AnyRecord, AllRecords);

TYPED_TEST(AnyRecord, IsSerializableWithoutAVirtualDestructor)
{
    EXPECT_TRUE((std::is_base_of_v<RLSerializable, TypeParam>));
    EXPECT_FALSE(std::has_virtual_destructor_v<TypeParam>);
}

// --- RLFloatChannel, RLStringTag

TEST(FloatChannel, IsEmptyWhenNew)
{
    const RLFloatChannel channel;
    EXPECT_EQ(bitsOf(channel.getFloatVal()), 0u);
    EXPECT_EQ(channel.getChannelName(), "");
}

TEST(FloatChannel, HasAccessorsForItsFields)
{
    RLFloatChannel channel("gloss", 1.5f);
    EXPECT_EQ(channel.channelName, "gloss");
    EXPECT_EQ(channel.floatVal, 1.5f);
    channel.setChannelName("bump");
    channel.setFloatVal(2.5f);
    EXPECT_EQ(channel.getChannelName(), "bump");
    EXPECT_EQ(channel.getFloatVal(), 2.5f);
}

TEST(FloatChannel, StoresItsNameFirst)
{
    RLFloatChannel channel("a", 1.0f), read;
    EXPECT_EQ(stored(channel), Bytes().text("a").f32(1).get());
    EXPECT_EQ(load(read, Bytes().text("a").f32(1).raw("rest").get()), "rest");
    EXPECT_EQ(read.getChannelName(), "a");
    EXPECT_EQ(read.getFloatVal(), 1.0f);
}

TEST(StringTag, IsEmptyWhenNew)
{
    const RLStringTag tag;
    EXPECT_EQ(tag.getTagID(), 0u);
    EXPECT_EQ(tag.getTag(), "");
}

TEST(StringTag, HasAccessorsForItsFields)
{
    RLStringTag tag(0xFFFFFFFFu, "text");
    EXPECT_EQ(tag.tagID, 0xFFFFFFFFu);
    EXPECT_EQ(tag.tag, "text");
    tag.setTagID(3);
    tag.setTag("other");
    EXPECT_EQ(tag.getTagID(), 3u);
    EXPECT_EQ(tag.getTag(), "other");
}

TEST(StringTag, StoresItsNumberFirst)
{
    RLStringTag tag(1, "a"), read;
    EXPECT_EQ(stored(tag), Bytes().u32(1).text("a").get());
    EXPECT_EQ(load(read, Bytes().u32(1).text("a").raw("rest").get()), "rest");
    EXPECT_EQ(read.getTagID(), 1u);
    EXPECT_EQ(read.getTag(), "a");
}

// --- RLTextureInfo

TEST(TextureInfo, HasAScaleOfZeroWhenNew)
{
    const RLTextureInfo info;
    float values[3] = {9, 9, 9};
    for (const auto get :
         {&RLTextureInfo::getScale, &RLTextureInfo::getPosition, &RLTextureInfo::getRotation}) {
        (info.*get)(values);
        EXPECT_THAT(values, ElementsAre(0, 0, 0));
        values[0] = 9;
    }
    EXPECT_EQ(info.getProjectionType(), 0);
    EXPECT_EQ(info.getProjectionAxis(), 2);
    EXPECT_EQ(info.getHorizontalWrap(), 1.0f);
    EXPECT_EQ(info.getVerticalWrap(), 1.0f);
}

RLTextureInfo sampleTexture()
{
    RLTextureInfo info;
    const float values[] = {1, 2, 3, 4, 5, 6, 7, 8, 9};
    info.setScale(values);
    info.setPosition(values + 3);
    info.setRotation(values + 6);
    info.setProjectionType(-3);
    info.setProjectionAxis(1);
    info.setHorizontalWrap(0.5f);
    info.setVerticalWrap(0.25f);
    return info;
}

TEST(TextureInfo, CopiesItsVectorsInAndOut)
{
    RLTextureInfo info = sampleTexture();
    float values[4] = {0, 0, 0, 42};
    info.getPosition(values);
    EXPECT_THAT(values, ElementsAre(4, 5, 6, 42));
    values[0] = 99;
    EXPECT_EQ(info.position[0], 4);
    EXPECT_THAT(info.scale, ElementsAre(1, 2, 3));
    EXPECT_THAT(info.rotation, ElementsAre(7, 8, 9));
    EXPECT_EQ(info.getProjectionType(), -3);
    EXPECT_EQ(info.getVerticalWrap(), 0.25f);
}

TEST(TextureInfo, Takes52BytesOfAnyVersion)
{
    RLTextureInfo info = sampleTexture();
    Bytes bytes;
    for (int i = 1; i <= 9; ++i)
        bytes.f32(static_cast<float>(i));
    bytes.i32(-3).i32(1).f32(0.5f).f32(0.25f);
    ASSERT_EQ(bytes.size(), 52u);
    for (const std::uint32_t version : {0u, 10u, 0x80000000u}) {
        RLTextureInfo read;
        EXPECT_EQ(stored(info, version), bytes.get());
        EXPECT_EQ(load(read, bytes.get(), version), "");
        EXPECT_EQ(stored(read), bytes.get());
    }
}

// --- RLMaskMaterial

TEST(MaskMaterial, IsEmptyWhenNew)
{
    RLMaskMaterial mask;
    EXPECT_THAT(mask.diffuseColor, ElementsAre(0, 0, 0, 0));
    EXPECT_EQ(mask.getMaskType() + mask.getMaskPTag() + mask.getMaskName() + mask.getMaterialName(), "");
    EXPECT_FALSE(mask.getMaterialAtRoot());
    EXPECT_THAT(mask.getFloatChannels(), IsEmpty());
    EXPECT_THAT(mask.getStringTags(), IsEmpty());
    EXPECT_TRUE(mask.getAdvMaterialIsSet());
}

TEST(MaskMaterial, HasAccessorsForItsFields)
{
    RLMaskMaterial mask;
    const float colour[] = {1, 2, 3, 4};
    mask.setDiffuseColor(colour);
    mask.setMaskType("type");
    mask.setMaskPTag("ptag");
    mask.setMaskName("name");
    mask.setMaterialName("material");
    mask.setMaterialAtRoot(true);
    EXPECT_EQ(mask.getDiffuseColor(), mask.diffuseColor);
    EXPECT_THAT(mask.diffuseColor, ElementsAre(1, 2, 3, 4));
    EXPECT_EQ(mask.getMaskType(), "type");
    EXPECT_EQ(mask.getMaskPTag(), "ptag");
    EXPECT_EQ(mask.getMaskName(), "name");
    EXPECT_EQ(mask.getMaterialName(), "material");
    EXPECT_TRUE(mask.getMaterialAtRoot());
    EXPECT_EQ(&mask.getFloatChannels(), &mask.floatChannels);
    EXPECT_EQ(&mask.getStringTags(), &mask.stringTags);
}

TEST(MaskMaterial, TakesNullForEmptyText)
{
    RLMaskMaterial mask;
    mask.setMaskName("name");
    mask.setMaskName(nullptr);
    EXPECT_EQ(mask.getMaskName(), "");
}

TEST(MaskMaterial, KeepsRepeatsInTheOrderOfAdding)
{
    RLMaskMaterial mask;
    mask.addFloatChannel("b", 1);
    mask.addFloatChannel("a", 2);
    mask.addFloatChannel("b", 3);
    mask.addStringTag(9, "x");
    mask.addStringTag(2, "y");
    mask.addStringTag(9, "z");
    std::string order;
    for (const RLFloatChannel& channel : mask.getFloatChannels())
        order += channel.getChannelName() + std::to_string(static_cast<int>(channel.getFloatVal()));
    for (const RLStringTag& tag : mask.getStringTags())
        order += std::to_string(tag.getTagID()) + tag.getTag();
    EXPECT_EQ(order, "b1a2b39x2y9z");
    RLMaskMaterial read;
    load(read, stored(mask));
    EXPECT_EQ(stored(read), stored(mask));
}

TEST(MaskMaterial, ReadsItsFieldsInTheOrderOfTheStream)
{
    for (const std::uint32_t version : {0u, 1u, 10u, 0x80000000u}) {
        Bytes bytes;
        addMask(bytes, version, "1");
        RLMaskMaterial mask;
        EXPECT_EQ(load(mask, bytes.get() + "rest", version), "rest") << version;
        EXPECT_EQ(mask.getMaskName(), "name1");
        EXPECT_EQ(mask.getMaskType(), "type1");
        EXPECT_EQ(mask.getMaskPTag(), "ptag1");
        EXPECT_EQ(mask.getMaterialName(), "material1");
        EXPECT_THAT(mask.diffuseColor, ElementsAre(0.125f, 0.25f, 0.5f, 0.75f));
        EXPECT_TRUE(mask.getMaterialAtRoot());
        EXPECT_EQ(mask.getFloatChannels().size(), version == 0 ? 0u : 2u);
        EXPECT_EQ(mask.getStringTags().size(), version == 0 ? 0u : 1u);
        EXPECT_EQ(mask.getAdvMaterialIsSet(), version != 0);
    }
}

TEST(MaskMaterial, StoresBothListsWhateverTheVersion)
{
    RLMaskMaterial mask;
    Bytes bytes;
    bytes.text("").text("").text("").text("").f32(0).f32(0).f32(0).f32(0).flag(false).u32(0).u32(0);
    EXPECT_EQ(stored(mask, 0), bytes.get());
    RLMaskMaterial read;
    EXPECT_EQ(load(read, bytes.get(), 1), "");
    EXPECT_TRUE(read.getAdvMaterialIsSet());
}

TEST(MaskMaterial, IsAdvancedAgainAfterALaterStream)
{
    RLMaskMaterial mask;
    Bytes old, later;
    addMask(old, 0, "1");
    addMask(later, 1, "1");
    load(mask, old.get(), 0);
    EXPECT_FALSE(mask.getAdvMaterialIsSet());
    load(mask, later.get(), 1);
    EXPECT_TRUE(mask.getAdvMaterialIsSet());
}

TEST(MaskMaterial, IsNotAdvancedWhenAListIsCutShort)
{
    Bytes bytes;
    addMask(bytes, 1, "1");
    RLMaskMaterial mask;
    EXPECT_EQ(causeOf([&] { load(mask, bytes.get().substr(0, bytes.size() - 1), 1); }), kEndOfFile);
    EXPECT_FALSE(mask.getAdvMaterialIsSet());
}

TEST(MaskMaterial, AppendsToItsListsWhenLoadedTwice)
{
    Bytes bytes;
    addMask(bytes, 1, "1");
    RLMaskMaterial mask;
    load(mask, bytes.get(), 1);
    load(mask, bytes.get(), 1);
    EXPECT_EQ(mask.getFloatChannels().size(), 4u);
    EXPECT_EQ(mask.getStringTags().size(), 2u);
}

TEST(MaskMaterial, LosesTheElementThatFailsAndKeepsThoseBefore)
{
    Bytes bytes;
    bytes.text("").text("").text("").text("").f32(0).f32(0).f32(0).f32(0).flag(false);
    bytes.u32(0xFFFFFFFF).text("first").f32(1).text("second").u8(0);
    RLMaskMaterial mask;
    EXPECT_EQ(causeOf([&] { load(mask, bytes.get(), 1); }), kEndOfFile);
    ASSERT_EQ(mask.getFloatChannels().size(), 1u);
    EXPECT_EQ(mask.getFloatChannels().front().getChannelName(), "first");
}

TEST(MaskMaterial, CopiesAndMovesMemberByMember)
{
    RLMaskMaterial mask;
    mask.setMaskName("name");
    mask.addFloatChannel("a", 1);
    mask.addStringTag(1, "t");
    mask.advMaterialIsSet = false;
    RLMaskMaterial copy(mask), assigned;
    assigned.addFloatChannel("old", 0);
    assigned = mask;
    EXPECT_EQ(stored(copy), stored(mask));
    EXPECT_EQ(stored(assigned), stored(mask));
    EXPECT_FALSE(assigned.getAdvMaterialIsSet());
    const RLMaskMaterial moved(std::move(copy));
    EXPECT_EQ(moved.getFloatChannels().size(), 1u);
    EXPECT_EQ(moved.getMaskName(), "name");
    EXPECT_EQ(mask.getFloatChannels().size(), 1u);
}

// --- RLEnvironmentMaterial

void expectToneDefaults(const RLEnvironmentMaterial& environment)
{
    for (const float value :
         {environment.getWhiteLevel(), environment.getGamma(), environment.getBloomThr(),
          environment.getBloomRad(), environment.getToneAmt()})
        EXPECT_EQ(bitsOf(value), 0xCCBEBC20u);
    EXPECT_FALSE(environment.getClamp());
    EXPECT_FALSE(environment.getBloom());
}

TEST(EnvironmentMaterial, IsUnsetWhenNew)
{
    const RLEnvironmentMaterial environment;
    EXPECT_EQ(environment.getEnvironmentName(), "");
    EXPECT_THAT(environment.getStringTags(), IsEmpty());
    expectToneDefaults(environment);
}

TEST(EnvironmentMaterial, HasAccessorsForItsFields)
{
    RLEnvironmentMaterial environment;
    environment.setEnvironmentName("studio");
    environment.setWhiteLevel(1.5f);
    environment.setClamp(true);
    environment.setGamma(2.25f);
    environment.setBloom(true);
    environment.setBloomThr(3.5f);
    environment.setBloomRad(4.5f);
    environment.setToneAmt(5.5f);
    environment.addStringTag(5, "five");
    environment.addStringTag(6, "six");
    EXPECT_EQ(environment.getEnvironmentName(), "studio");
    EXPECT_EQ(environment.getWhiteLevel(), 1.5f);
    EXPECT_TRUE(environment.getClamp());
    EXPECT_EQ(environment.getGamma(), 2.25f);
    EXPECT_TRUE(environment.getBloom());
    EXPECT_EQ(environment.getBloomThr(), 3.5f);
    EXPECT_EQ(environment.getBloomRad(), 4.5f);
    EXPECT_EQ(environment.getToneAmt(), 5.5f);
    EXPECT_EQ(&environment.getStringTags(), &environment.stringTags);
    Bytes bytes;
    addEnvironment(bytes, 10);
    EXPECT_EQ(stored(environment, 0), bytes.get());
    environment.setEnvironmentName(nullptr);
    EXPECT_EQ(environment.getEnvironmentName(), "");
}

TEST(EnvironmentMaterial, NeverReplacesATag)
{
    RLEnvironmentMaterial environment;
    environment.addStringTag(1, "a");
    environment.addStringTag(1, "b");
    ASSERT_EQ(environment.getStringTags().size(), 2u);
    EXPECT_EQ(environment.getStringTags().front().getTag(), "a");
    EXPECT_EQ(environment.getStringTags().back().getTag(), "b");
}

TEST(EnvironmentMaterial, OfVersion1ReadsItsNameAlone)
{
    for (const std::uint32_t version : {0u, 1u}) {
        Bytes bytes;
        bytes.text("studio").u32(2);
        RLEnvironmentMaterial environment;
        EXPECT_EQ(load(environment, bytes.get(), version), std::string("\2\0\0\0", 4)) << version;
        EXPECT_EQ(environment.getEnvironmentName(), "studio");
        EXPECT_THAT(environment.getStringTags(), IsEmpty());
        expectToneDefaults(environment);
    }
}

TEST(EnvironmentMaterial, UpToVersion7HasTagsAndNoTones)
{
    for (const std::uint32_t version : {2u, 7u}) {
        Bytes bytes;
        addEnvironment(bytes, version);
        RLEnvironmentMaterial environment;
        EXPECT_EQ(load(environment, bytes.get() + "rest", version), "rest") << version;
        EXPECT_EQ(environment.getStringTags().size(), 2u);
        expectToneDefaults(environment);
    }
}

TEST(EnvironmentMaterial, FromVersion8OnHasAll)
{
    for (const std::uint32_t version : {8u, 10u, 11u, 0x80000000u}) {
        Bytes bytes;
        addEnvironment(bytes, version);
        RLEnvironmentMaterial environment;
        EXPECT_EQ(load(environment, bytes.get() + "rest", version), "rest") << version;
        EXPECT_EQ(stored(environment), bytes.get());
    }
}

TEST(EnvironmentMaterial, KeepsItsTagsAheadOfThoseOfTheStream)
{
    Bytes bytes;
    addEnvironment(bytes, 2);
    RLEnvironmentMaterial environment;
    environment.addStringTag(1, "own");
    load(environment, bytes.get(), 2);
    ASSERT_EQ(environment.getStringTags().size(), 3u);
    EXPECT_EQ(environment.getStringTags().front().getTag(), "own");
}

TEST(EnvironmentMaterial, KeepsWhatTheVersionLacks)
{
    RLEnvironmentMaterial environment;
    environment.setToneAmt(4);
    load(environment, Bytes().text("studio").get(), 1);
    EXPECT_EQ(environment.getToneAmt(), 4.0f);
}

TEST(EnvironmentMaterial, CopiesItsListByValue)
{
    RLEnvironmentMaterial environment;
    environment.addStringTag(1, "a");
    RLEnvironmentMaterial copy(environment), assigned;
    assigned.addStringTag(2, "b");
    assigned = environment;
    environment.addStringTag(3, "c");
    EXPECT_EQ(copy.getStringTags().size(), 1u);
    ASSERT_EQ(assigned.getStringTags().size(), 1u);
    EXPECT_EQ(assigned.getStringTags().front().getTagID(), 1u);
}

// --- RLSceneData

TEST(SceneData, HasAFloorWhenNew)
{
    const RLSceneData scene;
    EXPECT_EQ(scene.getEnvironmentImage() + scene.getBackPlateImage(), "");
    EXPECT_EQ(scene.getFloor(), "ZX");
    EXPECT_EQ(scene.getFloorType(), "shadow");
    EXPECT_FALSE(scene.getEnvVisibility());
    EXPECT_FALSE(scene.getBkplVisibility());
    EXPECT_TRUE(scene.getFloorVisibility());
    EXPECT_FALSE(scene.getFloorFlip());
}

TEST(SceneData, HasAccessorsForItsFields)
{
    RLSceneData scene;
    scene.setEnvironmentImage("environment.hdr");
    scene.setEnvVisibility(true);
    scene.setBackPlateImage("plate.png");
    scene.setBkplVisibility(true);
    scene.setFloor("XY");
    scene.setFloorFlip(true);
    scene.setFloorVisibility(false);
    scene.setFloorType("reflect");
    EXPECT_EQ(scene.getEnvironmentImage(), "environment.hdr");
    EXPECT_TRUE(scene.getEnvVisibility());
    EXPECT_EQ(scene.getBackPlateImage(), "plate.png");
    EXPECT_TRUE(scene.getBkplVisibility());
    EXPECT_EQ(scene.getFloor(), "XY");
    EXPECT_TRUE(scene.getFloorFlip());
    EXPECT_FALSE(scene.getFloorVisibility());
    EXPECT_EQ(scene.getFloorType(), "reflect");
    Bytes bytes;
    addScene(bytes, 10);
    EXPECT_EQ(stored(scene, 0), bytes.get());
}

TEST(SceneData, ReadsWhatItsVersionHas)
{
    for (const std::uint32_t version : {5u, 6u, 7u, 9u, 10u, 11u, 0x80000000u}) {
        Bytes bytes;
        addScene(bytes, version);
        RLSceneData scene;
        EXPECT_EQ(load(scene, bytes.get() + "rest", version), "rest") << version;
        EXPECT_EQ(scene.getEnvironmentImage(), "environment.hdr");
        EXPECT_TRUE(scene.getEnvVisibility());
        EXPECT_EQ(scene.getBackPlateImage(), "plate.png");
        EXPECT_TRUE(scene.getBkplVisibility());
        EXPECT_EQ(scene.getFloor(), version >= 7 ? "XY" : "ZX");
        EXPECT_EQ(scene.getFloorFlip(), version >= 7);
        EXPECT_EQ(scene.getFloorVisibility(), version < 7);
        EXPECT_EQ(scene.getFloorType(), version >= 10 ? "reflect" : "shadow") << version;
    }
}

TEST(SceneData, StoresItsFlagsInOrderOfTheStream)
{
    RLSceneData scene;
    scene.setFloorFlip(true);
    scene.setFloorVisibility(false);
    RLSceneData read;
    load(read, stored(scene));
    EXPECT_TRUE(read.getFloorFlip());
    EXPECT_FALSE(read.getFloorVisibility());
}

// --- RLCameraData, its views aside

class CameraData : public testing::Test {
protected:
    // No folder of views on either side.
    ScopedVariable data_{"XDG_DATA_HOME", "/dev/null/none"};
};

TEST_F(CameraData, HasTheLowestFloatForItsFocalLengthWhenNew)
{
    const RLCameraData camera;
    EXPECT_THAT(camera.rotation, ElementsAre(0, 0, 0));
    EXPECT_THAT(camera.translation, ElementsAre(0, 0, 0));
    EXPECT_EQ(bitsOf(camera.getTarget()), 0u);
    EXPECT_EQ(bitsOf(camera.getFocalLength()), 0xFF7FFFFFu);
    EXPECT_EQ(camera.getProjType(), -1);
    EXPECT_EQ(bitsOf(camera.getFocusDist()), 0xCCBEBC20u);
    EXPECT_EQ(bitsOf(camera.getFStop()), 0xCCBEBC20u);
    EXPECT_EQ(camera.getFrameWidth(), 100);
    EXPECT_EQ(camera.getFrameHeight(), 100);
    EXPECT_FALSE(camera.getRDOF());
    EXPECT_EQ(camera.getPreviewRenderQuality() + camera.getFullRenderQuality() + camera.getImageFormat(),
              "");
}

RLCameraData sampleCamera()
{
    RLCameraData camera;
    const float values[] = {1, 2, 3, 4, 5, 6};
    camera.setRotation(values);
    camera.setTranslation(values + 3);
    camera.setTarget(7);
    camera.setFocalLength(35.5f);
    camera.setProjType(2);
    camera.setFocusDist(8.5f);
    camera.setFStop(2.75f);
    camera.setFrameWidth(640);
    camera.setFrameHeight(480);
    camera.setRDOF(true);
    camera.setPreviewRenderQuality("draft");
    camera.setFullRenderQuality("best");
    camera.setImageFormat("png");
    return camera;
}

TEST_F(CameraData, HasAccessorsForItsFields)
{
    RLCameraData camera = sampleCamera();
    EXPECT_EQ(camera.getRotation(), camera.rotation);
    EXPECT_THAT(camera.rotation, ElementsAre(1, 2, 3));
    EXPECT_EQ(camera.getTranslation(), camera.translation);
    EXPECT_THAT(camera.translation, ElementsAre(4, 5, 6));
    EXPECT_EQ(camera.getTarget(), 7);
    EXPECT_EQ(camera.getFocalLength(), 35.5f);
    EXPECT_EQ(camera.getProjType(), 2);
    EXPECT_EQ(camera.getFocusDist(), 8.5f);
    EXPECT_EQ(camera.getFStop(), 2.75f);
    EXPECT_EQ(camera.getFrameWidth(), 640);
    EXPECT_EQ(camera.getFrameHeight(), 480);
    EXPECT_TRUE(camera.getRDOF());
    EXPECT_EQ(camera.getPreviewRenderQuality(), "draft");
    EXPECT_EQ(camera.getFullRenderQuality(), "best");
    EXPECT_EQ(camera.getImageFormat(), "png");
}

TEST_F(CameraData, StoresAllFieldsWhateverTheVersion)
{
    RLCameraData camera = sampleCamera();
    Bytes bytes;
    bytes.f32(1).f32(2).f32(3).f32(4).f32(5).f32(6).f32(7).f32(35.5f).i32(2);
    bytes.f32(8.5f).f32(2.75f).i32(640).i32(480).flag(true).text("draft").text("best").text("png");
    for (const std::uint32_t version : {0u, 10u})
        EXPECT_EQ(stored(camera, version), bytes.get()) << version;
}

TEST_F(CameraData, WithoutAFolderOnEitherSideReadsBack)
{
    RLCameraData camera = sampleCamera();
    RLCameraData read;
    EXPECT_EQ(load(read, stored(camera)), "");
    EXPECT_EQ(stored(read), stored(camera));
}

TEST_F(CameraData, ReadsWhatItsVersionHas)
{
    for (const std::uint32_t version : {3u, 4u, 5u, 6u, 7u, 8u, 9u, 10u, 11u, 0x80000000u}) {
        Bytes bytes;
        bytes.f32(1).f32(2).f32(3).f32(4).f32(5).f32(6).f32(7);
        if (version > 3)
            bytes.f32(35.5f).i32(2);
        if (version > 7)
            bytes.f32(8.5f).f32(2.75f).i32(640).i32(480).flag(true).text("draft").text("best");
        if (version >= 9)
            bytes.text("png");
        RLCameraData camera;
        EXPECT_EQ(load(camera, bytes.get() + "rest", version), "rest") << version;
        EXPECT_THAT(camera.rotation, ElementsAre(1, 2, 3));
        EXPECT_THAT(camera.translation, ElementsAre(4, 5, 6));
        EXPECT_EQ(camera.getTarget(), 7);
        EXPECT_EQ(bitsOf(camera.getFocalLength()), version > 3 ? bitsOf(35.5f) : 0xFF7FFFFFu);
        EXPECT_EQ(camera.getProjType(), version > 3 ? 2 : -1);
        EXPECT_EQ(camera.getFocusDist(), version > 7 ? 8.5f : kUnset);
        EXPECT_EQ(camera.getFStop(), version > 7 ? 2.75f : kUnset);
        EXPECT_EQ(camera.getFrameWidth(), version > 7 ? 640 : 100);
        EXPECT_EQ(camera.getFrameHeight(), version > 7 ? 480 : 100);
        EXPECT_EQ(camera.getRDOF(), version > 7);
        EXPECT_EQ(camera.getPreviewRenderQuality(), version > 7 ? "draft" : "");
        EXPECT_EQ(camera.getFullRenderQuality(), version > 7 ? "best" : "");
        EXPECT_EQ(camera.getImageFormat(), version >= 9 ? "png" : "");
    }
}

TEST_F(CameraData, CutShortKeepsTheEarlierFieldsAndLeavesTheOthers)
{
    RLCameraData camera;
    Bytes bytes;
    bytes.f32(1).f32(2).f32(3).f32(4).f32(5);
    EXPECT_EQ(causeOf([&] { load(camera, bytes.get()); }), kEndOfFile);
    EXPECT_THAT(camera.rotation, ElementsAre(1, 2, 3));
    EXPECT_THAT(camera.translation, ElementsAre(4, 5, 0));
    EXPECT_EQ(bitsOf(camera.getFocalLength()), 0xFF7FFFFFu);
}

}  // namespace
