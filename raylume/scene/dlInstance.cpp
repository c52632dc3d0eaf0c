#include "raylume/scene/dlInstance.h"

#include <algorithm>
#include <functional>
#include <iterator>

#include "raylume/scene/FieldOrder.h"
#include "raylume/scene/Ownership.h"

namespace {

// The direction, higher pointer first, is arbitrary; it only has to stay the same.
void orderDecals(scene::FieldOrder& order, const std::list<dlDecal*>& a, const std::list<dlDecal*>& b)
{
    order.value(a.size(), b.size());
    order.step([&] { return a != b; },
               [&] {
                   const auto pair = std::mismatch(a.begin(), a.end(), b.begin());
                   return std::less<>()(*pair.second, *pair.first);
               });
}

bool materialBefore(const dlMaterial* a, const dlMaterial* b)
{
    return a && b ? *a < *b : std::less<>()(a, b);
}

}  // namespace

dlInstance::dlInstance() = default;
dlInstance::dlInstance(const dlInstance& other) = default;
dlInstance& dlInstance::operator=(const dlInstance& other) = default;

dlInstance::~dlInstance()
{
    scene::deleteMaterial(material);
    scene::deleteDecals(decals);
}

void dlInstance::addDecal(dlDecal* decal)
{
    if (decal) {
        decals.push_back(decal);
    }
}

std::list<dlDecal*> dlInstance::getDecalList() const
{
    return decals;
}

std::list<dlDecal*> dlInstance::getDecalList(int faceId)
{
    std::list<dlDecal*> onFace;
    std::copy_if(decals.begin(), decals.end(), std::back_inserter(onFace),
                 [faceId](const dlDecal* decal) { return decal && decal->getFaceId() == faceId; });
    return onFace;
}

int dlInstance::getVisible()
{
    return visible;
}

void dlInstance::setVisible(int value)
{
    visible = value;
}

bool dlInstanceLess::operator()(const dlInstance* a, const dlInstance* b) const
{
    scene::FieldOrder order;
    if (a->hasAppearanceAnimation || b->hasAppearanceAnimation) {
        order.value(a->name, b->name);
    }
    orderDecals(order, a->decals, b->decals);
    order.step([] { return true; }, [&] { return materialBefore(a->material, b->material); });
    return order.aBeforeB();
}
