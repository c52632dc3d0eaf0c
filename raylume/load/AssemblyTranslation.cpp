#include "raylume/load/AssemblyTranslation.h"

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <map>
#include <memory>
#include <string>
#include <string_view>

#include "raylume/appearance/DecalTranslation.h"
#include "raylume/appearance/FaceIndex.h"
#include "raylume/appearance/MaterialTranslation.h"
#include "raylume/lights/LightTranslation.h"
#include "raylume/load/TessellationCapture.h"
#include "raylume/load/ViewTranslation.h"
#include "raylume/platform/Text.h"
#include "raylume/scene/dlModel.h"

namespace {

constexpr std::wstring_view kTopComponent = L"Render";
constexpr std::int32_t kPlacementTag = 1;
constexpr wchar_t kTopMark[] = L"##TOP##";

// Tessellation and configuration -> the model's part, for one load. Remembers only parts that were
// found: none is replaced or removed during a load, so an answer once given stays the answer. Owns
// nothing.
class PartFinder {
public:
    explicit PartFinder(dlModel& model) : model_(model) {}

    dlPart* find(uoTempPartTessData_c* tessData, int configuration)
    {
        Slot& slot = slots_[slotOf(tessData, configuration)];
        if (slot.part && slot.tessData == tessData && slot.configuration == configuration)
            return slot.part;
        dlPart* part = model_.getDLPart(tessData, configuration);
        if (part)
            slot = {tessData, configuration, part};
        return part;
    }

private:
    struct Slot {
        uoTempPartTessData_c* tessData = nullptr;
        int configuration = 0;
        dlPart* part = nullptr;
    };

    static constexpr std::size_t kSlots = 256;

    // The low bits of an address say only how it is aligned.
    static std::size_t slotOf(const uoTempPartTessData_c* tessData, int configuration)
    {
        const auto mixed = (reinterpret_cast<std::uintptr_t>(tessData) >> 4) * 0x9E3779B97F4A7C15ull +
                           static_cast<std::uint32_t>(configuration) * 0xC2B2AE3D27D4EB4Full;
        return static_cast<std::size_t>(mixed >> 56) % kSlots;
    }

    dlModel& model_;
    Slot slots_[kSlots];
};

// Fills componentXforms. Names mostly arrive in order, so the place behind the last one is tried
// first; the map is the same wherever the hint points.
class PlacementRecorder {
public:
    explicit PlacementRecorder(dlModel& model)
        : placements_(model.componentXforms), hint_(placements_.end())
    {
    }

    // The last component of a name wins. The name is the document's own, without the top mark.
    void record(const uoTempAssemblySHDData_c& component)
    {
        const auto place = placements_.try_emplace(hint_, component.name);
        place->second.tag = kPlacementTag;
        component.xform.getGLData(place->second.m);
        hint_ = behind(place);
    }

private:
    using Placements = std::map<std::wstring, dlComponentXform>;

    // Stepping on from the last element walks up the whole tree, and most names are the last.
    Placements::iterator behind(Placements::iterator place)
    {
        return place == std::prev(placements_.end()) ? placements_.end() : std::next(place);
    }

    Placements& placements_;
    Placements::iterator hint_;
};

// One translation: what its steps share.
struct Translation {
    Translation(dlModel& target, const std::wstring& documentPath)
        : model(target), path(documentPath), parts(target), placements(target)
    {
    }

    dlModel& model;
    const std::wstring& path;
    PartFinder parts;
    PlacementRecorder placements;
    FaceIndices faces;
};

// A part that has appearances, but none for the configuration in use, is not shown at all.
bool isAccepted(const uoTempAssemblySHDData_c& component)
{
    const uoTempPartTessData_c* tessData = component.tessData;
    return tessData &&
           (tessData->modelVizProps.empty() || tessData->getModelVizProp(component.configIndex));
}

dlPart& addPart(dlModel& model, uoTempPartTessData_c* key, int configuration)
{
    auto part = std::make_unique<dlPart>();
    model.addDLPart(key, part.get(), configuration);
    return *part.release();
}

// Captured once, for the first of the components that share it.
void providePart(Translation& translation, uoTempAssemblySHDData_c& component)
{
    uoTempPartTessData_c* tessData = component.tessData;
    const int configuration = component.configIndex;
    if (translation.parts.find(tessData, configuration))
        return;
    dlPart& part = addPart(translation.model, tessData, configuration);
    capturePart(part, *tessData, configuration);
    attachPartDecals(*tessData, &part, translation.path, configuration, translation.faces);
}

// The number of accepted components up to the one after which the host cancelled.
std::int32_t makeParts(Translation& translation, const uoTempAssemblySHDDataArray_c& components)
{
    std::int32_t accepted = 0;
    const long long elements = components.count;
    for (long long index = 0; index < elements; ++index) {
        uoTempAssemblySHDData_c* component = components.at(index);
        if (!component)
            continue;
        translation.placements.record(*component);
        if (!isAccepted(*component))
            continue;
        providePart(translation, *component);
        if (g_terminateLoad)
            break;
        ++accepted;
    }
    return accepted;
}

bool hasExtras(const OVDLAssemblyDocument& document)
{
    const OVDLExtrasRecord* record = document.extrasBlock ? document.extrasBlock->record : nullptr;
    return record && record->first && record->second;
}

void allocateInstances(dlModel& model, std::int32_t count)
{
    model.instances = new dlInstance[static_cast<std::size_t>(count)];
    model.instanceCount = count;
}

// The part of a component that gets an instance, otherwise null. Asked anew: what the reader says now
// counts, whatever it said in the first pass.
dlPart* findPart(Translation& translation, const uoTempAssemblySHDData_c* component)
{
    if (!component || !component->tessData)
        return nullptr;
    return translation.parts.find(component->tessData, component->configIndex);
}

// Lower-casing keeps the length, so most names are told apart by theirs.
bool isTopComponent(const std::wstring& name)
{
    return name.size() == kTopComponent.size() && platform::compareIgnoringCase(name, kTopComponent) == 0;
}

std::string instanceName(const uoTempAssemblySHDData_c& component)
{
    if (isTopComponent(component.name))
        return platform::narrow(component.name + kTopMark);
    return platform::narrow(component.name);
}

// Spares the conversion of every name where there is no animation.
bool hasAppearanceAnimation(dlModel& model, const dlInstance& instance)
{
    return !model.animationTracks.empty() && model.compHasAppearanceAnimation(instance.name);
}

// An animated instance's material takes its name, so that no other compares equal.
void fillOverride(dlInstance& instance, moVisualProperties_c* visual, bool animated)
{
    if (!visual || !visual->materialProps || visual->activeFlag == 0)
        return;
    instance.material = new dlMaterial;
    applyVisualProperties(*instance.material, *visual);
    if (animated)
        instance.material->reservedNameC = instance.name;
}

void joinPart(dlInstance& instance, dlPart& part)
{
    instance.part = &part;
    ++part.instanceUseCount;
}

// Decals, material and animation flag stand before the grouping, which compares all three.
void fillInstance(Translation& translation, uoTempAssemblySHDData_c& component, dlPart& part,
                  dlInstance& instance)
{
    instance.name = instanceName(component);
    const bool animated = hasAppearanceAnimation(translation.model, instance);
    fillOverride(instance, component.vizProps, animated);
    instance.setVisible(component.visible);
    joinPart(instance, part);
    attachInstanceDecals(component, &instance, &part, translation.path, translation.faces);
    instance.hasAppearanceAnimation = animated;
    part.addAssociatedInstance(&instance);
    instance.configName = platform::narrow(component.configName);
    component.xform.getGLData(instance.xform.m);
}

// As many instances as were counted, or fewer when the reader gives fewer the second time.
void fillInstances(Translation& translation, const uoTempAssemblySHDDataArray_c& components)
{
    dlModel& model = translation.model;
    std::int32_t filled = 0;
    const long long elements = components.count;
    for (long long index = 0; index < elements && filled < model.instanceCount; ++index) {
        uoTempAssemblySHDData_c* component = components.at(index);
        if (dlPart* part = findPart(translation, component))
            fillInstance(translation, *component, *part, model.instances[filled++]);
    }
    model.instanceCount = filled;
}

}  // namespace

void translateAssemblyDocument(dlModel& model, OVDLAssemblyDocument& document, const std::wstring& path,
                               uoTempAssemblySHDDataArray_c& components)
{
    Translation translation(model, path);
    model.isPartDocument = false;
    const std::int32_t accepted = makeParts(translation, components);
    model.hasDocumentExtras = hasExtras(document);
    allocateInstances(model, accepted);
    if (g_terminateLoad)
        return;
    fillInstances(translation, components);
    translateLights(model, document.lightData, document.sceneHolder);
    translateView(model, document);
}
