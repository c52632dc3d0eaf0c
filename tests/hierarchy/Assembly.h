// Builds models out of component names, for the tests of the tree.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "raylume/scene/dlModel.h"

/// One instance of an assembly to be built.
struct Component {
    std::string name = {};
    int part = 0;  ///< Which of the assembly's parts; negative: none.
    std::string configName = {};
};

/// A model of these components. Part i has the key i + 1 and a box from (0, 0, 0) to (i + 1, 1, 1).
class Assembly {
public:
    explicit Assembly(std::vector<Component> components, int partCount = 1)
    {
        for (int i = 0; i < partCount; ++i) {
            addPart(i);
        }
        model.instanceCount = static_cast<std::int32_t>(components.size());
        model.instances = new dlInstance[components.size()];
        for (std::size_t i = 0; i < components.size(); ++i) {
            fill(model.instances[i], components[i]);
        }
    }

    Assembly(const Assembly&) = delete;

    /// The node that these raw tokens lead to from the root, or null.
    const dlAssemblyNode* node(const std::vector<std::string>& tokens) const
    {
        const dlAssemblyNode* current = model.assemblyRoot;
        for (const std::string& token : tokens) {
            const auto child = current->children.find(token);
            if (child == current->children.end()) {
                return nullptr;
            }
            current = child->second;
        }
        return current;
    }

    const dlAssemblyNode& root() const { return *model.assemblyRoot; }

    dlModel model;
    std::vector<dlPart*> parts;

private:
    void addPart(int index)
    {
        auto part = std::make_unique<dlPart>();
        const float corners[2][3] = {{0, 0, 0}, {static_cast<float>(index + 1), 1, 1}};
        part->bbox.addPoint(corners[0]);
        part->bbox.addPoint(corners[1]);
        parts.push_back(part.get());
        model.addDLPart(reinterpret_cast<void*>(static_cast<std::uintptr_t>(index + 1)), part.release(), 0);
    }

    void fill(dlInstance& instance, const Component& component)
    {
        instance.name = component.name;
        instance.configName = component.configName;
        instance.part = component.part < 0 ? nullptr : parts[static_cast<std::size_t>(component.part)];
    }
};
