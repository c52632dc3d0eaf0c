#include "reader/formats/ovdl/FaceCheck.h"

#include <algorithm>
#include <limits>

#include <ovdl_schema/document_generated.h>
#include "reader/formats/ovdl/ReaderArrays.h"

namespace ovdl {
namespace {

void checkHolds(const ovArrayView<float>& array, long long width, long long vertices,
                const std::string& what)
{
    if (array.count / width < vertices)
        refuse(what + ": the strips need " + std::to_string(vertices) + " vertices, and there are " +
               std::to_string(array.count / width));
}

// How many vertices the strips have together.
long long verticesOf(const uoTempFaceTessData_c& face, const std::string& where)
{
    long long vertices = 0;
    for (const std::int32_t length : elementsOf(face.stripLengths).first(face.stripCount)) {
        if (length < 0)
            refuse(where + ", stripLengths: a negative length");
        vertices += length;
    }
    if (vertices > std::numeric_limits<std::int32_t>::max())
        refuse(where + ": more vertices than a face can have");
    return vertices;
}

}  // namespace

void checkFace(const uoTempFaceTessData_c& face, const std::string& where)
{
    checkArray(face.stripLengths, where + ", stripLengths");
    checkArray(face.points, where + ", points");
    checkArray(face.normals, where + ", normals");
    checkArray(face.uvs, where + ", uvs");
    if (face.stripCount < 0)
        refuse(where + ": a negative number of strips");
    if (face.stripLengths.count < face.stripCount)
        refuse(where + ": " + std::to_string(face.stripCount) + " strips with " +
               std::to_string(face.stripLengths.count) + " lengths");
    const long long vertices = verticesOf(face, where);
    checkHolds(face.points, 3, vertices, where + ", points");
    checkHolds(face.normals, 3, vertices, where + ", normals");
    if (face.hasUVs != 0)
        checkHolds(face.uvs, 2, vertices, where + ", uvs");
}

// Counts are cut off where the sum would run over: that is too large anyway.
std::uint64_t faceBytes(const uoTempFaceTessData_c& face)
{
    constexpr long long kMost = 1LL << 40;
    std::uint64_t numbers = 0;
    for (const long long count :
         {face.stripLengths.count, face.points.count, face.normals.count, face.uvs.count})
        numbers += static_cast<std::uint64_t>(std::min(count, kMost));
    return sizeof(fb::Face) + 4 * numbers +
           sizeof(fb::ConfigValue) * (face.faceVizProps.size() + face.vizPropModes.size());
}

}  // namespace ovdl
