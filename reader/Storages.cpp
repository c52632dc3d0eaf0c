// Storages: the probe that a load asks once, and the storage that others keep.
#include "reader/Storages.h"

#include <memory>
#include <optional>
#include <vector>

#include "raylume/load/ReaderInterface.h"
#include "raylume/platform/CompoundFile.h"
#include "raylume/platform/Reference.h"
#include "reader/DocumentHeader.h"
#include "reader/FormatRegistry.h"
#include "reader/HostState.h"

namespace ovdl {
namespace {

// What storages answer for the versions of a document.
struct FileVersions {
    unsigned long document = kVersionWithoutHeader;
    unsigned long displayLists = kDLVersionWithoutHeader;
};

FileVersions versionsOf(const std::optional<DocumentHeader>& header)
{
    return header ? FileVersions{header->documentVersion, header->displayListVersion} : FileVersions();
}

// Of any file; no more than its start is looked at when it is no compound file.
FileVersions versionsOf(const std::wstring& path)
{
    platform::Reference<IStorage> root;
    if (platform::openCompoundFile(path, false, root.out()) < 0)
        return FileVersions();
    return versionsOf(readHeader(*root.get()));
}

}  // namespace
}  // namespace ovdl

namespace {

// Says whether a load of that path would get a document, and holds no file while it waits to be
// asked or afterwards. The first answer stands: asking again must not make a prepared document anew.
class DocumentProbe final : public suFileStorage {
public:
    explicit DocumentProbe(const std::wstring& path) : path_(path) {}

    int isOpen() const override
    {
        if (!answer_)
            answer_ = ovdl::FormatRegistry::instance().canOpen(path_);
        return *answer_ ? 1 : 0;
    }

    unsigned long loadVersion() const override { return versions().document; }
    unsigned long loadDLVersion() const override { return versions().displayLists; }

private:
    const ovdl::FileVersions& versions() const
    {
        if (!versions_)
            versions_ = ovdl::versionsOf(path_);
        return *versions_;
    }

    std::wstring path_;
    mutable std::optional<bool> answer_;
    mutable std::optional<ovdl::FileVersions> versions_;
};

// Callers never release a probe, so the reader keeps them until it is sure that none is in use.
std::vector<std::unique_ptr<suFileStorage>>& probes()
{
    static std::vector<std::unique_ptr<suFileStorage>> kept;
    return kept;
}

}  // namespace

namespace ovdl {

void forgetProbes()
{
    probes().clear();
    FormatRegistry::instance().forgetProbes();
}

}  // namespace ovdl

suFileStorage* suFileStorage::createStorage(const std::wstring& path, int, CDocument*, IStorage*, int, int,
                                            ZipStorage*, suStorageType_e* type)
{
    if (type)
        *type = suStorageType_none;
    probes().push_back(std::make_unique<DocumentProbe>(path));
    return probes().back().get();
}

suFileStorage::suFileStorage() = default;
suFileStorage::~suFileStorage() = default;

int suFileStorage::isOpen() const
{
    return 0;
}

bool suFileStorage::openSubStorage(const std::wstring&, int, int, int)
{
    return false;
}

IStorage* suFileStorage::subStorageInterface()
{
    return nullptr;
}

IUnknown* suFileStorage::secondInterface()
{
    return nullptr;
}

void suFileStorage::endOpen()
{
}

unsigned long suFileStorage::loadVersion() const
{
    return ovdl::kVersionWithoutHeader;
}

unsigned long suFileStorage::loadDLVersion() const
{
    return ovdl::kDLVersionWithoutHeader;
}

unsigned long suFileStorage::getUncompressedStreamSize() const
{
    return 0;
}

// Either a compound file, whatever program made it, or a document of a format that has no storages.
class suStructuredStorage::State {
public:
    State(const std::wstring& path, bool writable)
    {
        const HResult result = platform::openCompoundFile(path, writable, root.out());
        if (result >= 0) {
            versions = ovdl::versionsOf(ovdl::readHeader(*root.get()));
            open = true;
            ovdl::setLastReason("");
        } else if (staysClosed(result, writable)) {
            ovdl::setLastReason(reasonOf(result));
        } else {
            open = ovdl::FormatRegistry::instance().canOpen(path);
        }
    }

    platform::Reference<IStorage> root;
    platform::Reference<IStorage> sub;
    ovdl::FileVersions versions;
    bool open = false;

private:
    // Anything else may be a document of a format that has no storages; a file
    // that may not be written is not told apart from one of those.
    static bool staysClosed(HResult failure, bool writable)
    {
        const bool maybeAnotherFormat =
            failure == kStorageExists || failure == kStorageNotFound || failure == kStoragePathNotFound;
        return !maybeAnotherFormat && (failure != kStorageAccessDenied || writable);
    }

    static const char* reasonOf(HResult failure)
    {
        switch (failure) {
        case kStorageAccessDenied:
            return "the file may not be written";
        case kStorageCorrupt:
            return "the compound file is damaged";
        default:
            return "the compound file cannot be opened";
        }
    }
};

suStructuredStorage::suStructuredStorage(const std::wstring& path, int writable, CDocument*, IStorage*, int,
                                         int)
    : state_(new State(path, writable != 0))
{
}

suStructuredStorage::~suStructuredStorage()
{
    delete state_;
}

int suStructuredStorage::isOpen() const
{
    return state_->open ? 1 : 0;
}

bool suStructuredStorage::openSubStorage(const std::wstring& name, int forWrite, int, int)
{
    state_->sub.reset();
    const std::uint32_t mode = kModeExclusive + (forWrite != 0 ? kModeReadWrite : kModeRead);
    return state_->root && state_->root->OpenStorage(name.c_str(), mode, state_->sub.out()) >= 0;
}

IStorage* suStructuredStorage::subStorageInterface()
{
    if (state_->sub)
        state_->sub->AddRef();
    return state_->sub.get();
}

// Files have one interface.
IUnknown* suStructuredStorage::secondInterface()
{
    return nullptr;
}

void suStructuredStorage::endOpen()
{
    state_->sub.reset();
}

unsigned long suStructuredStorage::loadVersion() const
{
    return state_->versions.document;
}

unsigned long suStructuredStorage::loadDLVersion() const
{
    return state_->versions.displayLists;
}
