#include "raylume/scene/dlPart.h"

dlPart::dlPart() = default;
dlPart::dlPart(const dlPart& other) = default;
dlPart& dlPart::operator=(const dlPart& other) = default;

// The instances in the maps belong to the model.
dlPart::~dlPart()
{
    delete[] bodies;
}

void dlPart::addAssociatedInstance(dlInstance* instance)
{
    if (!instance) {
        return;
    }
    const auto group = associatedInstances.find(instance);
    if (group != associatedInstances.end()) {
        group->second.push_back(instance);
        return;
    }
    associatedPersistentIDs[instance] = static_cast<std::int32_t>(associatedInstances.size());
    associatedInstances.insert({instance, {instance}});
    associatedItemIDs[instance] = -1;
}

int dlPart::getAssociatedItemID(dlInstance* instance)
{
    return associatedItemIDs[instance];
}

int dlPart::getAssociatedPersistentID(dlInstance* instance)
{
    return associatedPersistentIDs[instance];
}

void dlPart::setAssociatedItemID(dlInstance* instance, int id)
{
    associatedItemIDs[instance] = id;
}
