#include "reader/formats/gltf/GltfDocument.h"

#include "raylume/platform/Memory.h"

namespace ovdl::gltf {

PartTessellation::PartTessellation(std::size_t faceCount)
{
    // What a body has that nobody assigned to a level.
    body.level = 100;
    for (std::size_t i = 0; i < faceCount; ++i)
        facePointers.push_back(&faces.emplace_back());
    body.faces = {facePointers.data(), static_cast<long long>(faceCount)};
    bodies[0] = &body;
    part.bodies = {bodies, 1};
}

void GltfDocument::reserveComponents(std::size_t count)
{
    components.reserve(count);
    platform::prepareForFilling(components.data(), count * sizeof(uoTempAssemblySHDData_c));
    componentPointers.reserve(count);
}

uoTempAssemblySHDData_c& GltfDocument::addComponent()
{
    uoTempAssemblySHDData_c& component = components.emplace_back();
    componentPointers.push_back(&component);
    assemblyDocument.components.data = componentPointers.data();
    assemblyDocument.components.count = static_cast<long long>(componentPointers.size());
    return component;
}

OVDLDocument& GltfDocument::shared()
{
    if (isPart)
        return partDocument;
    return assemblyDocument;
}

void GltfDocument::publishLights()
{
    for (moLight_c& light : lights)
        lightPointers.push_back(&light);
    lightArray = {lightPointers.data(), static_cast<long long>(lightPointers.size())};
    if (!lightPointers.empty())
        shared().lightData = &lightArray;
}

}  // namespace ovdl::gltf
