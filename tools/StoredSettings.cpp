#include "tools/StoredSettings.h"

#include <new>

#include "raylume/platform/CompoundFile.h"
#include "raylume/platform/Errors.h"
#include "raylume/platform/Folders.h"
#include "raylume/platform/Text.h"
#include "raylume/services/Locations.h"
#include "raylume/services/Shell.h"
#include "reader/HostHandlers.h"
#include "tools/Loading.h"
#include "tools/Values.h"

namespace tool {
namespace {

constexpr std::uint32_t kOldestVersionWithViews = 6;

std::string notOpened(const std::string& document, const std::string& reason)
{
    LoadedDocument none;
    none.reason = oneLine(reason);
    return failureLine(document, none);
}

std::string damaged(const platform::ArchiveError& error)
{
    const bool cutShort = error.cause() == platform::ArchiveError::kEndOfFile;
    return oneLine(platform::toUtf8(error.fileName())) + ": damaged: the settings " +
           (cutShort ? "end too early" : "cannot be read") + " (cause " + std::to_string(error.cause()) +
           ")";
}

// The reading itself does not tell a document without settings from none at all.
std::string whyNothing(const std::string& document, const std::string& path)
{
    if (!RLData::OVFileExists(path.c_str()))
        return notOpened(document, ovdl::lastReason());
    return oneLine(document) +
           ": no settings: the document holds none, or is of a version whose settings are not read";
}

// Without the separator at its end.
std::string shownPath(const std::wstring& folder)
{
    std::string path = platform::toUtf8(platform::fromUtf8(rlu_nativePath(folder)));
    if (path.ends_with('/'))
        path.pop_back();
    return path;
}

// Asked only where the reading has asked too, since asking makes the folder.
std::optional<ViewsFolder> viewsFolder(const RLData& data)
{
    std::wstring folder;
    if (!data.hasCameraData() || data.getStorageVersion() < kOldestVersionWithViews ||
        !rlu_getRLCustomViewsFolder(&folder))
        return std::nullopt;
    ViewsFolder views;
    views.path = shownPath(folder);
    for (const platform::FolderEntry& entry : platform::folderEntries(folder))
        if (entry.isRegularFile && !entry.name.starts_with(L'.'))
            views.files.push_back(platform::toUtf8(entry.name));
    return views;
}

// Damaged settings leave the document open in the process until it is asked for again.
std::unique_ptr<RLData> readAndClose(const std::string& path)
{
    try {
        return std::unique_ptr<RLData>(RLData::ReadRaylumeData(path.c_str()));
    } catch (const platform::ArchiveError&) {
        RLData::OVFileExists(path.c_str());
        throw;
    }
}

void read(const std::string& document, StoredSettings& settings)
{
    const std::string path = platform::narrow(platform::fromUtf8(document));
    settings.data = readAndClose(path);
    if (settings.data)
        settings.views = viewsFolder(*settings.data);
    else
        settings.failure = whyNothing(document, path);
}

}  // namespace

StoredSettings readSettings(const std::string& document)
{
    StoredSettings settings;
    try {
        if (platform::fitsAnsiCodePage(platform::fromUtf8(document)))
            read(document, settings);
        else
            settings.failure = notOpened(document, "its path has characters that the ANSI code page lacks");
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const platform::ArchiveError& error) {
        settings.failure = damaged(error);
    } catch (const std::exception& error) {
        settings.failure = notOpened(document, error.what());
    }
    return settings;
}

bool hasStoredSettings(const std::string& document)
{
    struct Release {
        void operator()(IStorage* storage) const { storage->Release(); }
    };
    using Storage = std::unique_ptr<IStorage, Release>;
    IStorage* opened = nullptr;
    if (platform::openCompoundFile(platform::fromUtf8(document), false, &opened) < 0)
        return false;
    const Storage root(opened);
    IStorage* store = nullptr;
    if (root->OpenStorage(L"ThirdPtyStore", kModeRead + kModeExclusive, &store) < 0)
        return false;
    const Storage released(store);
    return true;
}

}  // namespace tool
