#include "raylume/load/TessellationCapture.h"

#include <cmath>
#include <cstring>
#include <limits>
#include <random>

#include "raylume/scene/dlDecal.h"
#include "tests/load/LoadFixture.h"

namespace {

using build::Body;
using build::Face;
using build::Part;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

constexpr int kConfiguration = 3;

std::vector<float> floats(const float* values, int count)
{
    return {values, values + count};
}

std::vector<std::int32_t> integers(const std::int32_t* values, int count)
{
    return {values, values + count};
}

bool sameBits(const float* left, const float* right, std::size_t count)
{
    return count == 0 || std::memcmp(left, right, count * sizeof(float)) == 0;
}

void expectUnset(const dlBBox& box)
{
    for (int axis = 0; axis < 3; ++axis) {
        EXPECT_EQ(box.min[axis], std::numeric_limits<float>::max());
        EXPECT_EQ(box.max[axis], -std::numeric_limits<float>::max());
    }
}

class TessellationCapture : public LoadFixture {
protected:
    int capture(Part& source) { return capturePart(part, source, kConfiguration); }
    void capture(Body& source) { captureBody(source, body, part, kConfiguration); }
    void capture(Face& source) { captureFace(source, face, body, part, kConfiguration); }

    dlPart part;
    dlBody body;
    dlFace face;
};

TEST_F(TessellationCapture, LeavesAPartWithoutBodiesAtItsDefaultsAndAsksNoMore)
{
    build::Visual visual(L"active", 1, 0);
    Part source;
    source.modelVizProps[kConfiguration] = &visual;
    EXPECT_EQ(capture(source), 0);
    EXPECT_EQ(part.bodyCount, 0);
    EXPECT_EQ(part.bodies, nullptr);
    EXPECT_EQ(part.material.visualName, "");
    EXPECT_THAT(lines(), ElementsAre("getNumBodies()"));
}

TEST_F(TessellationCapture, TakesANegativeNumberOfBodiesAsNone)
{
    build::TrianglePart source;
    source.part.tellsOther = true;
    source.part.told = -1;
    EXPECT_EQ(capture(source.part), 0);
    EXPECT_EQ(part.bodyCount, 0);
    EXPECT_EQ(part.bodies, nullptr);
}

TEST_F(TessellationCapture, CapturesBodiesInOrder)
{
    Face first({3});
    Face second({4});
    Body one({&first});
    Body two({&second});
    Part source({&one, &two});
    EXPECT_EQ(capture(source), 1);
    ASSERT_EQ(part.bodyCount, 2);
    EXPECT_EQ(part.bodies[0].faces[0].vertexCount, 3);
    EXPECT_EQ(part.bodies[1].faces[0].vertexCount, 4);
}

TEST_F(TessellationCapture, AsksTheReaderInItsOrderAndNoMoreThanTold)
{
    build::Visual visual(L"v", 1, 0);
    Face one({3});
    Face two({3});
    two.faceVizProps[kConfiguration] = &visual;
    Body shown({&one, nullptr, &two});
    Body empty;
    Part source({&shown, &empty});
    recorder().name(&one, "one");
    recorder().name(&two, "two");
    recorder().name(&shown, "shown");
    recorder().name(&empty, "empty");
    capture(source);
    EXPECT_THAT(lines(),
                ElementsAre("getNumBodies()", "getModelVizProp(3)", "shown.getBodyPropInfo(3)",
                            "shown.getBodyPropInfo(3)", "shown.getBodyPropInfo(3)",
                            "shown.getBodyVizProp(3)", "one.getFaceVizProp(3)", "two.getFaceVizProp(3)",
                            "getUserName()", "two.getVizPropMode(3)", "applyVisualProperties(v)"));
}

struct FlagsCase {
    const char* name;
    int active;
    int inherit;
    bool part;
    bool body;
    bool face;
};

class MaterialFlags : public TessellationCapture, public testing::WithParamInterface<FlagsCase> {};

TEST_P(MaterialFlags, CountDifferentlyAtEachLevel)
{
    const FlagsCase& row = GetParam();
    build::Visual visual(L"v", row.active, row.inherit);
    build::TrianglePart source;
    source.part.modelVizProps[kConfiguration] = &visual;
    source.body.bodyVizProps[kConfiguration] = &visual;
    source.face.faceVizProps[kConfiguration] = &visual;
    capture(source.part);
    EXPECT_EQ(part.material.visualName, row.part ? "v" : "");
    EXPECT_EQ(part.bodies[0].material != nullptr, row.body);
    EXPECT_EQ(part.bodies[0].faces[0].material != nullptr, row.face);
}

const FlagsCase kFlags[] = {
    {"active_and_not_inherited", 1, 0, true, true, true},
    {"active_and_inherited", 1, 1, true, false, true},
    {"not_active_and_not_inherited", 0, 0, false, false, true},
    {"not_active_and_inherited", 0, 1, false, false, false},
    {"negative_flags_are_set", -1, -1, true, false, true},
    {"negative_active_alone", -5, 0, true, true, true},
    {"negative_inherited_alone", 0, -5, false, false, false},
};
INSTANTIATE_TEST_SUITE_P(Rows, MaterialFlags, testing::ValuesIn(kFlags),
                         [](const auto& row) { return row.param.name; });

TEST_F(TessellationCapture, MakesNoMaterialWithoutMaterialProperties)
{
    build::Visual visual(L"v", 1, 0);
    visual.materialProps = nullptr;
    build::TrianglePart source;
    source.part.modelVizProps[kConfiguration] = &visual;
    source.body.bodyVizProps[kConfiguration] = &visual;
    source.face.faceVizProps[kConfiguration] = &visual;
    capture(source.part);
    EXPECT_EQ(part.material.visualName, "");
    EXPECT_EQ(part.bodies[0].material, nullptr);
    EXPECT_EQ(part.bodies[0].faces[0].material, nullptr);
    EXPECT_EQ(recorder().countBeginning("log"), 0u);
    EXPECT_EQ(recorder().countBeginning("applyVisualProperties"), 0u);
    EXPECT_EQ(recorder().countBeginning("getVizPropMode"), 0u);
}

TEST_F(TessellationCapture, TakesTheMaterialsOfTheAskedConfigurationAlone)
{
    build::Visual visual(L"other", 1, 0);
    build::TrianglePart source;
    source.part.modelVizProps[4] = &visual;
    source.body.bodyVizProps[4] = &visual;
    source.face.faceVizProps[4] = &visual;
    capture(source.part);
    EXPECT_EQ(recorder().countBeginning("applyVisualProperties"), 0u);
}

TEST_F(TessellationCapture, LeavesABodyForANullElementAtItsDefaults)
{
    Face source({3});
    Body real({&source});
    Part parts({nullptr, &real});
    EXPECT_EQ(capture(parts), 1);
    ASSERT_EQ(part.bodyCount, 2);
    EXPECT_EQ(part.bodies[0].faces, nullptr);
    EXPECT_EQ(part.bodies[0].faceCount, 0);
    EXPECT_EQ(part.bodies[0].level, 100);
    EXPECT_EQ(part.bodies[1].faceCount, 1);
}

TEST_F(TessellationCapture, CapturesOnlyAsManyBodiesAsTold)
{
    Face source({3});
    Body one({&source});
    Body two({&source});
    Part parts({&one, &two});
    parts.tellsOther = true;
    parts.told = 1;
    EXPECT_EQ(capture(parts), 1);
    EXPECT_EQ(part.bodyCount, 1);
    EXPECT_EQ(recorder().countBeginning("getBodyPropInfo"), 1u);
}

TEST_F(TessellationCapture, CapturesTheBodiesThereAreAndRaisesForTheRest)
{
    build::Visual visual(L"v", 1, 0);
    build::TrianglePart source;
    source.part.modelVizProps[kConfiguration] = &visual;
    source.part.tellsOther = true;
    source.part.told = std::numeric_limits<int>::max();
    try {
        capture(source.part);
        FAIL() << "nothing was raised";
    } catch (const platform::ComError& error) {
        EXPECT_EQ(error.code(), 0x80070057u);
    }
    EXPECT_EQ(part.bodyCount, 1);
    ASSERT_NE(part.bodies, nullptr);
    EXPECT_EQ(part.bodies[0].faceCount, 1);
    EXPECT_EQ(part.material.visualName, "v");
}

TEST_F(TessellationCapture, RaisesForBodiesToldOfAnEmptyArray)
{
    Part source;
    source.tellsOther = true;
    source.told = 1;
    EXPECT_THROW(capture(source), platform::ComError);
    EXPECT_EQ(part.bodyCount, 0);
}

TEST_F(TessellationCapture, RaisesForABodyArrayThatShrinksMeanwhile)
{
    Face source({3});
    Body one({&source});
    Body two({&source});
    Part parts({&one, &two});
    recorder().onCall("getModelVizProp", [&] { parts.bodies.count = 1; });
    EXPECT_THROW(capture(parts), platform::ComError);
}

struct ShownCase {
    const char* name;
    bool hasRecord;
    int shown;
    std::int32_t faceCount;
};

class ShownBodies : public TessellationCapture, public testing::WithParamInterface<ShownCase> {};

TEST_P(ShownBodies, HaveARecordThatDoesNotHideThem)
{
    uoBodyPropInfo_c info;
    info.shown = GetParam().shown;
    Face one({3});
    Face two({3});
    Body source({&one, &two});
    if (GetParam().hasRecord)
        source.bodyPropInfos[kConfiguration] = &info;
    capture(source);
    EXPECT_EQ(body.faceCount, GetParam().faceCount);
    EXPECT_EQ(body.faces != nullptr, GetParam().faceCount != 0);
    EXPECT_EQ(recorder().count("getBodyPropInfo(3)"), 2u);
}

const ShownCase kShown[] = {
    {"no_record_shows", false, 0, 2},
    {"zero_hides", true, 0, 0},
    {"one_shows", true, 1, 2},
    {"negative_shows", true, -1, 2},
};
INSTANTIATE_TEST_SUITE_P(Rows, ShownBodies, testing::ValuesIn(kShown),
                         [](const auto& row) { return row.param.name; });

TEST_F(TessellationCapture, LeavesABodyWithoutShownFacesAtItsDefaults)
{
    build::Visual visual(L"v", 1, 0);
    Body source({nullptr, nullptr});
    source.bodyVizProps[kConfiguration] = &visual;
    source.flag = 1;
    source.level = 7;
    capture(source);
    EXPECT_EQ(body.faceCount, 0);
    EXPECT_EQ(body.faces, nullptr);
    EXPECT_EQ(body.material, nullptr);
    EXPECT_FALSE(body.flag);
    EXPECT_EQ(body.level, 100);
    expectUnset(body.bbox);
    EXPECT_THAT(lines(), ElementsAre("getBodyPropInfo(3)", "getBodyPropInfo(3)"));
}

TEST_F(TessellationCapture, CopiesFlagAndLevelOfABody)
{
    for (const std::int32_t flag : {0, 1, -1, 256}) {
        Face source({3});
        Body bodies({&source});
        bodies.flag = flag;
        bodies.level = -flag;
        dlBody fresh;
        captureBody(bodies, fresh, part, kConfiguration);
        EXPECT_EQ(fresh.flag, flag != 0);
        EXPECT_EQ(fresh.level, -flag);
    }
}

TEST_F(TessellationCapture, PacksNullFacesAway)
{
    Face first({3});
    Face second({4});
    Body source({nullptr, &first, nullptr, &second});
    capture(source);
    ASSERT_EQ(body.faceCount, 2);
    EXPECT_EQ(body.faces[0].vertexCount, 3);
    EXPECT_EQ(body.faces[1].vertexCount, 4);
    EXPECT_EQ(recorder().countBeginning("getBodyPropInfo"), 4u);
}

TEST_F(TessellationCapture, TracesEveryBodyThatGetsAMaterial)
{
    build::Visual visual(L"v", 1, 0);
    Face source({3});
    Body with({&source});
    Body without({&source});
    with.bodyVizProps[kConfiguration] = &visual;
    Part parts({&with, &without, &with});
    capture(parts);
    EXPECT_EQ(recorder().count("log(BodyProp not null!\n)"), 2u);
    EXPECT_EQ(part.bodies[0].material->visualName, "v");
    EXPECT_EQ(part.bodies[1].material, nullptr);
    EXPECT_NE(part.bodies[0].material, part.bodies[2].material);
}

TEST_F(TessellationCapture, TracesABodyAfterItsMaterialIsFilled)
{
    build::Visual visual(L"v", 1, 0);
    Face source({3});
    Body with({&source});
    with.bodyVizProps[kConfiguration] = &visual;
    capture(with);
    std::vector<std::string> seen;
    for (const std::string& line : lines())
        if (line.rfind("applyVisual", 0) == 0 || line.rfind("log", 0) == 0)
            seen.push_back(line.substr(0, line.find('(')));
    EXPECT_THAT(seen, ElementsAre("applyVisualProperties", "log"));
}

TEST_F(TessellationCapture, CopiesTheNumberOfStripsBeforeItAsksForAMaterial)
{
    build::Visual visual(L"v", 1, 0);
    Face source({3});
    source.faceVizProps[kConfiguration] = &visual;
    recorder().onCall("getFaceVizProp", [&] { source.stripCount = 0; });
    capture(source);
    EXPECT_EQ(face.stripCount, 1);
    EXPECT_EQ(face.vertexCount, 3);
}

TEST_F(TessellationCapture, LeavesAFaceWithoutStripsWhenItsArraysGoWhileItIsAsked)
{
    build::Visual visual(L"v", 1, 0);
    Face source({3});
    source.faceVizProps[kConfiguration] = &visual;
    recorder().onCall("getFaceVizProp", [&] { source.stripLengths.count = 0; });
    capture(source);
    EXPECT_EQ(face.stripCount, 0);
    EXPECT_EQ(face.vertexCount, 0);
    EXPECT_NE(face.stripLengths, nullptr);
}

TEST_F(TessellationCapture, NeverFillsMoreFacesThanWereCounted)
{
    Face first({3});
    Face second({4});
    Face third({5});
    Body source({&first, nullptr, &second});
    recorder().onCall("getBodyVizProp", [&] { source.faceStore[1] = &third; });
    capture(source);
    ASSERT_EQ(body.faceCount, 2);
    EXPECT_EQ(body.faces[0].vertexCount, 3);
    EXPECT_EQ(body.faces[1].vertexCount, 5);
}

TEST_F(TessellationCapture, CutsOffFacesThatAreGoneTheSecondTime)
{
    Face first({3});
    Face second({4});
    Body source({&first, &second});
    recorder().onCall("getBodyVizProp", [&] { source.faceStore[0] = nullptr; });
    capture(source);
    ASSERT_EQ(body.faceCount, 1);
    EXPECT_EQ(body.faces[0].vertexCount, 4);
}

TEST_F(TessellationCapture, NeverFillsFacesThatWereHiddenWhenTheyWereCounted)
{
    uoBodyPropInfo_c hidden;
    Face first({3});
    Face second({4});
    Body source({&first, &second});
    int asked = 0;
    recorder().onCall("getBodyPropInfo",
                      [&] { source.bodyPropInfos[kConfiguration] = ++asked == 1 ? nullptr : &hidden; });
    capture(source);
    ASSERT_EQ(body.faceCount, 1);
    EXPECT_EQ(body.faces[0].vertexCount, 3);
}

TEST_F(TessellationCapture, RaisesForAFaceArrayThatShrinksUnderTheCount)
{
    Face source({3});
    Body bodies({&source, &source});
    recorder().onCall("getBodyPropInfo", [&] { bodies.faces.count = 1; });
    EXPECT_THROW(capture(bodies), platform::ComError);
}

TEST_F(TessellationCapture, TreatsANegativeFaceCountAsNone)
{
    Body source;
    source.faces.count = -4;
    capture(source);
    EXPECT_EQ(body.faceCount, 0);
    EXPECT_EQ(body.faces, nullptr);
}

struct ThreadCase {
    const char* name;
    const wchar_t* userName;
    bool appearance;
    bool made;
};

class ThreadMaterial : public TessellationCapture, public testing::WithParamInterface<ThreadCase> {};

TEST_P(ThreadMaterial, NeedsARenderAppearance)
{
    uoRVAppearanceProperties appearance;
    build::Visual visual(L"v", 1, 0);
    visual.material.userName = GetParam().userName;
    if (GetParam().appearance)
        visual.material.rvAppearance = &appearance;
    Face source({3});
    source.faceVizProps[kConfiguration] = &visual;
    source.vizPropModes[kConfiguration] = static_cast<VizPropMode_e>(5);
    capture(source);
    EXPECT_EQ(face.material != nullptr, GetParam().made);
    EXPECT_EQ(face.vizPropMode, GetParam().made ? 5 : 0);
    EXPECT_EQ(recorder().countBeginning("getVizPropMode"), GetParam().made ? 1u : 0u);
}

const ThreadCase kThreads[] = {
    {"another_name", L"steel", false, true},
    {"no_name", L"", false, true},
    {"thread", L"thread", false, false},
    {"capital_thread", L"Thread", false, false},
    {"THREAD", L"THREAD", false, false},
    {"thread_with_an_appearance", L"thread", true, true},
    {"thread_with_a_blank", L"thread ", false, true},
    {"threads", L"threads", false, true},
    {"another_name_with_an_appearance", L"steel", true, true},
};
INSTANTIATE_TEST_SUITE_P(Rows, ThreadMaterial, testing::ValuesIn(kThreads),
                         [](const auto& row) { return row.param.name; });

TEST_F(TessellationCapture, ThreadMeansNothingToPartsAndBodies)
{
    build::Visual visual(L"v", 1, 0);
    visual.material.userName = L"thread";
    build::TrianglePart source;
    source.part.modelVizProps[kConfiguration] = &visual;
    source.body.bodyVizProps[kConfiguration] = &visual;
    capture(source.part);
    EXPECT_EQ(part.material.visualName, "v");
    EXPECT_NE(part.bodies[0].material, nullptr);
}

TEST_F(TessellationCapture, WritesTheModeBeforeItFillsTheMaterial)
{
    build::Visual visual(L"v", 1, 0);
    Face source({3});
    source.faceVizProps[kConfiguration] = &visual;
    source.vizPropModes[kConfiguration] = static_cast<VizPropMode_e>(9);
    std::int32_t modeThen = 0;
    recorder().onCall("applyVisualProperties", [&] { modeThen = face.vizPropMode; });
    capture(source);
    EXPECT_EQ(modeThen, 9);
}

TEST_F(TessellationCapture, DoesNotAskForTheModeOfAMaterialThatIsNotMade)
{
    build::Visual visual(L"v", 0, 1);
    Face source({3});
    source.faceVizProps[kConfiguration] = &visual;
    source.vizPropModes[kConfiguration] = static_cast<VizPropMode_e>(9);
    capture(source);
    EXPECT_EQ(face.vizPropMode, 0);
    EXPECT_THAT(lines(), ElementsAre("getFaceVizProp(3)", "getUserName()"));
}

TEST_F(TessellationCapture, InterleavesPositionsAndNormals)
{
    Face source({3, 4}, true);
    source.faceId = 17;
    source.faceKey = -18;
    capture(source);
    EXPECT_EQ(face.stripCount, 2);
    EXPECT_THAT(integers(face.stripLengths, 2), ElementsAre(3, 4));
    EXPECT_THAT(integers(face.stripStarts, 2), ElementsAre(0, 3));
    EXPECT_EQ(face.vertexCount, 7);
    EXPECT_EQ(face.triangleCount, 3);
    EXPECT_EQ(face.faceId, 17);
    EXPECT_EQ(face.faceKey, -18);
    EXPECT_EQ(face.projectedUVs, nullptr);
    EXPECT_THAT(floats(face.vertices, 12), ElementsAre(0, 10, 20, -0.0f, 0.5f, 2, 1, 11, 21, -1, 0.5f, 2));
    EXPECT_THAT(floats(face.vertices + 36, 6), ElementsAre(6, 16, 26, -6, 0.5f, 2));
    EXPECT_THAT(floats(face.uvs, 14), ElementsAreArray(source.uvStore));
}

TEST_F(TessellationCapture, TakesNormalsAsTheyAre)
{
    Face source({3});
    source.normalStore = {0, 0, 0, std::nanf(""), 1e30f, -0.0f, 3, 4, 5};
    source.sync();
    capture(source);
    for (std::size_t vertex = 0; vertex < 3; ++vertex)
        EXPECT_TRUE(sameBits(face.vertices + 6 * vertex + 3, source.normalStore.data() + 3 * vertex, 3));
}

TEST_F(TessellationCapture, LeavesTextureCoordinatesOfAFaceWithoutThemNull)
{
    Face source({3});
    EXPECT_FALSE(source.uvStore.empty());
    capture(source);
    EXPECT_EQ(face.uvs, nullptr);
}

TEST_F(TessellationCapture, TakesAnyFlagButZeroForTextureCoordinates)
{
    Face source({3}, true);
    source.hasUVs = -1;
    capture(source);
    ASSERT_NE(face.uvs, nullptr);
    EXPECT_THAT(floats(face.uvs, 6), ElementsAreArray(source.uvStore));
}

TEST_F(TessellationCapture, ReadsNoFurtherThanItsStripsReach)
{
    Face source({3}, true);
    source.pointStore.insert(source.pointStore.end(), {1e9f, 1e9f, 1e9f});
    source.normalStore.resize(12);
    source.uvStore.resize(8);
    source.sync();
    capture(source);
    EXPECT_EQ(face.vertexCount, 3);
    EXPECT_EQ(face.bbox.max[0], 2.0f);
}

struct StripsCase {
    const char* name;
    std::vector<std::int32_t> lengths;
    std::int32_t vertices;
    std::int32_t triangles;
    std::vector<std::int32_t> starts;
};

class Strips : public TessellationCapture, public testing::WithParamInterface<StripsCase> {};

TEST_P(Strips, AreCountedAsArithmeticGives)
{
    Face source(GetParam().lengths);
    capture(source);
    const auto count = static_cast<int>(GetParam().lengths.size());
    EXPECT_EQ(face.stripCount, count);
    EXPECT_EQ(face.vertexCount, GetParam().vertices);
    EXPECT_EQ(face.triangleCount, GetParam().triangles);
    EXPECT_EQ(integers(face.stripLengths, count), GetParam().lengths);
    EXPECT_EQ(integers(face.stripStarts, count), GetParam().starts);
}

constexpr std::int32_t kLowest = std::numeric_limits<std::int32_t>::min();

const StripsCase kStrips[] = {
    {"one_triangle", {3}, 3, 1, {0}},
    {"strip_of_many", {9}, 9, 7, {0}},
    {"length_zero_counts_minus_two", {0}, 0, -2, {0}},
    {"length_one_counts_minus_one", {1}, 1, -1, {0}},
    {"length_two_counts_none", {2}, 2, 0, {0}},
    {"short_strips_between_others", {3, 0, 1, 4}, 8, 0, {0, 3, 3, 4}},
    {"negative_length_is_no_vertices", {-1}, 0, -3, {0}},
    {"negative_length_between_others", {3, -5, 4}, 7, -4, {0, 3, 3}},
    {"lowest_length_is_narrowed", {kLowest}, 0, 2147483646, {0}},
    {"lowest_lengths_are_summed_in_64_bits", {kLowest, kLowest, 5}, 5, -1, {0, 0, 0}},
};
INSTANTIATE_TEST_SUITE_P(Rows, Strips, testing::ValuesIn(kStrips),
                         [](const auto& row) { return row.param.name; });

// What a face without strips looks like: arrays of size zero, no box, no vertices.
void expectNoStrips(const dlFace& face, bool hasUVs)
{
    EXPECT_EQ(face.stripCount, 0);
    EXPECT_EQ(face.vertexCount, 0);
    EXPECT_EQ(face.triangleCount, 0);
    EXPECT_NE(face.vertices, nullptr);
    EXPECT_NE(face.stripStarts, nullptr);
    EXPECT_NE(face.stripLengths, nullptr);
    EXPECT_EQ(face.uvs != nullptr, hasUVs);
    expectUnset(face.bbox);
}

struct ShortCase {
    const char* name;
    void (*damage)(Face&);
    bool hasUVs;
};

class ShortArrays : public TessellationCapture, public testing::WithParamInterface<ShortCase> {};

TEST_P(ShortArrays, LeaveTheFaceWithoutStrips)
{
    build::Visual visual(L"v", 1, 0);
    Face source({3, 4}, GetParam().hasUVs);
    source.faceId = 5;
    source.faceKey = 6;
    source.faceVizProps[kConfiguration] = &visual;
    GetParam().damage(source);
    capture(source);
    expectNoStrips(face, GetParam().hasUVs);
    expectUnset(body.bbox);
    expectUnset(part.bbox);
    EXPECT_EQ(face.faceId, 5);
    EXPECT_EQ(face.faceKey, 6);
    EXPECT_NE(face.material, nullptr);
}

const ShortCase kShort[] = {
    {"no_strips_at_all", [](Face& f) { f.stripCount = 0; }, false},
    {"no_strips_at_all_with_texture_coordinates", [](Face& f) { f.stripCount = 0; }, true},
    {"negative_strip_count", [](Face& f) { f.stripCount = -1; }, false},
    {"lowest_strip_count", [](Face& f) { f.stripCount = kLowest; }, true},
    {"more_strips_than_lengths", [](Face& f) { f.stripCount = 3; }, false},
    {"strip_count_of_billions", [](Face& f) { f.stripCount = 0x7FFFFFFF; }, false},
    {"negative_count_of_lengths", [](Face& f) { f.stripLengths.count = -1; }, false},
    {"null_lengths", [](Face& f) { f.stripLengths.data = nullptr; }, false},
    {"one_point_too_few", [](Face& f) { f.points.count -= 1; }, false},
    {"null_points", [](Face& f) { f.points.data = nullptr; }, false},
    {"one_normal_too_few", [](Face& f) { f.normals.count -= 1; }, false},
    {"null_normals", [](Face& f) { f.normals.data = nullptr; }, false},
    {"one_texture_coordinate_too_few", [](Face& f) { f.uvs.count -= 1; }, true},
    {"null_texture_coordinates", [](Face& f) { f.uvs.data = nullptr; }, true},
    {"length_beyond_the_points", [](Face& f) { f.lengthStore[1] = 0x7FFFFFFF; }, false},
    {"more_vertices_than_32_bits_count",
     [](Face& f) {
         f.lengthStore = {0x7FFFFFFF, 0x7FFFFFFF};
         f.points.count = f.normals.count = std::numeric_limits<long long>::max();
     },
     false},
};
INSTANTIATE_TEST_SUITE_P(Rows, ShortArrays, testing::ValuesIn(kShort),
                         [](const auto& row) { return row.param.name; });

TEST_F(TessellationCapture, NeedsNoTextureCoordinatesWhereTheFaceHasNone)
{
    Face source({3});
    source.uvs = {};
    capture(source);
    EXPECT_EQ(face.vertexCount, 3);
}

TEST_F(TessellationCapture, AcceptsNullArraysForStripsWithoutVertices)
{
    Face source({0, -1});
    source.points = {};
    source.normals = {};
    capture(source);
    EXPECT_EQ(face.stripCount, 2);
    EXPECT_EQ(face.vertexCount, 0);
    EXPECT_EQ(face.triangleCount, -5);
    EXPECT_NE(face.vertices, nullptr);
}

TEST_F(TessellationCapture, GrowsTheBoxesOfFaceBodyAndPart)
{
    Face near({3});
    Face far({3}, false, 100.0f);
    Face last({3}, false, -50.0f);
    Body one({&near, &far});
    Body two({&last});
    Part source({&one, &two});
    part.bbox.radius = 4.0f;
    capture(source);
    const dlBody& first = part.bodies[0];
    EXPECT_THAT(floats(first.faces[0].bbox.min, 3), ElementsAre(0, 10, 20));
    EXPECT_THAT(floats(first.faces[0].bbox.max, 3), ElementsAre(2, 12, 22));
    EXPECT_THAT(floats(first.faces[1].bbox.min, 3), ElementsAre(100, 110, 120));
    EXPECT_THAT(floats(first.bbox.min, 3), ElementsAre(0, 10, 20));
    EXPECT_THAT(floats(first.bbox.max, 3), ElementsAre(102, 112, 122));
    EXPECT_THAT(floats(part.bbox.min, 3), ElementsAre(-50, -40, -30));
    EXPECT_THAT(floats(part.bbox.max, 3), ElementsAre(102, 112, 122));
    EXPECT_EQ(part.bbox.radius, -1.0f);
}

TEST_F(TessellationCapture, DropsTheCachedRadiusAlsoWhenNoSideMoves)
{
    Face source({3});
    capture(source);
    part.bbox.radius = body.bbox.radius = 5.0f;
    dlFace again;
    captureFace(source, again, body, part, kConfiguration);
    EXPECT_EQ(body.bbox.radius, -1.0f);
    EXPECT_EQ(part.bbox.radius, -1.0f);
}

TEST_F(TessellationCapture, AFaceWithoutVerticesDisturbsNoBox)
{
    Face real({3});
    capture(real);
    part.bbox.radius = body.bbox.radius = 5.0f;
    Face empty({0, -3});
    dlFace none;
    captureFace(empty, none, body, part, kConfiguration);
    expectUnset(none.bbox);
    EXPECT_EQ(body.bbox.radius, 5.0f);
    EXPECT_EQ(part.bbox.radius, 5.0f);
    EXPECT_THAT(floats(part.bbox.max, 3), ElementsAre(2, 12, 22));
}

TEST_F(TessellationCapture, ANumberlessCoordinateMovesNoSideOfItsAxis)
{
    const float nan = std::numeric_limits<float>::quiet_NaN();
    Face source({3});
    source.pointStore = {nan, 1, 2, nan, -1, nan, nan, 5, 7};
    source.sync();
    capture(source);
    for (const dlBBox* box : {&face.bbox, &body.bbox, &part.bbox}) {
        EXPECT_EQ(box->min[0], std::numeric_limits<float>::max());
        EXPECT_EQ(box->max[0], -std::numeric_limits<float>::max());
        EXPECT_EQ(box->min[1], -1.0f);
        EXPECT_EQ(box->max[1], 5.0f);
        EXPECT_EQ(box->min[2], 2.0f);
        EXPECT_EQ(box->max[2], 7.0f);
    }
    for (std::size_t vertex = 0; vertex < 3; ++vertex)
        EXPECT_TRUE(sameBits(face.vertices + 6 * vertex, source.pointStore.data() + 3 * vertex, 3));
}

TEST_F(TessellationCapture, AFaceOfNumberlessPointsRaisesNoBoxThatIsSet)
{
    const float nan = std::numeric_limits<float>::quiet_NaN();
    Face real({3});
    capture(real);
    Face numberless({3});
    numberless.pointStore.assign(9, nan);
    numberless.sync();
    dlFace other;
    captureFace(numberless, other, body, part, kConfiguration);
    EXPECT_THAT(floats(part.bbox.min, 3), ElementsAre(0, 10, 20));
    EXPECT_THAT(floats(part.bbox.max, 3), ElementsAre(2, 12, 22));
}

// The plain walk: every vertex into every box, one after another.
struct PlainWalk {
    void add(const Face& source, int vertices)
    {
        for (int vertex = 0; vertex < vertices; ++vertex) {
            const float* point = source.pointStore.data() + 3 * vertex;
            const float* normal = source.normalStore.data() + 3 * vertex;
            records.insert(records.end(), point, point + 3);
            records.insert(records.end(), normal, normal + 3);
            face.addPoint(point);
            body.addPoint(point);
            part.addPoint(point);
        }
    }

    std::vector<float> records;
    dlBBox face;
    dlBBox body;
    dlBBox part;
};

bool sameBox(const dlBBox& left, const dlBBox& right)
{
    return sameBits(left.min, right.min, 3) && sameBits(left.max, right.max, 3) &&
           sameBits(&left.radius, &right.radius, 1);
}

// Values whose order matters: zeros of both signs, numbers that are none, infinities, the limits.
float awkwardFloat(std::mt19937& random)
{
    const float values[] = {0.0f,
                            -0.0f,
                            1.0f,
                            -1.0f,
                            std::numeric_limits<float>::quiet_NaN(),
                            std::numeric_limits<float>::infinity(),
                            -std::numeric_limits<float>::infinity(),
                            std::numeric_limits<float>::max(),
                            -std::numeric_limits<float>::max(),
                            std::numeric_limits<float>::denorm_min()};
    const std::size_t choice = random() % 24;
    // Half of the time small values only, so that zeros become the extremes.
    return choice < 10 ? values[choice] : values[choice % 2];
}

class BitIdentity : public TessellationCapture, public testing::WithParamInterface<int> {};

TEST_P(BitIdentity, WithThePlainWalkHoldsForAwkwardFaces)
{
    std::mt19937 random(static_cast<unsigned>(GetParam()));
    for (int round = 0; round < 200; ++round) {
        dlPart freshPart;
        dlBody freshBody;
        PlainWalk plain;
        for (int faces = 0; faces < 3; ++faces) {
            Face source({GetParam()});
            for (float& value : source.pointStore)
                value = awkwardFloat(random);
            for (float& value : source.normalStore)
                value = awkwardFloat(random);
            dlFace freshFace;
            plain.face = {};
            plain.records.clear();
            plain.add(source, GetParam());
            captureFace(source, freshFace, freshBody, freshPart, kConfiguration);
            ASSERT_TRUE(sameBits(freshFace.vertices, plain.records.data(), plain.records.size()));
            ASSERT_TRUE(sameBox(freshFace.bbox, plain.face));
            ASSERT_TRUE(sameBox(freshBody.bbox, plain.body));
            ASSERT_TRUE(sameBox(freshPart.bbox, plain.part));
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Vertices, BitIdentity, testing::Values(0, 1, 2, 3, 4, 5, 6, 7, 8, 17));

// Large enough to be written past the caches, with an odd rest.
TEST_F(TessellationCapture, WithThePlainWalkHoldsForALargeFace)
{
    constexpr int kVertices = 300001;
    std::mt19937 random(5);
    Face source({100000, kVertices - 100000}, true);
    for (float& value : source.pointStore)
        value = static_cast<float>(random()) / 65536.0f - 30000.0f;
    PlainWalk plain;
    plain.add(source, kVertices);
    capture(source);
    ASSERT_EQ(face.vertexCount, kVertices);
    EXPECT_TRUE(sameBits(face.vertices, plain.records.data(), plain.records.size()));
    EXPECT_TRUE(sameBits(face.uvs, source.uvStore.data(), source.uvStore.size()));
    EXPECT_TRUE(sameBox(face.bbox, plain.face));
    EXPECT_TRUE(sameBox(part.bbox, plain.part));
}

}  // namespace
