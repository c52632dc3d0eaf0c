#include "tools/GltfAnimation.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include "raylume/platform/Text.h"
#include "tools/Placement.h"

namespace tool {
namespace {

std::optional<Trs> placementOf(const dlTransformKey& key)
{
    dlXform placement;
    std::transform(key.matrix, key.matrix + 16, placement.m,
                   [](double element) { return static_cast<float>(element); });
    if (!isFinite(placement))
        return std::nullopt;
    const PlacementParts parts = takeApart(placement);
    return parts.inner ? std::nullopt : std::optional(parts.outer);
}

template <std::size_t N>
void append(const std::array<double, N>& values, std::vector<float>& list)
{
    for (const double value : values)
        list.push_back(static_cast<float>(value));
}

// Of the two quaternions of a rotation the one nearer to the last, so that nothing turns the long way.
Quaternion nearest(Quaternion rotation, const std::vector<float>& before)
{
    if (before.empty())
        return rotation;
    double cosine = 0;
    for (std::size_t i = 0; i < 4; ++i)
        cosine += rotation[i] * before[before.size() - 4 + i];
    if (cosine < 0)
        std::transform(rotation.begin(), rotation.end(), rotation.begin(), std::negate<>());
    return rotation;
}

double earliestTime(const PlacementTrack& track)
{
    for (const auto& [time, key] : track)
        if (std::isfinite(time) && placementOf(key))
            return time;
    return 0;
}

}  // namespace

struct PlacementAnimation::Keys {
    std::vector<float> times, translations, rotations, scales;

    bool follows(float time) const { return std::isfinite(time) && (times.empty() || time > times.back()); }
    void add(float time, const Trs& placement)
    {
        times.push_back(time);
        append(placement.translation, translations);
        append(nearest(placement.rotation, rotations), rotations);
        append(placement.scale, scales);
    }
};

PlacementAnimation::PlacementAnimation(const dlModel& model, GltfFile& file) : model_(model), file_(file)
{
    for (std::int32_t i = 0; !model.animationTracks.empty() && i < model.instanceCount; ++i)
        if (const PlacementTrack* const track = trackOf(model.instances[i]))
            start_ = std::min(start_, earliestTime(*track));
}

const PlacementTrack* PlacementAnimation::trackOf(const dlInstance& instance) const
{
    if (model_.animationTracks.empty())
        return nullptr;
    const auto entry = model_.animationTracks.find(platform::widen(instance.name));
    if (entry == model_.animationTracks.end() || entry->second.transforms.empty())
        return nullptr;
    return &entry->second.transforms;
}

PlacementAnimation::Keys PlacementAnimation::keysOf(const PlacementTrack& track)
{
    Keys keys;
    for (const auto& [time, key] : track) {
        const auto at = static_cast<float>(time - start_);
        const auto placement = placementOf(key);
        if (placement && keys.follows(at))
            keys.add(at, *placement);
        else
            ++file_.notes.placementKeysLeftOut;
    }
    return keys;
}

void PlacementAnimation::move(int node, const PlacementTrack& track)
{
    const Keys keys = keysOf(track);
    if (keys.times.empty())
        return;
    const Json bounds{{"min", {keys.times.front()}}, {"max", {keys.times.back()}}};
    const int times = file_.addFloats(GltfFile::kSamples, "SCALAR", keys.times, bounds);
    const auto add = [&](const char* path, const char* type, const std::vector<float>& values) {
        addChannel(node, path, times, file_.addFloats(GltfFile::kSamples, type, values));
    };
    add("translation", "VEC3", keys.translations);
    add("rotation", "VEC4", keys.rotations);
    add("scale", "VEC3", keys.scales);
}

void PlacementAnimation::leaveOut(const dlInstance& instance)
{
    if (const PlacementTrack* const track = trackOf(instance))
        file_.notes.placementKeysLeftOut += static_cast<long long>(track->size());
}

void PlacementAnimation::addChannel(int node, const char* path, int input, int output)
{
    channels_.push_back({{"sampler", samplers_.size()}, {"target", {{"node", node}, {"path", path}}}});
    samplers_.push_back({{"input", input}, {"interpolation", "LINEAR"}, {"output", output}});
}

void PlacementAnimation::finish()
{
    if (!channels_.empty())
        file_.animations.add({{"channels", channels_}, {"samplers", samplers_}});
}

}  // namespace tool
