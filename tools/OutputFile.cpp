#include "tools/OutputFile.h"

#include <cerrno>
#include <fstream>
#include <random>
#include <stdexcept>
#include <system_error>

namespace tool {
namespace {

namespace fs = std::filesystem;

fs::path folderOf(const fs::path& path)
{
    return path.has_parent_path() ? path.parent_path() : ".";
}

fs::path targetOf(const fs::path& path)
{
    std::error_code failed;
    if (!fs::is_symlink(fs::symlink_status(path, failed)))
        return path;
    const fs::path target = fs::weakly_canonical(path, failed);
    return failed ? path : target;
}

/// A file under a name that nothing else has, removed unless it was renamed.
class TemporaryFile {
public:
    explicit TemporaryFile(const fs::path& target)
    {
        std::random_device random;
        do
            path_ = folderOf(target) / (".raylume-dl-" + std::to_string(random()));
        while (fs::exists(fs::symlink_status(path_)));
    }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;
    ~TemporaryFile()
    {
        std::error_code ignored;
        if (!path_.empty())
            fs::remove(path_, ignored);
    }

    const fs::path& path() const { return path_; }
    void renameTo(const fs::path& target)
    {
        fs::rename(path_, target);
        path_.clear();
    }

private:
    fs::path path_;
};

void fill(const fs::path& path, const std::function<void(std::ostream&)>& write)
{
    errno = 0;
    std::ofstream file(path, std::ios::binary);
    if (file)
        write(file);
    file.close();
    if (!file)
        throw std::system_error(errno ? errno : EIO, std::generic_category());
}

void replace(const fs::path& target, TemporaryFile& made)
{
    std::error_code missing;
    const fs::file_status before = fs::status(target, missing);
    if (fs::is_regular_file(before))
        fs::permissions(made.path(), before.permissions());
    made.renameTo(target);
}

}  // namespace

std::string whyNotWritable(const fs::path& path)
{
    std::error_code failed;
    const fs::file_status status = fs::status(path, failed);
    if (fs::is_directory(status))
        return "it is a folder";
    if (fs::exists(status) && !fs::is_regular_file(status))
        return "it is no regular file";
    if (!path.has_filename())
        return "it names no file";
    return fs::is_directory(folderOf(path), failed) ? "" : "there is no folder for it";
}

void writeWhole(const fs::path& path, const std::function<void(std::ostream&)>& write)
{
    const std::string obstacle = whyNotWritable(path);
    if (!obstacle.empty())
        throw std::runtime_error(obstacle);
    try {
        const fs::path target = targetOf(path);
        TemporaryFile made(target);
        fill(made.path(), write);
        replace(target, made);
    } catch (const std::system_error& error) {
        throw std::runtime_error(error.code().message());
    }
}

}  // namespace tool
