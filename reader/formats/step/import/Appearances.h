// Colours of the file as appearances of the reader interface.
#pragma once

#include <Quantity_ColorRGBA.hxx>
#include <TDF_Label.hxx>
#include <XCAFDoc_ColorTool.hxx>
#include <cstdint>
#include <map>
#include <optional>

#include "reader/PreparedDocuments.h"

namespace ovdl::step {

/// A colour as screens show it, red in the low byte, and how much of it is opaque in the high one.
using PackedColour = std::uint32_t;

/// The colour of the surfaces of what a label stands for, if it has one of its own.
std::optional<PackedColour> colourOf(const Handle(XCAFDoc_ColorTool) & tool, const TDF_Label& label);

/// One appearance for each colour, which live as long as the document.
class Appearances {
public:
    explicit Appearances(PreparedDocument& document) : document_(document) {}

    /// Null for none.
    moVisualProperties_c* of(std::optional<PackedColour> colour);

private:
    PreparedDocument& document_;
    std::map<PackedColour, moVisualProperties_c*> made_;
};

}  // namespace ovdl::step
