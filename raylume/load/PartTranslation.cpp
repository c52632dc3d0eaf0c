#include "raylume/load/PartTranslation.h"

#include <memory>

#include "raylume/appearance/DecalTranslation.h"
#include "raylume/lights/LightTranslation.h"
#include "raylume/lights/SceneTranslation.h"
#include "raylume/load/TessellationCapture.h"
#include "raylume/load/ViewTranslation.h"
#include "raylume/scene/dlModel.h"

namespace {

// A part document has no configurations of its own in the model, whichever one is active.
constexpr int kPartDocumentConfiguration = -1;
constexpr char kInstanceName[] = "root";

void makeInstance(dlModel& model)
{
    model.isPartDocument = true;
    model.instances = new dlInstance[1];
    model.instanceCount = 1;
}

// The key is the document and not its tessellation, unlike in an assembly.
void makePart(dlModel& model, OVDLPartDocument& document)
{
    auto part = std::make_unique<dlPart>();
    model.addDLPart(&document, part.get(), kPartDocumentConfiguration);
    part.release();
}

// Grouped before there is anything to group by: the instance stays alone. instanceUseCount stays 0.
void joinInstanceAndPart(dlModel& model, OVDLPartDocument& document)
{
    dlInstance& instance = model.instances[0];
    instance.part = model.getDLPart(&document, kPartDocumentConfiguration);
    instance.name = kInstanceName;
    instance.part->addAssociatedInstance(&instance);
}

void fillPart(dlModel& model, OVDLPartDocument& document, const std::wstring& path)
{
    dlPart* part = model.instances[0].part;
    if (!document.tessData)
        return;
    capturePart(*part, *document.tessData, document.activeConfigIndex);
    attachPartDecals(*document.tessData, part, path, document.activeConfigIndex);
}

void fillScene(dlModel& model, OVDLPartDocument& document, const std::wstring& path)
{
    if (document.sceneHolder && document.sceneHolder->sceneData)
        translateScene(model, *document.sceneHolder, path);
}

}  // namespace

void translatePartDocument(dlModel& model, OVDLPartDocument& document, const std::wstring& path)
{
    makeInstance(model);
    makePart(model, document);
    joinInstanceAndPart(model, document);
    translateLights(model, document.lightData, document.sceneHolder);
    translateView(model, document);
    fillPart(model, document, path);
    fillScene(model, document, path);
}
