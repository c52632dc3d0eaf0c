// The nodes of a document as a forest, and which of them a scene shows.
#pragma once

#include <vector>

#include "reader/formats/gltf/Records.h"

namespace ovdl::gltf {

/// The forest of nodes, known to be one: no node has two parents, none is its own ancestor.
class NodeTree {
public:
    /// Raises Refusal when the nodes make no forest, or when the scene names a node that hangs under
    /// another one or names one twice.
    explicit NodeTree(const Records& records);

    /// The nodes at the top of the document's scene; without a scene, all that have no parent.
    const std::vector<std::uint32_t>& top() const { return top_; }
    /// True when the node or one below it bears a mesh, a light or a camera.
    bool leadsSomewhere(std::uint32_t node) const { return has(node, kMeshBelow | kOtherBelow); }
    bool leadsToMesh(std::uint32_t node) const { return has(node, kMeshBelow); }
    /// Nodes of the scene that bear a mesh.
    std::size_t meshNodeCount() const { return meshNodeCount_; }
    /// The only such node, when there is one.
    std::uint32_t soleMeshNode() const { return lastMeshNode_; }
    /// True when a node of the scene bears that mesh.
    bool showsMesh(std::size_t mesh) const { return shownMeshes_[mesh] != 0; }
    /// kNone at the top.
    std::int32_t parent(std::uint32_t node) const { return parents_[node]; }

private:
    static constexpr unsigned char kMeshBelow = 1;
    static constexpr unsigned char kOtherBelow = 2;
    static constexpr unsigned char kInScene = 4;
    static constexpr unsigned char kSeen = 8;
    static constexpr unsigned char kOnPath = 16;
    static constexpr unsigned char kOnTop = 32;

    bool has(std::size_t node, int flags) const { return (flags_[node] & flags) != 0; }
    void findParents(const Records& records);
    void findTop(const Records& records);
    void checkTop();
    void climb(std::size_t node);
    void markAbove(std::size_t node, unsigned char flag);
    void findContent(const Records& records);

    std::vector<std::int32_t> parents_;
    std::vector<unsigned char> flags_;
    std::vector<std::uint32_t> top_;
    std::vector<unsigned char> shownMeshes_;
    std::size_t meshNodeCount_ = 0;
    std::uint32_t lastMeshNode_ = 0;
};

}  // namespace ovdl::gltf
