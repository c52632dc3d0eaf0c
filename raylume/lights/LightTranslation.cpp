#include "raylume/lights/LightTranslation.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>

#include "raylume/load/ReaderMaths.h"
#include "raylume/platform/Time.h"
#include "raylume/scene/RotationAngles.h"
#include "raylume/scene/dlModel.h"

namespace {

float narrow(double value)
{
    return static_cast<float>(value);
}

void narrowVector(const double (&source)[3], float (&target)[3])
{
    std::transform(source, source + 3, target, narrow);
}

mgVector_c widened(const float (&vector)[3])
{
    return mgVector_c(vector[0], vector[1], vector[2]);
}

mgVector_c vectorOf(const double (&source)[3])
{
    return mgVector_c(source[0], source[1], source[2]);
}

// Toward zero. What no 32-bit integer holds, a value that is no number included, becomes the one
// that the processor's own conversion gives.
std::int32_t truncated(double value)
{
    constexpr double kBeyond = 2147483648.0;
    const bool fits = value > -kBeyond - 1.0 && value < kBeyond;
    return fits ? static_cast<std::int32_t>(value) : std::numeric_limits<std::int32_t>::min();
}

void unpackColour(std::uint32_t packed, float (&colour)[3])
{
    for (int channel = 0; channel < 3; ++channel) {
        colour[channel] = static_cast<float>(packed >> (8 * channel) & 0xFFu) / 255.0f;
    }
}

// What every light has, whatever its type.
void fillCommon(const moLight_c& source, dlLight& light)
{
    light.factorB = narrow(source.sourceFactorB);
    light.factorA = narrow(source.sourceFactorA);
    light.lightType = source.getLightType();
    light.factorC = narrow(source.sourceFactorC);
    light.valueE = narrow(source.sourceValueE);
    light.valueD = narrow(source.sourceValueD);
    unpackColour(source.packedColour, light.colour);
    light.enabled = source.sourceEnabled != 0;
    light.name = L"Light_" + std::to_wstring(source.lightIndex);
    light.optionA = source.sourceOptionA == 1;  // 2 is false here, though true for enabled
    light.optionB = source.sourceOptionB == 1;
    light.valueF = narrow(source.sourceValueF);
    light.levelB = truncated(source.sourceLevelB);
}

// Option and level that aimed and positioned lights share.
void fillOptionC(const moLight_c& source, dlLight& light)
{
    light.optionC = source.sourceOptionC == 1;
    light.levelC = truncated(source.sourceLevelC);
}

// The angles about x, y and z that turn the reference direction onto `direction`. The matrix is read
// by rows though it holds its axes one after another, so the rotation found is the inverse of the one
// built, which turns the direction onto the reference.
void setRotation(const mgVector_c& direction, const mgUnitVector_c& reference, dlLight& light)
{
    const double angle = mg_AngleBetween(direction, reference);
    const mgMatrix_c m = mg_RotationMatrix(angle, direction * reference);
    const double elements[9] = {m.e0, m.e1, m.e2, m.e3, m.e4, m.e5, m.e6, m.e7, m.e8};
    double x, y, z;
    scene::decomposeRotation(elements, x, y, z);
    light.rotation[0] = narrow(x);
    light.rotation[1] = narrow(y);
    light.rotation[2] = narrow(z);
}

void setRotationFromPosition(dlLight& light)
{
    mgVector_c direction = widened(light.position);
    direction.normalise();
    setRotation(direction, mgUnitVector_c::zAxis(), light);
}

void aimAtTarget(const double (&target)[3], dlLight& light)
{
    float rounded[3];
    narrowVector(target, rounded);
    const mgVector_c place = widened(light.position);
    const mgVector_c goal = widened(rounded);
    mgVector_c direction = goal - place;
    light.targetDistance = narrow(std::sqrt(direction.sqlen()));
    direction.normalise();
    setRotation(direction, -mgUnitVector_c::zAxis(), light);
}

// Consumers aim by rotation and targetDistance; x in all three places is intended.
void fillAimed(const moLight_c& source, dlLight& light)
{
    std::fill_n(light.direction, 3, narrow(source.sourceVectorA[0]));
    narrowVector(source.sourceVectorB, light.position);
    light.shapeValue = narrow(source.sourceShapeB);
    light.valueD = narrow(std::bit_cast<double>(source.sourceStamp));
    aimAtTarget(source.sourceVectorC, light);
    light.valueG = narrow(source.sourceValueG);
    fillOptionC(source, light);
    light.valueJ = narrow(source.sourceValueJ);
}

void fillPositioned(const moLight_c& source, dlLight& light)
{
    narrowVector(source.sourceVectorA, light.direction);
    narrowVector(source.sourceVectorB, light.position);
    light.shapeValue = narrow(source.sourceShapeA);
    fillOptionC(source, light);
    light.valueI = narrow(source.sourceValueI);
}

// The second vector serves as direction and as position.
void fillDirectional(const moLight_c& source, dlLight& light)
{
    narrowVector(source.sourceVectorB, light.direction);
    narrowVector(source.sourceVectorB, light.position);
    setRotationFromPosition(light);
    light.valueH = narrow(source.sourceValueH);
}

// The year is the local one and the day that of UTC, so the two can disagree at the turn of a year:
// consumers expect just that.
void setSunDay(std::int64_t time, dlLight& light)
{
    const auto local = platform::localTime(time);
    const auto utc = platform::utcTime(time);
    const int yearPart = local ? local->year * 1000 : 0;
    light.sunDay = static_cast<float>(yearPart + (utc ? utc->dayOfYear : 0));
}

void setSunTime(std::int64_t time, dlLight& light)
{
    const auto local = platform::localTime(time);
    const auto hour = static_cast<float>(local ? local->hour : -1);
    const auto minute = static_cast<float>(local ? local->minute : -1);
    light.sunTime = narrow(static_cast<double>(minute) / 60.0 + hour);
}

void setNorthAngle(const moLight_c& source, ovScene_c* scene, dlLight& light)
{
    mgPoint_c floorPoint;
    mgVector_c floorVector;
    if (scene && scene->sceneData) {
        scene->getFloorLocation(floorPoint, floorVector);
    }
    light.northAngle =
        narrow(mg_AngleBetween(-mgUnitVector_c::zAxis(), vectorOf(source.sourceVectorB), floorVector));
}

void fillSun(const moLight_c& source, ovScene_c* scene, dlLight& light)
{
    narrowVector(source.sourceVectorA, light.direction);
    narrowVector(source.sourceVectorA, light.position);
    setRotationFromPosition(light);
    const auto time = std::bit_cast<std::int64_t>(source.sourceStamp);
    setSunDay(time, light);
    setSunTime(time, light);
    setNorthAngle(source, scene, light);
    narrowVector(source.sourceVectorC, light.sunVector);
    light.sunHaze = narrow(source.sourceHaze * 10.0);
}

void fillOther(const moLight_c& source, dlLight& light)
{
    narrowVector(source.sourceVectorA, light.direction);
    narrowVector(source.sourceVectorA, light.position);
}

void translateLight(const moLight_c& source, ovScene_c* scene, dlLight& light)
{
    fillCommon(source, light);
    switch (light.lightType) {
    case LIGHT_AIMED:
        fillAimed(source, light);
        break;
    case LIGHT_POSITIONED:
        fillPositioned(source, light);
        break;
    case LIGHT_DIRECTIONAL:
        fillDirectional(source, light);
        break;
    case LIGHT_SUN:
        fillSun(source, scene, light);
        break;
    default:
        fillOther(source, light);
        break;
    }
}

}  // namespace

void translateLights(dlModel& model, ovPointerArray<moLight_c>* lights, ovScene_c* scene)
{
    model.lightCount = 0;
    if (!lights) {
        return;
    }
    // A longer list fills the table and no more.
    const auto kept = std::clamp<long long>(lights->count, 0, dlModel::kLightCapacity);
    model.lightCount = static_cast<std::int32_t>(kept);
    for (int index = 0; index < model.lightCount; ++index) {
        if (const moLight_c* const source = lights->at(index)) {
            translateLight(*source, scene, model.lights[index]);
        }
    }
}
