// Tessellation: records that answer by configuration from the maps beside their geometry.
#include <algorithm>
#include <limits>

#include "raylume/load/ReaderInterface.h"

namespace {

// What the map holds under that configuration, or null. Never makes an entry: an empty map means
// something to those who look at it.
template <class T>
T* recordOf(const std::map<int, T*>& records, int config)
{
    const auto found = records.find(config);
    return found == records.end() ? nullptr : found->second;
}

}  // namespace

uoTempFaceTessData_c::uoTempFaceTessData_c() = default;
uoTempFaceTessData_c::uoTempFaceTessData_c(const uoTempFaceTessData_c&) = default;
uoTempFaceTessData_c& uoTempFaceTessData_c::operator=(const uoTempFaceTessData_c&) = default;
uoTempFaceTessData_c::~uoTempFaceTessData_c() = default;

moVisualProperties_c* uoTempFaceTessData_c::getFaceVizProp(int config)
{
    return recordOf(faceVizProps, config);
}

VizPropMode_e uoTempFaceTessData_c::getVizPropMode(int config)
{
    const auto found = vizPropModes.find(config);
    return found == vizPropModes.end() ? VizPropMode_none : found->second;
}

uoTempBodyTessData_c::uoTempBodyTessData_c() = default;
uoTempBodyTessData_c::uoTempBodyTessData_c(const uoTempBodyTessData_c&) = default;
uoTempBodyTessData_c& uoTempBodyTessData_c::operator=(const uoTempBodyTessData_c&) = default;
uoTempBodyTessData_c::~uoTempBodyTessData_c() = default;

moVisualProperties_c* uoTempBodyTessData_c::getBodyVizProp(int config)
{
    return recordOf(bodyVizProps, config);
}

uoBodyPropInfo_c* uoTempBodyTessData_c::getBodyPropInfo(int config)
{
    return recordOf(bodyPropInfos, config);
}

uoTempPartTessData_c::uoTempPartTessData_c() = default;
uoTempPartTessData_c::uoTempPartTessData_c(const uoTempPartTessData_c&) = default;
uoTempPartTessData_c& uoTempPartTessData_c::operator=(const uoTempPartTessData_c&) = default;
uoTempPartTessData_c::~uoTempPartTessData_c() = default;

int uoTempPartTessData_c::getNumBodies() const
{
    return static_cast<int>(std::clamp<long long>(bodies.count, std::numeric_limits<int>::min(),
                                                  std::numeric_limits<int>::max()));
}

moVisualProperties_c* uoTempPartTessData_c::getModelVizProp(int config) const
{
    return recordOf(modelVizProps, config);
}
