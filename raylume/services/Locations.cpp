#include "raylume/services/Locations.h"

#include "raylume/platform/HostProgram.h"
#include "raylume/platform/Paths.h"
#include "raylume/services/FolderProbes.h"
#include "raylume/services/HostPaths.h"
#include "raylume/services/Registry.h"

std::wstring g_dataDir;

namespace {

constexpr std::size_t kRootBuffer = 0x104;
constexpr std::size_t kSecondBuffer = 0x200;
constexpr const wchar_t* kSharedData = L"\\orvwrk\\DATA";

std::wstring stripComponents(std::wstring path, int count)
{
    for (int i = 0; i < count; ++i) {
        path = stripLastPathComponent(path);
    }
    return path;
}

void resolveBelow(const std::wstring& root)
{
    const std::wstring own = root + L"\\Data";
    if (isExistingDirectory(own)) {
        g_dataDir = own;
        return;
    }
    const std::wstring shared = stripComponents(root, 2) + kSharedData;
    if (isExistingDirectory(shared)) {
        g_dataDir = shared;
    }
}

// The test is of the executable's path and not of the folder that is stored, and that is meant: it
// fails unless something very odd runs, so that an executable near the top of the tree has no data.
void resolveWithoutRoot()
{
    const std::wstring executable = platform::hostProgramPath(kSecondBuffer);
    if (isExistingDirectory(executable)) {
        g_dataDir = stripComponents(executable, 4) + kSharedData;
    }
}

}  // namespace

std::wstring stripLastPathComponent(const std::wstring& path)
{
    const std::size_t separator = path.find_last_of(L"\\/");
    return separator == std::wstring::npos ? path : path.substr(0, separator);
}

std::wstring getHostInstallRoot()
{
    return stripComponents(platform::hostProgramPath(kRootBuffer), 2);
}

std::wstring rlu_getDataDir()
{
    if (!g_dataDir.empty()) {
        return g_dataDir;
    }
    const std::wstring root = getHostInstallRoot();
    if (root.empty()) {
        resolveWithoutRoot();
    } else {
        resolveBelow(root);
    }
    return g_dataDir;
}

bool rlu_isMeridian5App()
{
    return true;
}

bool rlu_useDefaultShaderForCorruptR2M()
{
    std::wstring text;
    std::int32_t number = 0;
    double real = 0.0;
    const int read = readHostRegistryValue(L"Raylume", L"Repair Custom Appearance", kRegistryNumber, text,
                                           number, real, 0);
    return read != 0 && number > 0;
}

std::string rlu_nativePath(const std::wstring& text)
{
    return platform::nativePath(text);
}
