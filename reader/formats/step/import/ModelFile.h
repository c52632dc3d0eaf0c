// A STEP or IGES file as Open CASCADE's document of shapes.
#pragma once

#include <NCollection_DataMap.hxx>
#include <TDF_LabelSequence.hxx>
#include <TDocStd_Document.hxx>
#include <TopTools_ShapeMapHasher.hxx>
#include <TopoDS_Shape.hxx>
#include <cstdint>
#include <string>

#include "reader/formats/step/import/HostLink.h"

namespace ovdl::step {

/// Numbers that the file itself gives to faces, by face without its place.
using FaceNumbers = NCollection_DataMap<TopoDS_Shape, int, TopTools_ShapeMapHasher>;

struct Model {
    Handle(TDocStd_Document) document;
    /// The file has no products: whatever stands in it is one part.
    bool isOnePart = false;
    FaceNumbers faceNumbers;
    std::uint64_t bytes = 0;  ///< Of the file and of those that it names.
};

/// Reads and transfers the file. Lengths are millimetres afterwards, whatever the file's unit: the
/// library's tolerances are made for them. Raises Refusal, and Standard_Failure for what the library cannot
/// do.
Model readModel(const std::string& path, HostLink& link);

}  // namespace ovdl::step
