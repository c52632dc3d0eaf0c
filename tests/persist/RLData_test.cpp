#include "raylume/persist/RLData.h"

#include <gmock/gmock.h>

#include <memory>
#include <stdexcept>

#include "tests/persist/Archives.h"
#include "tests/persist/StreamBuilder.h"
#include "tests/platform/ScopedEnvironment.h"

namespace {

using namespace persist_tests;
using testing::IsEmpty;
using testing::SizeIs;

constexpr int kEndOfFile = 3;

class Data : public testing::Test {
protected:
    // No folder of views; see CustomViews_test.cpp for those.
    ScopedVariable data_{"XDG_DATA_HOME", "/dev/null/none"};
};

Bytes emptyStream(std::uint32_t version)
{
    Bytes bytes;
    bytes.u32(version).u32(0).text("env");
    if (version > 1)
        bytes.u32(0);
    if (version > 7)
        bytes.f32(0).flag(false).f32(0).flag(false).f32(0).f32(0).f32(0);
    return bytes;
}

TEST_F(Data, IsEmptyAndOfVersion1WhenNew)
{
    RLData data;
    EXPECT_THAT(data.getMaskMaterials(), IsEmpty());
    EXPECT_EQ(data.getEnvironmentMaterial().getEnvironmentName(), "");
    EXPECT_EQ(data.getCameraData(), nullptr);
    EXPECT_EQ(data.getSceneData(), nullptr);
    EXPECT_FALSE(data.hasCameraData());
    EXPECT_FALSE(data.hasSceneData());
    EXPECT_EQ(data.getStorageVersion(), 1u);
}

TEST_F(Data, AddsAndAssignsCopies)
{
    RLData data;
    RLMaskMaterial mask;
    mask.setMaskName("first");
    data.addMaskMaterial(mask);
    mask.setMaskName("second");
    data.addMaskMaterial(mask);
    ASSERT_THAT(data.getMaskMaterials(), SizeIs(2));
    EXPECT_EQ(data.getMaskMaterials().front().getMaskName(), "first");
    RLEnvironmentMaterial environment;
    environment.setEnvironmentName("before");
    data.setEnvironment(environment);
    environment.setEnvironmentName("after");
    EXPECT_EQ(data.getEnvironmentMaterial().getEnvironmentName(), "before");
    EXPECT_EQ(&data.getEnvironmentMaterial(), &data.environmentMaterial);
    EXPECT_EQ(&data.getMaskMaterials(), &data.maskMaterials);
}

TEST_F(Data, TakesOwnershipOfCameraAndScene)
{
    RLData data;
    auto* const camera = new RLCameraData;
    auto* const scene = new RLSceneData;
    data.setCameraData(camera);
    data.setSceneData(scene);
    EXPECT_TRUE(data.hasCameraData());
    EXPECT_TRUE(data.hasSceneData());
    camera->setImageFormat("a text long enough to have memory of its own");
    data.setCameraData(camera);  // The same: must not be destroyed.
    EXPECT_EQ(data.getCameraData()->getImageFormat(), "a text long enough to have memory of its own");
    data.setSceneData(scene);
    data.setCameraData(new RLCameraData);  // The sanitizers see a leak if the old one stays.
    EXPECT_NE(data.getCameraData(), nullptr);
    data.getSceneData()->setFloor("a text long enough to have memory of its own");
    data.setSceneData(new RLSceneData);
    ASSERT_NE(data.getSceneData(), nullptr);
    EXPECT_EQ(data.getSceneData()->getFloor(), "ZX");
    data.setCameraData(nullptr);
    data.setSceneData(nullptr);
    EXPECT_FALSE(data.hasCameraData());
    EXPECT_FALSE(data.hasSceneData());
}

TEST_F(Data, SharesCameraAndSceneWithItsCopies)
{
    RLData data;
    data.setCameraData(new RLCameraData);
    data.setSceneData(new RLSceneData);
    data.addMaskMaterial(RLMaskMaterial());
    data.setStorageVersion(7);
    RLData copy(data);
    EXPECT_EQ(copy.getCameraData(), data.getCameraData());
    EXPECT_EQ(copy.getSceneData(), data.getSceneData());
    EXPECT_THAT(copy.getMaskMaterials(), SizeIs(1));
    EXPECT_EQ(copy.getStorageVersion(), 7u);
    copy.cameraData = nullptr;
    copy.sceneData = nullptr;
    EXPECT_TRUE(data.hasCameraData());
}

TEST_F(Data, LeavesTheOldCameraAndSceneAliveWhenAssigned)
{
    RLData data, target;
    target.setCameraData(new RLCameraData);
    target.setSceneData(new RLSceneData);
    target.setStorageVersion(5);
    const std::unique_ptr<RLCameraData> oldCamera(target.getCameraData());
    const std::unique_ptr<RLSceneData> oldScene(target.getSceneData());
    target = data;
    EXPECT_EQ(target.getCameraData(), nullptr);
    EXPECT_EQ(target.getStorageVersion(), 1u);
    oldCamera->setProjType(3);  // The sanitizers see it if it is gone.
    EXPECT_EQ(oldCamera->getProjType(), 3);
    EXPECT_EQ(oldScene->getFloor(), "ZX");
}

TEST_F(Data, StoresTheCurrentVersionAndKeepsItsOwn)
{
    RLData data;
    data.setStorageVersion(3);
    Storing storing(3);
    data.serialize(storing.archive());
    EXPECT_EQ(storing.bytes().substr(0, 4), std::string("\12\0\0\0", 4));
    EXPECT_EQ(storing.archive().version, 10u);
    EXPECT_EQ(data.getStorageVersion(), 3u);
}

TEST_F(Data, StoresTheOrderOfTheStream)
{
    RLData data;
    EXPECT_EQ(stored(data), Bytes()
                                .u32(10)
                                .u32(0)
                                .text("")
                                .u32(0)
                                .f32(-1e8f)
                                .flag(false)
                                .f32(-1e8f)
                                .flag(false)
                                .f32(-1e8f)
                                .f32(-1e8f)
                                .f32(-1e8f)
                                .flag(false)
                                .flag(false)
                                .get());
}

std::string withoutViews(std::uint32_t version, Form form = Form::kWide)
{
    return sampleStream(version, form, std::nullopt).get();
}

TEST_F(Data, ReadsEveryVersion)
{
    for (std::uint32_t version = 0; version <= 11; ++version) {
        for (const Form form : {Form::kNarrow, Form::kWide}) {
            RLData data;
            EXPECT_EQ(load(data, withoutViews(version, form) + "trailing"), "trailing") << version;
            EXPECT_EQ(data.getStorageVersion(), version);
            ASSERT_THAT(data.getMaskMaterials(), SizeIs(2));
            EXPECT_EQ(data.getMaskMaterials().back().getMaskName(), "name2");
            EXPECT_EQ(data.getEnvironmentMaterial().getEnvironmentName(), "studio");
            EXPECT_EQ(data.hasCameraData(), version > 2) << version;
            EXPECT_EQ(data.hasSceneData(), version >= 5) << version;
        }
    }
}

TEST_F(Data, ReadsAnyLaterVersionLikeTheCurrentOne)
{
    for (const std::uint32_t version : {11u, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFFu}) {
        RLData data;
        EXPECT_EQ(load(data, withoutViews(version) + "more"), "more");
        EXPECT_EQ(data.getStorageVersion(), version);
        ASSERT_TRUE(data.hasSceneData());
        EXPECT_EQ(data.getSceneData()->getFloorType(), "reflect");
    }
}

TEST_F(Data, SetsTheVersionOfTheArchive)
{
    Loading loading(emptyStream(1).get(), 10);
    RLData data;
    data.serialize(loading.archive());
    EXPECT_EQ(loading.archive().version, 1u);
}

TEST_F(Data, UpToVersion2ReadsNoBool)
{
    for (const std::uint32_t version : {0u, 1u, 2u}) {
        RLData data;
        EXPECT_EQ(load(data, emptyStream(version).flag(true).get()), "\1") << version;
        EXPECT_FALSE(data.hasCameraData());
    }
}

TEST_F(Data, OfVersions3And4ReadsOneBool)
{
    for (const std::uint32_t version : {3u, 4u}) {
        RLData data;
        EXPECT_EQ(load(data, emptyStream(version).flag(false).u8(7).get()), "\7") << version;
        EXPECT_FALSE(data.hasCameraData());
        EXPECT_FALSE(data.hasSceneData());
    }
}

TEST_F(Data, FromVersion5OnReadsTwoBools)
{
    for (const std::uint32_t version : {5u, 10u, 0x80000000u}) {
        RLData data;
        EXPECT_EQ(load(data, emptyStream(version).flag(false).flag(false).u8(7).get()), "\7") << version;
        EXPECT_FALSE(data.hasSceneData());
    }
}

TEST_F(Data, HasTheVersionOfAStreamThatEndsBehindIt)
{
    RLData data;
    data.addMaskMaterial(RLMaskMaterial());
    Loading loading(Bytes().u32(6).get());
    EXPECT_EQ(causeOf([&] { data.serialize(loading.archive()); }), kEndOfFile);
    EXPECT_EQ(data.getStorageVersion(), 6u);
    EXPECT_EQ(loading.archive().version, 6u);
    EXPECT_THAT(data.getMaskMaterials(), SizeIs(1));  // Emptied behind the count only.
}

TEST_F(Data, KeepsItsVersionWhenTheStreamIsEmpty)
{
    RLData data;
    EXPECT_EQ(causeOf([&] { load(data, ""); }), kEndOfFile);
    EXPECT_EQ(data.getStorageVersion(), 1u);
}

TEST_F(Data, EmptiesItsMasksBehindTheCountAndNotItsTags)
{
    RLData data;
    data.addMaskMaterial(RLMaskMaterial());
    data.getEnvironmentMaterial().addStringTag(1, "own");
    EXPECT_EQ(causeOf([&] { load(data, Bytes().u32(10).u32(1).get()); }), kEndOfFile);
    EXPECT_THAT(data.getMaskMaterials(), IsEmpty());
    EXPECT_THAT(data.getEnvironmentMaterial().getStringTags(), SizeIs(1));
}

TEST_F(Data, CollectsTagsAndReplacesMasksWhenReadTwice)
{
    RLData data;
    load(data, sampleStream(2).get());
    load(data, sampleStream(2).get());
    EXPECT_THAT(data.getMaskMaterials(), SizeIs(2));
    EXPECT_THAT(data.getEnvironmentMaterial().getStringTags(), SizeIs(4));
}

TEST_F(Data, KeepsTheMasksBeforeTheOneThatFails)
{
    Bytes bytes;
    bytes.u32(10).u32(0xFFFFFFFF);
    addMask(bytes, 10, "1");
    bytes.text("name2");
    RLData data;
    EXPECT_EQ(causeOf([&] { load(data, bytes.get()); }), kEndOfFile);
    ASSERT_THAT(data.getMaskMaterials(), SizeIs(1));
    EXPECT_EQ(data.getMaskMaterials().front().getMaskName(), "name1");
}

TEST_F(Data, KeepsCameraAndSceneThatTheStreamLacks)
{
    RLData data;
    data.setCameraData(new RLCameraData);
    data.setSceneData(new RLSceneData);
    data.getCameraData()->setProjType(9);
    data.getSceneData()->setFloor("own");
    const auto* const camera = data.getCameraData();
    const auto* const scene = data.getSceneData();
    load(data, emptyStream(5).flag(false).flag(false).get());
    EXPECT_EQ(data.getCameraData(), camera);
    EXPECT_EQ(data.getSceneData(), scene);
    EXPECT_EQ(camera->getProjType(), 9);
    EXPECT_EQ(scene->getFloor(), "own");
}

TEST_F(Data, ReadsOverCameraAndSceneInPlace)
{
    RLData data;
    data.setCameraData(new RLCameraData);
    data.setSceneData(new RLSceneData);
    data.getCameraData()->setImageFormat("kept");
    data.getSceneData()->setFloor("kept");
    const auto* const camera = data.getCameraData();
    const auto* const scene = data.getSceneData();
    Bytes bytes = emptyStream(5);
    bytes.flag(true);
    addCamera(bytes, 5);
    bytes.flag(true);
    addScene(bytes, 5);
    load(data, bytes.get());
    EXPECT_EQ(data.getCameraData(), camera);
    EXPECT_EQ(data.getSceneData(), scene);
    EXPECT_EQ(camera->getTarget(), 7);
    EXPECT_EQ(camera->getImageFormat(), "kept");
    EXPECT_EQ(scene->getBackPlateImage(), "plate.png");
    EXPECT_EQ(scene->getFloor(), "kept");
}

TEST_F(Data, AttachesANewCameraBeforeItIsRead)
{
    RLData data;
    EXPECT_EQ(causeOf([&] { load(data, emptyStream(5).flag(true).f32(1).f32(2).get()); }), kEndOfFile);
    ASSERT_TRUE(data.hasCameraData());
    EXPECT_EQ(data.getCameraData()->rotation[1], 2);
    EXPECT_EQ(data.getCameraData()->rotation[2], 0);
    EXPECT_FALSE(data.hasSceneData());
}

TEST_F(Data, AttachesANewSceneBeforeItIsRead)
{
    RLData data;
    EXPECT_EQ(causeOf([&] { load(data, emptyStream(5).flag(false).flag(true).text("image").get()); }),
              kEndOfFile);
    ASSERT_TRUE(data.hasSceneData());
    EXPECT_EQ(data.getSceneData()->getEnvironmentImage(), "image");
}

// A record that a host derived: reached through the virtual operation, with the same archive.
class DerivedCamera : public RLCameraData {
public:
    void serialize(RLArchive& archive) override
    {
        versionSeen = archive.version;
        RLCameraData::serialize(archive);
    }
    std::uint32_t versionSeen = 0;
};

TEST_F(Data, ReachesItsCameraThroughTheVirtualOperation)
{
    DerivedCamera camera;
    RLData data;
    data.cameraData = &camera;
    Storing storing(3);
    data.serialize(storing.archive());
    data.cameraData = nullptr;
    EXPECT_EQ(camera.versionSeen, 10u);
}

TEST_F(Data, ReadsBackWhatItStored)
{
    RLData data;
    load(data, withoutViews(10));
    const std::string bytes = stored(data);
    EXPECT_EQ(bytes, withoutViews(10));
    RLData read;
    EXPECT_EQ(load(read, bytes), "");
    EXPECT_EQ(stored(read), bytes);
    EXPECT_EQ(read.getStorageVersion(), 10u);
}

TEST_F(Data, NeverWritesADocument)
{
    RLData data;
    EXPECT_FALSE(RLData::WriteRaylumeData("/nowhere/a.doc", &data));
    EXPECT_FALSE(RLData::WriteRaylumeData("/nowhere/a.doc", nullptr));
    EXPECT_FALSE(RLData::WriteRaylumeData(nullptr, nullptr));
}

}  // namespace
