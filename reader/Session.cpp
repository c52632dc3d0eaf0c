// The document object of one load.
#include <memory>

#include "raylume/load/ReaderInterface.h"
#include "reader/DocumentRead.h"
#include "reader/FormatRegistry.h"
#include "reader/HostState.h"
#include "reader/Storages.h"

class CDispListsDoc::State {
public:
    std::unique_ptr<ovdl::ReadDocument> document;
};

// A new document object is the sign that the load before is over, so nobody holds a probe any more.
CDispListsDoc::CDispListsDoc() : state_(nullptr)
{
    ovdl::forgetProbes();
    state_ = new State;
}

CDispListsDoc::~CDispListsDoc()
{
    delete state_;
}

std::map<std::wstring, std::set<std::wstring>*> CDispListsDoc::getRefModelsMap()
{
    return {};
}

OVXDLReader_FileLoadResult CDispListsDoc::ReadFile(const std::wstring& access, const std::wstring& path,
                                                   unsigned long& version, bool)
{
    if (access != kReaderAccess) {
        ovdl::setLastReason("the access text is not the one of this reader");
        return OVXDLReader_NotOpened;
    }
    partDocument = nullptr;
    assemblyDocument = nullptr;
    state_->document.reset();
    documentPath = path;

    std::string reason;
    ovdl::DocumentFormat* format = ovdl::FormatRegistry::instance().find(path, reason);
    ovdl::setLastReason(reason);
    if (!format)
        return OVXDLReader_NotOpened;

    ovdl::DocumentReadResult read = ovdl::readDocument(*format, path);
    ovdl::setLastReason(read.reason);
    state_->document = std::move(read.document);
    partDocument = state_->document->part();
    assemblyDocument = state_->document->assembly();
    version = read.version;
    return read.result;
}

uoTempAssemblySHDDataArray_c* CDispListsDoc::getTempDispListDataSHDArrayForConfig(std::wstring& name)
{
    return state_->document ? state_->document->configuration(name) : nullptr;
}

// The storages of this reader need neither record to find their way; an open one is all it takes.
bool CDispListsDoc::iRestoreVersionHistory(suFileStorage& storage)
{
    return storage.isOpen() != 0;
}

bool CDispListsDoc::iRestoreConfigManager(suFileStorage& storage)
{
    return storage.isOpen() != 0;
}
