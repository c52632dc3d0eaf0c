// The views of the user, which travel inside a camera's stream as files.
#include <algorithm>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "raylume/persist/RLCameraData.h"
#include "raylume/platform/Files.h"
#include "raylume/platform/Folders.h"
#include "raylume/platform/OutputFile.h"
#include "raylume/platform/Text.h"
#include "raylume/services/Shell.h"

namespace {

// The most of a view that is in memory at once.
constexpr std::uint32_t kPiece = 0x10000;

// Cut in the text and not in its bytes: in some code pages a byte like "\" ends another character.
std::wstring nameOf(const std::wstring& storedPath)
{
    return storedPath.substr(storedPath.rfind(L'\\') + 1);
}

bool isControl(wchar_t character)
{
    return character < 0x20 || (character >= 0x7F && character < 0xA0);
}

// What would lead out of the folder or is no file name on the systems that views come from.
bool isFileName(const std::wstring& name)
{
    constexpr std::wstring_view kForbidden = L"\\/:*?\"<>|";
    const auto isForbidden = [&](wchar_t c) {
        return isControl(c) || kForbidden.find(c) != kForbidden.npos;
    };
    return !name.empty() && name != L"." && name != L".." &&
           std::none_of(name.begin(), name.end(), isForbidden);
}

// Where views go. A folder without a separator at its end is the beginning of their names.
class Destination {
public:
    explicit Destination(const std::wstring& folder)
        : start_(folder.substr(folder.find_last_of(L"\\/") + 1)),
          folder_(platform::OutputFolder::open(folder.substr(0, folder.size() - start_.size())))
    {
    }

    std::unique_ptr<platform::OutputFile> create(const std::wstring& name)
    {
        return folder_ && isFileName(name) ? folder_->create(start_ + name) : nullptr;
    }

private:
    std::wstring start_;
    std::unique_ptr<platform::OutputFolder> folder_;
};

// The length may be anything. What the stream lacks is left for setLength to fill, so that neither
// memory nor disk is taken for bytes that are not there. Without a file the bytes are only consumed.
void unpackBytes(RLByteStream& stream, std::uint32_t length, platform::OutputFile* file)
{
    std::vector<char> piece(std::min(length, kPiece));
    for (std::uint32_t left = length; left > 0;) {
        const std::uint32_t size = std::min(left, kPiece);
        const std::size_t count = stream.readRaw(piece.data(), size);
        if (file && !file->write(piece.data(), count))
            file = nullptr;
        if (count < size)
            break;
        left -= size;
    }
    if (file)
        file->setLength(length);
}

void unpackView(RLByteStream& stream, Destination& views)
{
    std::string path;
    std::uint32_t length = 0;
    stream.read(path);
    stream.read(length);
    const auto file = views.create(nameOf(platform::widen(path)));
    unpackBytes(stream, length, file.get());
}

// A file that has become shorter is filled up, so that the fields behind it stay where they belong.
void packBytes(RLByteStream& stream, std::uint32_t length, platform::InputFile& file)
{
    std::vector<char> piece(std::min(length, kPiece));
    for (std::uint32_t left = length; left > 0;) {
        const std::uint32_t size = std::min(left, kPiece);
        const std::size_t count = file.read(piece.data(), size);
        std::fill(piece.begin() + static_cast<std::ptrdiff_t>(count), piece.end(), '\0');
        stream.writeRaw(piece.data(), size);
        left -= size;
    }
}

bool travels(const platform::FolderEntry& entry)
{
    return entry.isRegularFile && !entry.name.empty() && entry.name[0] != L'.';
}

// The whole paths, in the order of the listing.
std::vector<std::wstring> viewsIn(const std::wstring& folder)
{
    std::vector<std::wstring> paths;
    for (const platform::FolderEntry& entry : platform::folderEntries(folder)) {
        if (travels(entry))
            paths.push_back(folder + entry.name);
    }
    return paths;
}

}  // namespace

// Reads half of the number that writeCustomViews stores: streams in the field have it in four bytes.
void RLCameraData::readCustomViews(RLArchive& archive)
{
    std::wstring folder;
    if (archive.archive->isStoring() || !rlu_getRLCustomViewsFolder(&folder))
        return;
    std::int32_t count = 0;
    archive.archive->read(count);
    Destination views(folder);
    for (std::int32_t i = 0; i < count; ++i)
        unpackView(*archive.archive, views);
}

void RLCameraData::readCustomView(RLArchive& archive, const std::wstring& folder)
{
    Destination views(folder);
    unpackView(*archive.archive, views);
}

void RLCameraData::writeCustomViews(RLArchive& archive)
{
    std::wstring folder;
    if (archive.archive->isLoading() || !rlu_getRLCustomViewsFolder(&folder))
        return;
    const std::vector<std::wstring> views = viewsIn(folder);
    archive.archive->write(static_cast<std::uint64_t>(views.size()));
    for (const std::wstring& view : views)
        writeCustomView(archive, view);
}

int RLCameraData::writeCustomView(RLArchive& archive, const std::wstring& path)
{
    const auto file = platform::InputFile::open(path);
    const auto length = platform::fileLength(path);
    if (!file || !length)
        return 0;
    const auto stored = static_cast<std::uint32_t>(*length);
    archive.archive->write(platform::narrow(path));
    archive.archive->write(stored);
    packBytes(*archive.archive, stored, *file);
    return 1;
}
