#include "tools/MaterialsReport.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <filesystem>
#include <map>
#include <set>
#include <string>
#include <system_error>
#include <vector>

#include "raylume/platform/Text.h"
#include "raylume/scene/dlDecal.h"
#include "tools/GltfMaterial.h"
#include "tools/Values.h"

namespace tool {
namespace {

enum AppearanceLevel { kInstance, kPart, kBody, kFace, kDecal, kLevelCount };
constexpr const char* kLevelNames[] = {"instance", "part", "body", "face", "decal"};
constexpr const char* kLevelPlurals[] = {"instances", "parts", "bodies", "faces", "decals"};

using LevelCounts = std::array<long long, kLevelCount>;

struct Appearance {
    Json description;
    LevelCounts uses{};
};

struct Texture {
    std::string file;
    std::string status;
    long long uses = 0;
};

struct Materials {
    std::vector<Appearance> appearances;
    LevelCounts without{};
    std::vector<Texture> textures;
};

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

bool isEmbedded(const std::string& file)
{
    const std::string mark = "#image";
    const auto place = file.rfind(mark);
    if (place == std::string::npos || place + mark.size() == file.size())
        return false;
    return std::all_of(file.begin() + static_cast<std::ptrdiff_t>(place + mark.size()), file.end(),
                       [](char c) { return c >= '0' && c <= '9'; });
}

bool isFile(std::string path)
{
    std::replace(path.begin(), path.end(), '\\', '/');
    std::error_code failed;
    return std::filesystem::is_regular_file(path, failed);
}

std::string statusOf(const std::string& file)
{
    if (isFile(file))
        return "found";
    return isEmbedded(file) ? "embedded" : "missing";
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

Json describe(const dlDecal& decal)
{
    Json json = describe(static_cast<const dlMaterial&>(decal));
    json["maskFile"] = platform::toUtf8(decal.maskFilename);
    json["maskInvert"] = decal.maskInvert;
    return json;
}

class Collection {
public:
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
        return std::move(materials_);
    }

private:
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
        addTextures(*material);
        add(describe(*material), level);
    }

    void addDecal(const dlDecal& decal)
    {
        addTextures(decal);
        addTexture(platform::toUtf8(decal.maskFilename));
        add(describe(decal), kDecal);
    }

    void add(Json description, AppearanceLevel level)
    {
        const auto [place, isNew] = byText_.try_emplace(description.dump(), materials_.appearances.size());
        if (isNew)
            materials_.appearances.push_back({std::move(description), {}});
        ++materials_.appearances[place->second].uses[level];
    }

    void addTextures(const dlMaterial& material)
    {
        addTexture(platform::toUtf8(material.texture.filename));
        addTexture(utf8(material.bumpFilename));
    }

    void addTexture(const std::string& file)
    {
        if (file.empty())
            return;
        const auto [place, isNew] = byFile_.try_emplace(file, materials_.textures.size());
        if (isNew)
            materials_.textures.push_back({file, statusOf(file), 0});
        ++materials_.textures[place->second].uses;
    }

    Materials materials_;
    std::set<const dlPart*> seen_;
    std::map<std::string, std::size_t> byText_;
    std::map<std::string, std::size_t> byFile_;
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

void writeFile(const Json& description, const char* field, const char* title, std::ostream& out)
{
    if (!description.contains(field))
        return;
    const auto& file = description[field].get_ref<const std::string&>();
    if (!file.empty())
        out << "      " << title << ' ' << oneLine(file) << " (" << statusOf(file) << ")\n";
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
    writeFile(description, "textureFile", "texture", out);
    writeFile(description, "bumpFile", "bump", out);
    writeFile(description, "maskFile", "mask", out);
}

long long texturesThatAre(const Materials& materials, const char* status)
{
    return std::count_if(materials.textures.begin(), materials.textures.end(),
                         [status](const Texture& texture) { return texture.status == status; });
}

}  // namespace

void writeMaterialsText(dlModel& model, std::ostream& out)
{
    const Materials materials = Collection().run(model);
    out << counted(static_cast<long long>(materials.appearances.size()), "appearance") << '\n';
    for (std::size_t i = 0; i < materials.appearances.size(); ++i)
        writeAppearance(i + 1, materials.appearances[i], out);
    out << "without one of their own: " << countsText(materials.without) << '\n';
    out << "textures: " << texturesThatAre(materials, "found") << " found, "
        << texturesThatAre(materials, "missing") << " missing, " << texturesThatAre(materials, "embedded")
        << " embedded in the document\n";
}

void writeMaterialsJson(dlModel& model, std::ostream& out)
{
    const Materials materials = Collection().run(model);
    Json json{{"materials", Json::array()}};
    for (const Appearance& appearance : materials.appearances) {
        Json entry = appearance.description;
        entry["uses"] = countsJson(appearance.uses);
        json["materials"].push_back(entry);
    }
    json["without"] = countsJson(materials.without);
    json["without"].erase("decal");
    json["textures"] = Json::array();
    for (const Texture& texture : materials.textures)
        json["textures"].push_back(
            {{"file", texture.file}, {"status", texture.status}, {"uses", texture.uses}});
    out << json.dump(2) << '\n';
}

}  // namespace tool
