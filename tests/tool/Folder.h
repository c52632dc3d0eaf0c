// A folder for one test.
#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <vector>

namespace tool_test {

class Folder {
public:
    Folder()
    {
        std::random_device random;
        path_ = std::filesystem::temp_directory_path() /
                ("raylume-test-" + std::to_string(random()) + std::to_string(random()));
        std::filesystem::create_directory(path_);
    }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;
    ~Folder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }

    std::string operator/(const std::string& name) const { return (path_ / name).string(); }
    std::string path() const { return path_.string(); }

    std::vector<std::string> entries() const
    {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(path_))
            names.push_back(entry.path().filename().string());
        return names;
    }

private:
    std::filesystem::path path_;
};

inline void writeFile(const std::string& path, const std::string& content)
{
    std::ofstream(path, std::ios::binary) << content;
}

inline std::string readFile(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace tool_test
