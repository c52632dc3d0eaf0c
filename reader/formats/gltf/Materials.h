// From materials to the appearance of faces. The table is in docs/formats/gltf.md.
#pragma once

#include <map>
#include <memory>
#include <string>

#include "raylume/load/ReaderInterface.h"
#include "reader/DocumentPath.h"
#include "reader/formats/gltf/Records.h"

namespace ovdl::gltf {

/// One appearance with all that it points to.
struct Appearance {
    Appearance() = default;
    Appearance(const Appearance&) = delete;
    Appearance& operator=(const Appearance&) = delete;

    moVisualProperties_c visual;
    uoMaterialProperties material;
    uoMaterialTextureProperties texture;
    uoRVAppearanceProperties render;
};

/// The base colour texture of a material, in whichever workflow it is written.
const TextureUse& colourTexture(const MaterialRecord& record);

/// One record for each material that is used, shared by all faces that show it. kNone is the material
/// that the format prescribes where a primitive names none.
using Appearances = std::map<std::int32_t, std::unique_ptr<Appearance>>;

/// Fills an appearance. `imageName` names the base colour image, or is empty.
std::unique_ptr<Appearance> makeAppearance(const MaterialRecord& record, const std::wstring& imageName);

/// The name under which an image goes: `<document>#image<n>` where its bytes lie in the document, its
/// path where it lies beside it. Empty for one that the document may not reach.
std::wstring imageName(const Records& records, std::int32_t texture, const DocumentPath& path);

}  // namespace ovdl::gltf
