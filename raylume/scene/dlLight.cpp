#include "raylume/scene/dlLight.h"

dlLight::dlLight() = default;
dlLight::dlLight(const dlLight& other) = default;
dlLight& dlLight::operator=(const dlLight& other) = default;
dlLight::~dlLight() = default;

// Moving copies: a moved-from light keeps its name.
dlLight::dlLight(dlLight&& other) : dlLight(static_cast<const dlLight&>(other))
{
}

dlLight& dlLight::operator=(dlLight&& other)
{
    return *this = static_cast<const dlLight&>(other);
}
