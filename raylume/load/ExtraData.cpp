#include "raylume/load/ExtraData.h"

#include <atomic>

#include "raylume/load/StorageRegistry.h"
#include "raylume/platform/Errors.h"
#include "raylume/scene/RotationAngles.h"

namespace {

constexpr wchar_t kThirdPartyName[] = L"ThirdPtyStore";
constexpr std::uint32_t kWriteMode = kModeExclusive + kModeReadWrite;
constexpr std::uint32_t kNewestVersion = 16000;
constexpr std::uint32_t kOldestVersion = 629;

template <class Interface>
void releaseAndClear(Interface*& held)
{
    if (!held)
        return;
    Interface* const released = held;
    held = nullptr;
    released->Release();
}

void openThirdPartyStorage(CDispListsDocRL& session, suFileStorage& storage, int forWrite)
{
    if (!storage.openSubStorage(kThirdPartyName, forWrite, 0, 0))
        return;
    session.thirdPartyStorage = storage.subStorageInterface();
    releaseAndClear(session.secondStorageInterface);  // Of an open that gave no first one.
    session.secondStorageInterface = storage.secondInterface();
    if (session.secondStorageInterface)
        session.secondStorageInterface->AddRef();
    storage.endOpen();
}

// Something else may have the name; removing nothing fails too, and is no matter.
HResult makeStorage(IStorage& parent, const wchar_t* name, IStorage** made)
{
    parent.DestroyElement(name);
    return parent.CreateStorage(name, kWriteMode, made);
}

HResult openChild(IStorage& parent, const wchar_t* name, int forWrite, IStorage** child)
{
    if (!forWrite)
        return parent.OpenStorage(name, kReadMode, child);
    const HResult result = parent.OpenStorage(name, kWriteMode, child);
    return result == kStorageNotFound ? makeStorage(parent, name, child) : result;
}

// The display list's own version counts where there is one, but only against the lower limit.
bool isReadableVersion(const suFileStorage& storage)
{
    const auto version = static_cast<std::uint32_t>(storage.loadVersion());
    if (version > kNewestVersion)
        return false;
    const auto listVersion = static_cast<std::uint32_t>(storage.loadDLVersion());
    return (listVersion != 0 ? listVersion : version) >= kOldestVersion;
}

// The entry is looked up a second time: one that closed in the meantime is not opened anew.
suFileStorage* findOpenStorage(const std::wstring& path, bool writable)
{
    if (!getRegisteredStorage(path, writable))
        return nullptr;
    const auto entry = g_storageRegistry.find(path);
    const bool isOpen = entry != g_storageRegistry.end() && entry->second && entry->second->isOpen() != 0;
    return isOpen ? entry->second : nullptr;
}

suFileStorage* openReadableDocument(CDispListsDocRL& session, const std::wstring& path, bool writable)
{
    session.documentPath = path;
    suFileStorage* const storage = findOpenStorage(path, writable);
    return storage && isReadableVersion(*storage) ? storage : nullptr;
}

// What they give is not looked at: they only prepare the document for the storage to be found.
void restoreDocument(CDispListsDocRL& session, suFileStorage& storage)
{
    session.iRestoreVersionHistory(storage);
    session.iRestoreConfigManager(storage);
}

bool restoresQuietly(CDispListsDocRL& session, suFileStorage& storage)
{
    try {
        restoreDocument(session, storage);
        return true;
    } catch (...) {
        return false;
    }
}

// The session keeps the reference: nobody releases it before the session's end.
IStorage* openKept(CDispListsDocRL& session, suFileStorage& storage, int forWrite)
{
    session.addinStorages.reserve(session.addinStorages.size() + 1);
    IStorage* const opened = openAddinSubStorage(session, kAddinStorageName, storage, forWrite);
    if (opened)
        session.addinStorages.push_back(opened);
    return opened;
}

// The second interface is known by its counting only; where it is a storage it has edits to keep.
void commit(IUnknown* held)
{
    constexpr std::uint32_t kPlainly = 0;
    if (auto* const storage = dynamic_cast<IStorage*>(held))
        storage->Commit(kPlainly);
}

}  // namespace

IStorage* openAddinSubStorage(CDispListsDocRL& session, const wchar_t* name, suFileStorage& storage,
                              int forWrite)
{
    if (!session.thirdPartyStorage)
        openThirdPartyStorage(session, storage, forWrite);
    if (!session.thirdPartyStorage)
        return nullptr;
    IStorage* opened = nullptr;
    const HResult result = openChild(*session.thirdPartyStorage, name, forWrite, &opened);
    if (result < 0)
        throw platform::OleError(static_cast<std::uint32_t>(result));
    std::atomic_ref(session.openStorageCount).fetch_add(1);
    return opened;
}

IStorage* openRaylumeStorage(CDispListsDocRL& session, const std::wstring& path)
{
    suFileStorage* const storage = openReadableDocument(session, path, false);
    if (!storage)
        return nullptr;
    try {
        restoreDocument(session, *storage);
        return openKept(session, *storage, 0);
    } catch (...) {
        return nullptr;
    }
}

void closeRaylumeStorage(CDispListsDocRL& session)
{
    if (!session.thirdPartyStorage)
        return;
    std::atomic_ref(session.openStorageCount).fetch_sub(1);
    commit(session.thirdPartyStorage);
    releaseAndClear(session.thirdPartyStorage);
    commit(session.secondStorageInterface);
    releaseAndClear(session.secondStorageInterface);
    releaseAndClear(session.spareStorageInterface);
}

void eraseShaderData(CDispListsDocRL& session, const std::wstring& path)
{
    suFileStorage* const storage = openReadableDocument(session, path, true);
    if (!storage || !restoresQuietly(session, *storage))
        return;
    IStorage* const addin = openKept(session, *storage, 1);
    IStream* stream = nullptr;
    if (!addin || addin->OpenStream(kSettingsStreamName, kReadMode, &stream) < 0)
        return;
    releaseAndClear(stream);
    addin->DestroyElement(kSettingsStreamName);
}

void matrixToAngles(const double matrix[9], double& first, double& second, double& third)
{
    scene::decomposeRotation(matrix, first, second, third);
}
