#include "tools/GltfTextures.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <numbers>
#include <system_error>

#include "raylume/services/Locations.h"
#include "tools/ImageContent.h"
#include "tools/Values.h"

namespace tool {
namespace {

constexpr char kTransform[] = "KHR_texture_transform";
constexpr std::uint32_t kNoMapping = 1;

// What gives no place leaves the image as large as the coordinates.
double scaleOf(float scale)
{
    return std::isfinite(scale) && scale != 0 ? scale : 1;
}

double finiteOr0(float value)
{
    return std::isfinite(value) ? value : 0;
}

// Records count the other way round and keep the whole turn. Close to that it is the rounding of the
// float.
double rotationOf(float angle)
{
    constexpr double kTurn = 2 * std::numbers::pi;
    if (!std::isfinite(angle) || angle == static_cast<float>(kTurn))
        return 0;
    return kTurn - angle;
}

Json transformOf(const dlTexture& texture)
{
    const double offset[2] = {finiteOr0(texture.transU), finiteOr0(texture.transV)};
    const double scale[2] = {scaleOf(texture.scaleU), scaleOf(texture.scaleV)};
    const double rotation = rotationOf(texture.angle);
    Json json = Json::object();
    if (offset[0] != 0 || offset[1] != 0)
        json["offset"] = jsonNumbers(offset, 2);
    if (rotation != 0)
        json["rotation"] = rotation;
    if (scale[0] != 1 || scale[1] != 1)
        json["scale"] = jsonNumbers(scale, 2);
    return json;
}

bool isFile(const std::wstring& name)
{
    std::error_code failed;
    return std::filesystem::is_regular_file(rlu_nativePath(name), failed);
}

std::optional<ImageBytes> contentOf(const std::wstring& path)
{
    const bool isInside = isEmbeddedImage(path) && !isFile(path);
    return isInside ? embeddedImageForGltf(path) : imageForGltf(path);
}

}  // namespace

bool GltfTextures::isTextured(const dlTexture& texture)
{
    return texture.mappingType != kNoMapping && !texture.filename.empty();
}

Json GltfTextures::ofAppearance(const dlTexture& texture)
{
    if (!isTextured(texture))
        return nullptr;
    const SearchedImage& image = images_.find(texture.filename, TextureImageAppearance);
    const std::wstring& place = image.status == ImageStatus::kEmbedded ? texture.filename : image.path;
    const auto index = image.status == ImageStatus::kMissing ? std::nullopt : textureOf(place, kRepeat);
    if (!index) {
        countUnfit(image);
        return nullptr;
    }
    Json info{{"index", *index}};
    if (const Json transform = transformOf(texture); !transform.empty()) {
        info["extensions"] = {{kTransform, transform}};
        file_.useExtension(kTransform);
    }
    return info;
}

Json GltfTextures::ofDecal(const dlDecal& decal)
{
    const DecalImages images = images_.ofDecal(decal);
    std::optional<int> index;
    if (images.isBaked && isFile(decal.texture.filename))
        index = textureOf(decal.texture.filename, kClampToEdge);
    else if (!images.isBaked && !images.images.empty())
        index = textureOf(images.images.front()->path, kClampToEdge);
    if (index)
        return {{"index", *index}};
    for (const SearchedImage* image : images.images)
        countUnfit(*image);
    return nullptr;
}

std::optional<int> GltfTextures::textureOf(const std::wstring& path, Wrap wrap)
{
    const std::optional<int> image = imageOf(path);
    if (!image)
        return std::nullopt;
    const auto [place, isNew] = textureIndices_.try_emplace({*image, wrap}, file_.textures.count());
    if (isNew)
        file_.textures.add({{"sampler", samplerOf(wrap)}, {"source", *image}});
    return place->second;
}

std::optional<int> GltfTextures::imageOf(const std::wstring& path)
{
    if (path.empty())
        return std::nullopt;
    const auto [place, isNew] = imageIndices_.try_emplace(rlu_nativePath(path));
    if (isNew)
        if (auto content = contentOf(path))
            place->second = file_.addImage(std::move(content->bytes), content->mediaType);
    return place->second;
}

int GltfTextures::samplerOf(Wrap wrap)
{
    const auto [place, isNew] = samplerIndices_.try_emplace(wrap, file_.samplers.count());
    if (isNew)
        file_.samplers.add({{"wrapS", static_cast<int>(wrap)}, {"wrapT", static_cast<int>(wrap)}});
    return place->second;
}

void GltfTextures::countUnfit(const SearchedImage& image)
{
    if (!counted_.insert(&image).second)
        return;
    switch (image.status) {
    case ImageStatus::kMissing:
        ++file_.notes.imagesMissing;
        break;
    case ImageStatus::kEmbedded:
        ++file_.notes.imagesEmbedded;
        break;
    case ImageStatus::kFound:
        ++file_.notes.imagesUnreadable;
        break;
    }
}

}  // namespace tool
