// The animation side file, against the bare parse of its bytes.
//   bare: the parser alone over the same bytes in memory, with empty handlers for elements
//   pugixml: the same bytes in memory as a whole tree, in a copy that the parser may write to
//   ratio: the median of the reading over the median of the bare parse; each of them lies in the same loop
//   ratio_min: the same of the shortest times
//   beside: the highest memory of a reading, less what its result holds, over the size of the file
// Times are the processor's.

#include <benchmark/benchmark.h>
#include <expat.h>
#include <malloc.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <pugixml.hpp>
#include <random>
#include <string>
#include <vector>

#include "Timing.h"
#include "raylume/platform/Text.h"
#include "raylume/scene/dlModel.h"

namespace {

std::string number(double value)
{
    char text[40];
    std::snprintf(text, sizeof text, "%.17g", value);
    return text;
}

// A rotation with a translation, in the digits that a writer needs to lose nothing.
std::string transform(std::mt19937& random, double time)
{
    std::uniform_real_distribution<double> part(-1, 1);
    std::string xml = "        <Transform InterpolateMode=\"1\" Time=\"" + number(time) + "\"";
    for (int i = 0; i < 16; ++i) {
        const bool isFixed = i % 4 == 3;
        xml += " m" + std::to_string(i) + "=\"" + (isFixed ? (i == 15 ? "1" : "0") : number(part(random))) +
               "\"";
    }
    return xml + "/>\n";
}

// Attributes that nobody reads but writers write.
std::string unread(std::size_t size)
{
    std::string xml;
    for (int i = 0; i < 16 && xml.size() + 25 < size; ++i) {
        xml += " pz" + std::to_string(i) + "=\"" + number(i / 3.0) + "\"";
    }
    return xml;
}

// 1000 components of 200 keys, each made as long as it takes to reach about `size`. Attributes of the root
// and what holds the components are the caller's.
std::string placements(std::size_t size, const std::string& rootAttributes = "",
                       const std::string& open = "", const std::string& close = "")
{
    std::mt19937 random(1);
    const std::size_t keySize = size / 200000;
    std::string xml = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<MotionStudy" + rootAttributes +
                      ">\n  <ANIMATION>\n" + open;
    for (int component = 0; component < 1000; ++component) {
        xml += "    <COMPONENT Name=\"part-" + std::to_string(component) + "@top\">\n";
        for (int key = 0; key < 200; ++key) {
            std::string element = transform(random, key / 30.0);
            const std::size_t missing = keySize > element.size() ? keySize - element.size() : 0;
            element.insert(element.size() - 3, unread(missing));
            xml += element;
        }
        xml += "    </COMPONENT>\n";
    }
    return xml + close + "  </ANIMATION>\n</MotionStudy>\n";
}

std::string lights()
{
    std::string xml = "<r><ANIMATION>\n";
    for (int light = 0; light < 2000; ++light) {
        xml += "<LIGHT>\n";
        for (int key = 0; key < 100; ++key) {
            xml += "<LightProperties Time=\"" + number(key / 30.0) + "\" InterpolateMode=\"1\" ID=\"" +
                   std::to_string(light) +
                   "\" LightType=\"2\" EnabledInRL=\"1\" Red=\"0.5\" Green=\"0.25\" Blue=\"0.125\" "
                   "pos0=\"1.5\" "
                   "pos1=\"2.5\" pos2=\"3.5\" rot0=\"0.1\" rot1=\"0.2\" rot2=\"0.3\"/>\n";
        }
        xml += "</LIGHT>\n";
    }
    return xml + "</ANIMATION></r>\n";
}

// Two million keys to be filed; the padding is what makes that many allowed.
std::string nestedComponents(std::size_t padding)
{
    std::mt19937 random(1);
    std::string open = "<r><ANIMATION>\n";
    std::string close;
    for (int component = 0; component < 2000; ++component) {
        open += "<COMPONENT Name=\"" + std::to_string(component) + "\">" + transform(random, component);
        close += "</COMPONENT>";
    }
    return open + close + "</ANIMATION></r>" + std::string(padding, ' ');
}

/// A side file in a folder of its own.
class SideFile {
public:
    explicit SideFile(const std::string& xml)
        : folder_(std::filesystem::temp_directory_path() /
                  ("raylume-animation-bench-" + std::to_string(std::random_device{}())))
    {
        std::filesystem::create_directory(folder_);
        std::ofstream(folder_ / "_rlAnimData.xml", std::ios::binary) << xml;
    }
    SideFile(const SideFile&) = delete;
    SideFile& operator=(const SideFile&) = delete;
    ~SideFile() { std::filesystem::remove_all(folder_); }

    std::wstring documentPath() const { return platform::fromUtf8((folder_ / "document.glb").string()); }

private:
    const std::filesystem::path folder_;
};

void XMLCALL ignoreStart(void*, const XML_Char*, const XML_Char**)
{
}
void XMLCALL ignoreEnd(void*, const XML_Char*)
{
}

// In pieces that stay in the cache, which is faster than all at once.
void parseBare(const std::string& xml)
{
    constexpr std::size_t kPiece = 1 << 16;
    XML_Parser parser = XML_ParserCreate(nullptr);
    XML_SetElementHandler(parser, ignoreStart, ignoreEnd);
    for (std::size_t at = 0; at < xml.size(); at += kPiece) {
        const std::size_t size = std::min(kPiece, xml.size() - at);
        if (XML_Parse(parser, xml.data() + at, static_cast<int>(size), at + size == xml.size()) !=
            XML_STATUS_OK) {
            std::abort();
        }
    }
    XML_ParserFree(parser);
}

void parseTree(std::string& xml)
{
    pugi::xml_document document;
    if (!document.load_buffer_inplace(xml.data(), xml.size())) {
        std::abort();
    }
    benchmark::DoNotOptimize(document);
}

// In kilobytes; "VmHWM" or "VmRSS".
double memory(const std::string& field)
{
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);) {
        if (line.starts_with(field + ":")) {
            return std::stod(line.substr(field.size() + 1));
        }
    }
    return 0;
}

// The highest memory is counted from here on.
void forgetHighest()
{
    malloc_trim(0);
    std::ofstream("/proc/self/clear_refs") << "5";
}

double memoryBeside(const SideFile& file, std::size_t size)
{
    dlModel model;
    forgetHighest();
    const double before = memory("VmRSS");
    (void)model.readAnimationXML(file.documentPath());
    const double highest = memory("VmHWM");
    malloc_trim(0);
    const double result = memory("VmRSS") - before;
    return (highest - before - result) * 1024 / static_cast<double>(size);
}

void compare(benchmark::State& state, const std::string& xml, std::size_t wantedComponents, bool wanted)
{
    const SideFile file(xml);
    const double beside = memoryBeside(file, xml.size());
    std::vector<double> readings, bares, trees;
    for (auto _ : state) {
        bares.push_back(bench::secondsOfProcessor([&] { parseBare(xml); }));
        std::string copy = xml;
        trees.push_back(bench::secondsOfProcessor([&] { parseTree(copy); }));
        dlModel model;
        bool result = false;
        readings.push_back(
            bench::secondsOfProcessor([&] { result = model.readAnimationXML(file.documentPath()); }));
        if (result != wanted || (wanted && model.animationTracks.size() != wantedComponents)) {
            state.SkipWithError("not what was to be read");
        }
        state.SetIterationTime(readings.back());
    }
    state.counters["MB"] = static_cast<double>(xml.size()) * 1e-6;
    state.counters["bare_ms"] = bench::median(bares) * 1e3;
    state.counters["pugixml_ms"] = bench::median(trees) * 1e3;
    state.counters["ratio"] = bench::median(readings) / bench::median(bares);
    state.counters["ratio_min"] = bench::smallest(readings) / bench::smallest(bares);
    state.counters["beside"] = beside;
}

void read_placements(benchmark::State& state)
{
    compare(state, placements(100'000'000), 1000, true);
}
BENCHMARK(read_placements)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(7);

// A root that declares what it does not use, as writers' libraries have it: names are checked from there
// on.
void read_placements_with_a_prefix(benchmark::State& state)
{
    compare(state, placements(100'000'000, " xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\""),
            1000, true);
}
BENCHMARK(read_placements_with_a_prefix)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(5);

// All keys are met twice.
void read_placements_in_one_component(benchmark::State& state)
{
    compare(state, placements(100'000'000, "", "    <COMPONENT Name=\"top\">\n", "    </COMPONENT>\n"),
            1001, true);
}
BENCHMARK(read_placements_in_one_component)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(3);

void read_lights(benchmark::State& state)
{
    compare(state, lights(), 1, true);
}
BENCHMARK(read_lights)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(7);

void read_nested(benchmark::State& state)
{
    compare(state, nestedComponents(16'000'000), 2000, true);
}
BENCHMARK(read_nested)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(3);

void end_nested_beyond_the_budget(benchmark::State& state)
{
    compare(state, nestedComponents(0), 0, false);
}
BENCHMARK(end_nested_beyond_the_budget)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(3);

}  // namespace

BENCHMARK_MAIN();
