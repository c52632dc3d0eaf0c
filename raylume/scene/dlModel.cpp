#include "raylume/scene/dlModel.h"

#include "raylume/scene/LayoutChecks.h"

dlModel::dlModel() = default;
dlModel::dlModel(const dlModel& other) = default;
dlModel& dlModel::operator=(const dlModel& other) = default;

// Parts go before instances, instances before the tree; the members follow from the last to the
// first: the maps, the scene, the name and then the lights.
dlModel::~dlModel()
{
    for (const auto& [key, byConfiguration] : parts) {
        for (const auto& [configuration, part] : byConfiguration) {
            delete part;
        }
    }
    delete[] instances;
    delete assemblyRoot;
}

void dlModel::addDLPart(void* key, dlPart* part, int config)
{
    parts[key][config] = part;
}

dlPart* dlModel::getDLPart(void* key, int config)
{
    const auto configurations = parts.find(key);
    if (configurations == parts.end()) {
        return nullptr;
    }
    const auto part = configurations->second.find(config);
    return part == configurations->second.end() ? nullptr : part->second;
}

void dlModel::getAllDLParts(std::vector<dlPart*>& out)
{
    for (const auto& [key, byConfiguration] : parts) {
        for (const auto& [configuration, part] : byConfiguration) {
            out.push_back(part);
        }
    }
}
