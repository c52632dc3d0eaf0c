// Whole loads of STEP documents beside Open CASCADE's own read, transfer and mesh of the same file in this
// process, with the same settings: start of the import program, hand-over and translation are on one side
// only. The documents are real ones, their parts taken several times over so that files are above 1 MB:
//   assembly: an assembly of plates and bolts
//   freeform: bodies of curved surfaces
// `ratio` is the median of the load over the median of Open CASCADE's steps.

#include <benchmark/benchmark.h>
#include <BRepBndLib.hxx>
#include <BRepBuilderAPI_Copy.hxx>
#include <BRepMesh_IncrementalMesh.hxx>
#include <Bnd_Box.hxx>
#include <Message.hxx>
#include <Message_Messenger.hxx>
#include <STEPCAFControl_Reader.hxx>
#include <STEPCAFControl_Writer.hxx>
#include <STEPControl_Reader.hxx>
#include <TDF_LabelSequence.hxx>
#include <TDocStd_Document.hxx>
#include <TopExp_Explorer.hxx>
#include <TopLoc_Location.hxx>
#include <XCAFApp_Application.hxx>
#include <XCAFDoc_DocumentTool.hxx>
#include <XCAFDoc_ShapeTool.hxx>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <gp_Trsf.hxx>
#include <memory>
#include <string>

#include "Timing.h"
#include "raylume/scene/dlModel.h"
#include "reader/ImportLimits.h"

namespace {

Handle(TDocStd_Document) newDocument()
{
    Handle(TDocStd_Document) document;
    XCAFDoc_ShapeTool::SetAutoNaming(Standard_False);
    Message::DefaultMessenger()->ChangePrinters().Clear();
    XCAFApp_Application::GetApplication()->NewDocument("MDTV-XCAF", document);
    return document;
}

void require(bool condition)
{
    if (!condition)
        std::abort();
}

// Writes an assembly with so many copies of all bodies of a file, each a part of its own.
std::string multiplied(const std::string& source, int copies)
{
    STEPControl_Reader reader;
    require(reader.ReadFile(source.c_str()) == IFSelect_RetDone && reader.TransferRoots() > 0);
    const TopoDS_Shape all = reader.OneShape();
    const Handle(TDocStd_Document) document = newDocument();
    const auto tool = XCAFDoc_DocumentTool::ShapeTool(document->Main());
    const TDF_Label root = tool->NewShape();
    for (int copy = 0; copy < copies; ++copy)
        for (TopExp_Explorer bodies(all, TopAbs_SOLID); bodies.More(); bodies.Next()) {
            gp_Trsf place;
            place.SetTranslation(gp_Vec(0, 1000.0 * copy, 0));
            const TopoDS_Shape body = BRepBuilderAPI_Copy(bodies.Current()).Shape();
            tool->AddComponent(root, tool->AddShape(body, Standard_False), TopLoc_Location(place));
        }
    tool->UpdateAssemblies();
    STEPCAFControl_Writer writer;
    const std::string path = (std::filesystem::temp_directory_path() / "raylume-bench.stp").string();
    require(writer.Transfer(document, STEPControl_AsIs) == Standard_True &&
            writer.Write(path.c_str()) == IFSelect_RetDone);
    return path;
}

void meshPart(const TopoDS_Shape& shape)
{
    constexpr double kPi = 3.141592653589793;
    const ovdl::Tessellation tessellation;
    Bnd_Box box;
    box.SetGap(0);
    BRepBndLib::Add(shape, box, Standard_False);
    const BRepMesh_IncrementalMesh mesher(shape, tessellation.deflection * std::sqrt(box.SquareExtent()),
                                          Standard_False, tessellation.degrees * kPi / 180);
}

double secondsOfOpenCascade(const std::string& path)
{
    const Handle(TDocStd_Document) document = newDocument();
    return bench::secondsOnClock([&] {
        STEPCAFControl_Reader reader;
        reader.SetLayerMode(Standard_False);
        reader.SetPropsMode(Standard_False);
        reader.SetGDTMode(Standard_False);
        reader.SetMatMode(Standard_False);
        reader.SetViewMode(Standard_False);
        require(reader.ReadFile(path.c_str()) == IFSelect_RetDone);
        Handle(TDocStd_Document) target = document;
        require(reader.Transfer(target) == Standard_True);
        TDF_LabelSequence parts;
        XCAFDoc_DocumentTool::ShapeTool(document->Main())->GetShapes(parts);
        for (const TDF_Label& part : parts)
            if (XCAFDoc_ShapeTool::IsSimpleShape(part))
                meshPart(XCAFDoc_ShapeTool::GetShape(part));
    });
}

// Of the call alone: a host keeps the model, so its destruction is not part of a load.
double secondsOfLoad(const std::string& path)
{
    std::unique_ptr<dlModel> model;
    const double seconds = bench::secondsOnClock([&] { model.reset(dlModel::ReadModel(path.c_str())); });
    require(model && !model->loadRejected && model->instanceCount > 0);
    return seconds;
}

void compare(benchmark::State& state, const char* name, int copies)
{
    const std::string source = std::string(RAYLUME_STEP_SAMPLES) + "/package/test/testfiles/" + name;
    if (!std::filesystem::exists(source)) {
        state.SkipWithError("the npm package with the STEP files could not be fetched");
        return;
    }
    const std::string path = multiplied(source, copies);
    std::vector<double> loads;
    std::vector<double> peers;
    secondsOfLoad(path);
    for (auto _ : state) {
        peers.push_back(secondsOfOpenCascade(path));
        loads.push_back(secondsOfLoad(path));
        state.SetIterationTime(loads.back());
    }
    state.counters["file_MB"] = static_cast<double>(std::filesystem::file_size(path)) / 1e6;
    state.counters["load_ms"] = bench::median(loads) * 1e3;
    state.counters["peer_ms"] = bench::median(peers) * 1e3;
    state.counters["load_min_ms"] = bench::smallest(loads) * 1e3;
    state.counters["peer_min_ms"] = bench::smallest(peers) * 1e3;
    state.counters["ratio"] = bench::median(loads) / bench::median(peers);
    std::remove(path.c_str());
}

void assembly(benchmark::State& state)
{
    compare(state, "cax-if/as1-oc-214.stp", static_cast<int>(state.range(0)));
}
BENCHMARK(assembly)->Arg(2)->Arg(10)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(7);

void freeform(benchmark::State& state)
{
    compare(state, "cax-if/s1-tu-203/mainbodyfront.stp", static_cast<int>(state.range(0)));
}
BENCHMARK(freeform)->Arg(16)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(5);

}  // namespace

BENCHMARK_MAIN();
