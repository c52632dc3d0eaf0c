// Reads documents through the format itself, with the import program of this build.
#pragma once

#include <gmock/gmock.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "raylume/platform/Text.h"
#include "reader/DocumentFormat.h"
#include "reader/formats/step/ImportSettings.h"
#include "tests/platform/ScopedEnvironment.h"
#include "tests/platform/TemporaryFolder.h"

namespace step_tests {

/// What a read says while it goes on, and how it is told to stop.
class Context : public ovdl::ReadContext {
public:
    bool acceptVersion(unsigned long version) override
    {
        versions.push_back(version);
        return accepts;
    }
    void progress(float done) override { shares.push_back(done); }
    bool cancelled() override
    {
        asked.push_back(std::chrono::steady_clock::now());
        return cancels && cancels();
    }

    std::vector<unsigned long> versions;
    std::vector<float> shares;
    std::vector<std::chrono::steady_clock::time_point> asked;
    bool accepts = true;
    std::function<bool()> cancels;
};

/// Puts a program in the place of the import program, and takes it back.
class OtherProgram {
public:
    explicit OtherProgram(const std::string& path)
    {
        ovdl::step::setImportProgram(platform::fromUtf8(path));
    }
    OtherProgram(const OtherProgram&) = delete;
    OtherProgram& operator=(const OtherProgram&) = delete;
    ~OtherProgram() { ovdl::step::setImportProgram(platform::fromUtf8(RAYLUME_IMPORT_PROGRAM)); }
};

inline std::unique_ptr<ovdl::DocumentFormat> format()
{
    ovdl::step::setImportProgram(platform::fromUtf8(RAYLUME_IMPORT_PROGRAM));
    return ovdl::makeStepFormat();
}

inline ovdl::ReadOutcome read(const std::string& path, Context& context)
{
    return format()->read(platform::fromUtf8(path), context);
}

inline ovdl::ReadOutcome read(const std::string& path)
{
    Context context;
    return read(path, context);
}

/// A file of the samples; empty when there are none.
inline std::string sample(const std::string& name)
{
    const std::string path = std::string(RAYLUME_STEP_SAMPLES) + "/package/test/testfiles/" + name;
    return std::filesystem::exists(path) ? path : std::string();
}

/// All STEP and IGES files of the samples, in the order of their names.
inline std::vector<std::string> allSamples()
{
    std::vector<std::string> paths;
    const std::string folder = sample("");
    if (folder.empty())
        return paths;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
        std::string ending = entry.path().extension().string();
        if (ending == ".stp" || ending == ".step" || ending == ".igs")
            paths.push_back(entry.path().string());
    }
    std::sort(paths.begin(), paths.end());
    return paths;
}

#define SKIP_WITHOUT_SAMPLES()          \
    if (step_tests::sample("").empty()) \
    GTEST_SKIP() << "no STEP files of other programs: the npm package could not be fetched"

/// The components of an assembly.
inline std::vector<uoTempAssemblySHDData_c*> components(const ovdl::ReadOutcome& outcome)
{
    std::vector<uoTempAssemblySHDData_c*> result;
    if (outcome.document && outcome.document->assembly()) {
        const auto& array = outcome.document->assembly()->components;
        result.assign(array.data, array.data + array.count);
    }
    return result;
}

/// All faces of a part, body by body.
inline std::vector<uoTempFaceTessData_c*> facesOf(const uoTempPartTessData_c& part)
{
    std::vector<uoTempFaceTessData_c*> result;
    for (long long b = 0; b < part.bodies.count; ++b) {
        const auto& faces = part.bodies.data[b]->faces;
        result.insert(result.end(), faces.data, faces.data + faces.count);
    }
    return result;
}

struct Box {
    double min[3] = {1e300, 1e300, 1e300};
    double max[3] = {-1e300, -1e300, -1e300};

    void add(const double* point)
    {
        for (int axis = 0; axis < 3; ++axis) {
            min[axis] = std::min(min[axis], point[axis]);
            max[axis] = std::max(max[axis], point[axis]);
        }
    }
    double diagonal() const
    {
        double sum = 0;
        for (int axis = 0; axis < 3; ++axis)
            sum += (max[axis] - min[axis]) * (max[axis] - min[axis]);
        return std::sqrt(sum);
    }
};

inline void addFaces(const uoTempPartTessData_c& part, const mgXform_c& xform, Box& box)
{
    for (const uoTempFaceTessData_c* face : facesOf(part))
        for (long long i = 0; i + 2 < face->points.count; i += 3) {
            mgPoint_c point(face->points.data[i], face->points.data[i + 1], face->points.data[i + 2]);
            point *= xform;
            const double values[] = {point.x, point.y, point.z};
            box.add(values);
        }
}

/// The box of a whole document, in metres.
inline Box boxOf(const ovdl::ReadOutcome& outcome)
{
    Box box;
    if (outcome.document->part())
        addFaces(*outcome.document->part()->tessData, mgXform_c(), box);
    for (const uoTempAssemblySHDData_c* component : components(outcome))
        if (component->tessData)
            addFaces(*component->tessData, component->xform, box);
    return box;
}

}  // namespace step_tests
