// Random assemblies: the tree keeps its invariants and equals the plain formulation.
#include <gtest/gtest.h>
#include <rapidcheck.h>

#include <cstring>
#include <random>
#include <set>

#include "tests/hierarchy/Assembly.h"
#include "tests/hierarchy/PlainTree.h"

namespace {

// Few enough tokens that names meet, and every odd form among them.
rc::Gen<std::string> anyToken()
{
    return rc::gen::element<std::string>("a-1@t", "a-2@t", "a-10@t", "b-1@a", "b-c-1@a", "a@t", "a-1", "@",
                                         "-", "a-1@b@c", "x", "\xC3\xA9-1@t");
}

rc::Gen<std::string> anyName()
{
    const auto separated =
        rc::gen::pair(rc::gen::element<std::string>("/", "/", "/", "//", ""), anyToken());
    return rc::gen::map(
        rc::gen::pair(rc::gen::container<std::vector<std::pair<std::string, std::string>>>(separated),
                      rc::gen::element<std::string>("", "", "/")),
        [](const auto& pieces) {
            std::string name;
            for (const auto& [separator, token] : pieces.first) {
                name += separator + token;
            }
            return name + pieces.second;
        });
}

constexpr int kPartCount = 4;

rc::Gen<Component> anyComponent()
{
    return rc::gen::build<Component>(
        rc::gen::set(&Component::name, anyName()),
        rc::gen::set(&Component::part, rc::gen::inRange(-1, kPartCount)),
        rc::gen::set(&Component::configName, rc::gen::element<std::string>("", "c")));
}

void placeAnywhere(dlModel& model)
{
    std::minstd_rand numbers(*rc::gen::arbitrary<unsigned>());
    for (int i = 0; i < model.instanceCount; ++i) {
        for (float& element : model.instances[i].xform.m) {
            element = static_cast<float>(numbers() % 200000) / 317.0f - 300.0f;
        }
    }
}

// The last part has no box.
std::unique_ptr<Assembly> anyAssembly(const std::vector<Component>& components)
{
    auto assembly = std::make_unique<Assembly>(components, kPartCount);
    assembly->parts[kPartCount - 1]->bbox = dlBBox();
    placeAnywhere(assembly->model);
    return assembly;
}

void checkNode(const dlAssemblyNode& node, const std::string& path, std::multiset<const dlInstance*>& seen)
{
    RC_ASSERT(node.path == path);
    RC_ASSERT(node.filledCount == node.instanceCount);
    RC_ASSERT(node.instances != nullptr);
    std::int32_t subtree = node.instanceCount;
    for (int i = 0; i < node.instanceCount; ++i) {
        RC_ASSERT(node.instances[i]->node == &node);
        seen.insert(node.instances[i]);
    }
    for (const auto& [token, child] : node.children) {
        RC_ASSERT(child->parent == &node);
        checkNode(*child, path.empty() ? token : path + "/" + token, seen);
        subtree += child->subtreeCount;
    }
    RC_ASSERT(node.subtreeCount == subtree);
}

std::int32_t placedCount(const dlModel& model)
{
    std::int32_t count = 0;
    for (int i = 0; i < model.instanceCount; ++i) {
        count += model.instances[i].part != nullptr;
    }
    return count;
}

void checkInvariants(const std::vector<Component>& components)
{
    const auto assembly = anyAssembly(components);
    assembly->model.createAssemblyHierarchy();
    RC_ASSERT(assembly->root().parent == nullptr);
    RC_ASSERT(assembly->root().subtreeCount == placedCount(assembly->model));
    std::multiset<const dlInstance*> seen;
    checkNode(assembly->root(), "", seen);
    RC_ASSERT(seen.size() == static_cast<std::size_t>(placedCount(assembly->model)));
    RC_ASSERT(std::set<const dlInstance*>(seen.begin(), seen.end()).size() == seen.size());
}

void checkSame(const dlAssemblyNode& node, const PlainNode& plain)
{
    RC_ASSERT(node.instanceCount == plain.instanceCount);
    RC_ASSERT(node.subtreeCount == plain.subtreeCount);
    RC_ASSERT(node.depth == plain.depth);
    RC_ASSERT(node.name == plain.name);
    RC_ASSERT(node.path == plain.path);
    RC_ASSERT(std::equal(node.instances, node.instances + node.instanceCount, plain.instances.begin(),
                         plain.instances.end()));
    RC_ASSERT(node.children.size() == plain.children.size());
    for (const auto& [token, child] : plain.children) {
        RC_ASSERT(node.children.count(token) == 1u);
        checkSame(*node.children.at(token), *child);
    }
}

void checkNames(const Assembly& assembly, const PlainTree& plain)
{
    for (const auto& [instance, leafName] : plain.leafNames) {
        RC_ASSERT(instance->leafName == leafName);
    }
    for (const dlPart* part : assembly.parts) {
        const auto named = plain.partNames.find(part);
        RC_ASSERT(part->name == (named == plain.partNames.end() ? "" : named->second));
    }
}

void checkAgainstPlainTree(const std::vector<Component>& components)
{
    const auto assembly = anyAssembly(components);
    const PlainTree plain = plainTreeOf(assembly->model);
    assembly->model.createAssemblyHierarchy();
    checkSame(assembly->root(), plain.root);
    checkNames(*assembly, plain);
    RC_ASSERT(std::memcmp(assembly->model.bbox.min, plain.bbox.min, sizeof plain.bbox.min) == 0);
    RC_ASSERT(std::memcmp(assembly->model.bbox.max, plain.bbox.max, sizeof plain.bbox.max) == 0);
}

TEST(TreeProperties, RandomAssembliesKeepTheInvariants)
{
    EXPECT_TRUE(rc::check("invariants", [] {
        checkInvariants(*rc::gen::container<std::vector<Component>>(anyComponent()));
    }));
}

TEST(TreeProperties, RandomAssembliesEqualThePlainFormulation)
{
    EXPECT_TRUE(rc::check("plain formulation", [] {
        checkAgainstPlainTree(*rc::gen::container<std::vector<Component>>(anyComponent()));
    }));
}

}  // namespace
