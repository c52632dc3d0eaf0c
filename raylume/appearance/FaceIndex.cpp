#include "raylume/appearance/FaceIndex.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <span>

#include "raylume/scene/dlPart.h"

namespace {

// A part or body without an array has nothing in it, whatever its count says.
std::span<const dlBody> bodiesOf(const dlPart& part)
{
    return {part.bodies, part.bodies && part.bodyCount > 0 ? static_cast<std::size_t>(part.bodyCount) : 0};
}

std::pair<dlFace*, std::int32_t> facesOf(const dlBody& body)
{
    return {body.faces, body.faces ? body.faceCount : 0};
}

template <class Entry>
bool idBefore(const Entry& a, const Entry& b)
{
    return a.first < b.first;
}

template <class Entry>
bool sameId(const Entry& a, const Entry& b)
{
    return a.first == b.first;
}

}  // namespace

// A sorted array and no hash table: the ids come from the document, which could make them collide.
FaceIndex::FaceIndex(const dlPart& part)
{
    const auto bodies = bodiesOf(part);
    std::transform(bodies.begin(), bodies.end(), std::back_inserter(bodies_), facesOf);
    for (const auto& [faces, count] : bodies_) {
        for (std::int32_t index = 0; index < count; ++index)
            entries_.emplace_back(faces[index].faceId, &faces[index]);
    }
    std::stable_sort(entries_.begin(), entries_.end(), idBefore<Entry>);
    entries_.erase(std::unique(entries_.begin(), entries_.end(), sameId<Entry>), entries_.end());
}

dlFace* FaceIndex::find(std::int32_t faceId) const
{
    const auto entry =
        std::lower_bound(entries_.begin(), entries_.end(), Entry(faceId, nullptr), idBefore<Entry>);
    return entry != entries_.end() && entry->first == faceId ? entry->second : nullptr;
}

bool FaceIndex::fits(const dlPart& part) const
{
    const auto bodies = bodiesOf(part);
    return std::equal(bodies_.begin(), bodies_.end(), bodies.begin(), bodies.end(),
                      [](const Faces& then, const dlBody& now) { return then == facesOf(now); });
}

const FaceIndex& FaceIndices::of(const dlPart& part)
{
    const auto [entry, isNew] = indices_.try_emplace(&part, part);
    if (!isNew && !entry->second.fits(part))
        entry->second = FaceIndex(part);
    return entry->second;
}
