// How good strips get hangs on the order of the triangles: the stripifier looks a few triangles ahead
// and no further. Lists of grids come in two kinds, by which triangle of a square stands first; one of
// them gives a strip for each row, the other falls apart, and swapping the triangles of each pair turns
// the one into the other for next to nothing. An order made for strips helps where both fail, but takes
// ten times as long as the strips themselves, so it is used only where a sample says that it pays.
#include "reader/formats/gltf/Strips.h"

#include <meshoptimizer.h>

#include <algorithm>
#include <cstring>

namespace ovdl::gltf {
namespace {

constexpr std::size_t kSampleTriangles = 512;
// Ids a triangle that are good enough to look no further.
constexpr double kGood = 1.2;
// Ids a triangle that say that neighbours do not stand together in the list.
constexpr double kStrewn = 1.6;

std::size_t withoutEnds(const std::uint32_t* ids, std::size_t length)
{
    return length - static_cast<std::size_t>(std::count(ids, ids + length, kStripEnd));
}

std::size_t stripify(std::uint32_t* target, const std::uint32_t* list, std::size_t length, std::size_t idCount)
{
    return meshopt_stripify(target, list, length, idCount, kStripEnd);
}

void swapPairs(const std::uint32_t* list, std::size_t length, std::uint32_t* target)
{
    std::size_t i = 0;
    for (; i + 6 <= length; i += 6) {
        std::memcpy(target + i, list + i + 3, 3 * sizeof(*list));
        std::memcpy(target + i + 3, list + i, 3 * sizeof(*list));
    }
    std::copy(list + i, list + length, target + i);
}

}  // namespace

const std::uint32_t* Stripifier::inOrder(Order order, const std::uint32_t* list, std::size_t length,
                                         std::size_t idCount, Scratch<std::uint32_t>& scratch)
{
    if (order == Order::kAsListed)
        return list;
    std::uint32_t* target = scratch.get(length);
    if (order == Order::kPairsSwapped)
        swapPairs(list, length, target);
    else
        meshopt_optimizeVertexCacheStrip(target, list, length, idCount);
    return target;
}

double Stripifier::costOfSample(Order order, std::size_t length, std::size_t idCount)
{
    const std::uint32_t* list = inOrder(order, sample_.get(length), length, idCount, sampleOrdered_);
    std::uint32_t* strips = sampleStrips_.get(meshopt_stripifyBound(length));
    const std::size_t written = stripify(strips, list, length, idCount);
    return 3.0 * static_cast<double>(withoutEnds(strips, written)) / static_cast<double>(length);
}

Stripifier::Order Stripifier::chooseOrder(const TriangleList& triangles)
{
    const std::size_t length = 3 * std::min(triangles.triangleCount, kSampleTriangles);
    const auto [lowest, highest] = std::minmax_element(triangles.indices, triangles.indices + length);
    const std::uint32_t first = *lowest;
    const std::size_t idCount = *highest - first + 1;
    const bool isShared = triangles.idCount < triangles.triangleCount;
    if (idCount > 16 * length)
        return isShared ? Order::kOptimised : Order::kAsListed;
    std::uint32_t* sample = sample_.get(length);
    std::transform(triangles.indices, triangles.indices + length, sample,
                   [&](std::uint32_t id) { return id - first; });
    const double asListed = costOfSample(Order::kAsListed, length, idCount);
    if (asListed <= kGood)
        return Order::kAsListed;
    const double swapped = costOfSample(Order::kPairsSwapped, length, idCount);
    if (swapped <= kGood)
        return Order::kPairsSwapped;
    const double optimised = costOfSample(Order::kOptimised, length, idCount);
    const bool isWhole = length == 3 * triangles.triangleCount;
    const bool isStrewn = isShared && std::min(asListed, swapped) > kStrewn;
    if (optimised <= kGood || isStrewn || (isWhole && optimised < std::min(asListed, swapped)))
        return Order::kOptimised;
    return swapped < asListed ? Order::kPairsSwapped : Order::kAsListed;
}

StripIds Stripifier::make(const TriangleList& triangles)
{
    StripIds result;
    if (triangles.triangleCount == 0)
        return result;
    const std::size_t length = 3 * triangles.triangleCount;
    const Order order = chooseOrder(triangles);
    const std::uint32_t* list = inOrder(order, triangles.indices, length, triangles.idCount, ordered_);
    result.ids = strips_.get(meshopt_stripifyBound(length) + 1);
    result.length = stripify(result.ids, list, length, triangles.idCount);
    // The last strip is closed like the others.
    result.ids[result.length++] = kStripEnd;
    return result;
}

}  // namespace ovdl::gltf
