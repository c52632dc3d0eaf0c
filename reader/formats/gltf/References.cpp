#include "reader/formats/gltf/References.h"

#include <string>

#include "reader/formats/gltf/Refusal.h"

namespace ovdl::gltf {
namespace {

// An index of something in one element of a list, for reasons.
struct Holder {
    const char* section;
    std::size_t index;

    void check(std::int64_t reference, std::size_t count, const char* what) const
    {
        if (reference != kNone && (reference < 0 || static_cast<std::uint64_t>(reference) >= count))
            refuse(numbered(section, index) + " names " + what + " " + std::to_string(reference) + " of " +
                   std::to_string(count));
    }
    // The same where there has to be one.
    void checkPresent(std::int64_t reference, std::size_t count, const char* what) const
    {
        if (reference == kNone)
            refuse(numbered(section, index) + " names no " + what);
        check(reference, count, what);
    }
};

void checkNodes(const Records& records)
{
    for (std::size_t i = 0; i < records.nodes.size(); ++i) {
        const NodeRecord& node = records.nodes[i];
        const Holder holder{"nodes", i};
        holder.check(node.mesh, records.meshes.size(), "mesh");
        holder.check(node.camera, records.cameraCount, "camera");
        holder.check(node.light, records.lights.size(), "light");
        for (std::uint32_t c = 0; c < node.childCount; ++c)
            holder.check(records.children[node.firstChild + c], records.nodes.size(), "node");
    }
}

void checkScenes(const Records& records)
{
    for (std::size_t i = 0; i < records.scenes.size(); ++i) {
        const SceneRecord& scene = records.scenes[i];
        for (std::uint32_t n = 0; n < scene.nodeCount; ++n)
            Holder{"scenes", i}.check(records.sceneNodes[scene.firstNode + n], records.nodes.size(),
                                      "node");
    }
    if (records.scene != kNone && static_cast<std::size_t>(records.scene) >= records.scenes.size())
        refuse("the document names scene " + std::to_string(records.scene) + " of " +
               std::to_string(records.scenes.size()));
}

void checkPrimitive(const Records& records, const PrimitiveRecord& primitive, const Holder& holder)
{
    const std::size_t accessors = records.accessors.size();
    holder.check(primitive.position, accessors, "accessor");
    holder.check(primitive.normal, accessors, "accessor");
    for (const std::int32_t texCoord : primitive.texCoords)
        holder.check(texCoord, accessors, "accessor");
    holder.check(primitive.indices, accessors, "accessor");
    holder.check(primitive.material, records.materials.size(), "material");
}

void checkMeshes(const Records& records)
{
    for (std::size_t i = 0; i < records.meshes.size(); ++i)
        for (std::uint32_t p = 0; p < records.meshes[i].primitiveCount; ++p)
            checkPrimitive(records, records.primitives[records.meshes[i].firstPrimitive + p],
                           {"meshes", i});
}

void checkData(const Records& records)
{
    for (std::size_t i = 0; i < records.accessors.size(); ++i) {
        const AccessorRecord& accessor = records.accessors[i];
        const Holder holder{"accessors", i};
        holder.check(accessor.view, records.views.size(), "buffer view");
        holder.check(accessor.sparse.indexView, records.views.size(), "buffer view");
        holder.check(accessor.sparse.valueView, records.views.size(), "buffer view");
    }
    for (std::size_t i = 0; i < records.views.size(); ++i)
        Holder{"bufferViews", i}.checkPresent(records.views[i].buffer, records.buffers.size(), "buffer");
}

void checkAppearance(const Records& records)
{
    for (std::size_t i = 0; i < records.materials.size(); ++i) {
        const Holder holder{"materials", i};
        holder.check(records.materials[i].baseTexture.texture, records.textures.size(), "texture");
        holder.check(records.materials[i].diffuseTexture.texture, records.textures.size(), "texture");
    }
    for (std::size_t i = 0; i < records.textures.size(); ++i)
        Holder{"textures", i}.check(records.textures[i], records.images.size(), "image");
    for (std::size_t i = 0; i < records.images.size(); ++i)
        Holder{"images", i}.check(records.images[i].view, records.views.size(), "buffer view");
}

}  // namespace

void checkReferences(const Records& records)
{
    checkNodes(records);
    checkScenes(records);
    checkMeshes(records);
    checkData(records);
    checkAppearance(records);
}

}  // namespace ovdl::gltf
