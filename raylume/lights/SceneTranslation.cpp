#include "raylume/lights/SceneTranslation.h"

#include "raylume/load/ReaderInterface.h"
#include "raylume/platform/Paths.h"
#include "raylume/platform/Text.h"
#include "raylume/scene/dlModel.h"
#include "raylume/services/PathText.h"
#include "raylume/services/Text.h"
#include "raylume/services/TextureSearch.h"

namespace {

void copyColour(const color& source, double (&target)[3])
{
    target[0] = source.r;
    target[1] = source.g;
    target[2] = source.b;
}

// A wall that does not reflect says nothing, so the shadow still counts.
void fillFloor(pwSceneData_c& data, dlScene& scene)
{
    const pwWallInfo_c* const wall = data.getWallInfo(0);
    if (wall && wall->reflectFlag != 0) {
        scene.floorType = "reflect";
        scene.floorVisibility = true;
    } else if (data.shadowFlag != 0) {
        scene.floorType = "shadow";
        scene.floorVisibility = true;
    }
}

// The folder with its separator. A scene file that is not there, or that stands in no folder, stays
// whole: the search then takes the name itself for a folder, which is how it is meant.
std::wstring sceneFolder(const std::wstring& sceneFile)
{
    const std::size_t separator = sceneFile.rfind(L'\\');
    const bool isInFolder = separator != std::wstring::npos && separator > 0;
    return isInFolder && platform::pathMatches(sceneFile) ? sceneFile.substr(0, separator + 1) : sceneFile;
}

// Where a scene's images are looked for.
struct ImagePlaces {
    std::string searchFolder;
    std::wstring sceneFolder;
};

std::string resolveImage(const std::wstring& stored, const ImagePlaces& places)
{
    if (stored.empty()) {
        return {};
    }
    // In lower case before the search, so that a tag for the host's data folder is none any more.
    return rlu_getTextureFilename(platform::toLower(stored), places.searchFolder, TextureImageScene,
                                  places.sceneFolder);
}

// Whatever the kind of background: hosts switch between kinds.
void fillImages(pwSceneData_c& data, const std::wstring& documentPath, dlScene& scene)
{
    const ImagePlaces places{rlu_WStringToString(driveAndFolder(documentPath)),
                             sceneFolder(data.getSceneFileName())};
    scene.environmentImage = resolveImage(data.getBackgroundEnvImage(0), places);
    scene.backPlateImage = resolveImage(data.getBackgroundImage(0), places);
}

void fillBackgroundKind(std::uint32_t kind, dlScene& scene)
{
    switch (kind) {
    case 0:
    case 1:
        scene.backgroundTypeStr = "Env_Solid";
        break;
    case 2:
        scene.backgroundTypeStr = "Env_Gradient";
        break;
    case 3:
        scene.backgroundTypeStr = "Env_Backplate";
        scene.bkplVisibility = true;
        break;
    case 4:
        scene.backgroundTypeStr = "Environment";
        scene.envVisibility = true;
        break;
    default:
        break;
    }
}

}  // namespace

void translateScene(dlModel& model, ovScene_c& sceneHolder, const std::wstring& documentPath)
{
    pwSceneData_c& data = *sceneHolder.sceneData;
    dlScene& scene = model.scene;
    scene.floorOrient = sceneHolder.floorOrientation;
    scene.floorDir = sceneHolder.floorDirection == 1;
    scene.backgroundType = static_cast<std::int32_t>(data.backgroundKind);
    copyColour(data.getBackgroundColor1(), scene.backgroundColor1);
    copyColour(data.getBackgroundColor2(), scene.backgroundColor2);
    scene.backgroundBrightness = data.backgroundBrightnessValue;
    scene.renderingBrightness = data.renderingBrightnessValue;
    scene.sceneReflectivity = data.reflectivityValue;
    fillFloor(data, scene);
    fillImages(data, documentPath, scene);
    fillBackgroundKind(data.backgroundKind, scene);
}
