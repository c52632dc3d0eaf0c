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

class AssemblyWalk {
public:
    AssemblyWalk(const Model& model, const ImportRequest& request, PartMesh& parts, PreparedDocument& document)
        : parts_(parts),
          document_(document),
          stem_(cleanName(platform::fromUtf8(request.stem))),
          colours_(XCAFDoc_DocumentTool::ColorTool(model.document->Main()))
    {
    }

    /// The products that are no assemblies, each once, in the order in which they are met.
    TDF_LabelSequence leavesOf(const TDF_LabelSequence& top)
    {
        for (const TDF_Label& label : top)
            findLeaves(productOf(label));
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

    void findLeaves(const TDF_Label& product)
    {
        if (!seen_.Bind(product, true))
            return;
        TDF_LabelSequence components;
        if (!XCAFDoc_ShapeTool::IsAssembly(product))
            leaves_.Append(product);
        else if (XCAFDoc_ShapeTool::GetComponents(product, components))
            for (const TDF_Label& component : components)
                findLeaves(productOf(component));
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
            const TDF_Label product = productOf(label);
            Level level;
            level.name = tokenNameOf(label, product);
            level.path = above.path.empty() ? L"" : above.path + L"/";
            level.path += componentToken(level.name, numbers.next(level.name), above.name);
            level.place = above.place * XCAFDoc_ShapeTool::GetLocation(label).Transformation();
            level.visible = above.visible && isVisible(label) && isVisible(product);
            way_.Append(label);
            if (XCAFDoc_ShapeTool::IsAssembly(product))
                descend(label, product, level, above);
            else
                addComponent(label, product, level, above);
            way_.Remove(way_.Length());
        }
    }

    // The colour of an assembly is that of all in it that have none of their own; the innermost counts.
    void descend(const TDF_Label& label, const TDF_Label& product, Level& level, const Level& above)
    {
        level.colour = firstOf(colourOf(colours_, label), colourOf(colours_, product), above.colour);
        TDF_LabelSequence components;
        XCAFDoc_ShapeTool::GetComponents(product, components);
        addChildren(components, level);
    }

    void addComponent(const TDF_Label& label, const TDF_Label& product, const Level& level, const Level& above)
    {
        auto* component = document_.own<uoTempAssemblySHDData_c>();
        component->name = level.path;
        component->visible = level.visible;
        fillXform(level.place, component->xform);
        uoTempPartTessData_c** part = made_.ChangeSeek(product);
        component->tessData = part ? *part : nullptr;
        const bool hasOwn = label != product && colourOf(colours_, label);
        std::optional<PackedColour> colour = occurrenceColour();
        if (!colour && hasOwn)
            colour = colourOf(colours_, label);
        if (!colour && !colourOf(colours_, product))
            colour = above.colour;
        component->vizProps = parts_.appearances().of(colour);
        components_.push_back(component);
    }

    // A colour that a file gives to one occurrence of a component, seen from an assembly further up; that from
    // furthest up counts.
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
    Handle(XCAFDoc_ColorTool) colours_;
    NCollection_DataMap<TDF_Label, bool, TDF_LabelMapHasher> seen_;
    NCollection_DataMap<TDF_Label, uoTempPartTessData_c*, TDF_LabelMapHasher> made_;
    TDF_LabelSequence leaves_;
    TDF_LabelSequence way_;  ///< From the top to the occurrence at hand.
    std::vector<uoTempAssemblySHDData_c*> components_;
};

void makePart(const Model& model, const TDF_LabelSequence& labels, PartMesh& parts,
              const Message_ProgressRange& range, PreparedDocument& document)
{
    const Handle(XCAFDoc_ColorTool) colours = XCAFDoc_DocumentTool::ColorTool(model.document->Main());
    const bool isShown = labels.Size() != 1 || colours->IsVisible(labels.First()) == Standard_True;
    document.part = std::make_unique<OVDLPartDocument>();
    document.part->tessData = parts.make(labels, isShown, range);
    if (!document.part->tessData)
        throw Refusal{"the file has no faces"};
}

void makeAssembly(const TDF_LabelSequence& top, AssemblyWalk& walk, PartMesh& parts,
                  const Message_ProgressRange& range, PreparedDocument& document)
{
    const TDF_LabelSequence leaves = walk.leavesOf(top);
    Message_ProgressScope scope(range, nullptr, std::max(leaves.Size(), 1));
    bool hasFaces = false;
    for (const TDF_Label& leaf : leaves) {
        TDF_LabelSequence one;
        one.Append(leaf);
        uoTempPartTessData_c* part = parts.make(one, true, scope.Next());
        walk.keepPart(leaf, part);
        hasFaces = hasFaces || part;
    }
    if (!hasFaces)
        throw Refusal{"the file has no faces"};
    document.assembly = std::make_unique<OVDLAssemblyDocument>();
    walk.run(top);
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
    const bool hasOneRoot = top.Size() == 1;
    if (model.isOnePart || (hasOneRoot && !XCAFDoc_ShapeTool::IsAssembly(top.First()))) {
        makePart(model, top, parts, range, document);
        return;
    }
    TDF_LabelSequence components = top;
    if (hasOneRoot)
        XCAFDoc_ShapeTool::GetComponents(TDF_Label(top.First()), components = TDF_LabelSequence());
    AssemblyWalk walk(model, request, parts, document);
    makeAssembly(components, walk, parts, range, document);
}

}  // namespace ovdl::step
