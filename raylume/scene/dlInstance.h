#pragma once

#include <cstdint>
#include <list>
#include <string>

#include "raylume/platform/Export.h"
#include "raylume/scene/dlXform.h"

class dlAssemblyNode;
class dlDecal;
class dlMaterial;
class dlPart;

/// One placement of a part in the model.
///
/// Ownership: owns `material` and its decals; borrows `part` and `node`, which the model owns.
///   Copies and assignments share everything and free nothing.
/// Layout: hosts read the fields directly; order and defaults are a contract.
class DL_API dlInstance {
public:
    dlInstance();
    dlInstance(const dlInstance& other);
    dlInstance& operator=(const dlInstance& other);
    ~dlInstance();

    /// Appends the decal, which the instance then owns. Null is ignored.
    void addDecal(dlDecal* decal);
    /// A copy of the list of pointers.
    std::list<dlDecal*> getDecalList() const;
    /// Those of the instance's decals that lie on that face, in list order.
    std::list<dlDecal*> getDecalList(int faceId);
    int getVisible();
    void setVisible(int value);

    dlPart* part = nullptr;
    std::string configName;
    dlXform xform;
    std::string name;      ///< The whole component path, tokens separated by "/".
    std::string leafName;  ///< The last token of `name`.
    dlMaterial* material = nullptr;
    dlAssemblyNode* node = nullptr;
    bool hasAppearanceAnimation = false;
    std::list<dlDecal*> decals;
    std::int32_t visible = 1;
};

/// The order of instances by how they look: neither comes first exactly if one can be drawn for the
/// other but for its placement. Names count only with appearance animation.
struct DL_API dlInstanceLess {
    bool operator()(const dlInstance* a, const dlInstance* b) const;
};
