#include "raylume/scene/dlFace.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "raylume/scene/dlMaterial.h"
#include "tests/scene/CountingDecal.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(Face, Defaults)
{
    dlFace face;
    EXPECT_EQ(face.vertexCount, 0);
    EXPECT_EQ(face.vertices, nullptr);
    EXPECT_EQ(face.uvs, nullptr);
    EXPECT_EQ(face.stripCount, 0);
    EXPECT_EQ(face.stripStarts, nullptr);
    EXPECT_EQ(face.stripLengths, nullptr);
    EXPECT_EQ(face.projectedUVs, nullptr);
    EXPECT_EQ(face.material, nullptr);
    EXPECT_EQ(face.bbox.isSet(), 0);
    EXPECT_EQ(face.triangleCount, 0);
    EXPECT_EQ(face.faceId, -1);
    EXPECT_EQ(face.faceKey, -1);
    EXPECT_EQ(face.vizPropMode, 0);
    EXPECT_THAT(face.decals, IsEmpty());
}

TEST(Face, AddDecalIgnoresNullAndKeepsOrder)
{
    dlFace face;
    auto* first = new dlDecal;
    auto* second = new dlDecal;
    face.addDecal(nullptr);
    face.addDecal(first);
    face.addDecal(second);
    EXPECT_THAT(face.decals, ElementsAre(first, second));
}

TEST(Face, SamePointerIsStoredTwice)
{
    dlFace face;
    dlDecal decal;
    face.addDecal(&decal);
    face.addDecal(&decal);
    EXPECT_THAT(face.getDecalList(), ElementsAre(&decal, &decal));
    face.decals.clear();
}

TEST(Face, DecalListIsACopyOfThePointers)
{
    dlFace face;
    auto* decal = new dlDecal;
    face.addDecal(decal);
    std::list<dlDecal*> list = face.getDecalList();
    EXPECT_THAT(list, ElementsAre(decal));
    list.clear();
    EXPECT_THAT(face.decals, ElementsAre(decal));
}

TEST(Face, DestructorFreesArraysMaterialAndDecals)
{
    std::vector<std::string> gone;
    {
        dlFace face;
        face.vertices = new float[6]();
        face.uvs = new float[2]();
        face.stripStarts = new std::int32_t[1]();
        face.stripLengths = new std::int32_t[1]();
        face.projectedUVs = new float[2]();
        face.material = new dlMaterial;
        face.material->addDecals(new CountingDecal(gone, "of the material"));
        face.addDecal(new CountingDecal(gone, "first"));
        face.addDecal(new CountingDecal(gone, "second"));
        face.decals.push_back(nullptr);
    }
    EXPECT_THAT(gone, ElementsAre("of the material", "first", "second"));
}

TEST(Face, DestructorTakesArraysOfLengthZero)
{
    auto face = std::make_unique<dlFace>();
    face->vertices = new float[0];
    face->uvs = new float[0];
    face->stripStarts = new std::int32_t[0];
    face->stripLengths = new std::int32_t[0];
    EXPECT_NE(face->vertices, nullptr);
    face.reset();
    EXPECT_EQ(face, nullptr);
}

void fill(dlFace& face)
{
    face.vertexCount = 1;
    face.vertices = new float[6]();
    face.uvs = new float[2]();
    face.stripCount = 3;
    face.stripStarts = new std::int32_t[1]();
    face.stripLengths = new std::int32_t[1]();
    face.projectedUVs = new float[2]();
    face.material = new dlMaterial;
    face.bbox.radius = 5;
    face.triangleCount = -2;
    face.faceId = 6;
    face.faceKey = 7;
    face.vizPropMode = 8;
    face.addDecal(new dlDecal);
}

void expectShared(const dlFace& a, const dlFace& b)
{
    EXPECT_EQ(a.vertexCount, b.vertexCount);
    EXPECT_EQ(a.vertices, b.vertices);
    EXPECT_EQ(a.uvs, b.uvs);
    EXPECT_EQ(a.stripCount, b.stripCount);
    EXPECT_EQ(a.stripStarts, b.stripStarts);
    EXPECT_EQ(a.stripLengths, b.stripLengths);
    EXPECT_EQ(a.projectedUVs, b.projectedUVs);
    EXPECT_EQ(a.material, b.material);
    EXPECT_EQ(a.bbox.radius, b.bbox.radius);
    EXPECT_EQ(a.triangleCount, b.triangleCount);
    EXPECT_EQ(a.faceId, b.faceId);
    EXPECT_EQ(a.faceKey, b.faceKey);
    EXPECT_EQ(a.vizPropMode, b.vizPropMode);
    EXPECT_EQ(a.decals, b.decals);
}

// Lets a copy be destroyed beside its source.
void letGo(dlFace& face)
{
    face.vertices = face.uvs = face.projectedUVs = nullptr;
    face.stripStarts = face.stripLengths = nullptr;
    face.material = nullptr;
    face.decals.clear();
}

TEST(Face, CopyConstructorSharesEverything)
{
    dlFace source;
    fill(source);
    dlFace copy(source);
    expectShared(copy, source);
    letGo(copy);
}

// What a face has behind its pointers before it is overwritten. Frees it in the end: an array that is
// gone by then is freed twice, which ends the test.
struct Orphans {
    explicit Orphans(std::vector<std::string>& gone)
        : decal(std::make_unique<CountingDecal>(gone, "of the face"))
    {
        material->addDecals(new CountingDecal(gone, "of the material"));
    }

    void hangOn(dlFace& face) const
    {
        face.vertices = vertices.get();
        face.uvs = uvs.get();
        face.stripStarts = stripStarts.get();
        face.stripLengths = stripLengths.get();
        face.projectedUVs = projectedUVs.get();
        face.material = material.get();
        face.addDecal(decal.get());
    }

    std::unique_ptr<float[]> vertices = std::make_unique<float[]>(6);
    std::unique_ptr<float[]> uvs = std::make_unique<float[]>(2);
    std::unique_ptr<std::int32_t[]> stripStarts = std::make_unique<std::int32_t[]>(1);
    std::unique_ptr<std::int32_t[]> stripLengths = std::make_unique<std::int32_t[]>(1);
    std::unique_ptr<float[]> projectedUVs = std::make_unique<float[]>(2);
    std::unique_ptr<dlMaterial> material = std::make_unique<dlMaterial>();
    std::unique_ptr<CountingDecal> decal;
};

TEST(Face, AssignmentSharesEverythingAndFreesNothing)
{
    std::vector<std::string> gone;
    dlFace source;
    fill(source);
    dlFace target;
    const Orphans orphans(gone);
    orphans.hangOn(target);
    target = source;
    expectShared(target, source);
    EXPECT_THAT(gone, IsEmpty());
    letGo(target);
}

TEST(Face, SelfAssignmentKeepsEverything)
{
    dlFace face;
    fill(face);
    const dlFace& alias = face;
    const float* vertices = face.vertices;
    face = alias;
    EXPECT_EQ(face.vertices, vertices);
    EXPECT_EQ(face.decals.size(), 1u);
}

}  // namespace
