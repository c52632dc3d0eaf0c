// A face's strips as an indexed triangle list that glTF accepts.
#pragma once

#include <cstdint>
#include <vector>

#include "raylume/scene/dlFace.h"

namespace tool {

/// Units and space are those of the face.
struct FaceGeometry {
    std::vector<float> positions;         ///< 3 floats a vertex, all finite.
    std::vector<float> normals;           ///< 3 floats a vertex, of unit length.
    std::vector<float> uvs;               ///< 2 floats a vertex; empty when the face has none.
    std::vector<std::uint32_t> indices;   ///< 3 a triangle, each naming three different vertices.
    long long trianglesWithoutPlace = 0;  ///< Left out: a coordinate is infinite or no number.

    std::size_t vertexCount() const { return positions.size() / 3; }
};

/// Every second triangle of a strip is turned, so that all wind as the strip's first. Vertices are
/// shared where all their numbers are the same bits. Normals keep their bits when they are of unit
/// length within 1e-5 and are normalised otherwise; a zero or non-finite one becomes the triangle's
/// own. A triangle that names a vertex twice is a joint of strips and goes. Strips that reach beyond
/// the vertex array are cut there.
FaceGeometry triangulate(const dlFace& face);

}  // namespace tool
