// Models made for the purpose, through the program and back.
#include <sys/stat.h>
#include <BRepBuilderAPI_MakeEdge.hxx>
#include <BRepPrimAPI_MakeBox.hxx>
#include <BRepPrimAPI_MakeCone.hxx>
#include <BRepPrimAPI_MakeCylinder.hxx>
#include <BRepPrimAPI_MakeSphere.hxx>
#include <BRepPrimAPI_MakeTorus.hxx>
#include <BRep_Builder.hxx>
#include <TopExp_Explorer.hxx>
#include <TopoDS.hxx>
#include <TopoDS_Compound.hxx>
#include <array>
#include <clocale>
#include <cmath>
#include <csignal>
#include <gp_Ax1.hxx>
#include <map>
#include <set>
#include <sstream>

#include "OcctModel.h"
#include "Triangles.h"

namespace step_tests {
namespace {

using ovdl::ReadOutcome;
using testing::ElementsAre;
using testing::HasSubstr;

constexpr double kPi = 3.141592653589793;

TopoDS_Shape box(double x, double y, double z)
{
    return BRepPrimAPI_MakeBox(x, y, z).Shape();
}

constexpr double kBall[] = {5, 7, 9};
constexpr char kBallsCentre[] = "(5.,7.,9.)";
// So far away that no single precision number says where.
constexpr char kFarCentre[] = "(1.E99,7.,9.)";

TopoDS_Shape ball()
{
    return BRepPrimAPI_MakeSphere(gp_Pnt(kBall[0], kBall[1], kBall[2]), 1).Shape();
}

TopoDS_Compound compoundOf(std::initializer_list<TopoDS_Shape> shapes)
{
    TopoDS_Compound compound;
    const BRep_Builder builder;
    builder.MakeCompound(compound);
    for (const TopoDS_Shape& shape : shapes)
        builder.Add(compound, shape);
    return compound;
}

std::vector<TopoDS_Shape> partsOf(const TopoDS_Shape& shape, TopAbs_ShapeEnum kind)
{
    std::vector<TopoDS_Shape> result;
    for (TopExp_Explorer explorer(shape, kind); explorer.More(); explorer.Next())
        result.push_back(explorer.Current());
    return result;
}

std::vector<std::string> pathsOf(const ReadOutcome& outcome)
{
    std::vector<std::string> paths;
    for (const auto* component : components(outcome))
        paths.push_back(platform::toUtf8(component->name));
    return paths;
}

// Of a closed surface whose triangles turn outwards, above zero.
double volumeOf(const uoTempPartTessData_c& part)
{
    double volume = 0;
    for (const auto* face : facesOf(part))
        for (const auto& corners : trianglesOf(*face))
            volume += dot(at(face->points, corners[0]),
                          cross(at(face->points, corners[1]), at(face->points, corners[2]))) /
                      6;
    return volume;
}

class StepImport : public testing::Test {
protected:
    ReadOutcome readPart(const TopoDS_Shape& shape, const char* unit = "MM")
    {
        ModelBuilder model;
        model.part("thing", shape);
        model.writeStep(path_, unit);
        return readPath();
    }
    ReadOutcome readModel(ModelBuilder& model)
    {
        model.writeStep(path_);
        return readPath();
    }
    ReadOutcome readPath()
    {
        auto outcome = read(path_);
        EXPECT_EQ(outcome.kind, ReadOutcome::kRead) << outcome.reason;
        return outcome;
    }
    uoTempPartTessData_c& partIn(const ReadOutcome& outcome)
    {
        EXPECT_NE(outcome.document->part(), nullptr);
        return *outcome.document->part()->tessData;
    }
    // Writes the file again with one text in the place of another.
    void replace(const std::string& from, const std::string& to)
    {
        std::string text = readFile(path_);
        const std::size_t found = text.find(from);
        ASSERT_NE(found, std::string::npos) << text;
        for (std::size_t place = found; place != std::string::npos;
             place = text.find(from, place + to.size()))
            text.replace(place, from.size(), to);
        folder_.write("model.stp", text);
    }

    TemporaryFolder folder_;
    std::string path_ = folder_ / "model.stp";
};

TEST_F(StepImport, GivesOnePartAsAPartDocument)
{
    const auto outcome = readPart(box(10, 20, 30));
    ASSERT_NE(outcome.document->part(), nullptr);
    EXPECT_EQ(outcome.document->assembly(), nullptr);
    const auto& part = partIn(outcome);
    ASSERT_EQ(part.bodies.count, 1);
    EXPECT_EQ(part.bodies.data[0]->level, 100);
    EXPECT_EQ(part.bodies.data[0]->faces.count, 6);
    EXPECT_NEAR(volumeOf(part), 6e-6, 1e-12);
}

struct UnitCase {
    const char* name;
    const char* height;  ///< Of 30 mm, as the file has it.
};

class Unit : public StepImport, public testing::WithParamInterface<UnitCase> {};
TEST_P(Unit, MakesNoDifferenceToTheModel)
{
    const auto outcome = readPart(box(10, 20, 30), GetParam().name);
    // What is written is the same box in the unit's own numbers.
    const Box size = boxOf(outcome);
    EXPECT_NEAR(size.max[0], 0.01, 1e-8);
    EXPECT_NEAR(size.max[1], 0.02, 1e-8);
    EXPECT_NEAR(size.max[2], 0.03, 1e-8);
    EXPECT_NE(readFile(path_).find(GetParam().height), std::string::npos);
}
INSTANTIATE_TEST_SUITE_P(Rows, Unit,
                         testing::Values(UnitCase{"MM", ",30.)"}, UnitCase{"CM", ",3.)"},
                                         UnitCase{"M", ",3.E-02)"}, UnitCase{"INCH", ",1.1811"},
                                         UnitCase{"FT", ",9.84251"}),
                         [](const auto& row) { return row.param.name; });

TEST_F(StepImport, MakesAComponentOfEachOccurrenceAndSharesThePart)
{
    ModelBuilder model;
    const auto bolt = model.part("bolt", box(1, 1, 1));
    const auto plate = model.part("plate", box(10, 10, 1));
    const auto group = model.assembly("group");
    model.add(group, bolt, moved(5, 0, 0));
    model.add(group, bolt, moved(6, 0, 0));
    const auto root = model.assembly("root");
    model.add(root, plate);
    gp_Trsf turned;
    turned.SetRotation(gp_Ax1(gp_Pnt(0, 0, 0), gp_Dir(0, 0, 1)), kPi / 2);
    model.add(root, group, moved(0, 0, 100) * turned);
    model.add(root, group, moved(0, 0, 200));
    const auto outcome = readModel(model);
    EXPECT_EQ(outcome.document->part(), nullptr);
    EXPECT_THAT(pathsOf(outcome),
                ElementsAre("plate-1@model", "group-1@model/bolt-1@group", "group-1@model/bolt-2@group",
                            "group-2@model/bolt-1@group", "group-2@model/bolt-2@group"));
    const auto all = components(outcome);
    EXPECT_EQ(all[1]->tessData, all[2]->tessData);
    EXPECT_EQ(all[1]->tessData, all[4]->tessData);
    EXPECT_NE(all[0]->tessData, all[1]->tessData);
    // The first bolt of the turned group: 5 mm along x become 5 mm along y.
    mgPoint_c origin;
    origin *= all[1]->xform;
    EXPECT_NEAR(origin.x, 0, 1e-12);
    EXPECT_NEAR(origin.y, 0.005, 1e-12);
    EXPECT_NEAR(origin.z, 0.1, 1e-12);
    EXPECT_NEAR(all[1]->xform.e0, 0, 1e-12);
    EXPECT_NEAR(all[1]->xform.e1, 1, 1e-12);
    EXPECT_NEAR(all[1]->xform.e3, -1, 1e-12);
    EXPECT_EQ(all[1]->xform.scale, 1);
    for (const auto* component : all) {
        EXPECT_EQ(component->visible, 1);
        EXPECT_EQ(component->vizProps, nullptr);
    }
}

TEST_F(StepImport, PutsSeveralRootsSideBySide)
{
    ModelBuilder model;
    model.part("one", box(1, 1, 1));
    model.part("two", box(2, 1, 1));
    EXPECT_THAT(pathsOf(readModel(model)), ElementsAre("one-1@model", "two-1@model"));
}

TEST_F(StepImport, TakesAnAssemblyOfOnePartInItsPlaceForThePart)
{
    ModelBuilder model;
    const auto root = model.assembly("root");
    model.add(root, model.part("one", box(1, 1, 1)));
    EXPECT_NE(readModel(model).document->part(), nullptr);
    ModelBuilder other;
    const auto moving = other.assembly("root");
    other.add(moving, other.part("one", box(1, 1, 1)), moved(1, 0, 0));
    EXPECT_THAT(pathsOf(readModel(other)), ElementsAre("one-1@model"));
}

TEST_F(StepImport, NumbersSiblingsOfOneNameAndKeepsPathsApart)
{
    ModelBuilder model;
    const auto root = model.assembly("root");
    for (const char* name : {"a/b", "a@b", "a_b", "c"})
        model.add(root, model.part(name, box(1, 1, 1)), moved(1, 0, 0));
    EXPECT_THAT(pathsOf(readModel(model)),
                ElementsAre("a_b-1@model", "a_b-2@model", "a_b-3@model", "c-1@model"));
}

TEST_F(StepImport, KeepsNamesOfAllLanguages)
{
    ModelBuilder model;
    const auto root = model.assembly("root");
    model.add(root, model.part("Schl\xC3\xBCssel", box(1, 1, 1)), moved(1, 0, 0));
    model.add(root, model.part("\xE9\x83\xA8\xE5\x93\x81", box(1, 1, 1)), moved(2, 0, 0));
    model.add(root, model.part("quote'd", box(1, 1, 1)), moved(3, 0, 0));
    model.add(root, model.part("Escaped", box(1, 1, 1)), moved(4, 0, 0));
    model.writeStep(path_);
    replace("'Escaped'", "'\\X2\\00D6\\X0\\l \\X\\B0 \\S\\d'");
    EXPECT_THAT(pathsOf(readPath()),
                ElementsAre("Schl\xC3\xBCssel-1@model", "\xE9\x83\xA8\xE5\x93\x81-1@model",
                            "quote'd-1@model", "\xC3\x96l \xC2\xB0 \xC3\xA4-1@model"));
}

TEST_F(StepImport, ReadsAFileOfAnyName)
{
    ModelBuilder model;
    const auto root = model.assembly("root");
    model.add(root, model.part("one", box(1, 1, 1)), moved(1, 0, 0));
    path_ = folder_ / "\xE9\x83\xA8 @ 'x' $HOME.2.STP";
    EXPECT_THAT(pathsOf(readModel(model)), ElementsAre("one-1@\xE9\x83\xA8 _ 'x' $HOME.2"));
}

constexpr Rgba kRed{1, 0, 0};
constexpr Rgba kGreen{0, 1, 0};
constexpr Rgba kOrange{1, 0.5, 0.25};

TEST_F(StepImport, GivesAPartAndItsFacesTheirColours)
{
    const TopoDS_Shape shape = box(1, 1, 1);
    ModelBuilder model;
    const auto part = model.part("part", shape);
    model.colour(part, kRed);
    model.colour(part, partsOf(shape, TopAbs_FACE)[2], kOrange);
    const auto outcome = readModel(model);
    auto& result = partIn(outcome);
    auto* visual = result.getModelVizProp(0);
    ASSERT_NE(visual, nullptr);
    EXPECT_EQ(visual->colorRef, 0x0000FFu);
    EXPECT_EQ(visual->activeFlag, 1);
    ASSERT_NE(visual->materialProps, nullptr);
    EXPECT_EQ(visual->materialProps->transparency, 0);
    ASSERT_NE(visual->materialProps->rvAppearance, nullptr);
    EXPECT_EQ(visual->materialProps->rvAppearance->colorRef, 0x0000FFu);
    const auto faces = facesOf(result);
    for (std::size_t i = 0; i < faces.size(); ++i) {
        if (i == 2)
            EXPECT_EQ(faces[i]->getFaceVizProp(0)->colorRef, 0x4080FFu);
        else
            EXPECT_EQ(faces[i]->getFaceVizProp(0), nullptr);
    }
}

TEST_F(StepImport, GivesABodyItsColour)
{
    const TopoDS_Shape second = BRepPrimAPI_MakeBox(gp_Pnt(5, 0, 0), 1, 1, 1).Shape();
    ModelBuilder model;
    const auto part = model.part("part", compoundOf({box(1, 1, 1), second}));
    model.colour(part, second, kGreen);
    const auto outcome = readModel(model);
    auto& result = partIn(outcome);
    ASSERT_EQ(result.bodies.count, 2);
    EXPECT_EQ(result.getModelVizProp(0), nullptr);
    EXPECT_EQ(result.bodies.data[0]->getBodyVizProp(0), nullptr);
    ASSERT_NE(result.bodies.data[1]->getBodyVizProp(0), nullptr);
    EXPECT_EQ(result.bodies.data[1]->getBodyVizProp(0)->colorRef, 0x00FF00u);
    for (auto* face : facesOf(result))
        EXPECT_EQ(face->getFaceVizProp(0), nullptr);
}

TEST_F(StepImport, GivesAnOccurrenceTheColourThatTheFileGivesIt)
{
    ModelBuilder model;
    const auto part = model.part("part", box(1, 1, 1));
    model.colour(part, kRed);
    const auto root = model.assembly("root");
    model.add(root, part, moved(1, 0, 0));
    model.colour(model.add(root, part, moved(2, 0, 0)), kGreen);
    const auto outcome = readModel(model);
    const auto all = components(outcome);
    ASSERT_EQ(all.size(), 2u);
    EXPECT_EQ(all[0]->vizProps, nullptr);
    ASSERT_NE(all[1]->vizProps, nullptr);
    EXPECT_EQ(all[1]->vizProps->colorRef, 0x00FF00u);
    EXPECT_EQ(all[0]->tessData->getModelVizProp(0)->colorRef, 0x0000FFu);
}

TEST_F(StepImport, GivesADeepOccurrenceItsOwnColour)
{
    ModelBuilder model;
    const auto part = model.part("part", box(1, 1, 1));
    const auto group = model.assembly("group");
    const auto inner = model.add(group, part, moved(1, 0, 0));
    const auto root = model.assembly("root");
    model.add(root, group, moved(0, 1, 0));
    const auto outer = model.add(root, group, moved(0, 2, 0));
    model.colourOccurrence({outer, inner}, kGreen);
    const auto outcome = readModel(model);
    const auto all = components(outcome);
    ASSERT_EQ(all.size(), 2u);
    EXPECT_EQ(all[0]->vizProps, nullptr);
    ASSERT_NE(all[1]->vizProps, nullptr);
    EXPECT_EQ(all[1]->vizProps->colorRef, 0x00FF00u);
}

TEST_F(StepImport, KeepsHowMuchPassesThroughAColour)
{
    ModelBuilder model;
    model.colour(model.part("glass", box(1, 1, 1)), {0, 0, 1, 0.25});
    const auto outcome = readModel(model);
    const auto* visual = partIn(outcome).getModelVizProp(0);
    ASSERT_NE(visual, nullptr);
    EXPECT_EQ(visual->colorRef, 0xFF0000u);
    EXPECT_NEAR(visual->materialProps->transparency, 0.75, 0.003);
}

TEST_F(StepImport, KeepsWhatIsHidden)
{
    ModelBuilder model;
    const auto hidden = model.part("hidden", box(1, 1, 1));
    model.colour(hidden, kRed);
    model.hide(hidden);
    const auto root = model.assembly("root");
    model.add(root, model.part("shown", box(1, 1, 1)), moved(1, 0, 0));
    model.add(root, hidden, moved(2, 0, 0));
    const auto outcome = readModel(model);
    const auto all = components(outcome);
    ASSERT_EQ(all.size(), 2u);
    EXPECT_EQ(all[0]->visible, 1);
    EXPECT_EQ(all[1]->visible, 0);
    ASSERT_NE(all[1]->tessData, nullptr);
    EXPECT_GT(facesOf(*all[1]->tessData)[0]->points.count, 0);
}

TEST_F(StepImport, GivesTrueNormalsAndNoSeam)
{
    const auto outcome = readPart(BRepPrimAPI_MakeSphere(100).Shape());
    const auto faces = facesOf(partIn(outcome));
    ASSERT_EQ(faces.size(), 1u);
    const auto& face = *faces[0];
    ASSERT_GT(face.points.count, 300);
    ASSERT_EQ(face.normals.count, face.points.count);
    std::map<Point, std::set<Point>> normalsAt;
    for (long long i = 0; 3 * i < face.points.count; ++i) {
        const Point point = at(face.points, i);
        const Point normal = at(face.normals, i);
        // On the surface to single precision, wherever the mesh has its points.
        EXPECT_NEAR(std::sqrt(dot(point, point)), 0.1, 1e-8);
        EXPECT_NEAR(dot(point, normal), 0.1, 1e-7);
        normalsAt[point].insert(normal);
    }
    for (const auto& [point, normals] : normalsAt)
        EXPECT_EQ(normals.size(), 1u);
    for (const auto& corners : trianglesOf(face)) {
        EXPECT_NE(at(face.points, corners[0]), at(face.points, corners[1]));
        EXPECT_NE(at(face.points, corners[1]), at(face.points, corners[2]));
        EXPECT_NE(at(face.points, corners[0]), at(face.points, corners[2]));
    }
}

// Every edge of a closed surface has a triangle on both sides: no gap along seams and at poles.
void expectClosed(const uoTempPartTessData_c& part)
{
    std::map<std::pair<Point, Point>, int> edges;
    for (const auto* face : facesOf(part))
        for (const auto& corners : trianglesOf(*face))
            for (std::size_t i = 0; i < 3; ++i)
                ++edges[{at(face->points, corners[i]), at(face->points, corners[(i + 1) % 3])}];
    ASSERT_FALSE(edges.empty());
    for (const auto& [edge, count] : edges) {
        EXPECT_EQ(count, 1);
        EXPECT_EQ(edges.count({edge.second, edge.first}), 1u);
    }
}

struct SolidCase {
    const char* name;
    TopoDS_Shape (*make)();
    double cubicMillimetres;
};

const SolidCase kSolids[] = {
    {"box", [] { return box(10, 20, 30); }, 6000},
    {"sphere", [] { return BRepPrimAPI_MakeSphere(10).Shape(); }, 4.0 / 3 * kPi * 1000},
    {"cylinder", [] { return BRepPrimAPI_MakeCylinder(10, 30).Shape(); }, kPi * 3000},
    {"cone_with_a_tip", [] { return BRepPrimAPI_MakeCone(10, 0, 30).Shape(); }, kPi * 1000},
    {"torus", [] { return BRepPrimAPI_MakeTorus(30, 10).Shape(); }, 2 * kPi* kPi * 30 * 100},
    {"reversed_twice", [] { return box(10, 20, 30).Reversed().Reversed(); }, 6000},
};

class Solid : public StepImport, public testing::WithParamInterface<SolidCase> {};
TEST_P(Solid, IsClosedAndTurnsOutwards)
{
    const auto outcome = readPart(GetParam().make());
    const auto& part = partIn(outcome);
    expectClosed(part);
    EXPECT_NEAR(volumeOf(part) / (GetParam().cubicMillimetres * 1e-9), 1, 0.03);
    for (const auto* face : facesOf(part))
        for (const auto& corners : trianglesOf(*face)) {
            const Point a = at(face->points, corners[0]);
            const Point turn = cross(difference(at(face->points, corners[1]), a),
                                     difference(at(face->points, corners[2]), a));
            for (const long long corner : corners)
                EXPECT_GT(dot(turn, at(face->normals, corner)), 0);
        }
}
INSTANTIATE_TEST_SUITE_P(Rows, Solid, testing::ValuesIn(kSolids),
                         [](const auto& row) { return row.param.name; });

TEST_F(StepImport, GivesTextureCoordinatesOfTheSurfaceInMetresAndRadians)
{
    const auto outcome = readPart(BRepPrimAPI_MakeCylinder(10, 30).Shape());
    for (const auto* face : facesOf(partIn(outcome))) {
        ASSERT_EQ(face->hasUVs, 1);
        ASSERT_EQ(face->uvs.count / 2, face->points.count / 3);
        for (long long i = 0; 2 * i < face->uvs.count; ++i) {
            const Point point = at(face->points, i);
            const double u = face->uvs.data[2 * i];
            const double v = face->uvs.data[2 * i + 1];
            if (std::abs(at(face->normals, i)[2]) > 0.5) {
                EXPECT_NEAR(u * u + v * v, point[0] * point[0] + point[1] * point[1], 1e-7);
            } else {
                EXPECT_NEAR(std::cos(u) * 0.01, point[0], 1e-6);
                EXPECT_NEAR(std::sin(u) * 0.01, point[1], 1e-6);
                EXPECT_NEAR(v, point[2], 1e-7);
            }
        }
    }
}

TEST_F(StepImport, NumbersFacesTheSameOnEachRead)
{
    const auto idsOf = [](const uoTempPartTessData_c& part) {
        std::vector<std::pair<int, int>> ids;
        for (const auto* face : facesOf(part))
            ids.emplace_back(face->faceId, face->faceKey);
        return ids;
    };
    const auto outcome =
        readPart(compoundOf({box(1, 1, 1), BRepPrimAPI_MakeBox(gp_Pnt(5, 0, 0), 1, 1, 1).Shape()}));
    const auto ids = idsOf(partIn(outcome));
    ASSERT_EQ(ids.size(), 12u);
    EXPECT_EQ(ids, idsOf(partIn(readPath())));
    const std::string text = readFile(path_);
    for (std::size_t i = 0; i < ids.size(); ++i) {
        EXPECT_EQ(ids[i].first, static_cast<int>(i) + 1);
        EXPECT_THAT(text, HasSubstr("#" + std::to_string(ids[i].second) + " = ADVANCED_FACE("));
    }
}

TEST_F(StepImport, MakesBodiesOfFreeShellsAndOneOfFreeFaces)
{
    const TopoDS_Shape open = partsOf(box(3, 3, 3), TopAbs_SHELL)[0];
    const auto faces = partsOf(BRepPrimAPI_MakeBox(gp_Pnt(9, 0, 0), 1, 1, 1).Shape(), TopAbs_FACE);
    const auto outcome = readPart(compoundOf({box(1, 1, 1), open, faces[0], faces[3]}));
    const auto& part = partIn(outcome);
    long long count = 0;
    for (long long i = 0; i < part.bodies.count; ++i)
        count += part.bodies.data[i]->faces.count;
    EXPECT_EQ(count, 14);
    EXPECT_GE(part.bodies.count, 3);
}

TEST_F(StepImport, RefusesAFileOfWiresOnly)
{
    ModelBuilder model;
    model.part("wire", BRepBuilderAPI_MakeEdge(gp_Pnt(0, 0, 0), gp_Pnt(1, 0, 0)).Shape());
    model.writeStep(path_);
    const auto outcome = read(path_);
    EXPECT_EQ(outcome.kind, ReadOutcome::kRejected);
    EXPECT_NE(outcome.reason, "");
}

TEST_F(StepImport, IgnoresWiresBesideFaces)
{
    const auto outcome = readPart(
        compoundOf({box(1, 1, 1), BRepBuilderAPI_MakeEdge(gp_Pnt(0, 0, 0), gp_Pnt(99, 0, 0)).Shape()}));
    EXPECT_NEAR(boxOf(outcome).max[0], 0.001, 1e-9);
}

TEST_F(StepImport, ReadsIgesAsOnePart)
{
    ModelBuilder model;
    model.part("thing",
               compoundOf({box(10, 20, 30), BRepPrimAPI_MakeBox(gp_Pnt(50, 0, 0), 1, 1, 1).Shape()}));
    path_ = folder_ / "model.igs";
    model.writeIges(path_);
    const auto outcome = readPath();
    EXPECT_EQ(facesOf(partIn(outcome)).size(), 12u);
    EXPECT_NEAR(boxOf(outcome).max[0], 0.051, 1e-8);
    EXPECT_NEAR(boxOf(outcome).max[2], 0.03, 1e-8);
}

TEST_F(StepImport, GivesFacesOfIgesTheNumbersOfTheirDirectoryEntries)
{
    ModelBuilder model;
    model.part("thing", box(10, 20, 30));
    path_ = folder_ / "model.igs";
    model.writeIges(path_);
    const auto outcome = readPath();
    // The type stands in front of the line, the number of the line behind its letter.
    std::map<int, int> types;
    std::istringstream lines(readFile(path_));
    for (std::string line; std::getline(lines, line);)
        if (line.size() >= 80 && line[72] == 'D')
            types[std::stoi(line.substr(73))] = std::stoi(line.substr(0, 8));
    constexpr int kTrimmedSurface = 144;
    std::set<int> keys;
    for (const auto* face : facesOf(partIn(outcome))) {
        EXPECT_EQ(types[face->faceKey], kTrimmedSurface);
        keys.insert(face->faceKey);
    }
    EXPECT_EQ(keys.size(), 6u);
}

TEST_F(StepImport, NumbersFacesTheSameHoweverFineTheyAre)
{
    const auto idsWith = [&](const char* text) {
        const ScopedVariable variable("RAYLUME_TESSELLATION", text);
        const auto outcome =
            readPart(compoundOf({BRepPrimAPI_MakeTorus(30, 10).Shape(), box(10, 20, 30), ball()}));
        std::vector<std::pair<int, int>> ids;
        for (const auto* face : facesOf(partIn(outcome)))
            ids.emplace_back(face->faceId, face->faceKey);
        return ids;
    };
    const auto ids = idsWith("0.1,60");
    EXPECT_EQ(ids.size(), 8u);
    EXPECT_EQ(idsWith("0.0005,5"), ids);
}

TEST_F(StepImport, MakesFinerFacesOnRequest)
{
    const auto verticesWith = [&](const char* text) {
        const ScopedVariable variable("RAYLUME_TESSELLATION", text);
        return facesOf(partIn(readPart(BRepPrimAPI_MakeSphere(10).Shape())))[0]->points.count;
    };
    const auto coarse = verticesWith("0.1,60");
    EXPECT_GT(verticesWith("0.1,5"), 4 * coarse);
    EXPECT_GT(verticesWith("0.0005,60"), 4 * coarse);
}

TEST_F(StepImport, TellsProgressUpToTheEnd)
{
    ModelBuilder model;
    const auto root = model.assembly("root");
    for (int i = 0; i < 20; ++i)
        model.add(root, model.part("ball", BRepPrimAPI_MakeSphere(10 + i).Shape()), moved(100 * i, 0, 0));
    model.writeStep(path_);
    Context context;
    ASSERT_EQ(read(path_, context).kind, ReadOutcome::kRead);
    ASSERT_GT(context.shares.size(), 10u);
    EXPECT_TRUE(std::is_sorted(context.shares.begin(), context.shares.end()));
    EXPECT_LT(context.shares.front(), 0.3f);
    // While it is meshed, too.
    EXPECT_GE(std::count_if(context.shares.begin(), context.shares.end(),
                            [](float share) { return share > 0.56f && share < 0.89f; }),
              10);
    EXPECT_GT(context.shares.back(), 0.94f);
    EXPECT_LE(context.shares.back(), 1.0f);
}

TEST_F(StepImport, RefusesWhatNeedsMoreMemoryThanAllowed)
{
    if (!RAYLUME_IMPORT_LIMITS_MEMORY)
        GTEST_SKIP() << "a build with sanitizers has no limit of memory";
    readPart(box(1, 1, 1));
    const ScopedVariable memory("RAYLUME_IMPORT_MEGABYTES", "100");
    const auto outcome = read(path_);
    EXPECT_EQ(outcome.kind, ReadOutcome::kRejected);
    EXPECT_EQ(outcome.reason, "the import needs more memory than 100 megabytes");
}

TEST_F(StepImport, RefusesWhatBecomesLargerThanAllowed)
{
    readPart(BRepPrimAPI_MakeSphere(10).Shape());
    const ScopedVariable fine("RAYLUME_TESSELLATION", "0.0005,2");
    const ScopedVariable output("RAYLUME_IMPORT_OUTPUT_MEGABYTES", "0.1");
    const auto outcome = read(path_);
    EXPECT_EQ(outcome.kind, ReadOutcome::kRejected);
    EXPECT_EQ(outcome.reason, "the imported document is larger than 104858 bytes");
}

TEST_F(StepImport, ReadsForAHostThatIgnoresItsChildren)
{
    signal(SIGCHLD, SIG_IGN);
    const auto outcome = readPart(box(1, 1, 1));
    signal(SIGCHLD, SIG_DFL);
    EXPECT_EQ(facesOf(partIn(outcome)).size(), 6u);
}

TEST_F(StepImport, ReadsNumbersTheSameInEveryLocale)
{
    const std::string before = std::setlocale(LC_ALL, nullptr);
    const ScopedVariable language("LC_ALL", "de_DE.UTF-8");
    std::setlocale(LC_ALL, "de_DE.UTF-8");
    const auto outcome = readPart(box(0.5, 0.25, 0.125));
    std::setlocale(LC_ALL, before.c_str());
    EXPECT_NEAR(boxOf(outcome).max[2], 0.000125, 1e-10);
}

TEST_F(StepImport, LosesNoMoreThanTheBodiesOnWhichTheMesherFails)
{
    ModelBuilder model;
    model.part("thing", compoundOf({box(1, 2, 3), ball()}));
    model.writeStep(path_);
    replace(kBallsCentre, kFarCentre);
    const auto outcome = readPath();
    const auto& part = partIn(outcome);
    ASSERT_EQ(part.bodies.count, 2);
    ASSERT_EQ(part.bodies.data[0]->faces.count, 6);
    for (int i = 0; i < 6; ++i)
        EXPECT_GT(part.bodies.data[0]->faces.data[i]->stripCount, 0);
    ASSERT_EQ(part.bodies.data[1]->faces.count, 1);
    EXPECT_EQ(part.bodies.data[1]->faces.data[0]->stripCount, 0);
    EXPECT_NEAR(boxOf(outcome).max[2], 0.003, 1e-8);
}

TEST_F(StepImport, RefusesADocumentInWhichNothingCanBeMeshed)
{
    ModelBuilder model;
    model.part("thing", ball());
    model.writeStep(path_);
    replace(kBallsCentre, kFarCentre);
    const auto outcome = read(path_);
    EXPECT_EQ(outcome.kind, ReadOutcome::kRejected);
    EXPECT_EQ(outcome.reason, "nothing in the file could be meshed");
}

TEST_F(StepImport, RefusesMoreOccurrencesThanTheFileExplains)
{
    ModelBuilder model;
    auto level = model.part("thing", box(1, 1, 1));
    for (int i = 0; i < 17; ++i) {
        const auto next = model.assembly("level");
        model.add(next, level);
        model.add(next, level, moved(i + 1, 0, 0));
        level = next;
    }
    model.writeStep(path_);
    const auto outcome = read(path_);
    EXPECT_EQ(outcome.kind, ReadOutcome::kRejected);
    EXPECT_EQ(outcome.reason, "the file has more occurrences than its size explains");
}

TEST_F(StepImport, TakesNamesInEightBitsForWesternOnes)
{
    ModelBuilder model;
    const auto root = model.assembly("root");
    model.add(root, model.part("Escaped", box(1, 1, 1)), moved(1, 0, 0));
    model.add(root, model.part("Middle", box(1, 1, 1)), moved(2, 0, 0));
    model.add(root, model.part("Ends", box(1, 1, 1)), moved(3, 0, 0));
    model.add(root, model.part("Row", box(1, 1, 1)), moved(4, 0, 0));
    model.writeStep(path_);
    replace("'Escaped'", "'\\X2\\00D6\\X0\\l'");
    replace("'Middle'", "'Schl\xFCssel'");
    replace("'Ends'", "'\xC9t\xE9'");
    replace("'Row'", "'cr\xE9\xE9 \xE0\xA0\xBF'");
    EXPECT_THAT(pathsOf(readPath()),
                ElementsAre("\xC3\x96l-1@model", "Schl\xC3\xBCssel-1@model", "\xC3\x89t\xC3\xA9-1@model",
                            "cr\xC3\xA9\xC3\xA9 \xC3\xA0\xC2\xA0\xC2\xBF-1@model"));
}

// A solid that stands in its product by way of a mapped item: turned half round z, and moved.
TEST_F(StepImport, PlacesTheOnlyPartWhereTheFileHasIt)
{
    ModelBuilder model;
    model.part("thing", box(10, 20, 30));
    model.writeStep(path_);
    replace("SHAPE_DEFINITION_REPRESENTATION(#4,#10);", "SHAPE_DEFINITION_REPRESENTATION(#4,#9001);");
    replace("ENDSEC;\nEND-ISO",
            "#9001 = SHAPE_REPRESENTATION('',(#9002),#345);\n"
            "#9002 = MAPPED_ITEM('',#9003,#9004);\n"
            "#9003 = REPRESENTATION_MAP(#11,#10);\n"
            "#9004 = CARTESIAN_TRANSFORMATION_OPERATOR_3D('','','',#9005,#9006,#9008,1.,#9007);\n"
            "#9005 = DIRECTION('',(-1.,0.,0.));\n"
            "#9006 = DIRECTION('',(0.,-1.,0.));\n"
            "#9007 = DIRECTION('',(0.,0.,1.));\n"
            "#9008 = CARTESIAN_POINT('',(0.,0.,500.));\n"
            "ENDSEC;\nEND-ISO");
    const auto outcome = readPath();
    EXPECT_THAT(pathsOf(outcome), ElementsAre("thing-1@model"));
    const Box size = boxOf(outcome);
    EXPECT_NEAR(size.min[0], -0.01, 1e-8);
    EXPECT_NEAR(size.min[1], -0.02, 1e-8);
    EXPECT_NEAR(size.max[1], 0, 1e-8);
    EXPECT_NEAR(size.max[2], 0.53, 1e-8);
}

// A document of two parts whose second stands in another file.
class ExternalFile : public StepImport {
protected:
    void SetUp() override
    {
        SKIP_WITHOUT_SAMPLES();
        inside_ = folder_.makeFolder("inside");
        for (const auto& entry : std::filesystem::directory_iterator(sample("cax-if/s1-c5-214")))
            std::filesystem::copy(entry.path(), inside_);
        path_ = inside_ + "/HEAD.stp";
    }
    void rename(const std::string& file, const std::string& name)
    {
        std::string text = readFile(path_);
        const std::string from = "'" + file + "'";
        ASSERT_NE(text.find(from), std::string::npos);
        for (std::size_t at; (at = text.find(from)) != std::string::npos;)
            text.replace(at, from.size(), "'" + name + "'");
        folder_.write("inside/HEAD.stp", text);
    }
    std::vector<std::string> shown()
    {
        std::vector<std::string> result;
        const auto outcome = read(path_);
        for (const auto* component : components(outcome))
            if (component->tessData)
                result.push_back(platform::toUtf8(component->name));
        return result;
    }
    static constexpr char kBack[] = "HEAD_BACK-1@HEAD";
    static constexpr char kFront[] = "HEAD_FRONT-1@HEAD";

    std::string inside_;
};

TEST_F(ExternalFile, IsReadBesideTheDocument)
{
    EXPECT_THAT(shown(), testing::UnorderedElementsAre(kBack, kFront));
}

TEST_F(ExternalFile, IsReadByARelativePathToo)
{
    path_ = std::filesystem::relative(path_).string();
    ASSERT_NE(path_.front(), '/');
    EXPECT_THAT(shown(), testing::UnorderedElementsAre(kBack, kFront));
}

// The folder of relative paths, as long as this lives.
class CurrentFolder {
public:
    explicit CurrentFolder(const std::string& path) { std::filesystem::current_path(path); }
    CurrentFolder(const CurrentFolder&) = delete;
    CurrentFolder& operator=(const CurrentFolder&) = delete;
    ~CurrentFolder() { std::filesystem::current_path(before_); }

private:
    std::filesystem::path before_ = std::filesystem::current_path();
};

TEST_F(ExternalFile, IsNotLookedForInTheCurrentFolder)
{
    std::filesystem::rename(inside_ + "/HEAD_BACK.stp", folder_ / "HEAD_BACK.stp");
    const std::string current = folder_.makeFolder("current");
    std::filesystem::create_symlink(folder_ / "HEAD_BACK.stp", current + "/HEAD_BACK.stp");
    const CurrentFolder there(current);
    path_ = "../inside/HEAD.stp";
    EXPECT_THAT(shown(), ElementsAre(kFront));
}

TEST_F(ExternalFile, IsLookedForBesideWhatALinkToTheDocumentMeans)
{
    const std::string links = folder_.makeFolder("links");
    std::filesystem::create_symlink(path_, links + "/HEAD.stp");
    // Beside the link its front is another file, which nobody must read.
    std::filesystem::create_symlink("/dev/null", links + "/HEAD_FRONT.stp");
    path_ = links + "/HEAD.stp";
    EXPECT_THAT(shown(), testing::UnorderedElementsAre(kBack, kFront));
}

TEST_F(ExternalFile, IsNotReadBesideALinkToTheDocument)
{
    const std::string links = folder_.makeFolder("links");
    std::filesystem::create_symlink(path_, links + "/HEAD.stp");
    std::filesystem::rename(inside_ + "/HEAD_BACK.stp", folder_ / "HEAD_BACK.stp");
    std::filesystem::create_symlink(folder_ / "HEAD_BACK.stp", links + "/HEAD_BACK.stp");
    path_ = links + "/HEAD.stp";
    EXPECT_THAT(shown(), ElementsAre(kFront));
}

// Names that are taken out leave one behind, under which there must be nothing to find.
TEST_F(ExternalFile, IsNotReadUnderTheNameOfOneThatIsLeftOut)
{
    std::filesystem::rename(inside_ + "/HEAD_BACK.stp", folder_ / "HEAD_BACK.stp");
    rename("HEAD_BACK.stp", "../HEAD_BACK.stp");
    std::filesystem::create_symlink(folder_ / "HEAD_BACK.stp", inside_ + "/\x7F");
    std::filesystem::create_directories(inside_ + "/dev/null");
    std::filesystem::create_symlink(folder_ / "HEAD_BACK.stp", inside_ + "/dev/null/none");
    EXPECT_THAT(shown(), ElementsAre(kFront));
}

TEST_F(StepImport, RefusesAFileThatIsGone)
{
    const auto outcome = read(path_);
    EXPECT_EQ(outcome.kind, ReadOutcome::kRejected);
    EXPECT_EQ(outcome.reason, "the file cannot be opened");
}

TEST_F(ExternalFile, IsReadBelowTheDocument)
{
    folder_.makeFolder("inside/below");
    std::filesystem::rename(inside_ + "/HEAD_BACK.stp", inside_ + "/below/HEAD_BACK.stp");
    rename("HEAD_BACK.stp", "below/HEAD_BACK.stp");
    EXPECT_THAT(shown(), testing::UnorderedElementsAre(kBack, kFront));
}

TEST_F(ExternalFile, IsLeftOutWhenItIsMissing)
{
    std::filesystem::remove(inside_ + "/HEAD_BACK.stp");
    EXPECT_THAT(shown(), ElementsAre(kFront));
}

TEST_F(ExternalFile, IsNotReadAboveTheDocument)
{
    std::filesystem::rename(inside_ + "/HEAD_BACK.stp", folder_ / "HEAD_BACK.stp");
    rename("HEAD_BACK.stp", "../HEAD_BACK.stp");
    EXPECT_THAT(shown(), ElementsAre(kFront));
}

TEST_F(ExternalFile, IsNotReadByAnAbsoluteName)
{
    rename("HEAD_BACK.stp", inside_ + "/HEAD_BACK.stp");
    EXPECT_THAT(shown(), ElementsAre(kFront));
}

TEST_F(ExternalFile, IsNotReadThroughALinkThatLeavesTheFolder)
{
    std::filesystem::rename(inside_ + "/HEAD_BACK.stp", folder_ / "HEAD_BACK.stp");
    std::filesystem::create_symlink(folder_ / "HEAD_BACK.stp", inside_ + "/HEAD_BACK.stp");
    EXPECT_THAT(shown(), ElementsAre(kFront));
}

TEST_F(ExternalFile, IsReadThroughALinkThatStays)
{
    std::filesystem::rename(inside_ + "/HEAD_BACK.stp", inside_ + "/real.stp");
    std::filesystem::create_symlink("real.stp", inside_ + "/HEAD_BACK.stp");
    EXPECT_THAT(shown(), testing::UnorderedElementsAre(kBack, kFront));
}

TEST_F(ExternalFile, IsNotReadWhenItIsNoRegularFile)
{
    std::filesystem::remove(inside_ + "/HEAD_BACK.stp");
    ASSERT_EQ(mkfifo((inside_ + "/HEAD_BACK.stp").c_str(), 0600), 0);
    EXPECT_THAT(shown(), ElementsAre(kFront));
}

TEST_F(ExternalFile, IsNotReadWhenItLeadsOutOfTheFolderItself)
{
    // One level further up: the head is named by the whole, and names its own parts.
    std::filesystem::rename(inside_ + "/HEAD_BACK.stp", folder_ / "HEAD_BACK.stp");
    rename("HEAD_BACK.stp", "../HEAD_BACK.stp");
    path_ = inside_ + "/s1-c5-214.stp";
    const auto all = shown();
    EXPECT_EQ(all.size(), 9u);
    for (const std::string& name : all)
        EXPECT_THAT(name, testing::Not(HasSubstr("HEAD")));
}

TEST_F(ExternalFile, IsNotReadWhenItIsTheDocumentItself)
{
    rename("HEAD_BACK.stp", "HEAD.stp");
    EXPECT_THAT(shown(), ElementsAre(kFront));
}

TEST_F(ExternalFile, IsNotReadWhenItNamesItself)
{
    std::filesystem::copy_file(path_, inside_ + "/HEAD_BACK.stp",
                               std::filesystem::copy_options::overwrite_existing);
    EXPECT_THAT(shown(), ElementsAre(kFront));
}

TEST_F(ExternalFile, IsNotReadWhenItNamesTheDocument)
{
    rename("HEAD_BACK.stp", "s1-c5-214.stp");
    path_ = inside_ + "/s1-c5-214.stp";
    const auto all = shown();
    EXPECT_EQ(all.size(), 9u);
    for (const std::string& name : all)
        EXPECT_THAT(name, testing::Not(HasSubstr("HEAD")));
}

// Each of them shows the next one twice.
TEST_F(ExternalFile, IsRefusedWhenFilesMultiplyBeyondWhatTheyExplain)
{
    const std::string head = readFile(path_);
    constexpr int kFiles = 17;
    const auto nameOf = [](int i) { return "next" + std::to_string(i) + ".stp"; };
    for (int i = 0; i < kFiles; ++i) {
        folder_.write("inside/HEAD.stp", head);
        rename("HEAD_BACK.stp", nameOf(i + 1));
        rename("HEAD_FRONT.stp", nameOf(i + 1));
        std::filesystem::rename(path_, inside_ + "/" + nameOf(i));
    }
    std::filesystem::rename(inside_ + "/HEAD_FRONT.stp", inside_ + "/" + nameOf(kFiles));
    path_ = inside_ + "/" + nameOf(0);
    const auto outcome = read(path_);
    EXPECT_EQ(outcome.kind, ReadOutcome::kRejected);
    EXPECT_EQ(outcome.reason, "the file has more occurrences than its size explains");
}

TEST_F(ExternalFile, IsNotReadWhenItsLoadCheckFails)
{
    std::string text = readFile(inside_ + "/HEAD_BACK.stp");
    const std::string face = "#161=ADVANCED_FACE('*VOL5',(#100,#160),#40,";
    const std::size_t found = text.find(face);
    ASSERT_NE(found, std::string::npos);
    folder_.write("inside/HEAD_BACK.stp",
                  text.replace(found, face.size(), "#161=ADVANCED_FACE('*VOL5',(#100,#160),'surface',"));
    const auto outcome = read(path_);
    EXPECT_EQ(outcome.kind, ReadOutcome::kRejected);
    EXPECT_THAT(outcome.reason, testing::StartsWith("the load check of \"HEAD_BACK.stp\" fails: #161: "));
}

}  // namespace
}  // namespace step_tests
