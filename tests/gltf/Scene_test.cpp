// From nodes to components, their names and placements, and the view.
#include <gmock/gmock.h>
#include <rapidcheck/gtest.h>

#include <cmath>

#include "tests/gltf/GltfBuilder.h"
#include "tests/gltf/GltfReading.h"

namespace gltf_tests {
namespace {

using testing::DoubleNear;
using testing::Each;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;
using testing::Pointwise;

// Reads the document as "model.glb", so the top owner is "model".
ovdl::ReadOutcome readScene(const GltfBuilder& builder, const std::string& file = "model.glb")
{
    const Folder folder;
    return read(folder.write(file, builder.glb()));
}

// ------------------------------------------------------------------------------------------ names

struct NameCase {
    const char* name;
    void (*build)(GltfBuilder& builder, int mesh);
    std::vector<std::wstring> paths;
    const char* file = "model.glb";
};
const NameCase kNames[] = {
    {"siblings_have_names_of_their_own",
     [](GltfBuilder& b, int m) {
         b.addNode({{"mesh", m}, {"name", "bolt"}});
         b.addNode({{"mesh", m}, {"name", "nut"}});
     },
     {L"bolt-1@model", L"nut-1@model"}},
    {"siblings_of_one_name_are_numbered_from_one",
     [](GltfBuilder& b, int m) {
         for (const char* name : {"bolt", "nut", "bolt", "bolt", "nut"})
             b.addNode({{"mesh", m}, {"name", name}});
     },
     {L"bolt-1@model", L"nut-1@model", L"bolt-2@model", L"bolt-3@model", L"nut-2@model"}},
    {"siblings_without_a_mesh_are_numbered_too",
     [](GltfBuilder& b, int m) {
         b.addNode({{"name", "bolt"}});
         b.addNode({{"mesh", m}, {"name", "bolt"}});
     },
     {L"bolt-2@model"}},
    {"tokens_below_are_owned_by_the_parents_name",
     [](GltfBuilder& b, int m) {
         const int leaf = b.addNode({{"mesh", m}, {"name", "bolt"}}, false);
         const int middle = b.addNode({{"children", {leaf}}, {"name", "flange"}}, false);
         b.addNode({{"children", {middle}}, {"name", "pump"}});
     },
     {L"pump-1@model/flange-1@pump/bolt-1@flange"}},
    {"numbers_start_again_below_each_parent",
     [](GltfBuilder& b, int m) {
         for (int i = 0; i < 2; ++i) {
             const int first = b.addNode({{"mesh", m}, {"name", "bolt"}}, false);
             const int second = b.addNode({{"mesh", m}, {"name", "bolt"}}, false);
             b.addNode({{"children", {first, second}}, {"name", "flange"}});
         }
     },
     {L"flange-1@model/bolt-1@flange", L"flange-1@model/bolt-2@flange", L"flange-2@model/bolt-1@flange",
      L"flange-2@model/bolt-2@flange"}},
    {"a_node_with_a_mesh_comes_before_its_children",
     [](GltfBuilder& b, int m) {
         const int leaf = b.addNode({{"mesh", m}, {"name", "bolt"}}, false);
         b.addNode({{"mesh", m}, {"children", {leaf}}, {"name", "plate"}});
         b.addNode({{"mesh", m}, {"name", "lid"}});
     },
     {L"plate-1@model", L"plate-1@model/bolt-1@plate", L"lid-1@model"}},
    {"separators_in_a_name_become_lines",
     [](GltfBuilder& b, int m) {
         const int leaf = b.addNode({{"mesh", m}, {"name", "a/b@c/"}}, false);
         b.addNode({{"children", {leaf}}, {"name", "@x/y"}});
     },
     {L"_x_y-1@model/a_b_c_-1@_x_y"}},
    {"names_are_numbered_as_they_are_cleaned",
     [](GltfBuilder& b, int m) {
         for (const char* name : {"a/b", "a@b", "a_b"})
             b.addNode({{"mesh", m}, {"name", name}});
     },
     {L"a_b-1@model", L"a_b-2@model", L"a_b-3@model"}},
    {"minus_signs_stay",
     [](GltfBuilder& b, int m) {
         b.addNode({{"mesh", m}, {"name", "m8-20"}});
         b.addNode(Json::object());
         b.addNode({{"mesh", m}, {"name", "-"}});
     },
     {L"m8-20-1@model", L"--1@model"}},
    {"names_beyond_ascii",
     [](GltfBuilder& b, int m) {
         const int leaf = b.addNode({{"mesh", m}, {"name", "\xF0\x9F\x94\xA9"}}, false);
         b.addNode({{"children", {leaf}},
                    {"name",
                     "Gr\xC3\xB6\xC3\x9F"
                     "e"}});
     },
     {L"Gr\xF6\xDF"
      L"e-1@model/\U0001F529-1@Gr\xF6\xDF"
      L"e"}},
    {"an_unnamed_node_has_its_meshs_name",
     [](GltfBuilder& b, int m) {
         b.json["meshes"][m]["name"] = "bolt@8";
         b.addNode({{"mesh", m}});
         b.addNode({{"mesh", m}, {"name", ""}});
         b.addNode({{"mesh", m}, {"name", "bolt_8"}});
     },
     {L"bolt_8-1@model", L"bolt_8-2@model", L"bolt_8-3@model"}},
    {"an_unnamed_node_with_an_unnamed_mesh_has_its_number",
     [](GltfBuilder& b, int m) {
         const int leaf = b.addNode({{"mesh", m}}, false);
         b.addNode({{"children", {leaf}}});
         b.addNode({{"mesh", m}, {"name", "node0"}});
     },
     {L"node1-1@model/node0-1@node1", L"node0-1@model"}},
    {"the_top_owner_is_the_files_stem",
     [](GltfBuilder& b, int m) {
         b.addNode({{"mesh", m}, {"name", "a"}});
         b.addNode({{"mesh", m}, {"name", "b"}});
     },
     {L"a-1@pump.v2", L"b-1@pump.v2"},
     "pump.v2.glb"},
    {"the_files_stem_is_cleaned_too",
     [](GltfBuilder& b, int m) {
         b.addNode({{"mesh", m}, {"name", "a"}});
         b.addNode({{"mesh", m}, {"name", "b"}});
     },
     {L"a-1@p_u", L"b-1@p_u"},
     "p@u.glb"},
    {"a_file_without_an_ending_is_its_own_stem",
     [](GltfBuilder& b, int m) {
         b.addNode({{"mesh", m}, {"name", "a"}});
         b.addNode({{"mesh", m}, {"name", "b"}});
     },
     {L"a-1@pump", L"b-1@pump"},
     "pump"},
    {"a_name_of_the_word_render_is_a_name_like_others",
     [](GltfBuilder& b, int m) {
         b.addNode({{"mesh", m}, {"name", "Render"}});
         b.addNode({{"mesh", m}, {"name", "render"}});
     },
     {L"Render-1@model", L"render-1@model"}},
    {"escapes_in_names_are_resolved",
     [](GltfBuilder& b, int m) {
         b.addNode({{"mesh", m}, {"name", "a\"b\\c\td"}});
         b.addNode({{"mesh", m}, {"name", "x"}});
     },
     {L"a\"b\\c\td-1@model", L"x-1@model"}},
};

class Names : public testing::TestWithParam<NameCase> {};

TEST_P(Names, MakeTheComponentPaths)
{
    GltfBuilder builder;
    GetParam().build(builder, builder.triangleMesh());
    // A second component in all of them, so that none is a part document.
    builder.addNode({{"name", "other"}, {"mesh", 0}, {"translation", {1, 0, 0}}});
    const auto outcome = readScene(builder, GetParam().file);
    ASSERT_EQ(outcome.kind, ovdl::ReadOutcome::kRead) << outcome.reason;
    std::vector<std::wstring> names = componentNames(*outcome.document);
    names.pop_back();
    EXPECT_THAT(names, ElementsAreArray(GetParam().paths));
}
INSTANTIATE_TEST_SUITE_P(Rows, Names, testing::ValuesIn(kNames),
                         [](const auto& row) { return row.param.name; });

TEST(Names, OfManySiblingsAreNumberedByName)
{
    GltfBuilder builder;
    const int mesh = builder.triangleMesh();
    for (int i = 0; i < 1000; ++i)
        builder.addNode({{"mesh", mesh}, {"name", "n" + std::to_string(i % 7)}});
    const auto names = componentNames(*readScene(builder).document);
    for (int i = 0; i < 1000; ++i)
        ASSERT_EQ(names[static_cast<std::size_t>(i)],
                  L"n" + std::to_wstring(i % 7) + L"-" + std::to_wstring(i / 7 + 1) + L"@model");
}

// Each path is told by what stands above it, so no two components share one.
RC_GTEST_PROP(NameProperties, PathsAreUnique, ())
{
    GltfBuilder builder;
    const int mesh = builder.triangleMesh();
    const int count = *rc::gen::inRange(2, 40);
    std::vector<std::vector<int>> children(static_cast<std::size_t>(count));
    std::vector<int> top;
    for (int i = 0; i < count; ++i) {
        const int parent = *rc::gen::inRange(-1, i);
        (parent < 0 ? top : children[static_cast<std::size_t>(parent)]).push_back(i);
        builder.add("nodes",
                    {{"mesh", mesh}, {"name", *rc::gen::element<std::string>("a", "b", "a/b", "")}});
    }
    for (int i = 0; i < count; ++i)
        if (!children[static_cast<std::size_t>(i)].empty())
            builder.json["nodes"][i]["children"] = children[static_cast<std::size_t>(i)];
    builder.json["scenes"] = {{{"nodes", top}}};
    builder.json["scene"] = 0;
    const auto outcome = readScene(builder);
    RC_ASSERT(outcome.kind == ovdl::ReadOutcome::kRead);
    const auto names = componentNames(*outcome.document);
    RC_ASSERT(names.size() == static_cast<std::size_t>(count));
    RC_ASSERT(std::set<std::wstring>(names.begin(), names.end()).size() == names.size());
}

// ------------------------------------------------------------------------------------- components

TEST(Components, ShareTheTessellationOfTheirMesh)
{
    GltfBuilder builder;
    const int first = builder.triangleMesh();
    const int second = builder.triangleMesh();
    for (const int mesh : {first, second, first})
        builder.addNode({{"mesh", mesh}});
    const auto outcome = readScene(builder);
    const auto& components = outcome.document->assembly()->components;
    ASSERT_EQ(components.count, 3);
    EXPECT_EQ(components.at(0)->tessData, components.at(2)->tessData);
    EXPECT_NE(components.at(0)->tessData, components.at(1)->tessData);
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(components.at(i)->configIndex, 0);
        EXPECT_EQ(components.at(i)->visible, 1);
        EXPECT_EQ(components.at(i)->configName, L"");
        EXPECT_EQ(components.at(i)->vizProps, nullptr);
        EXPECT_THAT(components.at(i)->decals, IsEmpty());
    }
}

TEST(Components, OfMeshesWithoutTrianglesAreThere)
{
    GltfBuilder builder;
    Json primitive = builder.triangle();
    primitive["mode"] = 0;
    const int mesh = builder.addMesh(primitive);
    builder.addNode({{"mesh", mesh}});
    builder.addNode({{"mesh", mesh}});
    const auto outcome = readScene(builder);
    ASSERT_EQ(outcome.document->assembly()->components.count, 2);
    EXPECT_EQ(firstPart(*outcome.document).bodies.at(0)->faces.count, 0);
}

struct PlacementCase {
    const char* name;
    Json node;
    std::vector<double> elements;
    double tolerance;
};
const double kHalf = 0.70710678118654752;
const PlacementCase kPlacements[] = {
    {"nowhere_in_particular", Json::object(), {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1}, 0},
    {"a_translation",
     {{"translation", {1, -2, 0.1}}},
     {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 1, -2, 0.1, 1},
     0},
    {"a_scale", {{"scale", {2, -3, 0.5}}}, {2, 0, 0, 0, 0, -3, 0, 0, 0, 0, 0.5, 0, 0, 0, 0, 1}, 0},
    {"a_quarter_turn_about_z",
     {{"rotation", {0, 0, kHalf, kHalf}}},
     {0, 1, 0, 0, -1, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1},
     1e-15},
    {"a_quarter_turn_about_x",
     {{"rotation", {kHalf, 0, 0, kHalf}}},
     {1, 0, 0, 0, 0, 0, 1, 0, 0, -1, 0, 0, 0, 0, 0, 1},
     1e-15},
    {"a_rotation_that_is_too_long",
     {{"rotation", {0, 0, 3, 3}}},
     {0, 1, 0, 0, -1, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1},
     1e-15},
    {"a_rotation_of_nothing",
     {{"rotation", {0, 0, 0, 0}}},
     {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1},
     0},
    {"scale_first_then_turn_then_move",
     {{"translation", {10, 20, 30}}, {"rotation", {0, 0, kHalf, kHalf}}, {"scale", {2, 3, 4}}},
     {0, 2, 0, 0, -3, 0, 0, 0, 0, 0, 4, 0, 10, 20, 30, 1},
     1e-14},
    {"a_matrix_column_by_column",
     {{"matrix", {1, 2, 3, 0, 4, 5, 6, 0, 7, 8, 9, 0, 10, 11, 12, 1}}},
     {1, 2, 3, 0, 4, 5, 6, 0, 7, 8, 9, 0, 10, 11, 12, 1},
     0},
    {"a_matrix_before_the_parts",
     {{"matrix", {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 5, 6, 7, 1}}, {"translation", {1, 1, 1}}},
     {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 5, 6, 7, 1},
     0},
    {"a_matrix_with_noise_in_its_last_row",
     {{"matrix", {1, 0, 0, 1e-9, 0, 1, 0, 0, 0, 0, 1, 0, 5, 6, 7, 0.9999999}}},
     {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 5, 6, 7, 1},
     0},
};

class Placements : public testing::TestWithParam<PlacementCase> {};

TEST_P(Placements, AreThoseOfTheNode)
{
    GltfBuilder builder;
    const int mesh = builder.triangleMesh();
    Json node = GetParam().node;
    node["mesh"] = mesh;
    builder.addNode(node);
    builder.addNode({{"mesh", mesh}});
    const auto outcome = readScene(builder);
    ASSERT_EQ(outcome.kind, ovdl::ReadOutcome::kRead) << outcome.reason;
    const mgXform_c& xform = outcome.document->assembly()->components.at(0)->xform;
    EXPECT_EQ(xform.scale, 1.0);
    EXPECT_THAT(elementsOf(xform), Pointwise(DoubleNear(GetParam().tolerance), GetParam().elements));
}
INSTANTIATE_TEST_SUITE_P(Rows, Placements, testing::ValuesIn(kPlacements),
                         [](const auto& row) { return row.param.name; });

// Some writers give every digit that a double has.
TEST(Placements, AreReadToTheLastDigit)
{
    const Folder folder;
    const auto outcome = read(folder.write("a.gltf", R"({"asset":{"version":"2.0"},"cameras":[{}],"nodes":[
        {"camera":0,"translation":[-0.1000000000000000055511151231257827,
                                   0.00000000000000000000000000000000012345678901234567890 ,
                                   123456789012345678901234567890.5e-29]}]})"));
    ASSERT_EQ(outcome.kind, ovdl::ReadOutcome::kRead) << outcome.reason;
    EXPECT_THAT(outcome.document->assembly()->viewPoint,
                ElementsAre(-0.1, 1.2345678901234567890e-34, 1.234567890123456789012345678905));
}

TEST(Placements, AreMultipliedDownTheTree)
{
    GltfBuilder builder;
    const int mesh = builder.triangleMesh();
    const int leaf = builder.addNode({{"mesh", mesh}, {"translation", {1, 0, 0}}}, false);
    const int middle = builder.addNode(
        {{"children", {leaf}}, {"rotation", {0, 0, kHalf, kHalf}}, {"scale", {2, 2, 2}}}, false);
    builder.addNode({{"children", {middle}}, {"translation", {0, 0, 7}}, {"mesh", mesh}});
    const auto outcome = readScene(builder);
    const auto& components = outcome.document->assembly()->components;
    EXPECT_THAT(
        elementsOf(components.at(1)->xform),
        Pointwise(DoubleNear(1e-14), std::vector<double>{0, 2, 0, 0, -2, 0, 0, 0, 0, 0, 2, 0, 0, 2, 7, 1}));
}

// ---------------------------------------------------------------------------------------- scenes

TEST(Scenes, OneIsChosen)
{
    GltfBuilder builder;
    const int mesh = builder.triangleMesh();
    for (const char* name : {"a", "b", "c", "d"})
        builder.add("nodes", {{"mesh", mesh}, {"name", name}});
    builder.json["scenes"] = {{{"nodes", {0, 1}}}, {{"nodes", {3, 2}}}};
    builder.json["scene"] = 1;
    EXPECT_THAT(componentNames(*readScene(builder).document), ElementsAre(L"d-1@model", L"c-1@model"));
}

TEST(Scenes, WithoutAChoiceAllRootsCount)
{
    GltfBuilder builder;
    const int mesh = builder.triangleMesh();
    const int leaf = builder.add("nodes", {{"mesh", mesh}, {"name", "a"}});
    builder.add("nodes", {{"children", {leaf}}, {"name", "b"}});
    builder.add("nodes", {{"mesh", mesh}, {"name", "c"}});
    EXPECT_THAT(componentNames(*readScene(builder).document),
                ElementsAre(L"b-1@model/a-1@b", L"c-1@model"));
    builder.json["scenes"] = {{{"nodes", {2}}}};
    EXPECT_THAT(componentNames(*readScene(builder).document),
                ElementsAre(L"b-1@model/a-1@b", L"c-1@model"));
}

TEST(Scenes, WithoutNodesAreEmptyAssemblies)
{
    for (const char* json :
         {R"({"asset":{"version":"2.0"}})", R"({"asset":{"version":"2.0"},"scene":0,"scenes":[{}]})"}) {
        const Folder folder;
        const auto outcome = read(folder.write("a.gltf", json));
        ASSERT_EQ(outcome.kind, ovdl::ReadOutcome::kRead) << outcome.reason;
        ASSERT_NE(outcome.document->assembly(), nullptr);
        EXPECT_EQ(outcome.document->part(), nullptr);
        EXPECT_EQ(outcome.document->assembly()->components.count, 0);
        EXPECT_FALSE(outcome.document->assembly()->isRejected());
    }
}

// ------------------------------------------------------------------------------------ part or not

struct KindCase {
    const char* name;
    void (*build)(GltfBuilder& builder, int mesh);
    bool isPart;
};
const KindCase kKinds[] = {
    {"one_mesh_in_its_own_place",
     [](GltfBuilder& b, int m) {
         b.addNode({{"mesh", m}});
     },
     true},
    {"one_mesh_below_nodes_that_do_not_move_it",
     [](GltfBuilder& b, int m) {
         const int leaf = b.addNode({{"mesh", m}, {"translation", {1, 2, 4}}}, false);
         b.addNode({{"children", {leaf}}, {"translation", {-1, -2, -4}}});
     },
     true},
    {"one_mesh_beside_nodes_without",
     [](GltfBuilder& b, int m) {
         b.addNode(Json::object());
         b.addNode({{"mesh", m}});
     },
     true},
    {"one_mesh_in_the_scene_and_others_elsewhere",
     [](GltfBuilder& b, int m) {
         b.addNode({{"mesh", m}});
         b.addNode({{"mesh", m}}, false);
     },
     true},
    {"one_mesh_moved",
     [](GltfBuilder& b, int m) {
         b.addNode({{"mesh", m}, {"translation", {0, 0, 1e-9}}});
     },
     false},
    {"one_mesh_moved_from_above",
     [](GltfBuilder& b, int m) {
         const int leaf = b.addNode({{"mesh", m}}, false);
         b.addNode({{"children", {leaf}}, {"scale", {1, 2, 1}}});
     },
     false},
    {"one_mesh_twice",
     [](GltfBuilder& b, int m) {
         b.addNode({{"mesh", m}});
         b.addNode({{"mesh", m}});
     },
     false},
    {"no_mesh", [](GltfBuilder& b, int) { b.addNode(Json::object()); }, false},
};

class Kinds : public testing::TestWithParam<KindCase> {};

TEST_P(Kinds, ArePartsOrAssemblies)
{
    GltfBuilder builder;
    GetParam().build(builder, builder.triangleMesh());
    const auto outcome = readScene(builder);
    ASSERT_EQ(outcome.kind, ovdl::ReadOutcome::kRead) << outcome.reason;
    EXPECT_EQ(outcome.document->part() != nullptr, GetParam().isPart);
    EXPECT_EQ(outcome.document->assembly() != nullptr, !GetParam().isPart);
    if (outcome.document->part()) {
        EXPECT_EQ(outcome.document->part()->activeConfigIndex, 0);
        EXPECT_EQ(triangleCount(firstFace(*outcome.document)), 1);
        EXPECT_FALSE(outcome.document->part()->isRejected());
        EXPECT_EQ(outcome.document->part()->sceneHolder, nullptr);
    }
}
INSTANTIATE_TEST_SUITE_P(Rows, Kinds, testing::ValuesIn(kKinds),
                         [](const auto& row) { return row.param.name; });

// ------------------------------------------------------------------------------------------- view

GltfBuilder withCamera(Json node)
{
    GltfBuilder builder;
    builder.add("cameras", {{"type", "perspective"}, {"perspective", {{"yfov", 1}, {"znear", 0.1}}}});
    node["camera"] = 0;
    builder.addNode(node);
    return builder;
}

TEST(View, WithoutACameraIsTheIdentity)
{
    GltfBuilder builder;
    builder.addNode(Json::object());
    const auto outcome = readScene(builder);
    const OVDLAssemblyDocument& document = *outcome.document->assembly();
    EXPECT_EQ(elementsOf(document.viewXform), elementsOf(mgXform_c()));
    EXPECT_THAT(document.viewPoint, Each(0.0));
    EXPECT_EQ(document.viewScale, 1.0);
}

TEST(View, IsThePlaceOfTheCamera)
{
    const auto outcome =
        readScene(withCamera({{"rotation", {0, kHalf, 0, kHalf}}, {"translation", {1, 2, 3}}}));
    const OVDLAssemblyDocument& document = *outcome.document->assembly();
    EXPECT_THAT(
        elementsOf(document.viewXform),
        Pointwise(DoubleNear(1e-15), std::vector<double>{0, 0, -1, 0, 0, 1, 0, 0, 1, 0, 0, 0, 1, 2, 3, 1}));
    EXPECT_THAT(document.viewPoint, ElementsAre(1, 2, 3));
    EXPECT_EQ(document.viewScale, 1.0);
    // What the model gets takes the camera's place to the origin.
    mgPoint_c eye(1, 2, 3);
    eye *= document.viewXform.inverse();
    EXPECT_NEAR(eye.x, 0, 1e-15);
    EXPECT_NEAR(eye.y, 0, 1e-15);
    EXPECT_NEAR(eye.z, 0, 1e-15);
}

TEST(View, IsNotScaledByTheCamerasNode)
{
    const auto outcome = readScene(withCamera({{"scale", {2, 3, 0}}, {"translation", {1, 2, 3}}}));
    EXPECT_EQ(elementsOf(outcome.document->assembly()->viewXform),
              (std::vector<double>{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 1, 2, 3, 1}));
}

TEST(View, IsThatOfTheFirstCameraOfTheTree)
{
    GltfBuilder builder;
    builder.add("cameras", {{"type", "perspective"}});
    const int below = builder.addNode({{"camera", 0}, {"translation", {1, 0, 0}}}, false);
    builder.addNode({{"children", {below}}, {"translation", {0, 5, 0}}});
    builder.addNode({{"camera", 0}, {"translation", {9, 9, 9}}});
    const auto outcome = readScene(builder);
    EXPECT_THAT(outcome.document->assembly()->viewPoint, ElementsAre(1, 5, 0));
}

TEST(View, OfAPartDocumentBelongsToThePart)
{
    GltfBuilder builder = withCamera({{"translation", {1, 2, 3}}});
    builder.addNode({{"mesh", builder.triangleMesh()}});
    const auto outcome = readScene(builder);
    ASSERT_NE(outcome.document->part(), nullptr);
    EXPECT_THAT(outcome.document->part()->viewPoint, ElementsAre(1, 2, 3));
}

}  // namespace
}  // namespace gltf_tests
