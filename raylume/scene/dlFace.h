#pragma once

#include <cstdint>
#include <list>

#include "raylume/platform/Export.h"
#include "raylume/scene/dlBBox.h"

class dlDecal;
class dlMaterial;

/// A face: triangle strips over one interleaved vertex array.
///
/// Ownership: owns its arrays (array new, possibly of length 0), its material and its decals, and
///   frees them in the destructor. Copies and assignments share them and free nothing, so at most
///   one of a source and its copy may be destroyed with them in place.
/// Shapes: `vertices` 6 floats a vertex, px py pz nx ny nz; `uvs` 2 floats a vertex, null when the
///   tessellation has none; strip i is stripLengths[i] vertices from index stripStarts[i] on, its
///   triangles turning alternately.
/// Units: metres, in part space; normals as the document has them, not normalised.
/// Layout: hosts read the fields directly; order and defaults are a contract.
class DL_API dlFace {
public:
    dlFace();
    dlFace(const dlFace& other);
    dlFace& operator=(const dlFace& other);
    ~dlFace();

    /// Appends the decal, which the face then owns. Null is ignored.
    void addDecal(dlDecal* decal);
    /// A copy of the list of pointers.
    std::list<dlDecal*> getDecalList();

    std::int32_t vertexCount = 0;
    float* vertices = nullptr;
    float* uvs = nullptr;
    std::int32_t stripCount = 0;
    std::int32_t* stripStarts = nullptr;
    std::int32_t* stripLengths = nullptr;
    float* projectedUVs = nullptr;  ///< 2 floats a vertex; null until a box projection is made.
    dlMaterial* material = nullptr;
    dlBBox bbox;
    std::int32_t triangleCount = 0;  ///< Sum of length - 2, negative for degenerate strips.
    std::int32_t faceId = -1;
    std::int32_t faceKey = -1;
    std::int32_t vizPropMode = 0;
    std::list<dlDecal*> decals;
};
