// Tessellations: bodies and faces over arrays that stay in the streams.
#include <limits>

#include "reader/formats/ovdl/Decoding.h"
#include "reader/formats/ovdl/Verification.h"

namespace ovdl::decoding {
namespace {

std::string tessellationName(std::uint32_t number, std::uint32_t piece, std::uint32_t pieces)
{
    std::string name = "tessellation " + std::to_string(number);
    return pieces == 1 ? name : name + ", piece " + std::to_string(piece);
}

// The runs of the faces of one piece: taken together, no vector is used up more than once.
class Runs {
public:
    explicit Runs(const char* what) : what_(what) {}

    template <class T>
    std::span<const T> take(const fb::Range& range, std::span<const T> all)
    {
        const auto run = slice(range, all, what_);
        taken_ += run.size();
        if (taken_ > all.size())
            refuse(std::string("faces share runs of ") + what_);
        return run;
    }

private:
    const char* what_;
    std::uint64_t taken_ = 0;
};

template <class T>
ovArrayView<T> viewOf(std::span<const T> values)
{
    return {values.data(), static_cast<long long>(values.size())};
}

class FaceDecoder {
public:
    FaceDecoder(const fb::Tessellation& piece, Decoding& decoding)
        : decoding_(decoding),
          stripLengths_(values(piece.stripLengths())),
          points_(values(piece.points())),
          normals_(values(piece.normals())),
          uvs_(values(piece.uvs())),
          visuals_(structs(piece.faceVizProps())),
          modes_(structs(piece.vizPropModes()))
    {
    }

    void fill(const fb::Face& from, uoTempFaceTessData_c& to)
    {
        to.stripCount = from.stripCount();
        to.hasUVs = from.hasUVs();
        to.faceId = from.faceId();
        to.faceKey = from.faceKey();
        to.stripLengths = viewOf(stripLengthRuns_.take(from.stripLengths(), stripLengths_));
        to.points = viewOf(pointRuns_.take(from.points(), points_));
        to.normals = viewOf(normalRuns_.take(from.normals(), normals_));
        to.uvs = viewOf(uvRuns_.take(from.uvs(), uvs_));
        checkStrips(to);
        fillConfigurations(from, to);
    }

private:
    // As the arrays are read: with as many vertices as the strips say.
    void checkStrips(const uoTempFaceTessData_c& face)
    {
        if (face.stripCount < 0 || face.stripCount > face.stripLengths.count)
            refuse("a face has " + std::to_string(face.stripCount) + " strips and not their lengths");
        decoding_.steps.tick(static_cast<std::uint64_t>(face.stripCount));
        long long vertices = 0;
        for (std::int32_t strip = 0; strip < face.stripCount; ++strip) {
            if (face.stripLengths.data[strip] < 0)
                refuse("a strip has less than no vertices");
            vertices += face.stripLengths.data[strip];
        }
        if (vertices > std::numeric_limits<std::int32_t>::max() || vertices > face.points.count / 3 ||
            vertices > face.normals.count / 3 || (face.hasUVs != 0 && vertices > face.uvs.count / 2))
            refuse("the strips of a face need more vertices than it has");
    }

    void fillConfigurations(const fb::Face& from, uoTempFaceTessData_c& to)
    {
        const auto visuals = visualRuns_.take(from.faceVizProps(), visuals_);
        const auto modes = modeRuns_.take(from.vizPropModes(), modes_);
        decoding_.budget.charge(visuals.size() + modes.size(), kNode + 16);
        decoding_.steps.tick(visuals.size() + modes.size());
        for (const fb::ConfigValue& value : visuals)
            insertNew(to.faceVizProps, value.config(),
                      refer(decoding_.objects.visuals, value.value(), "visuals"), "faceVizProps");
        for (const fb::ConfigValue& value : modes)
            insertNew(to.vizPropModes, value.config(), static_cast<VizPropMode_e>(value.value()),
                      "vizPropModes");
    }

    Decoding& decoding_;
    std::span<const std::int32_t> stripLengths_;
    std::span<const float> points_;
    std::span<const float> normals_;
    std::span<const float> uvs_;
    std::span<const fb::ConfigValue> visuals_;
    std::span<const fb::ConfigValue> modes_;
    Runs stripLengthRuns_{"stripLengths"};
    Runs pointRuns_{"points"};
    Runs normalRuns_{"normals"};
    Runs uvRuns_{"uvs"};
    Runs visualRuns_{"faceVizProps"};
    Runs modeRuns_{"vizPropModes"};
};

class TessellationDecoder {
public:
    TessellationDecoder(DocumentStreams& streams, Decoding& decoding)
        : streams_(streams), decoding_(decoding)
    {
    }

    void decode(std::uint32_t number, std::uint32_t pieces, DecodedTessellation& to)
    {
        openPieces(number, pieces);
        decodeFaces(to);
        decodePropInfos(to);
        decodeBodies(to);
        decodePart(to);
    }

private:
    // A document may claim any number of pieces: they are believed one by one.
    void openPieces(std::uint32_t number, std::uint32_t pieces)
    {
        if (pieces == 0)
            refuse(tessellationName(number, 0, 1) + " has no pieces");
        pieces_.clear();
        for (std::uint32_t piece = 0; piece < pieces; ++piece) {
            const Bytes bytes = aligned(streams_.tessellation(number, piece, pieces), decoding_.objects);
            const std::string name = tessellationName(number, piece, pieces);
            pieces_.push_back(&verifiedRoot<fb::Tessellation>(bytes, kTessellationIdentifier, name));
            if (piece != 0 && hasFirstFields(*pieces_.back()))
                refuse(name + " has what only the first one may have");
            decoding_.steps.ask();
        }
    }

    static bool hasFirstFields(const fb::Tessellation& piece)
    {
        return !values(piece.bodies()).empty() || !values(piece.modelVizProps()).empty() ||
               !values(piece.decalsByConfig()).empty() || !structs(piece.propInfos()).empty() ||
               (piece.bodyRecords() && piece.bodyRecords()->size() != 0);
    }

    void decodeFaces(DecodedTessellation& to)
    {
        std::size_t count = 0;
        for (const fb::Tessellation* piece : pieces_)
            count += structs(piece->faces()).size();
        decoding_.budget.charge(count, sizeof(uoTempFaceTessData_c));
        to.faces = std::vector<uoTempFaceTessData_c>(count);
        auto face = to.faces.begin();
        for (const fb::Tessellation* piece : pieces_) {
            FaceDecoder decoder(*piece, decoding_);
            for (const fb::Face& from : structs(piece->faces())) {
                decoding_.steps.tick();
                decoder.fill(from, *face++);
            }
        }
    }

    void decodePropInfos(DecodedTessellation& to)
    {
        const auto infos = structs(pieces_.front()->propInfos());
        decoding_.budget.charge(infos.size(), sizeof(uoBodyPropInfo_c));
        to.propInfos = std::vector<uoBodyPropInfo_c>(infos.size());
        for (std::size_t i = 0; i < infos.size(); ++i)
            to.propInfos[i].shown = infos[i].shown();
    }

    void decodeBodies(DecodedTessellation& to)
    {
        const auto* records = pieces_.front()->bodyRecords();
        decoding_.budget.charge(records ? records->size() : 0, sizeof(to.bodyFaces[0]));
        decodeRecords(records, to.bodies, decoding_,
                      [&to](const fb::Body& from, uoTempBodyTessData_c& body, Decoding& decoding) {
                          fillBody(from, body, to, decoding);
                      });
    }

    static void fillBody(const fb::Body& from, uoTempBodyTessData_c& body, DecodedTessellation& to,
                         Decoding& decoding)
    {
        body.faces = referAll(from.faces(), to.faces, to.bodyFaces.emplace_back(), decoding, "faces");
        body.flag = from.flag();
        body.level = from.level();
        decodePairs(from.bodyVizProps(), body.bodyVizProps, decoding.objects.visuals, decoding,
                    "bodyVizProps");
        decodePairs(from.bodyPropInfos(), body.bodyPropInfos, to.propInfos, decoding, "bodyPropInfos");
    }

    void decodePart(DecodedTessellation& to)
    {
        const fb::Tessellation& from = *pieces_.front();
        to.part.bodies = referAll(from.bodies(), to.bodies, to.partBodies, decoding_, "bodyRecords");
        decodePairs(from.modelVizProps(), to.part.modelVizProps, decoding_.objects.visuals, decoding_,
                    "modelVizProps");
        decodeDecals(values(from.decalsByConfig()), to.part);
    }

    void decodeDecals(std::span<const std::int32_t> runs, uoTempPartTessData_c& to)
    {
        while (!runs.empty()) {
            if (runs.size() < 2 || runs[1] < 0 || static_cast<std::size_t>(runs[1]) > runs.size() - 2)
                refuse("the decals of a part are not in runs");
            const auto numbers = runs.subspan(2, static_cast<std::size_t>(runs[1]));
            decoding_.budget.charge(1, kNode + sizeof(std::list<uoDecalProperties*>));
            insertNew(to.decalsByConfig, runs[0], decalList(numbers, decoding_), "decalsByConfig");
            runs = runs.subspan(2 + numbers.size());
        }
    }

    DocumentStreams& streams_;
    Decoding& decoding_;
    std::vector<const fb::Tessellation*> pieces_;
};

}  // namespace

std::list<uoDecalProperties*> decalList(std::span<const std::int32_t> numbers, Decoding& decoding)
{
    decoding.budget.charge(numbers.size(), kNode);
    decoding.steps.tick(numbers.size());
    std::list<uoDecalProperties*> decals;
    for (const std::int32_t number : numbers)
        decals.push_back(refer(decoding.objects.decals, number, "decals"));
    return decals;
}

void decodeTessellations(DocumentStreams& streams, Decoding& decoding)
{
    const auto entries = structs(decoding.document.tessellations());
    decoding.budget.charge(entries.size(), sizeof(DecodedTessellation));
    decoding.objects.tessellations = std::vector<DecodedTessellation>(entries.size());
    TessellationDecoder decoder(streams, decoding);
    for (std::size_t i = 0; i < entries.size(); ++i) {
        decoder.decode(static_cast<std::uint32_t>(i), entries[i].pieces(),
                       decoding.objects.tessellations[i]);
        decoding.steps.progress(i + 1, entries.size());
    }
}

}  // namespace ovdl::decoding
