// Any text as a path, a path on a drive and a pattern; ends the process where a promise of the path
// layer is broken.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

#include "raylume/platform/HostSetup.h"
#include "raylume/platform/Paths.h"
#include "raylume/platform/Text.h"
#include "raylume/platform/posix/NamePattern.h"

namespace {

void require(bool condition)
{
    if (!condition) {
        std::abort();
    }
}

// A folder of the process's own with one drive in it.
class Drives {
public:
    Drives()
    {
        std::string pattern = (std::filesystem::temp_directory_path() / "raylume-fuzz-XXXXXX").string();
        require(mkdtemp(pattern.data()) != nullptr);
        path_ = pattern;
        std::filesystem::create_directories(path_ + "/c:/Jobs/Maps");
        std::ofstream(path_ + "/c:/Jobs/Maps/Oak.jpg");
        std::ofstream(path_ + "/c:/Jobs/oak.JPG");
        platform::setEnvironmentVariable("RAYLUME_DRIVES", path_);
    }
    ~Drives()
    {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }

    const std::string& path() const { return path_; }

private:
    std::string path_;
};

bool hasStepUp(std::string_view path)
{
    while (!path.empty()) {
        const std::string_view step = path.substr(0, path.find('/'));
        if (step == "..") {
            return true;
        }
        path.remove_prefix(std::min(step.size() + 1, path.size()));
    }
    return false;
}

// No text leads out of its drive, and what a path was taken for is taken for itself.
void checkDrive(const Drives& drives, const std::wstring& text)
{
    const std::string native = platform::nativePath(L"C:\\" + text);
    const std::string root = drives.path() + "/c:";
    require(native.starts_with(root) && (native.size() == root.size() || native[root.size()] == '/'));
    require(!hasStepUp(native));
    require(platform::nativePath(platform::fromUtf8(native)) == native);
}

void checkProbe(const std::wstring& text)
{
    const std::wstring seen = text.substr(0, text.find(L'\0'));
    const bool found = platform::pathMatches(text);
    require(found == platform::pathMatches(seen));
    require(!found || (!seen.empty() && seen.back() != L'\\' && seen.back() != L'/'));
    if (seen.find_first_of(L"*?") == std::wstring::npos && found) {
        require(std::filesystem::exists(platform::nativePath(text)));
    }
}

// The first half as a pattern of the second.
void checkPattern(const std::wstring& text)
{
    const std::wstring name = text.substr(text.size() / 2);
    const platform::NamePattern pattern(text.substr(0, text.size() / 2));
    require(pattern.matches(name) == pattern.matches(platform::toLower(name)));
    require(platform::NamePattern(L"*").matches(name));
    require(platform::NamePattern(L"*.*").matches(name));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const Drives drives;
    const std::wstring text = platform::fromUtf8({reinterpret_cast<const char*>(data), size});
    checkDrive(drives, text);
    checkProbe(text);
    checkProbe(L"C:\\" + text);
    checkPattern(text);
    return 0;
}
