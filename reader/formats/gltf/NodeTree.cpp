// Everything here goes up from nodes to their parents, and stops where it was before, so that each step
// is taken once.
#include "reader/formats/gltf/NodeTree.h"

#include <string>

#include "reader/formats/gltf/Refusal.h"

namespace ovdl::gltf {

NodeTree::NodeTree(const Records& records)
    : parents_(records.nodes.size(), kNone),
      flags_(records.nodes.size()),
      shownMeshes_(records.meshes.size())
{
    findParents(records);
    findTop(records);
    for (std::size_t i = 0; i < records.nodes.size(); ++i)
        climb(i);
    checkTop();
    findContent(records);
}

void NodeTree::findParents(const Records& records)
{
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
    if (records.scene == kNone) {
        for (std::size_t i = 0; i < records.nodes.size(); ++i)
            if (parents_[i] == kNone)
                top_.push_back(static_cast<std::uint32_t>(i));
    } else {
        const SceneRecord& scene = records.scenes[static_cast<std::size_t>(records.scene)];
        const std::uint32_t* first = records.sceneNodes.data() + scene.firstNode;
        top_.assign(first, first + scene.nodeCount);
    }
    for (const std::uint32_t node : top_)
        if (parents_[node] == kNone)
            flags_[node] |= kInScene;
}

void NodeTree::checkTop()
{
    for (const std::uint32_t node : top_) {
        if (parents_[node] != kNone)
            refuse("the scene names " + numbered("nodes", node) + ", which hangs under another node");
        if (has(node, kOnTop))
            refuse("the scene names " + numbered("nodes", node) + " twice");
        flags_[node] |= kOnTop;
    }
}

// Tells for a node and all above it whether the scene holds them. Who meets itself on the way up goes
// round in a circle.
void NodeTree::climb(std::size_t node)
{
    std::int32_t at = static_cast<std::int32_t>(node);
    unsigned char inScene = 0;
    while (at != kNone && !has(static_cast<std::size_t>(at), kSeen)) {
        unsigned char& flags = flags_[static_cast<std::size_t>(at)];
        if ((flags & kOnPath) != 0)
            refuse("the nodes form a cycle");
        flags |= kOnPath;
        inScene = flags & kInScene;
        at = parents_[static_cast<std::size_t>(at)];
    }
    if (at != kNone)
        inScene = flags_[static_cast<std::size_t>(at)] & kInScene;
    const std::int32_t end = at;
    for (at = static_cast<std::int32_t>(node); at != end; at = parents_[static_cast<std::size_t>(at)]) {
        unsigned char& flags = flags_[static_cast<std::size_t>(at)];
        flags = static_cast<unsigned char>((flags & ~kOnPath) | kSeen | inScene);
    }
}

void NodeTree::markAbove(std::size_t node, unsigned char flag)
{
    for (auto at = static_cast<std::int32_t>(node); at != kNone && !has(static_cast<std::size_t>(at), flag);
         at = parents_[static_cast<std::size_t>(at)])
        flags_[static_cast<std::size_t>(at)] |= flag;
}

void NodeTree::findContent(const Records& records)
{
    for (std::size_t i = 0; i < records.nodes.size(); ++i) {
        const NodeRecord& node = records.nodes[i];
        if (node.light != kNone || node.camera != kNone)
            markAbove(i, kOtherBelow);
        if (node.mesh == kNone)
            continue;
        markAbove(i, kMeshBelow);
        if (!has(i, kInScene))
            continue;
        shownMeshes_[static_cast<std::size_t>(node.mesh)] = 1;
        ++meshNodeCount_;
        lastMeshNode_ = static_cast<std::uint32_t>(i);
    }
}

}  // namespace ovdl::gltf
