// A part of bodies and faces, for tests of decals and projections.
#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <vector>

#include "raylume/scene/dlPart.h"

/// Ids of the faces, a list for each body.
using FaceIds = std::vector<std::vector<std::int32_t>>;

/// The part owns all that is put into it.
inline void fillBodies(dlPart& part, const FaceIds& ids)
{
    part.bodyCount = static_cast<std::int32_t>(ids.size());
    part.bodies = new dlBody[ids.size()];
    for (std::size_t body = 0; body < ids.size(); ++body) {
        part.bodies[body].faceCount = static_cast<std::int32_t>(ids[body].size());
        part.bodies[body].faces = new dlFace[ids[body].size()];
        for (std::size_t face = 0; face < ids[body].size(); ++face)
            part.bodies[body].faces[face].faceId = ids[body][face];
    }
}
