#pragma once

#include <cstdint>
#include <string>

#include "raylume/platform/Export.h"

/// A light, ready for rendering. What the neutral fields mean is the consumer's business.
///
/// Ownership: a plain value. Moving copies, so that a moved-from light keeps its name.
/// Units: metres and radians; colours 0 to 1.
/// Layout: hosts read the fields directly; order and defaults are a contract.
class DL_API dlLight {
public:
    dlLight();
    dlLight(const dlLight& other);
    dlLight(dlLight&& other);
    dlLight& operator=(const dlLight& other);
    dlLight& operator=(dlLight&& other);
    ~dlLight();

    std::int32_t lightType = 4;  ///< 2 aimed, 3 positioned, 4 directional, 6 the sun.
    float factorA = 1.0f;
    float factorB = 1.0f;
    float factorC = 1.0f;
    float colour[3] = {1.0f, 1.0f, 1.0f};
    float position[3] = {0, 0, 0};
    float direction[3] = {0, 0, 1};  ///< Of an aimed light x three times: aim by `rotation`.
    float valueD = 0;
    float valueE = 0;
    float rotation[3] = {0, 0, 0};  ///< Angles about x, y and z.
    float shapeValue = 0;
    bool enabled = true;
    std::wstring name;
    bool optionA = false;
    float valueF = 0;
    float valueG = 0;
    bool optionB = false;
    std::int32_t levelB = 0;
    float valueH = 0;
    bool optionC = false;
    float valueI = 0;
    std::int32_t levelC = 0;
    float valueJ = 0;
    float targetDistance = 0;
    float sunDay = 2012001.0f;  ///< Year times 1000 plus the day of the year.
    float sunTime = 0;          ///< Hours of the day.
    float northAngle = 0;
    float sunVector[3] = {0, 0, 0};
    float sunHaze = 0;
};
