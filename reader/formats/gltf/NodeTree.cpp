#include "reader/formats/gltf/NodeTree.h"

#include <string>

#include "reader/formats/gltf/Refusal.h"

namespace ovdl::gltf {

NodeTree::NodeTree(const Records& records)
{
    findParents(records);
    std::vector<std::uint32_t> roots;
    for (std::size_t i = 0; i < records.nodes.size(); ++i)
        if (parents_[i] == kNone)
            roots.push_back(static_cast<std::uint32_t>(i));
    // With one parent at most for each node, what no root leads to goes round in a circle.
    const std::vector<std::uint32_t> order = ordered(records, roots);
    if (order.size() != records.nodes.size())
        refuse("the nodes form a cycle");
    top_ = std::move(roots);
    findTop(records);
    findUseful(records, order);
    findMeshes(records, records.scene == kNone ? order : ordered(records, top_));
}

void NodeTree::findUseful(const Records& records, const std::vector<std::uint32_t>& order)
{
    useful_.resize(records.nodes.size());
    for (std::size_t i = order.size(); i-- > 0;) {
        const NodeRecord& node = records.nodes[order[i]];
        unsigned char& useful = useful_[order[i]];
        useful |= node.mesh != kNone ? kMeshBelow : 0;
        useful |= node.light != kNone || node.camera != kNone ? kOtherBelow : 0;
        if (parents_[order[i]] != kNone)
            useful_[static_cast<std::size_t>(parents_[order[i]])] |= useful;
    }
}

void NodeTree::findMeshes(const Records& records, const std::vector<std::uint32_t>& scene)
{
    shownMeshes_.resize(records.meshes.size());
    for (const std::uint32_t node : scene) {
        const std::int32_t mesh = records.nodes[node].mesh;
        if (mesh == kNone)
            continue;
        shownMeshes_[static_cast<std::size_t>(mesh)] = 1;
        ++meshNodeCount_;
        lastMeshNode_ = node;
    }
}

void NodeTree::findParents(const Records& records)
{
    parents_.assign(records.nodes.size(), kNone);
    for (std::size_t i = 0; i < records.nodes.size(); ++i) {
        const NodeRecord& node = records.nodes[i];
        for (std::uint32_t c = 0; c < node.childCount; ++c) {
            const std::uint32_t child = records.children[node.firstChild + c];
            if (parents_[child] != kNone)
                refuse(numbered("nodes", child) + " has two parents");
            parents_[child] = static_cast<std::int32_t>(i);
        }
    }
}

void NodeTree::findTop(const Records& records)
{
    if (records.scene == kNone)
        return;
    const SceneRecord& scene = records.scenes[static_cast<std::size_t>(records.scene)];
    const auto* first = records.sceneNodes.data() + scene.firstNode;
    top_.assign(first, first + scene.nodeCount);
    std::vector<unsigned char> seen(records.nodes.size());
    for (const std::uint32_t node : top_) {
        if (parents_[node] != kNone)
            refuse("the scene names " + numbered("nodes", node) + ", which hangs under another node");
        if (seen[node]++ != 0)
            refuse("the scene names " + numbered("nodes", node) + " twice");
    }
}

// Every node below `top`, parents before their children.
std::vector<std::uint32_t> NodeTree::ordered(const Records& records,
                                             const std::vector<std::uint32_t>& top) const
{
    std::vector<std::uint32_t> order;
    order.reserve(records.nodes.size());
    order = top;
    for (std::size_t i = 0; i < order.size(); ++i) {
        const NodeRecord& node = records.nodes[order[i]];
        const auto* first = records.children.data() + node.firstChild;
        order.insert(order.end(), first, first + node.childCount);
    }
    return order;
}

}  // namespace ovdl::gltf
