// Masks and decals beside what they cannot do without.
//
//   cutOut/<colours>/<noise>
//     2048 x 2048 pixels, each compared with that many colours: all pixels different (noise 1), or in
//     areas of one colour, as images are (noise 0)
//   maskImage/<side>
//     2048 x 2048 pixels take their alpha from a mask of that side
//   records/<faces>
//     10,000 records of one decal on a part of that many faces
//
// "ratio" is the time over memcpy's for the pixels, "walk" that over finding the faces alone by walking the
// part for each record; both in the same run. Times are those of the processor; ratios are of medians.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <list>
#include <random>
#include <string>
#include <vector>

#include "Timing.h"
#include "raylume/appearance/DecalTranslation.h"
#include "raylume/appearance/MaskImages.h"
#include "raylume/load/ReaderInterface.h"
#include "raylume/scene/dlDecal.h"
#include "raylume/scene/dlInstance.h"
#include "raylume/scene/dlPart.h"

namespace {

constexpr int kSide = 2048;
constexpr std::size_t kPixels = std::size_t{kSide} * kSide;
constexpr int kRecords = 10'000;

std::vector<unsigned char> noise(std::size_t pixels)
{
    std::mt19937 random(1);
    std::vector<unsigned char> bytes(4 * pixels);
    for (unsigned char& byte : bytes)
        byte = static_cast<unsigned char>(random());
    return bytes;
}

// Areas of 64 by 64 pixels.
std::vector<unsigned char> areas()
{
    std::vector<unsigned char> bytes(4 * kPixels);
    for (std::size_t pixel = 0; pixel < kPixels; ++pixel) {
        const std::size_t x = pixel % kSide / 64;
        const std::size_t y = pixel / kSide / 64;
        bytes[4 * pixel] = static_cast<unsigned char>(8 * x);
        bytes[4 * pixel + 1] = static_cast<unsigned char>(8 * y);
        bytes[4 * pixel + 2] = static_cast<unsigned char>(x * y);
    }
    return bytes;
}

// The work beside a copy of the same pixels into warm memory.
template <class Work>
void besideMemcpy(benchmark::State& state, const std::vector<unsigned char>& source, Work work)
{
    std::vector<unsigned char> pixels = source;
    std::vector<unsigned char> copy = source;
    std::vector<double> worked;
    std::vector<double> copied;
    for (auto _ : state) {
        worked.push_back(bench::secondsOfProcessor([&] { work(pixels); }));
        benchmark::DoNotOptimize(pixels.data());
        benchmark::ClobberMemory();
        state.SetIterationTime(worked.back());
        copied.push_back(
            bench::secondsOfProcessor([&] { std::memcpy(copy.data(), source.data(), source.size()); }));
        benchmark::DoNotOptimize(copy.data());
        benchmark::ClobberMemory();
    }
    state.counters["min_ms"] = 1e3 * bench::smallest(worked);
    state.counters["median_ms"] = 1e3 * bench::median(worked);
    state.counters["memcpy_ms"] = 1e3 * bench::median(copied);
    state.counters["ratio"] = bench::median(worked) / bench::median(copied);
}

void cutOut(benchmark::State& state)
{
    std::mt19937 random(2);
    std::list<std::uint32_t> colours;
    for (std::int64_t count = state.range(0); count > 0; --count)
        colours.push_back(random() & 0xFFFFFF);
    besideMemcpy(state, state.range(1) ? noise(kPixels) : areas(), [&](std::vector<unsigned char>& pixels) {
        maskimages::cutOutColours(pixels.data(), kPixels, colours);
    });
}
BENCHMARK(cutOut)
    ->ArgsProduct({{1, 4, 5, 16, 256, 4096}, {0, 1}})
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

void maskImage(benchmark::State& state)
{
    const int side = static_cast<int>(state.range(0));
    const auto mask = noise(static_cast<std::size_t>(side) * static_cast<std::size_t>(side));
    besideMemcpy(state, noise(kPixels), [&](std::vector<unsigned char>& pixels) {
        maskimages::takeAlphaFromMask(pixels.data(), {kSide, kSide}, mask.data(), {side, side}, true);
    });
}
BENCHMARK(maskImage)->Arg(kSide)->Arg(kSide / 2)->UseManualTime()->Unit(benchmark::kMillisecond);

// Faces by tens in bodies, with ids in no order.
void fillPart(dlPart& part, std::int32_t faceCount)
{
    std::vector<std::int32_t> ids(static_cast<std::size_t>(faceCount));
    for (std::int32_t id = 0; id < faceCount; ++id)
        ids[static_cast<std::size_t>(id)] = id;
    std::shuffle(ids.begin(), ids.end(), std::mt19937(3));
    part.bodyCount = faceCount / 10;
    part.bodies = new dlBody[static_cast<std::size_t>(part.bodyCount)];
    for (std::int32_t body = 0; body < part.bodyCount; ++body) {
        part.bodies[body].faceCount = 10;
        part.bodies[body].faces = new dlFace[10];
        for (std::int32_t face = 0; face < 10; ++face)
            part.bodies[body].faces[face].faceId = ids[static_cast<std::size_t>(10 * body + face)];
    }
}

const dlFace* walkTo(const dlPart& part, std::int32_t id)
{
    for (std::int32_t body = 0; body < part.bodyCount; ++body) {
        for (std::int32_t face = 0; face < part.bodies[body].faceCount; ++face) {
            if (part.bodies[body].faces[face].faceId == id)
                return &part.bodies[body].faces[face];
        }
    }
    return nullptr;
}

void records(benchmark::State& state)
{
    const auto faceCount = static_cast<std::int32_t>(state.range(0));
    dlPart part;
    fillPart(part, faceCount);
    uoDecalProperties decal;
    decal.textureProperties.filename = L"C:\\images\\label.png";
    for (int record = 0; record < kRecords; ++record) {
        decal.faceMappings.emplace_back();
        decal.faceMappings.back().faceId = record % faceCount;
    }
    uoTempAssemblySHDData_c component;
    component.decals.push_back(&decal);
    std::vector<double> attached;
    std::vector<double> walked;
    for (auto _ : state) {
        dlInstance instance;
        attached.push_back(bench::secondsOfProcessor(
            [&] { attachInstanceDecals(component, &instance, &part, L"C:\\docs\\a.doc"); }));
        state.SetIterationTime(attached.back());
        walked.push_back(bench::secondsOfProcessor([&] {
            for (const uoDecalFaceMapping& mapping : decal.faceMappings)
                benchmark::DoNotOptimize(walkTo(part, mapping.faceId));
        }));
    }
    state.counters["min_ms"] = 1e3 * bench::smallest(attached);
    state.counters["median_ms"] = 1e3 * bench::median(attached);
    state.counters["ns_per_record"] = 1e9 * bench::median(attached) / kRecords;
    state.counters["walk"] = bench::median(attached) / bench::median(walked);
}
BENCHMARK(records)->Arg(50)->Arg(500)->Arg(5000)->UseManualTime()->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
