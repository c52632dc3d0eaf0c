#include "raylume/appearance/BoxProjection.h"

#include <array>
#include <cstddef>
#include <cstdint>

#include "raylume/load/ReaderMaths.h"
#include "raylume/scene/dlInstance.h"
#include "raylume/scene/dlMaterial.h"
#include "raylume/scene/dlPart.h"

namespace {

constexpr std::uint32_t kBoxMapping = 3;
constexpr std::size_t kSides = 6;
constexpr std::size_t kFloatsAVertex = 6;  // position, normal

// A copied material shares its decals with the original and would delete them at its end.
class DecalsDropped {
public:
    explicit DecalsDropped(dlMaterial& copy) : copy_(copy) {}
    DecalsDropped(const DecalsDropped&) = delete;
    DecalsDropped& operator=(const DecalsDropped&) = delete;
    ~DecalsDropped() { copy_.decals.clear(); }

private:
    dlMaterial& copy_;
};

using Directions = std::array<mgUnitVector_c, kSides>;
using Transforms = std::array<mgXform_c, kSides>;

Directions sideDirections()
{
    const auto x = mgUnitVector_c::xAxis();
    const auto y = mgUnitVector_c::yAxis();
    const auto z = mgUnitVector_c::zAxis();
    return {x, y, z, -x, -y, -z};
}

// Right-handed each, the third axis looking out of the box; seen from outside, the images of the four
// walls stand upright.
std::array<mgMatrix_c, kSides> sideFrames()
{
    const auto x = mgUnitVector_c::xAxis();
    const auto y = mgUnitVector_c::yAxis();
    const auto z = mgUnitVector_c::zAxis();
    return {mgMatrix_c(y, z, x),   mgMatrix_c(-x, z, y), mgMatrix_c(x, y, z),
            mgMatrix_c(-y, z, -x), mgMatrix_c(x, z, -y), mgMatrix_c(x, -y, -z)};
}

Transforms intoSides(const float (&origin)[3])
{
    const mgVector_c at(origin[0], origin[1], origin[2]);
    const auto frames = sideFrames();
    Transforms transforms;
    for (std::size_t side = 0; side < kSides; ++side)
        transforms[side] = mg_RestoreXform(frames[side], at, 1.0).inverse();
    return transforms;
}

// On a tie the earlier side. Nothing is larger than NaN, so a normal that gives it for the first side has
// that one.
std::size_t sideOf(const Directions& directions, const float* normal)
{
    const mgVector_c towards(normal[0], normal[1], normal[2]);
    std::size_t best = 0;
    float largest = static_cast<float>(directions[0] % towards);
    for (std::size_t side = 1; side < kSides; ++side) {
        const float along = static_cast<float>(directions[side] % towards);
        if (along > largest) {
            largest = along;
            best = side;
        }
    }
    return best;
}

std::size_t vertexCountOf(const dlFace& face)
{
    return face.vertexCount > 0 ? static_cast<std::size_t>(face.vertexCount) : 0;
}

// New memory holds zeros, which stay where the face has no vertices to project.
float* renewCoordinates(dlFace& face)
{
    delete[] face.projectedUVs;
    face.projectedUVs = nullptr;
    face.projectedUVs = new float[2 * vertexCountOf(face)]();
    return face.projectedUVs;
}

void projectVertices(dlFace& face, const Transforms& transforms, float diagonal)
{
    const Directions directions = sideDirections();
    float* uv = renewCoordinates(face);
    const float* vertex = face.vertices;
    const std::size_t count = vertex ? vertexCountOf(face) : 0;
    for (std::size_t index = 0; index < count; ++index, vertex += kFloatsAVertex, uv += 2) {
        mgPoint_c point(vertex[0], vertex[1], vertex[2]);
        point *= transforms[sideOf(directions, vertex + 3)];
        uv[0] = static_cast<float>(point.x) / diagonal;
        uv[1] = static_cast<float>(point.y) / diagonal;
    }
}

const dlMaterial& effectiveMaterial(const dlInstance& instance, const dlBody& body, const dlFace& face)
{
    if (instance.material)
        return *instance.material;
    if (face.material)
        return *face.material;
    return body.material ? *body.material : instance.part->material;
}

// Assigned and not copy-constructed: the two reserved names stay behind.
void projectFace(dlFace& face, const dlMaterial& effective, float diagonal)
{
    if (effective.texture.mappingType != kBoxMapping)
        return;
    dlMaterial material;
    const DecalsDropped dropped(material);
    material = effective;
    boxCoordsForFace(&face, material, diagonal);
}

void projectBody(const dlInstance& instance, dlBody& body, float diagonal)
{
    const int passes = body.flag ? 2 : 1;  // a second pass comes to the same
    for (std::int32_t index = 0; body.faces && index < body.faceCount; ++index) {
        dlFace& face = body.faces[index];
        for (int pass = 0; pass < passes; ++pass)
            projectFace(face, effectiveMaterial(instance, body, face), diagonal);
    }
}

}  // namespace

void generateBoxTextureCoords(dlInstance* instance)
{
    if (!instance || !instance->part)
        return;
    dlPart& part = *instance->part;
    const float diagonal = static_cast<float>(part.bbox.getDiagonalLength());
    for (std::int32_t index = 0; part.bodies && index < part.bodyCount; ++index)
        projectBody(*instance, part.bodies[index], diagonal);
}

void boxCoordsForFace(dlFace* face, dlMaterial material, float diagonal)
{
    const DecalsDropped dropped(material);
    if (face)
        projectVertices(*face, intoSides(material.texture.origin), diagonal);
}
