#include "reader/formats/gltf/Triangles.h"

#include <algorithm>
#include <numeric>
#include <string>

#include "reader/formats/gltf/Refusal.h"

namespace ovdl::gltf {
namespace {

bool repeats(const std::uint32_t* corner)
{
    return corner[0] == corner[1] || corner[1] == corner[2] || corner[0] == corner[2];
}

// What has to be known of a list before it can be used.
struct Survey {
    std::uint32_t lowest = ~0u;
    std::uint32_t highest = 0;
    std::size_t repeating = 0;
};

Survey survey(const std::uint32_t* list, std::size_t length)
{
    Survey result;
    for (std::size_t i = 0; i + 3 <= length; i += 3) {
        const std::uint32_t a = list[i];
        const std::uint32_t b = list[i + 1];
        const std::uint32_t c = list[i + 2];
        result.lowest = std::min(result.lowest, std::min(a, std::min(b, c)));
        result.highest = std::max(result.highest, std::max(a, std::max(b, c)));
        result.repeating += (a == b) | (b == c) | (a == c);
    }
    return result;
}

// In place, back to front, since the list is longer than the strip or fan that it is made of.
void expandStrip(std::uint32_t* list, std::size_t triangles)
{
    for (std::size_t i = triangles; i-- > 0;) {
        const std::size_t odd = i % 2;
        const std::uint32_t corners[] = {list[i], list[i + 1 + odd], list[i + 2 - odd]};
        std::copy_n(corners, 3, list + 3 * i);
    }
}

void expandFan(std::uint32_t* list, std::size_t triangles)
{
    const std::uint32_t hub = list[0];
    for (std::size_t i = triangles; i-- > 0;) {
        const std::uint32_t corners[] = {list[i + 1], list[i + 2], hub};
        std::copy_n(corners, 3, list + 3 * i);
    }
}

// The document's own list, when it can be used where it lies.
const std::uint32_t* inPlace(std::int32_t mode, const Elements* indices)
{
    const bool fits = mode == kTriangles && indices && indices->isPacked(kUint32, sizeof(std::uint32_t)) &&
                      reinterpret_cast<std::uintptr_t>(indices->data) % alignof(std::uint32_t) == 0;
    return fits ? reinterpret_cast<const std::uint32_t*>(indices->data) : nullptr;
}

const std::uint32_t* copied(std::int32_t mode, const Elements* indices, std::size_t elementCount,
                            std::size_t length, Scratch<std::uint32_t>& scratch)
{
    std::uint32_t* list = scratch.get(std::max(length, elementCount));
    if (indices)
        copyIndices(*indices, 0, elementCount, list);
    else
        std::iota(list, list + elementCount, 0u);
    if (mode == kTriangleStrip)
        expandStrip(list, length / 3);
    else if (mode == kTriangleFan)
        expandFan(list, length / 3);
    return list;
}

// Drops the repeating triangles and counts vertices from the lowest on. `target` may be the list.
std::size_t compact(const std::uint32_t* list, std::size_t length, std::uint32_t lowest,
                    std::uint32_t* target)
{
    std::size_t written = 0;
    for (std::size_t i = 0; i + 3 <= length; i += 3) {
        if (repeats(list + i))
            continue;
        const std::uint32_t corners[] = {list[i] - lowest, list[i + 1] - lowest, list[i + 2] - lowest};
        std::copy_n(corners, 3, target + written);
        written += 3;
    }
    return written;
}

// A few triangles that are strewn over many vertices get ids of their own, without gaps: later steps
// take time for each id.
void closeGaps(TriangleList& triangles, std::uint32_t* list)
{
    const std::size_t length = 3 * triangles.triangleCount;
    std::vector<std::uint32_t> used(list, list + length);
    std::sort(used.begin(), used.end());
    used.erase(std::unique(used.begin(), used.end()), used.end());
    for (std::size_t i = 0; i < length; ++i)
        list[i] =
            static_cast<std::uint32_t>(std::lower_bound(used.begin(), used.end(), list[i]) - used.begin());
    triangles.idCount = used.size();
    for (std::uint32_t& vertex : used)
        vertex += triangles.firstVertex;
    triangles.vertexOf = std::move(used);
}

}  // namespace

std::size_t listLength(std::int32_t mode, std::size_t elementCount)
{
    if (mode == kTriangles)
        return elementCount / 3 * 3;
    return elementCount < 3 ? 0 : 3 * (elementCount - 2);
}

TriangleList readTriangles(std::int32_t mode, const Elements* indices, std::size_t vertexCount,
                           Scratch<std::uint32_t>& scratch)
{
    const std::size_t elementCount = indices ? indices->count : vertexCount;
    const std::size_t length = listLength(mode, elementCount);
    TriangleList result;
    if (length == 0)
        return result;
    const std::uint32_t* list = inPlace(mode, indices);
    const bool isInPlace = list != nullptr;
    if (!isInPlace)
        list = copied(mode, indices, elementCount, length, scratch);
    const Survey found = survey(list, length);
    if (found.highest >= vertexCount)
        refuse("index " + std::to_string(found.highest) + " names none of " + std::to_string(vertexCount) +
               " vertices");
    result.firstVertex = found.lowest;
    result.idCount = found.highest - found.lowest + 1;
    result.triangleCount = length / 3 - found.repeating;
    const bool isStrewn = result.idCount / 4 > length + 1024;
    if (found.lowest != 0 || found.repeating != 0 || isStrewn) {
        std::uint32_t* target = scratch.get(length);
        compact(list, length, found.lowest, target);
        list = target;
        if (isStrewn)
            closeGaps(result, target);
    }
    result.indices = list;
    return result;
}

}  // namespace ovdl::gltf
