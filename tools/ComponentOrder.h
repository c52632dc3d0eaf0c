// The component tree in the order of the document.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <unordered_map>
#include <vector>

#include "raylume/scene/dlModel.h"

namespace tool {

/// One entry below a node: a subassembly, or an instance.
struct Component {
    const dlAssemblyNode* node = nullptr;  ///< Set for a subassembly.
    const dlInstance* instance = nullptr;  ///< Set for an instance.
    const std::string* token = nullptr;    ///< What the component path calls it.
};

/// Where each component stands in the document. The tree keeps subassemblies by the bytes of their
/// tokens, which puts "a-10" before "a-2"; here they stand where their first instance stands.
class ComponentOrder {
public:
    explicit ComponentOrder(const dlModel& model);

    /// The subassemblies and instances directly under `node`, in document order.
    std::vector<Component> below(const dlAssemblyNode& node) const;

private:
    std::size_t firstInstance(const dlAssemblyNode* node) const;
    std::size_t position(const Component& component) const;

    const dlModel& model_;
    std::unordered_map<const dlAssemblyNode*, std::size_t> firstInstance_;
};

/// The name behind a token: "arm" of "arm-2@robot". A token of another form is its own name.
std::string tokenBase(const std::string& token);

}  // namespace tool
