#include "reader/formats/gltf/Faces.h"

#include <meshoptimizer.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <numeric>

#include "reader/formats/gltf/Refusal.h"

namespace ovdl::gltf {
namespace {

// What the scratch blocks take for each index of a triangle list, roughly.
constexpr std::size_t kScratchBytes = 48;

Elements floatsAt(const float* data, int components, std::size_t count)
{
    Elements result;
    result.data = reinterpret_cast<const unsigned char*>(data);
    result.stride = components * sizeof(float);
    result.count = count;
    result.componentType = kFloat32;
    return result;
}

// The normal of a triangle of nine floats; zero where it has no direction. Adding zero makes one zero of
// the two that there are, so that the vertices of a plane stay equal.
void flatNormal(const float* p, float* normal)
{
    const double a[] = {double(p[3]) - p[0], double(p[4]) - p[1], double(p[5]) - p[2]};
    const double b[] = {double(p[6]) - p[0], double(p[7]) - p[1], double(p[8]) - p[2]};
    const double n[] = {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
    const double length = std::sqrt(n[0] * n[0] + n[1] * n[1] + n[2] * n[2]);
    const bool hasDirection = length > 0 && std::isfinite(length);
    for (int axis = 0; axis < 3; ++axis)
        normal[axis] = hasDirection ? static_cast<float>(n[axis] / length) + 0.0f : 0.0f;
}

bool sameBits(const float* a, const float* b, std::size_t count)
{
    return std::memcmp(a, b, count * sizeof(float)) == 0;
}

// The bits of one vertex against those of another. Nearly all differ in the first or second float.
bool areTwins(const uoTempFaceTessData_c& face, std::size_t a, std::size_t b)
{
    const float* points = face.points.data;
    const float* normals = face.normals.data;
    const float* uvs = face.uvs.data;
    if (points[3 * a] != points[3 * b] || points[3 * a + 1] != points[3 * b + 1])
        return false;
    return sameBits(points + 3 * a, points + 3 * b, 3) && sameBits(normals + 3 * a, normals + 3 * b, 3) &&
           (!uvs || sameBits(uvs + 2 * a, uvs + 2 * b, 2));
}

// True when a triangle has the same vertex twice, under two indices.
bool hasTwins(const uoTempFaceTessData_c& face)
{
    std::size_t begin = 0;
    for (long long strip = 0; strip < face.stripCount; ++strip) {
        const std::size_t end = begin + static_cast<std::size_t>(face.stripLengths.data[strip]);
        for (std::size_t i = begin + 2; i < end; ++i)
            if (areTwins(face, i, i - 1) || areTwins(face, i, i - 2))
                return true;
        if (areTwins(face, begin, begin + 1))
            return true;
        begin = end;
    }
    return false;
}

// From ids to vertices.
void nameVertices(const TriangleList& triangles, const StripIds& strips)
{
    if (!triangles.vertexOf.empty())
        for (std::size_t i = 0; i < strips.idCount; ++i)
            strips.ids[i] = triangles.vertexOf[strips.ids[i]];
    else if (triangles.firstVertex != 0)
        for (std::size_t i = 0; i < strips.idCount; ++i)
            strips.ids[i] += triangles.firstVertex;
}

}  // namespace

FaceBuilder::FaceBuilder(const Records& records, Accessors& accessors, Budget& budget, Arrays& arrays)
    : records_(records), accessors_(accessors), budget_(budget), arrays_(arrays)
{
}

Elements FaceBuilder::attribute(std::int32_t accessor, ElementType type, std::size_t count)
{
    const Elements result = accessors_.elements(accessor, type);
    if (result.count != count)
        refuse(numbered("accessors", static_cast<std::size_t>(accessor)) + " has " +
               std::to_string(result.count) + " elements for " + std::to_string(count) + " vertices");
    return result;
}

FaceBuilder::Vertices FaceBuilder::verticesOf(const PrimitiveRecord& primitive, std::int32_t texCoordSet)
{
    Vertices result;
    result.position = accessors_.elements(primitive.position, ElementType::kVec3);
    const std::size_t count = result.position.count;
    if (count > ~0u)
        refuse("a primitive has more vertices than 32-bit indices reach");
    result.hasNormals = primitive.normal != kNone;
    if (result.hasNormals)
        result.normal = attribute(primitive.normal, ElementType::kVec3, count);
    const bool hasSet = texCoordSet >= 0 && texCoordSet < kTexCoordSets;
    result.hasTexCoords = hasSet && primitive.texCoords[texCoordSet] != kNone;
    if (result.hasTexCoords)
        result.texCoord = attribute(primitive.texCoords[texCoordSet], ElementType::kVec2, count);
    return result;
}

TriangleList FaceBuilder::trianglesOf(const PrimitiveRecord& primitive, std::size_t vertexCount)
{
    if (primitive.indices == kNone)
        return readTriangles(primitive.mode, nullptr, vertexCount, list_);
    const Elements indices = accessors_.indices(primitive.indices);
    return readTriangles(primitive.mode, &indices, vertexCount, list_);
}

// Copies vertices into plain floats, texture coordinates too if there are any. Gives the number of
// streams that are then in use.
std::size_t FaceBuilder::gatherPlain(const std::uint32_t* order, std::size_t count,
                                     const Vertices& vertices)
{
    gather(vertices.position, 3, order, count, plain_.positions.get(3 * count));
    if (vertices.hasNormals)
        gather(vertices.normal, 3, order, count, plain_.normals.get(3 * count));
    if (vertices.hasTexCoords)
        gather(vertices.texCoord, 2, order, count, plain_.texCoords.get(2 * count));
    return vertices.hasTexCoords ? 3 : 2;
}

// Gives each corner of each triangle a vertex of its own, with the normal of its triangle.
void FaceBuilder::unshare(TriangleList& triangles, Vertices& vertices)
{
    const std::size_t corners = 3 * triangles.triangleCount;
    std::uint32_t* order = order_.get(corners);
    for (std::size_t i = 0; i < corners; ++i)
        order[i] = triangles.vertex(triangles.indices[i]);
    gatherPlain(order, corners, vertices);
    const float* positions = plain_.positions.get(3 * corners);
    float* normals = plain_.normals.get(3 * corners);
    for (std::size_t i = 0; i < triangles.triangleCount; ++i) {
        flatNormal(positions + 9 * i, normals + 9 * i);
        std::memcpy(normals + 9 * i + 3, normals + 9 * i, 3 * sizeof(float));
        std::memcpy(normals + 9 * i + 6, normals + 9 * i, 3 * sizeof(float));
    }
    vertices.position = floatsAt(positions, 3, corners);
    vertices.normal = floatsAt(normals, 3, corners);
    if (vertices.hasTexCoords)
        vertices.texCoord = floatsAt(plain_.texCoords.get(2 * corners), 2, corners);
    std::uint32_t* list = list_.get(corners);
    std::iota(list, list + corners, 0u);
    const std::size_t triangleCount = triangles.triangleCount;
    triangles = {};
    triangles.indices = list;
    triangles.triangleCount = triangleCount;
    triangles.idCount = corners;
}

// Makes one id of vertices that are equal bit for bit, and drops triangles that then repeat one.
void FaceBuilder::weld(TriangleList& triangles, const Vertices& vertices)
{
    const std::size_t idCount = triangles.idCount;
    std::uint32_t* order = order_.get(idCount);
    for (std::size_t id = 0; id < idCount; ++id)
        order[id] = triangles.vertex(static_cast<std::uint32_t>(id));
    const bool arePlain =
        vertices.position.data == reinterpret_cast<const unsigned char*>(plain_.positions.get(0));
    const std::size_t streamCount =
        arePlain ? (vertices.hasTexCoords ? 3 : 2) : gatherPlain(order, idCount, vertices);
    const meshopt_Stream streams[] = {{plain_.positions.get(0), 3 * sizeof(float), 3 * sizeof(float)},
                                      {plain_.normals.get(0), 3 * sizeof(float), 3 * sizeof(float)},
                                      {plain_.texCoords.get(0), 2 * sizeof(float), 2 * sizeof(float)}};
    const std::size_t length = 3 * triangles.triangleCount;
    std::uint32_t* remap = remap_.get(idCount);
    const std::size_t unique =
        meshopt_generateVertexRemapMulti(remap, triangles.indices, length, idCount, streams, streamCount);
    std::vector<std::uint32_t> vertexOf(unique);
    for (std::size_t id = 0; id < idCount; ++id)
        if (remap[id] != ~0u)
            vertexOf[remap[id]] = order[id];
    std::uint32_t* list = list_.get(length);
    std::size_t written = 0;
    for (std::size_t i = 0; i < length; i += 3) {
        const std::uint32_t a = remap[triangles.indices[i]];
        const std::uint32_t b = remap[triangles.indices[i + 1]];
        const std::uint32_t c = remap[triangles.indices[i + 2]];
        if (a == b || b == c || a == c)
            continue;
        list[written] = a;
        list[written + 1] = b;
        list[written + 2] = c;
        written += 3;
    }
    triangles.indices = list;
    triangles.triangleCount = written / 3;
    triangles.idCount = unique;
    triangles.vertexOf = std::move(vertexOf);
}

float* FaceBuilder::filled(const Elements& elements, int components, const std::uint32_t* order,
                           std::size_t count)
{
    float* target = arrays_.floats(components * count);
    gather(elements, components, order, count, target);
    return target;
}

void FaceBuilder::fill(const TriangleList& triangles, const Vertices& vertices, const StripIds& strips,
                       uoTempFaceTessData_c& face)
{
    if (strips.idCount > std::size_t(std::numeric_limits<std::int32_t>::max()))
        refuse("a primitive is too large for one face");
    budget_.charge(strips.idCount, vertices.hasTexCoords ? 32 : 24);
    budget_.charge(strips.stripCount, sizeof(std::int32_t));
    std::int32_t* lengths = arrays_.integers(strips.stripCount);
    std::copy_n(strips.lengths, strips.stripCount, lengths);
    nameVertices(triangles, strips);
    const std::size_t vertexCount = strips.idCount;
    const auto floats = static_cast<long long>(vertexCount);
    face.stripCount = static_cast<std::int32_t>(strips.stripCount);
    face.stripLengths = {lengths, static_cast<long long>(strips.stripCount)};
    face.points = {filled(vertices.position, 3, strips.ids, vertexCount), 3 * floats};
    face.normals = {filled(vertices.normal, 3, strips.ids, vertexCount), 3 * floats};
    face.hasUVs = vertices.hasTexCoords;
    if (vertices.hasTexCoords)
        face.uvs = {filled(vertices.texCoord, 2, strips.ids, vertexCount), 2 * floats};
}

void FaceBuilder::build(const PrimitiveRecord& primitive, std::int32_t texCoordSet,
                        uoTempFaceTessData_c& face)
{
    Vertices vertices = verticesOf(primitive, texCoordSet);
    const std::size_t indexCount =
        primitive.indices == kNone ? vertices.position.count
                                   : records_.accessors[static_cast<std::size_t>(primitive.indices)].count;
    const std::size_t length = listLength(primitive.mode, indexCount);
    budget_.charge(length, kScratchBytes);
    TriangleList triangles = trianglesOf(primitive, vertices.position.count);
    if (triangles.triangleCount != 0) {
        const bool hadNormals = vertices.hasNormals;
        if (!hadNormals)
            unshare(triangles, vertices);
        // Where vertices are shared as in any closed surface, looking for equal ones would find none.
        if (!hadNormals || 4 * triangles.idCount > 3 * triangles.triangleCount)
            weld(triangles, vertices);
        fill(triangles, vertices, stripifier_.make(triangles), face);
        if (triangles.vertexOf.empty() && hasTwins(face)) {
            weld(triangles, vertices);
            fill(triangles, vertices, stripifier_.make(triangles), face);
        }
    }
    budget_.release(length, kScratchBytes);
}

}  // namespace ovdl::gltf
