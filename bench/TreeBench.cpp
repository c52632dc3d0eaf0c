// The component tree of assemblies with five levels, each model fresh from its translation. Times are
// medians of the processor's, and of the call alone.
//   limit: what no tree can do without, one walk over the instances that puts their leaf names in place
//   ratio: the median of the tree over the median of that limit
//   ns_per_instance, growth: the time of one instance, and that over the one of the smallest model

#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "Timing.h"
#include "raylume/scene/dlModel.h"

namespace {

using Levels = std::array<int, 5>;

// Fan-outs from the top down. Ten thousand is one branch of the next larger.
Levels levelsFor(std::int64_t instances)
{
    if (instances == 10'000)
        return {1, 10, 10, 10, 10};
    if (instances == 100'000)
        return {10, 10, 10, 10, 10};
    return {10, 10, 10, 10, 100};
}

// All names of a subtree, as a reader walks it: depth first.
void addNames(std::vector<std::string>& names, const Levels& levels, std::size_t level,
              const std::string& path, const std::string& owner)
{
    for (int i = 1; i <= levels[level]; ++i) {
        const std::string component = "component" + std::to_string(level) + "-" + std::to_string(i);
        const std::string token = path + component + "@" + owner;
        if (level + 1 == levels.size())
            names.push_back(token);
        else
            addNames(names, levels, level + 1, token + "/", component);
    }
}

constexpr int kPartCount = 100;

void addParts(dlModel& model, std::vector<dlPart*>& parts)
{
    const float corners[2][3] = {{-1, -2, -3}, {1, 2, 3}};
    for (std::uintptr_t key = 1; key <= kPartCount; ++key) {
        parts.push_back(new dlPart);
        parts.back()->bbox.addPoint(corners[0]);
        parts.back()->bbox.addPoint(corners[1]);
        model.addDLPart(reinterpret_cast<void*>(key), parts.back(), 0);
    }
}

std::unique_ptr<dlModel> modelOf(const std::vector<std::string>& names)
{
    auto model = std::make_unique<dlModel>();
    std::vector<dlPart*> parts;
    addParts(*model, parts);
    model->instanceCount = static_cast<std::int32_t>(names.size());
    model->instances = new dlInstance[names.size()];
    for (std::size_t i = 0; i < names.size(); ++i) {
        dlInstance& instance = model->instances[i];
        instance.name = names[i];
        instance.configName = "Default";
        instance.part = parts[i % parts.size()];
        instance.xform.m[12] = static_cast<float>(i);
    }
    return model;
}

double secondsOfTree(const std::vector<std::string>& names)
{
    const auto model = modelOf(names);
    const double seconds = bench::secondsOfProcessor([&] { model->createAssemblyHierarchy(); });
    if (model->assemblyRoot->subtreeCount != model->instanceCount)
        std::abort();
    return seconds;
}

double secondsOfLeafNames(const std::vector<std::string>& names)
{
    const auto model = modelOf(names);
    return bench::secondsOfProcessor([&] {
        for (std::int32_t i = 0; i < model->instanceCount; ++i) {
            dlInstance& instance = model->instances[i];
            instance.leafName.assign(instance.name, instance.name.rfind('/') + 1);
        }
        benchmark::DoNotOptimize(model->instances);
    });
}

// Seconds an instance of the smallest model, by order of the instances.
std::map<bool, double>& smallest()
{
    static std::map<bool, double> seconds;
    return seconds;
}

void compare(benchmark::State& state, const std::vector<std::string>& names, bool shuffled)
{
    std::vector<double> trees, limits;
    for (auto _ : state) {
        limits.push_back(secondsOfLeafNames(names));
        trees.push_back(secondsOfTree(names));
        state.SetIterationTime(trees.back());
    }
    const double perInstance = bench::median(trees) / static_cast<double>(names.size());
    smallest().try_emplace(shuffled, perInstance);
    state.counters["ns_per_instance"] = perInstance * 1e9;
    state.counters["growth"] = perInstance / smallest()[shuffled];
    state.counters["limit_ms"] = bench::median(limits) * 1e3;
    state.counters["ratio"] = bench::median(trees) / bench::median(limits);
}

void tree(benchmark::State& state, bool shuffled)
{
    std::vector<std::string> names;
    addNames(names, levelsFor(state.range(0)), 0, "", "top");
    if (static_cast<std::int64_t>(names.size()) != state.range(0))
        std::abort();
    if (shuffled)
        std::shuffle(names.begin(), names.end(), std::mt19937(1));
    compare(state, names, shuffled);
}
BENCHMARK_CAPTURE(tree, depth_first, false)
    ->Arg(10'000)
    ->Arg(100'000)
    ->Arg(1'000'000)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(9);
BENCHMARK_CAPTURE(tree, shuffled, true)
    ->Arg(10'000)
    ->Arg(100'000)
    ->Arg(1'000'000)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(9);

}  // namespace

BENCHMARK_MAIN();
