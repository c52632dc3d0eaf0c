#include "reader/formats/ovdl/Inventory.h"

#include "raylume/platform/Text.h"
#include "reader/formats/ovdl/ReaderArrays.h"

namespace ovdl {

void TextNumbers::add(std::wstring_view text)
{
    if (!text.empty() && numbers_.try_emplace(text, static_cast<std::uint32_t>(texts_.size() + 1)).second)
        texts_.push_back(text);
}

std::string tessellationName(std::int32_t number)
{
    return "tessellation " + std::to_string(number);
}

Inventory::Inventory(const DocumentContents& contents, std::uint64_t largestPiece)
    : reason(platform::fromUtf8(contents.reason)), largestPiece_(largestPiece)
{
    if (!contents.part && !contents.assembly)
        refuse("the document is neither a part nor an assembly");
    texts.add(reason);
    if (contents.part) {
        addDocument(*contents.part, "the part document");
        addTessellation(contents.part->tessData);
    }
    if (contents.assembly) {
        addDocument(*contents.assembly, "the assembly document");
        addComponents(contents.assembly->components, "the assembly document");
    }
    for (const auto& [name, array] : contents.configurations) {
        texts.add(name);
        if (array)
            addComponents(*array, "configuration \"" + platform::toUtf8(name) + "\"");
    }
}

void Inventory::addDocument(const OVDLDocument& document, const std::string& where)
{
    addScene(document.sceneHolder);
    if (!document.lightData)
        return;
    checkArray(*document.lightData, where + ", lightData");
    for (const moLight_c* light : elementsOf(*document.lightData))
        addLight(light);
}

void Inventory::addComponents(const uoTempAssemblySHDDataArray_c& array, const std::string& where)
{
    checkArray(array, where + ", components");
    for (const uoTempAssemblySHDData_c* component : elementsOf(array))
        addComponent(component);
}

void Inventory::addComponent(const uoTempAssemblySHDData_c* component)
{
    if (!components.add(component))
        return;
    texts.add(component->name);
    texts.add(component->configName);
    addVisual(component->vizProps);
    addTessellation(component->tessData);
    addDecals(component->decals);
}

// The layout is made anew when the tessellation is written: keeping those of all would take more memory
// than the document.
void Inventory::addTessellation(const uoTempPartTessData_c* tessData)
{
    if (!tessellations.add(tessData))
        return;
    const auto layout = layOut(*tessData, tessellationName(tessellations.of(tessData)), largestPiece_);
    tessellationPieces.push_back(static_cast<std::uint32_t>(layout.pieces.size()));
    addVisuals(tessData->modelVizProps);
    for (const auto& [config, list] : tessData->decalsByConfig)
        addDecals(list);
    addAppearances(layout);
}

void Inventory::addAppearances(const TessellationLayout& layout)
{
    for (const uoTempBodyTessData_c* body : layout.bodies.objects())
        addVisuals(body->bodyVizProps);
    for (const uoTempFaceTessData_c* face : layout.faces.objects())
        addVisuals(face->faceVizProps);
}

void Inventory::addVisuals(const std::map<int, moVisualProperties_c*>& byConfiguration)
{
    for (const auto& [config, visual] : byConfiguration)
        addVisual(visual);
}

void Inventory::addVisual(const moVisualProperties_c* visual)
{
    if (!visuals.add(visual))
        return;
    texts.add(visual->visualName);
    texts.add(visual->materialFileName);
    addMaterial(visual->materialProps);
}

void Inventory::addMaterial(const uoMaterialProperties* material)
{
    if (!materials.add(material))
        return;
    texts.add(material->idName);
    texts.add(material->userName);
    addTexture(material->textureProperties);
    addRenderAppearance(material->rvAppearance);
}

void Inventory::addRenderAppearance(const uoRVAppearanceProperties* appearance)
{
    if (!renderAppearances.add(appearance))
        return;
    texts.add(appearance->lfpFilename);
    texts.add(appearance->bumpTextureFilename);
    texts.add(appearance->filename);
    texts.add(appearance->shaderName);
}

void Inventory::addTexture(const uoMaterialTextureProperties* texture)
{
    if (textures.add(texture))
        texts.add(texture->filename);
}

void Inventory::addDecals(const std::list<uoDecalProperties*>& list)
{
    for (const uoDecalProperties* decal : list)
        addDecal(decal);
}

// What a decal holds by value gets a record of its own.
void Inventory::addDecal(const uoDecalProperties* decal)
{
    if (!decals.add(decal))
        return;
    texts.add(decal->maskFileName);
    addTexture(&decal->textureProperties);
    addMaterial(&decal->materialProperties);
}

void Inventory::addLight(const moLight_c* light)
{
    lights.add(light);
}

void Inventory::addScene(const ovScene_c* scene)
{
    if (scenes.add(scene))
        addSceneData(scene->sceneData);
}

void Inventory::addSceneData(const pwSceneData_c* data)
{
    if (!sceneData.add(data))
        return;
    texts.add(data->sceneFileName);
    for (const auto& [index, file] : data->backgroundImages)
        texts.add(file);
    for (const auto& [index, file] : data->backgroundEnvImages)
        texts.add(file);
    for (const auto& [index, wall] : data->walls)
        walls.add(wall);
}

}  // namespace ovdl
