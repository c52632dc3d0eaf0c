// Any bytes as both image side files; ends the process where a promise of their readers is broken.
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "raylume/platform/HostSetup.h"
#include "raylume/platform/Text.h"
#include "raylume/services/AppearanceLists.h"
#include "raylume/services/IgnoredImages.h"
#include "raylume/services/SideFile.h"
#include "raylume/services/TextureSearch.h"
#include "raylume/services/TextureSearchLog.h"

namespace {

void require(bool condition)
{
    if (!condition) {
        std::abort();
    }
}

// A folder of the process's own with one drive.
class Folder {
public:
    Folder()
    {
        std::string pattern = (std::filesystem::temp_directory_path() / "raylume-fuzz-XXXXXX").string();
        require(mkdtemp(pattern.data()) != nullptr);
        path_ = pattern;
        std::filesystem::create_directories(path_ / "c:/docs");
        std::filesystem::create_directories(path_ / "c:/maps");
        std::ofstream(path_ / "c:/maps/found.png");
        platform::setEnvironmentVariable("RAYLUME_DRIVES", path_.string());
        platform::setEnvironmentVariable("RAYLUME_REGISTRY", (path_ / "none.reg").string());
    }
    ~Folder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }

    void write(const char* name, const std::uint8_t* data, std::size_t size) const
    {
        std::ofstream(path_ / "c:/docs" / name, std::ios::binary)
            .write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
    }

private:
    std::filesystem::path path_;
};

// A file of so many bytes has at most that many folders, and each is tried at most twice.
void searchFor(const std::wstring& leaf, TextureImageType type, std::size_t size)
{
    std::wstring result;
    const int found =
        findFile((L"C:\\gone\\" + leaf).c_str(), L"C:\\data", L"C:\\docs\\", type, &result, L"");
    require(found == 0 || result.ends_with(leaf) || type == TextureImageDecal);
    std::size_t probes = 0;
    const auto before = rlu_observeTextureSearches([&](const auto& search) { probes = search.probeCount; });
    findFile((L"C:\\gone\\" + leaf).c_str(), L"C:\\data", L"C:\\docs\\", type, &result, L"");
    rlu_observeTextureSearches(before);
    require(probes <= 8 + 2 * size);
}

void checkLines()
{
    SideFile file(L"C:\\docs\\__IgnoredImages__.txt");
    while (const auto line = file.nextLine()) {
        require(line->size() <= SideFile::kLongestLine);
        require(line->find(L'\n') == std::wstring::npos);
    }
}

void checkList()
{
    rlu_PopulateIgnoredMissingImagesList("C:\\docs\\");
    for (const std::wstring& name : g_ignoredImages) {
        require(name == platform::toLower(name));
        require(rlu_IsInIgnoredMissingImagesList(name));
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const Folder folder;
    folder.write("__ImageLocations__.txt", data, size);
    folder.write("__IgnoredImages__.txt", data, size);
    checkLines();
    checkList();
    require(rlu_GetDefaultAppearanceCol(L"C:\\docs\\") <= 0xFFFFFF);
    for (int type = 0; type < 4; ++type) {
        searchFor(L"found.png", TextureImageType(type), size);
    }
    return 0;
}
