// Whole loads of generated glTF documents, each beside what it cannot do without, in one run:
//   grids: a read of the file into fresh pages, plus the bare stripification of the same indices
//   tree: nlohmann-json's parse of the same JSON
// `ratio` is the median of the load over the median of that limit.

#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <meshoptimizer.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <nlohmann/json.hpp>
#include <vector>

#include "Timing.h"
#include "bench/GeneratedGltf.h"
#include "raylume/scene/dlModel.h"

namespace {

void readIntoFreshPages(const std::string& path)
{
    const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    struct stat status;
    if (file < 0 || fstat(file, &status) != 0)
        std::abort();
    const auto size = static_cast<std::size_t>(status.st_size);
    void* pages = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (pages == MAP_FAILED)
        std::abort();
    std::size_t done = 0;
    while (done < size) {
        const ssize_t got = read(file, static_cast<char*>(pages) + done, size - done);
        if (got <= 0)
            std::abort();
        done += static_cast<std::size_t>(got);
    }
    benchmark::DoNotOptimize(static_cast<char*>(pages)[size / 2]);
    munmap(pages, size);
    close(file);
}

void stripify(const bench::GeneratedGltf& file)
{
    std::vector<unsigned int> strip(meshopt_stripifyBound(file.indices.size()));
    for (std::size_t part = 0; part < file.parts; ++part)
        benchmark::DoNotOptimize(meshopt_stripify(strip.data(), file.indices.data(), file.indices.size(),
                                                  file.verticesOfPart, ~0u));
}

// Of the call alone: a host keeps the model, so its destruction is not part of a load.
double secondsOfLoad(const std::string& path)
{
    std::unique_ptr<dlModel> model;
    const double seconds = bench::secondsOnClock([&] { model.reset(dlModel::ReadModel(path.c_str())); });
    if (!model || model->loadRejected || model->instanceCount == 0)
        std::abort();
    return seconds;
}

double secondsOfParse(const std::string& json)
{
    nlohmann::json document;
    const double seconds = bench::secondsOnClock([&] { document = nlohmann::json::parse(json); });
    if (document.empty())
        std::abort();
    return seconds;
}

// Takes the seconds of load and limit in turn, so that a machine that slows down slows both.
template <class Load, class Limit>
void compare(benchmark::State& state, Load load, Limit limit)
{
    std::vector<double> loads, limits;
    load();
    for (auto _ : state) {
        limits.push_back(limit());
        loads.push_back(load());
        state.SetIterationTime(loads.back());
    }
    state.counters["load_ms"] = bench::median(loads) * 1e3;
    state.counters["limit_ms"] = bench::median(limits) * 1e3;
    state.counters["ratio"] = bench::median(loads) / bench::median(limits);
}

void grids(benchmark::State& state)
{
    const auto parts = static_cast<std::size_t>(state.range(0));
    const bench::GeneratedGltf file = bench::makeGrids(parts, 100'000);
    compare(
        state, [&] { return secondsOfLoad(file.path); },
        [&] {
            return bench::secondsOnClock([&] {
                readIntoFreshPages(file.path);
                stripify(file);
            });
        });
    std::remove(file.path.c_str());
}
BENCHMARK(grids)->Arg(10)->Arg(100)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(7);

void tree(benchmark::State& state)
{
    const bench::GeneratedGltf file = bench::makeTree();
    compare(
        state, [&] { return secondsOfLoad(file.path); }, [&] { return secondsOfParse(file.json); });
    std::remove(file.path.c_str());
}
BENCHMARK(tree)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(15);

}  // namespace

BENCHMARK_MAIN();
