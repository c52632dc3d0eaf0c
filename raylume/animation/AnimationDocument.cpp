#include "raylume/animation/AnimationDocument.h"

#include <functional>
#include <utility>

#include "raylume/animation/SideFileNames.h"
#include "raylume/animation/TableDocument.h"
#include "raylume/platform/CatchAll.h"
#include "raylume/scene/dlModel.h"

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
    reading.containers.take();
    std::wstring name = readText(component, side_file::kName);
    dlAnimTrackSet fresh;
    readVisualTransformTrack(component, fresh.visualTransforms, reading);
    readTransformTrack(component, fresh.transforms, reading);
    readVisualStateTrack(component, fresh.visualStates, reading);
    tracks[std::move(name)] = std::move(fresh);
}

void readComponentElements(const XmlPointer<XmlNodeList>& components, AnimationTracks& tracks,
                           SideFileReading& reading)
{
    const bool keepsAll = reading.keepsKeys;
    forEachElement(components, [&](XmlElement& component) {
        reading.keepsKeys = keepsAll || containsOwnKind(component, side_file::kComponent);
        readComponent(component, tracks, reading);
    });
    reading.keepsKeys = keepsAll;
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
        reading.keepsKeys = containsOwnKind(animation, side_file::kAnimation);
        readComponentElements(listOf(animation, side_file::kComponent), tracks, reading);
        readViewportElements(animation, tracks, reading);
        readLightElements(animation, tracks, reading);
    });
}

}  // namespace

// The text is cut as the system of the documents cuts it: both separators count, the last one stays, and
// without one a drive does. Texts end at their first zero there.
std::wstring sideFilePath(const std::wstring& documentPath)
{
    const std::wstring path = documentPath.substr(0, documentPath.find(L'\0'));
    std::size_t folder = path.find_last_of(L"\\/") + 1;  // 0 without a separator.
    if (folder == 0 && path.size() >= 2 && path[1] == L':') {
        folder = 2;
    }
    return path.substr(0, folder) + side_file::kFileName;
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
