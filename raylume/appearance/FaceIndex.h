// From the id of a face to the face, for the records of decals.
#pragma once

#include <cstdint>
#include <map>
#include <utility>
#include <vector>

class dlFace;
class dlPart;

/// The first face of each id in a part, bodies in order and the faces of each in order.
///
/// Ownership: points into the part and owns nothing; usable as long as the part keeps its bodies and
///   their faces where they are, with the ids that they had.
class FaceIndex {
public:
    explicit FaceIndex(const dlPart& part);

    /// Null when no face of the part has the id.
    dlFace* find(std::int32_t faceId) const;
    /// False once the part has other bodies, or a body has other faces, than when the index was made. An
    /// id that is changed in place is not noticed.
    bool fits(const dlPart& part) const;

private:
    using Entry = std::pair<std::int32_t, dlFace*>;
    using Faces = std::pair<dlFace*, std::int32_t>;  // of one body

    std::vector<Entry> entries_;  // by id, each id once
    std::vector<Faces> bodies_;
};

/// The indices of the parts of one load, each made when it is first asked for, and anew when it no longer
/// fits. Ids of faces are fixed once a part has been captured, so during a load that is enough.
class FaceIndices {
public:
    /// Stays valid until this part is asked for again.
    const FaceIndex& of(const dlPart& part);

private:
    std::map<const dlPart*, FaceIndex> indices_;
};
