// Every object of a document, numbered kind by kind, before anything is written.
#pragma once

#include <cstdint>
#include <list>
#include <map>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "reader/formats/ovdl/DocumentContents.h"
#include "reader/formats/ovdl/ObjectNumbers.h"
#include "reader/formats/ovdl/TessellationLayout.h"

namespace ovdl {

/// Texts, each once. 0 is the empty one.
class TextNumbers {
public:
    /// `text` stays where it is as long as this object lives.
    void add(std::wstring_view text);
    std::uint32_t of(std::wstring_view text) const { return text.empty() ? 0 : numbers_.at(text); }

    const std::vector<std::wstring_view>& texts() const { return texts_; }

private:
    std::unordered_map<std::wstring_view, std::uint32_t> numbers_;
    std::vector<std::wstring_view> texts_;
};

/// Borrows the objects, which stay as they are.
class Inventory {
public:
    /// Walks over everything. Errors: raises Refusal for what no document can hold, saying where.
    Inventory(const DocumentContents& contents, std::uint64_t largestPiece);
    Inventory(const Inventory&) = delete;
    Inventory& operator=(const Inventory&) = delete;

    TextNumbers texts;
    ObjectNumbers<uoMaterialTextureProperties> textures;
    ObjectNumbers<uoRVAppearanceProperties> renderAppearances;
    ObjectNumbers<uoMaterialProperties> materials;
    ObjectNumbers<moVisualProperties_c> visuals;
    ObjectNumbers<uoDecalProperties> decals;
    ObjectNumbers<moLight_c> lights;
    ObjectNumbers<pwWallInfo_c> walls;
    ObjectNumbers<pwSceneData_c> sceneData;
    ObjectNumbers<ovScene_c> scenes;
    ObjectNumbers<uoTempPartTessData_c> tessellations;
    std::vector<std::uint32_t> tessellationPieces;  ///< Of each tessellation.
    ObjectNumbers<uoTempAssemblySHDData_c> components;
    std::wstring reason;

private:
    void addDocument(const OVDLDocument& document, const std::string& where);
    void addComponents(const uoTempAssemblySHDDataArray_c& array, const std::string& where);
    void addComponent(const uoTempAssemblySHDData_c* component);
    void addTessellation(const uoTempPartTessData_c* tessData);
    void addAppearances(const TessellationLayout& layout);
    void addVisuals(const std::map<int, moVisualProperties_c*>& byConfiguration);
    void addVisual(const moVisualProperties_c* visual);
    void addMaterial(const uoMaterialProperties* material);
    void addRenderAppearance(const uoRVAppearanceProperties* appearance);
    void addTexture(const uoMaterialTextureProperties* texture);
    void addDecals(const std::list<uoDecalProperties*>& list);
    void addDecal(const uoDecalProperties* decal);
    void addLight(const moLight_c* light);
    void addScene(const ovScene_c* scene);
    void addSceneData(const pwSceneData_c* data);

    std::uint64_t largestPiece_;
};

/// How a refusal names a tessellation.
std::string tessellationName(std::int32_t number);

}  // namespace ovdl
