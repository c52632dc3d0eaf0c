#include "tests/hierarchy/PlainTree.h"

#include <sstream>

namespace {

std::vector<std::string> tokensOf(const std::string& name)
{
    std::vector<std::string> tokens;
    std::istringstream stream(name);
    for (std::string token; std::getline(stream, token, '/');) {
        if (!token.empty()) {
            tokens.push_back(token);
        }
    }
    return tokens;
}

std::string shortNameOf(const std::string& token)
{
    const auto at = token.find('@');
    if (at == std::string::npos) {
        return "";
    }
    const std::string front = token.substr(0, at);
    const auto minus = front.rfind('-');
    return minus == std::string::npos ? "" : front.substr(0, minus);
}

void growBox(const dlInstance& instance, dlBBox& bbox)
{
    dlBBox& box = instance.part->bbox;
    if (!box.isSet()) {
        return;
    }
    const float* m = instance.xform.m;
    for (int c = 0; c < 8; ++c) {
        const float x = c & 1 ? box.max[0] : box.min[0];
        const float y = c & 2 ? box.max[1] : box.min[1];
        const float z = c & 4 ? box.max[2] : box.min[2];
        for (int axis = 0; axis < 3; ++axis) {
            const float value = m[axis] * x + m[4 + axis] * y + m[8 + axis] * z + m[12 + axis];
            if (value < bbox.min[axis]) {
                bbox.min[axis] = value;
            }
            if (value > bbox.max[axis]) {
                bbox.max[axis] = value;
            }
        }
    }
}

PlainNode& stepInto(PlainNode& parent, const std::string& token, const std::string& path)
{
    auto& child = parent.children[token];
    if (!child) {
        child = std::make_unique<PlainNode>();
        child->name = shortNameOf(token);
        child->path = path;
    }
    return *child;
}

void addInstance(PlainTree& tree, const dlInstance& instance)
{
    const std::vector<std::string> tokens = tokensOf(instance.name);
    const std::string first = tokens.empty() ? "" : tokens.front();
    const auto at = first.find('@');
    tree.root.name = at == std::string::npos ? "" : first.substr(at + 1);
    PlainNode* current = &tree.root;
    std::string path;
    for (std::size_t i = 0; i + 1 < tokens.size(); ++i) {
        ++current->subtreeCount;
        path += (i == 0 ? "" : "/") + tokens[i];
        current = &stepInto(*current, tokens[i], path);
    }
    current->depth = tokens.empty() ? 0 : static_cast<std::int32_t>(tokens.size()) - 1;
    ++current->subtreeCount;
    ++current->instanceCount;
    current->instances.push_back(&instance);
    tree.leafNames[&instance] = tokens.empty() ? "" : tokens.back();
    tree.partNames.try_emplace(instance.part,
                               "<" + instance.configName + ">" + shortNameOf(tree.leafNames[&instance]));
}

}  // namespace

PlainTree plainTreeOf(const dlModel& model)
{
    PlainTree tree;
    for (int i = 0; i < model.instanceCount; ++i) {
        const dlInstance& instance = model.instances[i];
        if (instance.part) {
            growBox(instance, tree.bbox);
            addInstance(tree, instance);
        }
    }
    return tree;
}
