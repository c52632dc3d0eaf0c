#pragma once

#include <cstdint>
#include <map>
#include <string>

#include "raylume/platform/Export.h"

class dlInstance;

/// A node of the component tree: a subassembly, or the document itself at the root.
///
/// Ownership: owns its children and the array `instances`; the instances belong to the model.
///   Deleting the root deletes the tree, to any depth, without recursion.
/// Layout: hosts read the fields directly; order and defaults are a contract.
class DL_API dlAssemblyNode {
public:
    dlAssemblyNode();
    dlAssemblyNode(const dlAssemblyNode&) = delete;
    dlAssemblyNode& operator=(const dlAssemblyNode&) = delete;
    ~dlAssemblyNode();

    std::map<std::string, dlAssemblyNode*> children;  ///< By raw token, in byte order.
    std::int32_t instanceCount = 0;                   ///< Instances directly under this node.
    std::int32_t filledCount = 0;                     ///< Slots of `instances` in use.
    dlInstance** instances = nullptr;
    std::int32_t subtreeCount = 0;  ///< Instances at or below this node.
    std::int32_t depth = 0;         ///< Level of the node; 0 where no instance hangs directly.
    dlAssemblyNode* parent = nullptr;
    std::string name;  ///< The component's short name; at the root the top document's.
    std::string path;  ///< Raw tokens from the root to here, joined by "/".
};
