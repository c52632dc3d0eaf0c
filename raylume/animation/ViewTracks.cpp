#include <utility>

#include "raylume/animation/SideFileNames.h"
#include "raylume/animation/TrackReaders.h"

namespace {

double readKey(XmlElement& element, dlViewKey& key, AttributeReader& values)
{
    const double time = values.time(element, side_file::kTime);
    key.interpolateMode = values.integer(element, side_file::kInterpolateMode);
    values.reals(element, side_file::kPosition, key.position);
    values.reals(element, side_file::kModelView, key.modelView);
    key.focalDistance = values.real(element, side_file::kFocalDistance);
    key.focalLength = values.real(element, side_file::kFocalLength);
    return time;
}

// The entry is replaced as a whole. What counts is that the list is not empty, not that it gave
// keys.
void readViewTrack(XmlElement& viewport, const XmlName& tag, const wchar_t* name, AnimationTracks& tracks,
                   SideFileReading& reading)
{
    dlAnimTrackSet fresh;
    const std::int32_t length = forEachElement(listOf(viewport, tag), [&](XmlElement& element) {
        dlViewKey key;
        const double time = readKey(element, key, reading.values);
        fileKey(reading, fresh.viewKeys, time, key);
    });
    if (length != 0) {
        tracks[name] = std::move(fresh);
    }
}

}  // namespace

void readViewPointTrack(XmlElement& viewport, AnimationTracks& tracks, SideFileReading& reading)
{
    readViewTrack(viewport, side_file::kViewPointTransform, side_file::kViewportKey, tracks, reading);
}

void readCameraTrack(XmlElement& viewport, AnimationTracks& tracks, SideFileReading& reading)
{
    readViewTrack(viewport, side_file::kCameraProperties, side_file::kCameraKey, tracks, reading);
}
