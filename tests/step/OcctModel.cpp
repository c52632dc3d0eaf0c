#include "OcctModel.h"

#include <BRepBndLib.hxx>
#include <BRepMesh_IncrementalMesh.hxx>
#include <Bnd_Box.hxx>
#include <IGESCAFControl_Reader.hxx>
#include <IGESCAFControl_Writer.hxx>
#include <Interface_Static.hxx>
#include <Message.hxx>
#include <Message_Messenger.hxx>
#include <Quantity_ColorRGBA.hxx>
#include <STEPCAFControl_Controller.hxx>
#include <STEPCAFControl_Reader.hxx>
#include <STEPCAFControl_Writer.hxx>
#include <TDF_LabelSequence.hxx>
#include <TDataStd_Name.hxx>
#include <TopExp.hxx>
#include <TopExp_Explorer.hxx>
#include <TopLoc_Location.hxx>
#include <TopTools_IndexedMapOfShape.hxx>
#include <TopTools_ShapeMapHasher.hxx>
#include <XCAFApp_Application.hxx>
#include <XCAFDoc_ColorTool.hxx>
#include <XCAFDoc_DocumentTool.hxx>
#include <XCAFDoc_GraphNode.hxx>
#include <XCAFDoc_ShapeTool.hxx>
#include <XCAFPrs.hxx>
#include <XCAFPrs_DocumentExplorer.hxx>
#include <XCAFPrs_IndexedDataMapOfShapeStyle.hxx>
#include <cmath>

namespace step_tests {
namespace {

Handle(TDocStd_Document) newDocument()
{
    Handle(TDocStd_Document) document;
    XCAFDoc_ShapeTool::SetAutoNaming(Standard_False);
    Message::DefaultMessenger()->ChangePrinters().Clear();
    XCAFApp_Application::GetApplication()->NewDocument("MDTV-XCAF", document);
    return document;
}

Quantity_ColorRGBA colourOf(const Rgba& colour)
{
    const Quantity_Color rgb(colour.red, colour.green, colour.blue, Quantity_TOC_sRGB);
    return {rgb, static_cast<float>(colour.alpha)};
}

std::string nameOf(const TDF_Label& label)
{
    Handle(TDataStd_Name) name;
    if (!label.FindAttribute(TDataStd_Name::GetID(), name))
        return {};
    std::string text(static_cast<std::size_t>(name->Get().LengthOfCString()), '\0');
    Standard_PCharacter target = text.data();
    name->Get().ToUTF8CString(target);
    return text;
}

std::uint32_t packed(const XCAFPrs_Style& style)
{
    const Quantity_Color colour = style.GetColorSurf();
    const auto byte = [](double linear) {
        return static_cast<std::uint32_t>(
            std::lround(255 * Quantity_Color::Convert_LinearRGB_To_sRGB(linear)));
    };
    return byte(colour.Red()) | byte(colour.Green()) << 8 | byte(colour.Blue()) << 16;
}

void addBox(const TopoDS_Shape& shape, Box& result)
{
    Bnd_Box box;
    // Boxes of surfaces that are cut are too large without a mesh. This one is finer than what it is
    // compared with.
    Bnd_Box rough;
    BRepBndLib::Add(shape, rough, Standard_False);
    if (rough.IsVoid())
        return;
    const BRepMesh_IncrementalMesh mesher(shape, 0.0005 * std::sqrt(rough.SquareExtent()), Standard_False,
                                          0.3);
    for (TopExp_Explorer faces(shape, TopAbs_FACE); faces.More(); faces.Next())
        BRepBndLib::AddOptimal(faces.Current(), box, Standard_True, Standard_False);
    if (box.IsVoid())
        return;
    double values[6];
    box.Get(values[0], values[1], values[2], values[3], values[4], values[5]);
    for (double& value : values)
        value *= 0.001;
    result.add(values);
    result.add(values + 3);
}

// The innermost style round a face, as shapes are shown.
void addColours(const TopoDS_Shape& shape, const XCAFPrs_IndexedDataMapOfShapeStyle& styles,
                std::uint32_t above, std::multiset<std::uint32_t>& colours)
{
    const XCAFPrs_Style* style = styles.Seek(shape);
    if (style && style->IsSetColorSurf())
        above = packed(*style);
    if (shape.ShapeType() == TopAbs_FACE) {
        colours.insert(above);
        return;
    }
    for (TopoDS_Iterator part(shape); part.More(); part.Next())
        if (part.Value().ShapeType() <= TopAbs_FACE)
            addColours(part.Value(), styles, above, colours);
}

Handle(TDocStd_Document) peerDocument(const std::string& path)
{
    Handle(TDocStd_Document) document = newDocument();
    if (path.ends_with(".igs")) {
        IGESCAFControl_Reader reader;
        return reader.ReadFile(path.c_str()) == IFSelect_RetDone && reader.Transfer(document) ? document
                                                                                              : nullptr;
    }
    STEPCAFControl_Reader reader;
    return reader.ReadFile(path.c_str()) == IFSelect_RetDone && reader.Transfer(document) ? document
                                                                                          : nullptr;
}

PeerOccurrence occurrenceOf(const XCAFPrs_DocumentExplorer& explorer)
{
    PeerOccurrence result;
    const XCAFPrs_DocumentNode& node = explorer.Current();
    for (int depth = 1; depth <= explorer.CurrentDepth(); ++depth)
        if (const std::string name = nameOf(explorer.Current(depth).RefLabel); !name.empty())
            result.path += (result.path.empty() ? "" : "/") + name;
    const TopoDS_Shape shape = XCAFDoc_ShapeTool::GetShape(node.RefLabel);
    result.hasFaces = TopExp_Explorer(shape, TopAbs_FACE).More() == Standard_True;
    addBox(shape.Located(node.Location), result.box);
    XCAFPrs_IndexedDataMapOfShapeStyle styles;
    XCAFPrs::CollectStyleSettings(node.RefLabel, TopLoc_Location(), styles);
    addColours(shape, styles, node.Style.IsSetColorSurf() ? packed(node.Style) : kNoColour,
               result.faceColours);
    return result;
}

}  // namespace

gp_Trsf moved(double x, double y, double z)
{
    gp_Trsf place;
    place.SetTranslation(gp_Vec(x, y, z));
    return place;
}

ModelBuilder::ModelBuilder() : document_(newDocument())
{
}

TDF_Label ModelBuilder::part(const char* name, const TopoDS_Shape& shape)
{
    const TDF_Label label =
        XCAFDoc_DocumentTool::ShapeTool(document_->Main())->AddShape(shape, Standard_False);
    TDataStd_Name::Set(label, TCollection_ExtendedString(name, Standard_True));
    return label;
}

TDF_Label ModelBuilder::assembly(const char* name)
{
    const TDF_Label label = XCAFDoc_DocumentTool::ShapeTool(document_->Main())->NewShape();
    TDataStd_Name::Set(label, TCollection_ExtendedString(name, Standard_True));
    return label;
}

TDF_Label ModelBuilder::add(const TDF_Label& assembly, const TDF_Label& product, const gp_Trsf& place)
{
    const auto tool = XCAFDoc_DocumentTool::ShapeTool(document_->Main());
    const TDF_Label label = tool->AddComponent(assembly, product, TopLoc_Location(place));
    tool->UpdateAssemblies();
    return label;
}

void ModelBuilder::colour(const TDF_Label& label, const Rgba& colour)
{
    XCAFDoc_DocumentTool::ColorTool(document_->Main())
        ->SetColor(label, colourOf(colour), XCAFDoc_ColorSurf);
}

void ModelBuilder::colour(const TDF_Label& part, const TopoDS_Shape& shape, const Rgba& rgba)
{
    colour(XCAFDoc_DocumentTool::ShapeTool(document_->Main())->AddSubShape(part, shape), rgba);
}

void ModelBuilder::hide(const TDF_Label& label)
{
    XCAFDoc_DocumentTool::ColorTool(document_->Main())->SetVisibility(label, Standard_False);
}

void ModelBuilder::colourOccurrence(const std::vector<TDF_Label>& way, const Rgba& rgba)
{
    TDF_LabelSequence labels;
    for (const TDF_Label& label : way)
        labels.Append(label);
    Handle(XCAFDoc_GraphNode) usage;
    XCAFDoc_DocumentTool::ShapeTool(document_->Main())->SetSHUO(labels, usage);
    colour(usage->Label(), rgba);
}

void ModelBuilder::writeStep(const std::string& path, const char* unit)
{
    // The writer takes the unit when it is made.
    STEPCAFControl_Controller::Init();
    Interface_Static::SetCVal("write.step.unit", unit);
    STEPCAFControl_Writer writer;
    ASSERT_TRUE(writer.Transfer(document_, STEPControl_AsIs));
    ASSERT_EQ(writer.Write(path.c_str()), IFSelect_RetDone);
}

void ModelBuilder::writeIges(const std::string& path)
{
    IGESCAFControl_Writer writer;
    ASSERT_TRUE(writer.Perform(document_, path.c_str()));
}

std::vector<PeerOccurrence> peerOccurrences(const std::string& path)
{
    std::vector<PeerOccurrence> result;
    const Handle(TDocStd_Document) document = peerDocument(path);
    if (document.IsNull())
        return result;
    for (XCAFPrs_DocumentExplorer explorer(document, XCAFPrs_DocumentExplorerFlags_OnlyLeafNodes);
         explorer.More(); explorer.Next())
        if (PeerOccurrence occurrence = occurrenceOf(explorer); occurrence.hasFaces)
            result.push_back(std::move(occurrence));
    return result;
}

}  // namespace step_tests
