// The search of 10,000 missing textures of an appearance, from the public entry on: its probes, a side
// file and the user's settings read anew for each.
//   probes_per_second: paths that a search tried, in one second of the clock
//   limit_per_second: bare stat calls on the native paths of the same probes, in the same run
//   ratio: the median time of the searches over the median time of those calls
//   probe_ratio: the same for the probes alone, without reading the side file and the settings

#include <benchmark/benchmark.h>
#include <sys/stat.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include "Timing.h"
#include "raylume/platform/HostSetup.h"
#include "raylume/platform/Paths.h"
#include "raylume/services/TextureSearch.h"
#include "raylume/services/TextureSearchLog.h"

namespace {

constexpr int kTextures = 10'000;

// One drive with a document's folder of `files` entries, a side file beside the document, and an empty
// current folder.
class Drives {
public:
    explicit Drives(int files)
    {
        std::string pattern = (std::filesystem::temp_directory_path() / "raylume-bench-XXXXXX").string();
        if (!mkdtemp(pattern.data())) {
            std::abort();
        }
        path_ = pattern;
        for (const char* folder : {"c:/jobs/doc", "c:/maps", "c:/more", "here", "app/Data"}) {
            std::filesystem::create_directories(path_ / folder);
        }
        for (int i = 0; i < files; ++i) {
            std::ofstream(path_ / "c:/jobs/doc" / ("Image" + std::to_string(i) + ".png"));
        }
        std::ofstream(path_ / "c:/jobs/doc/__ImageLocations__.txt")
            << "CUSTOM_APPEARANCE_FOLDERS\tC:\\maps;C:\\more\nDEFAULT_COLOR\t255\n";
        platform::setEnvironmentVariable("RAYLUME_DRIVES", path_.string());
        platform::setEnvironmentVariable("RAYLUME_HOST", (path_ / "app/bin/host").string());
        platform::setEnvironmentVariable("RAYLUME_REGISTRY", (path_ / "none.reg").string());
        std::filesystem::current_path(path_ / "here");
        // Folders that just changed are listed each time.
        std::this_thread::sleep_for(std::chrono::milliseconds(2100));
    }
    ~Drives()
    {
        std::error_code ignored;
        std::filesystem::current_path(std::filesystem::temp_directory_path(), ignored);
        std::filesystem::remove_all(path_, ignored);
    }

private:
    std::filesystem::path path_;
};

void searchAll()
{
    for (int i = 0; i < kTextures; ++i) {
        const std::wstring stored = L"C:\\gone\\textures\\Missing" + std::to_wstring(i) + L".png";
        if (rlu_getTextureFilename(stored, "C:\\jobs\\doc\\", TextureImageAppearance, L"").empty()) {
            std::abort();
        }
    }
}

std::vector<std::wstring> probesOfAll()
{
    std::vector<std::wstring> probes;
    const auto before = rlu_observeTextureSearches([&](const TextureSearchRecord& search) {
        if (search.found) {
            std::abort();
        }
        for (const TextureProbe& probe : search.probes) {
            probes.push_back(probe.path);
        }
    });
    searchAll();
    rlu_observeTextureSearches(before);
    return probes;
}

int countExisting(const std::vector<std::string>& natives)
{
    int count = 0;
    for (const std::string& native : natives) {
        struct stat status;
        count += stat(native.c_str(), &status) == 0;
    }
    return count;
}

void missingTextures(benchmark::State& state)
{
    const Drives drives(static_cast<int>(state.range(0)));
    const std::vector<std::wstring> probes = probesOfAll();
    std::vector<std::string> natives;
    for (const std::wstring& probe : probes) {
        natives.push_back(platform::nativePath(probe));
    }
    std::vector<double> searches, bareProbes, limits;
    for (auto _ : state) {
        limits.push_back(bench::secondsOnClock([&] { benchmark::DoNotOptimize(countExisting(natives)); }));
        bareProbes.push_back(bench::secondsOnClock([&] {
            for (const std::wstring& probe : probes) {
                benchmark::DoNotOptimize(platform::pathMatches(probe));
            }
        }));
        searches.push_back(bench::secondsOnClock(searchAll));
        state.SetIterationTime(searches.back());
    }
    const auto count = static_cast<double>(probes.size());
    state.counters["probes"] = count;
    state.counters["probes_per_second"] = count / bench::median(searches);
    state.counters["limit_per_second"] = count / bench::median(limits);
    state.counters["ratio"] = bench::median(searches) / bench::median(limits);
    state.counters["probe_ratio"] = bench::median(bareProbes) / bench::median(limits);
}
BENCHMARK(missingTextures)
    ->Arg(10)
    ->Arg(10'000)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(9);

}  // namespace

BENCHMARK_MAIN();
