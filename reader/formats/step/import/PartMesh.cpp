#include "reader/formats/step/import/PartMesh.h"

#include <BRepBndLib.hxx>
#include <BRepMesh_IncrementalMesh.hxx>
#include <BRep_Builder.hxx>
#include <Bnd_Box.hxx>
#include <Message_ProgressScope.hxx>
#include <Standard_OutOfMemory.hxx>
#include <TopExp.hxx>
#include <TopLoc_Location.hxx>
#include <TopoDS.hxx>
#include <TopoDS_Compound.hxx>
#include <TopoDS_Iterator.hxx>
#include <XCAFDoc_DocumentTool.hxx>
#include <XCAFDoc_ShapeTool.hxx>
#include <algorithm>
#include <cmath>
#include <exception>
#include <new>

namespace ovdl::step {
namespace {

constexpr double kPi = 3.141592653589793;
// What a body has that nobody assigned to a level.
constexpr int kLevel = 100;

// False when the library fails, in its own way or in that of its containers. Memory is not its to fail on:
// there is a limit to that.
template <class Work>
bool unlessItFails(Work work)
{
    try {
        work();
        return true;
    } catch (const Standard_OutOfMemory&) {
        throw;
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const Standard_Failure&) {
        return false;
    } catch (const std::exception&) {
        return false;
    }
}

// A share of the diagonal, within what the mesher takes.
double deflectionFor(const TopoDS_Shape& shape, double share)
{
    constexpr double kLeast = 1e-6;
    constexpr double kMost = 1e9;
    Bnd_Box box;
    box.SetGap(0);
    if (!unlessItFails([&] { BRepBndLib::Add(shape, box, Standard_False); }) || box.IsVoid() ||
        box.IsOpen())
        return share;
    const double deflection = share * std::sqrt(box.SquareExtent());
    return std::isfinite(deflection) ? std::clamp(deflection, kLeast, kMost) : kMost;
}

TopoDS_Compound compoundOf(const std::vector<TopoDS_Shape>& shapes)
{
    TopoDS_Compound compound;
    const BRep_Builder builder;
    builder.MakeCompound(compound);
    for (const TopoDS_Shape& shape : shapes)
        builder.Add(compound, shape);
    return compound;
}

int faceCountOf(const TopoDS_Shape& shape)
{
    TopTools_IndexedMapOfShape faces;
    TopExp::MapShapes(shape, TopAbs_FACE, faces);
    return faces.Extent();
}

}  // namespace

PartMesh::PartMesh(const Model& model, const Tessellation& tessellation, PreparedDocument& document)
    : model_(model),
      tessellation_(tessellation),
      document_(document),
      appearances_(document),
      faces_(document),
      colours_(XCAFDoc_DocumentTool::ColorTool(model.document->Main())),
      hidden_(document.own<uoBodyPropInfo_c>())
{
}

void PartMesh::takeStyles(const TDF_Label& label)
{
    TDF_LabelSequence parts;
    XCAFDoc_ShapeTool::GetSubShapes(label, parts);
    for (const TDF_Label& part : parts) {
        const Style style{colourOf(colours_, part), colours_->IsVisible(part) == Standard_True};
        const TopoDS_Shape shape = XCAFDoc_ShapeTool::GetShape(part);
        if (!shape.IsNull() && (style.colour || !style.visible))
            styles_.Bind(shape, style);
    }
}

// What is in a hidden shape is hidden; of colours the innermost counts.
PartMesh::Style PartMesh::styleOf(const TopoDS_Shape& shape, const Style& inherited) const
{
    const Style* own = styles_.Seek(shape);
    if (!own)
        return inherited;
    return {own->colour ? own->colour : inherited.colour, own->visible && inherited.visible};
}

void PartMesh::collect(const TopoDS_Shape& shape, const Style& inherited)
{
    const Style style = styleOf(shape, inherited);
    switch (shape.ShapeType()) {
    case TopAbs_COMPOUND:
    case TopAbs_COMPSOLID:
        for (TopoDS_Iterator part(shape); part.More(); part.Next())
            collect(part.Value(), style);
        break;
    case TopAbs_SOLID:
    case TopAbs_SHELL:
        bodies_.push_back({{shape}, style});
        break;
    case TopAbs_FACE:
        looseFaces_.shapes.push_back(shape);
        styles_.Bind(shape, style);
        break;
    default:
        break;
    }
}

bool PartMesh::mesh(const Body& body, const Message_ProgressRange& range) const
{
    return unlessItFails([&] {
        IMeshTools_Parameters parameters;
        parameters.Deflection = deflection_;
        parameters.Angle = tessellation_.degrees * kPi / 180;
        const TopoDS_Shape shape = body.shapes.size() == 1 ? body.shapes[0] : compoundOf(body.shapes);
        const BRepMesh_IncrementalMesh mesher(shape, parameters, range);
    });
}

bool PartMesh::fill(const TopoDS_Face& face, uoTempFaceTessData_c& result)
{
    const bool isDone = unlessItFails([&] { faces_.fill(face, result); });
    if (!isDone)
        result.stripCount = 0;
    return result.stripCount != 0;
}

uoTempFaceTessData_c* PartMesh::makeFace(const TopoDS_Face& face, const Style& style, bool isMeshed)
{
    auto* result = document_.own<uoTempFaceTessData_c>();
    result->faceId = faceNumbers_.FindIndex(face);
    const int* number = model_.faceNumbers.Seek(face.Located(TopLoc_Location()));
    result->faceKey = number ? *number : -result->faceId;
    if (moVisualProperties_c* visual = appearances_.of(style.colour)) {
        result->faceVizProps[0] = visual;
        result->vizPropModes[0] = VizPropMode_none;
    }
    if (style.visible) {
        isFilled_ = (isMeshed && fill(face, *result)) || isFilled_;
        hasShown_ = true;
    }
    return result;
}

// The colour of a shell counts for its faces.
void PartMesh::addFaces(const TopoDS_Shape& shape, const Style& inherited, bool isMeshed,
                        std::vector<uoTempFaceTessData_c*>& faces)
{
    for (TopoDS_Iterator part(shape); part.More(); part.Next()) {
        const Style style = styleOf(part.Value(), inherited);
        if (part.Value().ShapeType() == TopAbs_FACE)
            faces.push_back(makeFace(TopoDS::Face(part.Value()), style, isMeshed));
        else if (part.Value().ShapeType() == TopAbs_SHELL)
            addFaces(part.Value(), style, isMeshed, faces);
    }
}

uoTempBodyTessData_c* PartMesh::makeBody(const Body& body, bool isMeshed)
{
    auto* result = document_.own<uoTempBodyTessData_c>();
    result->level = kLevel;
    if (moVisualProperties_c* visual = appearances_.of(body.style.colour))
        result->bodyVizProps[0] = visual;
    if (!body.style.visible)
        result->bodyPropInfos[0] = hidden_;
    std::vector<uoTempFaceTessData_c*> faces;
    for (const TopoDS_Shape& shape : body.shapes) {
        // Faces of their own have what their shape says; others say only what differs from their body.
        if (shape.ShapeType() == TopAbs_FACE)
            faces.push_back(makeFace(TopoDS::Face(shape), styleOf(shape, {}), isMeshed));
        else
            addFaces(shape, {}, isMeshed, faces);
    }
    result->faces = document_.array(std::move(faces));
    return result;
}

uoTempPartTessData_c* PartMesh::make(const TDF_LabelSequence& labels, bool isShown,
                                     const Message_ProgressRange& range)
{
    styles_.Clear();
    bodies_.clear();
    looseFaces_ = {};
    faceNumbers_.Clear();
    std::vector<TopoDS_Shape> shapes;
    for (const TDF_Label& label : labels) {
        const TopoDS_Shape shape = XCAFDoc_ShapeTool::GetShape(label);
        if (shape.IsNull())
            continue;
        shapes.push_back(shape);
        takeStyles(label);
        // The colour of a part of its own is that part's; of several labels each has its own.
        collect(shape, {labels.Size() == 1 ? std::nullopt : colourOf(colours_, label), isShown});
        TopExp::MapShapes(shape, TopAbs_FACE, faceNumbers_);
    }
    looseFaces_.style.visible = isShown;
    if (!looseFaces_.shapes.empty())
        bodies_.push_back(looseFaces_);
    if (faceNumbers_.IsEmpty())
        return nullptr;
    deflection_ =
        deflectionFor(shapes.size() == 1 ? shapes[0] : compoundOf(shapes), tessellation_.deflection);
    Message_ProgressScope scope(range, nullptr, faceNumbers_.Extent());
    std::vector<uoTempBodyTessData_c*> bodies;
    for (const Body& body : bodies_) {
        const int weight =
            body.shapes.size() == 1 ? faceCountOf(body.shapes[0]) : static_cast<int>(body.shapes.size());
        bodies.push_back(makeBody(body, mesh(body, scope.Next(weight))));
    }
    auto* part = document_.own<uoTempPartTessData_c>();
    part->bodies = document_.array(std::move(bodies));
    if (labels.Size() == 1)
        if (moVisualProperties_c* visual = appearances_.of(colourOf(colours_, labels.First())))
            part->modelVizProps[0] = visual;
    return part;
}

}  // namespace ovdl::step
