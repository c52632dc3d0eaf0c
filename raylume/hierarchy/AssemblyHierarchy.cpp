#include <algorithm>
#include <memory>
#include <span>
#include <vector>

#include "raylume/hierarchy/ComponentPath.h"
#include "raylume/platform/Text.h"
#include "raylume/scene/dlModel.h"

namespace {

// Corner c takes x from the maximum if bit 0 is set, y by bit 1, z by bit 2. All in single precision;
// placements are affine, so there is no division by w. `m` is the row of the placement for one axis.
float cornerOnAxis(const float* m, const dlBBox& box, int c)
{
    const float x = (c & 1) ? box.max[0] : box.min[0];
    const float y = (c & 2) ? box.max[1] : box.min[1];
    const float z = (c & 4) ? box.max[2] : box.min[2];
    return m[0] * x + m[4] * y + m[8] * z + m[12];
}

// Bit for bit what addPoint() gives for the eight corners in turn: the axes do not meet, and the tests
// are the same, so that a NaN moves nothing and the first of two equal zeros stays.
void growAxis(const float* m, const dlBBox& box, float& low, float& high)
{
    for (int c = 0; c < 8; ++c) {
        const float value = cornerOnAxis(m, box, c);
        low = value < low ? value : low;
        high = value > high ? value : high;
    }
}

void growBounds(const dlInstance& instance, dlBBox& bounds)
{
    dlBBox& box = instance.part->bbox;
    if (!box.isSet()) {
        return;
    }
    for (int axis = 0; axis < 3; ++axis) {
        growAxis(instance.xform.m + axis, box, bounds.min[axis], bounds.max[axis]);
    }
    bounds.radius = -1.0f;
}

// Finds the node of an instance by its name, and makes the nodes that are missing on the way.
// Neighbours in the array mostly share their parent, so the last one found is remembered by its
// text; the key is one string for all look-ups, so that finding allocates nothing.
class TreeBuilder {
public:
    explicit TreeBuilder(dlAssemblyNode& root) : root_(root), node_(&root) {}

    /// The node under which an instance of that name hangs. The name must stay in place.
    dlAssemblyNode& nodeFor(std::string_view name)
    {
        const std::string_view parents = hierarchy::parentPath(name);
        if (parents != parents_) {
            descend(parents);
        }
        return *node_;
    }

private:
    void descend(std::string_view parents)
    {
        parents_ = parents;
        node_ = &root_;
        level_ = 0;
        hierarchy::PathTokens tokens(parents);
        for (std::string_view token; tokens.next(token); ++level_) {
            node_ = &child(*node_, token);
        }
        node_->depth = level_;
    }

    dlAssemblyNode& child(dlAssemblyNode& parent, std::string_view token)
    {
        key_ = token;
        const auto place = parent.children.lower_bound(key_);
        if (place != parent.children.end() && place->first == key_) {
            return *place->second;
        }
        auto made = makeNode(parent, token);
        parent.children.emplace_hint(place, key_, made.get());
        return *made.release();
    }

    static std::unique_ptr<dlAssemblyNode> makeNode(dlAssemblyNode& parent, std::string_view token)
    {
        auto node = std::make_unique<dlAssemblyNode>();
        node->parent = &parent;
        node->name = hierarchy::shortName(token);
        node->path.reserve(parent.path.size() + 1 + token.size());
        node->path = parent.path;
        if (!node->path.empty()) {
            node->path += '/';
        }
        node->path += token;
        return node;
    }

    dlAssemblyNode& root_;
    std::string_view parents_;
    dlAssemblyNode* node_;
    std::int32_t level_ = 0;
    std::string key_;
};

std::span<dlInstance> placedInstances(dlModel& model)
{
    const std::int32_t count = model.instances ? std::max(model.instanceCount, 0) : 0;
    return {model.instances, static_cast<std::size_t>(count)};
}

std::string withoutQuotes(const std::string& configName)
{
    std::wstring shown;
    for (const wchar_t character : platform::widen(configName)) {
        if (character == L'"') {
            shown += L"$#$";
        } else {
            shown += character;
        }
    }
    return platform::narrow(shown);
}

// The first instance of a part in array order names it.
void namePart(const dlInstance& instance)
{
    dlPart& part = *instance.part;
    if (part.name.empty()) {
        part.shortName = hierarchy::shortName(instance.leafName);
        part.name = '<';
        part.name += withoutQuotes(instance.configName);
        part.name += '>';
        part.name += part.shortName;
    }
}

dlAssemblyNode& hang(dlInstance& instance, TreeBuilder& builder, dlBBox& bounds)
{
    const std::string_view name = hierarchy::textOf(instance.name);
    dlAssemblyNode& node = builder.nodeFor(name);
    ++node.instanceCount;
    instance.node = &node;
    instance.leafName = hierarchy::lastToken(name);
    growBounds(instance, bounds);
    namePart(instance);
    return node;
}

// Neighbours in the array that hang under one node; null for those without a part.
struct Run {
    dlAssemblyNode* node;
    std::size_t length;
};

// The first walk: nodes, their counts, the box, and what the names say. It remembers the nodes for the
// second walk, which then touches no instance again: large assemblies fit into no cache.
std::vector<Run> buildNodes(dlModel& model)
{
    std::vector<Run> runs;
    TreeBuilder builder(*model.assemblyRoot);
    for (dlInstance& instance : placedInstances(model)) {
        dlAssemblyNode* node = instance.part ? &hang(instance, builder, model.bbox) : nullptr;
        if (runs.empty() || runs.back().node != node) {
            runs.push_back({node, 0});
        }
        ++runs.back().length;
    }
    return runs;
}

// Every instance names the root, so the last one does.
void nameRoot(dlModel& model)
{
    const auto all = placedInstances(model);
    const auto last = std::find_if(all.rbegin(), all.rend(), [](const dlInstance& i) { return i.part; });
    if (last != all.rend()) {
        std::string_view first;
        hierarchy::PathTokens(hierarchy::textOf(last->name)).next(first);
        model.assemblyRoot->name = hierarchy::owner(first);
    }
}

// All nodes, parents before their children.
std::vector<dlAssemblyNode*> breadthFirst(dlAssemblyNode& root)
{
    std::vector<dlAssemblyNode*> nodes{&root};
    for (std::size_t next = 0; next < nodes.size(); ++next) {
        for (const auto& [token, child] : nodes[next]->children) {
            nodes.push_back(child);
        }
    }
    return nodes;
}

void allocateSlots(const std::vector<dlAssemblyNode*>& nodes)
{
    for (dlAssemblyNode* node : nodes) {
        node->instances = new dlInstance*[static_cast<std::size_t>(node->instanceCount)]();
    }
}

// Once a node, from the leaves up, instead of once an instance and ancestor.
void countSubtrees(const std::vector<dlAssemblyNode*>& nodes)
{
    std::for_each(nodes.rbegin(), nodes.rend(), [](dlAssemblyNode* node) {
        node->subtreeCount += node->instanceCount;
        if (node->parent) {
            node->parent->subtreeCount += node->subtreeCount;
        }
    });
}

// The second walk: every instance into its slot, in array order.
void fillSlots(dlInstance* instance, const std::vector<Run>& runs)
{
    for (const Run& run : runs) {
        dlInstance* const end = instance + run.length;
        for (; run.node && instance != end; ++instance) {
            run.node->instances[run.node->filledCount++] = instance;
        }
        instance = end;
    }
}

}  // namespace

void dlModel::createAssemblyHierarchy()
{
    assemblyRoot = new dlAssemblyNode;
    const std::vector<Run> runs = buildNodes(*this);
    nameRoot(*this);
    const std::vector<dlAssemblyNode*> nodes = breadthFirst(*assemblyRoot);
    allocateSlots(nodes);
    countSubtrees(nodes);
    fillSlots(instances, runs);
}
