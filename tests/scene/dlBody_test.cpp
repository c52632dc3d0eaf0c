#include "raylume/scene/dlBody.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <type_traits>
#include <vector>

#include "raylume/scene/dlMaterial.h"
#include "tests/scene/CountingDecal.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

static_assert(std::is_copy_constructible_v<dlBody>);

TEST(Body, Defaults)
{
    dlBody body;
    EXPECT_EQ(body.faceCount, 0);
    EXPECT_EQ(body.faces, nullptr);
    EXPECT_EQ(body.material, nullptr);
    EXPECT_FALSE(body.flag);
    EXPECT_EQ(body.bbox.isSet(), 0);
    EXPECT_EQ(body.level, 100);
}

TEST(Body, DestructorDeletesFacesThenMaterial)
{
    std::vector<std::string> gone;
    {
        dlBody body;
        body.faces = new dlFace[2];
        body.faces[0].addDecal(new CountingDecal(gone, "face 0"));
        body.faces[1].addDecal(new CountingDecal(gone, "face 1"));
        body.material = new dlMaterial;
        body.material->addDecals(new CountingDecal(gone, "material"));
    }
    EXPECT_THAT(gone, ElementsAre("face 1", "face 0", "material"));
}

void fill(dlBody& body)
{
    body.faceCount = 1;
    body.faces = new dlFace[1];
    body.material = new dlMaterial;
    body.flag = true;
    body.bbox.radius = 3;
    body.level = 4;
}

void expectShared(const dlBody& a, const dlBody& b)
{
    EXPECT_EQ(a.faceCount, b.faceCount);
    EXPECT_EQ(a.faces, b.faces);
    EXPECT_EQ(a.material, b.material);
    EXPECT_EQ(a.flag, b.flag);
    EXPECT_EQ(a.bbox.radius, b.bbox.radius);
    EXPECT_EQ(a.level, b.level);
}

void letGo(dlBody& body)
{
    body.faces = nullptr;
    body.material = nullptr;
}

TEST(Body, CopyConstructorIsMemberWise)
{
    dlBody source;
    fill(source);
    dlBody copy(source);
    expectShared(copy, source);
    letGo(copy);
}

TEST(Body, AssignmentSharesEverythingAndFreesNothing)
{
    std::vector<std::string> gone;
    dlBody source;
    fill(source);
    dlBody target;
    const std::unique_ptr<dlFace[]> orphanedFaces(target.faces = new dlFace[1]);
    orphanedFaces[0].addDecal(new CountingDecal(gone, "of the face"));
    const std::unique_ptr<dlMaterial> orphanedMaterial(target.material = new dlMaterial);
    orphanedMaterial->addDecals(new CountingDecal(gone, "of the material"));
    target = source;
    expectShared(target, source);
    EXPECT_THAT(gone, IsEmpty());
    letGo(target);
}

}  // namespace
