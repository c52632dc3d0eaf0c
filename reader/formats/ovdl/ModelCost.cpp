// How large a model the library will make of a document. What the document holds once, a model may hold
// many times: a part for each tessellation and configuration that a component array names together, a face
// for each time that a body names it, a material for each face, a decal for each face that it lies on, a
// node of the tree for each token of a component's path.
#include <algorithm>
#include <map>
#include <memory>
#include <string_view>

#include "reader/formats/ovdl/Decoding.h"

namespace ovdl::decoding {
namespace {

// Records of the model, their places in its look-up tables included, in bytes; on the large side.
constexpr std::uint64_t kMaterial = 1024;
constexpr std::uint64_t kDecal = 1536;
constexpr std::uint64_t kFace = 256;
constexpr std::uint64_t kVertex = 24 + 8 + 8;
constexpr std::uint64_t kStrip = 8;
constexpr std::uint64_t kBody = 128;
constexpr std::uint64_t kInstance = 768;
constexpr std::uint64_t kTreeNode = 384;
// A face of a body that is not shown costs the question whether it is.
constexpr std::uint64_t kHiddenFace = 16;
// A body, where the faces of a part are looked up for the decals of one of its components.
constexpr std::uint64_t kBodyLook = 1;
// So many characters of a path are compared at the price of a byte.
constexpr std::uint64_t kComparedForAByte = 4;
// A character stands in the model as wide text, or up to twice as narrow text.
constexpr std::uint64_t kCharacter = 8;
// Of an instance: in its name, its last token, its placement, the part's names.
constexpr std::uint64_t kNameCharacter = 16;

std::uint64_t characters(const uoMaterialProperties& material)
{
    std::uint64_t count = material.idName.size() + material.userName.size();
    if (const uoMaterialTextureProperties* texture = material.textureProperties)
        count += texture->filename.size();
    if (const uoRVAppearanceProperties* appearance = material.rvAppearance)
        count += appearance->lfpFilename.size() + appearance->bumpTextureFilename.size() +
                 appearance->filename.size() + appearance->shaderName.size();
    return count;
}

Cost costOf(const moVisualProperties_c* visual)
{
    Cost cost;
    if (!visual || !visual->materialProps)
        return cost;
    cost.add(kMaterial);
    cost.add(
        visual->visualName.size() + visual->materialFileName.size() + characters(*visual->materialProps),
        kCharacter);
    return cost;
}

// A record for each face, and a look at each mapping whether there is such a face.
Cost costOf(const uoDecalProperties* decal)
{
    Cost cost(kNode);
    if (!decal)
        return cost;
    Cost one(kDecal);
    one.add(decal->maskFileName.size() + decal->textureProperties.filename.size() +
                characters(decal->materialProperties),
            kCharacter);
    one.add(decal->colorMask.size(), kNode);
    cost.add(decal->faceMappings.size(), one.bytes());
    return cost;
}

Cost costOf(const std::list<uoDecalProperties*>& decals, Steps& steps)
{
    steps.tick(decals.size());
    Cost cost;
    for (const uoDecalProperties* decal : decals)
        cost.add(costOf(decal).bytes());
    return cost;
}

// One configuration is in use at a time.
Cost costliest(const std::map<int, moVisualProperties_c*>& visuals, Steps& steps)
{
    steps.tick(visuals.size());
    Cost most;
    for (const auto& [configuration, visual] : visuals)
        most = std::max(most, costOf(visual));
    return most;
}

Cost costOf(const uoTempFaceTessData_c& face, Steps& steps)
{
    steps.tick(1 + static_cast<std::uint64_t>(face.stripCount));
    Cost cost(kFace);
    std::uint64_t vertices = 0;
    for (std::int32_t strip = 0; strip < face.stripCount; ++strip)
        vertices += static_cast<std::uint64_t>(face.stripLengths.data[strip]);
    cost.add(vertices, kVertex);
    cost.add(static_cast<std::uint64_t>(face.stripCount), kStrip);
    cost.add(costliest(face.faceVizProps, steps).bytes());
    return cost;
}

// What one tessellation costs in each of its configurations. Whatever it holds for all of them is walked
// once and not for each.
class PartCost {
public:
    PartCost(DecodedTessellation& tessellation, Steps& steps)
        : tessellation_(tessellation), visual_(costliest(tessellation.part.modelVizProps, steps))
    {
        std::vector<std::uint64_t> faces;
        faces.reserve(tessellation.faces.size());
        for (const uoTempFaceTessData_c& face : tessellation.faces)
            faces.push_back(costOf(face, steps).bytes());
        bodies_.reserve(tessellation.bodies.size());
        for (const uoTempBodyTessData_c& body : tessellation.bodies)
            bodies_.push_back(costOfBody(body, faces, steps).bytes());
        for (const auto& [configuration, decals] : tessellation.part.decalsByConfig) {
            steps.tick();
            if (!decals.empty())
                decals_[configuration] = costOf(decals, steps).bytes();
        }
    }

    // The bodies that are not shown cost nothing but the look at them and at their faces.
    Cost in(std::int32_t configuration, Decoding& decoding) const
    {
        decoding.budget.charge(tessellation_.partBodies.size(), 8);
        decoding.steps.tick(tessellation_.partBodies.size());
        Cost cost(kMaterial);
        cost.add(visual_.bytes());
        for (uoTempBodyTessData_c* body : tessellation_.partBodies) {
            cost.add(kBody);
            if (body && isShown(*body, configuration))
                cost.add(bodies_[static_cast<std::size_t>(body - tessellation_.bodies.data())]);
            else if (body)
                cost.add(static_cast<std::uint64_t>(body->faces.count), kHiddenFace);
        }
        cost.add(costOfDecals(configuration));
        return cost;
    }

    // Of a component that has decals of its own.
    Cost lookForFaces() const
    {
        Cost cost;
        cost.add(tessellation_.partBodies.size(), kBodyLook);
        return cost;
    }

private:
    Cost costOfBody(const uoTempBodyTessData_c& body, const std::vector<std::uint64_t>& faces,
                    Steps& steps) const
    {
        Cost cost = costliest(body.bodyVizProps, steps);
        for (long long i = 0; i < body.faces.count; ++i) {
            steps.tick();
            const uoTempFaceTessData_c* face = body.faces.data[i];
            cost.add(face ? faces[static_cast<std::size_t>(face - tessellation_.faces.data())] : kNode);
        }
        return cost;
    }

    static bool isShown(uoTempBodyTessData_c& body, std::int32_t configuration)
    {
        const uoBodyPropInfo_c* info = body.getBodyPropInfo(configuration);
        return !info || info->shown != 0;
    }

    // Where there is one list only, no configuration (-1) has it too.
    std::uint64_t costOfDecals(std::int32_t configuration) const
    {
        const bool isOnly = configuration == -1 && tessellation_.part.decalsByConfig.size() == 1;
        const auto found = isOnly ? decals_.begin() : decals_.find(configuration);
        return found == decals_.end() ? 0 : found->second;
    }

    DecodedTessellation& tessellation_;
    Cost visual_;
    std::vector<std::uint64_t> bodies_;
    std::map<int, std::uint64_t> decals_;
};

// The parts of all models that a document can become, each worked out once.
class PartCosts {
public:
    explicit PartCosts(Decoding& decoding)
        : decoding_(decoding), tessellations_(decoding.objects.tessellations.size())
    {
    }

    void beginModel() { ++model_; }

    // Nothing for a part that this model has already.
    Cost add(const uoTempPartTessData_c* tessData, std::int32_t configuration)
    {
        Tessellation& tessellation = of(tessData);
        const auto [place, isNew] = tessellation.known.try_emplace(configuration);
        if (isNew)
            place->second.cost = tessellation.cost.in(configuration, decoding_);
        if (place->second.model == model_)
            return Cost();
        place->second.model = model_;
        return place->second.cost;
    }

    Cost lookForFaces(const uoTempPartTessData_c* tessData) { return of(tessData).cost.lookForFaces(); }

private:
    struct Known {
        Cost cost;
        std::uint64_t model = 0;
    };

    // By configuration in a tree and no hash table: the document could make its numbers collide.
    struct Tessellation {
        PartCost cost;
        std::map<std::int32_t, Known> known;
    };

    Tessellation& of(const uoTempPartTessData_c* tessData)
    {
        auto& all = decoding_.objects.tessellations;
        const auto distance =
            reinterpret_cast<std::uintptr_t>(tessData) - reinterpret_cast<std::uintptr_t>(&all[0].part);
        const std::size_t number = static_cast<std::size_t>(distance / sizeof(all[0]));
        std::unique_ptr<Tessellation>& place = tessellations_[number];
        if (!place)
            place.reset(new Tessellation{PartCost(all[number], decoding_.steps), {}});
        return *place;
    }

    Decoding& decoding_;
    std::vector<std::unique_ptr<Tessellation>> tessellations_;
    std::uint64_t model_ = 0;
};

// The tokens above the last, with the separator behind them.
std::string_view parentsOf(std::string_view path)
{
    return path.substr(0, path.rfind('/') + 1);  // npos + 1 is 0
}

// How far two texts are the same. By blocks, since paths may be very long.
std::size_t sharedLength(std::string_view a, std::string_view b)
{
    constexpr std::size_t kBlock = 4096;
    const std::size_t most = std::min(a.size(), b.size());
    std::size_t at = 0;
    while (most - at > kBlock && a.substr(at, kBlock) == b.substr(at, kBlock))
        at += kBlock;
    while (at < most && a[at] == b[at])
        ++at;
    return at;
}

// The nodes of the tree that a path needs and the one before did not. Neighbours mostly hang under one
// node, so that is looked at first.
Cost costOfNodes(std::string_view parents, std::string_view before)
{
    Cost cost;
    if (parents == before)
        return cost;
    for (std::size_t at = parents.find('/', sharedLength(parents, before)); at != std::string_view::npos;
         at = parents.find('/', at + 1)) {
        cost.add(kTreeNode);
        cost.add(at, 2);
    }
    return cost;
}

class ModelChecker {
public:
    ModelChecker(Decoding& decoding, std::uint64_t documentSize)
        : decoding_(decoding), limit_(Budget(documentSize).limit()), parts_(decoding)
    {
        const auto& components = decoding.objects.components;
        components_.reserve(components.size());
        for (std::size_t i = 0; i < components.size(); ++i) {
            const auto& record =
                *decoding.document.components()->Get(static_cast<flatbuffers::uoffset_t>(i));
            const std::string_view name = decoding.textBytes(record.name());
            decoding.steps.tick(1 + name.size() / 64);
            Component& known = components_.emplace_back();
            known.cost = costOfInstance(components[i], decoding.steps).bytes();
            known.parents = parentsOf(name);
            known.before = &known;
        }
    }

    void check(const OVDLPartDocument& part)
    {
        parts_.beginModel();
        Cost cost;
        if (part.tessData)
            cost.add(parts_.add(part.tessData, part.activeConfigIndex).bytes());
        check(cost);
    }

    void check(const std::vector<uoTempAssemblySHDData_c*>& components)
    {
        parts_.beginModel();
        Cost cost;
        const Component* before = nullptr;
        for (const uoTempAssemblySHDData_c* component : components) {
            decoding_.steps.tick();
            if (!component)
                continue;
            Component& known = knownOf(*component);
            cost.add(known.cost);
            check(cost);
            cost.add(nodesOf(known, before));
            before = &known;
            if (component->tessData)
                cost.add(costOfPart(*component).bytes());
            check(cost);
        }
    }

private:
    // The path as it lies in the document: as wide text it is four times as long. What its nodes cost is
    // kept with the neighbour for which it was worked out, since arrays mostly name components in one
    // order; behind itself a component needs none.
    struct Component {
        std::uint64_t cost = 0;
        std::string_view parents;
        const Component* before = nullptr;
        std::uint64_t nodes = 0;
    };

    static Cost costOfInstance(const uoTempAssemblySHDData_c& component, Steps& steps)
    {
        Cost cost(kInstance);
        cost.add(component.name.size() + component.configName.size(), kNameCharacter);
        cost.add(decoding::costOf(component.vizProps).bytes());
        cost.add(decoding::costOf(component.decals, steps).bytes());
        return cost;
    }

    std::uint64_t nodesOf(Component& component, const Component* before)
    {
        if (component.before == before)
            return component.nodes;
        decoding_.budget.charge(component.parents.size() / kComparedForAByte, 1);
        decoding_.steps.tick(component.parents.size() / 64);
        component.before = before;
        component.nodes =
            costOfNodes(component.parents, before ? before->parents : std::string_view()).bytes();
        return component.nodes;
    }

    Cost costOfPart(const uoTempAssemblySHDData_c& component)
    {
        Cost cost = parts_.add(component.tessData, component.configIndex);
        if (!component.decals.empty())
            cost.add(parts_.lookForFaces(component.tessData).bytes());
        return cost;
    }

    Component& knownOf(const uoTempAssemblySHDData_c& component)
    {
        return components_[static_cast<std::size_t>(&component - decoding_.objects.components.data())];
    }

    void check(const Cost& cost) const
    {
        if (cost.bytes() > limit_)
            refuse("the model would be out of all proportion to the document");
    }

    Decoding& decoding_;
    std::uint64_t limit_;
    PartCosts parts_;
    std::vector<Component> components_;
};

}  // namespace

void checkModels(Decoding& decoding, std::uint64_t documentSize)
{
    ModelChecker checker(decoding, documentSize);
    const DecodedObjects& objects = decoding.objects;
    if (objects.part)
        checker.check(*objects.part);
    if (objects.assembly)
        checker.check(objects.assemblyComponents);
    for (const auto& [name, configuration] : objects.configurations)
        checker.check(configuration.components);
}

}  // namespace ovdl::decoding
