#include "reader/formats/step/import/Products.h"

#include <Message_ProgressScope.hxx>
#include <Standard_GUID.hxx>
#include <TCollection_ExtendedString.hxx>
#include <TDF_AttributeSequence.hxx>
#include <TDF_LabelMapHasher.hxx>
#include <TDataStd_Name.hxx>
#include <TopLoc_Location.hxx>
#include <XCAFDoc_DocumentTool.hxx>
#include <XCAFDoc_GraphNode.hxx>
#include <XCAFDoc_ShapeTool.hxx>
#include <algorithm>
#include <cmath>
#include <gp_Trsf.hxx>

#include "raylume/platform/Text.h"
#include "reader/formats/step/import/OccurrenceNames.h"

namespace ovdl::step {
namespace {

// Share of the import at which all is meshed; what is left is the writing.
constexpr double kMeshed = 0.95;

// A file that says of ever more levels that they are there twice has more occurrences than any memory
// holds. So many are fine whatever the file; beyond that, each needs some bytes of it.
std::uint64_t mostOccurrences(std::uint64_t bytes)
{
    return std::max<std::uint64_t>(65536, bytes / 16);
}

std::wstring nameOf(const TDF_Label& label)
{
    Handle(TDataStd_Name) name;
    if (!label.FindAttribute(TDataStd_Name::GetID(), name))
        return {};
    const TCollection_ExtendedString& text = name->Get();
    std::string utf8(static_cast<std::size_t>(text.LengthOfCString()), '\0');
    Standard_PCharacter target = utf8.data();
    text.ToUTF8CString(target);
    return platform::fromUtf8(utf8);
}

void fillXform(const gp_Trsf& place, mgXform_c& xform)
{
    double* elements[3][3] = {{&xform.e0, &xform.e1, &xform.e2},
                              {&xform.e3, &xform.e4, &xform.e5},
                              {&xform.e6, &xform.e7, &xform.e8}};
    const double scale = std::abs(place.ScaleFactor());
    xform.scale = scale;
    for (int axis = 0; axis < 3; ++axis)
        for (int row = 0; row < 3; ++row)
            *elements[axis][row] = place.Value(row + 1, axis + 1) / scale;
    xform.translation.x = place.TranslationPart().X() * kMetres;
    xform.translation.y = place.TranslationPart().Y() * kMetres;
    xform.translation.z = place.TranslationPart().Z() * kMetres;
}

// What a label refers to; itself when it is no reference.
TDF_Label productOf(const TDF_Label& label)
{
    TDF_Label product;
    return XCAFDoc_ShapeTool::GetReferredShape(label, product) ? product : label;
}

bool isAssembly(const TDF_Label& product)
{
    return XCAFDoc_ShapeTool::IsAssembly(product) == Standard_True;
}

// Files say it in many ways, with rounding.
bool isIdentity(const gp_Trsf& place)
{
    constexpr double kNothing = 1e-9;
    bool result = true;
    for (int row = 1; row <= 3; ++row)
        for (int column = 1; column <= 4; ++column)
            result = result && std::abs(place.Value(row, column) - (row == column ? 1 : 0)) < kNothing;
    return result;
}

TDF_LabelSequence componentsOf(const TDF_Label& assembly)
{
    TDF_LabelSequence components;
    XCAFDoc_ShapeTool::GetComponents(assembly, components);
    return components;
}

bool isInPlace(const TDF_Label& component)
{
    return isIdentity(XCAFDoc_ShapeTool::GetLocation(component).Transformation());
}

// Some files give a product its shapes by way of others without a name, which the library takes for an
// assembly: that is no level of the tree.
bool isPartOfShapes(const TDF_LabelSequence& components)
{
    return !components.IsEmpty() &&
           std::all_of(components.begin(), components.end(), [](const TDF_Label& label) {
               const TDF_Label product = productOf(label);
               return isInPlace(label) && !isAssembly(product) && nameOf(label).empty() &&
                      nameOf(product).empty();
           });
}

// A part as it is used somewhere.
struct Usage {
    TDF_Label product;
    TDF_LabelSequence shapes;            ///< What the product consists of, or itself.
    std::optional<PackedColour> colour;  ///< Goes before the part's own.
    bool visible = true;
};

class Usages {
public:
    explicit Usages(const Handle(XCAFDoc_ColorTool) & colours) : colours_(colours) {}

    /// What a label shows when it is no assembly. `sole`: an assembly of one part in its own place is none
    /// either.
    std::optional<Usage> of(const TDF_Label& label, bool sole) const
    {
        Usage usage;
        usage.product = productOf(label);
        take(label, usage);
        while (isAssembly(usage.product)) {
            const TDF_LabelSequence components = componentsOf(usage.product);
            if (isPartOfShapes(components))
                return ofShapes(components, usage);
            if (!sole || components.Size() != 1 || !isInPlace(components.First()))
                return std::nullopt;
            usage.product = productOf(components.First());
            take(components.First(), usage);
        }
        usage.shapes.Append(usage.product);
        take(usage.product, usage);
        return usage;
    }

private:
    Usage ofShapes(const TDF_LabelSequence& components, Usage usage) const
    {
        take(usage.product, usage);
        for (const TDF_Label& component : components) {
            usage.shapes.Append(productOf(component));
            if (!usage.colour && components.Size() == 1)
                usage.colour = colourOf(colours_, component);
        }
        if (!usage.colour && !(components.Size() == 1 && colourOf(colours_, usage.shapes.First())))
            usage.colour = colourOf(colours_, usage.product);
        return usage;
    }

    void take(const TDF_Label& label, Usage& usage) const
    {
        usage.visible = usage.visible && colours_->IsVisible(label) == Standard_True;
        if (!usage.colour && label != usage.product)
            usage.colour = colourOf(colours_, label);
    }

    Handle(XCAFDoc_ColorTool) colours_;
};

class AssemblyWalk {
public:
    AssemblyWalk(const Model& model, const ImportRequest& request, PartMesh& parts,
                 PreparedDocument& document)
        : parts_(parts),
          document_(document),
          stem_(cleanName(platform::fromUtf8(request.stem))),
          left_(mostOccurrences(model.bytes)),
          colours_(XCAFDoc_DocumentTool::ColorTool(model.document->Main())),
          usages_(colours_)
    {
    }

    /// The products that are no assemblies, each once, in the order in which they are met.
    const std::vector<Usage>& leavesOf(const TDF_LabelSequence& top)
    {
        for (const TDF_Label& label : top)
            findLeaves(label);
        return leaves_;
    }
    void keepPart(const TDF_Label& product, uoTempPartTessData_c* part) { made_.Bind(product, part); }
    void run(const TDF_LabelSequence& top)
    {
        addChildren(top, {gp_Trsf(), L"", stem_, std::nullopt, true});
        document_.assembly->components = document_.array(std::move(components_));
    }

private:
    struct Level {
        gp_Trsf place;
        std::wstring path;
        std::wstring name;
        std::optional<PackedColour> colour;
        bool visible;
    };

    void findLeaves(const TDF_Label& label)
    {
        const auto usage = usages_.of(label, false);
        const TDF_Label product = usage ? usage->product : productOf(label);
        if (!seen_.Bind(product, true))
            return;
        if (usage)
            leaves_.push_back(*usage);
        else
            for (const TDF_Label& component : componentsOf(product))
                findLeaves(component);
    }

    std::wstring tokenNameOf(const TDF_Label& label, const TDF_Label& product)
    {
        std::wstring name = nameOf(product);
        if (name.empty())
            name = nameOf(label);
        return name.empty() ? L"part" : cleanName(std::move(name));
    }

    void addChildren(const TDF_LabelSequence& labels, const Level& above)
    {
        OccurrenceNumbers numbers;
        for (const TDF_Label& label : labels) {
            if (left_-- == 0)
                throw Refusal{"the file has more occurrences than its size explains"};
            const TDF_Label product = productOf(label);
            Level level;
            level.name = tokenNameOf(label, product);
            level.path = above.path.empty() ? L"" : above.path + L"/";
            level.path += componentToken(level.name, numbers.next(level.name), above.name);
            level.place = above.place * XCAFDoc_ShapeTool::GetLocation(label).Transformation();
            level.visible = above.visible && isVisible(label) && isVisible(product);
            way_.Append(label);
            if (const auto usage = usages_.of(label, false))
                addComponent(*usage, level, above);
            else
                descend(label, product, level, above);
            way_.Remove(way_.Length());
        }
    }

    // The colour of an assembly is that of all in it that have none of their own; the innermost counts.
    void descend(const TDF_Label& label, const TDF_Label& product, Level& level, const Level& above)
    {
        level.colour = firstOf(colourOf(colours_, label), colourOf(colours_, product), above.colour);
        addChildren(componentsOf(product), level);
    }

    void addComponent(const Usage& usage, const Level& level, const Level& above)
    {
        auto* component = document_.own<uoTempAssemblySHDData_c>();
        component->name = level.path;
        component->visible = level.visible && usage.visible;
        fillXform(level.place, component->xform);
        uoTempPartTessData_c** part = made_.ChangeSeek(usage.product);
        component->tessData = part ? *part : nullptr;
        auto colour = firstOf(occurrenceColour(), usage.colour);
        if (!colour && !colourOf(colours_, usage.product))
            colour = above.colour;
        component->vizProps = parts_.appearances().of(colour);
        components_.push_back(component);
    }

    // A colour that a file gives to one occurrence of a component, seen from an assembly further up; that
    // from furthest up counts.
    std::optional<PackedColour> occurrenceColour() const
    {
        for (int first = 1; first < way_.Length(); ++first) {
            TDF_AttributeSequence any;
            if (!XCAFDoc_ShapeTool::GetAllComponentSHUO(way_(first), any))
                continue;
            TDF_LabelSequence way;
            for (int i = first; i <= way_.Length(); ++i)
                way.Append(way_(i));
            Handle(XCAFDoc_GraphNode) usage;
            if (XCAFDoc_ShapeTool::FindSHUO(way, usage) && !usage.IsNull())
                if (const auto colour = colourOf(colours_, usage->Label()))
                    return colour;
        }
        return std::nullopt;
    }

    template <class Colour, class... Others>
    static Colour firstOf(const Colour& first, const Others&... others)
    {
        if constexpr (sizeof...(others) == 0)
            return first;
        else
            return first ? first : firstOf(others...);
    }

    bool isVisible(const TDF_Label& label) const { return colours_->IsVisible(label) == Standard_True; }

    PartMesh& parts_;
    PreparedDocument& document_;
    std::wstring stem_;
    std::uint64_t left_;  ///< Occurrences that may still come.
    Handle(XCAFDoc_ColorTool) colours_;
    Usages usages_;
    NCollection_DataMap<TDF_Label, bool, TDF_LabelMapHasher> seen_;
    NCollection_DataMap<TDF_Label, uoTempPartTessData_c*, TDF_LabelMapHasher> made_;
    std::vector<Usage> leaves_;
    TDF_LabelSequence way_;  ///< From the top to the occurrence at hand.
    std::vector<uoTempAssemblySHDData_c*> components_;
};

void makePart(const Usage& usage, PartMesh& parts, const Message_ProgressRange& range,
              PreparedDocument& document)
{
    document.part = std::make_unique<OVDLPartDocument>();
    document.part->tessData = parts.make(usage.shapes, usage.visible, range);
    if (!document.part->tessData)
        throw Refusal{"the file has no faces"};
    if (moVisualProperties_c* visual = parts.appearances().of(usage.colour))
        document.part->tessData->modelVizProps[0] = visual;
}

void makeAssembly(const TDF_LabelSequence& top, AssemblyWalk& walk, PartMesh& parts,
                  const Message_ProgressRange& range, PreparedDocument& document)
{
    const std::vector<Usage>& leaves = walk.leavesOf(top);
    Message_ProgressScope scope(range, nullptr, std::max(static_cast<double>(leaves.size()), 1.0));
    bool hasFaces = false;
    for (const Usage& leaf : leaves) {
        uoTempPartTessData_c* part = parts.make(leaf.shapes, true, scope.Next());
        walk.keepPart(leaf.product, part);
        hasFaces = hasFaces || part;
    }
    if (!hasFaces)
        throw Refusal{"the file has no faces"};
    document.assembly = std::make_unique<OVDLAssemblyDocument>();
    walk.run(top);
}

// The part that the whole file is, if it is one.
std::optional<Usage> soleUsage(const Model& model, const TDF_LabelSequence& top)
{
    if (model.isOnePart)
        return Usage{{}, top, {}};
    if (top.Size() != 1 || !isInPlace(top.First()))
        return std::nullopt;
    return Usages(XCAFDoc_DocumentTool::ColorTool(model.document->Main())).of(top.First(), true);
}

// A file's only assembly is the document itself.
TDF_LabelSequence topComponents(const TDF_LabelSequence& top)
{
    const bool isRoot = top.Size() == 1 && isInPlace(top.First()) && isAssembly(productOf(top.First()));
    return isRoot ? componentsOf(productOf(top.First())) : top;
}

}  // namespace

void makeDocument(const Model& model, const ImportRequest& request, HostLink& link,
                  PreparedDocument& document)
{
    link.beginStep(kMeshed);
    const Handle(StepIndicator) indicator = new StepIndicator(link);
    const Message_ProgressRange range = indicator->Start();
    TDF_LabelSequence top;
    XCAFDoc_DocumentTool::ShapeTool(model.document->Main())->GetFreeShapes(top);
    if (top.IsEmpty())
        throw Refusal{"the file has no shapes"};
    PartMesh parts(model, request.tessellation, document);
    if (const auto sole = soleUsage(model, top)) {
        makePart(*sole, parts, range, document);
    } else {
        AssemblyWalk walk(model, request, parts, document);
        makeAssembly(topComponents(top), walk, parts, range, document);
    }
    if (parts.isNothingToSee())
        throw Refusal{"nothing in the file could be meshed"};
}

}  // namespace ovdl::step
