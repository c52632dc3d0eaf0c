// What is stored reads back, whatever the records hold; only views do not (see CustomViews_test.cpp), so
// that neither side has a folder of them here.
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <bit>

#include "raylume/persist/RLData.h"
#include "raylume/persist/RLTextureInfo.h"
#include "tests/persist/Archives.h"
#include "tests/platform/ScopedCodePage.h"
#include "tests/platform/ScopedEnvironment.h"

namespace {

using namespace persist_tests;

// Text that the code page has: what it lacks changes on the way.
std::string anyText()
{
    const auto points = *rc::gen::container<std::vector<std::uint32_t>>(rc::gen::oneOf(
        rc::gen::inRange<std::uint32_t>(1, 0x80), rc::gen::inRange<std::uint32_t>(0x80, 0xD800),
        rc::gen::inRange<std::uint32_t>(0xE000, 0x110000)));
    std::wstring text;
    for (const std::uint32_t point : points)
        text.push_back(static_cast<wchar_t>(point));
    const int copies = *rc::gen::weightedElement<int>({{20, 1}, {2, 60}, {1, 3000}});
    std::string bytes;
    for (int i = 0; i < copies; ++i)
        bytes += platform::toUtf8(text);
    return bytes;
}

// Any bits at all.
float anyFloat()
{
    return std::bit_cast<float>(*rc::gen::arbitrary<std::uint32_t>());
}

bool anyBool()
{
    return *rc::gen::arbitrary<bool>();
}

std::int32_t anyInteger()
{
    return *rc::gen::arbitrary<std::int32_t>();
}

template <class Record>
void addTags(Record& record)
{
    const int count = *rc::gen::inRange(0, 5);
    for (int i = 0; i < count; ++i)
        record.addStringTag(static_cast<std::uint32_t>(anyInteger()), anyText());
}

RLMaskMaterial anyMask()
{
    RLMaskMaterial mask;
    mask.setMaskName(anyText().c_str());
    mask.setMaskType(anyText().c_str());
    mask.setMaskPTag(anyText().c_str());
    mask.setMaterialName(anyText().c_str());
    const float colour[] = {anyFloat(), anyFloat(), anyFloat(), anyFloat()};
    mask.setDiffuseColor(colour);
    mask.setMaterialAtRoot(anyBool());
    const int count = *rc::gen::inRange(0, 5);
    for (int i = 0; i < count; ++i)
        mask.addFloatChannel(anyText(), anyFloat());
    addTags(mask);
    return mask;
}

RLEnvironmentMaterial anyEnvironment()
{
    RLEnvironmentMaterial environment;
    environment.setEnvironmentName(anyText().c_str());
    addTags(environment);
    environment.setWhiteLevel(anyFloat());
    environment.setClamp(anyBool());
    environment.setGamma(anyFloat());
    environment.setBloom(anyBool());
    environment.setBloomThr(anyFloat());
    environment.setBloomRad(anyFloat());
    environment.setToneAmt(anyFloat());
    return environment;
}

RLCameraData* anyCamera()
{
    auto* const camera = new RLCameraData;
    const float values[] = {anyFloat(), anyFloat(), anyFloat(), anyFloat(), anyFloat(), anyFloat()};
    camera->setRotation(values);
    camera->setTranslation(values + 3);
    camera->setTarget(anyFloat());
    camera->setFocalLength(anyFloat());
    camera->setProjType(anyInteger());
    camera->setFocusDist(anyFloat());
    camera->setFStop(anyFloat());
    camera->setFrameWidth(anyInteger());
    camera->setFrameHeight(anyInteger());
    camera->setRDOF(anyBool());
    camera->setPreviewRenderQuality(anyText().c_str());
    camera->setFullRenderQuality(anyText().c_str());
    camera->setImageFormat(anyText().c_str());
    return camera;
}

RLSceneData* anyScene()
{
    auto* const scene = new RLSceneData;
    scene->setEnvironmentImage(anyText().c_str());
    scene->setEnvVisibility(anyBool());
    scene->setBackPlateImage(anyText().c_str());
    scene->setBkplVisibility(anyBool());
    scene->setFloor(anyText().c_str());
    scene->setFloorFlip(anyBool());
    scene->setFloorVisibility(anyBool());
    scene->setFloorType(anyText().c_str());
    return scene;
}

bool sameBits(float a, float b)
{
    return std::bit_cast<std::uint32_t>(a) == std::bit_cast<std::uint32_t>(b);
}

template <std::size_t count>
bool sameBits(const float (&a)[count], const float (&b)[count])
{
    for (std::size_t i = 0; i < count; ++i) {
        if (!sameBits(a[i], b[i]))
            return false;
    }
    return true;
}

bool same(const std::list<RLStringTag>& a, const std::list<RLStringTag>& b)
{
    return std::equal(
        a.begin(), a.end(), b.begin(), b.end(),
        [](const RLStringTag& x, const RLStringTag& y) { return x.tagID == y.tagID && x.tag == y.tag; });
}

bool same(const RLMaskMaterial& a, const RLMaskMaterial& b)
{
    const auto sameChannel = [](const RLFloatChannel& x, const RLFloatChannel& y) {
        return sameBits(x.floatVal, y.floatVal) && x.channelName == y.channelName;
    };
    return sameBits(a.diffuseColor, b.diffuseColor) && a.maskType == b.maskType &&
           a.maskPTag == b.maskPTag && a.maskName == b.maskName && a.materialName == b.materialName &&
           a.materialAtRoot == b.materialAtRoot &&
           std::equal(a.floatChannels.begin(), a.floatChannels.end(), b.floatChannels.begin(),
                      b.floatChannels.end(), sameChannel) &&
           same(a.stringTags, b.stringTags) && b.advMaterialIsSet;
}

bool same(const RLEnvironmentMaterial& a, const RLEnvironmentMaterial& b)
{
    return a.environmentName == b.environmentName && same(a.stringTags, b.stringTags) &&
           sameBits(a.whiteLevel, b.whiteLevel) && a.clamp == b.clamp && sameBits(a.gamma, b.gamma) &&
           a.bloom == b.bloom && sameBits(a.bloomThr, b.bloomThr) && sameBits(a.bloomRad, b.bloomRad) &&
           sameBits(a.toneAmt, b.toneAmt);
}

bool same(const RLCameraData& a, const RLCameraData& b)
{
    return sameBits(a.rotation, b.rotation) && sameBits(a.translation, b.translation) &&
           sameBits(a.target, b.target) && sameBits(a.focalLength, b.focalLength) &&
           a.projType == b.projType && sameBits(a.focusDist, b.focusDist) && sameBits(a.fStop, b.fStop) &&
           a.frameWidth == b.frameWidth && a.frameHeight == b.frameHeight && a.RDOF == b.RDOF &&
           a.previewRenderQuality == b.previewRenderQuality && a.fullRenderQuality == b.fullRenderQuality &&
           a.imageFormat == b.imageFormat;
}

bool same(const RLSceneData& a, const RLSceneData& b)
{
    return a.environmentImage == b.environmentImage && a.backPlateImage == b.backPlateImage &&
           a.floor == b.floor && a.floorType == b.floorType && a.envVisibility == b.envVisibility &&
           a.bkplVisibility == b.bkplVisibility && a.floorVisibility == b.floorVisibility &&
           a.floorFlip == b.floorFlip;
}

class RoundTrip : public testing::Test {
protected:
    ScopedVariable home_{"HOME", std::nullopt};
    ScopedVariable data_{"XDG_DATA_HOME", std::nullopt};
    ScopedCodePage page_{65001};
};

RC_GTEST_FIXTURE_PROP(RoundTrip, OfAllSettingsGivesThemBack, ())
{
    RLData data, read;
    const int masks = *rc::gen::inRange(0, 4);
    for (int i = 0; i < masks; ++i)
        data.addMaskMaterial(anyMask());
    data.setEnvironment(anyEnvironment());
    if (anyBool())
        data.setCameraData(anyCamera());
    if (anyBool())
        data.setSceneData(anyScene());
    const std::string bytes = stored(data);
    RC_ASSERT(load(read, bytes + "behind") == "behind");
    RC_ASSERT(std::equal(data.maskMaterials.begin(), data.maskMaterials.end(), read.maskMaterials.begin(),
                         read.maskMaterials.end(),
                         [](const RLMaskMaterial& a, const RLMaskMaterial& b) { return same(a, b); }));
    RC_ASSERT(same(data.environmentMaterial, read.environmentMaterial));
    RC_ASSERT(data.hasCameraData() == read.hasCameraData());
    RC_ASSERT((!data.hasCameraData() || same(*data.cameraData, *read.cameraData)));
    RC_ASSERT(data.hasSceneData() == read.hasSceneData());
    RC_ASSERT((!data.hasSceneData() || same(*data.sceneData, *read.sceneData)));
    RC_ASSERT(read.storageVersion == 10u);
}

RC_GTEST_FIXTURE_PROP(RoundTrip, OfATexturesPlacementGivesItBack, ())
{
    RLTextureInfo info, read;
    for (float* const values : {info.scale, info.position, info.rotation}) {
        for (int i = 0; i < 3; ++i)
            values[i] = anyFloat();
    }
    info.setProjectionType(anyInteger());
    info.setProjectionAxis(anyInteger());
    info.setHorizontalWrap(anyFloat());
    info.setVerticalWrap(anyFloat());
    RC_ASSERT(load(read, stored(info)) == "");
    RC_ASSERT(sameBits(info.scale, read.scale));
    RC_ASSERT(sameBits(info.position, read.position));
    RC_ASSERT(sameBits(info.rotation, read.rotation));
    RC_ASSERT(info.projectionType == read.projectionType);
    RC_ASSERT(info.projectionAxis == read.projectionAxis);
    RC_ASSERT(sameBits(info.horizontalWrap, read.horizontalWrap));
    RC_ASSERT(sameBits(info.verticalWrap, read.verticalWrap));
}

// A code page of one byte for each character: all of it comes back, but for what is undefined in it.
RC_GTEST_FIXTURE_PROP(RoundTrip, OfTextInACodePageOfBytesGivesItBack, ())
{
    const ScopedCodePage page(1252);
    const auto text = *rc::gen::container<std::string>(
        rc::gen::map(rc::gen::inRange(1, 256), [](int byte) { return static_cast<char>(byte); }));
    RC_PRE(platform::narrow(platform::widen(text)) == text);
    RLStringTag tag(1, text), read;
    load(read, stored(tag));
    RC_ASSERT(read.tag == text);
}

}  // namespace
