#include "raylume/scene/dlPart.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <memory>

#include "tests/scene/CountingDecal.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(Part, Defaults)
{
    dlPart part;
    EXPECT_EQ(part.bodyCount, 0);
    EXPECT_EQ(part.bodies, nullptr);
    EXPECT_EQ(part.bbox.isSet(), 0);
    EXPECT_EQ(part.instanceUseCount, 0);
    EXPECT_EQ(part.reservedA, 0);
    EXPECT_EQ(part.reservedB, 0);
    EXPECT_EQ(part.reservedC, 0);
    EXPECT_EQ(part.reservedD, 0);
    EXPECT_EQ(part.name, "");
    EXPECT_EQ(part.shortName, "");
    EXPECT_TRUE(part.material == dlMaterial());
    EXPECT_THAT(part.associatedInstances, IsEmpty());
    EXPECT_THAT(part.associatedItemIDs, IsEmpty());
    EXPECT_THAT(part.associatedPersistentIDs, IsEmpty());
}

TEST(PartGroups, FirstInstanceStartsGroupZero)
{
    dlPart part;
    dlInstance instance;
    part.addAssociatedInstance(&instance);
    ASSERT_EQ(part.associatedInstances.size(), 1u);
    EXPECT_EQ(part.associatedInstances.begin()->first, &instance);
    EXPECT_THAT(part.associatedInstances.begin()->second, ElementsAre(&instance));
    EXPECT_EQ(part.getAssociatedPersistentID(&instance), 0);
    EXPECT_EQ(part.getAssociatedItemID(&instance), -1);
}

TEST(PartGroups, MemberThatJoinsHasNoNumbersOfItsOwn)
{
    dlPart part;
    dlInstance instances[3];
    for (dlInstance& instance : instances) {
        part.addAssociatedInstance(&instance);
    }
    ASSERT_EQ(part.associatedInstances.size(), 1u);
    EXPECT_THAT(part.associatedInstances[&instances[0]],
                ElementsAre(&instances[0], &instances[1], &instances[2]));
    EXPECT_EQ(part.associatedItemIDs.size(), 1u);
    EXPECT_EQ(part.associatedPersistentIDs.size(), 1u);
}

TEST(PartGroups, StrangersGetZeroAndEnterTheMaps)
{
    dlPart part;
    dlInstance first, member;
    part.addAssociatedInstance(&first);
    part.addAssociatedInstance(&member);
    EXPECT_EQ(part.getAssociatedItemID(&member), 0);
    EXPECT_EQ(part.getAssociatedPersistentID(&member), 0);
    EXPECT_EQ(part.associatedItemIDs.size(), 2u);
    EXPECT_EQ(part.associatedPersistentIDs.size(), 2u);
}

TEST(PartGroups, ItemNumberIsWhatTheCallerSet)
{
    dlPart part;
    dlInstance instance, stranger;
    part.addAssociatedInstance(&instance);
    part.setAssociatedItemID(&instance, 42);
    part.setAssociatedItemID(&stranger, 7);
    EXPECT_EQ(part.getAssociatedItemID(&instance), 42);
    EXPECT_EQ(part.getAssociatedItemID(&stranger), 7);
    EXPECT_EQ(part.getAssociatedPersistentID(&instance), 0);
}

// The stranger's entry in associatedPersistentIDs does not count.
TEST(PartGroups, StableNumberIsTheNumberOfGroupsBefore)
{
    dlPart part;
    dlInstance plain, stranger, animated, other;
    animated.hasAppearanceAnimation = other.hasAppearanceAnimation = true;
    animated.name = "animated";
    other.name = "other";
    part.addAssociatedInstance(&plain);
    EXPECT_EQ(part.getAssociatedPersistentID(&stranger), 0);
    part.addAssociatedInstance(&animated);
    part.addAssociatedInstance(&plain);
    part.addAssociatedInstance(&other);
    EXPECT_EQ(part.getAssociatedPersistentID(&plain), 0);
    EXPECT_EQ(part.getAssociatedPersistentID(&animated), 1);
    EXPECT_EQ(part.getAssociatedPersistentID(&other), 2);
}

TEST(PartGroups, AnimatedInstancesShareAGroupByName)
{
    dlPart part;
    dlInstance a, sameName, b;
    for (dlInstance* instance : {&a, &sameName, &b}) {
        instance->hasAppearanceAnimation = true;
        instance->name = instance == &b ? "b" : "a";
        part.addAssociatedInstance(instance);
    }
    EXPECT_THAT(part.associatedInstances[&a], ElementsAre(&a, &sameName));
    EXPECT_THAT(part.associatedInstances[&b], ElementsAre(&b));
}

TEST(PartGroups, EqualOverridesInOtherObjectsShareAGroup)
{
    dlPart part;
    dlInstance a, b;
    a.material = new dlMaterial;
    b.material = new dlMaterial;
    part.addAssociatedInstance(&a);
    part.addAssociatedInstance(&b);
    EXPECT_THAT(part.associatedInstances[&a], ElementsAre(&a, &b));
}

// The two materials are equal by ==, which plays no part.
TEST(PartGroups, OverridesWithAnotherShaderOrTextureStayApart)
{
    dlPart part;
    dlInstance plain, shaded, textured;
    for (dlInstance* instance : {&plain, &shaded, &textured}) {
        instance->material = new dlMaterial;
    }
    shaded.material->shaderName = "shader";
    textured.material->texture.filename = L"image";
    for (dlInstance* instance : {&plain, &shaded, &textured}) {
        part.addAssociatedInstance(instance);
    }
    EXPECT_EQ(part.associatedInstances.size(), 3u);
}

TEST(PartGroups, EqualDecalsInOtherObjectsStayApart)
{
    dlPart part;
    dlInstance a, b;
    a.addDecal(new dlDecal);
    b.addDecal(new dlDecal);
    part.addAssociatedInstance(&a);
    part.addAssociatedInstance(&b);
    EXPECT_EQ(part.associatedInstances.size(), 2u);
}

TEST(PartGroups, SameInstanceTwiceIsTwoMembers)
{
    dlPart part;
    dlInstance instance;
    part.addAssociatedInstance(&instance);
    part.setAssociatedItemID(&instance, 5);
    part.addAssociatedInstance(&instance);
    EXPECT_THAT(part.associatedInstances[&instance], ElementsAre(&instance, &instance));
    EXPECT_EQ(part.getAssociatedItemID(&instance), 5);
}

TEST(PartGroups, NullIsIgnored)
{
    dlPart part;
    part.addAssociatedInstance(nullptr);
    EXPECT_THAT(part.associatedInstances, IsEmpty());
    EXPECT_THAT(part.associatedPersistentIDs, IsEmpty());
}

// With a NaN the comparison is no order; an unlike material finds the NaN's group by it.
TEST(PartGroups, NaNGroupsAsTheMapFinds)
{
    dlPart part;
    dlInstance broken, other;
    broken.material = new dlMaterial;
    broken.material->ambient = std::numeric_limits<float>::quiet_NaN();
    other.material = new dlMaterial;
    other.material->rvIndex = 9;
    part.addAssociatedInstance(&broken);
    part.addAssociatedInstance(&other);
    EXPECT_THAT(part.associatedInstances[&broken], ElementsAre(&broken, &other));
}

// b and plain are equivalent, but the walk from c never meets b.
TEST(PartGroups, MixedFlagsGroupAsTheMapFinds)
{
    dlPart part;
    dlInstance b, c, d, plain;
    b.name = "b";
    c.name = "c";
    d.name = "d";
    plain.name = "z";
    c.hasAppearanceAnimation = d.hasAppearanceAnimation = true;
    ASSERT_FALSE(dlInstanceLess()(&b, &plain) || dlInstanceLess()(&plain, &b));
    for (dlInstance* instance : {&b, &c, &d, &plain}) {
        part.addAssociatedInstance(instance);
    }
    EXPECT_EQ(part.associatedInstances.size(), 4u);
    EXPECT_EQ(part.getAssociatedPersistentID(&plain), 3);
    EXPECT_EQ(part.getAssociatedItemID(&plain), -1);
}

TEST(Part, DestructorDeletesBodiesAndLeavesInstances)
{
    std::vector<std::string> gone;
    dlInstance instance;
    instance.name = "still here";
    {
        dlPart part;
        part.bodies = new dlBody[1];
        part.bodies[0].material = new dlMaterial;
        part.bodies[0].material->addDecals(new CountingDecal(gone, "body"));
        part.material.addDecals(new CountingDecal(gone, "part"));
        part.addAssociatedInstance(&instance);
    }
    EXPECT_THAT(gone, ElementsAre("body", "part"));
    EXPECT_EQ(instance.name, "still here");
}

void fill(dlPart& part, dlInstance& instance)
{
    part.bodyCount = 1;
    part.bodies = new dlBody[1];
    part.bbox.radius = 2;
    part.instanceUseCount = 3;
    part.reservedA = 4;
    part.reservedB = 5;
    part.reservedC = 6;
    part.reservedD = 7;
    part.name = "name";
    part.shortName = "short";
    part.material.rvIndex = 8;
    part.material.reservedNameA = "A";
    part.material.reservedNameB = "B";
    part.addAssociatedInstance(&instance);
    part.setAssociatedItemID(&instance, 9);
}

void expectShared(dlPart& a, dlPart& b, dlInstance& instance)
{
    EXPECT_EQ(a.bodyCount, b.bodyCount);
    EXPECT_EQ(a.bodies, b.bodies);
    EXPECT_EQ(a.bbox.radius, b.bbox.radius);
    EXPECT_EQ(a.instanceUseCount, b.instanceUseCount);
    EXPECT_EQ(a.reservedA, 4);
    EXPECT_EQ(a.reservedB, 5);
    EXPECT_EQ(a.reservedC, 6);
    EXPECT_EQ(a.reservedD, 7);
    EXPECT_EQ(a.name, b.name);
    EXPECT_EQ(a.shortName, b.shortName);
    EXPECT_EQ(a.material.rvIndex, 8);
    EXPECT_THAT(a.associatedInstances[&instance], ElementsAre(&instance));
    EXPECT_EQ(a.associatedItemIDs, b.associatedItemIDs);
    EXPECT_EQ(a.associatedPersistentIDs, b.associatedPersistentIDs);
}

TEST(Part, CopyConstructorSharesBodiesAndCopiesTheMaterialWhole)
{
    dlInstance instance;
    dlPart source;
    fill(source, instance);
    dlPart copy(source);
    expectShared(copy, source, instance);
    EXPECT_EQ(copy.material.reservedNameA, "A");
    EXPECT_EQ(copy.material.reservedNameB, "B");
    copy.bodies = nullptr;
}

TEST(Part, AssignmentSharesBodiesAndKeepsTheTwoReservedNames)
{
    dlInstance instance, replaced;
    dlPart source;
    fill(source, instance);
    dlPart target;
    const std::unique_ptr<dlBody[]> orphan(target.bodies = new dlBody[1]);
    target.addAssociatedInstance(&replaced);
    target.material.reservedNameA = "kept A";
    target.material.reservedNameB = "kept B";
    target = source;
    expectShared(target, source, instance);
    EXPECT_EQ(target.associatedInstances.size(), 1u);
    EXPECT_EQ(target.material.reservedNameA, "kept A");
    EXPECT_EQ(target.material.reservedNameB, "kept B");
    EXPECT_EQ(orphan[0].level, 100);
    target.bodies = nullptr;
}

TEST(Part, MaterialOfACopyIsItsOwn)
{
    dlPart source;
    dlPart copy(source);
    copy.material.rvIndex = 3;
    EXPECT_EQ(source.material.rvIndex, -1);
}

TEST(Part, MaterialDecalsAreSharedByPointer)
{
    dlPart source;
    source.material.addDecals(new dlDecal);
    dlPart copy(source), assigned;
    assigned = source;
    EXPECT_EQ(copy.material.decals, source.material.decals);
    EXPECT_EQ(assigned.material.decals, source.material.decals);
    copy.material.decals.clear();
    assigned.material.decals.clear();
}

}  // namespace
