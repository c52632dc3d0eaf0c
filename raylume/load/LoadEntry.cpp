#include "raylume/load/LoadEntry.h"

#include <cstdint>
#include <memory>
#include <new>
#include <string>
#include <string_view>

#include "raylume/load/AssemblyTranslation.h"
#include "raylume/load/ConfigurationChoice.h"
#include "raylume/load/PartTranslation.h"
#include "raylume/load/StorageRegistry.h"
#include "raylume/platform/Environment.h"
#include "raylume/platform/Errors.h"
#include "raylume/platform/Messages.h"
#include "raylume/platform/Text.h"
#include "raylume/scene/dlModel.h"
#include "raylume/services/Locations.h"

bool g_terminateLoad = false;

CDispListsDocRL::CDispListsDocRL() = default;

CDispListsDocRL::~CDispListsDocRL()
{
    delete oleContainer;
    oleContainer = nullptr;
    for (IStorage* const storage : addinStorages)
        storage->Release();
    for (IUnknown* const held :
         {static_cast<IUnknown*>(thirdPartyStorage), secondStorageInterface, spareStorageInterface}) {
        if (held)
            held->Release();
    }
}

RL_OVDL_CallBacks::RL_OVDL_CallBacks() = default;

RL_OVDL_CallBacks::~RL_OVDL_CallBacks()
{
    SetOVDL_Callbacks(nullptr);
}

namespace {

constexpr char kRegressionVariable[] = "RAYLUME_REGRESSION_MODE";
constexpr wchar_t kVersionMessage[] =
    L"PRJ 16490 :- Version in loader dlls need to be in synch with that in Orvane. Document may not be "
    L"loaded correctly in Raylume";

bool isRegressionRun()
{
    const auto mode = platform::environmentVariable(kRegressionVariable);
    return mode && platform::compareIgnoringCase(*mode, L"ON") == 0;
}

}  // namespace

int RL_OVDL_CallBacks::CheckVersions(int first, int second)
{
    if (first > second && rlu_isMeridian5App() && !isRegressionRun())
        platform::showMessageBox(kVersionMessage);
    return 1;
}

namespace {

using EmbeddedItems = CList<CRectItem*, CRectItem*>;

constexpr int kEmbeddedItemsBlock = 10;
constexpr std::uint32_t kOldestVersionThroughGate = 3870;

// What one session knows, handed from step to step.
struct Session {
    explicit Session(const std::wstring& documentPath) : path(documentPath) {}

    const std::wstring& path;
    CDispListsDocRL document;
    EmbeddedItems items{kEmbeddedItemsBlock};  // The reader fills it; nobody looks.
    std::uint32_t version = 0;
};

// The probe belongs to the reader, opened or not.
bool canBeOpened(const std::wstring& path)
{
    const suFileStorage* storage =
        suFileStorage::createStorage(path, 0, nullptr, nullptr, 0, 1, nullptr, nullptr);
    return storage && storage->isOpen() != 0;
}

// The one copy whose failure is told by a result code; any other allocation fails as std::bad_alloc.
std::wstring accessText()
{
    try {
        return kReaderAccess;
    } catch (const std::bad_alloc&) {
        throw platform::ComError(platform::kErrorOutOfMemory);
    }
}

// The reader's result is not looked at: the documents that it leaves decide.
void readDocument(Session& session)
{
    unsigned long version = 0;
    session.document.ReadFile(accessText(), session.path, version, true);
    session.version = static_cast<std::uint32_t>(version);
}

// The part document wins, also when it is the one that is rejected.
bool isRejected(CDispListsDoc& document)
{
    if (document.partDocument)
        return document.partDocument->isRejected();
    return !document.assemblyDocument || document.assemblyDocument->isRejected();
}

std::unique_ptr<dlModel> makeRejectedModel()
{
    auto model = std::make_unique<dlModel>();
    model->loadRejected = true;
    return model;
}

void translateDocument(dlModel& model, Session& session)
{
    CDispListsDoc& document = session.document;
    if (document.partDocument) {
        translatePartDocument(model, *document.partDocument, session.path);
        return;
    }
    auto& components = chooseComponents(document, *document.assemblyDocument);
    translateAssemblyDocument(model, *document.assemblyDocument, session.path, components);
}

// A side file that cannot be read to its end leaves what it gave so far.
std::unique_ptr<dlModel> makeModel(Session& session)
{
    auto model = std::make_unique<dlModel>();
    (void)model->readAnimationXML(session.path);
    translateDocument(*model, session);
    model->versionGatePassed = session.version >= kOldestVersionThroughGate;
    return model;
}

// Rejection comes before cancellation, and it alone leaves the storage registry as it is.
std::unique_ptr<dlModel> translateSession(Session& session)
{
    if (isRejected(session.document))
        return makeRejectedModel();
    std::unique_ptr<dlModel> model;
    if (!g_terminateLoad)
        model = makeModel(session);
    if (g_terminateLoad)
        model.reset();
    if (model)
        model->documentVersion = session.version;
    dropRegisteredStorage(session.path);
    return model;
}

std::unique_ptr<dlModel> readAndTranslate(Session& session)
{
    RL_OVDL_CallBacks callbacks;
    SetOVDL_Callbacks(&callbacks);
    readDocument(session);
    SetOVDL_Callbacks(nullptr);  // No code of the reader may call back while we translate.
    session.items.RemoveAll();
    return translateSession(session);
}

// The reader's document dies at the end of this call: what follows works on the model alone.
std::unique_ptr<dlModel> runSession(const std::wstring& path)
{
    Session session(path);
    session.document.oleContainer = restoreOleItems(path, session.items);
    if (!canBeOpened(path)) {
        session.items.RemoveAll();
        return nullptr;
    }
    return readAndTranslate(session);
}

// The text behind the last separator of either kind.
std::string fileNameOf(std::string_view path)
{
    const std::size_t separator = path.find_last_of("\\/");
    return std::string(separator == std::string_view::npos ? path : path.substr(separator + 1));
}

void finishModel(dlModel& model, const char* path)
{
    model.createAssemblyHierarchy();
    model.updateSingletons();
    model.modelName = fileNameOf(path);
    if (model.isPartDocument)
        model.updateFirstModelName(model.modelName);
}

}  // namespace

dlModel* dlModel::ReadModel(const char* path)
{
    if (!path)
        return nullptr;
    std::unique_ptr<dlModel> model = runSession(platform::widen(path));
    if (model)
        finishModel(*model, path);
    return model.release();
}
