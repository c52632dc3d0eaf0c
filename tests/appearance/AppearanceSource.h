// Visual properties with all that can hang on them, for tests to fill.
#pragma once

#include <bit>
#include <cstdint>

#include "raylume/load/ReaderInterface.h"

/// The two optional records hang on the material only after withAppearance() and withImage().
struct AppearanceSource {
    AppearanceSource() { visual.materialProps = &material; }
    AppearanceSource(const AppearanceSource&) = delete;
    AppearanceSource& operator=(const AppearanceSource&) = delete;

    AppearanceSource& withAppearance()
    {
        material.rvAppearance = &appearance;
        return *this;
    }

    AppearanceSource& withImage()
    {
        material.textureProperties = &image;
        return *this;
    }

    moVisualProperties_c visual;
    uoMaterialProperties material;
    uoRVAppearanceProperties appearance;
    uoMaterialTextureProperties image;
};

inline std::uint32_t bitsOf(float value)
{
    return std::bit_cast<std::uint32_t>(value);
}

inline float floatOf(std::uint32_t bits)
{
    return std::bit_cast<float>(bits);
}
