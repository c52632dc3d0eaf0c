// No pictures on the machine in memory, and nothing that could be saved there.
#include "raylume/platform/Folders.h"
#include "raylume/platform/Images.h"
#include "raylume/platform/Memory.h"

namespace platform {

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

std::vector<std::wstring> matchingNames(const std::wstring&)
{
    return {};
}

void deleteFilesInOwnFolder(const std::wstring&)
{
}

bool removeFolder(const std::wstring&)
{
    return false;
}

std::optional<FolderState> ownFolderState(const std::wstring&)
{
    return std::nullopt;
}

SaveFile saveInOwnFolder(const std::wstring&, const std::wstring&,
                         std::span<const std::span<const unsigned char>>, IfTaken,
                         std::optional<FolderState>*)
{
    return SaveFile::kFailed;
}

}  // namespace platform
