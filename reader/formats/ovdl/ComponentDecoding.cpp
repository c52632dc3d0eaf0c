// Components, configurations, and the part or assembly on top of all.
#include <algorithm>

#include "reader/formats/ovdl/Decoding.h"
#include "reader/formats/ovdl/FixedArrays.h"

namespace ovdl::decoding {
namespace {

void fillComponent(const fb::Component& from, uoTempAssemblySHDData_c& to, Decoding& decoding)
{
    to.name = decoding.text(from.name());
    to.xform = xformOf(from.xform());
    to.vizProps = refer(decoding.objects.visuals, from.vizProps(), "visuals");
    to.visible = from.visible();
    to.configName = decoding.text(from.configName());
    if (auto* tessellation = refer(decoding.objects.tessellations, from.tessData(), "tessellations"))
        to.tessData = &tessellation->part;
    to.configIndex = from.configIndex();
    if (from.decals())
        to.decals = decalList(values(from.decals()), decoding);
}

// What the names of all components come to as wide text, by some of them. They are what an assembly has
// most of, and fresh memory costs more than decoding them into it.
std::size_t estimatedNames(const Decoding& decoding)
{
    constexpr flatbuffers::uoffset_t kSamples = 64;
    constexpr std::uint64_t kBlock = 32;
    const auto* components = decoding.document.components();
    const flatbuffers::uoffset_t count = components ? components->size() : 0;
    if (count < kSamples)
        return 0;
    std::uint64_t bytes = 0;
    for (flatbuffers::uoffset_t i = 0; i < kSamples; ++i) {
        const fb::Component& sample = *components->Get(i * (count / kSamples));
        bytes += decoding.textBytes(sample.name()).size() * sizeof(wchar_t) + kBlock;
        bytes += decoding.textBytes(sample.configName()).size() * sizeof(wchar_t) + kBlock;
    }
    return static_cast<std::size_t>(
        std::min(bytes / kSamples * count, decoding.budget.limit() - decoding.budget.used()));
}

void decodeConfigurations(Decoding& decoding)
{
    const auto* configurations = decoding.document.configurations();
    const flatbuffers::uoffset_t count = configurations ? configurations->size() : 0;
    decoding.budget.charge(count, kNode + sizeof(std::wstring) + sizeof(DecodedObjects::Configuration));
    for (flatbuffers::uoffset_t i = 0; i < count; ++i) {
        const fb::Configuration& from = *configurations->Get(i);
        const auto [place, isNew] = decoding.objects.configurations.try_emplace(decoding.text(from.name()));
        if (!isNew)
            refuse("two configurations have one name");
        DecodedObjects::Configuration& to = place->second;
        to.array =
            referAll(from.components(), decoding.objects.components, to.components, decoding, "components");
    }
}

// What part and assembly have in common has the same names in both tables.
template <class Table>
void fillDocument(const Table& from, OVDLDocument& to, DecodedObjects::LightArray& lights,
                  Decoding& decoding)
{
    to.rejected = from.rejected();
    if (from.lightData()) {
        lights.array =
            referAll(from.lightData(), decoding.objects.lights, lights.lights, decoding, "lights");
        to.lightData = &lights.array;
    }
    to.sceneHolder = refer(decoding.objects.scenes, from.sceneHolder(), "scenes");
    to.viewXform = xformOf(from.viewXform());
    copyArray(from.viewPoint(), to.viewPoint);
    to.viewScale = from.viewScale();
}

void fillPart(const fb::Part& from, OVDLPartDocument& to, Decoding& decoding)
{
    fillDocument(from, to, decoding.objects.partLights, decoding);
    if (auto* tessellation = refer(decoding.objects.tessellations, from.tessData(), "tessellations"))
        to.tessData = &tessellation->part;
    to.activeConfigIndex = from.activeConfigIndex();
}

// Each bit hangs on the one before.
void fillExtras(std::uint8_t bits, OVDLAssemblyDocument& to, DecodedExtras& extras)
{
    enum : std::uint8_t { kBlock = 1, kRecord = 2, kFirst = 4, kSecond = 8 };
    const bool orphan = ((bits & (kFirst | kSecond)) != 0 && (bits & kRecord) == 0) ||
                        ((bits & kRecord) != 0 && (bits & kBlock) == 0);
    if (bits > 15 || orphan)
        refuse("the extras are " + std::to_string(bits) + ", which says nothing");
    to.extrasBlock = (bits & kBlock) != 0 ? &extras.block : nullptr;
    extras.block.record = (bits & kRecord) != 0 ? &extras.record : nullptr;
    extras.record.first = (bits & kFirst) != 0 ? &extras.pointedAt : nullptr;
    extras.record.second = (bits & kSecond) != 0 ? &extras.pointedAt : nullptr;
}

void fillAssembly(const fb::Assembly& from, OVDLAssemblyDocument& to, Decoding& decoding)
{
    DecodedObjects& objects = decoding.objects;
    fillDocument(from, to, objects.assemblyLights, decoding);
    fillExtras(from.extras(), to, objects.extras);
    to.components =
        referAll(from.components(), objects.components, objects.assemblyComponents, decoding, "components");
}

}  // namespace

void decodeDocuments(Decoding& decoding)
{
    const fb::Document& document = decoding.document;
    DecodedObjects& objects = decoding.objects;
    makeObjects(document.components(), objects.components, decoding);
    const platform::PreparedHeap heap(estimatedNames(decoding));
    fillObjects(document.components(), objects.components, decoding, fillComponent);
    decodeConfigurations(decoding);
    if (!document.part() && !document.assembly())
        refuse("the document is neither a part nor an assembly");
    if (document.part()) {
        objects.part = std::make_unique<OVDLPartDocument>();
        fillPart(*document.part(), *objects.part, decoding);
    }
    if (document.assembly()) {
        objects.assembly = std::make_unique<OVDLAssemblyDocument>();
        fillAssembly(*document.assembly(), *objects.assembly, decoding);
    }
}

}  // namespace ovdl::decoding
