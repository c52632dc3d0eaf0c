#include "tests/load/StandIns.h"

#include <cstdarg>
#include <cstdio>

#include "raylume/appearance/DecalTranslation.h"
#include "raylume/appearance/MaterialTranslation.h"
#include "raylume/lights/LightTranslation.h"
#include "raylume/lights/SceneTranslation.h"
#include "raylume/platform/Text.h"
#include "raylume/scene/dlModel.h"
#include "raylume/services/Locations.h"
#include "raylume/services/Log.h"
#include "raylume/services/TemporaryFiles.h"
#include "tests/recording_reader/RecordingReader.h"

namespace standins {

StandIns& get()
{
    static StandIns standIns;
    return standIns;
}

void reset()
{
    get() = {};
}

}  // namespace standins

namespace {

void record(const std::string& line)
{
    recording::Recorder::get().record(line);
}

}  // namespace

void attachPartDecals(uoTempPartTessData_c& tessData, dlPart* part, const std::wstring& documentPath,
                      int configurationIndex)
{
    record(recording::Recorder::get().prefixOf(&tessData) + "attachPartDecals(" +
           platform::toUtf8(documentPath) + "," + std::to_string(configurationIndex) + ")");
    if (standins::get().onPartDecals)
        standins::get().onPartDecals(*part, configurationIndex);
}

void attachPartDecals(uoTempPartTessData_c& tessData, dlPart* part, const std::wstring& documentPath,
                      int configurationIndex, FaceIndices& faces)
{
    standins::get().facesOfParts = &faces;
    attachPartDecals(tessData, part, documentPath, configurationIndex);
}

void attachInstanceDecals(uoTempAssemblySHDData_c& component, dlInstance* instance, dlPart* part,
                          const std::wstring& documentPath, FaceIndices& faces)
{
    standins::get().facesOfInstances = &faces;
    record("attachInstanceDecals(" + platform::toUtf8(component.name) + "," +
           platform::toUtf8(documentPath) + ")");
    if (standins::get().onInstanceDecals)
        standins::get().onInstanceDecals(*instance, *part);
}

// Appends, as the real one does, so that a material filled twice shows.
void applyVisualProperties(dlMaterial& material, moVisualProperties_c& visual)
{
    record("applyVisualProperties(" + platform::toUtf8(visual.visualName) + ")");
    material.visualName += platform::narrow(visual.visualName);
    material.reservedNameC = "from the document";
}

void translateLights(dlModel& model, ovPointerArray<moLight_c>* lights, ovScene_c* scene)
{
    record("translateLights");
    standins::get().lights = lights;
    standins::get().lightsScene = scene;
    if (standins::get().onLights)
        standins::get().onLights(model);
}

void translateScene(dlModel&, ovScene_c& sceneHolder, const std::wstring& documentPath)
{
    record("translateScene(" + platform::toUtf8(documentPath) + ")");
    standins::get().scene = &sceneHolder;
}

bool dlModel::readAnimationXML(const std::wstring& path)
{
    record("readAnimationXML(" + platform::toUtf8(path) + ")");
    standins::get().animatedModel = this;
    if (standins::get().onReadAnimation)
        standins::get().onReadAnimation(*this);
    return standins::get().animationResult;
}

bool dlModel::compHasAppearanceAnimation(std::string name)
{
    record("compHasAppearanceAnimation(" + name + ")");
    return standins::get().animatedNames.count(name) != 0;
}

void dlModel::createAssemblyHierarchy()
{
    record("createAssemblyHierarchy");
    if (standins::get().onHierarchy)
        standins::get().onHierarchy(*this);
}

void dlModel::updateSingletons()
{
    record("updateSingletons");
}

void dlModel::updateFirstModelName(std::string name)
{
    record("updateFirstModelName(" + name + ")");
}

bool rlu_isMeridian5App()
{
    return standins::get().meridian5App;
}

void rlu_odprintf(const char* format, ...)
{
    char text[256];
    std::va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    record(std::string("log(") + text + ")");
}

std::wstring getTemporaryFilePath(const std::wstring& fileName, bool perProcess)
{
    record("getTemporaryFilePath(" + platform::toUtf8(fileName) + (perProcess ? ",own)" : ",shared)"));
    const std::wstring& folder = standins::get().temporaryFolder;
    return folder.empty() ? folder : folder + fileName;
}
