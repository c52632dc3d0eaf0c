// From the nodes of a scene to components, lights and the view.
#pragma once

#include "reader/formats/gltf/Budget.h"
#include "reader/formats/gltf/GltfDocument.h"
#include "reader/formats/gltf/NodeNames.h"
#include "reader/formats/gltf/NodeTree.h"
#include "reader/formats/gltf/Steps.h"

namespace ovdl::gltf {

/// Walks a scene front to back, parents before their children, without recursion.
class SceneWalk {
public:
    SceneWalk(const Records& records, const NodeTree& tree, Budget& budget, Steps& steps,
              GltfDocument& document);

    /// Fills the document: a part document for one mesh in its own place, else an assembly. Raises
    /// Refusal for placements that are not finite and for component paths without measure.
    void run(const std::wstring& stem);

private:
    // A list of siblings that is being walked.
    struct Level {
        const std::uint32_t* next = nullptr;
        const std::uint32_t* end = nullptr;
        Affine world;                ///< Of their parent.
        std::size_t pathLength = 0;  ///< Of their parent's path.
        std::size_t nameBegin = 0;   ///< Where the parent's name lies in that path.
        std::size_t nameLength = 0;
    };

    void visit(std::uint32_t node);
    void appendToken(const Level& level, std::uint32_t node, std::size_t& nameBegin,
                     std::size_t& nameLength);
    void appendName(std::string_view name);
    void take(const NodeRecord& node, const Affine& world);
    void addComponent(const NodeRecord& node, const Affine& world);
    void addView(const Affine& world);
    void decideKind();
    Affine placed(const NodeRecord& node, const Affine& above) const;

    const Records& records_;
    const NodeTree& tree_;
    Budget& budget_;
    Steps& steps_;
    GltfDocument& document_;
    SiblingNumbers numbers_;
    std::vector<Level> levels_;
    std::wstring path_;
    std::wstring stem_;
    bool hasView_ = false;
};

}  // namespace ovdl::gltf
