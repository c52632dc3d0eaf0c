#include "raylume/animation/AnimationDocument.h"

#include <functional>
#include <utility>

#include "raylume/animation/SideFileNames.h"
#include "raylume/animation/TableDocument.h"
#include "raylume/platform/CatchAll.h"
#include "raylume/scene/dlModel.h"
#include "raylume/services/PathText.h"

namespace {

// Elements without identities never meet a kept key, so there is nothing to ask.
bool containsOwnKind(XmlElement& element, const XmlName& name)
{
    return element.identity() != 0 && lengthOf(listOf(element, name)) > 0;
}

// Files a component only when all of it was read. A later one of the same name replaces it, also by
// nothing.
void readComponent(XmlElement& component, AnimationTracks& tracks, SideFileReading& reading)
{
    std::wstring name = readText(component, side_file::kName);
    dlAnimTrackSet fresh;
    readVisualTransformTrack(component, fresh.visualTransforms, reading);
    readTransformTrack(component, fresh.transforms, reading);
    readVisualStateTrack(component, fresh.visualStates, reading);
    tracks[std::move(name)] = std::move(fresh);
}

void readComponentElements(const XmlPointer<XmlNodeList>& components, AnimationTracks& tracks,
                           SideFileReading& reading, bool areAllMetAgain)
{
    forEachElement(components, [&](XmlElement& component) {
        reading.containers.take();
        reading.keepsKeys = areAllMetAgain || containsOwnKind(component, side_file::kComponent);
        readComponent(component, tracks, reading);
    });
}

void readViewportElements(XmlElement& animation, AnimationTracks& tracks, SideFileReading& reading)
{
    forEachElement(listOf(animation, side_file::kViewport), [&](XmlElement& viewport) {
        reading.containers.take();
        readViewPointTrack(viewport, tracks, reading);
        readCameraTrack(viewport, tracks, reading);
    });
}

void readLightElements(XmlElement& animation, AnimationTracks& tracks, SideFileReading& reading)
{
    forEachElement(listOf(animation, side_file::kLight), [&](XmlElement& light) {
        reading.containers.take();
        readLightTrack(light, tracks, reading);
    });
}

// An animation inside of another is read with it, and once more by itself.
void readAnimationElements(XmlElement& root, AnimationTracks& tracks, SideFileReading& reading)
{
    forEachElement(listOf(root, side_file::kAnimation), [&](XmlElement& animation) {
        const bool areAllMetAgain = containsOwnKind(animation, side_file::kAnimation);
        readComponentElements(listOf(animation, side_file::kComponent), tracks, reading, areAllMetAgain);
        readViewportElements(animation, tracks, reading);
        readLightElements(animation, tracks, reading);
    });
}

}  // namespace

std::wstring sideFilePath(const std::wstring& documentPath)
{
    return driveAndFolder(documentPath) + side_file::kFileName;
}

void readAnimationDocument(const std::wstring& path, AnimationTracks& tracks, XmlService& service)
{
    const XmlPointer<XmlDocument> document = service.createDocument();
    if (!document) {
        return;
    }
    bool isLoaded = false;
    std::uint64_t size = 0;
    raiseXmlFailure(document->load(path, isLoaded, size));
    if (!isLoaded) {
        return;
    }
    XmlPointer<XmlElement> root;
    raiseXmlFailure(document->documentElement(root));
    SideFileReading reading(size);
    readAnimationElements(requireXml(root), tracks, reading);
}

bool readAnimation(const std::wstring& documentPath, AnimationTracks& tracks, XmlService& service)
{
    const auto read = [&] { readAnimationDocument(sideFilePath(documentPath), tracks, service); };
    return platform::runCatchingAll(std::ref(read));  // By reference: a copy would be allocated out here.
}

bool dlModel::readAnimationXML(const std::wstring& path)
{
    TableXmlService service;
    return readAnimation(path, animationTracks, service);
}
