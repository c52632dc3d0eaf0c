#include <algorithm>
#include <memory>

#include "raylume/platform/Files.h"
#include "raylume/platform/Paths.h"
#include "tests/memory_platform/MemoryPlatform.h"

namespace platform {

using memory_platform::machine;
using memory_platform::tidyPath;

namespace {

class MemoryInputFile final : public InputFile {
public:
    explicit MemoryInputFile(std::string bytes) : bytes_(std::move(bytes)) {}

    // Past failingRead the machine gives nothing more, as after an error of the device.
    std::size_t read(void* buffer, std::size_t size) override
    {
        const std::size_t end = std::min(bytes_.size(), machine().failingRead);
        const std::size_t count = std::min(size, end - std::min(at_, end));
        std::copy_n(bytes_.data() + at_, count, static_cast<char*>(buffer));
        at_ += count;
        return count;
    }

private:
    std::string bytes_;
    std::size_t at_ = 0;
};

}  // namespace

InputFile::InputFile() = default;
InputFile::~InputFile() = default;

std::unique_ptr<InputFile> InputFile::open(const std::wstring& path)
{
    machine().opens.push_back(path);
    const auto found = machine().contents.find(tidyPath(path));
    return found == machine().contents.end() ? nullptr : std::make_unique<MemoryInputFile>(found->second);
}

bool pathMatches(const std::wstring& text)
{
    machine().probes.push_back(text);
    const bool endsInSeparator = !text.empty() && (text.back() == L'\\' || text.back() == L'/');
    return !text.empty() && !endsInSeparator && machine().entries.count(tidyPath(text)) != 0;
}

}  // namespace platform
