// From the elements of the side file to tracks. Every attribute named in docs/formats/animation.md is
// required; a missing one, or one that does not convert, raises platform::ComError and leaves what was to
// be filled as it was, but for the maps of a component, which its caller then drops.
#pragma once

#include <map>
#include <string>

#include "raylume/animation/TrackReading.h"
#include "raylume/animation/XmlDocument.h"
#include "raylume/scene/dlAnimation.h"

using AnimationTracks = std::map<std::wstring, dlAnimTrackSet>;

/// The appearance, placement and visibility of a COMPONENT over time.
void readVisualTransformTrack(XmlElement& component, std::map<double, dlVisualTransformKey>& track,
                              SideFileReading& reading);
void readTransformTrack(XmlElement& component, std::map<double, dlTransformKey>& track,
                        SideFileReading& reading);
void readVisualStateTrack(XmlElement& component, std::map<double, dlVisualStateKey>& track,
                          SideFileReading& reading);

/// Leaves the first key alone when all keys are null and each looks like the one before it.
void collapseConstantAppearance(std::map<double, dlVisualTransformKey>& track);

/// The viewport and the camera of a VIEWPORT over time. The last VIEWPORT with elements of the tag wins.
void readViewPointTrack(XmlElement& viewport, AnimationTracks& tracks, SideFileReading& reading);
void readCameraTrack(XmlElement& viewport, AnimationTracks& tracks, SideFileReading& reading);

/// The lights of a LIGHT over time, added to those of every LIGHT before it.
void readLightTrack(XmlElement& light, AnimationTracks& tracks, SideFileReading& reading);
