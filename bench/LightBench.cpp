// The light table of a document with as many lights as the table holds.
//   limit: a copy of the table, light by light, which is what handing over ready records would cost
// Both print their lights a second, so the ratio is one over the other.
#include <benchmark/benchmark.h>

#include <memory>
#include <vector>

#include "raylume/lights/LightTranslation.h"
#include "raylume/scene/dlModel.h"

namespace {

constexpr LIGHT_TYPE kTypes[] = {LIGHT_AIMED, LIGHT_POSITIONED, LIGHT_DIRECTIONAL};

struct Document {
    Document() : lights(dlModel::kLightCapacity)
    {
        for (std::size_t i = 0; i < lights.size(); ++i) {
            lights[i].lightType = i + 1 == lights.size() ? LIGHT_SUN : kTypes[i % 3];
            lights[i].lightIndex = static_cast<int>(i);
            lights[i].sourceVectorA[1] = lights[i].sourceVectorB[2] = lights[i].sourceVectorC[0] = 1.0 + i;
            pointers.push_back(&lights[i]);
        }
        array.data = pointers.data();
        array.count = static_cast<long long>(pointers.size());
    }

    std::vector<moLight_c> lights;
    std::vector<moLight_c*> pointers;
    ovPointerArray<moLight_c> array;
};

void translateTable(benchmark::State& state)
{
    Document document;
    const auto model = std::make_unique<dlModel>();
    for (auto _ : state) {
        translateLights(*model, &document.array, nullptr);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * dlModel::kLightCapacity);
}
BENCHMARK(translateTable);

void copyTable(benchmark::State& state)
{
    Document document;
    const auto from = std::make_unique<dlModel>();
    const auto to = std::make_unique<dlModel>();
    translateLights(*from, &document.array, nullptr);
    for (auto _ : state) {
        for (int i = 0; i < dlModel::kLightCapacity; ++i)
            to->lights[i] = from->lights[i];
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * dlModel::kLightCapacity);
}
BENCHMARK(copyTable);

}  // namespace

BENCHMARK_MAIN();
