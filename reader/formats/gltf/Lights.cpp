#include "reader/formats/gltf/Lights.h"

#include <algorithm>
#include <bit>
#include <cmath>

namespace ovdl::gltf {
namespace {

std::uint32_t colourByte(double value)
{
    return static_cast<std::uint32_t>(std::lround(255 * std::clamp(value, 0.0, 1.0)));
}

// The node's third axis at unit length: lights look the other way. A node squeezed flat along it keeps
// the axis of an unturned one.
void backwardAxis(const Affine& world, double* axis)
{
    const double* z = &world.m[6];
    const double length = std::hypot(z[0], z[1], z[2]);
    const bool isAxis = length > 0 && std::isfinite(length);
    for (int i = 0; i < 3; ++i)
        axis[i] = isAxis ? z[i] / length : (i == 2 ? 1 : 0);
}

void fillCommon(const LightRecord& record, std::int32_t index, moLight_c& light)
{
    light.sourceEnabled = 1;
    light.sourceFactorA = record.intensity;
    light.sourceFactorB = 1;
    light.sourceFactorC = 1;
    light.sourceValueF = record.range;
    light.lightIndex = index;
    light.packedColour = colourByte(record.colour[0]) | colourByte(record.colour[1]) << 8 |
                         colourByte(record.colour[2]) << 16;
}

// Consumers of an aimed light go by position and target; one metre ahead is as good as any.
void fillAimed(const LightRecord& record, const double* position, const double* backward, moLight_c& light)
{
    light.lightType = LIGHT_AIMED;
    for (int i = 0; i < 3; ++i) {
        light.sourceVectorA[i] = -backward[i];
        light.sourceVectorB[i] = position[i];
        light.sourceVectorC[i] = position[i] - backward[i];
    }
    light.sourceShapeB = 2 * record.outerCone;
    light.sourceStamp = std::bit_cast<std::uint64_t>(2 * record.innerCone);
}

void fillPositioned(const double* position, moLight_c& light)
{
    light.lightType = LIGHT_POSITIONED;
    std::copy_n(position, 3, light.sourceVectorB);
    light.sourceVectorA[2] = 1;
}

// Both its direction and its position come from one vector, which points from the scene to the light.
void fillDirectional(const double* backward, moLight_c& light)
{
    light.lightType = LIGHT_DIRECTIONAL;
    std::copy_n(backward, 3, light.sourceVectorB);
}

}  // namespace

bool fillLight(const LightRecord& record, const Affine& world, std::int32_t index, moLight_c& light)
{
    double backward[3];
    backwardAxis(world, backward);
    fillCommon(record, index, light);
    switch (record.kind) {
    case LightKind::kSpot:
        fillAimed(record, &world.m[9], backward, light);
        return true;
    case LightKind::kPoint:
        fillPositioned(&world.m[9], light);
        return true;
    case LightKind::kDirectional:
        fillDirectional(backward, light);
        return true;
    default:
        return false;
    }
}

}  // namespace ovdl::gltf
