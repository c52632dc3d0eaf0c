#include "reader/formats/step/import/ModelFile.h"

#include <IGESCAFControl_Reader.hxx>
#include <IGESData_IGESModel.hxx>
#include <Interface_Check.hxx>
#include <Interface_CheckIterator.hxx>
#include <Interface_Static.hxx>
#include <STEPCAFControl_ExternFile.hxx>
#include <STEPCAFControl_Reader.hxx>
#include <StepData_StepModel.hxx>
#include <TopLoc_Location.hxx>
#include <TransferBRep.hxx>
#include <Transfer_Binder.hxx>
#include <Transfer_TransientProcess.hxx>
#include <XCAFApp_Application.hxx>
#include <XCAFDoc_DocumentTool.hxx>
#include <XCAFDoc_ShapeTool.hxx>
#include <XSControl_TransferReader.hxx>
#include <XSControl_WorkSession.hxx>
#include <filesystem>
#include <fstream>

#include "reader/formats/step/FileStart.h"
#include "reader/formats/step/import/ExternalFiles.h"

namespace ovdl::step {
namespace {

// Shares of the whole import, as real files take them.
constexpr double kLoaded = 0.25;
constexpr double kTransferred = 0.55;

std::string firstFail(Interface_CheckIterator checks)
{
    for (checks.Start(); checks.More(); checks.Next())
        if (checks.Value()->HasFailed())
            return "#" + std::to_string(checks.Number()) + ": " + checks.Value()->CFail(1);
    return "without a reason";
}

void checkLoad(const Handle(XSControl_WorkSession) & session)
{
    // The session's own list: what the reading of each entity left is in no other.
    const Interface_CheckIterator checks = session->ModelCheckList();
    if (!checks.IsEmpty(Standard_True))
        throw Refusal{"the load check fails: " + firstFail(checks)};
}

void checkStatus(IFSelect_ReturnStatus status)
{
    if (status != IFSelect_RetDone)
        throw Refusal{status == IFSelect_RetVoid ? "the file has no content" : "the file is damaged"};
}

Handle(TDocStd_Document) newDocument()
{
    Handle(TDocStd_Document) document;
    // Products without a name stay without one.
    XCAFDoc_ShapeTool::SetAutoNaming(Standard_False);
    XCAFApp_Application::GetApplication()->NewDocument("MDTV-XCAF", document);
    return document;
}

// The number by which the file itself knows an entity.
int numberInFile(const Handle(Interface_InterfaceModel) & model, const Handle(Standard_Transient) & entity)
{
    if (const auto step = Handle(StepData_StepModel)::DownCast(model); !step.IsNull())
        return step->IdentLabel(entity);
    return 2 * model->Number(entity) - 1;
}

void addFaceNumbers(const Handle(XSControl_WorkSession) & session, FaceNumbers& numbers)
{
    const Handle(Interface_InterfaceModel)& model = session->Model();
    const Handle(Transfer_TransientProcess) process = session->TransferReader()->TransientProcess();
    for (int i = 1; i <= process->NbMapped(); ++i) {
        const TopoDS_Shape shape = TransferBRep::ShapeResult(process->MapItem(i));
        if (shape.IsNull() || shape.ShapeType() != TopAbs_FACE)
            continue;
        const int number = numberInFile(model, process->Mapped(i));
        if (number > 0)
            numbers.Bind(shape.Located(TopLoc_Location()), number);
    }
}

Model readStep(const std::string& path, HostLink& link)
{
    STEPCAFControl_Reader reader;
    Interface_Static::SetCVal("xstep.cascade.unit", "MM");
    reader.SetLayerMode(Standard_False);
    reader.SetPropsMode(Standard_False);
    reader.SetGDTMode(Standard_False);
    reader.SetMatMode(Standard_False);
    reader.SetViewMode(Standard_False);
    reader.SetSHUOMode(Standard_True);
    checkStatus(reader.ReadFile(path.c_str()));
    const Handle(XSControl_WorkSession) session = reader.Reader().WS();
    checkLoad(session);
    dropForeignFiles(session, path);
    Model model;
    model.document = newDocument();
    link.beginStep(kTransferred);
    const Handle(StepIndicator) indicator = new StepIndicator(link);
    if (!reader.Transfer(model.document, indicator->Start()))
        throw Refusal{"nothing in the file can be made into shapes"};
    addFaceNumbers(session, model.faceNumbers);
    for (auto file = reader.ExternFiles().cbegin(); file != reader.ExternFiles().cend(); ++file)
        if (!(*file)->GetWS().IsNull() && (*file)->GetTransferStatus())
            addFaceNumbers((*file)->GetWS(), model.faceNumbers);
    return model;
}

bool hasAssemblies(const Handle(TDocStd_Document) & document)
{
    TDF_LabelSequence shapes;
    XCAFDoc_DocumentTool::ShapeTool(document->Main())->GetFreeShapes(shapes);
    for (const TDF_Label& label : shapes)
        if (XCAFDoc_ShapeTool::IsAssembly(label))
            return true;
    return false;
}

Model readIges(const std::string& path, HostLink& link)
{
    IGESCAFControl_Reader reader;
    Interface_Static::SetCVal("xstep.cascade.unit", "MM");
    reader.SetLayerMode(Standard_False);
    reader.SetReadVisible(Standard_True);
    checkStatus(reader.ReadFile(path.c_str()));
    checkLoad(reader.WS());
    Model model;
    model.document = newDocument();
    link.beginStep(kTransferred);
    const Handle(StepIndicator) indicator = new StepIndicator(link);
    if (!reader.Transfer(model.document, indicator->Start()))
        throw Refusal{"nothing in the file can be made into shapes"};
    addFaceNumbers(reader.WS(), model.faceNumbers);
    model.isOnePart = !hasAssemblies(model.document);
    return model;
}

FileKind kindOf(const std::string& path)
{
    std::string start(kStartLength, '\0');
    std::ifstream file(path, std::ios::binary);
    if (!file)
        throw Refusal{"the file cannot be opened"};
    file.read(start.data(), static_cast<std::streamsize>(start.size()));
    start.resize(static_cast<std::size_t>(file.gcount()));
    return fileKindOf(start);
}

}  // namespace

Model readModel(const std::string& given, HostLink& link)
{
    // Files that are named by others are found from absolute paths only.
    const std::string path = std::filesystem::absolute(given).string();
    const FileKind kind = kindOf(path);
    link.beginStep(kLoaded);
    switch (kind) {
    case FileKind::kStep:
        return readStep(path, link);
    case FileKind::kIges:
        return readIges(path, link);
    case FileKind::kOther:
        break;
    }
    throw Refusal{"neither a STEP nor an IGES file"};
}

}  // namespace ovdl::step
