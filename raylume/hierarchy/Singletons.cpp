#include <algorithm>
#include <utility>

#include "raylume/scene/dlModel.h"

// Added to what is there: a second call counts every singleton once more.
void dlModel::updateSingletons()
{
    std::vector<dlPart*> all;
    getAllDLParts(all);
    singletonCount += static_cast<std::int32_t>(std::count_if(
        all.begin(), all.end(), [](const dlPart* part) { return part && part->instanceUseCount < 2; }));
}

void dlModel::updateFirstModelName(std::string name)
{
    const auto first =
        std::find_if(parts.begin(), parts.end(), [](const auto& entry) { return !entry.second.empty(); });
    if (first == parts.end()) {
        return;
    }
    if (dlPart* part = first->second.begin()->second) {
        part->name = std::move(name);
    }
}
