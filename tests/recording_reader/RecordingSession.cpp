// The session: document object, embedded items, callbacks, storages.
#include <initializer_list>
#include <new>

#include "raylume/platform/Text.h"
#include "tests/recording_reader/RecordingReader.h"

using recording::Recorder;

namespace {

void record(const std::string& line)
{
    Recorder::get().record(line);
}

// For what destructors call: a test that lets allocations fail must not end the process here.
template <class MakeLine>
void recordQuietly(MakeLine makeLine)
{
    try {
        record(makeLine());
    } catch (const std::bad_alloc&) {
    }
}

std::string orNull(const void* pointer)
{
    return pointer ? "object" : "null";
}

std::string listOf(std::initializer_list<std::string> words)
{
    std::string text;
    for (const std::string& word : words)
        text += (text.empty() ? "" : ",") + word;
    return "(" + text + ")";
}

const char* kindOf(const OVDLDocument* document)
{
    if (dynamic_cast<const OVDLPartDocument*>(document))
        return "part";
    return dynamic_cast<const OVDLAssemblyDocument*>(document) ? "assembly" : "document";
}

// The storage that a probe gives: open or not, and nothing more.
class Probe : public suFileStorage {
public:
    explicit Probe(bool open) : open_(open) {}
    int isOpen() const override
    {
        record("isOpen");
        return open_ ? 1 : 0;
    }

private:
    bool open_;
};

}  // namespace

OVDLDocument::OVDLDocument() = default;
OVDLDocument::OVDLDocument(const OVDLDocument&) = default;
OVDLDocument& OVDLDocument::operator=(const OVDLDocument&) = default;
OVDLDocument::~OVDLDocument() = default;

bool OVDLDocument::isRejected()
{
    record(std::string("isRejected(") + kindOf(this) + ")");
    return rejected;
}

OVDLPartDocument::OVDLPartDocument() = default;
OVDLPartDocument::OVDLPartDocument(const OVDLPartDocument&) = default;
OVDLPartDocument& OVDLPartDocument::operator=(const OVDLPartDocument&) = default;
OVDLPartDocument::~OVDLPartDocument() = default;

OVDLAssemblyDocument::OVDLAssemblyDocument() = default;
OVDLAssemblyDocument::OVDLAssemblyDocument(const OVDLAssemblyDocument&) = default;
OVDLAssemblyDocument& OVDLAssemblyDocument::operator=(const OVDLAssemblyDocument&) = default;
OVDLAssemblyDocument::~OVDLAssemblyDocument() = default;

class CDispListsDoc::State {};

CDispListsDoc::CDispListsDoc() : state_(nullptr)
{
    record("CDispListsDoc()");
}

CDispListsDoc::~CDispListsDoc()
{
    recordQuietly([] { return std::string("~CDispListsDoc"); });
}

std::map<std::wstring, std::set<std::wstring>*> CDispListsDoc::getRefModelsMap()
{
    record("getRefModelsMap()");
    return {};
}

OVXDLReader_FileLoadResult CDispListsDoc::ReadFile(const std::wstring& access, const std::wstring& path,
                                                   unsigned long& version, bool flag)
{
    record("ReadFile" +
           listOf({platform::toUtf8(access), platform::toUtf8(path), flag ? "true" : "false"}));
    const recording::Answers& answers = Recorder::get().answers;
    partDocument = answers.partDocument;
    assemblyDocument = answers.assemblyDocument;
    if (answers.givesVersion)
        version = answers.version;
    return answers.result;
}

uoTempAssemblySHDDataArray_c* CDispListsDoc::getTempDispListDataSHDArrayForConfig(std::wstring& name)
{
    record("getTempDispListDataSHDArrayForConfig(" + platform::toUtf8(name) + ")");
    const auto& configurations = Recorder::get().answers.configurations;
    const auto entry = configurations.find(name);
    return entry == configurations.end() ? nullptr : entry->second;
}

bool CDispListsDoc::iRestoreVersionHistory(suFileStorage&)
{
    record("iRestoreVersionHistory");
    return Recorder::get().answers.restoreResult;
}

bool CDispListsDoc::iRestoreConfigManager(suFileStorage&)
{
    record("iRestoreConfigManager");
    return Recorder::get().answers.restoreResult;
}

OVDLOleDocumentContainer::OVDLOleDocumentContainer() = default;

OVDLOleDocumentContainer::~OVDLOleDocumentContainer()
{
    recordQuietly([] { return std::string("~container"); });
}

// The list gets an address that nobody may look behind.
OVDLOleDocumentContainer* restoreOleItems(const std::wstring& path, CList<CRectItem*, CRectItem*>& items)
{
    record("restoreOleItems(" + platform::toUtf8(path) + ")");
    items.AddTail(reinterpret_cast<CRectItem*>(&items));
    Recorder::get().items = &items;
    return new OVDLOleDocumentContainer;
}

OVDL_Callbacks::OVDL_Callbacks() = default;

int OVDL_Callbacks::CheckVersions(int, int)
{
    record("OVDL_Callbacks::CheckVersions");
    return 0;
}

std::wstring OVDL_Callbacks::GetJapaneseFontName()
{
    record("OVDL_Callbacks::GetJapaneseFontName");
    return L"recorded font";
}

void OVDL_Callbacks::LoadExtraDataFromStorage(suFileStorage&)
{
    record("OVDL_Callbacks::LoadExtraDataFromStorage");
}

void OVDL_Callbacks::UpdateProgress(float, int, int)
{
    record("OVDL_Callbacks::UpdateProgress");
}

int OVDL_Callbacks::ShouldReadBeCancelled()
{
    record("OVDL_Callbacks::ShouldReadBeCancelled");
    return 0;
}

void OVDL_Callbacks::SetPercentCompleted(float)
{
    record("OVDL_Callbacks::SetPercentCompleted");
}

void SetOVDL_Callbacks(OVDL_Callbacks* callbacks)
{
    Recorder::get().registered = callbacks;
    recordQuietly([&] { return "SetOVDL_Callbacks(" + orNull(callbacks) + ")"; });
}

suFileStorage::suFileStorage() = default;
suFileStorage::~suFileStorage() = default;

suFileStorage* suFileStorage::createStorage(const std::wstring& path, int writable, CDocument* document,
                                            IStorage* parent, int mode, int share, ZipStorage* zip,
                                            suStorageType_e* type)
{
    record("createStorage" +
           listOf({platform::toUtf8(path), std::to_string(writable), orNull(document), orNull(parent),
                   std::to_string(mode), std::to_string(share), orNull(zip), orNull(type)}));
    Recorder& recorder = Recorder::get();
    recorder.probes.push_back(std::make_unique<Probe>(recorder.answers.storageOpen));
    return recorder.probes.back().get();
}

int suFileStorage::isOpen() const
{
    record("suFileStorage::isOpen");
    return 0;
}

bool suFileStorage::openSubStorage(const std::wstring& name, int forWrite, int third, int fourth)
{
    record("openSubStorage" + listOf({platform::toUtf8(name), std::to_string(forWrite),
                                      std::to_string(third), std::to_string(fourth)}));
    return false;
}

IStorage* suFileStorage::subStorageInterface()
{
    record("subStorageInterface");
    return nullptr;
}

IUnknown* suFileStorage::secondInterface()
{
    record("secondInterface");
    return nullptr;
}

void suFileStorage::endOpen()
{
    record("endOpen");
}

unsigned long suFileStorage::loadVersion() const
{
    record("loadVersion");
    return Recorder::get().answers.version;
}

unsigned long suFileStorage::loadDLVersion() const
{
    record("loadDLVersion");
    return 0;
}

unsigned long suFileStorage::getUncompressedStreamSize() const
{
    record("getUncompressedStreamSize");
    return 0;
}

class suStructuredStorage::State {
public:
    std::string path;
    bool open;
};

suStructuredStorage::suStructuredStorage(const std::wstring& path, int writable, CDocument* document,
                                         IStorage* parent, int mode, int share)
    : state_(new State{platform::toUtf8(path), Recorder::get().answers.structuredStorageOpen})
{
    record("suStructuredStorage" + listOf({state_->path, std::to_string(writable), orNull(document),
                                           orNull(parent), std::to_string(mode), std::to_string(share)}));
}

suStructuredStorage::~suStructuredStorage()
{
    recordQuietly([this] { return "~suStructuredStorage(" + state_->path + ")"; });
    delete state_;
}

int suStructuredStorage::isOpen() const
{
    record("suStructuredStorage::isOpen(" + state_->path + ")");
    return state_->open ? 1 : 0;
}

// What is recorded is the same for both classes.
bool suStructuredStorage::openSubStorage(const std::wstring& name, int forWrite, int third, int fourth)
{
    return suFileStorage::openSubStorage(name, forWrite, third, fourth);
}

IStorage* suStructuredStorage::subStorageInterface()
{
    return suFileStorage::subStorageInterface();
}

IUnknown* suStructuredStorage::secondInterface()
{
    return suFileStorage::secondInterface();
}

void suStructuredStorage::endOpen()
{
    suFileStorage::endOpen();
}

unsigned long suStructuredStorage::loadVersion() const
{
    return suFileStorage::loadVersion();
}

unsigned long suStructuredStorage::loadDLVersion() const
{
    return suFileStorage::loadDLVersion();
}
