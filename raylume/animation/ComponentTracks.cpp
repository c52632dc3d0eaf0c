#include <algorithm>
#include <cmath>
#include <iterator>
#include <vector>

#include "raylume/animation/SideFileNames.h"
#include "raylume/animation/TrackReaders.h"

namespace {

// A float on purpose, 9.999999974752427e-07 as a double: samples are written with it in mind.
constexpr double kSameAppearance = 0.000001f;

// Keys of a component ask for their mode first; those of views and lights for their time.
double readKey(XmlElement& element, dlVisualTransformKey& key, AttributeReader& values)
{
    key.interpolateMode = values.integer(element, side_file::kInterpolateMode);
    const double time = values.time(element, side_file::kTime);
    key.red = values.real(element, side_file::kRed);
    key.green = values.real(element, side_file::kGreen);
    key.blue = values.real(element, side_file::kBlue);
    key.transparency = values.real(element, side_file::kTransparency);
    key.nullVizprop = values.real(element, side_file::kNullCompVizprop) > 0.99;
    return time;
}

double readKey(XmlElement& element, dlTransformKey& key, AttributeReader& values)
{
    key.interpolateMode = values.integer(element, side_file::kInterpolateMode);
    const double time = values.time(element, side_file::kTime);
    values.reals(element, side_file::kMatrix, key.matrix);
    return time;
}

double readKey(XmlElement& element, dlVisualStateKey& key, AttributeReader& values)
{
    key.interpolateMode = values.integer(element, side_file::kInterpolateMode);
    const double time = values.time(element, side_file::kTime);
    key.componentVisibility = values.integer(element, side_file::kComponentVisibility);
    return time;
}

template <class Key>
void readTrack(XmlElement& component, const XmlName& tag, std::map<double, Key>& track,
               KeyCache<Key>& cache, SideFileReading& reading)
{
    forEachElement(listOf(component, tag), [&](XmlElement& element) {
        const std::uint64_t identity = element.identity();
        if (const auto* const known = cache.find(identity)) {
            fileKey(reading, track, known->time, known->key);
            return;
        }
        Key key;
        const double time = readKey(element, key, reading.values);
        fileKey(reading, track, time, key);
        if (reading.keepsKeys) {
            cache.add(identity, time, key);
        }
    });
}

bool isClose(double a, double b)
{
    return std::fabs(a - b) < kSameAppearance;
}

bool looksAlike(const dlVisualTransformKey& a, const dlVisualTransformKey& b)
{
    return isClose(a.red, b.red) && isClose(a.green, b.green) && isClose(a.blue, b.blue) &&
           isClose(a.transparency, b.transparency);
}

}  // namespace

void readVisualTransformTrack(XmlElement& component, std::map<double, dlVisualTransformKey>& track,
                              SideFileReading& reading)
{
    readTrack(component, side_file::kVisualTransform, track, reading.visualTransforms, reading);
    collapseConstantAppearance(track);
}

void readTransformTrack(XmlElement& component, std::map<double, dlTransformKey>& track,
                        SideFileReading& reading)
{
    readTrack(component, side_file::kTransform, track, reading.transforms, reading);
}

void readVisualStateTrack(XmlElement& component, std::map<double, dlVisualStateKey>& track,
                          SideFileReading& reading)
{
    readTrack(component, side_file::kVisualState, track, reading.visualStates, reading);
}

// Each key is compared with its neighbour in the full track, whether that one stays or not: a drift
// that is slow enough leaves the first key alone. So nothing is erased before the walk is over.
void collapseConstantAppearance(std::map<double, dlVisualTransformKey>& track)
{
    const auto hasOwnAppearance = [](const auto& sample) { return !sample.second.nullVizprop; };
    if (track.size() < 2 || std::any_of(track.begin(), track.end(), hasOwnAppearance)) {
        return;
    }
    std::vector<std::map<double, dlVisualTransformKey>::iterator> removed;
    for (auto before = track.begin(), key = std::next(before); key != track.end(); before = key++) {
        if (looksAlike(before->second, key->second)) {
            removed.push_back(key);
        }
    }
    for (const auto key : removed) {
        track.erase(key);
    }
}
