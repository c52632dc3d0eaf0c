#include "raylume/load/StorageRegistry.h"

#include <memory>

#include "raylume/platform/Text.h"

std::map<std::wstring, suFileStorage*, PathLess>& g_storageRegistry =
    *new std::map<std::wstring, suFileStorage*, PathLess>;

bool PathLess::operator()(const std::wstring& a, const std::wstring& b) const
{
    return platform::compareIgnoringCase(a, b) < 0;
}

namespace {

suFileStorage* findOpenStorage(const std::wstring& path)
{
    const auto entry = g_storageRegistry.find(path);
    const bool usable = entry != g_storageRegistry.end() && entry->second && entry->second->isOpen() != 0;
    return usable ? entry->second : nullptr;
}

// The entry stays also when the new storage is not open; a stale one that it replaces is not
// deleted, since somebody may still hold it.
suFileStorage* registerStorage(const std::wstring& path, bool writable)
{
    auto storage = std::make_unique<suStructuredStorage>(path, writable ? 1 : 0, nullptr, nullptr, 0, 1);
    suFileStorage*& registered = g_storageRegistry[path];
    registered = storage.release();
    return registered;
}

}  // namespace

suFileStorage* getRegisteredStorage(const std::wstring& path, bool writable)
{
    if (suFileStorage* open = findOpenStorage(path))
        return open;
    suFileStorage* made = registerStorage(path, writable);
    return made->isOpen() != 0 ? made : nullptr;
}

void dropRegisteredStorage(const std::wstring& path)
{
    const auto entry = g_storageRegistry.find(path);
    if (entry == g_storageRegistry.end())
        return;
    delete entry->second;
    g_storageRegistry.erase(entry);
}
