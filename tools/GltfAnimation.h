// Placement tracks as one glTF animation.
#pragma once

#include <map>

#include "raylume/scene/dlModel.h"
#include "tools/GltfFile.h"

namespace tool {

using PlacementTrack = std::map<double, dlTransformKey>;

/// The placements of instances over time. Keys are taken as placements in the model in the order of
/// dlXform, times as seconds, moved so that none that moves an instance is negative; between keys glTF
/// interpolates linearly. A key that is sheared, or not finite, or in single precision at the time of the
/// one before, is left out and counted in the notes.
class PlacementAnimation {
public:
    PlacementAnimation(const dlModel& model, GltfFile& file);

    /// The instance's track, or null when it has none that holds a key.
    const PlacementTrack* trackOf(const dlInstance& instance) const;

    /// Moves a node, which must not have a matrix, along a track.
    void move(int node, const PlacementTrack& track);

    /// For an instance that cannot be moved: counts its keys as left out.
    void leaveOut(const dlInstance& instance);

    /// Adds the animation to the file, if anything moves.
    void finish();

private:
    struct Keys;

    Keys keysOf(const PlacementTrack& track);
    void addChannel(int node, const char* path, int input, int output);

    const dlModel& model_;
    GltfFile& file_;
    double start_ = 0;
    Json samplers_ = Json::array();
    Json channels_ = Json::array();
};

}  // namespace tool
