// Storages: the probe that a load asks once, and the storage that others keep.
#include "reader/Storages.h"

#include <memory>
#include <optional>
#include <vector>

#include "raylume/load/ReaderInterface.h"
#include "reader/FormatRegistry.h"

namespace {

// What a file answers that has no header of this reader's own.
constexpr unsigned long kVersionWithoutHeader = 10000;
constexpr unsigned long kDLVersionWithoutHeader = 0;

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

private:
    std::wstring path_;
    mutable std::optional<bool> answer_;
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
    return kVersionWithoutHeader;
}

unsigned long suFileStorage::loadDLVersion() const
{
    return kDLVersionWithoutHeader;
}

unsigned long suFileStorage::getUncompressedStreamSize() const
{
    return 0;
}

class suStructuredStorage::State {
public:
    bool open = false;
};

suStructuredStorage::suStructuredStorage(const std::wstring& path, int, CDocument*, IStorage*, int, int)
    : state_(new State{ovdl::FormatRegistry::instance().canOpen(path)})
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
