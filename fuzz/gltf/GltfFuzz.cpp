// One document for each input, as the binary or the text form by its first bytes.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <random>
#include <string>

#include "raylume/platform/Text.h"
#include "reader/DocumentFormat.h"

namespace {

// Holds the reader to what it promises of progress.
class Context : public ovdl::ReadContext {
public:
    bool acceptVersion(unsigned long) override { return true; }
    void progress(float done) override
    {
        if (!(done >= last_ && done <= 1))
            std::abort();
        last_ = done;
    }
    bool cancelled() override { return false; }

private:
    float last_ = 0;
};

void require(bool holds)
{
    if (!holds)
        std::abort();
}

// Sums what is handed out, so that the sanitizers see whether it may be read.
void check(const uoTempFaceTessData_c& face)
{
    long long vertices = 0;
    for (std::int32_t strip = 0; strip < face.stripCount; ++strip) {
        require(face.stripLengths.data[strip] >= 3);
        vertices += face.stripLengths.data[strip];
    }
    require(face.points.count == 3 * vertices && face.normals.count == 3 * vertices);
    require(face.uvs.count == (face.hasUVs ? 2 * vertices : 0));
    volatile float sum = 0;
    for (const auto* view : {&face.points, &face.normals, &face.uvs})
        for (long long i = 0; i < view->count; ++i)
            sum = sum + view->data[i];
}

void check(uoTempPartTessData_c& part)
{
    for (long long body = 0; body < part.bodies.count; ++body)
        for (long long face = 0; face < part.bodies.at(body)->faces.count; ++face)
            check(*part.bodies.at(body)->faces.at(face));
}

void check(ovdl::ReadDocument& document)
{
    require((document.part() != nullptr) != (document.assembly() != nullptr));
    if (document.part())
        return check(*document.part()->tessData);
    const auto& components = document.assembly()->components;
    for (long long i = 0; i < components.count; ++i) {
        require(!components.at(i)->name.empty());
        check(*components.at(i)->tessData);
    }
}

// The same file again and again, in memory where the system keeps such a folder.
std::string inputPath(bool isText)
{
    const std::filesystem::path inMemory = "/dev/shm";
    const auto folder =
        std::filesystem::exists(inMemory) ? inMemory : std::filesystem::temp_directory_path();
    const std::string name = "gltf-fuzz-" + std::to_string(std::random_device{}());
    return (folder / (name + (isText ? ".gltf" : ".glb"))).string();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const bool isText = size < 4 || data[0] != 'g';
    static const std::string paths[] = {inputPath(false), inputPath(true)};
    const std::string& path = paths[isText];
    std::FILE* file = std::fopen(path.c_str(), "wb");
    if (!file)
        return 0;
    std::fwrite(data, 1, size, file);
    std::fclose(file);
    const auto format = ovdl::makeGltfFormat();
    std::string reason;
    const std::wstring wide = platform::fromUtf8(path);
    if (format->recognises(wide, reason)) {
        Context context;
        const ovdl::ReadOutcome outcome = format->read(wide, context);
        require(outcome.kind == ovdl::ReadOutcome::kRead ? outcome.document != nullptr
                                                         : !outcome.reason.empty());
        if (outcome.document)
            check(*outcome.document);
    }
    return 0;
}
