#include "tools/ComponentOrder.h"

#include <algorithm>

namespace tool {

ComponentOrder::ComponentOrder(const dlModel& model) : model_(model)
{
    for (std::int32_t i = 0; i < model.instanceCount; ++i)
        for (const dlAssemblyNode* node = model.instances[i].node; node; node = node->parent)
            // A node that has its place already has had its parents placed too.
            if (!firstInstance_.emplace(node, static_cast<std::size_t>(i)).second)
                break;
}

std::size_t ComponentOrder::firstInstance(const dlAssemblyNode* node) const
{
    const auto found = firstInstance_.find(node);
    return found == firstInstance_.end() ? static_cast<std::size_t>(-1) : found->second;
}

std::size_t ComponentOrder::position(const Component& component) const
{
    if (component.node)
        return firstInstance(component.node);
    return static_cast<std::size_t>(component.instance - model_.instances);
}

std::vector<Component> ComponentOrder::below(const dlAssemblyNode& node) const
{
    std::vector<Component> components;
    for (const auto& [token, child] : node.children)
        components.push_back({child, nullptr, &token});
    for (std::int32_t i = 0; i < node.filledCount; ++i)
        components.push_back({nullptr, node.instances[i], &node.instances[i]->leafName});
    std::stable_sort(components.begin(), components.end(),
                     [this](const Component& a, const Component& b) { return position(a) < position(b); });
    return components;
}

std::string tokenBase(const std::string& token)
{
    const auto owner = token.find('@');
    if (owner == std::string::npos)
        return token;
    const auto number = token.rfind('-', owner);
    if (number == std::string::npos || number == 0)
        return token;
    return token.substr(0, number);
}

}  // namespace tool
