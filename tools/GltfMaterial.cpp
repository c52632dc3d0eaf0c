#include "tools/GltfMaterial.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <string>

#include "tools/Values.h"

namespace tool {
namespace {

constexpr std::uint32_t kWhite = 0x00FFFFFF;

// NaN becomes 0.
double between0And1(double value)
{
    return value > 0 ? std::min(value, 1.0) : 0.0;
}

// Colours of documents are sRGB, factors of glTF are linear (IEC 61966-2-1).
double linear(double value)
{
    value = between0And1(value);
    return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
}

std::array<double, 3> linearColour(const dlMaterial& material)
{
    return {linear(material.color[0]), linear(material.color[1]), linear(material.color[2])};
}

const std::string& nameOf(const dlMaterial& material)
{
    for (const std::string* name : {&material.userName, &material.idName, &material.visualName})
        if (!name->empty())
            return *name;
    return material.appearanceName;
}

// What shines has a colour of its own in the second colour; where that was left white, the surface
// shines in its own, unless it is black.
std::array<double, 3> emissionColour(const dlMaterial& material)
{
    const std::array<double, 3> own = linearColour(material);
    const bool isBlack = *std::max_element(own.begin(), own.end()) == 0;
    if ((material.secondColorRef & kWhite) == kWhite && !isBlack)
        return own;
    return {linear((material.secondColorRef & 0xFF) / 255.0),
            linear((material.secondColorRef >> 8 & 0xFF) / 255.0),
            linear((material.secondColorRef >> 16 & 0xFF) / 255.0)};
}

// The strength is that of the strongest of the three.
void addEmission(const dlMaterial& material, nlohmann::ordered_json& result)
{
    const double emission = between0And1(material.emission);
    const std::array<double, 3> colour = emissionColour(material);
    const double strongest = *std::max_element(colour.begin(), colour.end());
    if (emission == 0 || strongest == 0)
        return;
    auto& factor = result["emissiveFactor"] = nlohmann::ordered_json::array();
    for (const double part : colour)
        factor.push_back(std::min(emission * (part / strongest), 1.0));
}

// A surface reflects head-on what a metal of its share does, the rest as glass and paint do; the
// highlight of a rough one is spread until none is left.
double metallic(const dlMaterial& material)
{
    constexpr double kDielectric = 0.04;
    const double shininess = between0And1(material.shininess);
    if (shininess == 0)
        return 0;
    const double headOn = between0And1(material.specular) / shininess;
    return between0And1((headOn - kDielectric) / (1 - kDielectric));
}

}  // namespace

nlohmann::ordered_json gltfMaterial(const dlMaterial& material)
{
    const auto colour = linearColour(material);
    const double opacity = 1 - between0And1(material.transparency);
    nlohmann::ordered_json result;
    if (!nameOf(material).empty())
        result["name"] = utf8(nameOf(material));
    result["pbrMetallicRoughness"] = {{"baseColorFactor", {colour[0], colour[1], colour[2], opacity}},
                                      {"metallicFactor", metallic(material)},
                                      {"roughnessFactor", 1 - between0And1(material.shininess)}};
    addEmission(material, result);
    if (opacity < 1)
        result["alphaMode"] = "BLEND";
    // Surfaces of a document are seen from both sides.
    result["doubleSided"] = true;
    return result;
}

nlohmann::ordered_json gltfDecalMaterial(const dlMaterial& decal)
{
    dlMaterial white = decal;
    // The copy shares the pointers, which one owner alone may free.
    white.decals.clear();
    std::fill_n(white.color, 3, 1.0f);
    nlohmann::ordered_json result = gltfMaterial(white);
    result["alphaMode"] = "BLEND";
    return result;
}

bool isUnset(const dlMaterial& material)
{
    const dlMaterial unset;
    return material == unset && !(material.texture != unset.texture) && material.texture.filename.empty() &&
           material.idName.empty() && material.userName.empty() && material.appearanceName.empty() &&
           material.shaderName.empty() && material.visualName.empty() && material.bumpFilename.empty();
}

}  // namespace tool
