// Faces as the import program makes them, where no file leads.
#include "reader/formats/step/import/FaceMesh.h"

#include <BRepMesh_IncrementalMesh.hxx>
#include <BRepPrimAPI_MakeCone.hxx>
#include <BRepPrimAPI_MakeSphere.hxx>
#include <BRep_Tool.hxx>
#include <Poly_Triangulation.hxx>
#include <TopExp_Explorer.hxx>
#include <TopLoc_Location.hxx>
#include <TopoDS.hxx>
#include <cmath>
#include <gp_Ax2.hxx>
#include <gp_Trsf.hxx>

#include "Triangles.h"

namespace step_tests {
namespace {

TopoDS_Face meshedSphere()
{
    const TopoDS_Shape sphere = BRepPrimAPI_MakeSphere(gp_Pnt(100, 0, 0), 10).Shape();
    const BRepMesh_IncrementalMesh mesher(sphere, 0.1);
    return TopoDS::Face(TopExp_Explorer(sphere, TopAbs_FACE).Current());
}

struct PlaceCase {
    const char* name;
    bool mirrored;
    bool reversed;
    double centre;
};

class PlacedFace : public testing::TestWithParam<PlaceCase> {};
TEST_P(PlacedFace, TurnsToWhereItsNormalsPoint)
{
    TopoDS_Face face = meshedSphere();
    if (GetParam().mirrored) {
        gp_Trsf mirror;
        mirror.SetMirror(gp_Ax2(gp_Pnt(0, 0, 0), gp_Dir(1, 0, 0)));
        face.Location(TopLoc_Location(mirror), Standard_False);
    }
    if (GetParam().reversed)
        face.Reverse();
    ovdl::PreparedDocument document;
    uoTempFaceTessData_c result;
    ovdl::step::FaceMesh(document).fill(face, result);
    ASSERT_GT(result.stripCount, 0);
    const Point centre = {GetParam().centre, 0, 0};
    const double outwards = GetParam().reversed ? -1 : 1;
    for (const auto& corners : trianglesOf(result)) {
        const Point a = at(result.points, corners[0]);
        const Point turn = cross(difference(at(result.points, corners[1]), a),
                                 difference(at(result.points, corners[2]), a));
        EXPECT_GT(outwards * dot(turn, difference(a, centre)), 0);
        for (const long long corner : corners) {
            EXPECT_GT(dot(turn, at(result.normals, corner)), 0);
            const Point ray = difference(at(result.points, corner), centre);
            EXPECT_NEAR(outwards * dot(ray, at(result.normals, corner)), 0.01, 1e-8);
        }
    }
}
INSTANTIATE_TEST_SUITE_P(Rows, PlacedFace,
                         testing::Values(PlaceCase{"as_it_is", false, false, 0.1},
                                         PlaceCase{"reversed", false, true, 0.1},
                                         PlaceCase{"mirrored", true, false, -0.1},
                                         PlaceCase{"mirrored_and_reversed", true, true, -0.1}),
                         [](const auto& row) { return row.param.name; });

TEST(FaceMesh, DropsTrianglesWhosePointsAreNotFinite)
{
    const TopoDS_Face face = meshedSphere();
    const auto trianglesNow = [&] {
        ovdl::PreparedDocument document;
        uoTempFaceTessData_c result;
        ovdl::step::FaceMesh(document).fill(face, result);
        for (long long i = 0; i < result.points.count; ++i)
            EXPECT_TRUE(std::isfinite(result.points.data[i]));
        return trianglesOf(result).size();
    };
    const std::size_t all = trianglesNow();
    TopLoc_Location location;
    const Handle(Poly_Triangulation) mesh = BRep_Tool::Triangulation(face, location);
    const int middle = mesh->NbNodes() / 2;
    for (const gp_Pnt& far : {gp_Pnt(1e99, 0, 0), gp_Pnt(0, -1e99, 0), gp_Pnt(0, 0, std::nan(""))}) {
        mesh->SetNode(middle, far);
        EXPECT_LT(trianglesNow(), all);
        EXPECT_GT(trianglesNow(), all / 2);
    }
}

TEST(FaceMesh, LeavesAFaceWithoutAMeshEmpty)
{
    const TopoDS_Shape sphere = BRepPrimAPI_MakeSphere(10).Shape();
    ovdl::PreparedDocument document;
    uoTempFaceTessData_c result;
    ovdl::step::FaceMesh(document).fill(TopoDS::Face(TopExp_Explorer(sphere, TopAbs_FACE).Current()),
                                        result);
    EXPECT_EQ(result.stripCount, 0);
    EXPECT_EQ(result.points.count, 0);
    EXPECT_EQ(result.hasUVs, 0);
}

}  // namespace
}  // namespace step_tests
