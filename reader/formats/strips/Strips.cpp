// The library's strips are as good as the order of the list: it looks a few triangles ahead and no
// further. Lists of grids come in two kinds, by which triangle of a square stands first; one of them
// gives a strip for each row, the other falls apart, and swapping the triangles of each pair turns the
// one into the other for next to nothing. Where neither helps, strips are grown, which takes some four
// times as long. A sample from the middle of the list decides.
#include "reader/formats/strips/Strips.h"

#include <meshoptimizer.h>

#include <algorithm>
#include <cstring>

namespace ovdl {
namespace {

constexpr std::size_t kSampleTriangles = 512;
// Ids a triangle that are good enough to look no further.
constexpr double kGood = 1.2;

// Where the library ends one strip and begins the next.
constexpr std::uint32_t kStripEnd = ~0u;

void swapPairs(const std::uint32_t* list, std::size_t length, std::uint32_t* target)
{
    std::size_t i = 0;
    for (; i + 6 <= length; i += 6) {
        std::memcpy(target + i, list + i + 3, 3 * sizeof(*list));
        std::memcpy(target + i + 3, list + i, 3 * sizeof(*list));
    }
    std::copy(list + i, list + length, target + i);
}

// A strip is never longer than its triangles one by one, but for what is dropped again at its end.
std::size_t idRoom(std::size_t listLength)
{
    return listLength + 3;
}

// Cuts what the library makes into strips that have no degenerate triangle.
//
// To go on over the other edge of a triangle, the library swaps: x a b a v stands for the triangles
// x a b, then a degenerate one, then b a v. There the strip is cut: before b a v, if a strip may begin
// with that one, else behind it, since x a b v shows the same triangle.
class Cutter {
public:
    Cutter(std::uint32_t* ids, std::int32_t* lengths) : ids_(ids), lengths_(lengths) {}

    void take(const std::uint32_t* strips, std::size_t length)
    {
        for (std::size_t i = 0; i < length; ++i) {
            const std::uint32_t id = strips[i];
            if (id == kStripEnd)
                close();
            else if (end_ - begin_ >= 2 && ids_[end_ - 2] == id)
                swap(strips[++i]);
            else
                ids_[end_++] = id;
        }
        close();
    }
    std::size_t idCount() const { return end_; }
    std::size_t stripCount() const { return stripCount_; }

private:
    void swap(std::uint32_t next)
    {
        const std::uint32_t a = ids_[end_ - 2];
        const std::uint32_t b = ids_[end_ - 1];
        const bool lastIsEven = (end_ - begin_) % 2 != 0;
        if (!lastIsEven)
            ids_[end_++] = next;
        close();
        ids_[end_++] = lastIsEven ? b : a;
        ids_[end_++] = lastIsEven ? a : next;
        if (lastIsEven)
            ids_[end_++] = next;
    }
    void close()
    {
        const std::size_t length = end_ - begin_;
        if (length < 3)
            end_ = begin_;
        else
            lengths_[stripCount_++] = static_cast<std::int32_t>(length);
        begin_ = end_;
    }

    std::uint32_t* ids_;
    std::int32_t* lengths_;
    std::size_t begin_ = 0;
    std::size_t end_ = 0;
    std::size_t stripCount_ = 0;
};

}  // namespace

StripIds Stripifier::run(Way way, const std::uint32_t* list, std::size_t length, std::size_t idCount,
                         Blocks& blocks)
{
    if (way == Way::kPairsSwapped) {
        std::uint32_t* swapped = blocks.ordered.get(length);
        swapPairs(list, length, swapped);
        list = swapped;
    }
    std::uint32_t* strips = blocks.strips.get(meshopt_stripifyBound(length));
    const std::size_t written = meshopt_stripify(strips, list, length, idCount, kStripEnd);
    StripIds result;
    result.ids = blocks.ids.get(idRoom(length));
    std::int32_t* lengths = blocks.lengths.get(length / 3);
    Cutter cutter(result.ids, lengths);
    cutter.take(strips, written);
    result.lengths = lengths;
    result.idCount = cutter.idCount();
    result.stripCount = cutter.stripCount();
    return result;
}

double Stripifier::costOfSample(Way way, std::size_t length, std::size_t idCount)
{
    const StripIds strips = run(way, sample_.get(length), length, idCount, sampleBlocks_);
    return 3.0 * static_cast<double>(strips.idCount) / static_cast<double>(length);
}

Stripifier::Way Stripifier::chooseWay(const TriangleList& triangles)
{
    const std::size_t count = std::min(triangles.triangleCount, kSampleTriangles);
    // The first rows of a mesh are not like the rest. Pairs stay pairs.
    const std::size_t first = (triangles.triangleCount - count) / 2 / 2 * 2;
    const std::uint32_t* list = triangles.indices + 3 * first;
    const std::size_t length = 3 * count;
    const auto [lowest, highest] = std::minmax_element(list, list + length);
    const std::uint32_t base = *lowest;
    const std::size_t idCount = *highest - base + 1;
    if (idCount > 16 * length)
        return Way::kGrown;
    std::transform(list, list + length, sample_.get(length), [&](std::uint32_t id) { return id - base; });
    const double asListed = costOfSample(Way::kAsListed, length, idCount);
    const double swapped = costOfSample(Way::kPairsSwapped, length, idCount);
    if (std::min(asListed, swapped) > kGood)
        return Way::kGrown;
    return swapped < asListed ? Way::kPairsSwapped : Way::kAsListed;
}

StripIds Stripifier::byGrowing(const TriangleList& triangles)
{
    StripIds result;
    result.ids = blocks_.ids.get(3 * triangles.triangleCount);
    std::int32_t* lengths = blocks_.lengths.get(triangles.triangleCount);
    grower_.grow(triangles.indices, triangles.triangleCount, triangles.idCount, result.ids, lengths);
    result.lengths = lengths;
    result.idCount = grower_.idCount();
    result.stripCount = grower_.stripCount();
    return result;
}

StripIds Stripifier::make(const TriangleList& triangles)
{
    if (triangles.triangleCount == 0)
        return {};
    Way way = chooseWay(triangles);
    for (int attempt = 0; attempt < 2 && way != Way::kGrown; ++attempt) {
        const StripIds strips =
            run(way, triangles.indices, 3 * triangles.triangleCount, triangles.idCount, blocks_);
        if (double(strips.idCount) <= kGood * double(triangles.triangleCount))
            return strips;
        // The sample was not like the rest.
        way = way == Way::kAsListed ? Way::kPairsSwapped : Way::kAsListed;
    }
    return byGrowing(triangles);
}

}  // namespace ovdl
