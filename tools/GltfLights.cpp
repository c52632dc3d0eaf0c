#include "tools/GltfLights.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "raylume/platform/Text.h"
#include "tools/Placement.h"

namespace tool {
namespace {

constexpr char kExtension[] = "KHR_lights_punctual";

// Values of dlLight::lightType.
constexpr int kAimed = 2;
constexpr int kPositioned = 3;
constexpr int kDirectional = 4;
constexpr int kSun = 6;

const char* gltfType(const dlLight& light)
{
    switch (light.lightType) {
    case kAimed:
        return "spot";
    case kPositioned:
        return "point";
    case kDirectional:
    case kSun:
        return "directional";
    default:
        return nullptr;
    }
}

bool hasPlace(const dlLight& light)
{
    return light.lightType == kAimed || light.lightType == kPositioned;
}

bool hasRotation(const dlLight& light)
{
    return light.lightType != kPositioned;
}

bool areFinite(const float (&values)[3])
{
    return std::all_of(values, values + 3, [](float value) { return std::isfinite(value); });
}

// NaN becomes the least.
double limited(double value, double least, double most)
{
    return value > least ? std::min(value, most) : least;
}

double intensityOf(const dlLight& light)
{
    return std::isfinite(light.factorA) ? std::max(0.0, double(light.factorA)) : 1.0;
}

Json colourOf(const dlLight& light)
{
    Json colour = Json::array();
    for (const float channel : light.colour)
        colour.push_back(limited(channel, 0, 1));
    return colour;
}

// The table has whole cones, glTF half ones; the inner one has to be smaller than the outer one.
Json coneOf(const dlLight& light)
{
    constexpr double kWidest = std::numbers::pi / 2;
    constexpr double kWholeByDefault = std::numbers::pi / 2;
    const double whole = light.shapeValue > 0 ? light.shapeValue : kWholeByDefault;
    const double outer = limited(whole / 2, 1e-3, kWidest);
    const double inner = limited(light.valueD / 2, 0, outer * 0.999);
    return {{"innerConeAngle", inner}, {"outerConeAngle", outer}};
}

Json lightJson(const dlLight& light, const char* type)
{
    Json json{{"type", type}};
    if (!light.name.empty())
        json["name"] = platform::toUtf8(light.name);
    json["color"] = colourOf(light);
    json["intensity"] = light.enabled ? intensityOf(light) : 0.0;
    if (light.lightType == kAimed)
        json["spot"] = coneOf(light);
    if (hasPlace(light) && light.valueF > 0 && std::isfinite(light.valueF))
        json["range"] = light.valueF;
    if (!light.enabled)
        json["extras"] = {{"enabled", false}, {"intensity", intensityOf(light)}};
    return json;
}

Quaternion product(const Quaternion& a, const Quaternion& b)
{
    return {a[3] * b[0] + a[0] * b[3] + a[1] * b[2] - a[2] * b[1],
            a[3] * b[1] - a[0] * b[2] + a[1] * b[3] + a[2] * b[0],
            a[3] * b[2] + a[0] * b[1] - a[1] * b[0] + a[2] * b[3],
            a[3] * b[3] - a[0] * b[0] - a[1] * b[1] - a[2] * b[2]};
}

// About x first, then y, then z.
Quaternion rotationOf(const float (&angles)[3])
{
    Quaternion turned{0, 0, 0, 1};
    for (int axis = 0; axis < 3; ++axis) {
        Quaternion turn{0, 0, 0, std::cos(angles[axis] / 2.0)};
        turn[static_cast<std::size_t>(axis)] = std::sin(angles[axis] / 2.0);
        turned = product(turn, turned);
    }
    return turned;
}

// A node's lights look along its -z. An aimed light's angles turn -z to where it looks, those of the
// other two turn +z to where the light comes from: in both cases the node's rotation.
Json nodeJson(const dlLight& light, int index)
{
    Json node;
    if (!light.name.empty())
        node["name"] = platform::toUtf8(light.name);
    if (hasPlace(light)) {
        const double place[3] = {light.position[0], light.position[1], light.position[2]};
        node["translation"] = jsonNumbers(place, 3);
    }
    if (hasRotation(light))
        node["rotation"] = jsonNumbers(rotationOf(light.rotation).data(), 4);
    node["extensions"][kExtension]["light"] = index;
    return node;
}

void addLight(const dlLight& light, GltfFile& file, std::vector<int>& roots)
{
    const char* const type = gltfType(light);
    if (!type) {
        ++file.notes.lightsOfOtherTypes;
        return;
    }
    if ((hasPlace(light) && !areFinite(light.position)) ||
        (hasRotation(light) && !areFinite(light.rotation))) {
        ++file.notes.lightsWithoutPlace;
        return;
    }
    file.useExtension(kExtension);
    roots.push_back(file.nodes.add(nodeJson(light, file.lights.add(lightJson(light, type)))));
}

}  // namespace

void addLights(const dlModel& model, GltfFile& file, std::vector<int>& roots)
{
    const int count = std::clamp<int>(model.lightCount, 0, dlModel::kLightCapacity);
    for (int i = 0; i < count; ++i)
        addLight(model.lights[i], file, roots);
}

}  // namespace tool
