#include "reader/formats/step/import/Appearances.h"

#include <algorithm>
#include <cmath>

namespace ovdl::step {
namespace {

// What a surface is like of which only the colour is known.
constexpr double kAmbient = 0.5;
constexpr double kSpecular = 0.04;
constexpr double kShininess = 0.5;

std::uint32_t byteOf(double share)
{
    return static_cast<std::uint32_t>(std::lround(255 * std::clamp(share, 0.0, 1.0)));
}

// The library keeps colours linear; files have them as screens show them.
PackedColour packed(const Quantity_ColorRGBA& colour)
{
    const Quantity_Color& rgb = colour.GetRGB();
    const auto byte = [](double linear) {
        return byteOf(Quantity_Color::Convert_LinearRGB_To_sRGB(linear));
    };
    return byte(rgb.Red()) | byte(rgb.Green()) << 8 | byte(rgb.Blue()) << 16 |
           byteOf(static_cast<double>(colour.Alpha())) << 24;
}

void fillMaterial(PackedColour colour, uoMaterialProperties& material)
{
    material.ambient = kAmbient;
    material.diffuse = 1;
    material.specular = kSpecular;
    material.shininess = kShininess;
    material.transparency = 1 - (colour >> 24) / 255.0;
}

void fillRender(PackedColour colour, uoRVAppearanceProperties& render)
{
    render.mappingType = 1;
    render.uDirection[0] = 1;
    render.vDirection[1] = 1;
    render.mappingScalar = 1;
    render.index = -1;
    render.unitLevel = 1;
    render.colorRef = colour & 0x00FFFFFF;
    render.secondColorRef = 0x00FFFFFF;
    render.shininess = static_cast<float>(kShininess);
}

}  // namespace

std::optional<PackedColour> colourOf(const Handle(XCAFDoc_ColorTool) & tool, const TDF_Label& label)
{
    Quantity_ColorRGBA colour;
    if (tool->GetColor(label, XCAFDoc_ColorSurf, colour) || tool->GetColor(label, XCAFDoc_ColorGen, colour))
        return packed(colour);
    return std::nullopt;
}

moVisualProperties_c* Appearances::of(std::optional<PackedColour> colour)
{
    if (!colour)
        return nullptr;
    moVisualProperties_c*& visual = made_[*colour];
    if (!visual) {
        visual = document_.own<moVisualProperties_c>();
        visual->activeFlag = 1;
        visual->colorRef = *colour & 0x00FFFFFF;
        visual->materialProps = document_.own<uoMaterialProperties>();
        fillMaterial(*colour, *visual->materialProps);
        visual->materialProps->rvAppearance = document_.own<uoRVAppearanceProperties>();
        fillRender(*colour, *visual->materialProps->rvAppearance);
    }
    return visual;
}

}  // namespace ovdl::step
