// No pictures on the machine in memory; what is saved there is a name without content.
#include "raylume/platform/Folders.h"
#include "raylume/platform/Images.h"
#include "raylume/platform/Memory.h"
#include "raylume/platform/posix/NamePattern.h"
#include "tests/memory_platform/MemoryPlatform.h"

namespace platform {

using memory_platform::machine;
using memory_platform::tidyPath;

ImageFile::ImageFile() = default;
ImageFile::~ImageFile() = default;

std::unique_ptr<ImageFile> ImageFile::open(const std::wstring&)
{
    return nullptr;
}

std::optional<BmpHeader> bmpHeader(ImageSize)
{
    return std::nullopt;
}

void prepareForFilling(void*, std::size_t)
{
}

std::vector<std::wstring> matchingNames(const std::wstring& path)
{
    machine().listings.push_back(path);
    const std::wstring folder = tidyPath(path.substr(0, lastComponent(path)));
    const NamePattern pattern(std::wstring_view(path).substr(lastComponent(path)));
    std::vector<std::wstring> names;
    for (const auto& [entry, kind] : machine().entries) {
        const std::wstring name = entry.substr(lastComponent(entry));
        if (tidyPath(entry.substr(0, lastComponent(entry))) == folder && pattern.matches(name)) {
            names.push_back(name);
        }
    }
    return names;
}

void deleteFilesInOwnFolder(const std::wstring&)
{
}

bool removeFolder(const std::wstring&)
{
    return false;
}

std::optional<FolderState> ownFolderState(const std::wstring& folder)
{
    const auto found = machine().entries.find(tidyPath(folder));
    if (found == machine().entries.end() || found->second != PathKind::kFolder) {
        return std::nullopt;
    }
    return FolderState{machine().device, 1, machine().changes[tidyPath(folder)], 0};
}

namespace {

SaveFile nextOutcome(const std::wstring& path, IfTaken ifTaken)
{
    auto& scripted = machine().saveOutcomes;
    if (!scripted.empty()) {
        const SaveFile outcome = scripted.front();
        scripted.pop_front();
        return outcome;
    }
    const bool isTaken = machine().entries.count(tidyPath(path)) != 0;
    return isTaken && ifTaken == IfTaken::kLeave ? SaveFile::kNameTaken : SaveFile::kSaved;
}

}  // namespace

SaveFile saveInOwnFolder(const std::wstring& folder, const std::wstring& name,
                         std::span<const std::span<const unsigned char>>, IfTaken ifTaken,
                         std::optional<FolderState>* state)
{
    const SaveFile outcome = nextOutcome(folder + name, ifTaken);
    if (outcome == SaveFile::kSaved) {
        machine().addFile(folder + name);
        *state = machine().saveTellsState ? ownFolderState(folder) : std::nullopt;
    }
    return outcome;
}

}  // namespace platform
