#include "reader/formats/gltf/Meshes.h"

namespace ovdl::gltf {
namespace {

bool makesFace(const PrimitiveRecord& primitive)
{
    return primitive.mode >= kTriangles && primitive.position != kNone;
}

const PrimitiveRecord* primitivesOf(const Records& records, std::size_t mesh)
{
    return records.primitives.data() + records.meshes[mesh].firstPrimitive;
}

std::size_t elementCount(const Records& records, const PrimitiveRecord& primitive)
{
    const std::int32_t accessor = primitive.indices == kNone ? primitive.position : primitive.indices;
    return records.accessors[static_cast<std::size_t>(accessor)].count;
}

// Primitives without elements count too.
std::uint64_t workOf(const Records& records, const PrimitiveRecord& primitive)
{
    return 1 + elementCount(records, primitive);
}

template <class Visit>
void eachFace(const Records& records, std::size_t mesh, Visit visit)
{
    const PrimitiveRecord* primitives = primitivesOf(records, mesh);
    for (std::uint32_t i = 0; i < records.meshes[mesh].primitiveCount; ++i)
        if (makesFace(primitives[i]))
            visit(primitives[i], i);
}

Appearance& appearanceOf(const Records& records, std::int32_t material, const DocumentPath& path,
                         GltfDocument& document)
{
    auto& result = document.appearances[material];
    if (!result) {
        static const MaterialRecord kDefault;
        const MaterialRecord& record =
            material == kNone ? kDefault : records.materials[static_cast<std::size_t>(material)];
        result = makeAppearance(record, imageName(records, colourTexture(record).texture, path));
    }
    return *result;
}

std::int32_t texCoordSet(const Records& records, std::int32_t material)
{
    return material == kNone
               ? 0
               : colourTexture(records.materials[static_cast<std::size_t>(material)]).texCoord;
}

// Strips of a good mesh have a vertex a triangle and a few more.
std::size_t expectedBytes(const Records& records, const GltfDocument& document)
{
    std::size_t bytes = 0;
    for (std::size_t mesh = 0; mesh < document.parts.size(); ++mesh)
        if (document.parts[mesh])
            eachFace(records, mesh, [&](const PrimitiveRecord& primitive, std::uint32_t) {
                const bool hasTexCoords = primitive.texCoords[0] != kNone;
                bytes += elementCount(records, primitive) / 3 * (hasTexCoords ? 33 : 25);
            });
    return bytes;
}

}  // namespace

void makeParts(const Records& records, const NodeTree& tree, Budget& budget, GltfDocument& document)
{
    document.parts.resize(records.meshes.size());
    for (std::size_t mesh = 0; mesh < records.meshes.size(); ++mesh) {
        if (!tree.showsMesh(mesh))
            continue;
        std::size_t faceCount = 0;
        eachFace(records, mesh, [&](const PrimitiveRecord&, std::uint32_t) { ++faceCount; });
        budget.charge(faceCount, sizeof(uoTempFaceTessData_c));
        document.parts[mesh] = std::make_unique<PartTessellation>(faceCount);
    }
}

std::uint64_t workOfParts(const Records& records, const NodeTree& tree)
{
    std::uint64_t work = 0;
    for (std::size_t mesh = 0; mesh < records.meshes.size(); ++mesh)
        if (tree.showsMesh(mesh))
            eachFace(records, mesh, [&](const PrimitiveRecord& primitive, std::uint32_t) {
                work += workOf(records, primitive);
            });
    return work;
}

void fillParts(const Records& records, Accessors& accessors, const DocumentPath& path, Budget& budget,
               Steps& steps, GltfDocument& document)
{
    document.arrays = std::make_unique<Arrays>(expectedBytes(records, document));
    FaceBuilder builder(records, accessors, budget, *document.arrays);
    for (std::size_t mesh = 0; mesh < document.parts.size(); ++mesh) {
        if (!document.parts[mesh])
            continue;
        std::int32_t faceId = 0;
        eachFace(records, mesh, [&](const PrimitiveRecord& primitive, std::uint32_t index) {
            uoTempFaceTessData_c& face =
                *document.parts[mesh]->facePointers[static_cast<std::size_t>(faceId)];
            builder.build(primitive, texCoordSet(records, primitive.material), face);
            face.faceId = ++faceId;
            face.faceKey = static_cast<std::int32_t>(index);
            face.faceVizProps[0] = &appearanceOf(records, primitive.material, path, document).visual;
            steps.advance(workOf(records, primitive));
        });
    }
}

}  // namespace ovdl::gltf
