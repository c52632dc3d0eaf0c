// A folder of a test's own.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>

#include "raylume/platform/Text.h"

/// An empty folder, which goes with all that is in it.
class TemporaryFolder {
public:
    TemporaryFolder() : path_(make()) {}
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }

    const std::string& path() const { return path_; }
    std::wstring wide() const { return platform::fromUtf8(path_); }
    /// The native path of something in the folder.
    std::string operator/(const std::string& name) const { return path_ + "/" + name; }

    /// Makes folders below, parents too; gives the native path.
    std::string makeFolder(const std::string& name) const
    {
        std::filesystem::create_directories(*this / name);
        return *this / name;
    }

    /// Writes a file below; its folder must be there.
    std::string write(const std::string& name, const std::string& bytes) const
    {
        std::ofstream(*this / name, std::ios::binary) << bytes;
        return *this / name;
    }

private:
    static std::string make()
    {
        std::string pattern = (std::filesystem::temp_directory_path() / "raylume-test-XXXXXX").string();
        if (!mkdtemp(pattern.data())) {
            throw std::runtime_error("no temporary folder");
        }
        return pattern;
    }

    std::string path_;
};

/// The bytes of a file; empty when it is missing.
inline std::string readFile(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
}
