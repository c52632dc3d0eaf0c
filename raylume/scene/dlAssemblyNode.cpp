#include "raylume/scene/dlAssemblyNode.h"

namespace {

// The first child, taken out of its parent; null when the entry was null. Its way back is written
// anew, whatever the host made of it.
dlAssemblyNode* takeFirstChild(dlAssemblyNode& node)
{
    dlAssemblyNode* child = node.children.begin()->second;
    node.children.erase(node.children.begin());
    if (child) {
        child->parent = &node;
    }
    return child;
}

// Deletes all below `top`, leaves first. The parents serve as the stack: a tree may be deeper than
// the call stack, and a destructor should not need memory.
void deleteDescendants(dlAssemblyNode& top)
{
    dlAssemblyNode* current = &top;
    while (current != &top || !top.children.empty()) {
        if (current->children.empty()) {
            dlAssemblyNode* parent = current->parent;
            delete current;
            current = parent;
        } else if (dlAssemblyNode* child = takeFirstChild(*current)) {
            current = child;
        }
    }
}

}  // namespace

dlAssemblyNode::dlAssemblyNode() = default;

dlAssemblyNode::~dlAssemblyNode()
{
    deleteDescendants(*this);
    delete[] instances;
}
