// The settings of a document: the way from its path to the stream in it.
#include <memory>
#include <string>

#include "raylume/load/ExtraData.h"
#include "raylume/load/StorageRegistry.h"
#include "raylume/persist/RLByteEnds.h"
#include "raylume/persist/RLData.h"
#include "raylume/platform/CompoundFile.h"
#include "raylume/platform/Text.h"

namespace {

struct ReleaseStream {
    void operator()(IStream* stream) const { stream->Release(); }
};
using StreamPointer = std::unique_ptr<IStream, ReleaseStream>;

StreamPointer openSettings(CDispListsDocRL& session, const std::wstring& path)
{
    IStorage* const storage = openRaylumeStorage(session, path);
    IStream* stream = nullptr;
    if (!storage || storage->OpenStream(kSettingsStreamName, kReadMode, &stream) < 0)
        return nullptr;
    return StreamPointer(stream);
}

std::unique_ptr<RLData> readSettings(IStream& stream, const std::wstring& path)
{
    RLStreamSource source(stream);
    RLByteStream bytes(source, path);
    RLArchive archive{&bytes, RLArchive::kCurrentVersion};
    auto data = std::make_unique<RLData>();
    data->serialize(archive);
    return data;
}

}  // namespace

// A failure of the archive leaves from readSettings, with the document still in the registry.
RLData* RLData::ReadRaylumeData(const char* path)
{
    if (!path)
        return nullptr;
    const std::wstring widePath = platform::widen(path);
    CDispListsDocRL session;
    std::unique_ptr<RLData> data;
    if (StreamPointer stream = openSettings(session, widePath)) {
        data = readSettings(*stream, widePath);
        stream.reset();
        closeRaylumeStorage(session);
    }
    dropRegisteredStorage(widePath);
    return data.release();
}

bool RLData::WriteRaylumeData(const char*, const RLData*)
{
    return false;
}

bool RLData::OVFileExists(const char* path)
{
    if (!path)
        return false;
    const std::wstring widePath = platform::widen(path);
    const bool exists = getRegisteredStorage(widePath, false) != nullptr;
    dropRegisteredStorage(widePath);
    return exists;
}
