// Picture files beside what they cannot do without, in one run.
//
//   decode_limited  a JPEG of 8192 x 8192 into 2048 x 2048, through rlu_GetBitmapDataFromFile. "ratio" is
//   the median
//                   over that of the bare codec's own decode at the same scale from memory, plus one pass
//                   over a result in fresh pages.
//   save            1,000 bitmaps of 64 x 64 into one folder. "growth" is the time of the last hundred over
//   that of
//                   the first hundred.
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include <jpeglib.h>

#include "Timing.h"
#include "raylume/platform/Text.h"
#include "raylume/services/ImageCodec.h"

namespace {

using Clock = std::chrono::steady_clock;

constexpr unsigned kSide = 8192;
constexpr unsigned kLimited = 2048;

double secondsSince(Clock::time_point start)
{
    return std::chrono::duration<double>(Clock::now() - start).count();
}

// Edges and noise, so that the file is about as large as a photograph of that size.
std::string largeJpeg()
{
    jpeg_compress_struct info{};
    jpeg_error_mgr errors{};
    unsigned char* bytes = nullptr;
    unsigned long count = 0;
    info.err = jpeg_std_error(&errors);
    jpeg_create_compress(&info);
    jpeg_mem_dest(&info, &bytes, &count);
    info.image_width = info.image_height = kSide;
    info.input_components = 3;
    info.in_color_space = JCS_RGB;
    jpeg_set_defaults(&info);
    jpeg_set_quality(&info, 85, TRUE);
    jpeg_start_compress(&info, TRUE);
    std::vector<unsigned char> row(3 * kSide);
    unsigned state = 1;
    for (unsigned line = 0; line < kSide; ++line) {
        for (unsigned place = 0; place < row.size(); ++place) {
            state = state * 1664525u + 1013904223u;
            row[place] = static_cast<unsigned char>((place / 40 ^ line / 24) * 3 + (state >> 28));
        }
        JSAMPROW pointer = row.data();
        jpeg_write_scanlines(&info, &pointer, 1);
    }
    jpeg_finish_compress(&info);
    jpeg_destroy_compress(&info);
    std::string file(reinterpret_cast<char*>(bytes), count);
    std::free(bytes);
    return file;
}

void decodeBare(const std::string& file, std::vector<unsigned char>& result)
{
    jpeg_decompress_struct info{};
    jpeg_error_mgr errors{};
    info.err = jpeg_std_error(&errors);
    jpeg_create_decompress(&info);
    jpeg_mem_src(&info, reinterpret_cast<const unsigned char*>(file.data()), file.size());
    jpeg_read_header(&info, TRUE);
    info.out_color_space = JCS_EXT_BGRA;
    info.scale_num = 1;
    info.scale_denom = kSide / kLimited;
    jpeg_start_decompress(&info);
    while (info.output_scanline < info.output_height) {
        JSAMPROW row = result.data() + std::size_t{4} * kLimited * info.output_scanline;
        jpeg_read_scanlines(&info, &row, 1);
    }
    jpeg_destroy_decompress(&info);
}

double onePass(const std::vector<unsigned char>& result)
{
    const auto start = Clock::now();
    const std::unique_ptr<unsigned char[]> copy(new unsigned char[result.size()]);
    std::memcpy(copy.get(), result.data(), result.size());
    benchmark::DoNotOptimize(copy[result.size() / 2]);
    return secondsSince(start);
}

class Folder {
public:
    Folder() : path_(std::filesystem::temp_directory_path() / ("image-bench-" + std::to_string(getpid())))
    {
        std::filesystem::create_directories(path_);
        setenv("temp", path_.c_str(), 1);
    }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;
    ~Folder() { std::filesystem::remove_all(path_); }
    std::string operator/(const char* name) const { return (path_ / name).string(); }

private:
    std::filesystem::path path_;
};

void decode_limited(benchmark::State& state)
{
    const Folder folder;
    const std::string file = largeJpeg();
    std::ofstream(folder / "large.jpg", std::ios::binary) << file;
    const std::wstring path = platform::fromUtf8(folder / "large.jpg");
    std::vector<unsigned char> result(std::size_t{4} * kLimited * kLimited);
    std::vector<double> whole;
    std::vector<double> bare;
    for (auto _ : state) {
        auto start = Clock::now();
        int width, height, stride;
        unsigned char* pixels = nullptr;
        if (rlu_GetBitmapDataFromFile(path, width, height, stride, &pixels, 0, nullptr, nullptr) != 1)
            state.SkipWithError("no picture");
        whole.push_back(secondsSince(start));
        state.SetIterationTime(whole.back());
        delete[] pixels;
        start = Clock::now();
        decodeBare(file, result);
        bare.push_back(secondsSince(start) + onePass(result));
    }
    state.counters["ratio"] = bench::median(whole) / bench::median(bare);
    state.counters["ratio_of_best"] =
        *std::min_element(whole.begin(), whole.end()) / *std::min_element(bare.begin(), bare.end());
}
BENCHMARK(decode_limited)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(15);

void save(benchmark::State& state)
{
    const std::vector<unsigned char> pixels(4 * 64 * 64, 0x55);
    for (auto _ : state) {
        const Folder folder;
        std::vector<double> hundreds;
        double total = 0;
        for (int hundred = 0; hundred < 10; ++hundred) {
            const auto start = Clock::now();
            for (int count = 0; count < 100; ++count)
                benchmark::DoNotOptimize(rlu_SaveAsBitmap(64, 64, 256, pixels.data()));
            hundreds.push_back(secondsSince(start));
            total += hundreds.back();
        }
        state.SetIterationTime(total);
        state.counters["growth"] = hundreds.back() / hundreds.front();
        state.counters["us_per_save"] = total * 1e3;
        rlu_ClearTempBMPFiles();
    }
}
BENCHMARK(save)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(5);

}  // namespace

BENCHMARK_MAIN();
