// From a meshed face to triangle strips.
#pragma once

#include <Geom_Surface.hxx>
#include <Poly_Triangulation.hxx>
#include <TopoDS_Face.hxx>
#include <vector>

#include "reader/PreparedDocuments.h"
#include "reader/formats/strips/Strips.h"

namespace ovdl::step {

/// Metres for each unit of the model.
inline constexpr double kMetres = 0.001;

/// Fills faces. Keeps its blocks from one to the next.
class FaceMesh {
public:
    explicit FaceMesh(PreparedDocument& document) : document_(document) {}

    /// Fills the strips and arrays of `result` in metres. A face without triangles stays empty.
    void fill(const TopoDS_Face& face, uoTempFaceTessData_c& result);

private:
    struct Vertices {
        std::vector<float> points;
        std::vector<float> normals;
        std::vector<float> uvs;
    };

    void takeVertices(const TopoDS_Face& face, const Poly_Triangulation& mesh, const gp_Trsf& place);
    void takeNormals(const TopoDS_Face& face, const Poly_Triangulation& mesh, const gp_Trsf& place);
    void takeTriangles(const Poly_Triangulation& mesh, bool isFlipped);
    void joinSeams();
    TriangleList weld();
    bool isFinite(std::uint32_t vertex) const;
    bool isFlat(std::uint32_t a, std::uint32_t b, std::uint32_t c) const;
    void store(const StripIds& strips, uoTempFaceTessData_c& result);

    PreparedDocument& document_;
    Stripifier stripifier_;
    Vertices vertices_;
    std::vector<std::uint32_t> list_;
    std::vector<std::uint32_t> remap_;
};

}  // namespace ovdl::step
