// The nodes of a document as a forest, and the walk through one scene of it.
#pragma once

#include <functional>
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
    bool leadsSomewhere(std::uint32_t node) const { return useful_[node] != 0; }
    bool leadsToMesh(std::uint32_t node) const { return (useful_[node] & kMeshBelow) != 0; }
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

    void findParents(const Records& records);
    void findTop(const Records& records);
    void findUseful(const Records& records, const std::vector<std::uint32_t>& order);
    void findMeshes(const Records& records, const std::vector<std::uint32_t>& scene);
    std::vector<std::uint32_t> ordered(const Records& records, const std::vector<std::uint32_t>& top) const;

    std::vector<std::int32_t> parents_;
    std::vector<std::uint32_t> top_;
    std::vector<unsigned char> useful_;
    std::vector<unsigned char> shownMeshes_;
    std::size_t meshNodeCount_ = 0;
    std::uint32_t lastMeshNode_ = 0;
};

}  // namespace ovdl::gltf
