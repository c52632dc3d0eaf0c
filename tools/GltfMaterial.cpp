#include "tools/GltfMaterial.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string>

#include "tools/Values.h"

namespace tool {
namespace {

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

void addEmission(const dlMaterial& material, nlohmann::ordered_json& result)
{
    const double emission = between0And1(material.emission);
    if (emission == 0)
        return;
    const auto colour = linearColour(material);
    result["emissiveFactor"] = {emission * colour[0], emission * colour[1], emission * colour[2]};
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
                                      {"metallicFactor", 0},
                                      {"roughnessFactor", 1 - between0And1(material.shininess)}};
    addEmission(material, result);
    if (opacity < 1)
        result["alphaMode"] = "BLEND";
    // Surfaces of a document are seen from both sides.
    result["doubleSided"] = true;
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
