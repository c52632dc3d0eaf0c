// How the records free the appearances they own.
#pragma once

#include <list>

#include "raylume/scene/dlDecal.h"
#include "raylume/scene/dlMaterial.h"

namespace scene {

// dlMaterial has virtual operations and no virtual destructor, which is part of its layout. What hangs
// on a `material` pointer is never a decal, so the plain delete here is right.
inline void deleteMaterial(const dlMaterial* material)
{
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdelete-non-virtual-dtor"
    delete material;
#pragma GCC diagnostic pop
}

inline void deleteDecals(const std::list<dlDecal*>& decals)
{
    for (const dlDecal* decal : decals) {
        delete decal;
    }
}

}  // namespace scene
