// Documents that were damaged, and documents that were written to do damage.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <functional>

#include "reader/formats/ovdl/Decoder.h"
#include "tests/ovdl/DocumentBuffers.h"

namespace ovdl_tests {
namespace {

using ovdl::ReadOutcome;
using testing::HasSubstr;

void expectRejected(const Buffers& buffers, const std::string& reason)
{
    const auto outcome = decode(buffers);
    EXPECT_EQ(outcome.kind, ReadOutcome::kRejected);
    EXPECT_EQ(outcome.document, nullptr);
    EXPECT_THAT(outcome.reason, HasSubstr(reason));
}

// Whatever the bytes are: an outcome, with a reason if it is a rejection.
void readAnything(const Buffers& buffers)
{
    const auto outcome = decode(buffers);
    if (outcome.kind == ReadOutcome::kRead)
        walk(*outcome.document);
    else
        ASSERT_FALSE(outcome.reason.empty());
}

// Each stream of a document in turn.
template <class Work>
void forEachStream(Buffers& buffers, Work work)
{
    work(buffers.document);
    for (auto& [key, bytes] : buffers.tessellations)
        work(bytes);
}

// ---------------------------------------------------------------------------------------- damage

// Behind the last text of a buffer up to three bytes of filling may stand, which nobody misses.
std::size_t withoutFilling(const Buffer& stream)
{
    std::size_t size = stream.size();
    while (size + 3 > stream.size() && stream[size - 1] == 0)
        --size;
    return size;
}

TEST(Damage, EveryPrefixOfEveryStreamIsRejected)
{
    Buffers buffers = everything().buffers();
    forEachStream(buffers, [&](Buffer& stream) {
        const Buffer whole = stream;
        for (std::size_t length = 0; length < withoutFilling(whole); ++length) {
            stream = Buffer(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length));
            const auto outcome = decode(buffers);
            ASSERT_EQ(outcome.kind, ReadOutcome::kRejected) << length;
            ASSERT_FALSE(outcome.reason.empty());
        }
        stream = whole;
    });
}

class DamagedBytes : public testing::TestWithParam<int> {};

TEST_P(DamagedBytes, HaveAnOutcome)
{
    Buffers buffers = everything().buffers();
    forEachStream(buffers, [&](Buffer& stream) {
        for (unsigned char& byte : stream) {
            const unsigned char kept = byte;
            byte = static_cast<unsigned char>(byte ^ GetParam());
            readAnything(buffers);
            byte = kept;
        }
    });
}

INSTANTIATE_TEST_SUITE_P(Flips, DamagedBytes, testing::Values(1, 2, 4, 16, 128, 255));

TEST(Damage, EveryWordOfAllOnesHasAnOutcome)
{
    Buffers buffers = everything().buffers();
    forEachStream(buffers, [&](Buffer& stream) {
        for (std::size_t at = 0; at + 4 <= stream.size(); at += 4)
            for (const unsigned char fill : {0xFF, 0x7F, 0x00}) {
                const Buffer kept = stream;
                std::fill_n(stream.begin() + static_cast<std::ptrdiff_t>(at), 4, fill);
                readAnything(buffers);
                stream = kept;
            }
    });
}

TEST(Damage, EachMissingStreamIsARejection)
{
    const Buffers whole = everything().buffers();
    for (const auto& [key, bytes] : whole.tessellations) {
        Buffers buffers = whole;
        buffers.tessellations.erase(key);
        expectRejected(buffers, "missing");
    }
}

TEST(Damage, AStreamOfTheOtherKindIsARejection)
{
    const Buffers whole = everything().buffers();
    Buffers buffers = whole;
    buffers.document = whole.tessellations.at({0, 0});
    expectRejected(buffers, "damaged");
    buffers = whole;
    buffers.tessellations.at({1, 0}) = whole.document;
    expectRejected(buffers, "tessellation 1");
}

TEST(Damage, AnIdentifierOfAnotherFormatIsARejection)
{
    const Draft draft = trianglePart();
    Buffers buffers = draft.buffers();
    buffers.document = packed(draft.document, "ABCD");
    expectRejected(buffers, "damaged");
}

TEST(Damage, ABufferOfTwoGigabytesIsNotLookedAt)
{
    class Huge : public ovdl::DocumentStreams {
    public:
        ovdl::DocumentHeader header() override { return {}; }
        // Nothing is there: a look at one of the bytes would end the process.
        ovdl::Bytes document() override
        {
            return {reinterpret_cast<const unsigned char*>(std::uintptr_t{8}), std::size_t{1} << 31};
        }
        ovdl::Bytes tessellation(std::uint32_t, std::uint32_t, std::uint32_t) override { return {}; }
        std::uint64_t size() const override { return std::uint64_t{1} << 31; }
    };
    EXPECT_THAT(
        [] {
            Context context;
            return ovdl::decodeDocument(std::make_unique<Huge>(), context).reason;
        }(),
        HasSubstr("too large"));
}

// -------------------------------------------------------------------------------------- nonsense

struct Nonsense {
    const char* name;
    std::function<void(Draft&)> make;
    const char* reason;
};

fb::TessellationT& piece(Draft& draft, std::size_t tessellation = 0, std::size_t number = 0)
{
    return *draft.tessellations[tessellation][number];
}

// A change to the first face.
std::function<void(Draft&)> face(std::function<void(FaceFields&)> change)
{
    return [change](Draft& draft) { editFace(piece(draft), 0, change); };
}

const Nonsense kNonsense[] = {
    {"no_part_and_no_assembly", [](Draft& d) { d.document.assembly.reset(); }, "neither"},
    {"a_text_that_is_not_there", [](Draft& d) { d.document.components[0]->name = 1000; }, "text 1000"},
    {"the_largest_text_number", [](Draft& d) { d.document.components[0]->name = 0xFFFFFFFF; }, "text"},
    {"a_text_of_broken_bytes", [](Draft& d) { d.document.components[0]->name = d.text("\xC3"); },
     "encoded"},
    {"a_reason_of_broken_bytes", [](Draft& d) { d.document.reason = d.text("\xFF"); }, "encoded"},
    {"a_reason_that_is_not_there", [](Draft& d) { d.document.reason = 999; }, "text 999"},
    {"a_texture_that_is_not_there", [](Draft& d) { d.document.materials[0]->textureProperties = 1; },
     "textures"},
    {"a_texture_below_null", [](Draft& d) { d.document.materials[0]->textureProperties = -2; }, "textures"},
    {"a_render_appearance_that_is_not_there", [](Draft& d) { d.document.materials[0]->rvAppearance = 1; },
     "renderAppearances"},
    {"a_material_that_is_not_there", [](Draft& d) { d.document.visuals[0]->materialProps = 0x7FFFFFFF; },
     "materials"},
    {"a_visual_that_is_not_there", [](Draft& d) { d.document.components[0]->vizProps = 1; }, "visuals"},
    {"a_tessellation_that_is_not_there", [](Draft& d) { d.document.components[0]->tessData = 2; },
     "tessellations"},
    {"a_decal_that_is_not_there", [](Draft& d) { d.document.components[0]->decals = {1}; }, "decals"},
    {"a_component_that_is_not_there", [](Draft& d) { d.assembly().components.push_back(2); }, "components"},
    {"a_component_of_a_configuration_that_is_not_there",
     [](Draft& d) { d.document.configurations[0]->components = {-2}; }, "components"},
    {"a_light_that_is_not_there", [](Draft& d) { d.assembly().lightData = {4}; }, "lights"},
    {"a_scene_that_is_not_there", [](Draft& d) { d.assembly().sceneHolder = 1; }, "scenes"},
    {"scene_data_that_are_not_there", [](Draft& d) { d.document.scenes[0]->sceneData = 1; }, "sceneData"},
    {"a_wall_that_is_not_there",
     [](Draft& d) {
         d.document.sceneData[0]->walls = {0, 1};
     },
     "walls"},
    {"walls_without_a_number", [](Draft& d) { d.document.sceneData[0]->walls = {0}; }, "walls"},
    {"a_wall_twice",
     [](Draft& d) {
         d.document.sceneData[0]->walls = {0, 0, 0, -1};
     },
     "twice"},
    {"more_keys_than_images", [](Draft& d) { d.document.sceneData[0]->backgroundImageKeys = {0}; },
     "images"},
    {"images_without_keys", [](Draft& d) { d.document.sceneData[0]->backgroundEnvImageKeys = {}; },
     "images"},
    {"an_image_twice",
     [](Draft& d) {
         d.document.sceneData[0]->backgroundImageKeys = {1, 1};
     },
     "twice"},
    {"a_decals_texture_that_is_not_there", [](Draft& d) { d.document.decals[0]->textureProperties = 1; },
     "textures"},
    {"a_decals_material_that_is_not_there", [](Draft& d) { d.document.decals[0]->materialProperties = 7; },
     "materials"},
    {"face_mappings_that_are_not_there",
     [](Draft& d) { *d.document.decals[0]->faceMappings = fb::Range(1, 2); }, "faceMappings"},
    {"a_run_that_overflows",
     [](Draft& d) { *d.document.decals[0]->faceMappings = fb::Range(0xFFFFFFFF, 2); }, "faceMappings"},
    {"two_configurations_of_one_name",
     [](Draft& d) {
         d.document.configurations.push_back(
             std::make_unique<fb::ConfigurationT>(*d.document.configurations[0]));
     },
     "one name"},
    {"extras_past_the_known_bits", [](Draft& d) { d.assembly().extras = 16; }, "extras"},
    {"an_extras_record_without_its_block", [](Draft& d) { d.assembly().extras = 2; }, "extras"},
    {"an_extras_pointer_without_its_record", [](Draft& d) { d.assembly().extras = 5; }, "extras"},
    {"a_tessellation_without_pieces", [](Draft& d) { d.document.tessellations[1] = {0}; }, "no pieces"},
    {"more_pieces_than_streams", [](Draft& d) { d.document.tessellations[1] = {2}; }, "missing"},
    {"four_billion_pieces", [](Draft& d) { d.document.tessellations[1] = {0xFFFFFFFF}; }, "missing"},
    // The body then refers to a face of the piece that is left out.
    {"fewer_pieces_than_streams", [](Draft& d) { d.document.tessellations[0] = {1}; }, "faces"},
    {"bodies_in_a_second_piece", [](Draft& d) { piece(d, 0, 1).bodies = {-1}; }, "first"},
    {"body_records_in_a_second_piece",
     [](Draft& d) { piece(d, 0, 1).bodyRecords.push_back(std::make_unique<fb::BodyT>()); }, "first"},
    {"appearances_in_a_second_piece",
     [](Draft& d) {
         piece(d, 0, 1).modelVizProps = {0, 0};
     },
     "first"},
    {"decals_in_a_second_piece",
     [](Draft& d) {
         piece(d, 0, 1).decalsByConfig = {0, 0};
     },
     "first"},
    {"prop_infos_in_a_second_piece", [](Draft& d) { piece(d, 0, 1).propInfos.emplace_back(1); }, "first"},
    {"a_body_that_is_not_there", [](Draft& d) { piece(d).bodies = {1}; }, "bodyRecords"},
    {"a_face_that_is_not_there", [](Draft& d) { piece(d).bodyRecords[0]->faces = {2}; }, "faces"},
    {"a_face_below_null", [](Draft& d) { piece(d).bodyRecords[0]->faces = {-2}; }, "faces"},
    {"a_bodys_appearance_that_is_not_there",
     [](Draft& d) {
         piece(d).bodyRecords[0]->bodyVizProps = {0, 1};
     },
     "bodyVizProps"},
    {"a_bodys_appearance_without_a_number", [](Draft& d) { piece(d).bodyRecords[0]->bodyVizProps = {0}; },
     "bodyVizProps"},
    {"a_bodys_configuration_twice",
     [](Draft& d) {
         piece(d).bodyRecords[0]->bodyVizProps = {3, 0, 3, 0};
     },
     "twice"},
    {"a_prop_info_that_is_not_there",
     [](Draft& d) {
         piece(d).bodyRecords[0]->bodyPropInfos = {0, 2};
     },
     "bodyPropInfos"},
    {"a_parts_appearance_that_is_not_there",
     [](Draft& d) {
         piece(d).modelVizProps = {0, 5};
     },
     "modelVizProps"},
    {"a_parts_configuration_twice",
     [](Draft& d) {
         piece(d).modelVizProps = {1, 0, 1, 0};
     },
     "twice"},
    {"a_run_of_decals_without_its_length", [](Draft& d) { piece(d).decalsByConfig = {0}; }, "runs"},
    {"a_run_of_decals_past_the_end",
     [](Draft& d) {
         piece(d).decalsByConfig = {0, 2, 0};
     },
     "runs"},
    {"a_run_of_decals_of_negative_length",
     [](Draft& d) {
         piece(d).decalsByConfig = {0, -1, 0};
     },
     "runs"},
    {"the_longest_run_of_decals",
     [](Draft& d) {
         piece(d).decalsByConfig = {0, 0x7FFFFFFF, 0};
     },
     "runs"},
    {"a_decal_of_a_part_that_is_not_there",
     [](Draft& d) {
         piece(d).decalsByConfig = {0, 1, 1};
     },
     "decals"},
    {"two_runs_of_decals_of_one_configuration",
     [](Draft& d) { piece(d).decalsByConfig = {0, 1, 0, 0, 1, 0}; }, "twice"},
    {"more_strips_than_lengths", face([](FaceFields& f) { f.stripCount = 2; }), "2 strips"},
    {"the_most_strips", face([](FaceFields& f) { f.stripCount = 0x7FFFFFFF; }), "strips"},
    {"less_than_no_strips", face([](FaceFields& f) { f.stripCount = -1; }), "-1 strips"},
    {"a_strip_of_less_than_no_vertices", [](Draft& d) { piece(d).stripLengths[0] = -1; }, "less than no"},
    {"a_strip_longer_than_the_points", [](Draft& d) { piece(d).stripLengths[0] = 5; }, "more vertices"},
    {"the_longest_strip", [](Draft& d) { piece(d).stripLengths[0] = 0x7FFFFFFF; }, "more vertices"},
    {"points_of_less_than_a_vertex", face([](FaceFields& f) {
         f.points = {0, 11};
     }),
     "more vertices"},
    {"fewer_normals_than_points", face([](FaceFields& f) {
         f.normals = {0, 11};
     }),
     "more vertices"},
    {"fewer_uvs_than_points", face([](FaceFields& f) {
         f.uvs = {0, 7};
     }),
     "more vertices"},
    {"strip_lengths_past_the_vector", face([](FaceFields& f) {
         f.stripLengths = {1, 1};
     }),
     "stripLengths"},
    {"points_past_the_vector", face([](FaceFields& f) {
         f.points = {1, 12};
     }),
     "points"},
    {"points_far_past_the_vector", face([](FaceFields& f) {
         f.points = {0xFFFFFFFF, 0xFFFFFFFF};
     }),
     "points"},
    {"normals_past_the_vector", face([](FaceFields& f) {
         f.normals = {0, 13};
     }),
     "normals"},
    {"uvs_past_the_vector", face([](FaceFields& f) {
         f.uvs = {8, 1};
     }),
     "uvs"},
    {"a_run_of_uvs_that_overflows_to_the_vector", face([](FaceFields& f) {
         f.uvs = {0xFFFFFFFF, 9};
     }),
     "uvs"},
    {"a_faces_appearances_past_the_vector", face([](FaceFields& f) {
         f.faceVizProps = {0, 3};
     }),
     "faceVizProps"},
    {"a_faces_modes_past_the_vector", face([](FaceFields& f) {
         f.vizPropModes = {1, 1};
     }),
     "vizPropModes"},
    {"a_faces_appearance_that_is_not_there",
     [](Draft& d) {
         piece(d).faceVizProps[0] = {0, 1};
     },
     "visuals"},
    {"a_faces_configuration_twice",
     [](Draft& d) {
         piece(d).faceVizProps[1] = {0, 0};
     },
     "twice"},
    {"two_modes_of_one_configuration",
     [](Draft& d) {
         piece(d).vizPropModes.emplace_back(0, 1);
         face([](FaceFields& f) { f.vizPropModes = {0, 2}; })(d);
     },
     "twice"},
    {"two_faces_of_the_same_points",
     [](Draft& d) {
         piece(d).faces.push_back(piece(d).faces[0]);
         editFace(piece(d), 1, [](FaceFields& f) {
             f.stripCount = 0;
             f.stripLengths = f.normals = f.uvs = f.faceVizProps = f.vizPropModes = {0, 0};
         });
     },
     "share runs of points"},
};

class SchemaValidNonsense : public testing::TestWithParam<Nonsense> {};

TEST_P(SchemaValidNonsense, IsRejected)
{
    Draft draft = everything();
    GetParam().make(draft);
    expectRejected(draft.buffers(), GetParam().reason);
}

INSTANTIATE_TEST_SUITE_P(Rows, SchemaValidNonsense, testing::ValuesIn(kNonsense),
                         [](const auto& row) { return row.param.name; });

TEST(Strips, OfUnusedLengthsDoNotCount)
{
    Draft draft = trianglePart();
    piece(draft).stripLengths.push_back(-5);
    editFace(piece(draft), 0, [](FaceFields& f) { f.stripLengths = {0, 2}; });
    const Buffers buffers = draft.buffers();
    EXPECT_EQ(decode(buffers).kind, ReadOutcome::kRead);
}

TEST(TextureCoordinates, ThatAreNotUsedMayBeMissing)
{
    Draft draft = everything();
    editFace(piece(draft), 0, [](FaceFields& f) {
        f.hasUVs = 0;
        f.uvs = {0, 0};
    });
    const Buffers buffers = draft.buffers();
    EXPECT_EQ(decode(buffers).kind, ReadOutcome::kRead);
}

// ------------------------------------------------------------------------- more than the bytes justify

// Ends within a time that has to do with the size of the document, not with what it claims.
ReadOutcome decodeQuickly(const Buffers& buffers)
{
    using Clock = std::chrono::steady_clock;
    const auto start = Clock::now();
    auto outcome = decode(buffers);
    EXPECT_LT(std::chrono::duration<double>(Clock::now() - start).count(), 10.0);
    return outcome;
}

void expectTooMuch(const Buffers& buffers, const char* reason = "justify")
{
    EXPECT_LT(buffers.size(), std::size_t{8} << 20);
    const auto outcome = decodeQuickly(buffers);
    EXPECT_EQ(outcome.kind, ReadOutcome::kRejected);
    EXPECT_THAT(outcome.reason, HasSubstr(reason));
}

constexpr const char* kModel = "proportion";

// A document whose vectors are shared, which object by object cannot be made.
class SharedVectors {
public:
    template <class T>
    flatbuffers::Offset<flatbuffers::Vector<T>> zeros(std::size_t count)
    {
        return builder.CreateVector(std::vector<T>(count));
    }

    template <class Table>
    flatbuffers::Offset<flatbuffers::Vector<flatbuffers::Offset<Table>>> repeat(
        flatbuffers::Offset<Table> one, std::size_t count)
    {
        return builder.CreateVector(std::vector<flatbuffers::Offset<Table>>(count, one));
    }

    template <class Table>
    Buffer finish(flatbuffers::Offset<Table> root, const char* identifier)
    {
        builder.Finish(root, identifier);
        return bytesOf(builder);
    }

    flatbuffers::FlatBufferBuilder builder;
};

// Many tables, each of its own, of the kind that `make` makes.
template <class Table, class Make>
flatbuffers::Offset<flatbuffers::Vector<flatbuffers::Offset<Table>>> many(SharedVectors& shared,
                                                                          std::size_t count, Make make)
{
    std::vector<flatbuffers::Offset<Table>> tables;
    for (std::size_t i = 0; i < count; ++i)
        tables.push_back(make());
    return shared.builder.CreateVector(tables);
}

Buffers documentOnly(Buffer document)
{
    Buffers buffers;
    buffers.document = std::move(document);
    return buffers;
}

TEST(SharedOffsets, ToOneTableAreFollowedOnceEach)
{
    // Numbers in tables cannot lead round in a circle: a record only refers to records of other kinds. What
    // is left is one table under many numbers.
    SharedVectors shared;
    const auto visual = fb::CreateVisualProperties(shared.builder);
    const auto visuals = shared.repeat(visual, 100000);
    fb::DocumentBuilder document(shared.builder);
    document.add_visuals(visuals);
    expectTooMuch(documentOnly(shared.finish(document.Finish(), ovdl::kDocumentIdentifier)), "damaged");
}

TEST(SharedOffsets, ToTheRootAreNoEndlessWay)
{
    SharedVectors shared;
    auto part = fb::CreatePart(shared.builder);
    fb::DocumentBuilder document(shared.builder);
    document.add_part(part);
    const Buffer sound = shared.finish(document.Finish(), ovdl::kDocumentIdentifier);
    const Buffers whole = documentOnly(sound);
    ASSERT_EQ(decode(whole).kind, ReadOutcome::kRead);
    // Every word in turn becomes every distance within the buffer, the one to the root among them.
    for (std::size_t at = 0; at + 4 <= sound.size(); at += 4)
        for (std::size_t distance = 0; distance < sound.size(); ++distance) {
            Buffers buffers = whole;
            buffers.document[at] = static_cast<unsigned char>(distance);
            readAnything(buffers);
        }
}

TEST(Amplification, ByOneTextForManyNames)
{
    SharedVectors shared;
    const auto text = shared.builder.CreateString(std::string(1 << 20, 'a'));
    const auto texts = shared.repeat(text, 1);
    const auto components = many<fb::Component>(shared, 10000, [&] {
        fb::ComponentBuilder component(shared.builder);
        component.add_name(1);
        return component.Finish();
    });
    fb::DocumentBuilder document(shared.builder);
    document.add_texts(texts);
    document.add_components(components);
    expectTooMuch(documentOnly(shared.finish(document.Finish(), ovdl::kDocumentIdentifier)));
}

TEST(Amplification, ByOneVectorForManyConfigurations)
{
    SharedVectors shared;
    std::vector<flatbuffers::Offset<flatbuffers::String>> names;
    for (int i = 0; i < 20000; ++i)
        names.push_back(shared.builder.CreateString(std::to_string(i)));
    const auto texts = shared.builder.CreateVector(names);
    const auto component = shared.repeat(fb::CreateComponent(shared.builder), 1);
    const auto numbers = shared.zeros<std::int32_t>(100000);
    std::uint32_t name = 0;
    const auto configurations = many<fb::Configuration>(shared, 20000, [&] {
        fb::ConfigurationBuilder configuration(shared.builder);
        configuration.add_name(++name);
        configuration.add_components(numbers);
        return configuration.Finish();
    });
    fb::DocumentBuilder document(shared.builder);
    document.add_texts(texts);
    document.add_components(component);
    document.add_configurations(configurations);
    expectTooMuch(documentOnly(shared.finish(document.Finish(), ovdl::kDocumentIdentifier)));
}

TEST(Amplification, ByOneVectorForTheDecalsOfManyComponents)
{
    SharedVectors shared;
    const auto numbers = shared.builder.CreateVector(std::vector<std::int32_t>(100000, -1));
    const auto components = many<fb::Component>(shared, 20000, [&] {
        fb::ComponentBuilder component(shared.builder);
        component.add_decals(numbers);
        return component.Finish();
    });
    fb::DocumentBuilder document(shared.builder);
    document.add_components(components);
    expectTooMuch(documentOnly(shared.finish(document.Finish(), ovdl::kDocumentIdentifier)));
}

TEST(Amplification, ByOneVectorForTheColoursOfManyDecals)
{
    SharedVectors shared;
    const auto colours = shared.zeros<std::uint32_t>(100000);
    const auto decals = many<fb::Decal>(shared, 10000, [&] {
        fb::DecalBuilder decal(shared.builder);
        decal.add_colorMask(colours);
        return decal.Finish();
    });
    fb::DocumentBuilder document(shared.builder);
    document.add_decals(decals);
    expectTooMuch(documentOnly(shared.finish(document.Finish(), ovdl::kDocumentIdentifier)));
}

TEST(Amplification, ByOneRunForTheFaceMappingsOfManyDecals)
{
    Draft draft = trianglePart();
    draft.document.faceMappings.resize(100000);
    for (int i = 0; i < 1000; ++i) {
        auto decal = std::make_unique<fb::DecalT>();
        decal->faceMappings = std::make_unique<fb::Range>(0, 100000);
        draft.document.decals.push_back(std::move(decal));
    }
    expectTooMuch(draft.buffers());
}

TEST(Amplification, ByOneVectorForTheImagesOfManyScenes)
{
    SharedVectors shared;
    std::vector<std::int32_t> ascending(50000);
    for (std::size_t i = 0; i < ascending.size(); ++i)
        ascending[i] = static_cast<std::int32_t>(i);
    const auto keys = shared.builder.CreateVector(ascending);
    const auto names = shared.zeros<std::uint32_t>(50000);
    const auto scenes = many<fb::SceneData>(shared, 10000, [&] {
        fb::SceneDataBuilder scene(shared.builder);
        scene.add_backgroundImageKeys(keys);
        scene.add_backgroundImages(names);
        return scene.Finish();
    });
    fb::DocumentBuilder document(shared.builder);
    document.add_sceneData(scenes);
    expectTooMuch(documentOnly(shared.finish(document.Finish(), ovdl::kDocumentIdentifier)));
}

TEST(Amplification, ByOneVectorForTheFacesOfManyBodies)
{
    SharedVectors shared;
    const auto numbers = shared.builder.CreateVector(std::vector<std::int32_t>(100000, -1));
    const auto bodies = many<fb::Body>(shared, 20000, [&] {
        fb::BodyBuilder body(shared.builder);
        body.add_faces(numbers);
        return body.Finish();
    });
    fb::TessellationBuilder tessellation(shared.builder);
    tessellation.add_bodyRecords(bodies);
    Buffers buffers = trianglePart().buffers();
    buffers.tessellations[{0, 0}] = shared.finish(tessellation.Finish(), ovdl::kTessellationIdentifier);
    expectTooMuch(buffers);
}

// A part of one face of so many vertices.
Draft largePart(std::uint32_t vertices)
{
    Draft draft;
    fb::TessellationT& tessellation = draft.addTessellation();
    addBody(tessellation, {addFace(tessellation, vertices)});
    return draft;
}

TEST(Amplification, ByOneFaceNamedManyTimes)
{
    Draft draft = largePart(10000);
    piece(draft).bodyRecords[0]->faces.assign(1000, 0);
    draft.part().tessData = 0;
    expectTooMuch(draft.buffers(), kModel);
}

TEST(Amplification, ByOneBodyNamedManyTimes)
{
    Draft draft = largePart(10000);
    piece(draft).bodies.assign(1000, 0);
    draft.part().tessData = 0;
    expectTooMuch(draft.buffers(), kModel);
}

// So many components of one part, each in a configuration of its own or all in one.
Draft manyComponents(std::uint32_t vertices, int count, bool apart)
{
    Draft draft = largePart(vertices);
    for (int i = 0; i < count; ++i) {
        draft.addComponent("part-" + std::to_string(i + 1) + "@top", 0).configIndex = apart ? i : 4;
        draft.assembly().components.push_back(i);
    }
    return draft;
}

TEST(Amplification, ByOnePartInManyConfigurations)
{
    expectTooMuch(manyComponents(10000, 1000, true).buffers(), kModel);
}

TEST(Sharing, OfOnePartByManyComponentsIsNoAmplification)
{
    const Buffers buffers = manyComponents(10000, 1000, false).buffers();
    EXPECT_EQ(decodeQuickly(buffers).kind, ReadOutcome::kRead);
}

TEST(Sharing, OfBodiesThatAreShownInOneConfigurationEachIsNoAmplification)
{
    Draft draft;
    fb::TessellationT& tessellation = draft.addTessellation();
    tessellation.propInfos = {fb::BodyPropInfo(0), fb::BodyPropInfo(1)};
    for (std::int32_t i = 0; i < 200; ++i) {
        fb::BodyT& body = addBody(tessellation, {addFace(tessellation, 2000)});
        for (std::int32_t config = 0; config < 200; ++config)
            body.bodyPropInfos.insert(body.bodyPropInfos.end(), {config, config == i ? 1 : 0});
        draft.addComponent("part-" + std::to_string(i + 1) + "@top", 0).configIndex = i;
        draft.assembly().components.push_back(i);
    }
    const Buffers buffers = draft.buffers();
    const auto outcome = decodeQuickly(buffers);
    EXPECT_EQ(outcome.kind, ReadOutcome::kRead) << outcome.reason;
}

TEST(Sharing, OfOneConfigurationOfAPartByManyArraysIsNoAmplification)
{
    Draft draft = manyComponents(10000, 50, false);
    for (int i = 0; i < 2000; ++i) {
        auto configuration = std::make_unique<fb::ConfigurationT>();
        configuration->name = draft.text(std::to_string(i));
        configuration->components = draft.assembly().components;
        draft.document.configurations.push_back(std::move(configuration));
    }
    const Buffers buffers = draft.buffers();
    const auto outcome = decodeQuickly(buffers);
    EXPECT_EQ(outcome.kind, ReadOutcome::kRead) << outcome.reason;
}

TEST(Amplification, ByManyConfigurationsOfManyParts)
{
    // Each array alone is small; that they are many is told by their own bytes.
    Draft draft = largePart(3);
    piece(draft).bodies.assign(200000, -1);
    for (int i = 0; i < 5000; ++i) {
        draft.document.components.push_back(std::make_unique<fb::ComponentT>());
        draft.document.components.back()->tessData = 0;
        draft.document.components.back()->configIndex = i;
        auto configuration = std::make_unique<fb::ConfigurationT>();
        configuration->name = draft.text(std::to_string(i));
        configuration->components = {i};
        draft.document.configurations.push_back(std::move(configuration));
    }
    draft.assembly();
    expectTooMuch(draft.buffers());
}

TEST(Amplification, ByAComponentNamedManyTimes)
{
    Draft draft = manyComponents(3, 1, false);
    draft.document.components[0]->configName = draft.text(std::string(100000, 'x'));
    draft.assembly().components.assign(100000, 0);
    expectTooMuch(draft.buffers(), kModel);
}

TEST(Amplification, ByAPathOfManyTokens)
{
    Draft draft = largePart(3);
    std::string path;
    for (int i = 0; i < 200000; ++i)
        path += "a/";
    draft.addComponent(path, 0);
    draft.assembly().components = {0};
    expectTooMuch(draft.buffers(), kModel);
}

TEST(Sharing, OfTheBeginningsOfPathsIsNoAmplification)
{
    Draft draft = largePart(3);
    std::string path;
    for (int i = 0; i < 40; ++i)
        path += "assembly-" + std::to_string(i) + "@above/";
    for (int i = 0; i < 20000; ++i) {
        draft.addComponent(path + "part-" + std::to_string(i) + "@assembly", 0);
        draft.assembly().components.push_back(i);
    }
    const Buffers buffers = draft.buffers();
    const auto outcome = decodeQuickly(buffers);
    EXPECT_EQ(outcome.kind, ReadOutcome::kRead) << outcome.reason;
}

TEST(Amplification, ByOneLongTextInTheAppearanceOfManyFaces)
{
    Draft draft;
    fb::TessellationT& tessellation = draft.addTessellation();
    draft.document.materials.push_back(std::make_unique<fb::MaterialT>());
    draft.document.materials[0]->userName = draft.text(std::string(100000, 'x'));
    draft.document.visuals.push_back(std::make_unique<fb::VisualPropertiesT>());
    draft.document.visuals[0]->materialProps = 0;
    std::vector<std::int32_t> faces;
    for (std::uint32_t i = 0; i < 10000; ++i) {
        faces.push_back(addFace(tessellation, 3));
        tessellation.faceVizProps.emplace_back(0, 0);
        editFace(tessellation, i, [i](FaceFields& f) { f.faceVizProps = {i, 1}; });
    }
    addBody(tessellation, faces);
    draft.part().tessData = 0;
    expectTooMuch(draft.buffers(), kModel);
}

TEST(Amplification, ByOneDecalOfManyFacesOnManyComponents)
{
    Draft draft = manyComponents(3, 1000, false);
    draft.document.faceMappings.resize(10000);
    draft.document.decals.push_back(std::make_unique<fb::DecalT>());
    draft.document.decals[0]->faceMappings = std::make_unique<fb::Range>(0, 10000);
    for (auto& component : draft.document.components)
        component->decals = {0};
    expectTooMuch(draft.buffers(), kModel);
}

void addConfiguration(Draft& draft, int number, std::vector<std::int32_t> components)
{
    auto configuration = std::make_unique<fb::ConfigurationT>();
    configuration->name = draft.text(std::to_string(number));
    configuration->components = std::move(components);
    draft.document.configurations.push_back(std::move(configuration));
}

void expectReadQuickly(const Draft& draft)
{
    const Buffers buffers = draft.buffers();
    const auto outcome = decodeQuickly(buffers);
    EXPECT_EQ(outcome.kind, ReadOutcome::kRead) << outcome.reason;
}

// What a part has for all configurations is not walked for each of them.
TEST(Amplification, ByTheDecalsOfAPartInManyConfigurations)
{
    Draft runs = manyComponents(3, 8000, true);
    for (std::int32_t i = 0; i < 100000; ++i)
        piece(runs).decalsByConfig.insert(piece(runs).decalsByConfig.end(), {i, 0});
    expectReadQuickly(runs);

    Draft list = manyComponents(3, 1000, true);
    list.assembly().components.clear();
    piece(list).decalsByConfig = {0, 500000};
    piece(list).decalsByConfig.resize(500002, -1);
    for (std::int32_t i = 0; i < 1000; ++i)
        addConfiguration(list, i, {i});
    expectReadQuickly(list);
}

// As the library looks them up: no configuration has the only list.
TEST(Amplification, ByTheDecalsOfAPartCountsTheListInUse)
{
    Draft draft = manyComponents(3, 1, true);
    draft.document.faceMappings.resize(10000);
    draft.document.decals.push_back(std::make_unique<fb::DecalT>());
    draft.document.decals[0]->faceMappings = std::make_unique<fb::Range>(0, 10000);
    piece(draft).decalsByConfig = {7, 100};
    piece(draft).decalsByConfig.resize(102, 0);
    std::int32_t& configuration = draft.document.components[0]->configIndex;
    expectReadQuickly(draft);
    for (const std::int32_t inUse : {7, -1}) {
        configuration = inUse;
        expectTooMuch(draft.buffers(), kModel);
    }
    piece(draft).decalsByConfig.insert(piece(draft).decalsByConfig.end(), {8, 0});
    expectReadQuickly(draft);
}

// A hash table of this many entries has that many buckets in one well-known standard library.
TEST(Amplification, ByConfigurationsThatCollide)
{
    Draft draft = manyComponents(3, 50000, true);
    for (std::uint32_t i = 0; i < 50000; ++i)
        draft.document.components[i]->configIndex = static_cast<std::int32_t>(i * 85229);
    for (int i = 0; i < 20; ++i)
        addConfiguration(draft, i, draft.assembly().components);
    expectReadQuickly(draft);
}

// Each face of a hidden body is asked for.
TEST(Amplification, ByABodyHiddenInManyConfigurations)
{
    Draft draft = manyComponents(3, 1000, true);
    fb::TessellationT& tessellation = piece(draft);
    tessellation.propInfos = {fb::BodyPropInfo(0)};
    tessellation.bodyRecords[0]->faces.assign(20000, 0);
    for (std::int32_t i = 0; i < 1000; ++i)
        tessellation.bodyRecords[0]->bodyPropInfos.insert(tessellation.bodyRecords[0]->bodyPropInfos.end(),
                                                          {i, 0});
    expectTooMuch(draft.buffers(), kModel);
}

// All bodies are looked at for each component that has decals.
TEST(Amplification, ByManyBodiesUnderManyComponentsWithDecals)
{
    Draft draft = manyComponents(3, 20000, false);
    piece(draft).bodies.assign(20000, -1);
    expectReadQuickly(draft);
    for (auto& component : draft.document.components)
        component->decals = {-1};
    expectTooMuch(draft.buffers(), kModel);
}

TEST(Amplification, ByOneLongPathInManyConfigurations)
{
    Draft draft = largePart(3);
    draft.addComponent(std::string(4 << 20, 'a') + "/b", 0);
    draft.assembly();
    for (int i = 0; i < 200000; ++i)
        addConfiguration(draft, i, {0});
    expectReadQuickly(draft);
}

TEST(Amplification, ByOneLongPathBehindOthersInManyConfigurations)
{
    Draft draft = largePart(3);
    const std::string above(4 << 20, 'a');
    for (const char* last : {"/a/b", "/b/b", "/c/b"})
        draft.addComponent(above + last, 0);
    draft.assembly();
    for (int i = 0; i < 200000; ++i)
        addConfiguration(draft, i, {i % 2 + 1, 0});
    const Buffers buffers = draft.buffers();
    EXPECT_EQ(decodeQuickly(buffers).kind, ReadOutcome::kRejected);
}

TEST(Amplification, IsJustifiedByTheSizeOfALargerDocument)
{
    Buffers buffers = manyComponents(10000, 1000, true).buffers();
    buffers.moreSize = std::uint64_t{1} << 30;
    EXPECT_EQ(decodeQuickly(buffers).kind, ReadOutcome::kRead);
}

}  // namespace
}  // namespace ovdl_tests
