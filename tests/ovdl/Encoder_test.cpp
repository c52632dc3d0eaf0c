// What is written, piece by piece, and what cannot be.
#include <gmock/gmock.h>

#include <ovdl_schema/document_generated.h>

#include <functional>
#include <limits>
#include <string>

#include "MemoryStreams.h"
#include "reader/PreparedDocuments.h"
#include "reader/formats/ovdl/BufferBuilder.h"
#include "reader/formats/ovdl/CompoundStreams.h"
#include "reader/formats/ovdl/Encoder.h"

namespace {

using namespace ovdl_tests;
using ovdl::DocumentContents;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

/// An assembly of one component of one body of one face, a triangle.
class SmallDocument {
public:
    SmallDocument()
    {
        face.stripCount = 1;
        face.stripLengths = {lengths, 1};
        face.points = {numbers, 9};
        face.normals = {numbers, 9};
        body.faces = {faces, 1};
        part.bodies = {bodies, 1};
        component.tessData = &part;
        assembly.components = {components, 1};
        assembly.lightData = &lights;
        contents.assembly = &assembly;
    }
    SmallDocument(const SmallDocument&) = delete;
    SmallDocument& operator=(const SmallDocument&) = delete;

    std::int32_t lengths[2] = {3, 3};
    float numbers[9] = {};
    uoTempFaceTessData_c face;
    uoTempFaceTessData_c* faces[1] = {&face};
    uoTempBodyTessData_c body;
    uoTempBodyTessData_c* bodies[1] = {&body};
    uoTempPartTessData_c part;
    uoTempAssemblySHDData_c component;
    uoTempAssemblySHDData_c* components[1] = {&component};
    moLight_c light;
    moLight_c* lightPointers[1] = {&light};
    ovPointerArray<moLight_c> lights = {lightPointers, 1};
    OVDLAssemblyDocument assembly;
    uoTempAssemblySHDDataArray_c configuration;
    DocumentContents contents;
};

/// Why a document cannot be written; empty when it can.
std::string refusalOf(const DocumentContents& contents, MemorySink& sink,
                      std::uint64_t largestPiece = ovdl::kLargestPiece)
{
    try {
        ovdl::encodeDocument(contents, sink, largestPiece);
    } catch (const ovdl::Refusal& refusal) {
        return refusal.what();
    }
    return "";
}

TEST(Encoder, WritesTheSmallDocument)
{
    SmallDocument document;
    MemorySink sink;
    EXPECT_EQ(refusalOf(document.contents, sink), "");
    EXPECT_EQ(sink.streams.pieces, (std::map<std::uint32_t, std::uint32_t>{{0, 1}}));
}

struct RefusalCase {
    const char* name;
    std::function<void(SmallDocument&)> spoil;
    std::string reason;
};

const RefusalCase kRefusals[] = {
    {"neither_part_nor_assembly", [](SmallDocument& d) { d.contents.assembly = nullptr; },
     "the document is neither a part nor an assembly"},
    {"a_strip_needs_more_points", [](SmallDocument& d) { d.face.points.count = 6; },
     "tessellation 0, face 0, points: the strips need 3 vertices, and there are 2"},
    {"a_strip_needs_more_normals", [](SmallDocument& d) { d.face.normals = {}; },
     "tessellation 0, face 0, normals: the strips need 3 vertices, and there are 0"},
    {"texture_coordinates_are_told_and_missing", [](SmallDocument& d) { d.face.hasUVs = 1; },
     "tessellation 0, face 0, uvs: the strips need 3 vertices, and there are 0"},
    {"points_end_within_a_vertex", [](SmallDocument& d) { d.face.points.count = 8; },
     "tessellation 0, face 0, points: the strips need 3 vertices, and there are 2"},
    {"normals_end_within_a_vertex", [](SmallDocument& d) { d.face.normals.count = 7; },
     "tessellation 0, face 0, normals: the strips need 3 vertices, and there are 2"},
    {"texture_coordinates_end_within_a_vertex",
     [](SmallDocument& d) {
         d.face.hasUVs = 1;
         d.face.uvs = {d.numbers, 5};
     },
     "tessellation 0, face 0, uvs: the strips need 3 vertices, and there are 2"},
    {"points_have_a_negative_count", [](SmallDocument& d) { d.face.points.count = -3; },
     "tessellation 0, face 0, points: a negative count"},
    {"points_have_no_data", [](SmallDocument& d) { d.face.points.data = nullptr; },
     "tessellation 0, face 0, points: elements without data"},
    {"strip_lengths_have_no_data", [](SmallDocument& d) { d.face.stripLengths.data = nullptr; },
     "tessellation 0, face 0, stripLengths: elements without data"},
    {"there_are_more_strips_than_lengths", [](SmallDocument& d) { d.face.stripCount = 2; },
     "tessellation 0, face 0: 2 strips with 1 lengths"},
    {"the_number_of_strips_is_negative", [](SmallDocument& d) { d.face.stripCount = -1; },
     "tessellation 0, face 0: a negative number of strips"},
    {"a_strip_is_shorter_than_nothing", [](SmallDocument& d) { d.lengths[0] = -1; },
     "tessellation 0, face 0, stripLengths: a negative length"},
    {"strips_together_have_more_vertices_than_a_face_can",
     [](SmallDocument& d) {
         d.lengths[0] = d.lengths[1] = std::numeric_limits<std::int32_t>::max();
         d.face.stripLengths.count = d.face.stripCount = 2;
     },
     "tessellation 0, face 0: more vertices than a face can have"},
    {"faces_have_a_negative_count", [](SmallDocument& d) { d.body.faces.count = -1; },
     "tessellation 0, body 0, faces: a negative count"},
    {"faces_have_no_data", [](SmallDocument& d) { d.body.faces.data = nullptr; },
     "tessellation 0, body 0, faces: elements without data"},
    {"bodies_have_no_data", [](SmallDocument& d) { d.part.bodies.data = nullptr; },
     "tessellation 0, bodies: elements without data"},
    {"components_have_no_data", [](SmallDocument& d) { d.assembly.components.data = nullptr; },
     "the assembly document, components: elements without data"},
    {"components_have_a_negative_count", [](SmallDocument& d) { d.assembly.components.count = -2; },
     "the assembly document, components: a negative count"},
    {"a_configuration_has_no_data",
     [](SmallDocument& d) {
         d.configuration.count = 1;
         d.contents.configurations[L"open"] = &d.configuration;
     },
     "configuration \"open\", components: elements without data"},
    {"lights_have_no_data", [](SmallDocument& d) { d.lights.data = nullptr; },
     "the assembly document, lightData: elements without data"},
};

class EncoderRefusals : public testing::TestWithParam<RefusalCase> {};

TEST_P(EncoderRefusals, TellWhereAndWriteNothing)
{
    SmallDocument document;
    GetParam().spoil(document);
    MemorySink sink;
    EXPECT_EQ(refusalOf(document.contents, sink), GetParam().reason);
    EXPECT_EQ(sink.streams.document.size, 0u);
    EXPECT_THAT(sink.streams.tessellations, IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Rows, EncoderRefusals, testing::ValuesIn(kRefusals),
                         [](const auto& row) { return row.param.name; });

// Null is an array without elements where the count says so.
TEST(Encoder, TakesEmptyArraysWithoutData)
{
    SmallDocument document;
    document.face = uoTempFaceTessData_c();
    document.lights = {};
    document.assembly.components = {};
    OVDLPartDocument part;
    part.tessData = &document.part;
    document.contents.part = &part;
    MemorySink sink;
    EXPECT_EQ(refusalOf(document.contents, sink), "");
}

/// One body of `count` faces that take 144 bytes and their records.
class ManyFaces : public SmallDocument {
public:
    explicit ManyFaces(std::size_t count) : made(count, face), pointers(count)
    {
        for (std::size_t i = 0; i < count; ++i) {
            made[i].faceId = static_cast<std::int32_t>(i);
            pointers[i] = &made[i];
        }
        body.faces = {pointers.data(), static_cast<long long>(count)};
    }

    std::vector<uoTempFaceTessData_c> made;
    std::vector<uoTempFaceTessData_c*> pointers;
};

const ovdl::fb::Tessellation& pieceOf(const MemorySink& sink, std::uint32_t number, std::uint32_t piece)
{
    return *flatbuffers::GetRoot<ovdl::fb::Tessellation>(
        sink.streams.tessellations.at({number, piece}).words.data());
}

TEST(Encoder, CutsTessellationsAtFaces)
{
    constexpr std::uint64_t kLimit = 4096;
    ManyFaces document(100);
    MemorySink sink;
    ASSERT_EQ(refusalOf(document.contents, sink, kLimit), "");
    const std::uint32_t pieces = sink.streams.pieces.at(0);
    EXPECT_GE(pieces, 4u);
    ASSERT_EQ(sink.streams.tessellations.size(), pieces);
    std::vector<std::int32_t> ids;
    for (std::uint32_t piece = 0; piece < pieces; ++piece) {
        EXPECT_LT(sink.streams.tessellations.at({0, piece}).size, kLimit);
        const auto& tessellation = pieceOf(sink, 0, piece);
        // Bodies are in the first one only.
        EXPECT_EQ(tessellation.bodyRecords() != nullptr, piece == 0);
        EXPECT_EQ(tessellation.bodies() != nullptr, piece == 0);
        for (const ovdl::fb::Face* face : *tessellation.faces())
            ids.push_back(face->faceId());
    }
    std::vector<std::int32_t> expected(100);
    for (int i = 0; i < 100; ++i)
        expected[static_cast<std::size_t>(i)] = i;
    EXPECT_EQ(ids, expected);
}

TEST(Encoder, RefusesAFaceThatIsTooLargeForAPiece)
{
    SmallDocument document;
    const std::vector<float> many(3000);
    document.face.points = {many.data(), 3000};
    MemorySink sink;
    EXPECT_EQ(refusalOf(document.contents, sink, 8192), "tessellation 0, face 0: too large for one piece");
    EXPECT_EQ(sink.streams.document.size, 0u);
}

// Nothing is looked at that only the count tells of.
TEST(Encoder, RefusesAFaceThatClaimsMoreThanMemoryHolds)
{
    SmallDocument document;
    document.face.points.count = std::numeric_limits<long long>::max() / 3 * 3;
    document.face.normals.count = document.face.points.count;
    MemorySink sink;
    EXPECT_EQ(refusalOf(document.contents, sink), "tessellation 0, face 0: too large for one piece");
}

TEST(Encoder, RefusesBodiesThatAreTooManyForAPiece)
{
    ManyFaces document(2000);
    MemorySink sink;
    EXPECT_EQ(refusalOf(document.contents, sink, 8192),
              "tessellation 0: too many bodies and faces for one piece");
}

TEST(Encoder, WritesWhatIsSharedOnce)
{
    SmallDocument document;
    moVisualProperties_c visual;
    uoMaterialProperties material;
    visual.materialProps = &material;
    uoTempAssemblySHDData_c second = document.component;
    document.component.vizProps = second.vizProps = &visual;
    document.component.name = second.name = L"a name";
    uoTempAssemblySHDData_c* both[] = {&document.component, &second, &document.component};
    document.assembly.components = {both, 3};
    MemorySink sink;
    ASSERT_EQ(refusalOf(document.contents, sink), "");
    const auto& root = *flatbuffers::GetRoot<ovdl::fb::Document>(sink.streams.document.words.data());
    EXPECT_EQ(root.components()->size(), 2u);
    EXPECT_EQ(root.tessellations()->size(), 1u);
    EXPECT_EQ(root.visuals()->size(), 1u);
    EXPECT_EQ(root.materials()->size(), 1u);
    EXPECT_EQ(root.texts()->size(), 1u);
    const std::vector<std::int32_t> numbers(root.assembly()->components()->begin(),
                                            root.assembly()->components()->end());
    EXPECT_THAT(numbers, ElementsAre(0, 1, 0));
}

TEST(Encoder, TellsTheVersionsInTheHeader)
{
    SmallDocument document;
    document.contents.documentVersion = 13000;
    document.contents.displayListVersion = 7;
    MemorySink sink;
    ASSERT_EQ(refusalOf(document.contents, sink), "");
    EXPECT_EQ(sink.streams.header.formatVersion, ovdl::kFormatVersion);
    EXPECT_EQ(sink.streams.header.documentVersion, 13000u);
    EXPECT_EQ(sink.streams.header.displayListVersion, 7u);
}

TEST(Encoder, MarksItsBuffers)
{
    SmallDocument document;
    MemorySink sink;
    ASSERT_EQ(refusalOf(document.contents, sink), "");
    EXPECT_TRUE(flatbuffers::BufferHasIdentifier(sink.streams.document.words.data(), "OVDD"));
    EXPECT_TRUE(
        flatbuffers::BufferHasIdentifier(sink.streams.tessellations.at({0, 0}).words.data(), "OVDT"));
}

// A configuration without an array is none.
TEST(Encoder, LeavesOutConfigurationsWithoutAnArray)
{
    SmallDocument document;
    document.contents.configurations[L"none"] = nullptr;
    MemorySink sink;
    ASSERT_EQ(refusalOf(document.contents, sink), "");
    const auto& root = *flatbuffers::GetRoot<ovdl::fb::Document>(sink.streams.document.words.data());
    EXPECT_EQ(root.configurations(), nullptr);
}

TEST(BufferBuilder, RefusesBeforeABufferGrowsTooLarge)
{
    ovdl::BufferBuilder builder(100, 1000);
    const std::vector<std::int32_t> numbers(200);
    builder.vector<std::int32_t>(numbers);
    EXPECT_THROW(builder.vector<std::int32_t>(numbers), ovdl::Refusal);
}

TEST(BufferBuilder, RefusesWhatNoBufferCanHold)
{
    ovdl::BufferBuilder builder(100, ovdl::kLargestBuffer);
    EXPECT_THROW(builder.room(ovdl::kLargestBuffer), ovdl::Refusal);
    EXPECT_THROW(builder.room(std::numeric_limits<std::uint64_t>::max()), ovdl::Refusal);
    EXPECT_NO_THROW(builder.room(1000));
}

}  // namespace
