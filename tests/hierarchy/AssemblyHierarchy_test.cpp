#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <memory>

#include "raylume/platform/Text.h"
#include "tests/hierarchy/Assembly.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(Tree, ModelWithoutInstancesGetsARoot)
{
    dlModel model;
    model.createAssemblyHierarchy();
    ASSERT_NE(model.assemblyRoot, nullptr);
    EXPECT_EQ(model.assemblyRoot->name, "");
    EXPECT_EQ(model.assemblyRoot->path, "");
    EXPECT_EQ(model.assemblyRoot->parent, nullptr);
    EXPECT_EQ(model.assemblyRoot->subtreeCount, 0);
    EXPECT_EQ(model.assemblyRoot->instanceCount, 0);
    EXPECT_NE(model.assemblyRoot->instances, nullptr);
    EXPECT_THAT(model.assemblyRoot->children, IsEmpty());
    EXPECT_EQ(model.bbox.isSet(), 0);
}

TEST(Tree, InstancesMayBeNullWhateverTheCount)
{
    dlModel model;
    model.instanceCount = 5;
    model.createAssemblyHierarchy();
    EXPECT_EQ(model.assemblyRoot->subtreeCount, 0);
    EXPECT_EQ(model.assemblyRoot->name, "");
}

TEST(Tree, NegativeCountIsNone)
{
    Assembly assembly({{"a-1@t"}});
    assembly.model.instanceCount = -1;
    assembly.model.createAssemblyHierarchy();
    EXPECT_EQ(assembly.root().subtreeCount, 0);
}

TEST(Tree, PartDocumentHangsItsInstanceUnderTheRoot)
{
    Assembly assembly({{"root"}});
    assembly.model.createAssemblyHierarchy();
    const dlInstance& instance = assembly.model.instances[0];
    EXPECT_EQ(assembly.root().name, "");
    EXPECT_EQ(assembly.root().instanceCount, 1);
    EXPECT_EQ(assembly.root().depth, 0);
    EXPECT_EQ(instance.leafName, "root");
    EXPECT_EQ(instance.node, assembly.model.assemblyRoot);
    EXPECT_EQ(assembly.parts[0]->name, "<>");
    EXPECT_EQ(assembly.parts[0]->shortName, "");
}

TEST(Tree, LastTokenMakesNoNode)
{
    Assembly assembly({{"A-1@T"}, {"A-1@T/B-1@A"}});
    assembly.model.createAssemblyHierarchy();
    EXPECT_EQ(assembly.root().instanceCount, 1);
    EXPECT_EQ(assembly.root().subtreeCount, 2);
    ASSERT_EQ(assembly.root().children.size(), 1u);
    const dlAssemblyNode* child = assembly.node({"A-1@T"});
    ASSERT_NE(child, nullptr);
    EXPECT_EQ(child->instanceCount, 1);
    EXPECT_THAT(child->children, IsEmpty());
    EXPECT_EQ(child->parent, assembly.model.assemblyRoot);
    EXPECT_EQ(assembly.model.instances[0].node, assembly.model.assemblyRoot);
    EXPECT_EQ(assembly.model.instances[1].node, child);
}

TEST(Tree, InstancesOfASubassemblyShareItsNode)
{
    Assembly assembly({{"sub-1@top/b-1@sub"}, {"sub-1@top/a-1@sub"}});
    assembly.model.createAssemblyHierarchy();
    const dlAssemblyNode* sub = assembly.node({"sub-1@top"});
    ASSERT_NE(sub, nullptr);
    EXPECT_EQ(sub->instanceCount, 2);
    EXPECT_EQ(sub->filledCount, 2);
    EXPECT_EQ(sub->subtreeCount, 2);
    EXPECT_EQ(sub->path, "sub-1@top");
    EXPECT_EQ(sub->name, "sub");
    EXPECT_EQ(sub->instances[0], &assembly.model.instances[0]) << "in array order, not by name";
    EXPECT_EQ(sub->instances[1], &assembly.model.instances[1]);
}

TEST(Tree, OccurrencesAreSiblingsOfOneName)
{
    Assembly assembly({{"a-1@t/x-1@a"}, {"a-2@t/x-1@a"}, {"a-10@t/x-1@a"}});
    assembly.model.createAssemblyHierarchy();
    std::vector<std::string> tokens, names;
    for (const auto& [token, child] : assembly.root().children) {
        tokens.push_back(token);
        names.push_back(child->name);
    }
    EXPECT_THAT(tokens, ElementsAre("a-10@t", "a-1@t", "a-2@t"));
    EXPECT_THAT(names, testing::Each("a"));
}

TEST(Tree, SubtreeCountsReachTheRoot)
{
    Assembly assembly({{"a-1@t/b-1@a/c-1@b"}, {"a-1@t/b-1@a/c-2@b"}, {"a-1@t/d-1@a"}, {"e-1@t"}});
    assembly.model.createAssemblyHierarchy();
    EXPECT_EQ(assembly.root().subtreeCount, 4);
    EXPECT_EQ(assembly.node({"a-1@t"})->subtreeCount, 3);
    EXPECT_EQ(assembly.node({"a-1@t", "b-1@a"})->subtreeCount, 2);
}

TEST(Tree, DepthIsSetWhereInstancesHangOnly)
{
    Assembly assembly({{"a-1@t/b-1@a/c-1@b/d-1@c"}, {"e-1@t/f-1@e"}});
    assembly.model.createAssemblyHierarchy();
    EXPECT_EQ(assembly.root().depth, 0);
    EXPECT_EQ(assembly.node({"a-1@t"})->depth, 0);
    EXPECT_EQ(assembly.node({"a-1@t", "b-1@a"})->depth, 0);
    EXPECT_EQ(assembly.node({"a-1@t", "b-1@a", "c-1@b"})->depth, 3);
    EXPECT_EQ(assembly.node({"e-1@t"})->depth, 1);
}

TEST(Tree, PathsAreJoinedByOneSeparator)
{
    Assembly assembly({{"//a-1@t///b-1@a//c-1@b/"}, {"a-1@t/b-1@a/d-1@b"}});
    assembly.model.createAssemblyHierarchy();
    const dlAssemblyNode* node = assembly.node({"a-1@t", "b-1@a"});
    ASSERT_NE(node, nullptr);
    EXPECT_EQ(node->path, "a-1@t/b-1@a");
    EXPECT_EQ(node->instanceCount, 2);
    EXPECT_EQ(node->depth, 2);
    EXPECT_EQ(assembly.root().children.size(), 1u);
    EXPECT_EQ(assembly.model.instances[0].leafName, "c-1@b");
    EXPECT_EQ(assembly.model.instances[0].name, "//a-1@t///b-1@a//c-1@b/");
}

struct RootNameCase {
    const char* name;
    std::vector<Component> components;
    const char* expected;
};

class RootName : public testing::TestWithParam<RootNameCase> {};

TEST_P(RootName, ComesFromTheLastInstance)
{
    Assembly assembly(GetParam().components);
    assembly.model.createAssemblyHierarchy();
    EXPECT_EQ(assembly.root().name, GetParam().expected);
    EXPECT_EQ(assembly.root().path, "");
}

INSTANTIATE_TEST_SUITE_P(
    Rows, RootName,
    testing::Values(
        RootNameCase{"owner_of_the_first_token", {{"a-1@top/b-1@a"}}, "top"},
        RootNameCase{"behind_the_first_mark", {{"a-1@b@c"}}, "b@c"},
        RootNameCase{"last_one_wins", {{"a-1@first"}, {"b-1@second"}}, "second"},
        RootNameCase{"last_one_wins_also_with_nothing", {{"a-1@first"}, {"b-1"}}, ""},
        RootNameCase{"a_name_without_a_token_too", {{"a-1@first"}, {"//"}}, ""},
        RootNameCase{"an_instance_without_a_part_does_not", {{"a-1@first"}, {"b-1@second", -1}}, "first"}),
    [](const auto& row) { return row.param.name; });

class NoToken : public testing::TestWithParam<const char*> {};

TEST_P(NoToken, HangsUnderTheRoot)
{
    Assembly assembly({{"a-1@t"}, {GetParam()}}, 1);
    assembly.model.instances[1].leafName = "old";
    assembly.model.createAssemblyHierarchy();
    EXPECT_EQ(assembly.root().instanceCount, 2);
    EXPECT_EQ(assembly.root().depth, 0);
    EXPECT_EQ(assembly.root().name, "");
    EXPECT_THAT(assembly.root().children, IsEmpty());
    EXPECT_EQ(assembly.model.instances[1].leafName, "");
    EXPECT_EQ(assembly.model.instances[1].node, assembly.model.assemblyRoot);
}

INSTANTIATE_TEST_SUITE_P(Names, NoToken, testing::Values("", "/", "///"));

TEST(PartNames, WithoutATokenOnlyTheConfigurationIsLeft)
{
    Assembly assembly({{"", 0, "config"}});
    assembly.model.createAssemblyHierarchy();
    EXPECT_EQ(assembly.parts[0]->name, "<config>");
    EXPECT_EQ(assembly.parts[0]->shortName, "");
}

struct PartNameCase {
    const char* name;
    const char* componentName;
    const char* configName;
    const char* partName;
    const char* shortName;
};

class PartName : public testing::TestWithParam<PartNameCase> {};

TEST_P(PartName, IsConfigurationAndShortName)
{
    Assembly assembly({{GetParam().componentName, 0, GetParam().configName}});
    assembly.model.createAssemblyHierarchy();
    EXPECT_EQ(assembly.parts[0]->name, GetParam().partName);
    EXPECT_EQ(assembly.parts[0]->shortName, GetParam().shortName);
    EXPECT_EQ(assembly.model.instances[0].configName, GetParam().configName);
    EXPECT_EQ(assembly.model.instances[0].name, GetParam().componentName);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, PartName,
    testing::Values(
        PartNameCase{"usual_form", "sub-1@top/bracket-3@sub", "Default", "<Default>bracket", "bracket"},
        PartNameCase{"minus_in_the_name", "left-hand-2@top", "Default", "<Default>left-hand", "left-hand"},
        PartNameCase{"leaf_without_owner", "sub-1@top/bracket-3", "Default", "<Default>", ""},
        PartNameCase{"empty_configuration", "bracket-3@top", "", "<>bracket", "bracket"},
        PartNameCase{"every_quote_is_replaced", "a-1@t", "\"x\"\"", "<$#$x$#$$#$>a", "a"},
        PartNameCase{"beyond_ascii",
                     "Gr\xC3\xB6\xC3\x9F"
                     "e-1@t",
                     "Gr\xC3\xBCn",
                     "<Gr\xC3\xBCn>Gr\xC3\xB6\xC3\x9F"
                     "e",
                     "Gr\xC3\xB6\xC3\x9F"
                     "e"}),
    [](const auto& row) { return row.param.name; });

TEST(PartNames, FirstInstanceInArrayOrderNamesThePart)
{
    Assembly assembly({{"z-1@t", 0, "first"}, {"a-1@t", 0, "second"}, {"b-1@t", 1, "third"}}, 2);
    assembly.model.createAssemblyHierarchy();
    EXPECT_EQ(assembly.parts[0]->name, "<first>z");
    EXPECT_EQ(assembly.parts[0]->shortName, "z");
    EXPECT_EQ(assembly.parts[1]->name, "<third>b");
}

TEST(PartNames, PartThatHasANameKeepsBothItsNames)
{
    Assembly assembly({{"a-1@t"}});
    assembly.parts[0]->name = "kept";
    assembly.parts[0]->shortName = "kept short";
    assembly.model.createAssemblyHierarchy();
    EXPECT_EQ(assembly.parts[0]->name, "kept");
    EXPECT_EQ(assembly.parts[0]->shortName, "kept short");
}

TEST(PartNames, ShortNameIsReplacedTogetherWithAnEmptyName)
{
    Assembly assembly({{"word"}});
    assembly.parts[0]->shortName = "old";
    assembly.model.createAssemblyHierarchy();
    EXPECT_EQ(assembly.parts[0]->name, "<>");
    EXPECT_EQ(assembly.parts[0]->shortName, "");
}

// What is no text in the code page goes through it as a replacement.
TEST(PartNames, ConfigurationGoesThroughTheCodePage)
{
    Assembly assembly({{"a-1@t", 0, "\xFF\""}});
    assembly.model.createAssemblyHierarchy();
    EXPECT_EQ(assembly.parts[0]->name, "<\xEF\xBF\xBD$#$>a");
}

TEST(PartNames, ConfigurationInAnotherCodePageIsKept)
{
    ASSERT_TRUE(platform::setAnsiCodePage(932));
    Assembly assembly({{"a-1@t", 0, "\x83\x5C\"\x83\x5C"}});
    assembly.model.createAssemblyHierarchy();
    EXPECT_TRUE(platform::setAnsiCodePage(65001));
    EXPECT_EQ(assembly.parts[0]->name, "<\x83\x5C$#$\x83\x5C>a");
}

TEST(Tree, InstancesWithoutAPartAreLeftOut)
{
    Assembly assembly({{"a-1@t/b-1@a", -1}, {"c-1@t"}, {"d-1@t/e-1@d", -1}});
    assembly.model.instances[0].leafName = "untouched";
    assembly.model.createAssemblyHierarchy();
    EXPECT_EQ(assembly.root().subtreeCount, 1);
    EXPECT_THAT(assembly.root().children, IsEmpty());
    EXPECT_EQ(assembly.model.instances[0].node, nullptr);
    EXPECT_EQ(assembly.model.instances[0].leafName, "untouched");
    EXPECT_EQ(assembly.model.instances[1].node, assembly.model.assemblyRoot);
}

TEST(Tree, InvisibleInstancesCount)
{
    Assembly assembly({{"a-1@t"}});
    assembly.model.instances[0].visible = 0;
    assembly.model.createAssemblyHierarchy();
    EXPECT_EQ(assembly.root().instanceCount, 1);
    EXPECT_EQ(assembly.root().instances[0], assembly.model.instances);
    EXPECT_EQ(assembly.model.bbox.max[0], 1.0f);
}

TEST(Tree, SecondCallMakesANewTree)
{
    Assembly assembly({{"a-1@t/b-1@a", 0, "config"}});
    assembly.model.createAssemblyHierarchy();
    const std::unique_ptr<dlAssemblyNode> old(assembly.model.assemblyRoot);
    assembly.model.instances[0].name = "c-1@u/d-1@c";
    assembly.model.instances[0].xform.m[12] = 10;
    assembly.model.createAssemblyHierarchy();
    EXPECT_NE(assembly.model.assemblyRoot, old.get());
    EXPECT_EQ(old->subtreeCount, 1);
    EXPECT_EQ(old->name, "t");
    EXPECT_EQ(assembly.root().name, "u");
    EXPECT_EQ(assembly.root().subtreeCount, 1);
    EXPECT_EQ(assembly.node({"c-1@u"})->instanceCount, 1);
    EXPECT_EQ(assembly.parts[0]->name, "<config>b");
    EXPECT_EQ(assembly.model.bbox.min[0], 0.0f);
    EXPECT_EQ(assembly.model.bbox.max[0], 11.0f);
}

TEST(Tree, NamesOfAnyLengthWork)
{
    const std::string token = std::string(100000, 'x') + "-1@top";
    Assembly assembly({{token + "/" + token}, {token + "/b-1@t"}});
    assembly.model.createAssemblyHierarchy();
    const dlAssemblyNode* node = assembly.node({token});
    ASSERT_NE(node, nullptr);
    EXPECT_EQ(node->instanceCount, 2);
    EXPECT_EQ(node->name.size(), 100000u);
    EXPECT_EQ(assembly.model.instances[0].leafName, token);
    EXPECT_EQ(assembly.parts[0]->shortName.size(), 100000u);
}

TEST(Tree, DeepNamesWork)
{
    std::string name;
    for (int level = 0; level < 5000; ++level) {
        name += "a-1@b/";
    }
    Assembly assembly({{name + "leaf-1@a"}, {"a-1@b/leaf-2@a"}});
    assembly.model.createAssemblyHierarchy();
    const dlAssemblyNode* deepest = assembly.model.instances[0].node;
    EXPECT_EQ(deepest->depth, 5000);
    EXPECT_EQ(deepest->subtreeCount, 1);
    EXPECT_EQ(deepest->path, name.substr(0, name.size() - 1));
    EXPECT_EQ(assembly.root().subtreeCount, 2);
}

TEST(Tree, NameEndsAtAZeroCharacter)
{
    Assembly assembly({{std::string("a-1@t/b-1@a\0/c-1@b", 18)}});
    assembly.model.createAssemblyHierarchy();
    EXPECT_EQ(assembly.model.instances[0].leafName, "b-1@a");
    EXPECT_EQ(assembly.node({"a-1@t"})->instanceCount, 1);
}

// Neighbours with the same parents take a short way; others must not be mistaken for them.
TEST(Tree, ParentsThatOnlyLookAlikeAreKeptApart)
{
    Assembly assembly({{"a-1@t/x-1@a"},
                       {"a-1@t2/x-1@a"},
                       {"a-1@t/y-1@a"},
                       {"a-1@t"},
                       {"a-1@t/b-1@a/z-1@b"},
                       {"a-1@t/w-1@a"}});
    assembly.model.createAssemblyHierarchy();
    EXPECT_EQ(assembly.root().instanceCount, 1);
    EXPECT_EQ(assembly.node({"a-1@t"})->instanceCount, 3);
    EXPECT_EQ(assembly.node({"a-1@t"})->subtreeCount, 4);
    EXPECT_EQ(assembly.node({"a-1@t2"})->instanceCount, 1);
    EXPECT_EQ(assembly.node({"a-1@t", "b-1@a"})->instanceCount, 1);
}

// The model's box.

TEST(ModelBox, UnsetBoxesDoNotMoveIt)
{
    Assembly assembly({{"a-1@t"}});
    assembly.parts[0]->bbox = dlBBox();
    assembly.model.bbox.radius = 7;
    assembly.model.createAssemblyHierarchy();
    EXPECT_EQ(assembly.model.bbox.isSet(), 0);
    EXPECT_EQ(assembly.model.bbox.radius, 7);
}

TEST(ModelBox, IsBuiltFromEightTransformedCorners)
{
    Assembly assembly({{"a-1@t", 1}}, 2);  // A box from (0, 0, 0) to (2, 1, 1).
    const float xform[16] = {0, 1, 0, 0, -1, 0, 0, 0, 0, 0, 1, 0, 10, 20, 30, 1};
    std::copy(xform, xform + 16, assembly.model.instances[0].xform.m);
    assembly.model.bbox.radius = 7;
    assembly.model.createAssemblyHierarchy();
    EXPECT_THAT(assembly.model.bbox.min, ElementsAre(9.0f, 20.0f, 30.0f));
    EXPECT_THAT(assembly.model.bbox.max, ElementsAre(10.0f, 22.0f, 31.0f));
    EXPECT_EQ(assembly.model.bbox.radius, -1.0f);
}

TEST(ModelBox, EveryCornerCounts)
{
    for (int corner = 0; corner < 8; ++corner) {
        Assembly assembly({{"a-1@t"}});
        // x' is largest at that corner and smallest at the opposite one.
        float* m = assembly.model.instances[0].xform.m;
        for (int axis = 0; axis < 3; ++axis) {
            m[4 * axis] = (corner >> axis & 1) ? 1.0f : -1.0f;
        }
        assembly.model.createAssemblyHierarchy();
        float largest = 0;
        for (int axis = 0; axis < 3; ++axis) {
            largest += (corner >> axis & 1) ? 1.0f : 0.0f;
        }
        EXPECT_EQ(assembly.model.bbox.max[0], largest) << corner;
        EXPECT_EQ(assembly.model.bbox.min[0], largest - 3) << corner;
    }
}

TEST(ModelBox, LastRowOfThePlacementIsNotUsed)
{
    Assembly assembly({{"a-1@t"}});
    float* m = assembly.model.instances[0].xform.m;
    m[3] = m[7] = m[11] = 5;
    m[15] = 0.5f;
    assembly.model.createAssemblyHierarchy();
    EXPECT_THAT(assembly.model.bbox.max, ElementsAre(1.0f, 1.0f, 1.0f));
}

// (1e8 + 1) - 1e8 is 0 in single precision and 1 in double; (1e8 - 1e8) + 1 is 1 only when x and y are
// added first.
TEST(ModelBox, SumsInSinglePrecisionFromXToTheTranslation)
{
    Assembly assembly({{"a-1@t"}});
    dlBBox& box = assembly.parts[0]->bbox;
    box = dlBBox();
    const float corner[3] = {1, 1, 1};
    box.addPoint(corner);
    float* m = assembly.model.instances[0].xform.m;
    m[0] = 1e8f;
    m[4] = 1;
    m[8] = -1e8f;
    m[12] = 0;
    m[1] = 1;
    m[5] = 0;
    m[9] = 1e8f;
    m[13] = -1e8f;
    m[2] = 1e8f;
    m[6] = -1e8f;
    m[10] = 1;
    m[14] = 0;
    assembly.model.createAssemblyHierarchy();
    EXPECT_EQ(assembly.model.bbox.max[0], 0.0f);
    EXPECT_EQ(assembly.model.bbox.max[1], 0.0f);
    EXPECT_EQ(assembly.model.bbox.max[2], 1.0f);
}

TEST(ModelBox, HoldsAllInstances)
{
    Assembly assembly({{"a-1@t"}, {"a-2@t"}});
    assembly.model.instances[0].xform.m[12] = -5;
    assembly.model.instances[1].xform.m[13] = 5;
    assembly.model.createAssemblyHierarchy();
    EXPECT_THAT(assembly.model.bbox.min, ElementsAre(-5.0f, 0.0f, 0.0f));
    EXPECT_THAT(assembly.model.bbox.max, ElementsAre(1.0f, 6.0f, 1.0f));
}

TEST(ModelBox, FirstOfTwoEqualZerosStays)
{
    Assembly assembly({{"a-1@t"}, {"a-2@t"}});
    dlBBox& box = assembly.parts[0]->bbox;
    box = dlBBox();
    const float origin[3] = {0, 0, 0};
    box.addPoint(origin);
    float* m = assembly.model.instances[0].xform.m;
    for (const int i : {0, 4, 8}) {
        m[i] = -1.0f;  // Every term of x' is -0, and so is their sum.
    }
    m[12] = -0.0f;
    assembly.model.createAssemblyHierarchy();
    EXPECT_TRUE(std::signbit(assembly.model.bbox.min[0]));
    EXPECT_TRUE(std::signbit(assembly.model.bbox.max[0]));
    EXPECT_FALSE(std::signbit(assembly.model.bbox.max[1]));
}

TEST(ModelBox, NaNPlacementMovesNoSideOfItsAxis)
{
    Assembly assembly({{"a-1@t"}});
    assembly.model.instances[0].xform.m[12] = std::numeric_limits<float>::quiet_NaN();
    assembly.model.createAssemblyHierarchy();
    EXPECT_EQ(assembly.model.bbox.min[0], std::numeric_limits<float>::max());
    EXPECT_EQ(assembly.model.bbox.max[1], 1.0f);
}

}  // namespace
