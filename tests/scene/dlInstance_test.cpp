#include "raylume/scene/dlInstance.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <functional>
#include <limits>
#include <memory>
#include <ostream>

#include "raylume/scene/dlMaterial.h"
#include "tests/scene/CountingDecal.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(Instance, Defaults)
{
    dlInstance instance;
    EXPECT_EQ(instance.part, nullptr);
    EXPECT_EQ(instance.configName, "");
    EXPECT_TRUE(std::equal(instance.xform.m, instance.xform.m + 16, dlXform().m));
    EXPECT_EQ(instance.name, "");
    EXPECT_EQ(instance.leafName, "");
    EXPECT_EQ(instance.material, nullptr);
    EXPECT_EQ(instance.node, nullptr);
    EXPECT_FALSE(instance.hasAppearanceAnimation);
    EXPECT_THAT(instance.decals, IsEmpty());
    EXPECT_EQ(instance.visible, 1);
}

TEST(Instance, VisibleIsANumber)
{
    dlInstance instance;
    EXPECT_EQ(instance.getVisible(), 1);
    instance.setVisible(-2);
    EXPECT_EQ(instance.getVisible(), -2);
    EXPECT_EQ(instance.visible, -2);
}

TEST(Instance, AddDecalIgnoresNullAndKeepsOrder)
{
    dlInstance instance;
    auto* first = new dlDecal;
    auto* second = new dlDecal;
    instance.addDecal(first);
    instance.addDecal(nullptr);
    instance.addDecal(second);
    EXPECT_THAT(instance.decals, ElementsAre(first, second));
}

TEST(Instance, DecalListIsACopyOfThePointers)
{
    dlInstance instance;
    auto* decal = new dlDecal;
    instance.addDecal(decal);
    const dlInstance& readOnly = instance;
    std::list<dlDecal*> list = readOnly.getDecalList();
    EXPECT_THAT(list, ElementsAre(decal));
    list.clear();
    EXPECT_EQ(instance.decals.size(), 1u);
}

TEST(Instance, DecalListOfAFaceIsFilteredInOrder)
{
    dlInstance instance;
    std::array<dlDecal*, 4> decals;
    for (int i = 0; i < 4; ++i) {
        decals[static_cast<std::size_t>(i)] = new dlDecal;
        decals[static_cast<std::size_t>(i)]->setFaceId(i % 2);
        instance.addDecal(decals[static_cast<std::size_t>(i)]);
    }
    EXPECT_THAT(instance.getDecalList(1), ElementsAre(decals[1], decals[3]));
    EXPECT_THAT(instance.getDecalList(0), ElementsAre(decals[0], decals[2]));
    EXPECT_THAT(instance.getDecalList(2), IsEmpty());
    EXPECT_THAT(instance.getDecalList(-1), IsEmpty());
}

TEST(Instance, DestructorDeletesMaterialAndDecalsOnly)
{
    std::vector<std::string> gone;
    {
        dlInstance instance;
        instance.part = reinterpret_cast<dlPart*>(0x1);  // Borrowed: nobody may look into these two.
        instance.node = reinterpret_cast<dlAssemblyNode*>(0x1);
        instance.material = new dlMaterial;
        instance.material->addDecals(new CountingDecal(gone, "of the material"));
        instance.addDecal(new CountingDecal(gone, "decal"));
        instance.decals.push_back(nullptr);
    }
    EXPECT_THAT(gone, ElementsAre("of the material", "decal"));
}

void fill(dlInstance& instance)
{
    instance.part = reinterpret_cast<dlPart*>(0x10);
    instance.configName = "config";
    instance.xform.m[3] = 3;
    instance.xform.extra[2] = 9;
    instance.name = "name";
    instance.leafName = "leaf";
    instance.material = new dlMaterial;
    instance.node = reinterpret_cast<dlAssemblyNode*>(0x20);
    instance.hasAppearanceAnimation = true;
    instance.addDecal(new dlDecal);
    instance.visible = 7;
}

void expectShared(const dlInstance& a, const dlInstance& b)
{
    EXPECT_EQ(a.part, b.part);
    EXPECT_EQ(a.configName, b.configName);
    EXPECT_EQ(a.xform.m[3], b.xform.m[3]);
    EXPECT_EQ(a.xform.extra[2], b.xform.extra[2]);
    EXPECT_EQ(a.name, b.name);
    EXPECT_EQ(a.leafName, b.leafName);
    EXPECT_EQ(a.material, b.material);
    EXPECT_EQ(a.node, b.node);
    EXPECT_EQ(a.hasAppearanceAnimation, b.hasAppearanceAnimation);
    EXPECT_EQ(a.decals, b.decals);
    EXPECT_EQ(a.visible, b.visible);
}

void letGo(dlInstance& instance)
{
    instance.material = nullptr;
    instance.decals.clear();
}

TEST(Instance, CopyConstructorSharesEverything)
{
    dlInstance source;
    fill(source);
    dlInstance copy(source);
    expectShared(copy, source);
    letGo(copy);
}

TEST(Instance, AssignmentSharesEverythingAndFreesNothing)
{
    std::vector<std::string> gone;
    dlInstance source;
    fill(source);
    dlInstance target;
    const auto orphanedMaterial = std::make_unique<dlMaterial>();
    const auto orphanedDecal = std::make_unique<CountingDecal>(gone, "orphan");
    target.material = orphanedMaterial.get();
    target.addDecal(orphanedDecal.get());
    target = source;
    expectShared(target, source);
    EXPECT_THAT(gone, IsEmpty());
    EXPECT_EQ(orphanedMaterial->rvIndex, -1);
    letGo(target);
}

// Two instances, and what they may hang on: the records lie in one array, so that their addresses
// have a known order.
struct Pair {
    dlMaterial materials[2];
    dlDecal decals[3];
    dlInstance a, b;

    Pair() = default;
    Pair(const Pair&) = delete;
    ~Pair()
    {
        letGo(a);
        letGo(b);
    }
};

enum class Order { same, aFirst, bFirst };

struct OrderCase {
    const char* name;
    std::function<void(Pair&)> prepare;
    Order expected;
};

void PrintTo(const OrderCase& row, std::ostream* out)
{
    *out << row.name;
}

void animate(dlInstance& instance, const char* name)
{
    instance.hasAppearanceAnimation = true;
    instance.name = name;
}

const OrderCase kOrders[] = {
    {"names_and_placements_do_not_count_by_themselves",
     [](Pair& p) {
         p.a.name = "a";
         p.b.name = "b";
         p.b.xform.m[12] = 1;
         p.b.visible = 0;
         p.b.configName = "other";
     },
     Order::same},
    {"animated_ones_go_by_name",
     [](Pair& p) {
         animate(p.a, "a");
         animate(p.b, "b");
     },
     Order::aFirst},
    {"names_count_if_only_a_is_animated",
     [](Pair& p) {
         animate(p.a, "b");
         p.b.name = "a";
     },
     Order::bFirst},
    {"names_count_if_only_b_is_animated",
     [](Pair& p) {
         p.a.name = "a";
         animate(p.b, "b");
     },
     Order::aFirst},
    {"the_flags_themselves_do_not_count",
     [](Pair& p) {
         animate(p.a, "same");
         p.b.name = "same";
     },
     Order::same},
    {"a_name_that_is_a_prefix_comes_first",
     [](Pair& p) {
         animate(p.a, "name");
         animate(p.b, "name2");
     },
     Order::aFirst},
    {"names_compare_as_unsigned_bytes",
     [](Pair& p) {
         animate(p.a, "z");
         animate(p.b, "\xE9");
     },
     Order::aFirst},
    {"names_come_before_decals",
     [](Pair& p) {
         animate(p.a, "b");
         animate(p.b, "a");
         p.b.addDecal(&p.decals[0]);
     },
     Order::bFirst},
    {"equal_names_go_on_to_the_decals",
     [](Pair& p) {
         animate(p.a, "same");
         animate(p.b, "same");
         p.a.addDecal(&p.decals[0]);
     },
     Order::bFirst},
    {"fewer_decals_come_first", [](Pair& p) { p.b.addDecal(&p.decals[0]); }, Order::aFirst},
    {"the_number_of_decals_comes_before_their_addresses",
     [](Pair& p) {
         p.a.addDecal(&p.decals[0]);
         p.b.addDecal(&p.decals[1]);
         p.b.addDecal(&p.decals[2]);
     },
     Order::aFirst},
    {"the_higher_decal_address_comes_first",
     [](Pair& p) {
         p.a.addDecal(&p.decals[1]);
         p.b.addDecal(&p.decals[0]);
     },
     Order::aFirst},
    {"the_first_pair_of_decals_that_differs_decides",
     [](Pair& p) {
         for (const int i : {2, 0, 1}) {
             p.a.addDecal(&p.decals[i]);
         }
         for (const int i : {2, 1, 0}) {
             p.b.addDecal(&p.decals[i]);
         }
     },
     Order::bFirst},
    {"the_same_decals_are_the_same",
     [](Pair& p) {
         p.a.addDecal(&p.decals[0]);
         p.b.addDecal(&p.decals[0]);
     },
     Order::same},
    {"equal_decals_at_other_addresses_differ",
     [](Pair& p) {
         p.a.addDecal(&p.decals[0]);
         p.b.addDecal(&p.decals[2]);
     },
     Order::bFirst},
    {"decals_come_before_materials",
     [](Pair& p) {
         p.b.addDecal(&p.decals[0]);
         p.a.material = &p.materials[0];
     },
     Order::aFirst},
    {"equal_materials_at_other_addresses_are_the_same",
     [](Pair& p) {
         p.a.material = &p.materials[0];
         p.b.material = &p.materials[1];
     },
     Order::same},
    {"materials_go_by_their_value",
     [](Pair& p) {
         p.a.material = &p.materials[1];
         p.b.material = &p.materials[0];
         p.materials[0].ambient = 0.75f;
     },
     Order::aFirst},
    {"materials_that_are_equal_but_not_in_order_differ",
     [](Pair& p) {
         p.a.material = &p.materials[0];
         p.b.material = &p.materials[1];
         p.materials[1].shaderName = "shader";
     },
     Order::aFirst},
    {"materials_compare_through_the_virtual_call",
     [](Pair& p) {
         p.a.material = &p.decals[0];
         p.b.material = &p.decals[1];
         p.decals[0].setInstanceDecal(1);  // Plain materials would not look at this.
     },
     Order::aFirst},
    {"no_material_comes_first", [](Pair& p) { p.b.material = &p.materials[0]; }, Order::aFirst},
    {"no_material_comes_first_whatever_the_other_is",
     [](Pair& p) {
         p.a.material = &p.materials[0];
         p.materials[0].colorRef = 0;
     },
     Order::bFirst},
    {"a_nan_in_a_material_makes_them_the_same",
     [](Pair& p) {
         p.a.material = &p.materials[0];
         p.b.material = &p.materials[1];
         p.materials[0].ambient = std::numeric_limits<float>::quiet_NaN();
         p.materials[1].rvIndex = 5;
     },
     Order::same},
};

class InstanceOrder : public testing::TestWithParam<OrderCase> {};

TEST_P(InstanceOrder, IsAsTold)
{
    Pair pair;
    GetParam().prepare(pair);
    const dlInstanceLess less;
    EXPECT_EQ(less(&pair.a, &pair.b), GetParam().expected == Order::aFirst);
    EXPECT_EQ(less(&pair.b, &pair.a), GetParam().expected == Order::bFirst);
    EXPECT_FALSE(less(&pair.a, &pair.a));
}

INSTANTIATE_TEST_SUITE_P(Rows, InstanceOrder, testing::ValuesIn(kOrders),
                         [](const auto& row) { return row.param.name; });

}  // namespace
