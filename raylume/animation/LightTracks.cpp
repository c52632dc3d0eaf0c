#include <utility>

#include "raylume/animation/SideFileNames.h"
#include "raylume/animation/TrackReaders.h"

namespace {

using LightTrack = std::map<double, dlLightKey>;
using LightTracks = std::map<std::int32_t, LightTrack>;

enum LightType : std::int32_t { kAimed = 2, kPositioned = 3, kDirectional = 4, kSun = 6 };

void readSun(XmlElement& element, dlLightKey& key, const AttributeReader& values)
{
    key.sunTime = values.single(element, side_file::kSunTime);
    key.sunDay = values.single(element, side_file::kSunDay);
    key.sunHaze = values.single(element, side_file::kSunHaze);
}

// Only what the type has is asked for; the rest of the key stays.
void readOfType(XmlElement& element, dlLightKey& key, const AttributeReader& values)
{
    switch (key.lightType) {
    case kAimed:
    case kDirectional:
        values.reals(element, side_file::kPosition, key.position);
        values.reals(element, side_file::kRotation, key.rotation);
        break;
    case kPositioned:
        values.reals(element, side_file::kPosition, key.position);
        break;
    case kSun:
        readSun(element, key, values);
        break;
    default:
        break;
    }
}

double readKey(XmlElement& element, dlLightKey& key, AttributeReader& values)
{
    const double time = values.time(element, side_file::kTime);
    key.interpolateMode = values.integer(element, side_file::kInterpolateMode);
    key.lightId = values.integer(element, side_file::kId);
    key.lightType = values.integer(element, side_file::kLightType);
    key.enabledInRL = values.integer(element, side_file::kEnabledInRL);
    key.red = values.real(element, side_file::kRed);
    key.green = values.real(element, side_file::kGreen);
    key.blue = values.real(element, side_file::kBlue);
    readOfType(element, key, values);
    return time;
}

// Moves the keys over without allocating anything, so that it cannot fail half-way.
void splice(LightTrack&& from, LightTrack& into)
{
    while (!from.empty()) {
        auto node = from.extract(from.begin());
        const auto place = into.lower_bound(node.key());
        if (place != into.end() && place->first == node.key()) {
            place->second = node.mapped();
        } else {
            into.insert(place, std::move(node));
        }
    }
}

void splice(LightTracks&& from, LightTracks& into)
{
    while (!from.empty()) {
        auto node = from.extract(from.begin());
        const auto place = into.find(node.key());
        if (place == into.end()) {
            into.insert(std::move(node));
        } else {
            splice(std::move(node.mapped()), place->second);
        }
    }
}

}  // namespace

// One key serves for all elements and is not reset between them: an element keeps from the one before it,
// of whatever light, the fields that its own type does not read. Files are written for that. What is read
// stands aside until the end, so that an error drops all of it.
void readLightTrack(XmlElement& light, AnimationTracks& tracks, SideFileReading& reading)
{
    dlLightKey key;
    LightTracks fresh;
    const std::int32_t length =
        forEachElement(listOf(light, side_file::kLightProperties), [&](XmlElement& element) {
            const double time = readKey(element, key, reading.values);
            fileKey(reading, fresh[key.lightId], time, key);
        });
    if (length != 0) {
        splice(std::move(fresh), tracks[side_file::kLightsKey].lightTracks);
    }
}
