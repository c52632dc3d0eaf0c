// Whole loads of .ovdl documents, each beside what it cannot do without, in one run: a read of the file
// into fresh pages, plus a copy of its geometry into fresh pages. `ratio` is the median of the load over
// the median of that limit; `peak_MB` is what the process had in memory at most during one more load, in a
// process of its own.

#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "Timing.h"
#include "bench/GeneratedGltf.h"
#include "raylume/platform/Text.h"
#include "raylume/scene/dlModel.h"
#include "reader/DocumentWriter.h"

namespace {

// A document, removed at the end.
class Document {
public:
    explicit Document(const std::string& name)
        : path_((std::filesystem::temp_directory_path() / ("raylume-bench-" + name + ".ovdl")).string())
    {
    }
    Document(const Document&) = delete;
    Document& operator=(const Document&) = delete;
    ~Document() { std::remove(path_.c_str()); }

    const std::string& path() const { return path_; }
    std::size_t geometryBytes = 0;

private:
    std::string path_;
};

void* freshPages(std::size_t size)
{
    void* pages = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (pages == MAP_FAILED)
        std::abort();
    return pages;
}

void readAll(int file, char* to, std::size_t size)
{
    while (size > 0) {
        const ssize_t got = read(file, to, size);
        if (got <= 0)
            std::abort();
        to += got;
        size -= static_cast<std::size_t>(got);
    }
}

void readAndCopy(const Document& document)
{
    const int file = open(document.path().c_str(), O_RDONLY | O_CLOEXEC);
    struct stat status;
    if (file < 0 || fstat(file, &status) != 0)
        std::abort();
    const auto size = static_cast<std::size_t>(status.st_size);
    auto* pages = static_cast<char*>(freshPages(size));
    readAll(file, pages, size);
    if (document.geometryBytes > size)
        std::abort();
    if (document.geometryBytes != 0) {
        void* copy = freshPages(document.geometryBytes);
        std::memcpy(copy, pages, document.geometryBytes);
        benchmark::DoNotOptimize(static_cast<char*>(copy)[document.geometryBytes / 2]);
        munmap(copy, document.geometryBytes);
    }
    benchmark::DoNotOptimize(pages[size / 2]);
    munmap(pages, size);
    close(file);
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

// A load in a process of its own. This one has all that the allocator kept.
double peakMegabytes(const std::string& path)
{
    const pid_t child = fork();
    if (child == 0) {
        execl("/proc/self/exe", "ovdl_load_bench", "--load", path.c_str(), static_cast<char*>(nullptr));
        _exit(1);
    }
    int status = 0;
    rusage usage{};
    if (child < 0 || wait4(child, &status, 0, &usage) != child || status != 0)
        std::abort();
    return static_cast<double>(usage.ru_maxrss) / 1024;
}

// Takes the seconds of load and limit in turn, so that a machine that slows down slows both.
void compare(benchmark::State& state, const Document& document)
{
    std::vector<double> loads, limits;
    secondsOfLoad(document.path());
    for (auto _ : state) {
        limits.push_back(bench::secondsOnClock([&] { readAndCopy(document); }));
        loads.push_back(secondsOfLoad(document.path()));
        state.SetIterationTime(loads.back());
    }
    state.counters["load_ms"] = bench::median(loads) * 1e3;
    state.counters["least_ms"] = bench::smallest(loads) * 1e3;
    state.counters["limit_ms"] = bench::median(limits) * 1e3;
    state.counters["ratio"] = bench::median(loads) / bench::median(limits);
    state.counters["file_MB"] =
        static_cast<double>(std::filesystem::file_size(document.path())) / (1 << 20);
    state.counters["geometry_MB"] = static_cast<double>(document.geometryBytes) / (1 << 20);
    state.counters["peak_MB"] = peakMegabytes(document.path());
}

// What the arrays of a model's parts take: the geometry of the document.
std::size_t geometryOf(const std::string& path)
{
    const std::unique_ptr<dlModel> model(dlModel::ReadModel(path.c_str()));
    std::vector<dlPart*> parts;
    model->getAllDLParts(parts);
    std::size_t bytes = 0;
    for (const dlPart* part : parts)
        for (int body = 0; body < part->bodyCount; ++body)
            for (int face = 0; face < part->bodies[body].faceCount; ++face) {
                const dlFace& found = part->bodies[body].faces[face];
                const auto vertices = static_cast<std::size_t>(found.vertexCount);
                bytes += vertices * (found.uvs ? 32 : 24) + static_cast<std::size_t>(found.stripCount) * 4;
            }
    return bytes;
}

void convert(const bench::GeneratedGltf& source, Document& document)
{
    std::string reason;
    if (!ovdl::convertDocument(platform::fromUtf8(source.path), platform::fromUtf8(document.path()), L"",
                               reason))
        std::abort();
    std::remove(source.path.c_str());
    document.geometryBytes = geometryOf(document.path());
}

void grids(benchmark::State& state)
{
    const auto parts = static_cast<std::size_t>(state.range(0));
    Document document("grids");
    convert(bench::makeGrids(parts, 100'000), document);
    compare(state, document);
}
BENCHMARK(grids)->Arg(10)->Arg(100)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(7);

void tree(benchmark::State& state)
{
    Document document("tree");
    convert(bench::makeTree(), document);
    compare(state, document);
}
BENCHMARK(tree)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(15);

std::size_t availableMegabytes()
{
    std::ifstream table("/proc/meminfo");
    for (std::string name, unit; table >> name;) {
        std::size_t kilobytes = 0;
        table >> kilobytes;
        std::getline(table, unit);
        if (name == "MemAvailable:")
            return kilobytes / 1024;
    }
    return 0;
}

// A part of one body, its vertices in strips of 1000.
uoTempPartTessData_c* makePart(ovdl::PreparedDocument& document, std::size_t number, std::size_t vertices)
{
    std::vector<float> points(3 * vertices);
    for (std::size_t i = 0; i < points.size(); ++i)
        points[i] = static_cast<float>((i * 2654435761u + number) % 1000) * 0.001f;
    auto* face = document.own<uoTempFaceTessData_c>();
    face->stripLengths = document.view(std::vector<std::int32_t>(vertices / 1000, 1000));
    face->stripCount = static_cast<std::int32_t>(face->stripLengths.count);
    face->normals = document.view(std::vector<float>(3 * vertices, 0.5f));
    face->points = document.view(std::move(points));
    auto* body = document.own<uoTempBodyTessData_c>();
    body->faces = document.array(std::vector{face});
    auto* part = document.own<uoTempPartTessData_c>();
    part->bodies = document.array(std::vector{body});
    return part;
}

bool writeLarge(const std::string& path, std::size_t parts, std::size_t vertices)
{
    ovdl::PreparedDocument document;
    std::vector<uoTempAssemblySHDData_c*> components;
    for (std::size_t i = 0; i < parts; ++i) {
        auto* component = document.own<uoTempAssemblySHDData_c>();
        component->name = L"part-" + std::to_wstring(i + 1) + L"@large";
        component->tessData = makePart(document, i, vertices);
        components.push_back(component);
    }
    document.assembly = std::make_unique<OVDLAssemblyDocument>();
    document.assembly->components = document.array(std::move(components));
    std::string reason;
    return ovdl::writeDocument(platform::fromUtf8(path), document, reason);
}

// In a process of its own, whose memory goes with it.
void makeLarge(const std::string& path)
{
    const pid_t child = fork();
    if (child == 0)
        _exit(writeLarge(path, 100, 1'000'000) ? 0 : 1);
    int status = 0;
    if (child < 0 || waitpid(child, &status, 0) != child || status != 0)
        std::abort();
}

void hundredMillionVertices(benchmark::State& state)
{
    constexpr std::size_t kWanted = 9000;
    if (availableMegabytes() < kWanted)
        return state.SkipWithError("there is too little memory");
    Document document("large");
    makeLarge(document.path());
    document.geometryBytes = geometryOf(document.path());
    compare(state, document);
}
BENCHMARK(hundredMillionVertices)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(3);

// One load, to be looked at from outside.
int loadOnly(const char* path)
{
    secondsOfLoad(path);
    return 0;
}

}  // namespace

int main(int count, char** arguments)
{
    if (count == 3 && std::strcmp(arguments[1], "--load") == 0)
        return loadOnly(arguments[2]);
    benchmark::Initialize(&count, arguments);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
