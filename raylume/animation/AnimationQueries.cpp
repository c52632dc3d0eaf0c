#include <algorithm>

#include "raylume/platform/Text.h"
#include "raylume/scene/dlModel.h"

namespace {

// Asked for every instance of a load, and most documents have no animation: then nothing is converted.
const dlAnimTrackSet* findTracks(const dlModel& model, const std::string& name)
{
    if (model.animationTracks.empty()) {
        return nullptr;
    }
    const auto entry = model.animationTracks.find(platform::widen(name));
    return entry == model.animationTracks.end() ? nullptr : &entry->second;
}

}  // namespace

// A single sample is no animation, whatever it holds. Appearance goes by the number of samples alone,
// visibility by their values too.
bool dlModel::compHasAppearanceAnimation(std::string name)
{
    const dlAnimTrackSet* tracks = findTracks(*this, name);
    return tracks && tracks->visualTransforms.size() > 1;
}

bool dlModel::compVisibleInAnimation(std::string name)
{
    const dlAnimTrackSet* tracks = findTracks(*this, name);
    if (!tracks || tracks->visualStates.size() < 2) {
        return false;
    }
    return std::any_of(tracks->visualStates.begin(), tracks->visualStates.end(),
                       [](const auto& sample) { return sample.second.componentVisibility != 0; });
}
