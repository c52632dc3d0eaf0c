#include "raylume/services/TemporaryFiles.h"

#include "raylume/platform/Environment.h"
#include "raylume/platform/Files.h"

std::wstring getProcessTempFolder(bool perProcess)
{
    const auto base = platform::temporaryFolderVariable();
    if (!base) {
        return {};
    }
    if (!perProcess) {
        return *base + L"\\";
    }
    const std::wstring folder = *base + L"\\rlx" + std::to_wstring(platform::processId());
    if (platform::pathKind(folder) == platform::PathKind::kNothing) {
        platform::makeFolder(folder);
    }
    return folder + L"\\";
}

std::wstring getTemporaryFilePath(const std::wstring& fileName, bool perProcess)
{
    const std::wstring folder = getProcessTempFolder(perProcess);
    return folder.empty() ? std::wstring() : folder + fileName;
}
