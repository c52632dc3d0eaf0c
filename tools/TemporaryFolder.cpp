#include "tools/TemporaryFolder.h"

#include <cstdlib>
#include <fstream>
#include <random>
#include <stdexcept>
#include <system_error>

#include "raylume/platform/Environment.h"
#include "raylume/platform/HostSetup.h"
#include "raylume/platform/Text.h"
#include "raylume/services/Locations.h"

namespace tool {
namespace {

constexpr char kVariable[] = "temp";
constexpr char kRequestFile[] = "LDRConfigName.txt";

std::string systemTemporaryFolder()
{
    const char* named = std::getenv("TMPDIR");
    if (named && *named)
        return named;
    std::error_code failed;
    const auto folder = std::filesystem::temp_directory_path(failed);
    return failed ? "/tmp" : folder.string();
}

// Made with a name that nobody can guess and closed to others before anything is written to it.
std::filesystem::path makePrivateFolder(const std::filesystem::path& parent)
{
    std::random_device random;
    for (int attempt = 0; attempt < 100; ++attempt) {
        const auto folder = parent / ("raylume-dl-" + std::to_string(random()) + std::to_string(random()));
        std::error_code failed;
        if (std::filesystem::create_directory(folder, failed)) {
            std::filesystem::permissions(folder, std::filesystem::perms::owner_all, failed);
            return folder;
        }
        if (failed)
            throw std::runtime_error("no folder can be made in " + parent.string() + ": " +
                                     failed.message());
    }
    throw std::runtime_error("no folder can be made in " + parent.string());
}

void writeRequest(const std::filesystem::path& folder, const std::string& name)
{
    std::ofstream file(folder / kRequestFile, std::ios::binary);
    file << "raylume-dl\t" << platform::narrow(platform::fromUtf8(name)) << '\n';
    file.close();
    if (file)
        return;
    std::error_code ignored;
    std::filesystem::remove_all(folder, ignored);
    throw std::runtime_error("no file can be written in " + folder.string());
}

}  // namespace

void provideTemporaryFolder()
{
    if (!platform::temporaryFolderVariable())
        platform::setEnvironmentVariable(kVariable, systemTemporaryFolder());
}

ConfigurationRequest::ConfigurationRequest(const std::string& name, bool keepFolder)
    : keepFolder_(keepFolder)
{
    const auto parent = platform::temporaryFolderVariable();
    folder_ = makePrivateFolder(parent ? rlu_nativePath(*parent) : systemTemporaryFolder());
    writeRequest(folder_, name);
    const char* previous = std::getenv(kVariable);
    hadPreviousValue_ = previous != nullptr;
    previousValue_ = previous ? previous : "";
    platform::setEnvironmentVariable(kVariable, folder_.string());
}

ConfigurationRequest::~ConfigurationRequest()
{
    if (hadPreviousValue_)
        platform::setEnvironmentVariable(kVariable, previousValue_);
    else
        platform::removeEnvironmentVariable(kVariable);
    std::error_code ignored;
    if (keepFolder_) {
        std::filesystem::remove(folder_ / kRequestFile, ignored);
        std::filesystem::remove(folder_, ignored);
    } else {
        std::filesystem::remove_all(folder_, ignored);
    }
}

}  // namespace tool
