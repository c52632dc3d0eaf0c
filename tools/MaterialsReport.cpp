#include "tools/MaterialsReport.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <optional>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

#include "raylume/platform/Text.h"
#include "raylume/scene/dlDecal.h"
#include "raylume/services/Locations.h"
#include "tools/GltfMaterial.h"
#include "tools/ImageContent.h"
#include "tools/Values.h"

namespace tool {
namespace {

enum AppearanceLevel { kInstance, kPart, kBody, kFace, kDecal, kLevelCount };
constexpr const char* kLevelNames[] = {"instance", "part", "body", "face", "decal"};
constexpr const char* kLevelPlurals[] = {"instances", "parts", "bodies", "faces", "decals"};

using LevelCounts = std::array<long long, kLevelCount>;

struct Appearance {
    Json description;
    std::vector<std::string> imageLines;
    LevelCounts uses{};
};

struct Texture {
    const SearchedImage* image = nullptr;
    std::optional<ImageSize> size;  ///< None: not found, or nothing that can be read.
    long long uses = 0;
};

struct Materials {
    std::vector<Appearance> appearances;
    LevelCounts without{};
    std::vector<std::string> sceneLines;
    std::vector<Texture> textures;
};

// A native path has whatever bytes its system allows.
std::string asUtf8(const std::string& nativePath)
{
    return platform::toUtf8(platform::fromUtf8(nativePath));
}

std::string colourText(const float* colour)
{
    std::string text = "#";
    for (int i = 0; i < 3; ++i) {
        const float value = colour[i] > 0 ? std::min(colour[i], 1.0f) : 0.0f;
        const int byte = static_cast<int>(std::lround(value * 255.0f));
        text += "0123456789abcdef"[byte / 16];
        text += "0123456789abcdef"[byte % 16];
    }
    return text;
}

const char* statusName(ImageStatus status)
{
    switch (status) {
    case ImageStatus::kFound:
        return "found";
    case ImageStatus::kEmbedded:
        return "embedded";
    default:
        return "missing";
    }
}

const char* kindName(TextureImageType type)
{
    static constexpr const char* kNames[] = {"decal", "appearance", "scene"};
    return kNames[type];
}

Json placementOf(const dlTexture& texture)
{
    return {{"mappingType", texture.mappingType},
            {"scaleU", floatValue(texture.scaleU)},
            {"scaleV", floatValue(texture.scaleV)},
            {"angle", floatValue(texture.angle)},
            {"transU", floatValue(texture.transU)},
            {"transV", floatValue(texture.transV)},
            {"uDirection", floatValues(texture.uDirection, 3)},
            {"vDirection", floatValues(texture.vDirection, 3)},
            {"origin", floatValues(texture.origin, 3)},
            {"center", floatValues(texture.center, 3)},
            {"mappingScalar", floatValue(texture.mappingScalar)}};
}

Json renderValuesOf(const dlMaterial& material)
{
    return {{"index", material.rvIndex},
            {"weight", floatValue(material.rvWeight)},
            {"decalValue", material.rvDecalValue},
            {"luminous", floatValue(material.rvLuminous)},
            {"unitLevel", floatValue(material.rvUnitLevel)},
            {"levels",
             {floatValue(material.rvLevelA), floatValue(material.rvLevelB), floatValue(material.rvLevelC),
              floatValue(material.rvLevelD)}},
            {"flags", {material.rvFlagA, material.rvFlagB, material.rvFlagC, material.rvFlagD}},
            {"colorRef", material.colorRef},
            {"secondColorRef", material.secondColorRef},
            {"lfpAppearance", material.lfpAppearance},
            {"surfaceFinish", material.surfaceFinish},
            {"visualFlag", material.visualFlag}};
}

void addNames(const dlMaterial& material, Json& json)
{
    json["userName"] = utf8(material.userName);
    json["idName"] = utf8(material.idName);
    json["visualName"] = utf8(material.visualName);
    json["appearanceName"] = utf8(material.appearanceName);
    json["shaderName"] = utf8(material.shaderName);
}

Json describe(const dlMaterial& material)
{
    Json json;
    addNames(material, json);
    json["color"] = colourText(material.color);
    json["rgb"] = floatValues(material.color, 3);
    json["transparency"] = floatValue(material.transparency);
    json["emission"] = floatValue(material.emission);
    json["ambient"] = floatValue(material.ambient);
    json["diffuse"] = floatValue(material.diffuse);
    json["specular"] = floatValue(material.specular);
    json["shininess"] = floatValue(material.shininess);
    json["textureFile"] = platform::toUtf8(material.texture.filename);
    json["texturePlacement"] = placementOf(material.texture);
    json["bumpFile"] = utf8(material.bumpFilename);
    json["lfpFile"] = utf8(material.lfpFilename);
    json["render"] = renderValuesOf(material);
    return json;
}

Json storedPaths(const std::vector<const SearchedImage*>& images)
{
    Json paths = Json::array();
    for (const SearchedImage* image : images)
        paths.push_back(platform::toUtf8(image->storedPath));
    return paths;
}

Json describe(const dlDecal& decal, const DecalImages& images)
{
    Json json = describe(decal);
    json["maskFile"] = platform::toUtf8(decal.maskFilename);
    json["maskInvert"] = decal.maskInvert;
    if (images.isBaked) {
        json["bakedFrom"] = storedPaths(images.images);
        json["bakedWith"] = storedPaths(images.masks);
    }
    return json;
}

std::string imageLine(const char* title, const SearchedImage& image, const char* remark = "")
{
    return std::string(title) + " " + oneLine(platform::toUtf8(image.storedPath)) + " (" +
           statusName(image.status) + remark + ")";
}

class Collection {
public:
    Collection(ImageSearch& images, const std::function<bool()>& cancelled)
        : images_(images), cancelled_(cancelled)
    {
    }

    Materials run(dlModel& model)
    {
        for (std::int32_t i = 0; i < model.instanceCount; ++i)
            addInstance(model.instances[i]);
        std::vector<dlPart*> parts;
        model.getAllDLParts(parts);
        // Without an instance there is no order but that of addresses, which changes with each run.
        std::stable_sort(parts.begin(), parts.end(),
                         [](const dlPart* a, const dlPart* b) { return a->name < b->name; });
        for (const dlPart* part : parts)
            addPart(*part);
        addSceneImage("environment", model.scene.environmentImage);
        addSceneImage("back plate", model.scene.backPlateImage);
        for (const SearchedImage* image : images_.others())
            textureOf(*image);
        return std::move(materials_);
    }

private:
    using Lines = std::vector<std::string>;

    void addInstance(const dlInstance& instance)
    {
        addOptional(instance.material, kInstance);
        for (const dlDecal* decal : instance.decals)
            addDecal(*decal);
        if (instance.part)
            addPart(*instance.part);
    }

    void addPart(const dlPart& part)
    {
        if (!seen_.insert(&part).second)
            return;
        addOptional(isUnset(part.material) ? nullptr : &part.material, kPart);
        for (std::int32_t i = 0; part.bodies && i < part.bodyCount; ++i)
            addBody(part.bodies[i]);
    }

    void addBody(const dlBody& body)
    {
        addOptional(body.material, kBody);
        for (std::int32_t i = 0; body.faces && i < body.faceCount; ++i) {
            addOptional(body.faces[i].material, kFace);
            for (const dlDecal* decal : body.faces[i].decals)
                addDecal(*decal);
        }
    }

    void addOptional(const dlMaterial* material, AppearanceLevel level)
    {
        if (!material) {
            ++materials_.without[level];
            return;
        }
        Lines lines;
        addImage("texture", material->texture.filename, lines);
        addImage("bump", platform::widen(material->bumpFilename), lines);
        add(describe(*material), std::move(lines), level);
    }

    void addDecal(const dlDecal& decal)
    {
        const DecalImages images = images_.ofDecal(decal);
        Lines lines;
        addImages(images.images, "texture", images.isBaked ? ", mask baked" : "", lines);
        addImage("bump", platform::widen(decal.bumpFilename), lines);
        addImages(images.masks, "mask", "", lines);
        add(describe(decal, images), std::move(lines), kDecal);
    }

    void add(Json description, Lines lines, AppearanceLevel level)
    {
        const auto [place, isNew] = byText_.try_emplace(description.dump(), materials_.appearances.size());
        if (isNew)
            materials_.appearances.push_back({std::move(description), std::move(lines), {}});
        ++materials_.appearances[place->second].uses[level];
    }

    void addImage(const char* title, const std::wstring& file, Lines& lines)
    {
        if (!file.empty())
            addImages({&images_.find(file, TextureImageAppearance)}, title, "", lines);
    }

    // More than one where it cannot be told which one it is.
    void addImages(const std::vector<const SearchedImage*>& images, const char* title, const char* remark,
                   Lines& lines)
    {
        for (const SearchedImage* image : images) {
            ++textureOf(*image).uses;
            const std::string first = image == images.front() ? "" : "or ";
            lines.push_back(imageLine((first + title).c_str(), *image, remark));
        }
    }

    void addSceneImage(const char* title, const std::string& name)
    {
        if (name.empty())
            return;
        const SearchedImage& image = images_.ofScene(name);
        ++textureOf(image).uses;
        materials_.sceneLines.push_back(imageLine(title, image));
    }

    Texture& textureOf(const SearchedImage& image)
    {
        const auto [place, isNew] = byImage_.try_emplace(&image, materials_.textures.size());
        if (isNew) {
            if (cancelled_())
                throw std::runtime_error("cancelled");
            const bool isFound = image.status == ImageStatus::kFound;
            materials_.textures.push_back({&image, isFound ? imageSize(image.path) : std::nullopt, 0});
        }
        return materials_.textures[place->second];
    }

    ImageSearch& images_;
    const std::function<bool()>& cancelled_;
    Materials materials_;
    std::set<const dlPart*> seen_;
    std::map<std::string, std::size_t> byText_;
    std::map<const SearchedImage*, std::size_t> byImage_;
};

Json countsJson(const LevelCounts& counts)
{
    Json json;
    for (int level = 0; level < kLevelCount; ++level)
        json[kLevelNames[level]] = counts[level];
    return json;
}

// "2 instances, 1 face", without the levels that have none.
std::string countsText(const LevelCounts& counts)
{
    std::string text;
    for (int level = 0; level < kLevelCount; ++level) {
        if (counts[level] == 0)
            continue;
        text += (text.empty() ? "" : ", ") + std::to_string(counts[level]) + " " +
                (counts[level] == 1 ? kLevelNames[level] : kLevelPlurals[level]);
    }
    return text.empty() ? "none" : text;
}

std::string nameIn(const Json& description)
{
    for (const char* field : {"userName", "idName", "visualName", "appearanceName"})
        if (const auto& name = description[field].get_ref<const std::string&>(); !name.empty())
            return name;
    return "";
}

void writeUnlessZero(const Json& description, const char* field, std::ostream& out)
{
    if (description[field] == 0.0)
        return;
    out << "  " << field << ' ';
    const Json& value = description[field];
    out << (value.is_string() ? value.get<std::string>() : floatText(value.get<float>()));
}

void writeAppearance(std::size_t number, const Appearance& appearance, std::ostream& out)
{
    const Json& description = appearance.description;
    out << std::string(number < 10    ? 2
                       : number < 100 ? 1
                                      : 0,
                       ' ')
        << number << ". " << description["color"].get<std::string>();
    if (const std::string name = nameIn(description); !name.empty())
        out << " \"" << oneLine(name) << '"';
    for (const char* field : {"transparency", "emission", "specular", "shininess"})
        writeUnlessZero(description, field, out);
    out << "\n      on " << countsText(appearance.uses) << '\n';
    for (const std::string& line : appearance.imageLines)
        out << "      " << line << '\n';
}

long long texturesThatAre(const Materials& materials, ImageStatus status)
{
    return std::count_if(materials.textures.begin(), materials.textures.end(),
                         [status](const Texture& texture) { return texture.image->status == status; });
}

// Each step once, in the order of the first path.
std::string stepsTried(const SearchedImage& image)
{
    std::string text;
    std::set<TextureSearchStep> seen;
    for (const TextureProbe& probe : image.probes)
        if (seen.insert(probe.step).second)
            text += (text.empty() ? "" : ", ") + std::string(stepInWords(probe.step));
    return text;
}

// " by the stored path", as far as it is known.
std::string whereFound(const SearchedImage& image)
{
    const bool isKnown = !image.probes.empty() && image.probes.back().found;
    return isKnown ? std::string(", by ") + stepInWords(image.probes.back().step) : "";
}

std::string sizeText(const Texture& texture)
{
    if (!texture.size)
        return ", but it cannot be read as an image";
    return ", " + std::to_string(texture.size->width) + " x " + std::to_string(texture.size->height);
}

std::string outcomeOf(const Texture& texture)
{
    const SearchedImage& image = *texture.image;
    if (image.status != ImageStatus::kFound)
        return statusName(image.status);
    const char* standsIn = image.isDefaultDecal ? ", no image by its name: the default decal" : "";
    return "found" + whereFound(image) + standsIn + sizeText(texture);
}

void writeTexture(const Texture& texture, std::ostream& out)
{
    const SearchedImage& image = *texture.image;
    out << "  " << oneLine(platform::toUtf8(image.storedPath)) << ": " << outcomeOf(texture) << '\n';
    if (image.status == ImageStatus::kFound)
        out << "      at " << oneLine(rlu_nativePath(image.path)) << '\n';
    if (!image.probes.empty())
        out << "      tried " << stepsTried(image) << '\n';
    for (const std::string& bitmap : image.bakedAs)
        out << "      baked as " << oneLine(bitmap) << '\n';
}

void writeTextures(const Materials& materials, std::ostream& out)
{
    out << "textures: " << texturesThatAre(materials, ImageStatus::kFound) << " found, "
        << texturesThatAre(materials, ImageStatus::kMissing) << " missing, "
        << texturesThatAre(materials, ImageStatus::kEmbedded) << " embedded in the document\n";
    for (const Texture& texture : materials.textures)
        writeTexture(texture, out);
}

Json probesJson(const SearchedImage& image)
{
    Json probes = Json::array();
    for (const TextureProbe& probe : image.probes)
        probes.push_back({{"step", stepName(probe.step)},
                          {"path", platform::toUtf8(probe.path)},
                          {"found", probe.found}});
    return probes;
}

// What could not be told is null.
Json textureJson(const Texture& texture)
{
    const SearchedImage& image = *texture.image;
    const bool isFound = image.status == ImageStatus::kFound;
    Json json{{"file", platform::toUtf8(image.storedPath)},
              {"searchedAs", kindName(image.type)},
              {"status", statusName(image.status)},
              {"uses", texture.uses}};
    json["path"] = isFound ? Json(asUtf8(rlu_nativePath(image.path))) : Json();
    json["readable"] = isFound ? Json(texture.size.has_value()) : Json();
    json["width"] = texture.size ? Json(texture.size->width) : Json();
    json["height"] = texture.size ? Json(texture.size->height) : Json();
    json["isDefaultDecal"] = image.isDefaultDecal;
    json["bakedAs"] = Json::array();
    for (const std::string& bitmap : image.bakedAs)
        json["bakedAs"].push_back(asUtf8(bitmap));
    json["probeCount"] = image.probeCount;
    json["probes"] = probesJson(image);
    return json;
}

Json sceneJson(const dlModel& model, ImageSearch& images)
{
    const auto stored = [&images](const std::string& name) {
        return name.empty() ? Json() : Json(platform::toUtf8(images.ofScene(name).storedPath));
    };
    return {{"environmentImage", stored(model.scene.environmentImage)},
            {"backPlateImage", stored(model.scene.backPlateImage)}};
}

}  // namespace

void writeMaterialsText(dlModel& model, ImageSearch& images, const std::function<bool()>& cancelled,
                        std::ostream& out)
{
    const Materials materials = Collection(images, cancelled).run(model);
    out << counted(static_cast<long long>(materials.appearances.size()), "appearance") << '\n';
    for (std::size_t i = 0; i < materials.appearances.size(); ++i)
        writeAppearance(i + 1, materials.appearances[i], out);
    out << "without one of their own: " << countsText(materials.without) << '\n';
    for (const std::string& line : materials.sceneLines)
        out << "scene: " << line << '\n';
    writeTextures(materials, out);
}

void writeMaterialsJson(dlModel& model, ImageSearch& images, const std::function<bool()>& cancelled,
                        std::ostream& out)
{
    const Materials materials = Collection(images, cancelled).run(model);
    Json json{{"materials", Json::array()}};
    for (const Appearance& appearance : materials.appearances) {
        Json entry = appearance.description;
        entry["uses"] = countsJson(appearance.uses);
        json["materials"].push_back(entry);
    }
    json["without"] = countsJson(materials.without);
    json["without"].erase("decal");
    json["scene"] = sceneJson(model, images);
    json["textures"] = Json::array();
    for (const Texture& texture : materials.textures)
        json["textures"].push_back(textureJson(texture));
    out << json.dump(2) << '\n';
}

}  // namespace tool
