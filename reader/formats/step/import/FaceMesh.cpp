#include "reader/formats/step/import/FaceMesh.h"

#include <meshoptimizer.h>
#include <BRep_Tool.hxx>
#include <GeomAdaptor_Surface.hxx>
#include <GeomLib.hxx>
#include <TopLoc_Location.hxx>
#include <algorithm>
#include <cmath>
#include <cstring>
#include <gp_GTrsf2d.hxx>
#include <gp_Mat.hxx>
#include <gp_Trsf.hxx>
#include <limits>

namespace ovdl::step {
namespace {

// What a vertex has in a table of the library that no triangle has.
constexpr std::uint32_t kUnused = ~0u;

std::size_t nodesOf(const Poly_Triangulation& mesh)
{
    return static_cast<std::size_t>(mesh.NbNodes());
}

// Zero has one sign only, so that equal vertices have equal bits.
float asFloat(double value)
{
    return static_cast<float>(value) + 0.0f;
}

void put(const gp_XYZ& value, std::vector<float>& target)
{
    target.push_back(asFloat(value.X()));
    target.push_back(asFloat(value.Y()));
    target.push_back(asFloat(value.Z()));
}

// The normals that a surface has on the side to which its parameters turn.
class SurfaceNormals {
public:
    SurfaceNormals(const Handle(Geom_Surface) & surface, const Poly_Triangulation& mesh)
        : surface_(surface), mesh_(mesh), adaptor_(surface), isPlane_(adaptor_.GetType() == GeomAbs_Plane)
    {
    }

    gp_XYZ at(int node)
    {
        if (isPlane_ && hasPlaneNormal_)
            return planeNormal_;
        gp_XYZ normal = onSurface(mesh_.UVNode(node));
        if (!isDirection(normal))
            normal = atSingularity(node);
        planeNormal_ = normal;
        hasPlaneNormal_ = true;
        return normal;
    }

private:
    static bool isDirection(const gp_XYZ& normal) { return std::abs(normal.SquareModulus() - 1) < 1e-6; }

    // Zero where the derivatives do not tell.
    gp_XYZ onSurface(const gp_Pnt2d& uv) const
    {
        gp_Pnt point;
        gp_Vec alongU;
        gp_Vec alongV;
        adaptor_.D1(uv.X(), uv.Y(), point, alongU, alongV);
        const gp_XYZ normal = alongU.XYZ().Crossed(alongV.XYZ());
        const double length = normal.Modulus();
        const double longest = std::max(alongU.SquareMagnitude(), alongV.SquareMagnitude());
        // By rounding a point may lie beyond a tip, where the surface turns inside out.
        const bool isRegular = length > 1e-6 * longest;
        return isRegular ? normal / length : gp_XYZ(0, 0, 0);
    }

    // At a pole one derivative vanishes, but the surface has a normal all the same. At the tip of a cone it
    // has none, whatever the library estimates: there the triangles tell.
    gp_XYZ atSingularity(int node)
    {
        constexpr double kAlike = 0.8;
        const gp_XYZ around = ofTriangles(node);
        gp_Dir estimate;
        const bool known = GeomLib::NormEstim(surface_, mesh_.UVNode(node), 1e-9, estimate) <= 1;
        return known && estimate.XYZ().Dot(around) > kAlike ? estimate.XYZ() : around;
    }

    gp_XYZ ofTriangles(int node)
    {
        if (sums_.empty())
            addTriangles();
        const gp_XYZ sum = sums_[static_cast<std::size_t>(node) - 1];
        const double length = sum.Modulus();
        return length > 0 && std::isfinite(length) ? sum / length : gp_XYZ(0, 0, 1);
    }

    void addTriangles()
    {
        sums_.resize(nodesOf(mesh_));
        for (int i = 1; i <= mesh_.NbTriangles(); ++i) {
            int corners[3];
            mesh_.Triangle(i).Get(corners[0], corners[1], corners[2]);
            const gp_XYZ first = mesh_.Node(corners[0]).XYZ();
            const gp_XYZ normal =
                (mesh_.Node(corners[1]).XYZ() - first).Crossed(mesh_.Node(corners[2]).XYZ() - first);
            for (const int corner : corners)
                sums_[static_cast<std::size_t>(corner) - 1] += normal;
        }
    }

    Handle(Geom_Surface) surface_;
    const Poly_Triangulation& mesh_;
    GeomAdaptor_Surface adaptor_;
    bool isPlane_;
    bool hasPlaneNormal_ = false;
    gp_XYZ planeNormal_;
    std::vector<gp_XYZ> sums_;
};

gp_Mat linearPart(const gp_Trsf& place)
{
    gp_Mat matrix;
    for (int row = 1; row <= 3; ++row)
        for (int column = 1; column <= 3; ++column)
            matrix.SetValue(row, column, place.Value(row, column));
    return matrix;
}

// How the parameters of a surface change when its lengths become metres: angles stay, lengths along a plane
// or a cylinder shrink.
gp_GTrsf2d parametersInMetres(const Handle(Geom_Surface) & surface)
{
    gp_Trsf scale;
    scale.SetScaleFactor(kMetres);
    return surface->ParametricTransformation(scale);
}

bool isReversed(const TopoDS_Face& face)
{
    return face.Orientation() == TopAbs_REVERSED;
}

template <class T>
ovArrayView<float> arranged(PreparedDocument& document, const std::vector<float>& values, const T& strips,
                            std::size_t components)
{
    std::vector<float> result(components * strips.idCount);
    for (std::size_t i = 0; i < strips.idCount; ++i)
        std::copy_n(&values[components * strips.ids[i]], components, &result[components * i]);
    return document.view(std::move(result));
}

}  // namespace

void FaceMesh::takeVertices(const TopoDS_Face& face, const Poly_Triangulation& mesh, const gp_Trsf& place)
{
    TopLoc_Location ignored;
    const gp_GTrsf2d toMetres = parametersInMetres(BRep_Tool::Surface(face, ignored));
    vertices_.points.clear();
    vertices_.uvs.clear();
    for (int i = 1; i <= mesh.NbNodes(); ++i) {
        put(mesh.Node(i).Transformed(place).XYZ() * kMetres, vertices_.points);
        gp_XY uv = mesh.UVNode(i).XY();
        toMetres.Transforms(uv);
        vertices_.uvs.push_back(asFloat(uv.X()));
        vertices_.uvs.push_back(asFloat(uv.Y()));
    }
}

// What is outside stays so in a mirror, though the parameters turn the other way there.
void FaceMesh::takeNormals(const TopoDS_Face& face, const Poly_Triangulation& mesh, const gp_Trsf& place)
{
    TopLoc_Location ignored;
    SurfaceNormals normals(BRep_Tool::Surface(face, ignored), mesh);
    const gp_Mat turn = linearPart(place);
    vertices_.normals.clear();
    for (int i = 1; i <= mesh.NbNodes(); ++i) {
        gp_XYZ normal = normals.at(i).Multiplied(turn);
        const double length = (isReversed(face) ? -1 : 1) * normal.Modulus();
        put(length != 0 ? normal / length : normal, vertices_.normals);
    }
}

void FaceMesh::takeTriangles(const Poly_Triangulation& mesh, bool isFlipped)
{
    list_.clear();
    for (int i = 1; i <= mesh.NbTriangles(); ++i) {
        int a = 0;
        int b = 0;
        int c = 0;
        mesh.Triangle(i).Get(a, b, c);
        if (isFlipped)
            std::swap(b, c);
        for (const int corner : {a, b, c})
            list_.push_back(static_cast<std::uint32_t>(corner - 1));
    }
}

// Along the seam of a closed surface each point stands twice, with parameters from either end, and normals
// that differ by rounding: they become one.
void FaceMesh::joinSeams()
{
    const std::size_t count = vertices_.points.size() / 3;
    remap_.resize(count);
    const std::size_t unique = meshopt_generateVertexRemap(
        remap_.data(), list_.data(), list_.size(), vertices_.points.data(), count, 3 * sizeof(float));
    if (unique == count)
        return;
    constexpr float kSame = 0.9999f;
    std::vector<std::uint32_t> first(unique, kUnused);
    for (std::size_t i = 0; i < count; ++i) {
        if (remap_[i] == kUnused)
            continue;
        std::uint32_t& twin = first[remap_[i]];
        if (twin == kUnused)
            twin = static_cast<std::uint32_t>(i);
        const float* a = &vertices_.normals[3 * std::size_t{twin}];
        float* b = &vertices_.normals[3 * i];
        if (a[0] * b[0] + a[1] * b[1] + a[2] * b[2] > kSame && a != b)
            std::memcpy(b, a, 3 * sizeof(float));
    }
}

// Numbers of a file may be beyond single precision, or grow so on the way.
bool FaceMesh::isFinite(std::uint32_t vertex) const
{
    const float* point = &vertices_.points[3 * std::size_t{vertex}];
    return std::isfinite(point[0]) && std::isfinite(point[1]) && std::isfinite(point[2]);
}

bool FaceMesh::isFlat(std::uint32_t a, std::uint32_t b, std::uint32_t c) const
{
    const auto same = [&](std::uint32_t i, std::uint32_t j) {
        return std::memcmp(&vertices_.points[3 * std::size_t{i}], &vertices_.points[3 * std::size_t{j}],
                           3 * sizeof(float)) == 0;
    };
    return same(a, b) || same(b, c) || same(a, c);
}

// Makes one of vertices that are equal in all, and drops triangles that have the same point twice, or one
// that is nowhere.
TriangleList FaceMesh::weld()
{
    const std::size_t count = vertices_.points.size() / 3;
    const meshopt_Stream streams[] = {{vertices_.points.data(), 3 * sizeof(float), 3 * sizeof(float)},
                                      {vertices_.normals.data(), 3 * sizeof(float), 3 * sizeof(float)},
                                      {vertices_.uvs.data(), 2 * sizeof(float), 2 * sizeof(float)}};
    remap_.resize(count);
    meshopt_generateVertexRemapMulti(remap_.data(), list_.data(), list_.size(), count, streams, 3);
    // By the first of those that are equal, so that ids stay indices of vertices.
    std::vector<std::uint32_t> first(count, kUnused);
    for (std::size_t i = 0; i < count; ++i)
        if (remap_[i] != kUnused)
            first[remap_[i]] = std::min(first[remap_[i]], static_cast<std::uint32_t>(i));
    std::size_t written = 0;
    for (std::size_t i = 0; i + 3 <= list_.size(); i += 3) {
        std::uint32_t corners[3];
        for (std::size_t corner = 0; corner < 3; ++corner)
            corners[corner] = first[remap_[list_[i + corner]]];
        if (isFlat(corners[0], corners[1], corners[2]) || !isFinite(corners[0]) || !isFinite(corners[1]) ||
            !isFinite(corners[2]))
            continue;
        std::copy_n(corners, 3, &list_[written]);
        written += 3;
    }
    TriangleList result;
    result.indices = list_.data();
    result.triangleCount = written / 3;
    result.idCount = count;
    return result;
}

void FaceMesh::store(const StripIds& strips, uoTempFaceTessData_c& result)
{
    result.stripCount = static_cast<std::int32_t>(strips.stripCount);
    result.stripLengths =
        document_.view(std::vector<std::int32_t>(strips.lengths, strips.lengths + strips.stripCount));
    result.points = arranged(document_, vertices_.points, strips, 3);
    result.normals = arranged(document_, vertices_.normals, strips, 3);
    result.uvs = arranged(document_, vertices_.uvs, strips, 2);
    result.hasUVs = 1;
}

void FaceMesh::fill(const TopoDS_Face& face, uoTempFaceTessData_c& result)
{
    TopLoc_Location location;
    const Handle(Poly_Triangulation)& mesh = BRep_Tool::Triangulation(face, location);
    if (mesh.IsNull() || mesh->NbTriangles() == 0 || !mesh->HasUVNodes())
        return;
    const gp_Trsf& place = location.Transformation();
    takeVertices(face, *mesh, place);
    takeNormals(face, *mesh, place);
    takeTriangles(*mesh, isReversed(face) != (linearPart(place).Determinant() < 0));
    joinSeams();
    const TriangleList triangles = weld();
    if (triangles.triangleCount != 0)
        store(stripifier_.make(triangles), result);
}

}  // namespace ovdl::step
