// In a strip v0 v1 v2 v3 ... the triangles are v0 v1 v2, v2 v1 v3, v2 v3 v4 and so on: even ones in the
// order of their vertices, odd ones with the first two swapped. So an even triangle is left over its edge
// v2 -> v1, as its neighbour has it, and an odd one over v2 -> v3.
#include "reader/formats/strips/StripGrowing.h"

#include <algorithm>

namespace ovdl {
namespace {

constexpr std::uint32_t kTaken = ~0u;

std::uint32_t nextCorner(std::uint32_t corner)
{
    return corner % 3 == 2 ? corner - 2 : corner + 1;
}

}  // namespace

// Sorts the directed edges by the id that they start at. The edge of a corner leads to the next one.
void StripGrower::linkEdges(std::size_t idCount)
{
    const std::size_t corners = 3 * triangleCount_;
    firstEdge_.assign(idCount + 1, 0);
    for (std::size_t i = 0; i < corners; ++i)
        ++firstEdge_[list_[i]];
    for (std::size_t id = 0; id < idCount; ++id)
        firstEdge_[id + 1] += firstEdge_[id];
    // Each entry is now the end of its edges, and filling from the back makes it their beginning.
    edges_.resize(corners);
    for (std::size_t i = corners; i-- > 0;)
        edges_[--firstEdge_[list_[i]]] = static_cast<std::uint32_t>(i);
}

// The free triangle that has the edge from -> to: the corner that it starts at, or kNoCorner.
std::uint32_t StripGrower::across(std::uint32_t from, std::uint32_t to) const
{
    // A hub of very many triangles would make each look take as long as the mesh is large.
    constexpr std::uint32_t kMostLooks = 64;
    const std::uint32_t begin = firstEdge_[from];
    const std::uint32_t end = std::min(firstEdge_[from + 1], begin + kMostLooks);
    for (std::uint32_t i = begin; i < end; ++i)
        if (list_[nextCorner(edges_[i])] == to && isFree(edges_[i] / 3))
            return edges_[i];
    return kNoCorner;
}

void StripGrower::growForwards(std::vector<std::uint32_t>& strip)
{
    for (;;) {
        const std::uint32_t last = strip.back();
        const std::uint32_t before = strip[strip.size() - 2];
        const bool leavesEven = strip.size() % 2 != 0;
        const std::uint32_t corner = leavesEven ? across(last, before) : across(before, last);
        if (corner == kNoCorner)
            return;
        marks_[corner / 3] = trial_;
        triedTriangles_.push_back(corner / 3);
        strip.push_back(list_[nextCorner(nextCorner(corner))]);
    }
}

// Mirrored: what is put in front of an even triangle is odd. A strip has to begin with an even one, so an
// odd one that is left over at the front is given up again; false if there was one.
bool StripGrower::growBackwards(std::vector<std::uint32_t>& strip)
{
    backwards_.clear();
    std::uint32_t first = strip[0];
    std::uint32_t second = strip[1];
    for (;;) {
        const bool addsOdd = backwards_.size() % 2 == 0;
        const std::uint32_t corner = addsOdd ? across(second, first) : across(first, second);
        if (corner == kNoCorner)
            break;
        marks_[corner / 3] = trial_;
        triedTriangles_.push_back(corner / 3);
        second = first;
        first = list_[nextCorner(nextCorner(corner))];
        backwards_.push_back(first);
    }
    const bool isWhole = backwards_.size() % 2 == 0;
    if (!isWhole) {
        backwards_.pop_back();
        triedTriangles_.pop_back();
    }
    strip.insert(strip.begin(), backwards_.rbegin(), backwards_.rend());
    return isWhole;
}

// Gives how good the strip is. One that leaves a single triangle behind costs a second strip for it, so
// it is worth half of its length.
std::size_t StripGrower::growFrom(std::uint32_t triangle, std::uint32_t corner,
                                  std::vector<std::uint32_t>& strip)
{
    ++trial_;
    strip.clear();
    triedTriangles_.assign(1, triangle);
    marks_[triangle] = trial_;
    std::uint32_t at = 3 * triangle + corner;
    for (int i = 0; i < 3; ++i, at = nextCorner(at))
        strip.push_back(list_[at]);
    growForwards(strip);
    return growBackwards(strip) ? 2 * triedTriangles_.size() : triedTriangles_.size();
}

void StripGrower::keep(std::uint32_t* ids, std::int32_t* lengths)
{
    for (const std::uint32_t triangle : bestTriangles_)
        marks_[triangle] = kTaken;
    std::copy(best_.begin(), best_.end(), ids + idsWritten_);
    idsWritten_ += best_.size();
    lengths[stripsWritten_++] = static_cast<std::int32_t>(best_.size());
}

void StripGrower::grow(const std::uint32_t* list, std::size_t triangleCount, std::size_t idCount,
                       std::uint32_t* ids, std::int32_t* lengths)
{
    list_ = list;
    triangleCount_ = triangleCount;
    idsWritten_ = 0;
    stripsWritten_ = 0;
    trial_ = 0;
    linkEdges(idCount);
    marks_.assign(triangleCount, 0);
    for (std::uint32_t triangle = 0; triangle < triangleCount; ++triangle) {
        if (marks_[triangle] == kTaken)
            continue;
        std::size_t bestWorth = 0;
        for (std::uint32_t corner = 0; corner < 3; ++corner) {
            const std::size_t worth = growFrom(triangle, corner, tried_);
            if (worth > bestWorth) {
                bestWorth = worth;
                best_.swap(tried_);
                bestTriangles_.swap(triedTriangles_);
            }
        }
        keep(ids, lengths);
    }
}

}  // namespace ovdl
