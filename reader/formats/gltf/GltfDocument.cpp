#include "reader/formats/gltf/GltfDocument.h"

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

void GltfDocument::makeComponents(std::size_t count)
{
    components.reset(new uoTempAssemblySHDData_c[count]);
    componentPointers.reset(new uoTempAssemblySHDData_c*[count]);
    for (std::size_t i = 0; i < count; ++i)
        componentPointers[i] = &components[i];
    assemblyDocument.components.data = componentPointers.get();
    assemblyDocument.components.count = static_cast<long long>(count);
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
