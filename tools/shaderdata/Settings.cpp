#include "tools/shaderdata/Settings.h"

#include <nlohmann/json.hpp>
#include <stdexcept>

#include "raylume/persist/RLByteEnds.h"

namespace shaderdata {
namespace {

using nlohmann::json;

void writeFields(RLByteStream& stream, const RLCameraData& camera)
{
    for (const float* const values : {camera.rotation, camera.translation}) {
        for (int i = 0; i < 3; ++i)
            stream.write(values[i]);
    }
    stream.write(camera.target);
    stream.write(camera.focalLength);
    stream.write(camera.projType);
}

void writeViews(RLByteStream& stream, const std::vector<View>& views)
{
    stream.write(static_cast<std::uint32_t>(views.size()));
    for (const View& view : views) {
        stream.write(view.path);
        stream.write(static_cast<std::uint32_t>(view.content.size()));
        stream.writeRaw(view.content.data(), view.content.size());
    }
}

void writeFieldsBehindViews(RLByteStream& stream, const RLCameraData& camera)
{
    stream.write(camera.focusDist);
    stream.write(camera.fStop);
    stream.write(camera.frameWidth);
    stream.write(camera.frameHeight);
    stream.write(camera.RDOF);
    stream.write(camera.previewRenderQuality);
    stream.write(camera.fullRenderQuality);
    stream.write(camera.imageFormat);
}

// A missing member leaves the field as it is.
template <class Value>
void take(const json& object, const char* name, Value& value)
{
    if (object.contains(name))
        object.at(name).get_to(value);
}

template <std::size_t count>
void take(const json& object, const char* name, float (&values)[count])
{
    if (!object.contains(name))
        return;
    const json& array = object.at(name);
    for (std::size_t i = 0; i < count; ++i)
        array.at(i).get_to(values[i]);
}

template <class Function>
void forEach(const json& object, const char* name, Function function)
{
    if (!object.contains(name))
        return;
    for (const json& element : object.at(name))
        function(element);
}

template <class Record>
void takeTags(const json& object, Record& record)
{
    forEach(object, "stringTags", [&](const json& tag) {
        record.addStringTag(tag.at("tagID").get<std::uint32_t>(), tag.at("tag").get<std::string>());
    });
}

RLMaskMaterial maskFrom(const json& object)
{
    RLMaskMaterial mask;
    take(object, "diffuseColor", mask.diffuseColor);
    take(object, "maskType", mask.maskType);
    take(object, "maskPTag", mask.maskPTag);
    take(object, "maskName", mask.maskName);
    take(object, "materialName", mask.materialName);
    take(object, "materialAtRoot", mask.materialAtRoot);
    forEach(object, "floatChannels", [&](const json& channel) {
        mask.addFloatChannel(channel.at("channelName").get<std::string>(),
                             channel.at("floatVal").get<float>());
    });
    takeTags(object, mask);
    return mask;
}

void takeEnvironment(const json& object, RLEnvironmentMaterial& environment)
{
    take(object, "environmentName", environment.environmentName);
    takeTags(object, environment);
    take(object, "whiteLevel", environment.whiteLevel);
    take(object, "clamp", environment.clamp);
    take(object, "gamma", environment.gamma);
    take(object, "bloom", environment.bloom);
    take(object, "bloomThr", environment.bloomThr);
    take(object, "bloomRad", environment.bloomRad);
    take(object, "toneAmt", environment.toneAmt);
}

void takeCamera(const json& object, ReadableCamera& camera)
{
    take(object, "rotation", camera.rotation);
    take(object, "translation", camera.translation);
    take(object, "target", camera.target);
    take(object, "focalLength", camera.focalLength);
    take(object, "projType", camera.projType);
    take(object, "focusDist", camera.focusDist);
    take(object, "fStop", camera.fStop);
    take(object, "frameWidth", camera.frameWidth);
    take(object, "frameHeight", camera.frameHeight);
    take(object, "RDOF", camera.RDOF);
    take(object, "previewRenderQuality", camera.previewRenderQuality);
    take(object, "fullRenderQuality", camera.fullRenderQuality);
    take(object, "imageFormat", camera.imageFormat);
    forEach(object, "views", [&](const json& view) {
        camera.views.push_back({view.at("path").get<std::string>(), view.at("content").get<std::string>()});
    });
}

void takeScene(const json& object, RLSceneData& scene)
{
    take(object, "environmentImage", scene.environmentImage);
    take(object, "backPlateImage", scene.backPlateImage);
    take(object, "floor", scene.floor);
    take(object, "floorType", scene.floorType);
    take(object, "envVisibility", scene.envVisibility);
    take(object, "bkplVisibility", scene.bkplVisibility);
    take(object, "floorVisibility", scene.floorVisibility);
    take(object, "floorFlip", scene.floorFlip);
}

void takeAll(const json& root, Settings& settings)
{
    forEach(root, "maskMaterials",
            [&](const json& mask) { settings.data.addMaskMaterial(maskFrom(mask)); });
    if (root.contains("environmentMaterial"))
        takeEnvironment(root.at("environmentMaterial"), settings.data.getEnvironmentMaterial());
    settings.hasCamera = root.contains("cameraData");
    if (settings.hasCamera)
        takeCamera(root.at("cameraData"), settings.camera);
    if (root.contains("sceneData")) {
        settings.data.setSceneData(new RLSceneData);
        takeScene(root.at("sceneData"), *settings.data.getSceneData());
    }
}

RLMaskMaterial generatedMask(std::uint32_t number, std::uint32_t channels, std::uint32_t tags)
{
    const std::string text = std::to_string(number);
    RLMaskMaterial mask;
    mask.setMaskName(("Housing-" + text + "@Assembly").c_str());
    mask.setMaskType("component");
    mask.setMaterialName(("materials/metal/brushed aluminium " + text).c_str());
    for (std::uint32_t i = 0; i < channels; ++i)
        mask.addFloatChannel("channel weight " + std::to_string(i), static_cast<float>(i));
    for (std::uint32_t i = 0; i < tags; ++i)
        mask.addStringTag(i, "textures/brushed_" + text + "_" + std::to_string(i) + ".png");
    return mask;
}

}  // namespace

void ReadableCamera::serialize(RLArchive& archive)
{
    RLByteStream& stream = *archive.archive;
    if (stream.isLoading()) {
        RLCameraData::serialize(archive);
        return;
    }
    writeFields(stream, *this);
    writeViews(stream, views);
    writeFieldsBehindViews(stream, *this);
}

std::string Settings::bytes(bool asStored)
{
    RLCameraData plain(camera);
    data.cameraData = !hasCamera ? nullptr : asStored ? &plain : &camera;
    RLMemorySink sink;
    RLByteStream stream(sink, L"settings");
    RLArchive archive{&stream};
    data.serialize(archive);
    stream.close();
    data.cameraData = nullptr;
    return sink.bytes();
}

std::unique_ptr<Settings> settingsFromJson(const std::string& text)
{
    auto settings = std::make_unique<Settings>();
    try {
        takeAll(json::parse(text), *settings);
    } catch (const json::exception& error) {
        throw std::runtime_error(error.what());
    }
    return settings;
}

std::unique_ptr<Settings> generatedSettings(std::uint32_t masks, std::uint32_t channels, std::uint32_t tags)
{
    auto settings = std::make_unique<Settings>();
    for (std::uint32_t i = 0; i < masks; ++i)
        settings->data.addMaskMaterial(generatedMask(i, channels, tags));
    settings->data.getEnvironmentMaterial().setEnvironmentName("studio");
    settings->hasCamera = true;
    settings->data.setSceneData(new RLSceneData);
    return settings;
}

}  // namespace shaderdata
