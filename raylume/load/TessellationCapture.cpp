#include "raylume/load/TessellationCapture.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>

#include "raylume/appearance/MaterialTranslation.h"
#include "raylume/platform/Interleave.h"
#include "raylume/platform/Memory.h"
#include "raylume/platform/Text.h"
#include "raylume/scene/dlPart.h"
#include "raylume/services/Log.h"

namespace {

// A material of this name is no appearance of its own unless a render appearance comes with it.
constexpr wchar_t kThreadMaterial[] = L"thread";

// How large a face is, worked out before anything is allocated for it.
struct FaceShape {
    std::int32_t strips = 0;
    std::int32_t vertices = 0;
    std::int32_t triangles = 0;
};

template <class T>
bool holds(const ovArrayView<T>& array, std::int64_t wanted)
{
    return wanted == 0 || (array.data && array.count >= wanted);
}

bool holdsVertices(const uoTempFaceTessData_c& tessData, std::int64_t vertices)
{
    return vertices <= std::numeric_limits<std::int32_t>::max() && holds(tessData.points, 3 * vertices) &&
           holds(tessData.normals, 3 * vertices) &&
           (tessData.hasUVs == 0 || holds(tessData.uvs, 2 * vertices));
}

// A strip of fewer than two vertices counts negatively among the triangles; so it is meant.
FaceShape measureStrips(const uoTempFaceTessData_c& tessData, std::int32_t strips)
{
    std::int64_t vertices = 0;
    std::int64_t triangles = 0;
    for (std::int32_t strip = 0; strip < strips; ++strip) {
        const std::int64_t length = tessData.stripLengths.data[strip];
        vertices += std::max<std::int64_t>(length, 0);
        triangles += length - 2;
    }
    if (!holdsVertices(tessData, vertices))
        return {};
    return {strips, static_cast<std::int32_t>(vertices), static_cast<std::int32_t>(triangles)};
}

// A face whose arrays do not hold what its strips claim stays without strips. The lengths are tested
// again, since the reader was asked for materials since they were counted.
FaceShape measureFace(const uoTempFaceTessData_c& tessData, std::int32_t strips)
{
    return holds(tessData.stripLengths, strips) ? measureStrips(tessData, strips) : FaceShape{};
}

// Zero-size arrays are allocated too: consumers test counts, not pointers.
float* newFloats(std::size_t count)
{
    float* floats = new float[count];
    platform::prepareForFilling(floats, count * sizeof(float));
    return floats;
}

template <class T>
void copyValues(T* target, const T* source, std::size_t count)
{
    if (count != 0)
        std::memcpy(target, source, count * sizeof(T));
}

void allocateStrips(dlFace& face, const uoTempFaceTessData_c& tessData)
{
    const std::int32_t strips = std::max<std::int32_t>(tessData.stripCount, 0);
    face.stripCount = holds(tessData.stripLengths, strips) ? strips : 0;
    face.stripLengths = new std::int32_t[static_cast<std::size_t>(face.stripCount)];
}

void copyStrips(dlFace& face, const uoTempFaceTessData_c& tessData)
{
    const FaceShape shape = measureFace(tessData, face.stripCount);
    copyValues(face.stripLengths, tessData.stripLengths.data, static_cast<std::size_t>(shape.strips));
    face.stripCount = shape.strips;
    face.vertexCount = shape.vertices;
    face.triangleCount = shape.triangles;
}

void allocateArrays(dlFace& face, bool hasUVs)
{
    const auto vertices = static_cast<std::size_t>(face.vertexCount);
    if (hasUVs)
        face.uvs = newFloats(2 * vertices);
    face.vertices = newFloats(6 * vertices);
    face.stripStarts = new std::int32_t[static_cast<std::size_t>(face.stripCount)];
}

void fillStripStarts(dlFace& face)
{
    std::int32_t start = 0;
    for (std::int32_t strip = 0; strip < face.stripCount; ++strip) {
        face.stripStarts[strip] = start;
        start += std::max<std::int32_t>(face.stripLengths[strip], 0);
    }
}

// Side by side, minimum into minimum and maximum into maximum: the same strict tests as a point by
// point walk, so the same bits. Adding the two corners as points would differ, since a coordinate
// that is never a number leaves its sides unset, and the unset minimum would raise the maximum.
void mergeBox(dlBBox& box, const platform::Extremes& extremes)
{
    for (int axis = 0; axis < 3; ++axis) {
        box.min[axis] = extremes.min[axis] < box.min[axis] ? extremes.min[axis] : box.min[axis];
        box.max[axis] = extremes.max[axis] > box.max[axis] ? extremes.max[axis] : box.max[axis];
    }
    box.radius = -1.0f;
}

platform::Extremes noExtremes()
{
    constexpr float kLargest = std::numeric_limits<float>::max();
    return {{kLargest, kLargest, kLargest}, {-kLargest, -kLargest, -kLargest}};
}

// The strips lie one behind the other in the reader's arrays as in ours, so that the whole face is
// one walk. The boxes of body and part meet its extremes once instead of every vertex.
void fillVertices(dlFace& face, dlBody& body, dlPart& part, const uoTempFaceTessData_c& tessData)
{
    if (face.vertexCount == 0)
        return;
    platform::Extremes extremes = noExtremes();
    platform::interleave(tessData.points.data, tessData.normals.data,
                         static_cast<std::size_t>(face.vertexCount), face.vertices, extremes);
    mergeBox(face.bbox, extremes);
    mergeBox(body.bbox, extremes);
    mergeBox(part.bbox, extremes);
}

void fillUVs(dlFace& face, const uoTempFaceTessData_c& tessData)
{
    if (face.uvs)
        copyValues(face.uvs, tessData.uvs.data, 2 * static_cast<std::size_t>(face.vertexCount));
}

void fillNewMaterial(dlMaterial*& owner, moVisualProperties_c& visual)
{
    owner = new dlMaterial;  // Owned before it is filled, so that a failure below leaks nothing.
    applyVisualProperties(*owner, visual);
}

void fillPartMaterial(dlPart& part, const uoTempPartTessData_c& tessData, int configuration)
{
    moVisualProperties_c* visual = tessData.getModelVizProp(configuration);
    if (visual && visual->materialProps && visual->activeFlag != 0)
        applyVisualProperties(part.material, *visual);
}

void fillBodyMaterial(dlBody& body, uoTempBodyTessData_c& tessData, int configuration)
{
    moVisualProperties_c* visual = tessData.getBodyVizProp(configuration);
    if (!visual || !visual->materialProps || visual->activeFlag == 0 || visual->inheritFlag != 0)
        return;
    fillNewMaterial(body.material, *visual);
    rlu_odprintf("BodyProp not null!\n");
}

bool isNamedAppearance(uoMaterialProperties& material)
{
    return platform::compareIgnoringCase(material.getUserName(), kThreadMaterial) != 0 ||
           material.rvAppearance;
}

// Active or not inherited, where a body needs both.
void fillFaceMaterial(dlFace& face, uoTempFaceTessData_c& tessData, int configuration)
{
    moVisualProperties_c* visual = tessData.getFaceVizProp(configuration);
    if (!visual || !visual->materialProps || !isNamedAppearance(*visual->materialProps))
        return;
    if (visual->activeFlag == 0 && visual->inheritFlag != 0)
        return;
    face.vizPropMode = tessData.getVizPropMode(configuration);
    fillNewMaterial(face.material, *visual);
}

// The record is asked for once for each element, null ones too.
bool countsAsShown(uoTempBodyTessData_c& tessData, long long index, int configuration)
{
    const uoBodyPropInfo_c* info = tessData.getBodyPropInfo(configuration);
    return tessData.faces.at(index) && (!info || info->shown != 0);
}

std::int32_t countFaces(uoTempBodyTessData_c& tessData, int configuration)
{
    std::int32_t count = 0;
    const long long elements = tessData.faces.count;
    for (long long index = 0; index < elements; ++index)
        count += countsAsShown(tessData, index, configuration) ? 1 : 0;
    return count;
}

// A reader that gives more faces now than it counted before fills no more than there is room for;
// one that gives fewer leaves a shorter array.
void captureFaces(uoTempBodyTessData_c& tessData, dlBody& body, dlPart& part, int configuration)
{
    std::int32_t filled = 0;
    const long long elements = tessData.faces.count;
    for (long long index = 0; index < elements && filled < body.faceCount; ++index) {
        if (uoTempFaceTessData_c* face = tessData.faces.at(index))
            captureFace(*face, body.faces[filled++], body, part, configuration);
    }
    body.faceCount = filled;
}

// Bodies told and bodies there are.
struct BodyCounts {
    explicit BodyCounts(const uoTempPartTessData_c& tessData)
        : told(std::max(tessData.getNumBodies(), 0)),
          held(tessData.bodies.data
                   ? static_cast<std::int32_t>(std::clamp<long long>(tessData.bodies.count, 0, told))
                   : 0)
    {
    }

    std::int32_t told;
    std::int32_t held;
};

void captureBodies(dlPart& part, uoTempPartTessData_c& tessData, int configuration)
{
    for (std::int32_t index = 0; index < part.bodyCount; ++index) {
        if (uoTempBodyTessData_c* body = tessData.bodies.at(index))
            captureBody(*body, part.bodies[index], part, configuration);
    }
}

}  // namespace

int capturePart(dlPart& part, uoTempPartTessData_c& tessData, int configuration)
{
    const BodyCounts counts(tessData);
    if (counts.told == 0)
        return 0;
    part.bodies = new dlBody[static_cast<std::size_t>(counts.held)];
    part.bodyCount = counts.held;
    fillPartMaterial(part, tessData, configuration);
    captureBodies(part, tessData, configuration);
    if (counts.told > counts.held)
        platform::raiseInvalidArgument();
    return 1;
}

void captureBody(uoTempBodyTessData_c& tessData, dlBody& body, dlPart& part, int configuration)
{
    const std::int32_t faceCount = countFaces(tessData, configuration);
    if (faceCount == 0)
        return;  // Everything else keeps its default, whatever the tessellation says.
    body.faces = new dlFace[static_cast<std::size_t>(faceCount)];
    body.faceCount = faceCount;
    body.flag = tessData.flag != 0;
    body.level = tessData.level;
    fillBodyMaterial(body, tessData, configuration);
    captureFaces(tessData, body, part, configuration);
}

void captureFace(uoTempFaceTessData_c& tessData, dlFace& face, dlBody& body, dlPart& part,
                 int configuration)
{
    allocateStrips(face, tessData);
    fillFaceMaterial(face, tessData, configuration);
    copyStrips(face, tessData);
    allocateArrays(face, tessData.hasUVs != 0);
    fillStripStarts(face);
    fillVertices(face, body, part, tessData);
    fillUVs(face, tessData);
    face.faceId = tessData.faceId;
    face.faceKey = tessData.faceKey;
}
