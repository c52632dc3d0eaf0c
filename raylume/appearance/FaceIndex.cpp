#include "raylume/appearance/FaceIndex.h"

#include <algorithm>

#include "raylume/scene/dlPart.h"

namespace {

// Where a part's bodies lie; a part or body without an array has none, whatever its count says.
std::vector<std::pair<dlFace*, std::int32_t>> bodiesOf(const dlPart& part)
{
    std::vector<std::pair<dlFace*, std::int32_t>> bodies;
    for (std::int32_t index = 0; part.bodies && index < part.bodyCount; ++index) {
        const dlBody& body = part.bodies[index];
        bodies.emplace_back(body.faces, body.faces ? body.faceCount : 0);
    }
    return bodies;
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
FaceIndex::FaceIndex(const dlPart& part) : bodies_(bodiesOf(part))
{
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
    return bodies_ == bodiesOf(part);
}

const FaceIndex& FaceIndices::of(const dlPart& part)
{
    const auto [entry, isNew] = indices_.try_emplace(&part, part);
    if (!isNew && !entry->second.fits(part))
        entry->second = FaceIndex(part);
    return entry->second;
}
