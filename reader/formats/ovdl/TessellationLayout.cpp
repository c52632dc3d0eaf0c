#include "reader/formats/ovdl/TessellationLayout.h"

#include "reader/formats/ovdl/BufferBuilder.h"
#include "reader/formats/ovdl/FaceCheck.h"
#include "reader/formats/ovdl/ReaderArrays.h"

namespace ovdl {
namespace {

// Of the vectors and the root table of a piece.
constexpr std::uint64_t kPieceOverhead = 1024;

class Layout {
public:
    Layout(const std::string& where, std::uint64_t largestPiece)
        : where_(where), largestPiece_(largestPiece)
    {
    }

    TessellationLayout make(const uoTempPartTessData_c& tessData)
    {
        addBodies(tessData);
        cut(recordBytes(tessData));
        return std::move(made_);
    }

private:
    void addBodies(const uoTempPartTessData_c& tessData)
    {
        checkArray(tessData.bodies, where_ + ", bodies");
        for (const uoTempBodyTessData_c* body : elementsOf(tessData.bodies))
            if (made_.bodies.add(body))
                addBody(*body);
    }

    void addBody(const uoTempBodyTessData_c& body)
    {
        checkArray(body.faces, where_ + ", body " + std::to_string(made_.bodies.of(&body)) + ", faces");
        for (const uoTempFaceTessData_c* face : elementsOf(body.faces))
            if (made_.faces.add(face))
                checkFace(*face, where_ + ", face " + std::to_string(made_.faces.of(face)));
        for (const auto& [config, info] : body.bodyPropInfos)
            made_.propInfos.add(info);
    }

    // What the first piece has besides faces.
    std::uint64_t recordBytes(const uoTempPartTessData_c& tessData) const
    {
        std::uint64_t bytes = kPieceOverhead + 4 * static_cast<std::uint64_t>(tessData.bodies.count) +
                              8 * tessData.modelVizProps.size() + 4 * made_.propInfos.objects().size();
        for (const auto& [config, decals] : tessData.decalsByConfig)
            bytes += 8 + 4 * decals.size();
        for (const uoTempBodyTessData_c* body : made_.bodies.objects())
            bytes += bodyBytes(*body);
        return bytes;
    }

    static std::uint64_t bodyBytes(const uoTempBodyTessData_c& body)
    {
        constexpr std::uint64_t kBodyTable = 96;
        return kBodyTable + 4 * static_cast<std::uint64_t>(body.faces.count) +
               8 * (body.bodyVizProps.size() + body.bodyPropInfos.size());
    }

    void cut(std::uint64_t records)
    {
        if (records >= largestPiece_)
            refuse(where_ + ": too many bodies and faces for one piece");
        made_.pieces.push_back({0, 0, records});
        for (const uoTempFaceTessData_c* face : made_.faces.objects())
            place(faceBytes(*face));
    }

    void place(std::uint64_t bytes)
    {
        const std::size_t number = made_.pieces.back().endFace;
        if (kPieceOverhead + bytes >= largestPiece_)
            refuse(where_ + ", face " + std::to_string(number) + ": too large for one piece");
        if (made_.pieces.back().bytes + bytes >= largestPiece_)
            made_.pieces.push_back({number, number, kPieceOverhead});
        made_.pieces.back().bytes += bytes;
        ++made_.pieces.back().endFace;
    }

    const std::string& where_;
    std::uint64_t largestPiece_;
    TessellationLayout made_;
};

}  // namespace

TessellationLayout layOut(const uoTempPartTessData_c& tessData, const std::string& where,
                          std::uint64_t largestPiece)
{
    return Layout(where, largestPiece).make(tessData);
}

}  // namespace ovdl
