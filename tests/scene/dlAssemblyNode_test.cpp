#include "raylume/scene/dlAssemblyNode.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>

#include "raylume/scene/dlInstance.h"

namespace {

dlAssemblyNode* addChild(dlAssemblyNode& parent, const std::string& token)
{
    auto child = std::make_unique<dlAssemblyNode>();
    child->parent = &parent;
    parent.children[token] = child.get();
    return child.release();
}

TEST(AssemblyNode, Defaults)
{
    const dlAssemblyNode node;
    EXPECT_TRUE(node.children.empty());
    EXPECT_EQ(node.instanceCount, 0);
    EXPECT_EQ(node.filledCount, 0);
    EXPECT_EQ(node.instances, nullptr);
    EXPECT_EQ(node.subtreeCount, 0);
    EXPECT_EQ(node.depth, 0);
    EXPECT_EQ(node.parent, nullptr);
    EXPECT_EQ(node.name, "");
    EXPECT_EQ(node.path, "");
}

TEST(AssemblyNode, ChildrenGoByByteOrder)
{
    dlAssemblyNode node;
    for (const char* token : {"a-2@t", "a-10@t", "\xE9-1@t", "a", "Z"}) {
        addChild(node, token);
    }
    std::vector<std::string> tokens;
    for (const auto& [token, child] : node.children) {
        tokens.push_back(token);
    }
    EXPECT_THAT(tokens, testing::ElementsAre("Z", "a", "a-10@t", "a-2@t", "\xE9-1@t"));
}

// Leaks show under the address sanitizer.
TEST(AssemblyNode, DestructorDeletesTheSubtreeAndLeavesTheInstances)
{
    dlInstance instance;
    instance.name = "still here";
    auto root = std::make_unique<dlAssemblyNode>();
    dlAssemblyNode* child = addChild(*root, "a");
    addChild(*root, "b");
    addChild(*child, "c");
    root->children["null"] = nullptr;
    child->instances = new dlInstance* [1] { &instance };
    root.reset();
    EXPECT_EQ(instance.name, "still here");
}

// Whoever builds a tree by hand may leave `parent` out.
TEST(AssemblyNode, DestructorNeedsNoParents)
{
    auto root = std::make_unique<dlAssemblyNode>();
    addChild(*addChild(*root, "a"), "b")->parent = nullptr;
    root->children["a"]->parent = nullptr;
    root.reset();
    EXPECT_EQ(root, nullptr);
}

TEST(AssemblyNode, PartOfATreeCanBeDeletedAlone)
{
    dlAssemblyNode root;
    dlAssemblyNode* child = addChild(root, "a");
    addChild(*child, "b");
    root.children.erase("a");
    delete child;
    EXPECT_TRUE(root.children.empty());
}

// A call a level would need some 100 MB of stack.
TEST(AssemblyNode, DestructorTakesAChainOfAMillion)
{
    auto root = std::make_unique<dlAssemblyNode>();
    dlAssemblyNode* last = root.get();
    for (int level = 0; level < 1000000; ++level) {
        last = addChild(*last, "a");
    }
    EXPECT_NE(last->parent, nullptr);
    root.reset();
    EXPECT_EQ(root, nullptr);
}

}  // namespace
