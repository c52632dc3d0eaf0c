// Images of appearances and decals as textures of a glTF file.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <utility>

#include "raylume/scene/dlDecal.h"
#include "tools/GltfFile.h"
#include "tools/ImageSearch.h"

namespace tool {

/// Puts each image into the file once, when it is first asked for. Images that cannot be put there are
/// counted in the file's notes, once each.
class GltfTextures {
public:
    GltfTextures(GltfFile& file, ImageSearch& images) : file_(file), images_(images) {}

    /// The value of "baseColorTexture" for an appearance; null when it shows no image, or none that can be
    /// put into the file. The image repeats; scale, angle and translation become KHR_texture_transform
    /// (https://github.com/KhronosGroup/glTF/tree/main/extensions/2.0/Khronos/KHR_texture_transform).
    Json ofAppearance(const dlTexture& texture);
    /// The same for the image that a decal names, the baked one where there is a mask. It has no
    /// transform and does not repeat.
    Json ofDecal(const dlDecal& decal);

    /// True when the appearance shows an image, whether or not it is found.
    static bool isTextured(const dlTexture& texture);

private:
    enum Wrap : int { kRepeat = 10497, kClampToEdge = 33071 };

    std::optional<int> textureOf(const std::wstring& path, Wrap wrap);
    std::optional<int> imageOf(const std::wstring& path);
    int samplerOf(Wrap wrap);
    void countUnfit(const SearchedImage& image);

    GltfFile& file_;
    ImageSearch& images_;
    std::map<std::string, std::optional<int>> imageIndices_;  // by native path
    std::map<std::pair<int, int>, int> textureIndices_;       // by image and wrap
    std::map<int, int> samplerIndices_;                       // by wrap
    std::set<const SearchedImage*> counted_;
};

}  // namespace tool
