#include "raylume/appearance/FaceIndex.h"

#include <gtest/gtest.h>

#include <climits>
#include <random>

#include "tests/appearance/PartBuilder.h"

namespace {

dlFace* faceOf(const dlPart& part, int body, int face)
{
    return &part.bodies[body].faces[face];
}

dlFace* firstByWalking(const dlPart& part, std::int32_t id)
{
    for (std::int32_t body = 0; body < part.bodyCount; ++body)
        for (std::int32_t face = 0; face < part.bodies[body].faceCount; ++face)
            if (part.bodies[body].faces[face].faceId == id)
                return &part.bodies[body].faces[face];
    return nullptr;
}

TEST(FaceIndex, gives_the_first_face_of_each_id)
{
    dlPart part;
    fillBodies(part, {{7, 3, 7}, {3, 9, -1}});
    const FaceIndex index(part);
    EXPECT_EQ(index.find(7), faceOf(part, 0, 0));
    EXPECT_EQ(index.find(3), faceOf(part, 0, 1));
    EXPECT_EQ(index.find(9), faceOf(part, 1, 1));
    EXPECT_EQ(index.find(-1), faceOf(part, 1, 2));
    EXPECT_EQ(index.find(0), nullptr);
    EXPECT_EQ(index.find(INT_MAX), nullptr);
    EXPECT_EQ(index.find(INT_MIN), nullptr);
}

TEST(FaceIndex, agrees_with_a_walk)
{
    std::mt19937 random(11);
    FaceIds ids(5, std::vector<std::int32_t>(40));
    for (auto& body : ids)
        for (std::int32_t& id : body)
            id = static_cast<std::int32_t>(random() % 150) - 20;
    dlPart part;
    fillBodies(part, ids);
    const FaceIndex index(part);
    for (std::int32_t id = -30; id < 150; ++id)
        EXPECT_EQ(index.find(id), firstByWalking(part, id)) << id;
}

TEST(FaceIndex, of_a_part_without_bodies_is_empty)
{
    dlPart part;
    EXPECT_EQ(FaceIndex(part).find(-1), nullptr);
    part.bodyCount = 3;
    EXPECT_EQ(FaceIndex(part).find(-1), nullptr);
}

TEST(FaceIndex, passes_over_a_body_without_faces)
{
    dlPart part;
    fillBodies(part, {{1}, {2}});
    delete[] part.bodies[0].faces;
    part.bodies[0].faces = nullptr;
    part.bodies[0].faceCount = 5;
    const FaceIndex index(part);
    EXPECT_EQ(index.find(1), nullptr);
    EXPECT_EQ(index.find(2), faceOf(part, 1, 0));
}

TEST(FaceIndex, fits_until_the_bodies_or_their_faces_are_others)
{
    dlPart part;
    fillBodies(part, {{1, 2}, {3}});
    const FaceIndex index(part);
    EXPECT_TRUE(index.fits(part));
    part.bodies[1].faceCount = 0;
    EXPECT_FALSE(index.fits(part));
    part.bodies[1].faceCount = 1;
    EXPECT_TRUE(index.fits(part));
    part.bodyCount = 1;
    EXPECT_FALSE(index.fits(part));
    part.bodyCount = 2;
    dlFace* const old = part.bodies[0].faces;
    part.bodies[0].faces = new dlFace[2];
    EXPECT_FALSE(index.fits(part));
    delete[] old;
}

TEST(FaceIndices, keep_an_index_for_each_part)
{
    dlPart one;
    dlPart other;
    fillBodies(one, {{1}});
    fillBodies(other, {{1}});
    FaceIndices indices;
    EXPECT_EQ(indices.of(one).find(1), faceOf(one, 0, 0));
    EXPECT_EQ(indices.of(other).find(1), faceOf(other, 0, 0));
    EXPECT_EQ(&indices.of(one), &indices.of(one));
}

TEST(FaceIndices, make_an_index_anew_when_the_part_has_other_faces)
{
    dlPart part;
    FaceIndices indices;
    EXPECT_EQ(indices.of(part).find(4), nullptr);
    fillBodies(part, {{4}, {5}});
    EXPECT_EQ(indices.of(part).find(4), faceOf(part, 0, 0));
    delete[] part.bodies;
    fillBodies(part, {{6}, {7}, {8}});
    EXPECT_EQ(indices.of(part).find(4), nullptr);
    EXPECT_EQ(indices.of(part).find(8), faceOf(part, 2, 0));
}

}  // namespace
