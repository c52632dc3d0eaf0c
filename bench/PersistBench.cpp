// A stream of settings of 32 MB: 50000 mask materials of 8 channels and 4 tags each.
//   load: reading the stream into lists
//   build_ms: the same lists filled from texts that lie ready, without a stream; ratio over it
//   memcpy_ms: copying the bytes of the stream; over_memcpy the ratio over that
//   raw, raw_store: one raw block of the same size against memcpy
// Times are of the processor's, and of the call alone; the destruction of lists is outside.

#include <benchmark/benchmark.h>
#include <malloc.h>

#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "Timing.h"
#include "raylume/persist/RLByteEnds.h"
#include "raylume/persist/RLData.h"

namespace {

constexpr std::size_t kMasks = 50'000;
constexpr int kChannels = 8;
constexpr int kTags = 4;
constexpr int kRuns = 15;

// The texts of one mask, some of them longer than a string holds without memory of its own.
struct Texts {
    std::string maskName, maskType, maskPTag, materialName;
    std::vector<std::string> channels, tags;
};

std::vector<Texts> allTexts()
{
    std::vector<Texts> all(kMasks);
    for (std::size_t i = 0; i < kMasks; ++i) {
        const std::string number = std::to_string(i);
        all[i].maskName = "Housing-" + number + "@Assembly";
        all[i].maskType = "component";
        all[i].maskPTag = "ptag/" + number;
        all[i].materialName = "materials/metal/brushed aluminium " + number;
        for (int k = 0; k < kChannels; ++k)
            all[i].channels.push_back("channel weight " + std::to_string(k));
        for (int k = 0; k < kTags; ++k)
            all[i].tags.push_back("textures/brushed_" + number + "_" + std::to_string(k) + ".png");
    }
    return all;
}

const std::vector<Texts>& texts()
{
    static const std::vector<Texts> all = allTexts();
    return all;
}

// Each element straight in its place, each text copied once: no list can be had for less.
void build(RLData& data)
{
    for (const Texts& mask : texts()) {
        RLMaskMaterial& built = data.maskMaterials.emplace_back();
        built.maskName = mask.maskName;
        built.maskType = mask.maskType;
        built.maskPTag = mask.maskPTag;
        built.materialName = mask.materialName;
        for (int k = 0; k < kChannels; ++k) {
            RLFloatChannel& channel = built.floatChannels.emplace_back();
            channel.channelName = mask.channels[static_cast<std::size_t>(k)];
            channel.floatVal = static_cast<float>(k);
        }
        for (int k = 0; k < kTags; ++k) {
            RLStringTag& tag = built.stringTags.emplace_back();
            tag.tag = mask.tags[static_cast<std::size_t>(k)];
            tag.tagID = static_cast<std::uint32_t>(k);
        }
    }
}

const std::string& streamBytes()
{
    static const std::string bytes = [] {
        RLData data;
        build(data);
        RLMemorySink sink;
        RLByteStream stream(sink, L"bench");
        RLArchive archive{&stream};
        data.serialize(archive);
        stream.close();
        return sink.bytes();
    }();
    return bytes;
}

// Memory stays with the process, so that neither side pays for pages; and what the lists before left behind
// is put in order outside the time, or whoever comes next pays for that. A large request does it.
void settleMemory()
{
    mallopt(M_TRIM_THRESHOLD, 1 << 30);
    mallopt(M_MMAP_THRESHOLD, 1 << 30);
    void* const large = std::malloc(1 << 20);
    benchmark::DoNotOptimize(large);
    std::free(large);
}

double secondsOfLoad()
{
    settleMemory();
    RLMemorySource source(streamBytes());
    RLByteStream stream(source, L"bench");
    RLArchive archive{&stream};
    RLData data;
    const double seconds = bench::secondsOfProcessor([&] { data.serialize(archive); });
    if (data.maskMaterials.size() != kMasks)
        std::abort();
    return seconds;
}

double secondsOfBuild()
{
    settleMemory();
    RLData data;
    const double seconds = bench::secondsOfProcessor([&] { build(data); });
    if (data.maskMaterials.size() != kMasks)
        std::abort();
    return seconds;
}

std::vector<char>& target()
{
    static std::vector<char> bytes(streamBytes().size() + 1);
    return bytes;
}

double secondsOfMemcpy()
{
    return bench::secondsOfProcessor([] {
        std::memcpy(target().data(), streamBytes().data(), streamBytes().size());
        benchmark::DoNotOptimize(target().data());
    });
}

void report(benchmark::State& state, const std::vector<double>& times, const std::vector<double>& limits,
            const char* limit)
{
    state.counters["MB"] = static_cast<double>(streamBytes().size()) / 1e6;
    state.counters["min_ms"] = bench::smallest(times) * 1e3;
    state.counters["median_ms"] = bench::median(times) * 1e3;
    state.counters[limit] = bench::median(limits) * 1e3;
    state.counters["ratio"] = bench::median(times) / bench::median(limits);
    state.counters["ratio_of_min"] = bench::smallest(times) / bench::smallest(limits);
}

void load(benchmark::State& state)
{
    std::vector<double> loads, builds, copies;
    texts();
    streamBytes();
    for (auto _ : state) {
        builds.push_back(secondsOfBuild());
        loads.push_back(secondsOfLoad());
        copies.push_back(secondsOfMemcpy());
        state.SetIterationTime(loads.back());
    }
    report(state, loads, builds, "build_ms");
    state.counters["memcpy_ms"] = bench::median(copies) * 1e3;
    state.counters["over_memcpy"] = bench::median(loads) / bench::median(copies);
}
BENCHMARK(load)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(kRuns);

void raw(benchmark::State& state)
{
    std::vector<double> reads, copies;
    for (auto _ : state) {
        copies.push_back(secondsOfMemcpy());
        RLMemorySource source(streamBytes());
        RLByteStream stream(source, L"bench");
        reads.push_back(
            bench::secondsOfProcessor([&] { stream.readRaw(target().data(), streamBytes().size()); }));
        state.SetIterationTime(reads.back());
    }
    report(state, reads, copies, "memcpy_ms");
}
BENCHMARK(raw)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(kRuns);

// Writes over the same bytes each time, as memcpy does.
class TargetSink final : public RLByteSink {
public:
    void write(const void* bytes, std::size_t size) override
    {
        std::memcpy(target().data() + at_, bytes, size);
        at_ += size;
    }

private:
    std::size_t at_ = 0;
};

void rawStore(benchmark::State& state)
{
    std::vector<double> writes, copies;
    for (auto _ : state) {
        copies.push_back(secondsOfMemcpy());
        TargetSink sink;
        RLByteStream stream(sink, L"bench");
        writes.push_back(bench::secondsOfProcessor([&] {
            stream.writeRaw(streamBytes().data(), streamBytes().size());
            stream.close();
        }));
        state.SetIterationTime(writes.back());
    }
    report(state, writes, copies, "memcpy_ms");
}
BENCHMARK(rawStore)->Name("raw_store")->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(kRuns);

}  // namespace

BENCHMARK_MAIN();
