#include "raylume/appearance/BoxProjection.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "raylume/scene/dlInstance.h"
#include "tests/appearance/AppearanceSource.h"
#include "tests/appearance/PartBuilder.h"
#include "tests/scene/CountingDecal.h"

namespace {

constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinite = std::numeric_limits<float>::infinity();

// Positions and normals, six floats a vertex.
void setVertices(dlFace& face, const std::vector<float>& values)
{
    delete[] face.vertices;
    face.vertexCount = static_cast<std::int32_t>(values.size() / 6);
    face.vertices = new float[values.size()];
    std::copy(values.begin(), values.end(), face.vertices);
}

std::vector<float> coordinatesOf(const dlFace& face)
{
    if (!face.projectedUVs)
        return {};
    return {face.projectedUVs, face.projectedUVs + 2 * face.vertexCount};
}

dlMaterial boxMaterial(float x = 0, float y = 0, float z = 0)
{
    dlMaterial material;
    material.texture.mappingType = 3;
    material.texture.origin[0] = x;
    material.texture.origin[1] = y;
    material.texture.origin[2] = z;
    return material;
}

struct SideCase {
    const char* name;
    float normal[3];
    float uv[2];  // of the point 1, 2, 3
};

const SideCase kSides[] = {
    {"towards_x", {1, 0, 0}, {2, 3}},
    {"towards_y", {0, 1, 0}, {-1, 3}},
    {"towards_z", {0, 0, 1}, {1, 2}},
    {"against_x", {-1, 0, 0}, {-2, 3}},
    {"against_y", {0, -1, 0}, {1, 3}},
    {"against_z", {0, 0, -1}, {1, -2}},
    {"a_normal_of_any_length", {0.01f, 0.02f, 0.03f}, {1, 2}},
    {"the_largest_counts_and_not_the_last", {-3, 1, -2}, {-2, 3}},
    {"x_and_y_alike_is_x", {1, 1, 0}, {2, 3}},
    {"y_and_z_alike_is_y", {0, 1, 1}, {-1, 3}},
    {"z_and_against_x_alike_is_z", {-1, 0, 1}, {1, 2}},
    {"against_x_and_against_y_alike_is_against_x", {-1, -1, -1}, {-2, 3}},
    {"against_y_and_against_z_alike_is_against_y", {0, -1, -1}, {1, 3}},
    {"a_zero_normal_is_x", {0, 0, 0}, {2, 3}},
    {"a_normal_that_is_no_number_is_x", {kNan, kNan, kNan}, {2, 3}},
    {"a_normal_partly_no_number_is_x", {0, 5, kNan}, {2, 3}},
    {"an_infinite_normal_towards_x_is_x", {kInfinite, 0, 0}, {2, 3}},
    {"an_infinite_normal_towards_y_is_x", {0, kInfinite, 0}, {2, 3}},
    {"an_infinite_normal_against_y_is_x", {0, -kInfinite, 0}, {2, 3}},
    {"an_infinite_normal_against_x_is_against_x", {-kInfinite, 0, 0}, {-2, 3}},
};

class BoxSide : public testing::TestWithParam<SideCase> {};

TEST_P(BoxSide, LaysTheImageInItsFrame)
{
    const SideCase& row = GetParam();
    dlFace face;
    setVertices(face, {1, 2, 3, row.normal[0], row.normal[1], row.normal[2]});
    boxCoordsForFace(&face, boxMaterial(), 1);
    EXPECT_EQ(coordinatesOf(face), (std::vector<float>{row.uv[0], row.uv[1]}));
}

INSTANTIATE_TEST_SUITE_P(Rows, BoxSide, testing::ValuesIn(kSides),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(BoxCoordinates, are_those_of_each_vertex_by_its_own_normal)
{
    dlFace face;
    setVertices(face, {1, 2, 3, 1, 0, 0, 4, 5, 6, 0, 0, -1, 7, 8, 9, 0, 1, 0});
    boxCoordsForFace(&face, boxMaterial(), 1);
    EXPECT_EQ(coordinatesOf(face), (std::vector<float>{2, 3, 4, -5, -7, 9}));
}

TEST(BoxCoordinates, start_from_the_origin_of_the_texture)
{
    dlFace face;
    setVertices(face, {1, 2, 3, 1, 0, 0, 1, 2, 3, 0, 1, 0});
    boxCoordsForFace(&face, boxMaterial(10, 20, 30), 1);
    EXPECT_EQ(coordinatesOf(face), (std::vector<float>{-18, -27, 9, -27}));
}

TEST(BoxCoordinates, are_divided_by_the_diagonal)
{
    dlFace face;
    setVertices(face, {1, 2, 3, 1, 0, 0});
    boxCoordsForFace(&face, boxMaterial(), 4);
    EXPECT_EQ(coordinatesOf(face), (std::vector<float>{0.5f, 0.75f}));
}

// 1.6 - 3.8 taken in double precision: narrowed and then divided, another bit than the other way round.
TEST(BoxCoordinates, are_narrowed_before_they_are_divided)
{
    dlFace face;
    setVertices(face, {1.6f, 0, 0, 0, 0, 1});
    boxCoordsForFace(&face, boxMaterial(3.8f, 0, 0), 5);
    EXPECT_EQ(bitsOf(face.projectedUVs[0]), 0xBEE147ADu);
}

TEST(BoxCoordinates, of_a_diagonal_of_zero_are_not_guarded)
{
    dlFace face;
    setVertices(face, {1, -2, 0, 0, 0, 1, 0, 0, 0, 0, 0, 1});
    boxCoordsForFace(&face, boxMaterial(), 0);
    EXPECT_EQ(face.projectedUVs[0], std::numeric_limits<float>::infinity());
    EXPECT_EQ(face.projectedUVs[1], -std::numeric_limits<float>::infinity());
    EXPECT_TRUE(std::isnan(face.projectedUVs[2]));
}

TEST(BoxCoordinates, replace_those_that_were_there)
{
    dlFace face;
    face.projectedUVs = new float[1]{99};
    setVertices(face, {1, 2, 3, 1, 0, 0, 1, 2, 3, 1, 0, 0});
    boxCoordsForFace(&face, boxMaterial(), 1);
    EXPECT_EQ(coordinatesOf(face), (std::vector<float>{2, 3, 2, 3}));
}

TEST(BoxCoordinates, of_a_face_without_vertices_are_an_empty_array)
{
    dlFace face;
    boxCoordsForFace(&face, boxMaterial(), 1);
    EXPECT_NE(face.projectedUVs, nullptr);
    dlFace counted;
    counted.vertexCount = 2;
    boxCoordsForFace(&counted, boxMaterial(), 1);
    EXPECT_EQ(coordinatesOf(counted), (std::vector<float>{0, 0, 0, 0}));
    dlFace negative;
    negative.vertexCount = -1;
    boxCoordsForFace(&negative, boxMaterial(), 1);
    EXPECT_NE(negative.projectedUVs, nullptr);
}

TEST(BoxCoordinates, leave_the_decals_of_the_material_to_their_owner)
{
    std::vector<std::string> deleted;
    {
        dlMaterial material = boxMaterial();
        material.addDecals(new CountingDecal(deleted, "decal"));
        dlFace face;
        setVertices(face, {1, 2, 3, 1, 0, 0});
        boxCoordsForFace(&face, material, 1);
        boxCoordsForFace(nullptr, material, 1);
        EXPECT_TRUE(deleted.empty());
    }
    EXPECT_EQ(deleted, std::vector<std::string>{"decal"});
}

// One body of one face and one vertex, in a box whose diagonal is 5.
class BoxOfInstance : public testing::Test {
protected:
    BoxOfInstance()
    {
        fillBodies(part, {{1}});
        setVertices(face(), {1, 2, 3, 1, 0, 0});
        const float corners[2][3] = {{0, 0, 0}, {3, 0, 4}};
        part.bbox.addPoint(corners[0]);
        part.bbox.addPoint(corners[1]);
        instance.part = &part;
    }

    dlFace& face(int body = 0, int index = 0) { return part.bodies[body].faces[index]; }

    std::vector<std::string> deleted;  // outlives the owners of decals
    dlPart part;
    dlInstance instance;
};

TEST_F(BoxOfInstance, is_projected_over_the_diagonal_of_the_part)
{
    part.material = boxMaterial();
    generateBoxTextureCoords(&instance);
    EXPECT_EQ(coordinatesOf(face()), (std::vector<float>{2.0f / 5.0f, 3.0f / 5.0f}));
}

TEST_F(BoxOfInstance, is_left_alone_by_any_other_mapping)
{
    face().projectedUVs = new float[2]{8, 9};
    for (const std::uint32_t type : {0u, 1u, 2u, 4u, 5u, 6u}) {
        part.material.texture.mappingType = type;
        generateBoxTextureCoords(&instance);
        EXPECT_EQ(coordinatesOf(face()), (std::vector<float>{8, 9}));
    }
}

// Each level has an origin of its own, told from the first coordinate.
TEST_F(BoxOfInstance, goes_by_the_material_of_instance_then_face_then_body_then_part)
{
    const auto originTaken = [&] {
        generateBoxTextureCoords(&instance);
        return 2 - std::lround(face().projectedUVs[0] * 5);
    };
    part.material = boxMaterial(0, 10, 0);
    EXPECT_EQ(originTaken(), 10);
    part.bodies[0].material = new dlMaterial(boxMaterial(0, 20, 0));
    EXPECT_EQ(originTaken(), 20);
    face().material = new dlMaterial(boxMaterial(0, 30, 0));
    EXPECT_EQ(originTaken(), 30);
    instance.material = new dlMaterial(boxMaterial(0, 40, 0));
    EXPECT_EQ(originTaken(), 40);
}

TEST_F(BoxOfInstance, is_left_alone_when_the_effective_material_maps_otherwise)
{
    part.material = boxMaterial();
    part.bodies[0].material = new dlMaterial(boxMaterial());
    face().material = new dlMaterial(boxMaterial());
    instance.material = new dlMaterial;
    generateBoxTextureCoords(&instance);
    EXPECT_EQ(face().projectedUVs, nullptr);
}

TEST_F(BoxOfInstance, reaches_every_face_of_every_body)
{
    delete[] part.bodies;
    fillBodies(part, {{1, 2}, {3}});
    part.material = boxMaterial();
    for (dlFace* each : {&face(0, 0), &face(0, 1), &face(1, 0)})
        setVertices(*each, {5, 10, 15, 0, 0, 1});
    part.bodies[0].flag = true;
    generateBoxTextureCoords(&instance);
    for (const dlFace* each : {&face(0, 0), &face(0, 1), &face(1, 0)})
        EXPECT_EQ(coordinatesOf(*each), (std::vector<float>{1, 2}));
}

TEST_F(BoxOfInstance, is_the_same_for_a_body_with_its_flag_set)
{
    part.material = boxMaterial(0.1f, 0.2f, 0.3f);
    generateBoxTextureCoords(&instance);
    const std::vector<float> once = coordinatesOf(face());
    part.bodies[0].flag = true;
    generateBoxTextureCoords(&instance);
    EXPECT_EQ(coordinatesOf(face()), once);
}

TEST_F(BoxOfInstance, leaves_the_decals_of_the_material_to_their_owner)
{
    instance.material = new dlMaterial(boxMaterial());
    instance.material->addDecals(new CountingDecal(deleted, "decal"));
    part.bodies[0].flag = true;
    generateBoxTextureCoords(&instance);
    EXPECT_TRUE(deleted.empty());
    EXPECT_EQ(instance.material->getDecals().size(), 1u);
}

TEST_F(BoxOfInstance, of_an_empty_box_divides_by_its_huge_diagonal)
{
    part.bbox = dlBBox();
    part.material = boxMaterial();
    generateBoxTextureCoords(&instance);
    EXPECT_EQ(coordinatesOf(face()), (std::vector<float>{0, 0}));
}

TEST_F(BoxOfInstance, of_a_box_of_one_point_is_not_finite)
{
    part.bbox = dlBBox();
    const float point[3] = {1, 2, 3};
    part.bbox.addPoint(point);
    part.material = boxMaterial();
    generateBoxTextureCoords(&instance);
    EXPECT_EQ(face().projectedUVs[0], std::numeric_limits<float>::infinity());
}

TEST_F(BoxOfInstance, passes_over_what_is_missing)
{
    part.material = boxMaterial();
    delete[] part.bodies[0].faces;
    part.bodies[0].faces = nullptr;
    generateBoxTextureCoords(&instance);
    EXPECT_EQ(part.bodies[0].faces, nullptr);
    dlInstance empty;
    generateBoxTextureCoords(&empty);
    EXPECT_EQ(empty.part, nullptr);
    generateBoxTextureCoords(nullptr);
    dlPart bodiless;
    bodiless.bodyCount = 2;
    empty.part = &bodiless;
    generateBoxTextureCoords(&empty);
    EXPECT_EQ(bodiless.bodies, nullptr);
}

}  // namespace
