// Capture of tessellations, and the assembly translation, beside what they cannot do without.
//
//   capture/<faces>      10 million vertices in that many faces: positions and normals interleaved, boxes
//                        grown. "ratio" is memcpy's time for the same bytes, in the same run, over ours
//                        (1: as fast as memcpy; reads plus writes are the same for both).
//   assembly/<instances> the two passes over components of 100 parts; "ns_per_component".
#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <map>
#include <memory>
#include <new>
#include <string>
#include <vector>

#include "raylume/load/AssemblyTranslation.h"
#include "raylume/load/TessellationCapture.h"
#include "raylume/scene/dlModel.h"

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::size_t kVertices = 10'000'000;
constexpr std::size_t kStripLength = 500;

double secondsSince(Clock::time_point start)
{
    return std::chrono::duration<double>(Clock::now() - start).count();
}

// Deterministic numbers in no order, so that the boxes move as in real parts.
std::vector<float> scatteredFloats(std::size_t count)
{
    std::vector<float> values(count);
    std::uint32_t state = 1;
    for (float& value : values) {
        state = state * 1664525u + 1013904223u;
        value = static_cast<float>(state >> 8) / 1048576.0f;
    }
    return values;
}

// One part of one body whose faces share two arrays.
class Tessellation {
public:
    explicit Tessellation(std::size_t faceCount)
        : points_(scatteredFloats(3 * kVertices)),
          normals_(scatteredFloats(3 * kVertices)),
          lengths_(kVertices / faceCount / kStripLength, static_cast<std::int32_t>(kStripLength)),
          faces_(faceCount),
          facePointers_(faceCount)
    {
        for (std::size_t face = 0; face < faceCount; ++face)
            fill(face);
        body_.faces.data = facePointers_.data();
        body_.faces.count = static_cast<long long>(faceCount);
        bodyPointer_ = &body_;
        part_.bodies.data = &bodyPointer_;
        part_.bodies.count = 1;
    }

    uoTempPartTessData_c& part() { return part_; }
    const float* points() const { return points_.data(); }
    const float* normals() const { return normals_.data(); }

private:
    void fill(std::size_t face)
    {
        const std::size_t floats = 3 * lengths_.size() * kStripLength;
        uoTempFaceTessData_c& data = faces_[face];
        data.stripCount = static_cast<std::int32_t>(lengths_.size());
        data.stripLengths = {lengths_.data(), static_cast<long long>(lengths_.size())};
        data.points = {points_.data() + face * floats, static_cast<long long>(floats)};
        data.normals = {normals_.data() + face * floats, static_cast<long long>(floats)};
        facePointers_[face] = &data;
    }

    std::vector<float> points_;
    std::vector<float> normals_;
    std::vector<std::int32_t> lengths_;
    std::vector<uoTempFaceTessData_c> faces_;
    std::vector<uoTempFaceTessData_c*> facePointers_;
    uoTempBodyTessData_c body_;
    uoTempBodyTessData_c* bodyPointer_ = nullptr;
    uoTempPartTessData_c part_;
};

// Two warm arrays, filled by memcpy from the same sources.
class CopyLimit {
public:
    explicit CopyLimit(const Tessellation& source)
        : source_(source), points_(3 * kVertices), normals_(3 * kVertices)
    {
    }

    double run()
    {
        const auto start = Clock::now();
        std::memcpy(points_.data(), source_.points(), points_.size() * sizeof(float));
        std::memcpy(normals_.data(), source_.normals(), normals_.size() * sizeof(float));
        benchmark::DoNotOptimize(points_.data());
        benchmark::DoNotOptimize(normals_.data());
        benchmark::ClobberMemory();
        return secondsSince(start);
    }

private:
    const Tessellation& source_;
    std::vector<float> points_;
    std::vector<float> normals_;
};

double captureOnce(Tessellation& source)
{
    dlPart part;
    const auto start = Clock::now();
    capturePart(part, source.part(), 0);
    benchmark::DoNotOptimize(part.bodies);
    benchmark::ClobberMemory();
    return secondsSince(start);
}

void capture(benchmark::State& state)
{
    Tessellation source(static_cast<std::size_t>(state.range(0)));
    CopyLimit limit(source);
    captureOnce(source);  // From here on the arrays come from pages that were touched before.
    limit.run();
    double captured = 0;
    double copied = 0;
    for (auto _ : state) {
        const double seconds = captureOnce(source);
        state.SetIterationTime(seconds);
        captured += seconds;
        copied += limit.run();
    }
    const double bytes = 2.0 * 6 * sizeof(float) * kVertices;
    state.counters["ratio"] = copied / captured;
    state.counters["GB_per_s"] = bytes * static_cast<double>(state.iterations()) / captured / 1e9;
    state.counters["memcpy_GB_per_s"] = bytes * static_cast<double>(state.iterations()) / copied / 1e9;
}
BENCHMARK(capture)->Arg(1)->Arg(10)->Arg(100)->Arg(1000)->Arg(10000)->UseManualTime()->Unit(
    benchmark::kMillisecond);

// ------------------------------------------------------------------------------------- assemblies

// Components in five levels, in the order of their tree, over 100 parts without geometry.
class Assembly {
public:
    explicit Assembly(std::size_t count) : parts_(100), components_(count), pointers_(count)
    {
        for (std::size_t index = 0; index < count; ++index) {
            uoTempAssemblySHDData_c& component = components_[index];
            component.name = nameOf(index);
            component.configName = L"standard";
            component.tessData = &parts_[index % parts_.size()];
            component.xform.translation = mgVector_c(static_cast<double>(index), 0, 0);
            pointers_[index] = &component;
        }
        document.components.data = pointers_.data();
        document.components.count = static_cast<long long>(count);
    }

    const std::vector<uoTempAssemblySHDData_c>& components() const { return components_; }

    OVDLAssemblyDocument document;

private:
    static std::wstring token(const wchar_t* name, std::size_t number, const wchar_t* owner)
    {
        return name + std::to_wstring(number) + owner;
    }

    static std::wstring nameOf(std::size_t index)
    {
        return token(L"line-", index / 20000 + 1, L"@plant/") +
               token(L"station-", index / 2000 % 10 + 1, L"@line/") +
               token(L"cell-", index / 200 % 10 + 1, L"@station/") +
               token(L"unit-", index / 20 % 10 + 1, L"@cell/") + token(L"bolt-", index % 20 + 1, L"@unit");
    }

    std::vector<uoTempPartTessData_c> parts_;
    std::vector<uoTempAssemblySHDData_c> components_;
    std::vector<uoTempAssemblySHDData_c*> pointers_;
};

double translateOnce(Assembly& assembly)
{
    const auto model = std::make_unique<dlModel>();
    const auto start = Clock::now();
    translateAssemblyDocument(*model, assembly.document, L"plant.doc", assembly.document.components);
    benchmark::DoNotOptimize(model->instances);
    return secondsSince(start);
}

// What no translation can do without: a map node and an instance for each component, and the bytes of
// its texts.
double keepNamesOnce(const Assembly& assembly)
{
    const auto model = std::make_unique<dlModel>();
    const auto start = Clock::now();
    const auto& components = assembly.components();
    model->instances = new dlInstance[components.size()];
    for (std::size_t index = 0; index < components.size(); ++index) {
        const uoTempAssemblySHDData_c& component = components[index];
        model->componentXforms.emplace_hint(model->componentXforms.end(), component.name,
                                            dlComponentXform());
        model->instances[index].name.assign(component.name.begin(), component.name.end());
    }
    benchmark::DoNotOptimize(model->instances);
    return secondsSince(start);
}

void assembly(benchmark::State& state)
{
    Assembly source(static_cast<std::size_t>(state.range(0)));
    translateOnce(source);
    keepNamesOnce(source);
    double translated = 0;
    double kept = 0;
    for (auto _ : state) {
        const double seconds = translateOnce(source);
        state.SetIterationTime(seconds);
        translated += seconds;
        kept += keepNamesOnce(source);
    }
    const auto components = static_cast<double>(state.iterations() * state.range(0));
    state.counters["ns_per_component"] = translated / components * 1e9;
    state.counters["ratio"] = kept / translated;
}
BENCHMARK(assembly)->Arg(10000)->Arg(100000)->UseManualTime()->Unit(benchmark::kMillisecond);

}  // namespace

// ------------------------------------------------------------------------------------- warm pages

// Arrays come from pages that were used before, so that the time of the page faults, which say
// more about the system than about the capture, is left out.
namespace {

constexpr std::size_t kKeptFrom = std::size_t{1} << 12;
constexpr std::size_t kHeader = 64;

using Blocks = std::vector<char*>;

// Never destroyed: arrays are freed until the very end.
Blocks& keptBlocks(std::size_t size)
{
    static auto* blocks = new std::map<std::size_t, Blocks>;
    return (*blocks)[size];
}

char* takeKept(std::size_t size)
{
    Blocks& blocks = keptBlocks(size);
    if (blocks.empty())
        return nullptr;
    char* block = blocks.back();
    blocks.pop_back();
    return block;
}

}  // namespace

void* operator new[](std::size_t size)
{
    char* block = size >= kKeptFrom ? takeKept(size) : nullptr;
    if (!block)
        block = static_cast<char*>(std::malloc(kHeader + size));
    if (!block)
        throw std::bad_alloc();
    std::memcpy(block, &size, sizeof size);
    return block + kHeader;
}

void operator delete[](void* array) noexcept
{
    if (!array)
        return;
    char* block = static_cast<char*>(array) - kHeader;
    std::size_t size = 0;
    std::memcpy(&size, block, sizeof size);
    if (size >= kKeptFrom)
        keptBlocks(size).push_back(block);
    else
        std::free(block);
}

void operator delete[](void* array, std::size_t) noexcept
{
    operator delete[](array);
}

BENCHMARK_MAIN();
