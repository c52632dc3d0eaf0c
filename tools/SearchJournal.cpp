#include "tools/SearchJournal.h"

#include <algorithm>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <system_error>
#include <utility>

#include "raylume/platform/Environment.h"
#include "raylume/platform/Text.h"
#include "raylume/services/Locations.h"

namespace tool {
namespace {

constexpr std::size_t kMostProbesKept = 200000;
constexpr std::size_t kMostSearches = 1000000;

// As the library names its folder for temporary files.
std::wstring processFolder()
{
    const auto base = platform::temporaryFolderVariable();
    return base ? *base + L"\\rlx" + std::to_wstring(platform::processId()) + L"\\" : std::wstring();
}

// "7.bmp" is 7, what is no number is 0. Names are compared without case.
int numberOf(const std::filesystem::path& file)
{
    constexpr int kLargest = 2147483646;
    const std::wstring name = platform::toLower(platform::fromUtf8(file.filename().string()));
    const std::size_t ending = name.find(L".bmp");
    if (ending == std::wstring::npos)
        return 0;
    const long long number = std::strtoll(platform::toUtf8(name.substr(0, ending)).c_str(), nullptr, 10);
    return static_cast<int>(std::clamp<long long>(number, 0, kLargest));
}

int highestNumberIn(const std::wstring& folder)
{
    int highest = 0;
    std::error_code failed;
    std::filesystem::directory_iterator entry(rlu_nativePath(folder), failed);
    for (; !failed && entry != std::filesystem::directory_iterator(); entry.increment(failed))
        highest = std::max(highest, numberOf(entry->path()));
    return highest;
}

bool exists(const std::string& path)
{
    std::error_code failed;
    return std::filesystem::exists(path, failed);
}

}  // namespace

std::string BitmapNumbers::path() const
{
    return rlu_nativePath(folder_ + std::to_wstring(number_) + L".bmp");
}

std::string BitmapNumbers::next()
{
    const std::wstring folder = processFolder();
    if (folder.empty())
        return {};
    if (!isFor(folder)) {
        folder_ = folder;
        number_ = highestNumberIn(folder) + 1;
    }
    while (exists(path()))
        ++number_;
    return path();
}

SearchJournal::SearchJournal()
    : before_(rlu_observeTextureSearches([this](const TextureSearchRecord& record) { add(record); }))
{
}

SearchJournal::~SearchJournal()
{
    rlu_observeTextureSearches(std::move(before_));
}

// An observer must not raise; a report that lacks a search is better than a load that fails for it.
void SearchJournal::add(const TextureSearchRecord& record)
{
    try {
        if (searches_.size() >= kMostSearches)
            return;
        LoadSearch search{record, record.type == TextureImageDecal ? numbers_.next() : std::string()};
        if (probesKept_ + record.probes.size() > kMostProbesKept)
            search.record.probes.clear();
        probesKept_ += search.record.probes.size();
        searches_.push_back(std::move(search));
    } catch (const std::exception&) {
    }
}

}  // namespace tool
