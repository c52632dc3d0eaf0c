// The part of a face that a decal's image covers.
#pragma once

#include <optional>

#include "raylume/scene/dlFace.h"
#include "raylume/scene/dlTexture.h"
#include "tools/FaceGeometry.h"

namespace tool {

/// Projects points of a face into a decal's image, straight down onto the plane of the image:
///
///   x = a . (p - origin) + transU,   y = b . (p - origin) + transV
///   u = scaleU * ( x cos(angle) + y sin(angle)),   plus 1 where scaleU is negative
///   v = scaleV * (-x sin(angle) + y cos(angle)),   plus 1 where scaleV is negative
///
/// with a along uDirection, n along uDirection x vDirection and b along n x a. The image lies where u and
/// v are between 0 and 1, its lower left corner at 0, 0: a mirrored one covers the same place.
class DecalProjection {
public:
    /// None when the texture has no mapping, or numbers that give no place: a scale of zero or one that
    /// is not finite, directions that make no plane.
    static std::optional<DecalProjection> of(const dlTexture& texture);
    /// The same for a texture without directions, in the plane that the face has on the whole: the
    /// largest axis of its mean normal, as the box projection takes it.
    static std::optional<DecalProjection> of(const dlTexture& texture, const FaceGeometry& face);

    /// As glTF counts it: v downwards from the top of the image.
    void textureCoordinates(const float* point, double* uv) const;

private:
    static std::optional<DecalProjection> in(const dlTexture& texture, const double* u, const double* v);

    double rows_[2][3] = {};
    double offsets_[2] = {};
};

/// The triangles of the face cut to the image, in their order and winding, with texture coordinates; what
/// lies within whole stays as it is. Empty when the image lies beside the face. Vertices are moved by
/// `lift` along their normals.
FaceGeometry decalGeometry(const FaceGeometry& face, const DecalProjection& projection, float lift);

/// How far a decal is lifted so that it is seen: a small share of the face's size, more for each decal
/// below it, and never lost in the rounding of the coordinates.
float decalLift(const FaceGeometry& face, int layer);

}  // namespace tool
