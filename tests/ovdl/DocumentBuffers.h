// Documents as buffers in memory, made field by field: sound ones, and such as no writer would make.
#pragma once

#include <ovdl_schema/document_generated.h>

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "reader/DocumentFormat.h"
#include "reader/formats/ovdl/DocumentStreams.h"
#include "reader/formats/ovdl/Refusal.h"

namespace ovdl_tests {

namespace fb = ovdl::fb;

/// Each in a piece of memory of its own, so that a sanitizer sees its end.
using Buffer = std::vector<unsigned char>;

/// The streams of a document.
struct Buffers {
    ovdl::DocumentHeader header{1, 12000, 3};
    Buffer document;
    /// By tessellation and piece.
    std::map<std::pair<std::uint32_t, std::uint32_t>, Buffer> tessellations;
    /// Added to what size() tells.
    std::uint64_t moreSize = 0;

    std::uint64_t size() const
    {
        std::uint64_t size = document.size() + moreSize;
        for (const auto& [key, bytes] : tessellations)
            size += bytes.size();
        return size;
    }
};

/// Refers to buffers that outlive it.
class MemoryStreams final : public ovdl::DocumentStreams {
public:
    explicit MemoryStreams(const Buffers& buffers) : buffers_(buffers) {}

    ovdl::DocumentHeader header() override { return buffers_.header; }
    ovdl::Bytes document() override { return buffers_.document; }
    ovdl::Bytes tessellation(std::uint32_t number, std::uint32_t piece, std::uint32_t) override
    {
        const auto found = buffers_.tessellations.find({number, piece});
        if (found == buffers_.tessellations.end())
            ovdl::refuse("a stream is missing");
        return found->second;
    }
    std::uint64_t size() const override { return buffers_.size(); }

private:
    const Buffers& buffers_;
};

inline Buffer bytesOf(const flatbuffers::FlatBufferBuilder& builder)
{
    return {builder.GetBufferPointer(), builder.GetBufferPointer() + builder.GetSize()};
}

template <class Table>
Buffer packed(const Table& table, const char* identifier)
{
    flatbuffers::FlatBufferBuilder builder;
    builder.ForceDefaults(true);
    builder.Finish(Table::TableType::Pack(builder, &table), identifier);
    return bytesOf(builder);
}

/// A document while it is made.
struct Draft {
    Draft() = default;
    Draft(Draft&&) = default;

    ovdl::DocumentHeader header{1, 12000, 3};
    fb::DocumentT document;
    /// Pieces of each tessellation. How many the document tells stands in `document`.
    std::vector<std::vector<std::unique_ptr<fb::TessellationT>>> tessellations;

    Buffers buffers() const
    {
        Buffers buffers;
        buffers.header = header;
        buffers.document = packed(document, ovdl::kDocumentIdentifier);
        for (std::uint32_t n = 0; n < tessellations.size(); ++n)
            for (std::uint32_t k = 0; k < tessellations[n].size(); ++k)
                buffers.tessellations[{n, k}] = packed(*tessellations[n][k], ovdl::kTessellationIdentifier);
        return buffers;
    }

    std::uint32_t text(const std::string& bytes)
    {
        document.texts.push_back(bytes);
        return static_cast<std::uint32_t>(document.texts.size());
    }

    /// A new tessellation of so many pieces; gives the first.
    fb::TessellationT& addTessellation(std::uint32_t pieces = 1)
    {
        document.tessellations.emplace_back(pieces);
        auto& all = tessellations.emplace_back();
        for (std::uint32_t i = 0; i < pieces; ++i)
            all.push_back(std::make_unique<fb::TessellationT>());
        return *all.front();
    }

    fb::ComponentT& addComponent(const std::string& name, std::int32_t tessellation)
    {
        auto& component = *document.components.emplace_back(std::make_unique<fb::ComponentT>());
        component.name = text(name);
        component.tessData = tessellation;
        return component;
    }

    fb::AssemblyT& assembly()
    {
        if (!document.assembly)
            document.assembly = std::make_unique<fb::AssemblyT>();
        return *document.assembly;
    }

    fb::PartT& part()
    {
        if (!document.part)
            document.part = std::make_unique<fb::PartT>();
        return *document.part;
    }
};

/// Appends a face of one strip of so many vertices, with texture coordinates if wanted; gives its number in
/// the piece.
inline std::int32_t addFace(fb::TessellationT& piece, std::uint32_t vertices, bool hasUVs = false,
                            std::int32_t id = 7)
{
    const auto at = [](const auto& vector, std::uint32_t count) {
        return fb::Range(static_cast<std::uint32_t>(vector.size()), count);
    };
    piece.faces.emplace_back(1, hasUVs ? 1 : 0, id, id + 1, at(piece.stripLengths, 1),
                             at(piece.points, 3 * vertices), at(piece.normals, 3 * vertices),
                             at(piece.uvs, hasUVs ? 2 * vertices : 0), fb::Range(0, 0), fb::Range(0, 0));
    piece.stripLengths.push_back(static_cast<std::int32_t>(vertices));
    for (std::uint32_t i = 0; i < 3 * vertices; ++i) {
        piece.points.push_back(static_cast<float>(i) * 0.5f);
        piece.normals.push_back(static_cast<float>(i % 3 == 2));
    }
    for (std::uint32_t i = 0; hasUVs && i < 2 * vertices; ++i)
        piece.uvs.push_back(static_cast<float>(i) * 0.25f);
    return static_cast<std::int32_t>(piece.faces.size()) - 1;
}

/// A face as fields that can be changed.
struct FaceFields {
    explicit FaceFields(const fb::Face& face)
        : stripCount(face.stripCount()),
          hasUVs(face.hasUVs()),
          faceId(face.faceId()),
          faceKey(face.faceKey()),
          stripLengths(face.stripLengths()),
          points(face.points()),
          normals(face.normals()),
          uvs(face.uvs()),
          faceVizProps(face.faceVizProps()),
          vizPropModes(face.vizPropModes())
    {
    }
    fb::Face face() const
    {
        return {stripCount, hasUVs,  faceId, faceKey,      stripLengths,
                points,     normals, uvs,    faceVizProps, vizPropModes};
    }

    std::int32_t stripCount, hasUVs, faceId, faceKey;
    fb::Range stripLengths, points, normals, uvs, faceVizProps, vizPropModes;
};

template <class Change>
void editFace(fb::TessellationT& piece, std::size_t number, Change change)
{
    FaceFields fields(piece.faces.at(number));
    change(fields);
    piece.faces.at(number) = fields.face();
}

/// Appends a body of these faces to the record vector and to the part.
inline fb::BodyT& addBody(fb::TessellationT& piece, std::vector<std::int32_t> faces)
{
    auto& body = *piece.bodyRecords.emplace_back(std::make_unique<fb::BodyT>());
    body.faces = std::move(faces);
    piece.bodies.push_back(static_cast<std::int32_t>(piece.bodyRecords.size()) - 1);
    return body;
}

/// A part of one triangle.
inline Draft trianglePart()
{
    Draft draft;
    fb::TessellationT& tessellation = draft.addTessellation();
    addBody(tessellation, {addFace(tessellation, 3)});
    draft.part().tessData = 0;
    return draft;
}

/// Something of everything, small.
Draft everything();

/// What the host says to a read.
class Context : public ovdl::ReadContext {
public:
    bool acceptVersion(unsigned long version) override
    {
        told.push_back(version);
        return acceptsVersion;
    }
    void progress(float done) override { shares.push_back(done); }
    bool cancelled() override { return ++questions > answersBeforeCancel; }

    bool acceptsVersion = true;
    long long answersBeforeCancel = 1LL << 60;
    std::vector<unsigned long> told;
    std::vector<float> shares;
    long long questions = 0;
};

ovdl::ReadOutcome decode(const Buffers& buffers, Context& context);
ovdl::ReadOutcome decode(const Buffers& buffers);

/// Reads all that a document hands out, as the library could, and counts the vertices of its faces. Raises
/// std::logic_error where something is not as it has to be.
long long walk(ovdl::ReadDocument& document);

}  // namespace ovdl_tests
