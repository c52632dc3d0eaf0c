// Models made with Open CASCADE, and what Open CASCADE itself says of a file.
#pragma once

#include <TDF_Label.hxx>
#include <TDocStd_Document.hxx>
#include <TopoDS_Shape.hxx>
#include <cstdint>
#include <gp_Trsf.hxx>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "StepReading.h"

namespace step_tests {

/// A colour as files have it, from 0 to 1.
struct Rgba {
    double red;
    double green;
    double blue;
    double alpha = 1;
};

/// Builds documents of parts and assemblies, lengths in millimetres, and writes them.
class ModelBuilder {
public:
    ModelBuilder();

    TDF_Label part(const char* name, const TopoDS_Shape& shape);
    TDF_Label assembly(const char* name);
    /// An occurrence in an assembly.
    TDF_Label add(const TDF_Label& assembly, const TDF_Label& product, const gp_Trsf& place = gp_Trsf());
    void colour(const TDF_Label& label, const Rgba& colour);
    /// Of a body or a face of a part.
    void colour(const TDF_Label& part, const TopoDS_Shape& shape, const Rgba& colour);
    void hide(const TDF_Label& label);
    /// Colours one occurrence that lies below others, from the top down.
    void colourOccurrence(const std::vector<TDF_Label>& way, const Rgba& colour);

    void writeStep(const std::string& path, const char* unit = "MM");
    void writeIges(const std::string& path);

private:
    Handle(TDocStd_Document) document_;
};

gp_Trsf moved(double x, double y, double z);

/// A part where it is used, as Open CASCADE's own explorer of documents gives it.
struct PeerOccurrence {
    std::string
        path;  ///< Names of the products below the root, with "/" between them; those without one left out.
    Box box;   ///< Of its own mesh, in metres.
    std::multiset<std::uint32_t> faceColours;  ///< Red in the low byte; kNoColour for faces without.
    bool hasFaces = false;
};

inline constexpr std::uint32_t kNoColour = 0xFFFFFFFF;

/// What Open CASCADE makes of a file. Empty when it cannot read it.
std::vector<PeerOccurrence> peerOccurrences(const std::string& path);

}  // namespace step_tests
