// Samples of an animation, as they lie in the side file of a document. All maps go by the time of
// the key, one key a time. Matrices are in file order; what an interpolation mode means is the
// writing program's business.
#pragma once

#include <cstdint>
#include <map>

#include "raylume/platform/Export.h"

/// A component's appearance at one time.
class DL_API dlVisualTransformKey {
public:
    std::int32_t interpolateMode = 1;
    double red = 0;
    double green = 0;
    double blue = 0;
    double transparency = 0;
    bool nullVizprop = false;  ///< The component has no appearance of its own at that time.
};

/// A component's placement at one time.
class DL_API dlTransformKey {
public:
    std::int32_t interpolateMode = 1;
    double matrix[16] = {};
};

/// A component's visibility at one time.
class DL_API dlVisualStateKey {
public:
    std::int32_t interpolateMode = 1;
    std::int32_t componentVisibility = 0;
};

/// The camera or the viewport at one time.
class DL_API dlViewKey {
public:
    std::int32_t interpolateMode = 1;
    double modelView[16] = {};
    double position[3] = {};
    double focalDistance = 0;
    double focalLength = 0;
};

/// A light at one time.
class DL_API dlLightKey {
public:
    std::int32_t interpolateMode = 1;
    std::int32_t lightId = -1;
    std::int32_t lightType = -1;
    std::int32_t enabledInRL = 0;
    double red = 0;
    double green = 0;
    double blue = 0;
    double position[3] = {};
    double rotation[3] = {};
    float sunTime = 0;
    float sunDay = 0;
    float sunHaze = 0;
};

/// All tracks of one component, or of "@CAMERA", "@VIEWPORT" and "@LIGHTS". A plain value: copies
/// are deep.
class DL_API dlAnimTrackSet {
public:
    std::map<double, dlVisualTransformKey> visualTransforms;
    std::map<double, dlTransformKey> transforms;
    std::map<double, dlViewKey> viewKeys;
    std::map<double, dlVisualStateKey> visualStates;
    std::map<std::int32_t, std::map<double, dlLightKey>> lightTracks;  ///< By light, then by time.
};
