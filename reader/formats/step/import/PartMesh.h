// From a product's shape to a part of the reader interface.
#pragma once

#include <Message_ProgressRange.hxx>
#include <TDF_Label.hxx>
#include <TopTools_IndexedMapOfShape.hxx>
#include <TopTools_ShapeMapHasher.hxx>
#include <XCAFDoc_ColorTool.hxx>

#include "reader/formats/step/import/Appearances.h"
#include "reader/formats/step/import/FaceMesh.h"
#include "reader/formats/step/import/ModelFile.h"

namespace ovdl::step {

class PartMesh {
public:
    PartMesh(const Model& model, const Tessellation& tessellation, PreparedDocument& document);

    /// Meshes what `labels` stand for and makes one part of it: a body of each solid, of each shell that is
    /// in none, and one of all faces that are in neither. Gives null when there is no face. A body on which
    /// the library fails stays empty. `isShown` false hides all bodies.
    uoTempPartTessData_c* make(const TDF_LabelSequence& labels, bool isShown,
                               const Message_ProgressRange& range);
    Appearances& appearances() { return appearances_; }
    /// There are faces to show in what was made so far, and none of them got a triangle.
    bool isNothingToSee() const { return hasShown_ && !isFilled_; }

private:
    struct Style {
        std::optional<PackedColour> colour;
        bool visible = true;
    };
    using Styles = NCollection_DataMap<TopoDS_Shape, Style, TopTools_ShapeMapHasher>;
    struct Body {
        std::vector<TopoDS_Shape> shapes;
        Style style;
    };

    void takeStyles(const TDF_Label& label);
    Style styleOf(const TopoDS_Shape& shape, const Style& inherited) const;
    void collect(const TopoDS_Shape& shape, const Style& inherited);
    // Both false when the library fails.
    bool fill(const TopoDS_Face& face, uoTempFaceTessData_c& result);
    bool mesh(const Body& body, const Message_ProgressRange& range) const;
    uoTempBodyTessData_c* makeBody(const Body& body, bool isMeshed);
    void addFaces(const TopoDS_Shape& shape, const Style& inherited, bool isMeshed,
                  std::vector<uoTempFaceTessData_c*>& faces);
    uoTempFaceTessData_c* makeFace(const TopoDS_Face& face, const Style& style, bool isMeshed);

    const Model& model_;
    Tessellation tessellation_;
    PreparedDocument& document_;
    Appearances appearances_;
    FaceMesh faces_;
    Handle(XCAFDoc_ColorTool) colours_;
    uoBodyPropInfo_c* hidden_ = nullptr;
    bool hasShown_ = false;
    bool isFilled_ = false;
    // Of the part at hand.
    Styles styles_;
    std::vector<Body> bodies_;
    Body looseFaces_;
    TopTools_IndexedMapOfShape faceNumbers_;
    double deflection_ = 0;
};

}  // namespace ovdl::step
