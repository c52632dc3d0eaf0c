// Open storages by document path, for the life of the process.
#pragma once

#include <map>
#include <string>

#include "raylume/load/ReaderInterface.h"

/// Orders paths without case.
struct PathLess {
    bool operator()(const std::wstring& a, const std::wstring& b) const;
};

/// Document path -> open storage, owned. Unguarded: calls must not overlap. Never destroyed: a read that
/// ended in an exception leaves its document in it, and the process may end with that.
extern std::map<std::wstring, suFileStorage*, PathLess>& g_storageRegistry;

/// The registered storage if it is open. Otherwise makes one and registers it, in the place of a
/// stale one (which is not deleted: somebody may still hold it), and gives it if it is open, else
/// null.
suFileStorage* getRegisteredStorage(const std::wstring& path, bool writable);

/// Deletes the storage of that path, if there is one, and forgets it.
void dropRegisteredStorage(const std::wstring& path);
