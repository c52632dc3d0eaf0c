#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "raylume/platform/Export.h"
#include "raylume/scene/dlBBox.h"
#include "raylume/scene/dlBody.h"
#include "raylume/scene/dlInstance.h"
#include "raylume/scene/dlMaterial.h"

/// The geometry of one source in one configuration, whatever the number of its instances.
///
/// Ownership: owns `bodies` (array new); holds `material` by value; borrows the instances in its
///   maps. Copies and assignments share the bodies and free nothing; the material alone is copied.
/// Layout: hosts read the fields directly; order and defaults are a contract.
class DL_API dlPart {
public:
    dlPart();
    dlPart(const dlPart& other);
    dlPart& operator=(const dlPart& other);
    ~dlPart();

    /// Puts the instance into the group of those that look the same, or starts a group with it.
    void addAssociatedInstance(dlInstance* instance);
    /// The number that the caller gave a group's first member, -1 until then. For any other
    /// instance 0, which enters the map.
    int getAssociatedItemID(dlInstance* instance);
    /// The stable number of the group, for its first member. For any other 0, which enters the map.
    int getAssociatedPersistentID(dlInstance* instance);
    void setAssociatedItemID(dlInstance* instance, int id);

    std::int32_t bodyCount = 0;
    dlBody* bodies = nullptr;
    dlBBox bbox;
    std::int32_t instanceUseCount = 0;
    std::int32_t reservedA = 0;
    std::int32_t reservedB = 0;
    std::int32_t reservedC = 0;
    std::int32_t reservedD = 0;
    std::string name;       ///< Display key: "<configuration>component".
    std::string shortName;  ///< The component alone.
    dlMaterial material;
    std::map<dlInstance*, std::vector<dlInstance*>, dlInstanceLess> associatedInstances;
    std::map<dlInstance*, std::int32_t> associatedItemIDs;
    std::map<dlInstance*, std::int32_t> associatedPersistentIDs;
};
